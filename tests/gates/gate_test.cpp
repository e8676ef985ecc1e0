#include <limits>
#include <numbers>

#include "reference/literal_state.hpp"
#include "tests/support/states.hpp"

namespace vantel::testing {
namespace {

using namespace qudit;
/// One gate on the one-qudit or two-qudit basis state `levels`, and what must come of it, bit for bit.
struct Worked {
    const char* name;
    Levels dimensions, levels;
    void (*act)(IState&);
    std::vector<Term> expected;
};

class WorkedValue : public ::testing::TestWithParam<Worked> {};

TEST_P(WorkedValue, ComesOutInEveryBit) {
    const Worked& worked = GetParam();
    const auto state = state_of(worked.dimensions, {{worked.levels, 1.0}});
    worked.act(*state);
    EXPECT_TRUE(same_entries(state->basis_amplitudes(), entries_of(worked.dimensions, worked.expected)));
}

constexpr double r = 0.7071067811865475;

INSTANTIATE_TEST_SUITE_P(
    Table, WorkedValue,
    ::testing::Values(Worked{"hadamard_keeps_the_residue",
                             {2},
                             {1},
                             [](IState& s) { s.hadamard({0}, {}); },
                             {{{0}, {r, -1.7319121124709863e-16}}, {{1}, {-r, 8.659560562354932e-17}}}},
                      Worked{"clock_multiplies_in_single_precision",
                             {10},
                             {3},
                             [](IState& s) { s.clock({0}, 0.1F, {}); },
                             {{{3},
                               {std::cos(6.283185307179586 / 10 * 0.30000001192092896),
                                std::sin(6.283185307179586 / 10 * 0.30000001192092896)}}}},
                      Worked{"phase_rotate_turns_in_single_precision",
                             {2},
                             {1},
                             [](IState& s) {
                                 s.phase_rotate({{0, 0, false}}, std::numbers::pi_v<float>);
                             },
                             {{{1}, {-1.0, static_cast<double>(-8.742278e-8F)}}}},
                      Worked{"cycle_wraps_by_its_own_dimension",
                             {3, 5},
                             {2, 4},
                             [](IState& s) {
                                 s.cycle({0, 1, 1}, {});
                             },
                             {{{0, 1}, 1.0}}},
                      Worked{"shift_wraps_by_its_own_dimension",
                             {3, 5},
                             {0, 0},
                             [](IState& s) {
                                 s.shift({0, 1, 1}, {});
                             },
                             {{{2, 3}, 1.0}}},
                      Worked{"whole_i_swap",
                             {3, 3},
                             {2, 1},
                             [](IState& s) { s.i_swap(0, 1, 1.0F, {}); },
                             {{{1, 2}, {0.0, 1.0}}}}),
    [](const auto& tested) { return tested.param.name; });

TEST(Gates, TreatRepeatedLabelsAndUnequalDimensionsAsTheLiteralModelDoes) {
    Entries entries;
    for (std::uint64_t i = 0; i < 36; ++i)
        entries.push_back(
            {{{i % 4, 2}, {i / 4 % 3, 3}, {i / 12, 3}}, {1.0 / static_cast<double>(i + 1), 0.5}});
    for (int round = 0; round < 4; ++round) {
        const bool repeated = round % 2 != 0;
        for (auto& entry : entries)
            entry.dits[0].dimension = repeated ? 2 : 4;
        entries[20].dits[1].dimension = repeated ? 3 : 4;
        const auto act = [=](auto& state) {
            if (repeated) {
                state.cycle({0}, {}); // levels 0 and 2 both go to 1
            } else {
                state.swap(1, 2, {});
                state.clock({2}, {});
            }
            if (round < 2)
                state.i_swap(1, 2, 0.3F, {});
            else
                state.hadamard({1}, {{2, 1, true}});
        };
        const auto state = Factory::make_unique_state({4, 3}, entries);
        reference::LiteralState literal({4, 3}, entries);
        act(*state);
        act(literal);
        EXPECT_TRUE(same_entries(state->basis_amplitudes(), literal.basis_amplitudes())) << round;
    }
    for (const std::size_t size : {36U, 6U}) {
        entries.resize(size);
        const auto state = Factory::make_unique_state({4, 3}, entries);
        reference::LiteralState literal({4, 3}, entries);
        state->cycle({0}, {});
        literal.cycle({0}, {});
        EXPECT_TRUE(same_entries(qudit::tensor_product<10, 10>(*state, *state)->basis_amplitudes(),
                                 reference::tensor_product(literal, literal).basis_amplitudes()));
    }
}

TEST(Gates, TransformListsOfAllCombinationsAsTheLiteralModelDoes) {
    const Levels dimensions{2, 3, 4, 5};
    enum { plain, dropping, infinite, repeated, beyond, kinds };
    for (int kind = 0; kind < kinds; ++kind) {
        std::vector<Term> terms;
        for (std::uint64_t i = 0; i < 120; ++i) {
            const std::uint64_t rank = 49 * i % 120;
            const double x = kind == dropping ? 0.25 : std::sin(static_cast<double>(i));
            terms.push_back({{rank % 2, rank / 2 % 3, rank / 6 % 4, rank / 24}, {x, 1 - x}});
        }
        if (kind == infinite) {
            terms[17].amplitude = {std::numeric_limits<double>::infinity(), std::nan("")};
            terms[58].amplitude = {0.5, -std::numeric_limits<double>::infinity()};
        }
        Entries entries = entries_of(dimensions, terms);
        // As many entries as combinations, but a step up makes one of two labels.
        if (kind == repeated)
            for (Entry& entry : entries)
                entry.dits[1].value += entry.dits[1].value == 2 ? 1 : 0;
        // A slot of one level, in which a level beyond it stands.
        if (kind == beyond)
            for (Entry& entry : entries)
                entry.dits.push_back({entry.dits[3].value == 1 ? 1U : 0U, 1});
        for (int target = 0; target < 4; ++target)
            for (const std::vector<Predicate>& controls :
                 {std::vector<Predicate>{}, {{(target + 1) % 4, 1, true}}, {{(target + 3) % 4, 0, false}}}) {
                const auto act = [&](auto& state) {
                    if (kind == repeated)
                        state.cycle({1}, {});
                    state.hadamard({target}, controls);
                    state.inverse_hadamard({target}, controls);
                };
                const Factory::BasisConfig config{5, entries.front().dits.size()};
                const auto state = Factory::make_unique_state(config, entries);
                reference::LiteralState literal({config.dim, config.num_qudits}, entries);
                act(*state);
                act(literal);
                EXPECT_TRUE(same_entries(state->basis_amplitudes(), literal.basis_amplitudes()))
                    << kind << " " << target << " " << controls.size();
            }
    }
}

// The sums of an i-swap are written at once where every combination has an entry and none is dropped. Here
// some are missing, in every third list, and others negligible or without a number; the first list has none
// of that.
TEST(Gates, ISwapSharesAsTheLiteralModelDoesWhateverTheAmplitudes) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double threshold = 0x1p-23;
    const std::vector<Complex> odd{{-0.0, 0.5},
                                   {0.0, -0.0},
                                   {threshold, 0.0},
                                   {0.0, -0.25},
                                   {1e-9, -1e-9},
                                   {infinity, 0.5},
                                   {nan, 0.5},
                                   {nan, nan},
                                   {nan, -infinity},
                                   {-infinity, 0.0},
                                   {2 * threshold, -threshold}};
    const Levels dimensions{2, 3, 4, 3, 2};
    for (std::size_t round = 0; round < 72; ++round) {
        Entries entries;
        for (std::uint64_t i = 0; i < 144; ++i) {
            const std::uint64_t label = i * 91 % 144; // in no order
            if (round % 3 == 1 && label % 7 < 3)
                continue;
            const bool is_odd = round != 0 && (label + round) % (round % 2 == 0 ? 5 : 71) == 0;
            const auto number = static_cast<double>(label);
            const Complex even(0.1 + 0.01 * number, 0.3 - 0.02 * number);
            entries.push_back({{{label % 2, 2},
                                {label / 2 % 3, 3},
                                {label / 6 % 4, 4},
                                {label / 24 % 3, 3},
                                {label / 72, 2}},
                               is_odd ? odd[(label / 2 + round) % odd.size()] : even});
        }
        const float fraction = round % 4 < 2 ? 0.3F : 1.0F;
        const bool outer = round % 8 < 4;
        const std::vector<qudit::Predicate> controls{{2, 1, round % 2 == 0}};
        const auto act = [&](auto& state) {
            for (int again = 0; again < 2; ++again)
                state.i_swap(outer ? 4 : 1, outer ? 0 : 3, fraction,
                             round < 36 ? std::vector<qudit::Predicate>{} : controls);
        };
        const auto state = Factory::make_unique_state({4, 5}, entries);
        reference::LiteralState literal({4, 5}, entries);
        act(*state);
        act(literal);
        ASSERT_TRUE(same_entries(state->basis_amplitudes(), literal.basis_amplitudes())) << round;
    }
}

} // namespace
} // namespace vantel::testing
