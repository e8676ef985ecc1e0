/// What users run, from the first qudit made to the last one freed, by the companion.
#include "register.hpp"
#include "vantel_noise.hpp"
#include <benchmark/benchmark.h>
#include <cmath>
#include <numbers>
#include <random>
#include <string>
#include <vector>

namespace benchmarks {
namespace {
using vantel::Condition;
using vantel::Qudit;
using Qudits = std::vector<Qudit>;

void expect(bool holds) { expect_ok(holds ? vantel_ok : vantel_null_property); }

void pair() {
    Qudit first(2), second(2);
    vantel::prepare_bell(first, second);
    const auto [a, b] = vantel::measure(first, second);
    expect(a == b);
}

void ghz(std::size_t qudits, int dimension) {
    Qudits all = vantel::make_register(qudits, dimension);
    vantel::prepare_ghz(all);
    const std::vector<int> levels = vantel::measure(all);
    expect(levels.front() == levels.back());
}

/// Of a qudit of `dimension` levels; what arrives is measured in the basis in which it was made.
void teleportation(int dimension) {
    Qudit message(dimension), here(dimension), there(dimension);
    vantel::cycle(message);
    vantel::hadamard(message);
    vantel::prepare_bell(here, there);
    vantel::inverse_sum(message, here);
    vantel::hadamard(message);
    const auto [phase, offset] = vantel::measure(message, here);
    vantel::add(there, -offset);
    vantel::clock(there, static_cast<float>(phase));
    vantel::inverse_hadamard(there);
    expect(vantel::measure(there) == 1);
}

/// Every qubit of the marked item is in level 1.
void grover(std::size_t qubits) {
    Qudits all = vantel::make_register(qubits, 2);
    std::vector<Condition> marked, zero;
    for (const Qudit& qubit : all) {
        marked.push_back(qubit == 1);
        zero.push_back(qubit == 0);
    }
    const auto everywhere = [&] {
        for (Qudit& qubit : all) vantel::hadamard(qubit);
    };
    everywhere();
    const auto rounds = static_cast<int>(std::numbers::pi / 4 * std::exp2(static_cast<double>(qubits) / 2));
    for (int i = 0; i < rounds; ++i) {
        vantel::phase_rotate(marked, std::numbers::pi);
        everywhere();
        vantel::phase_rotate(zero, std::numbers::pi);
        everywhere();
    }
    expect(vantel::probabilities(all)[(std::size_t{1} << qubits) - 1].probability > 0.99F);
}

/// There and back, from the level 0 that the transform spreads over all labels.
void fourier(std::size_t qudits, int dimension) {
    Qudits all = vantel::make_register(qudits, dimension);
    vantel::fourier_transform(all);
    vantel::inverse_fourier_transform(all);
    for (const int level : vantel::measure(all)) expect(level == 0);
}

void random_gate(Qudits& all, std::mt19937& draw) {
    const auto below = [&](std::size_t count) { return draw() % count; };
    const std::size_t first = below(all.size()), other = (first + 1 + below(all.size() - 1)) % all.size();
    Qudit& target = all[first];
    const Condition when = all[other] == static_cast<int>(below(2));
    switch (below(5)) {
    case 0: return vantel::hadamard(target);
    case 1: return vantel::cycle(target, {when});
    case 2: return vantel::clock(target, 0.3F);
    case 3: return vantel::clock(target, 0.7F, {when});
    default: return vantel::swap_levels(target, all[other]);
    }
}

/// The same gates each time, from equal shares of all labels; after each of them `noise` acts.
template <class Noise> void circuit(std::size_t qudits, int dimension, int gates, Noise noise) {
    std::mt19937 draw(1);
    Qudits all = vantel::make_register(qudits, dimension);
    for (Qudit& qudit : all) vantel::hadamard(qudit);
    for (int i = 0; i < gates; ++i) {
        random_gate(all, draw);
        noise(all[draw() % qudits]);
    }
    benchmark::DoNotOptimize(vantel::measure(all));
}

void random_circuit(std::size_t qudits, int dimension, int gates) {
    circuit(qudits, dimension, gates, [](Qudit&) {});
}

/// One of sixteen runs, which come in turn.
void trajectory(std::size_t qudits, int dimension, int gates) {
    static std::uint64_t run = 0;
    auto draw = vantel::generator_of_shot(1, run++ % 16);
    const auto mixing = vantel::depolarising(dimension, 0.05);
    circuit(qudits, dimension, gates, [&](Qudit& qudit) { mixing.apply(qudit, draw); });
}

template <class Program> void add(const std::string& name, Program program) {
    benchmark::RegisterBenchmark(("program/" + name).c_str(), [=](benchmark::State& run) {
        for (auto _ : run) program();
    });
}
} // namespace

void register_programs() {
    add("pair", pair);
    add("ghz/2^10", [] { ghz(10, 2); });
    add("ghz/10^10", [] { ghz(10, 10); });
    add("teleportation/2", [] { teleportation(2); });
    add("teleportation/10", [] { teleportation(10); });
    add("grover/2^5", [] { grover(5); });
    add("grover/2^10", [] { grover(10); });
    add("fourier/2^10", [] { fourier(10, 2); });
    add("fourier/3^10", [] { fourier(10, 3); });
    add("fourier/10^5", [] { fourier(5, 10); });
    add("random_circuit/2^10", [] { random_circuit(10, 2, 200); });
    add("random_circuit/10^3", [] { random_circuit(3, 10, 200); });
    add("random_circuit/10^5", [] { random_circuit(5, 10, 50); });
    add("trajectory/3^5", [] { trajectory(5, 3, 50); });
    add("trajectory/2^10", [] { trajectory(10, 2, 200); });
}
} // namespace benchmarks
