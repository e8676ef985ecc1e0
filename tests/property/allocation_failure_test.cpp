#include <array>
#include <csignal>
#include <new>

#include "tests/support/allocations.hpp"
#include "tests/support/handles.hpp"
#include "tests/support/random_source.hpp"
#include "tests/support/states.hpp"

namespace vantel::testing {
namespace {

/// Amplitudes are powers of two, so that every order of merging has the same products.
struct World {
    Handle a = qudit_of(4), b = qudit_of(3), c = qudit_of(4);
    std::array<PredicateRecord, 2> controls{{{b.get(), 1, 1}, {c.get(), 2, 0}}};

    World() {
        vantel_hadamard(a.get(), nullptr, 0);
        vantel_cycle(b.get(), 1.0F, nullptr, 0);
        vantel_hadamard(c.get(), nullptr, 0);
    }

    std::vector<float> probabilities() {
        std::array<QuantumProperty*, 3> list{a.get(), b.get(), c.get()};
        std::array<int, 3> levels{};
        std::vector<ProbabilityRecord> records(48, {0.0F, levels.data()});
        EXPECT_EQ(vantel_probabilities(list.data(), list.size(), records.data()), 0);
        std::vector<float> column;
        for (const ProbabilityRecord& record : records)
            column.push_back(record.probability);
        return column;
    }
};

struct Call {
    const char* name;
    int (*make)(World&);
    bool all_or_nothing; ///< a fractional power may stop between its steps
};

const Call calls[] = {
    {"make", [](World&) { return qudit_of(5) ? 0 : -1; }, true},
    {"hadamard", [](World& w) { return vantel_hadamard(w.a.get(), w.controls.data(), 2); }, true},
    {"cycle", [](World& w) { return vantel_cycle(w.a.get(), 1.0F, w.controls.data(), 2); }, true},
    {"fractional_shift", [](World& w) { return vantel_shift(w.a.get(), 0.5F, w.controls.data(), 2); }, false},
    {"clock", [](World& w) { return vantel_clock(w.a.get(), 0.5F, w.controls.data(), 2); }, true},
    {"phase_rotate", [](World& w) { return vantel_phase_rotate(w.controls.data(), 2, 0.5F); }, true},
    {"swap", [](World& w) { return vantel_swap(w.a.get(), w.c.get(), w.controls.data(), 1); }, true},
    {"i_swap", [](World& w) { return vantel_i_swap(w.a.get(), w.c.get(), 0.5F, w.controls.data(), 1); },
     true},
    {"measure",
     [](World& w) {
         const RandomSource source(5);
         QuantumProperty* list[]{w.c.get(), w.b.get()};
         int levels[2];
         return vantel_measure(list, 2, levels);
     },
     true},
    {"probabilities", [](World& w) { return w.probabilities().empty() ? -1 : 0; }, true},
    {"density_matrix",
     [](World& w) {
         QuantumProperty* list[]{w.c.get(), w.b.get()};
         float parts[2][144];
         return vantel_reduced_density_matrix(list, 2, parts[0], parts[1], 144);
     },
     true},
};

class AllocationFailure : public ::testing::TestWithParam<Call> {};

TEST_P(AllocationFailure, LeavesHandlesUsableStatesAsToldAndNothingBehind) {
    const std::vector<float> untouched = World().probabilities();
    bool failed = true;
    for (long allowed = 0; failed; ++allowed) {
        SCOPED_TRACE("after " + std::to_string(allowed));
        ASSERT_LT(allowed, 500);
        const long before = live_allocations();
        {
            World world;
            bool passed_out = false;
            fail_allocations_after(allowed);
            try {
                GetParam().make(world);
            } catch (const std::bad_alloc&) {
                passed_out = true;
            }
            failed = stop_failing();
            if (passed_out && GetParam().all_or_nothing) {
                EXPECT_EQ(world.probabilities(), untouched);
            }
            EXPECT_EQ(GetParam().make(world), 0);
        }
        EXPECT_EQ(live_allocations(), before);
    }
}

INSTANTIATE_TEST_SUITE_P(Calls, AllocationFailure, ::testing::ValuesIn(calls),
                         [](const auto& tested) { return tested.param.name; });

TEST(AllocationFailureInRelease, EndsTheProcess) {
    World world;
    merge({world.a.get(), world.b.get()});
    EXPECT_EXIT((fail_allocations_after(0), world.a.reset()), ::testing::KilledBySignal(SIGABRT), "");
}

} // namespace
} // namespace vantel::testing
