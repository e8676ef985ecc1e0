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

/// Takes a ten-level qudit from level 0 to equal shares of its even levels: the transform of equal shares of 0 and 5,
/// which a qubit brings about.
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
    const auto d = static_cast<std::size_t>(dimensions[dimensions.size() < 2 ? 0 : dimensions.size() - 2]);
    std::size_t highest = 1; // combinations of the levels of four qudits, of which the highest ones are gone
    for (std::size_t i = 0; i < dimensions.size() && i < 4; ++i) highest *= static_cast<std::size_t>(dimensions[i]);
    switch (shape) {
    case Shape::single: return 1;
    case Shape::dense: return combinations();
    case Shape::lacking: return combinations() - combinations() / highest;
    case Shape::idle:
    case Shape::measured: return combinations() / d;
    case Shape::diagonal: return 2;
    case Shape::ghz: return d;
    case Shape::w: return dimensions.size();
    case Shape::scattered: return scattered_count;
    }
    return 0;
}

JointState::JointState(const Description& description, std::size_t condition_count)
    : dimensions_(description.dimensions) {
    make_qudits();
    const std::size_t count = qudits.size();
    switch (description.shape) {
    case Shape::single: break;
    case Shape::dense: make_dense(count); break;
    case Shape::idle: make_dense(count - 2); break;
    case Shape::lacking: make_lacking(); break;
    case Shape::measured: make_measured(); break;
    case Shape::diagonal: make_diagonal(); break;
    case Shape::ghz: make_ghz(); break;
    case Shape::w: make_w(); break;
    case Shape::scattered: make_scattered(description.scattered_count); break;
    }
    for (std::size_t i = 0; i < condition_count; ++i)
        conditions.push_back({qudits[i], i == 0 ? 1 : 0, static_cast<unsigned char>(i == 0)});
    if (description.never_met && !conditions.empty()) conditions[0].property = qudits[count - 2];
}

JointState::~JointState() { free_qudits(); }

void JointState::make_qudits() {
    qudits.clear();
    for (const int dimension : dimensions_) qudits.push_back(made(dimension));
    target = qudits[qudits.size() / 2];
    other = qudits.back();
}

void JointState::free_qudits() {
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
    for (std::size_t i = 0; i < 4 && i < qudits.size(); ++i) highest.push_back({qudits[i], dimensions_[i] - 1, 1});
    int answer = 0;
    expect_ok(vantel_stochastic_projection(highest.data(), highest.size(), &answer));
    if (answer == 0) return;
    // Once in a while only those entries are left. Qudits that were asked are not asked again.
    free_qudits();
    make_qudits();
    make_lacking();
}

void JointState::make_measured() {
    make_dense(qudits.size());
    int level = 0;
    expect_ok(vantel_measure(&qudits[qudits.size() - 2], 1, &level));
}

void JointState::make_ghz() {
    expect_ok(vantel_hadamard(qudits[0], nullptr, 0));
    for (std::size_t i = 1; i < qudits.size(); ++i)
        for (int level = 1; level < dimensions_[0]; ++level)
            raise(qudits[i], static_cast<std::uint_fast32_t>(level), {{qudits[0], level, 1}});
}

void JointState::make_w() {
    // A pointer says which qudit is raised; measured in the other basis, it leaves phases and no more.
    QuantumProperty* const pointer = made(static_cast<int>(qudits.size()));
    expect_ok(vantel_hadamard(pointer, nullptr, 0));
    for (std::size_t i = 0; i < qudits.size(); ++i) raise(qudits[i], 1, {{pointer, static_cast<int>(i), 1}});
    expect_ok(vantel_hadamard(pointer, nullptr, 0));
    QuantumProperty* listed = pointer;
    int level = 0;
    expect_ok(vantel_measure(&listed, 1, &level));
    expect_ok(vantel_free_quantum_property(pointer));
}

void JointState::make_diagonal() {
    expect_ok(vantel_hadamard(qudits[0], nullptr, 0));
    for (std::size_t i = 1; i < qudits.size(); ++i) raise(qudits[i], 1, {{qudits[0], 1, 1}});
}

void JointState::make_scattered(std::size_t entries) {
    std::size_t spread = 0;
    for (; entries > 5; entries /= 10) expect_ok(vantel_hadamard(qudits[++spread], nullptr, 0));
    if (entries == 5) spread_over_even_levels(qudits[0]);
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
