#include "interface/quantum_property.hpp"
#include "property/operations.hpp"
#include "state/reduction.hpp"
#include "tests/support/allocations.hpp"
#include "tests/support/handles.hpp"
#include "tests/support/random_source.hpp"
#include "tests/support/states.hpp"
#include <csignal>
#include <new>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

// Each allocation of each call fails in its turn, alone and with all after it.
namespace vantel::testing {
namespace {
constexpr int untouched = -7;

/// Qudits, conditions on the second and the third of them, and a caller's buffers.
struct World {
    explicit World(const std::vector<int>& dimensions) {
        for (const int dimension : dimensions) q.push_back(qudit_of(dimension));
        vantel_hadamard(q[0].get(), nullptr, 0);
        vantel_cycle(q[1].get(), 1.0F, nullptr, 0);
        vantel_hadamard(q[2].get(), nullptr, 0);
        conditions = {{q[1].get(), 1, 1}, {q[2].get(), 2, 0}};
    }
    QuantumProperty& operator[](std::size_t i) const { return *q[i]; }

    World& merge_all() {
        for (const Handle& handle : q) merge({q[0].get(), handle.get()});
        return *this;
    }

    /// Makes room for the table of these qudits and, where it has not too many rows, for their matrix.
    World& read(const std::vector<std::size_t>& qudits) {
        std::size_t side = 1;
        for (const std::size_t i : qudits) {
            list.push_back(q[i].get());
            side *= q[i]->shared_state->state->qudit_dimension(q[i]->index);
        }
        levels.assign(side * list.size(), untouched);
        for (std::size_t i = 0; i < side; ++i) rows.push_back({untouched, &levels[i * list.size()]});
        real.assign(side < 400 ? side * side : 0, untouched);
        imaginary = real;
        return *this;
    }

    std::vector<Handle> q;
    std::vector<PredicateRecord> conditions;
    std::vector<QuantumProperty*> list;
    std::vector<int> levels;
    std::vector<ProbabilityRecord> rows;
    std::vector<float> real, imaginary;
};

World separate() { return World({4, 3, 4}); }
World joint() { return std::move(separate().merge_all()); }
/// 1458 entries whose labels lie close together.
World large() {
    World world({9, 9, 9, 2});
    for (const std::size_t i : {1U, 3U}) vantel_hadamard(&world[i], nullptr, 0);
    return std::move(world.merge_all());
}
/// The same with labels far apart.
World scattered() {
    World world = large();
    for (int i = 0; i < 2; ++i) {
        world.q.push_back(qudit_of(10));
        vantel_shift(world.q.back().get(), 1.0F, nullptr, 0);
    }
    return std::move(world.merge_all());
}

/// 4 to 100 entries, for tables and matrices with many more places.
template <int dimension, int count> World joint_of() {
    return std::move(World(std::vector<int>(count, dimension)).merge_all());
}

/// Separate qudits, of which the first has had so many guests that one more takes its list of handles to the
/// heap.
World after_many_guests() {
    World world = separate();
    for (int i = 0; i < 9; ++i) {
        const Handle guest = qudit_of(2);
        merge({world.q[0].get(), guest.get()});
    }
    return world;
}

/// Everything that a caller can come to see of it.
std::string told(const World& world) {
    std::ostringstream text;
    text << std::hexfloat;
    for (const Handle& handle : world.q) {
        if (handle == nullptr) // after a release
            continue;
        const QuantumProperty::SharedState& shared = *handle->shared_state;
        text << "\nindex " << handle->index << " among";
        for (std::size_t i = 0; i < shared.properties.size(); ++i)
            for (std::size_t j = 0; j < world.q.size() && !shared.is_stale(i); ++j)
                if (shared.properties[i] == world.q[j].get()) text << ' ' << j;
        if (shared.properties[0] == handle.get())
            for (const Entry& entry : shared.state->basis_amplitudes()) text << '\n' << entry.dits << entry.amplitude;
    }
    for (const ProbabilityRecord& row : world.rows) text << '\n' << row.probability;
    for (const int level : world.levels) text << ' ' << level;
    for (const auto& parts : {world.real, world.imaginary})
        text.write(reinterpret_cast<const char*>(parts.data()),
                   static_cast<std::streamsize>(parts.size() * sizeof(float)));
    return text.str();
}

using Step = int (*)(World&);

struct Situation {
    const char* name;
    World (*begin)();
    Step call;
    std::vector<Step> stages = {}; ///< what a failure may leave done
    bool can_end_process = false;
    std::vector<std::size_t> listed = {2, 1}; ///< the qudits that a readout reads

