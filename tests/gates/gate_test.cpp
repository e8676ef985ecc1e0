#include <numbers>

#include "tests/reference/literal_state.hpp"
#include "tests/support/states.hpp"

namespace vantel::testing {
namespace {

using namespace qudit;
using Targets = std::vector<int>;
using Controls = std::vector<Predicate>;

struct Gate {
    const char* name;
    void (*act)(IState&, int first, int second, const Controls&);
    const char* overlap;
    const char* over_limit; ///< null: does not guard
};

constexpr const char* exceeded = "State size exceeded maximum allowed size";

const Gate gates[] = {
    {"shift", [](IState& s, int a, int, const Controls& c) { s.shift({a}, c); },
     "Shift operation has overlapping targets and controls", exceeded},
    {"fractional_shift", [](IState& s, int a, int, const Controls& c) { s.shift({a}, 0.5F, c); },
     "Fractional shift operation has overlap targets and controls", exceeded},
    {"cycle", [](IState& s, int a, int, const Controls& c) { s.cycle({a}, c); },
     "Cycle operation has overlapping targets and controls", exceeded},
    {"fractional_cycle", [](IState& s, int a, int, const Controls& c) { s.cycle({a}, 0.5F, c); },
     "Fractional cycle operation has overlapping targets and controls", exceeded},
    {"clock", [](IState& s, int a, int, const Controls& c) { s.clock({a}, c); },
     "Clock operation has overlapping targets and controls", nullptr},
    {"fractional_clock", [](IState& s, int a, int, const Controls& c) { s.clock({a}, 0.5F, c); },
     "Fractional Clock operation has overlapped targets and controls", nullptr},
    {"hadamard", [](IState& s, int a, int, const Controls& c) { s.hadamard({a}, c); },
     "Hadamard operation has overlapping targets and controls", exceeded},
    {"inverse_hadamard", [](IState& s, int a, int, const Controls& c) { s.inverse_hadamard({a}, c); },
     "inverse-Hadamard operation has overlapping targets and controls", exceeded},
    {"swap", [](IState& s, int a, int b, const Controls& c) { s.swap(b, a, c); },
     "Swap operation has overlapping targets and controls", exceeded},
    {"i_swap", [](IState& s, int a, int b, const Controls& c) { s.i_swap(b, a, 0.5F, c); },
     "Fractional i-swap operation has overlapping targets and controls",
     "State size exceeds maximum allowed size"},
    {"phase_rotate", [](IState& s, int, int, const Controls&) { s.phase_rotate({}, 0.5F); }, nullptr,
     exceeded},
};

class EveryGate : public ::testing::TestWithParam<Gate> {};

TEST_P(EveryGate, RefusesATargetAmongItsControlsAndLeavesTheState) {
    if (GetParam().overlap == nullptr)
        return;
    const auto state = state_of({2, 3, 2}, {{{1, 2, 0}, 0.6}, {{0, 1, 1}, {0.0, 0.8}}});
    const Entries before = state->basis_amplitudes();
    // The condition can never hold, and the exchange of qudits 1 and 0 has a second fault.
    EXPECT_EQ(thrown_by([&] {
                  GetParam().act(*state, 0, 1, {{2, 0, true}, {0, -5, true}});
              }),
              failure<TargetControlOverlap>(GetParam().overlap));
    EXPECT_TRUE(same_entries(state->basis_amplitudes(), before));
}

TEST_P(EveryGate, ActsOnAStateOverTheLimitAndThenReportsIt) {
    const auto over = state_of(Levels(6, 7), {{{0, 1, 2, 3, 4, 5}, 1.0}});
    const Targets all{0, 1, 2, 3, 4, 5};
    ASSERT_EQ(thrown_by([&] { over->hadamard(all, {}); }), failure<StateSizeExceeded>(exceeded));
    over->clock(all, 0.3F, {}); // so that no transform brings it back under
    ASSERT_EQ(over->basis_amplitudes().size(), 117649U);
    const Entries before = over->basis_amplitudes();
    const auto expected = GetParam().over_limit == nullptr
                              ? std::pair<std::string, std::string>{}
                              : failure<StateSizeExceeded>(GetParam().over_limit);
    EXPECT_EQ(thrown_by([&] { GetParam().act(*over, 0, 5, {}); }), expected);
    EXPECT_FALSE(same_entries(over->basis_amplitudes(), before));
    EXPECT_GT(over->basis_amplitudes().size(), 100000U);
}

INSTANTIATE_TEST_SUITE_P(Table, EveryGate, ::testing::ValuesIn(gates),
                         [](const auto& tested) { return tested.param.name; });

TEST(Exchanges, RefuseTargetsOfDifferentDimensionsWhateverTheControlsSelect) {
    const auto state = state_of({2, 3, 2}, {{{1, 2, 0}, 1.0}});
    EXPECT_EQ(thrown_by([&] {
                  state->swap(0, 1, {{2, 1, true}});
              }),
              failure<DifferentDimensions>("Targets of swap operation have different dimensions"));
    EXPECT_EQ(
        thrown_by([&] { state->i_swap(1, 2, 1.0F, {}); }),
        failure<DifferentDimensions>("Targets of fractional-i-swap operation have different dimensions"));
}

TEST(FractionalShift, StaysInTheFourierBasisWhenItExceedsTheSizeInMidCourse) {
    std::vector<Term> terms;
    for (std::uint64_t i = 0; i < 20000; ++i)
        terms.push_back({{0, i % 10, i / 10 % 10, i / 100 % 10, i / 1000 % 10, i / 10000}, 0.5});
    const auto state = state_of(Levels(6, 10), terms);
    EXPECT_EQ(thrown_by([&] { state->shift({0}, 0.5F, {}); }), failure<StateSizeExceeded>(exceeded));
    const Entries left = state->basis_amplitudes();
    ASSERT_EQ(left.size(), 200000U);
    EXPECT_EQ(left[1].dits[0], (Dit{1, 10}));
    EXPECT_TRUE(same_bits(left[1].amplitude, Complex(0.5) * Complex(1.0 / std::sqrt(10.0), 0.0)));
}

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

TEST(ISwap, LeavesRepeatedLabelsAndUnequalDimensionsToTheReduction) {
    Entries entries;
    for (std::uint64_t i = 0; i < 36; ++i)
        entries.push_back(
            {{{i % 4, 2}, {i / 4 % 3, 3}, {i / 12, 3}}, {1.0 / static_cast<double>(i + 1), 0.5}});
    for (const bool repeated : {true, false}) {
        if (!repeated)
            entries[20].dits[0].dimension = 4;
        const auto state = Factory::make_unique_state({4, 3}, entries);
        reference::LiteralState literal({4, 3}, entries);
        if (repeated) { // levels 0 and 2 both go to 1
            state->cycle({0}, {});
            literal.cycle({0}, {});
        }
        state->i_swap(1, 2, 0.3F, {});
        literal.i_swap(1, 2, 0.3F, {});
        EXPECT_TRUE(same_entries(state->basis_amplitudes(), literal.basis_amplitudes())) << repeated;
    }
}

} // namespace
} // namespace vantel::testing
