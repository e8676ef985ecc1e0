#include "tests/support/allocations.hpp"
#include "tests/support/random_source.hpp"
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>
#include <string>
#include <thread>
#include <vantel_guarded.h>
#include <vector>

// The shared library as a host sees it that no exception may enter.
namespace vantel::testing {
namespace {
using Records = std::vector<PredicateRecord>;

QuantumProperty* made(int dimension) { return vantel_guarded_make_quantum_property(dimension, nullptr); }
int measured(std::vector<QuantumProperty*> qudits, std::vector<int>& levels) {
    levels.assign(qudits.size(), -7);
    return vantel_guarded_measure(qudits.data(), qudits.size(), levels.data());
}
int project(const Records& when, int& answer) { return vantel_guarded_project(when.data(), when.size(), &answer); }

/// Three separate qudits, the last two with conditions on them, and buffers for the first two.
struct World {
    std::vector<QuantumProperty*> q{made(4), made(3), made(4)};
    Records when{{q[1], 1, 1}, {q[2], 2, 0}};
    std::vector<int> levels = std::vector<int>(24, -7);
    std::vector<ProbabilityRecord> rows = std::vector<ProbabilityRecord>(12, {-7, nullptr});
    std::vector<float> real = std::vector<float>(144, -7), imaginary = real;