    // By its bytes it would be printed with its padding, which valgrind takes for a fault.
    friend void PrintTo(const Situation& situation, std::ostream* out) { *out << situation.name; }
};

template <std::size_t A, std::size_t B> int merges(World& w) {
    tensor_state(w[A], w[B]);
    return 0;
}
template <Step... Steps> int in_turn(World& w) { return (Steps(w) | ...); }
template <std::size_t Conditions> int projection_broken_off(World& w) {
    QuantumProperty ancilla = make_quantum_property(2);
    for (std::size_t i = 0; i < Conditions; ++i) tensor_state(ancilla, *w.conditions[i].property);
    return 0;
}

constexpr Step hadamard = [](auto& w) { return vantel_hadamard(&w[0], w.conditions.data(), 2); };
constexpr Step shift = [](auto& w) { return vantel_shift(&w[0], 0.5F, w.conditions.data(), 2); };
constexpr Step half_clock = [](auto& w) { return vantel_clock(&w[0], 0.5F, w.conditions.data(), 2); };
constexpr Step i_swap = [](auto& w) { return vantel_i_swap(&w[0], &w[2], 0.5F, w.conditions.data(), 1); };
constexpr Step measure = [](auto& w) { return vantel_measure(w.list.data(), w.list.size(), w.levels.data()); };
constexpr Step probabilities = [](auto& w) {
    return vantel_probabilities(w.list.data(), w.list.size(), w.rows.data());
};
constexpr Step density_matrix = [](auto& w) {
    return vantel_reduced_density_matrix(w.list.data(), w.list.size(), w.real.data(), w.imaginary.data(),
                                         w.real.size());
};
constexpr Step projection = [](auto& w) {
    return vantel_stochastic_projection(w.conditions.data(), 2, w.levels.data());
};
constexpr Step release = [](auto& w) { return vantel_free_quantum_property(w.q[0].release()); };

const std::vector<Step> related{merges<0, 1>, in_turn<merges<0, 1>, merges<0, 2>>};
const std::vector<Step> exchange_related{merges<0, 2>, in_turn<merges<0, 2>, merges<0, 1>>};
const std::vector<Step> half_shifted{merges<0, 1>, in_turn<merges<0, 1>, merges<0, 2>>, hadamard,
                                     in_turn<hadamard, half_clock>};

const Situation situations[] = {
    {"version", separate, [](World&) { return vantel_version() == nullptr ? -1 : 0; }},
    {"make", separate, [](World&) { return qudit_of(5) ? 0 : -1; }},
    {"hadamard", separate, hadamard, related},
    {"inverse_hadamard", separate, [](auto& w) { return vantel_inverse_hadamard(&w[0], w.conditions.data(), 2); },
     related},
    {"hadamard_after_many_guests", after_many_guests, hadamard, related},
    {"hadamard_large", large, hadamard},
    {"hadamard_scattered", scattered, hadamard},
    {"cycle", separate, [](auto& w) { return vantel_cycle(&w[0], 1.0F, w.conditions.data(), 2); }, related},
    {"fractional_shift", separate, shift, half_shifted},
    {"fractional_shift_scattered", scattered, shift, half_shifted},
    {"clock", separate, half_clock, related},
    {"phase_rotate",
     separate,
     [](auto& w) { return vantel_phase_rotate(w.conditions.data(), 2, 0.5F); },
     {merges<1, 2>}},
    {"swap", separate, [](auto& w) { return vantel_swap(&w[0], &w[2], w.conditions.data(), 1); }, exchange_related},
    {"i_swap", separate, i_swap, exchange_related},
    {"i_swap_large", large, i_swap},
    {"i_swap_scattered", scattered, i_swap},
    {"measure", separate, measure, {merges<2, 1>}},
    {"measure_large", large, measure},
    {"probabilities", separate, probabilities, {merges<2, 1>}},
    {"density_matrix", separate, density_matrix, {merges<2, 1>}},
    {"density_matrix_scattered", scattered, density_matrix, {}, false, {1}},
    {"sparse_table", joint_of<10, 3>, probabilities, {}, false, {2, 0, 1}},
    {"sparse_table_of_many", joint_of<2, 10>, probabilities, {}, false, {9, 8, 7, 6, 5, 4, 3, 2, 1, 0}},
    {"sparse_table_scattered", scattered, probabilities, {}, false, {5, 2, 4, 1}},
    {"sparse_matrix", joint_of<10, 3>, density_matrix},
    {"sparse_matrix_of_many_rows", joint_of<7, 3>, density_matrix, {}, false, {1, 2, 0}},
    {"sparse_matrix_large", large, density_matrix},
    {"projection", separate, projection, {projection_broken_off<1>, projection_broken_off<2>}, true},
    {"projection_joint", joint, projection, {projection_broken_off<2>}, true},
    {"release", joint, release, {}, true},
    {"release_scattered", scattered, release, {}, true},
};

// What became of an attempt, beside the number of stages that stand.
constexpr int ended = 100, finished = 101, not_told = 102, unusable = 103, leaked = 104;

struct Attempt {
    int outcome;
    bool was_last; ///< no allocation failed
};

class AllocationFailure : public ::testing::TestWithParam<Situation> {
protected:
    AllocationFailure() {
        standing.push_back(told(begin()));
        for (const Step stage : situation.stages) standing.push_back(told_after(stage));
        done = told_after(situation.call);
    }

