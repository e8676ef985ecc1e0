#include "reference/literal_state.hpp"
#include "tests/support/states.hpp"
#include <limits>
#include <numbers>

namespace vantel::testing {
namespace {
using namespace qudit;
using Controls = std::vector<Predicate>;

// What the library and the literal model could only get wrong together.
TEST(Gates, GiveWorkedValuesInEveryBit) {
    const auto expect = [](const Levels& dimensions, const Levels& levels, auto act,
                           const std::vector<Term>& expected) {
        const auto state = state_of(dimensions, {{levels, 1.0}});
        reference::LiteralState literal({dimensions[0], levels.size()}, entries_of(dimensions, {{levels, 1.0}}));
        act(*state);
        act(literal);
        EXPECT_TRUE(same_entries(state->basis_amplitudes(), entries_of(dimensions, expected)));
        EXPECT_TRUE(same_entries(literal.basis_amplitudes(), entries_of(dimensions, expected)));
    };
    constexpr double r = 0.7071067811865475;
    const double angle = 6.283185307179586 / 10 * 0.30000001192092896; // a product of single precision
    expect({2}, {1}, [](auto& s) { s.hadamard({0}, {}); },
           {{{0}, {r, -1.7319121124709863e-16}}, {{1}, {-r, 8.659560562354932e-17}}});
    expect({10}, {3}, [](auto& s) { s.clock({0}, 0.1F, {}); }, {{{3}, {std::cos(angle), std::sin(angle)}}});
    expect({2}, {1},
           [](auto& s) {
               s.phase_rotate({{0, 0, false}}, std::numbers::pi_v<float>);
           },
           {{{1}, {-1.0, static_cast<double>(-8.742278e-8F)}}});
    expect({3, 3}, {2, 1}, [](auto& s) { s.i_swap(0, 1, 1.0F, {}); }, {{{1, 2}, {0.0, 1.0}}});
}

/// Lists for which a shorter way than the literal one serves, and those like them for which it does not: that
/// lack some labels, that have amplitudes of every kind, in which a label is repeated, or a level stands
/// beyond its dimension, or where a label has no qudit; in which one label alone has other dimensions.
enum Kind { all, some, few, special, equal, repeated, beyond, one_level, beyond_one, first, middle, last };

Entries list_of(Kind kind) {
    using wide = std::numeric_limits<double>;
    constexpr double t = 0x1p-23;
    const Complex odd[] = {{-0.0, 0.5}, {t, 0.0}, {0.0, -0.25}, {1e-9, -1e-9}, {wide::infinity(), 0.5},
                           {t, 2 * t},  {0.0, t}, {-t, -t},     {0.25, 0.25},  {wide::quiet_NaN(), 0.5},
                           {2 * t, -t}};
    std::vector<Term> terms;
    for (std::uint64_t i = 0; i < 72; ++i) {
        const std::uint64_t rank = 31 * i % 72; // in no order
        if ((kind == some && (rank % 7 < 3 || rank > 35)) || (kind == few && i > 2)) continue;
        const double x = kind == equal ? 0.25 : std::sin(static_cast<double>(i));
        terms.push_back({{rank % 2, rank / 2 % 3, rank / 6 % 3, rank / 18},
                         kind == special && i % 3 == 0 ? odd[i / 3 % std::size(odd)] : Complex(x, 1 - x)});
    }
    if (kind == some) terms.push_back({{1, 2, 2, 3}, 0.5}); // alone with its highest level
    if (kind == last) terms.pop_back();
    // Both make an odd number, so that the last entry has no neighbour.
    Entries entries = entries_of({2, 3, 3, 4}, terms);
    for (Entry& entry : entries) {
        // A step makes one of two labels.
        if (kind == repeated || kind == beyond) entry.dits[1].value += entry.dits[1].value == 2 ? 1 : 0;
        if (kind == one_level || kind == beyond_one)
            entry.dits.push_back({kind == beyond_one && entry.dits[3].value == 1 ? 1U : 0U, 1});
    }
    if (kind >= first || kind == few) {
        const std::size_t odd_one = kind == first ? 0 : kind == middle ? 20 : entries.size() - 1;
        for (const std::size_t qudit : {0U, 1U}) entries[odd_one].dits[qudit].dimension = 4;
    }
    return entries;
}

constexpr int gates = 7;
template <class State> void act(State& state, int gate, int target, const Controls& controls) {
    return gate == 0   ? state.hadamard({target}, controls)
           : gate == 1 ? state.inverse_hadamard({target}, controls)
           : gate == 2 ? state.clock({target}, 0.3F, controls)
           : gate == 3 ? state.swap(1, 2, controls)
           : gate == 4 ? state.shift({target}, controls)
                       : state.i_swap(1, 2, gate == 5 ? 0.3F : 1.0F, controls);
}

TEST(Gates, TreatListsOfEveryKindAsTheLiteralModelDoes) {
    for (int kind = all; kind <= last; ++kind) {
        const Entries entries = list_of(static_cast<Kind>(kind));
        for (int gate = 0; gate < gates; ++gate)
            for (int target = 0; target < static_cast<int>(entries.front().dits.size()); ++target)
                for (const Controls& controls :
                     {Controls{}, Controls{{(target + 1) % 4, 1, true}}, Controls{{(target + 3) % 4, 0, false}}}) {
                    const Factory::BasisConfig config{4, entries.front().dits.size()};
                    const auto state = Factory::make_unique_state(config, entries);
                    reference::LiteralState literal({config.dim, config.num_qudits}, entries);
                    const auto act_on = [&](auto& either) {
                        return thrown_by([&] {
                            if (kind == repeated) either.cycle({1}, {});
                            for (int times = gate == 3 ? 1 : 2; times > 0; --times) // a second swap hides a half one
                                act(either, gate, target, controls);
                        });
                    };
                    EXPECT_EQ(act_on(*state), act_on(literal));
                    EXPECT_TRUE(same_entries(state->basis_amplitudes(), literal.basis_amplitudes()))
                        << "kind " << kind << ", gate " << gate << ", target " << target;
                }
    }
}

TEST(Gates, TransformLabelsFarApartOfWhichEachIsRepeated) {
    Entries entries;
    for (std::uint64_t i = 0; i < 24; ++i) {
        entries.push_back({{{2 * (i % 2), 2}}, {1.0 / double(i + 1), 0.5}});
        for (std::uint64_t rest = 367 * (i / 2) % 4096, qudit = 0; qudit < 6; ++qudit, rest /= 4)
            entries.back().dits.push_back({rest % 4, 4});
    }
    for (const int target : {0, 3}) // a group of as many entries as the first has levels, but of one level
        for (const Controls& controls : {Controls{}, Controls{{1, 1, true}}, Controls{{2, 0, false}}}) {
            const auto state = Factory::make_unique_state({4, 7}, entries);
            reference::LiteralState literal({4, 7}, entries);
            state->cycle({0}, {}); // levels 0 and 2 both go to 1
            literal.cycle({0}, {});
            state->hadamard({target}, controls);
            literal.hadamard({target}, controls);
            EXPECT_TRUE(same_entries(state->basis_amplitudes(), literal.basis_amplitudes()));
        }
}

TEST(Merge, TakesTheFirstProductOfARepeatedLabel) {
    for (const std::size_t size : {2U, 6U, 36U}) {
        Entries entries;
        for (std::uint64_t i = 0; i < size; ++i)
            entries.push_back({{{2 * i % 4, 2}, {i / 2 % 3, 3}, {i / 12, 3}}, {1.0 / double(i + 1), 0.5}});
        const auto state = Factory::make_unique_state({4, 3}, entries);
        reference::LiteralState literal({4, 3}, entries);
        state->cycle({0}, {}); // levels 0 and 2 both go to 1
        literal.cycle({0}, {});
        EXPECT_TRUE(same_entries(qudit::tensor_product<10, 10>(*state, *state)->basis_amplitudes(),
                                 reference::tensor_product(literal, literal).basis_amplitudes()))
            << size;
    }
}
} // namespace
} // namespace vantel::testing
