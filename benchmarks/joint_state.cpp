#include "joint_state.hpp"
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <numeric>
#include <random>

namespace benchmarks {
namespace {
/// Raises a qudit by up to nine of its ten levels, the short way round.
void raise(QuantumProperty* target, std::uint_fast32_t levels, const std::vector<PredicateRecord>& conditions) {
    const auto step = levels <= 5 ? vantel_cycle : vantel_shift;
    for (auto steps = levels <= 5 ? levels : 10 - levels; steps > 0; --steps)
        expect_ok(step(target, 1, conditions.data(), conditions.size()));
}

/// Takes a ten-level qudit from level 0 to equal shares of its even levels: the transform of equal shares
/// of 0 and 5, which a qubit brings about.
void spread_over_even_levels(QuantumProperty* qudit) {
    QuantumProperty* const qubit = made(2);
    expect_ok(vantel_hadamard(qubit, nullptr, 0));
    raise(qudit, 5, {{qubit, 1, 1}});
    const PredicateRecord raised{qudit, 5, 1};
    expect_ok(vantel_cycle(qubit, 1, &raised, 1));
    expect_ok(vantel_free_quantum_property(qubit));
    expect_ok(vantel_hadamard(qudit, nullptr, 0));
}
} // namespace

void expect_ok(int status) {
    if (status == vantel_ok) return;
    std::cerr << "a state could not be prepared: status " << status << '\n';
    std::abort();
}

QuantumProperty* made(int dimension) {
    int status = vantel_ok;
    QuantumProperty* const qudit = vantel_make_quantum_property(dimension, &status);
    expect_ok(status);
    return qudit;
}

std::size_t Description::combinations() const {
    return std::accumulate(dimensions.begin(), dimensions.end(), std::size_t{1}, std::multiplies<>());
}

std::size_t Description::entries() const {
    if (shape == Shape::dense) return combinations();
    if (shape == Shape::idle) return combinations() / static_cast<std::size_t>(dimensions[dimensions.size() - 2]);
    if (shape == Shape::lacking)
        return combinations() -
               combinations() / static_cast<std::size_t>(dimensions[0] * dimensions[1] * dimensions[2] * dimensions[3]);
    return shape == Shape::scattered ? 50000 : shape == Shape::diagonal ? 2 : 1;
}

JointState::JointState(const Description& description, std::size_t condition_count) {
    for (const int dimension : description.dimensions) qudits.push_back(made(dimension));
    target = qudits[qudits.size() / 2];
    other = qudits.back();
    if (description.shape == Shape::dense || description.shape == Shape::idle)
        make_dense(description.shape == Shape::idle ? qudits.size() - 2 : qudits.size());
    else if (description.shape == Shape::lacking)
        make_lacking();
    else if (description.shape == Shape::diagonal)
        make_diagonal();
    else if (description.shape == Shape::scattered)
        make_scattered();
    for (std::size_t i = 0; i < condition_count; ++i)
        conditions.push_back({qudits[i], i == 0 ? 1 : 0, static_cast<unsigned char>(i == 0)});
}

JointState::~JointState() {
    // A list that a gate left over the limit could not be released.
    std::vector<int> levels(qudits.size());
    expect_ok(vantel_measure(qudits.data(), qudits.size(), levels.data()));
    for (QuantumProperty* const qudit : qudits) expect_ok(vantel_free_quantum_property(qudit));
}

void JointState::make_dense(std::size_t idle) {
    // The fractions keep every sum of a later transform clear of zero.
    for (std::size_t i = 0; i < qudits.size(); ++i) {
        if (i == idle) {
            const PredicateRecord never{qudits[i], -1, 1};
            expect_ok(vantel_cycle(target, 1, &never, 1));
            continue;
        }
        expect_ok(vantel_hadamard(qudits[i], nullptr, 0));
        expect_ok(vantel_clock(qudits[i], 0.37F, nullptr, 0));
        const PredicateRecord above{qudits[i == 0 ? 0 : i - 1], 1, 1};
        if (i > 0) expect_ok(vantel_clock(qudits[i], 0.25F, &above, 1));
    }
    expect_ok(vantel_hadamard(target, nullptr, 0));
}

void JointState::make_lacking() {
    make_dense(qudits.size());
    std::vector<PredicateRecord> highest;
    for (std::size_t i = 0; i < 4; ++i) highest.push_back({qudits[i], 2, 1});
    int answer = 0;
    expect_ok(vantel_stochastic_projection(highest.data(), highest.size(), &answer));
    if (answer == 0) return;
    // Once in a while only those entries are left: back to level 0, and once more.
    std::vector<int> levels(qudits.size());
    expect_ok(vantel_measure(qudits.data(), qudits.size(), levels.data()));
    for (std::size_t i = 0; i < qudits.size(); ++i)
        for (; levels[i] > 0; --levels[i]) expect_ok(vantel_shift(qudits[i], 1, nullptr, 0));
    make_lacking();
}

void JointState::make_diagonal() {
    expect_ok(vantel_hadamard(qudits[0], nullptr, 0));
    for (std::size_t i = 1; i < qudits.size(); ++i) raise(qudits[i], 1, {{qudits[0], 1, 1}});
}

void JointState::make_scattered() {
    spread_over_even_levels(qudits[0]);
    for (std::size_t i = 1; i < 5; ++i) expect_ok(vantel_hadamard(qudits[i], nullptr, 0));
    // Each step maps labels one to one, so their number stays while the digits mix.
    std::mt19937 generator(1);
    const std::size_t count = qudits.size();
    for (std::size_t i = 0; i < 5 * count; ++i) {
        const std::size_t raised = (5 + i) % count;
        const std::size_t source = (raised + 1 + generator() % (count - 1)) % count;
        const std::size_t second = (source + 1 + generator() % (count - 1)) % count;
        for (int level = 0; level < 10; ++level) raise(qudits[raised], generator() % 10, {{qudits[source], level, 1}});
        if (second != raised)
            raise(qudits[raised], 1 + generator() % 9, {{qudits[source], 3, 1}, {qudits[second], 0, 0}});
        expect_ok(vantel_clock(qudits[raised], 0.37F, nullptr, 0));
    }
}

OutcomeRecords::OutcomeRecords(std::size_t count, std::size_t columns) : rows(count), levels_(count * columns) {
    for (std::size_t i = 0; i < count; ++i) rows[i].qudit_values = levels_.data() + i * columns;
}
} // namespace benchmarks