    World begin() const { return std::move(situation.begin().read(situation.listed)); }

    std::string told_after(Step step) const {
        World world = begin();
        const RandomSource source(5);
        EXPECT_EQ(step(world), 0);
        return told(world);
    }

    Attempt attempt(long allowed, Failing how) const {
        const long before = live_allocations();
        Attempt made{not_told, false};
        {
            World world = begin();
            const RandomSource source(5);
            bool passed_out = false;
            int status = -1;
            fail_allocations_after(allowed, how);
            try {
                status = situation.call(world);
            } catch (const std::bad_alloc&) {
                passed_out = true;
            }
            made.was_last = stop_failing() <= allowed;
            const std::string left = told(world);
            for (std::size_t i = 0; passed_out && i < standing.size(); ++i)
                if (left == standing[i]) made.outcome = static_cast<int>(i);
            if (status == 0 && left == done) made.outcome = finished;
            if (passed_out && situation.call(world) != 0) made.outcome = unusable;
        }
        return live_allocations() == before ? made : Attempt{leaked, made.was_last};
    }

    /// The same where the process may end.
    Attempt attempt_aside(long allowed, Failing how) const {
        const pid_t child = fork();
        if (child == 0) {
            close(STDERR_FILENO);
            const Attempt made = attempt(allowed, how);
            _exit(made.outcome + (made.was_last ? 128 : 0));
        }
        int status = 0;
        waitpid(child, &status, 0);
        if (WIFSIGNALED(status)) return {WTERMSIG(status) == SIGABRT ? ended : not_told, false};
        return {WEXITSTATUS(status) & 127, (WEXITSTATUS(status) & 128) != 0};
    }

    std::vector<int> outcomes(Failing how) const {
        std::vector<int> all;
        Attempt made{};
        while (!made.was_last && all.size() < 500) {
            const auto allowed = static_cast<long>(all.size());
            made = situation.can_end_process ? attempt_aside(allowed, how) : attempt(allowed, how);
            all.push_back(made.outcome);
        }
        return all;
    }

    const Situation situation = GetParam();
    std::vector<std::string> standing;
    std::string done;
};

TEST_P(AllocationFailure, LeavesAToldStateUsableHandlesAndNothingBehind) {
    const std::vector<int> once = outcomes(Failing::once);
    const std::vector<int> for_good = outcomes(Failing::from_then_on);
    // Stage after stage stands, then the release ends the process, then nothing can hinder the call.
    EXPECT_TRUE(std::is_sorted(once.begin(), once.end())) << ::testing::PrintToString(once);
    EXPECT_EQ(once.back(), finished) << ::testing::PrintToString(once);
    EXPECT_EQ(std::count(once.begin(), once.end(), ended) > 0, situation.can_end_process);

    std::vector<int> expected = once;
    if (situation.can_end_process) // once there is something to release, its release fails as well
        std::replace_if(
            expected.begin(), expected.end(), [](int o) { return o > 0 && o < ended; }, ended);
    EXPECT_EQ(for_good, expected);
}

INSTANTIATE_TEST_SUITE_P(Situations, AllocationFailure, ::testing::ValuesIn(situations),
                         [](const auto& tested) { return tested.param.name; });

TEST(Reduction, LeavesTheSameWithoutScratchMemory) {
    std::vector<qudit::PackedAmplitude> list;
    for (std::uint64_t i = 0; i < 1000; ++i)
        list.push_back({i * 617 % 400, 399, {1.0 / double(i + 1), static_cast<double>(i % 7) - 3.0}});
    std::vector<qudit::PackedAmplitude> same = list;
    const std::size_t kept = qudit::reduce_entries(list);
    fail_allocations_after(0, Failing::from_then_on);
    const std::size_t kept_without = qudit::reduce_entries(same);
    stop_failing();
    ASSERT_EQ(kept_without, kept);
    for (std::size_t i = 0; i < kept; ++i) {
        EXPECT_EQ(same[i].values, list[i].values);
        EXPECT_TRUE(same_bits(same[i].amplitude, list[i].amplitude));
    }
}

TEST(Status, IsWrittenBeforeAnAllocationCanFail) {
    int status = 77;
    fail_allocations_after(0, Failing::once);
    EXPECT_THROW(vantel_make_quantum_property(2, &status), std::bad_alloc);
    stop_failing();
    EXPECT_EQ(status, vantel_ok);
}
} // namespace
} // namespace vantel::testing
