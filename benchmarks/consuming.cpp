#include "register.hpp"
#include <benchmark/benchmark.h>
#include <ctime>
#include <string>

namespace benchmarks {
namespace {
double processor_seconds() {
    std::timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
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

void add(const std::string& operation, const Description& description,
         void (*loop)(benchmark::State&, const Description&)) {
    // Few, because a joint state's list of handles never becomes shorter.
    const int iterations = description.entries() <= 10000 ? 50 : 4;
    benchmark::RegisterBenchmark((operation + "/" + description.name + "/0").c_str(), loop, description)
        ->UseManualTime()
        ->Iterations(iterations);
}

/// A call that leaves another state behind.
template <auto call> void anew(benchmark::State& run, const Description& description) {
    for (auto _ : run) {
        JointState state(description);
        const double start = processor_seconds();
        call(state);
        run.SetIterationTime(processor_seconds() - start);
    }
}

/// A guest joins the other qudits and leaves again: in superposition where that makes a dense state, and in level 0
/// where the others have all the entries.
template <bool merging> void guest(benchmark::State& run, const Description& description) {
    Description others = description;
    others.dimensions.pop_back();
    JointState host(others);
    for (auto _ : run) {
        QuantumProperty* const guest = made(description.dimensions.back());
        if (description.shape == Shape::dense) expect_ok(vantel_hadamard(guest, nullptr, 0));
        const double start = processor_seconds();
        relate(host.target, guest);
        const double related = processor_seconds();
        expect_ok(vantel_free_quantum_property(guest));
        run.SetIterationTime(merging ? related - start : processor_seconds() - related);
        renormalise(host.target);
    }
}

void measure(JointState& state) {
    int level = 0;
    expect_ok(vantel_measure(&state.target, 1, &level));
}

void project(JointState& state) {
    const PredicateRecord one{state.target, 1, 1};
    int answer = 0;
    expect_ok(vantel_stochastic_projection(&one, 1, &answer));
}

// On the scattered state these leave the list over the limit, which is reported and is no concern here.
void transform(JointState& state) { vantel_hadamard(state.target, nullptr, 0); }
void transform_back(JointState& state) { vantel_inverse_hadamard(state.target, nullptr, 0); }
void exchange(JointState& state) { vantel_i_swap(state.target, state.other, 0.3F, nullptr, 0); }

void version(benchmark::State& run) {
    for (auto _ : run) benchmark::DoNotOptimize(vantel_version());
}

void make_free(benchmark::State& run) {
    for (auto _ : run) expect_ok(vantel_free_quantum_property(made(2)));
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
    if (description.transforms_only) return;
    add("measure", description, anew<measure>);
    if (description.shape == Shape::scattered) {
        add("hadamard", description, anew<transform>);
        add("inverse_hadamard", description, anew<transform_back>);
        add("i_swap", description, anew<exchange>);
    }
    // The call needs a place among the ten for itself.
    if (description.dimensions.size() < 10) add("stochastic_projection", description, anew<project>);
    if (description.dimensions.size() > 1 && description.shape != Shape::diagonal) {
        add("merge", description, guest<true>);
        add("release", description, guest<false>);
    }
}
} // namespace benchmarks