    World() {
        for (std::size_t i = 0; i < rows.size(); ++i) rows[i].qudit_values = &levels[2 * i];
        vantel_guarded_hadamard(q[0], nullptr, 0);
        q.reserve(4);
    }
    bool is_untouched() {
        const auto both = std::accumulate(levels.begin(), levels.end(), 0) == -7 * 24 && real == imaginary;
        return both && real.front() == -7 && real.back() == -7 && rows[0].probability == -7;
    }
    ~World() {
        for (QuantumProperty* const qudit : q) EXPECT_EQ(vantel_guarded_free_quantum_property(qudit), vantel_ok);
    }
};

using Call = std::function<int(World&)>;
const std::vector<Call> calls{
    [](World& w) {
        int status = -7;
        w.q.push_back(vantel_guarded_make_quantum_property(5, &status));
        if (status != vantel_ok) w.q.pop_back();
        return status;
    },
    [](World& w) { return vantel_guarded_join(w.q[0], w.q[1]); },
    [](World& w) { return vantel_guarded_hadamard(w.q[0], w.when.data(), 2); },
    [](World& w) { return vantel_guarded_inverse_hadamard(w.q[0], w.when.data(), 2); },
    [](World& w) { return vantel_guarded_cycle(w.q[0], 1, w.when.data(), 2); },
    [](World& w) { return vantel_guarded_shift(w.q[0], 0.5F, w.when.data(), 2); },
    [](World& w) { return vantel_guarded_clock(w.q[0], 0.5F, w.when.data(), 2); },
    [](World& w) { return vantel_guarded_phase_rotate(w.when.data(), 2, 0.5F); },
    [](World& w) { return vantel_guarded_swap(w.q[0], w.q[2], w.when.data(), 1); },
    [](World& w) { return vantel_guarded_i_swap(w.q[0], w.q[2], 0.5F, w.when.data(), 1); },
    [](World& w) { return vantel_guarded_measure(w.q.data(), 2, w.levels.data()); },
    [](World& w) { return vantel_guarded_project(w.when.data(), 2, w.levels.data()); },
    [](World& w) { return vantel_guarded_stochastic_projection(w.when.data(), 2, w.levels.data()); },
    [](World& w) { return vantel_guarded_probabilities(w.q.data(), 2, w.rows.data()); },
    [](World& w) {
        return vantel_guarded_reduced_density_matrix(w.q.data(), 2, w.real.data(), w.imaginary.data(), 144);
    },
    [](World& w) { // the first of three that are joined
        vantel_guarded_phase_rotate(w.when.data(), 2, 0);
        const int status = vantel_guarded_free_quantum_property(w.q[1]);
        if (status == vantel_ok) w.q.erase(w.q.begin() + 1);
        return status;
    },
};

class EachCall : public ::testing::TestWithParam<std::size_t> {};

TEST_P(EachCall, TellsOfEveryAllocationThatFailsAndCanBeRepeated) {
    for (const Failing how : {Failing::once, Failing::from_then_on}) {
        const long before = live_allocations();
        int failures = 0;
        for (long allowed = 0, asked = 0; allowed <= asked; ++allowed) {
            World world;
            const Call& call = calls[GetParam()];
            fail_allocations_after(allowed, how);
            const int status = call(world);
            asked = stop_failing();
            if (status == vantel_ok) continue;
            ASSERT_EQ(status, vantel_guarded_out_of_memory);
            EXPECT_TRUE(std::string(vantel_guarded_last_failure()).ends_with(": memory is exhausted"));
            EXPECT_TRUE(world.is_untouched());
            EXPECT_EQ(call(world), vantel_ok);
            ++failures;
        }
        EXPECT_GT(failures, 0);
        EXPECT_EQ(live_allocations(), before);
    }
}
INSTANTIATE_TEST_SUITE_P(Guarded, EachCall, ::testing::Range<std::size_t>(0, calls.size()));

TEST(Guarded, StateOverTheLimitGivesNothingBackUntilItIsMeasured) {
    std::vector<QuantumProperty*> q;
    for (int i = 0; i < 6; ++i) {
        q.push_back(made(10));
        ASSERT_EQ(vantel_guarded_join(q[0], q.back()), vantel_ok);
    }
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_EQ(vantel_guarded_hadamard(q[i], nullptr, 0), i < 5 ? vantel_ok : vantel_state_size_exceeded);
    const PredicateRecord one{q[1], 0, 1};
    int answer = -7;
    EXPECT_EQ(vantel_guarded_hadamard(q[0], &one, 1), vantel_state_size_exceeded);
    EXPECT_EQ(vantel_guarded_clock(q[0], 1, nullptr, 0), vantel_state_size_exceeded);
    EXPECT_EQ(project({one}, answer), vantel_state_size_exceeded);
    for (QuantumProperty* const qudit : q)
        EXPECT_EQ(vantel_guarded_free_quantum_property(qudit), vantel_state_size_exceeded);
    std::vector<int> levels;
    EXPECT_EQ(measured({q[0]}, levels), vantel_ok);
    for (QuantumProperty* const qudit : q) EXPECT_EQ(vantel_guarded_free_quantum_property(qudit), vantel_ok);
}

TEST(Guarded, ProjectionsAndReleasesInAnyOrderSpoilNoHandle) {
    for (int level = 0; level < 3; ++level) {
        // The level of a, copied into b and c, which every merge and release must leave where it is.
        QuantumProperty *a = made(3), *b = made(5), *c = made(4), *guest = made(2);
        ASSERT_EQ(vantel_guarded_join(guest, a), vantel_ok);
        for (int i = 0; i < level; ++i) ASSERT_EQ(vantel_guarded_cycle(a, 1, nullptr, 0), vantel_ok);
        for (const auto& [from, to] : {std::pair(a, b), {b, c}})
            for (int k = 1; k < 3; ++k) {
                const PredicateRecord is_k{from, k, 1};
                for (int i = 0; i < k; ++i) ASSERT_EQ(vantel_guarded_cycle(to, 1, &is_k, 1), vantel_ok);
            }
        int answer = -7;
        for (int i = 0; i < 3; ++i) {
            ASSERT_EQ(project({{a, level, 1}, {c, level, 1}}, answer), vantel_ok);
            EXPECT_EQ(answer, 1);
        }
        ASSERT_EQ(vantel_guarded_free_quantum_property(guest), vantel_ok);
        ASSERT_EQ(vantel_guarded_free_quantum_property(a), vantel_ok);
        for (int i = 0; i < 3; ++i) { // merged behind a newcomer each time
            QuantumProperty* const front = made(2);
            ASSERT_EQ(vantel_guarded_join(front, b), vantel_ok);
            ASSERT_EQ(project({{b, level, 0}}, answer), vantel_ok);
            EXPECT_EQ(answer, 0);
            ASSERT_EQ(vantel_guarded_free_quantum_property(front), vantel_ok);
        }
        ASSERT_EQ(vantel_guarded_cycle(c, 1, nullptr, 0), vantel_ok);
        std::vector<int> levels;
        ASSERT_EQ(measured({c, b}, levels), vantel_ok);
        EXPECT_EQ(levels, (std::vector{level + 1, level}));
        EXPECT_EQ(vantel_guarded_free_quantum_property(b), vantel_ok);
        EXPECT_EQ(vantel_guarded_free_quantum_property(c), vantel_ok);
    }
}

TEST(Guarded, ProjectionCollapsesTheState) {
    for (int coins = 0; coins < 40; ++coins) { // chance agrees with all of them in one of 10^12 runs
        QuantumProperty* const coin = made(2);
        ASSERT_EQ(vantel_guarded_hadamard(coin, nullptr, 0), vantel_ok);
        int first = -7, second = -7;
        ASSERT_EQ(project({{coin, 1, 1}}, first) | project({{coin, 1, 1}}, second), vantel_ok);
        EXPECT_EQ(first, second);
        EXPECT_EQ(vantel_guarded_free_quantum_property(coin), vantel_ok);
    }
}

TEST(Guarded, ElevenQuditsAreRefusedByAll) {
    World world;
    std::vector<QuantumProperty*> crowd;
    for (int i = 0; i < 9; ++i) {
        crowd.push_back(made(2));
        ASSERT_EQ(vantel_guarded_join(crowd[0], crowd.back()), vantel_ok);
    }
    for (const std::size_t i : {1U, 2U})
        ASSERT_EQ(vantel_guarded_join(world.q[i], i == 1 ? crowd[0] : world.q[1]),
                  i == 1 ? vantel_ok : vantel_bad_qudit_number);
    for (std::size_t i = 1; i + 1 < calls.size(); ++i)
        EXPECT_EQ(calls[i](world), vantel_bad_qudit_number) << vantel_guarded_last_failure();
    int answer = -7; // a projection needs one place more
    EXPECT_EQ(project({{crowd[0], 0, 1}}, answer), vantel_bad_qudit_number);
    for (QuantumProperty* const qudit : crowd) EXPECT_EQ(vantel_guarded_free_quantum_property(qudit), vantel_ok);
}

TEST(Guarded, WhatWouldCrashIsRefused) {
    World w;
    QuantumProperty* nothing[] = {w.q[0], nullptr};
    const Records on_nothing{{nullptr, 0, 1}};
    int answer = -7;
    EXPECT_EQ(vantel_guarded_free_quantum_property(nullptr), vantel_null_property);
    EXPECT_EQ(vantel_guarded_join(w.q[0], nullptr), vantel_null_property);
    EXPECT_EQ(vantel_guarded_hadamard(w.q[0], on_nothing.data(), 1), vantel_null_property);
    EXPECT_EQ(vantel_guarded_measure(nothing, 2, &answer), vantel_null_property);
    EXPECT_EQ(vantel_guarded_cycle(w.q[0], 1, nullptr, 1), vantel_guarded_bad_argument);
    EXPECT_EQ(vantel_guarded_cycle(w.q[0], 1, w.when.data(), SIZE_MAX), vantel_guarded_bad_argument);
    EXPECT_EQ(vantel_guarded_measure(w.q.data(), 0, &answer), vantel_guarded_bad_argument);
    EXPECT_EQ(vantel_guarded_measure(w.q.data(), 1, nullptr), vantel_guarded_bad_argument);
    w.rows.back().qudit_values = nullptr;
    EXPECT_EQ(vantel_guarded_probabilities(w.q.data(), 2, w.rows.data()), vantel_guarded_bad_argument);
    for (const std::size_t size : {143U, 145U})
        EXPECT_EQ(vantel_guarded_reduced_density_matrix(w.q.data(), 2, w.real.data(), w.imaginary.data(), size),
                  size < 144 ? vantel_output_too_small : vantel_output_size_mismatch);
    const std::vector<QuantumProperty*> many(16, w.q[0]); // 4^16 combinations, whose square wraps to 0
    EXPECT_EQ(vantel_guarded_reduced_density_matrix(const_cast<QuantumProperty**>(many.data()), many.size(),
                                                    w.real.data(), w.imaginary.data(), 0),
              vantel_guarded_bad_argument);
    EXPECT_TRUE(w.is_untouched());

    int status = -7;
    EXPECT_EQ(vantel_guarded_make_quantum_property(11, &status), nullptr);
    EXPECT_EQ(status, vantel_bad_dimension);
}

TEST(Guarded, NoRandomnessAndNothingToReadAreStatuses) {
    World w;
    {
        const RandomSource source(5, RandomSource::Fault::cannot_open);
        EXPECT_EQ(calls[10](w), vantel_guarded_other_failure);
        EXPECT_EQ(calls[11](w), vantel_guarded_other_failure);
    }
    vantel_guarded_clock(w.q[0], std::numeric_limits<float>::quiet_NaN(), nullptr, 0);
    vantel_guarded_hadamard(w.q[0], nullptr, 0); // drops what is no number
    for (std::size_t i = 10; i < 15; ++i) EXPECT_EQ(calls[i](w), vantel_guarded_empty_state) << i;
    EXPECT_TRUE(w.is_untouched());
}

TEST(Guarded, EachThreadHasItsOwnText) {
    EXPECT_EQ(vantel_guarded_join(nullptr, nullptr), vantel_null_property);
    std::thread([] {
        EXPECT_STREQ(vantel_guarded_last_failure(), "");
        EXPECT_EQ(made(1), nullptr);
        EXPECT_STREQ(vantel_guarded_last_failure(), "vantel_guarded_make_quantum_property: dim must be >= 2");
    }).join();
    EXPECT_STREQ(vantel_guarded_last_failure(), "vantel_guarded_join: a handle is null");
    EXPECT_STREQ(vantel_guarded_version(), "1.0.0");
}
} // namespace
} // namespace vantel::testing
