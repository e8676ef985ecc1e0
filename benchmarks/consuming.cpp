#include <ctime>
#include <memory>

#include <benchmark/benchmark.h>

#include "register.hpp"

namespace benchmarks {

namespace {

double processor_seconds() {
    std::timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

template <class Timed> void time(benchmark::State& run, Timed timed) {
    const double start = processor_seconds();
    timed();
    run.SetIterationTime(processor_seconds() - start);
}

/// Joins two qudits by a gate that selects nothing.
void relate(QuantumProperty* first, QuantumProperty* second) {
    const PredicateRecord never[] = {{first, -1, 1}, {second, -1, 1}};
    expect_ok(vantel_phase_rotate(never, 2, 0));
}

/// Brings the norm back to 1 by measuring a fresh qudit.
void renormalise(QuantumProperty* qudit) {
    QuantumProperty* fresh = made(2);
    int level = 0;
    relate(qudit, fresh);
    expect_ok(vantel_measure(&fresh, 1, &level));
    expect_ok(vantel_free_quantum_property(fresh));
}

template <class Timed>
void add(const std::string& operation, const Description& description, bool rebuilt, Timed timed) {
    const std::size_t entries = description.entries();
    // Few, because a joint state's list of handles never becomes shorter.
    const int iterations = entries <= 10000 ? 50 : rebuilt ? 2 : 5;
    benchmark::RegisterBenchmark((operation + "/" + description.name + "/0").c_str(), timed)
        ->UseManualTime()
        ->Iterations(iterations);
}

/// A call that leaves another state behind, which is restored from a definite target or made anew.
void add_call(const std::string& operation, const Description& description, bool restorable,
              void (*call)(JointState&)) {
    add(operation, description, !restorable, [=](benchmark::State& run) {
        auto state = std::make_unique<JointState>(description);
        for (auto _ : run) {
            time(run, [&] { call(*state); });
            if (!restorable) {
                state = std::make_unique<JointState>(description);
            } else {
                int level = 0;
                expect_ok(vantel_measure(&state->target, 1, &level));
                expect_ok(vantel_hadamard(state->target, nullptr, 0));
            }
        }
    });
}

/// A guest joins the other qudits and leaves again: in superposition where that makes a dense state, and
/// in level 0 where the others have all the entries.
void add_guest(const std::string& operation, const Description& description, bool merging) {
    Description others = description;
    others.dimensions.pop_back();
    const bool dense = description.shape == Shape::dense;
    add(operation, description, false, [=](benchmark::State& run) {
        JointState host(others);
        for (auto _ : run) {
            QuantumProperty* const guest = made(description.dimensions.back());
            if (dense)
                expect_ok(vantel_hadamard(guest, nullptr, 0));
            if (merging)
                time(run, [&] { relate(host.target, guest); });
            else
                relate(host.target, guest);
            if (merging)
                expect_ok(vantel_free_quantum_property(guest));
            else
                time(run, [&] { expect_ok(vantel_free_quantum_property(guest)); });
            renormalise(host.target);
        }
    });
}

void version(benchmark::State& run) {
    for (auto _ : run)
        benchmark::DoNotOptimize(vantel_version());
}

void make_free(benchmark::State& run) {
    for (auto _ : run)
        expect_ok(vantel_free_quantum_property(made(2)));
}

void pair(benchmark::State& run) {
    for (auto _ : run) {
        QuantumProperty* const control = made(2);
        QuantumProperty* const target = made(2);
        const PredicateRecord lowest{control, 0, 1};
        expect_ok(vantel_cycle(target, 1, &lowest, 1));
        expect_ok(vantel_free_quantum_property(control));
        expect_ok(vantel_free_quantum_property(target));
    }
}

} // namespace

void register_lifetimes() {
    benchmark::RegisterBenchmark("version", version);
    benchmark::RegisterBenchmark("make_free", make_free);
    benchmark::RegisterBenchmark("pair", pair);
}

void register_consuming(const Description& description) {
    if (description.transforms_only)
        return;
    add_call("measure", description, description.shape == Shape::dense, [](JointState& state) {
        int level = 0;
        expect_ok(vantel_measure(&state.target, 1, &level));
    });
    if (description.shape == Shape::scattered) {
        // The list grows past the limit, which is reported and is no concern here.
        add_call("hadamard", description, false,
                 [](JointState& s) { vantel_hadamard(s.target, nullptr, 0); });
        add_call("inverse_hadamard", description, false,
                 [](JointState& s) { vantel_inverse_hadamard(s.target, nullptr, 0); });
        add_call("i_swap", description, false,
                 [](JointState& s) { expect_ok(vantel_i_swap(s.target, s.other, 0.3F, nullptr, 0)); });
    }
    if (description.dimensions.size() < 10)
        // It leaves handles that stand twice in their joint state, which cannot be merged again.
        add_call("stochastic_projection", description, false, [](JointState& state) {
            const PredicateRecord one{state.target, 1, 1};
            int answer = 0;
            expect_ok(vantel_stochastic_projection(&one, 1, &answer));
        });
    if (description.dimensions.size() > 1 && description.shape != Shape::diagonal) {
        add_guest("merge", description, true);
        add_guest("release", description, false);
    }
}

} // namespace benchmarks
