#include "interface/quantum_property.hpp"
#include "tests/support/handles.hpp"
#include "tests/support/states.hpp"
#include <array>
#include <cmath>

// What shows only over many calls: the shares of outcomes, and what rounding does to the norm.
namespace vantel::testing {
namespace {
constexpr double u = 0x1p-53; // one rounding, of double precision

Entries entries_behind(const Handle& handle) { return handle->shared_state->state->basis_amplitudes(); }

double norm_of(const Entries& entries) {
    double sum = 0.0;
    for (const Entry& entry : entries) sum += std::norm(entry.amplitude);
    return std::sqrt(sum);
}

/// A gate with a sign of 1 and its inverse with one of -1, on a three-level and two five-level qudits in 11
/// basis states.
struct Pair {
    const char* name;
    void (*act)(QuantumProperty* const* q, const PredicateRecord* condition, float sign);
    int gates;    ///< for there and back
    double error; ///< of the norm, for there and back; 0 where nothing is rounded
    double modulus = 1.0;
};

// A transform of d levels. An angle is below 2 pi d and passes through four roundings, so it is wrong by at
// most 8 pi d u < 26 d u; with cosine, scale and product, an element is wrong by (37 d + 9) u / sqrt(d). The
// sum of d products adds less than (d + 3) u / sqrt(d) to each. d * d such elements have a norm of sqrt(d)
// (38 d + 12) u at most.
const double transform = std::sqrt(5.0) * (38 * 5 + 12) * u;
// A factor whose sine and cosine are rounded, and its product with an amplitude.
constexpr double phase = 5 * u;

constexpr float angle = 0.7F;

const Pair pairs[] = {
    {"cycle_and_shift", [](auto q, auto c, float s) { (s > 0 ? vantel_cycle : vantel_shift)(q[1], 1.0F, c, 1); }, 2,
     0.0},
    {"swap", [](auto q, auto, float) { vantel_swap(q[1], q[2], nullptr, 0); }, 2, 0.0},
    {"hadamard", [](auto q, auto, float s) { (s > 0 ? vantel_hadamard : vantel_inverse_hadamard)(q[1], nullptr, 0); },
     2, 2 * transform},
    {"fractional_cycle_and_shift",
     [](auto q, auto c, float s) { (s > 0 ? vantel_cycle : vantel_shift)(q[1], 0.3F, c, 1); }, 6,
     4 * transform + 2 * phase},
    {"clock", [](auto q, auto c, float s) { vantel_clock(q[1], s * 0.3F, c, 1); }, 2, 2 * phase},
    {"i_swap", [](auto q, auto c, float s) { vantel_i_swap(q[1], q[2], s * 0.3F, c, 1); }, 2, 4 * phase},
    // Sine and cosine are single precision, so every call changes the norm by one told factor.
    {"phase_rotate",
     [](auto q, auto, float s) {
         const PredicateRecord any{q[0], -1, 0};
         vantel_phase_rotate(&any, 1, s * angle);
     },
     2, 2 * phase, std::hypot(double(std::cos(angle)), double(std::sin(angle)))},
};

class ThereAndBack : public ::testing::TestWithParam<Pair> {};

TEST_P(ThereAndBack, KeepsTheNormAsFarAsRoundingExplainsAndTheListShort) {
    const Pair& pair = GetParam();
    const std::array<Handle, 3> owned{qudit_of(3), qudit_of(5), qudit_of(5)};
    QuantumProperty* const q[]{owned[0].get(), owned[1].get(), owned[2].get()};
    const PredicateRecord condition{q[0], 1, 0};
    vantel_hadamard(q[0], nullptr, 0);
    vantel_hadamard(q[1], &condition, 1);
    vantel_clock(q[1], 0.7F, nullptr, 0);
    vantel_cycle(q[2], 1.0F, &condition, 1);
    const Entries before = entries_behind(owned[0]);
    const int rounds = VANTEL_LONG_RUN / pair.gates;
    for (int i = 0; i < rounds; ++i) {
        pair.act(q, &condition, 1.0F);
        pair.act(q, &condition, -1.0F);
        ASSERT_LE(owned[0]->shared_state->state->packed_amplitudes().size(), before.size()) << i;
    }
    const Entries after = entries_behind(owned[0]);
    if (pair.error == 0.0) {
        EXPECT_TRUE(same_entries(after, before));
    }
    const double expected = norm_of(before) * std::pow(pair.modulus, 2 * rounds);
    const double of_the_check = 100 * u;
    EXPECT_LE(std::abs(norm_of(after) / expected - 1), rounds * pair.error + of_the_check);
}

INSTANTIATE_TEST_SUITE_P(Gates, ThereAndBack, ::testing::ValuesIn(pairs),
                         [](const auto& tested) { return tested.param.name; });

TEST(Renormalisation, DoesNotDriftOverManyMeasurements) {
    const Handle a = qudit_of(10), b = qudit_of(3);
    vantel_hadamard(a.get(), nullptr, 0);
    merge({a.get(), b.get()});
    QuantumProperty* list[]{b.get()};
    for (int i = 0, level = -1; i < VANTEL_LONG_RUN / 100; ++i) {
        ASSERT_EQ(vantel_measure(list, 1, &level), 0);
        ASSERT_EQ(level, 0);
        // The sum of ten squares and its root, in single precision: at most (10 / 2 + 1) roundings.
        ASSERT_LE(std::abs(norm_of(entries_behind(a)) - 1), 6 * 0x1p-24) << i;
    }
}

/// An experiment on fresh qudits, and the told shares of its outcomes.
struct Experiment {
    const char* name;
    int (*outcome)();
    std::vector<double> shares;
};

int measured(const Handle& handle) {
    QuantumProperty* const property = handle.get();
    int level = -1;
    vantel_measure(const_cast<QuantumProperty**>(&property), 1, &level);
    return level;
}

int superposed(int dimension) {
    const Handle handle = qudit_of(dimension);
    vantel_hadamard(handle.get(), nullptr, 0);
    return measured(handle);
}

const Experiment experiments[] = {
    {"coin", [] { return superposed(2); }, {0.5, 0.5}},
    {"ten_levels", [] { return superposed(10); }, std::vector<double>(10, 0.1)},
    {"third_of_an_i_swap",
     [] {
         const Handle a = qudit_of(3), b = qudit_of(3);
         vantel_cycle(a.get(), 1.0F, nullptr, 0);
         vantel_i_swap(a.get(), b.get(), 1.0F / 3, nullptr, 0);
         return measured(a);
     },
     {0.25, 0.75}},
    {"projection",
     [] {
         const Handle a = qudit_of(5), b = qudit_of(2);
         vantel_hadamard(a.get(), nullptr, 0);
         vantel_hadamard(b.get(), nullptr, 0);
         const PredicateRecord conditions[]{{a.get(), 3, 0}, {b.get(), 1, 1}};
         int result = -1;
         vantel_stochastic_projection(conditions, 2, &result);
         return result;
     },
     {0.6, 0.4}},
    // Whether a draw repeats the last one, which a word of randomness that is kept would show.
    {"repetition",
     [] {
         static int last = 0;
         const int before = last;
         last = superposed(2);
         return last == before ? 1 : 0;
     },
     {0.5, 0.5}},
};

class Shares : public ::testing::TestWithParam<Experiment> {};

// Of n draws of an outcome of probability p, a share as far from p as q or farther on that side has a
// probability of at most exp(-n D), where D = q ln(q / p) + (1 - q) ln((1 - q) / (1 - p)). Both sides of all
// the shares here, fewer than 25, make a false alarm rarer than 50 exp(-limit) = 1e-9. What single precision
// does to a probability is a thousandth of the distance.
TEST_P(Shares, AreThoseOfTheStateButForOneFalseAlarmInABillion) {
    const double limit = std::log(50 / 1e-9);
    const int draws = VANTEL_LONG_RUN / 50;
    std::vector<int> counts(GetParam().shares.size());
    for (int i = 0; i < draws; ++i) ++counts.at(static_cast<std::size_t>(GetParam().outcome()));
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const double p = GetParam().shares[i];
        const double q = static_cast<double>(counts[i]) / draws;
        const auto part = [](double x, double y) { return x > 0.0 ? x * std::log(x / y) : 0.0; };
        EXPECT_LT(draws * (part(q, p) + part(1 - q, 1 - p)), limit) << "a share of " << q << ", not " << p;
    }
}

INSTANTIATE_TEST_SUITE_P(Experiments, Shares, ::testing::ValuesIn(experiments),
                         [](const auto& tested) { return tested.param.name; });
} // namespace
} // namespace vantel::testing
