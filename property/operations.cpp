#include "property/operations.hpp"
#include <initializer_list>

namespace vantel {
using qudit::Gate;

// All that acts merges first and reads the indices second: a merge renumbers handles.
namespace {
constexpr auto index_of = [](const QuantumProperty* property) { return property->index; };

void act(Gate::Kind kind, float number, std::initializer_list<QuantumProperty*> targets, Predicates predicates) {
    qudit::IState* const state = tensor_state({targets.begin(), targets.size()}, predicates);
    if (state == nullptr) return;
    std::array<int, 2> indices;
    std::transform(targets.begin(), targets.end(), indices.begin(), index_of);
    ShortList<qudit::Predicate, qudit::MAX_QUDIT_NUM> controls(predicates.size());
    std::transform(predicates.begin(), predicates.end(), controls.begin(),
                   [](const QuantumProperty::Predicate& predicate) {
                       return qudit::Predicate{predicate.property->index, predicate.value, predicate.is_equal};
                   });
    state->act({kind, number, std::span(indices).first(targets.size()), controls});
}

std::vector<int> indices_of(Properties properties) {
    std::vector<int> indices(properties.size());
    std::transform(properties.begin(), properties.end(), indices.begin(), index_of);
    return indices;
}
} // namespace

void hadamard(QuantumProperty& target, Predicates predicates) { act(Gate::hadamard, 0, {&target}, predicates); }
void inverse_hadamard(QuantumProperty& target, Predicates predicates) {
    act(Gate::inverse_hadamard, 0, {&target}, predicates);
}
void cycle(QuantumProperty& target, Predicates predicates) { act(Gate::cycle, 0, {&target}, predicates); }
void cycle(QuantumProperty& target, float fraction, Predicates predicates) {
    act(Gate::fractional_cycle, fraction, {&target}, predicates);
}
void shift(QuantumProperty& target, Predicates predicates) { act(Gate::shift, 0, {&target}, predicates); }
void shift(QuantumProperty& target, float fraction, Predicates predicates) {
    act(Gate::fractional_shift, fraction, {&target}, predicates);
}
void clock(QuantumProperty& target, Predicates predicates) { act(Gate::clock, 0, {&target}, predicates); }
void clock(QuantumProperty& target, float fraction, Predicates predicates) {
    act(Gate::fractional_clock, fraction, {&target}, predicates);
}
void phase_rotate(Predicates predicates, float angle) { act(Gate::phase_rotate, angle, {}, predicates); }
void swap(QuantumProperty& first, QuantumProperty& second, Predicates predicates) {
    act(Gate::swap, 0, {&first, &second}, predicates);
}
void i_swap(QuantumProperty& first, QuantumProperty& second, float fraction, Predicates predicates) {
    act(Gate::i_swap, fraction, {&first, &second}, predicates);
}

std::vector<int> measure(Properties properties) {
    if (properties.empty()) return {};
    qudit::IState& state = *tensor_state(properties);
    return state.measure(indices_of(properties));
}

int measure(Predicates predicates) {
    // A two-level ancilla in front of the joint state, flipped where the conditions hold, carries the answer; its
    // destruction takes it out again.
    QuantumProperty ancilla = make_quantum_property(2);
    cycle(ancilla, predicates);
    QuantumProperty* const alone[] = {&ancilla};
    return measure(alone).front();
}

qudit::ProbabilityTable probabilities(Properties properties) {
    if (properties.empty()) return {};
    const qudit::IState& state = *tensor_state(properties);
    return {state, indices_of(properties), value_permutations(properties)};
}

qudit::DensityMatrix reduced_density_matrix(Properties properties, const qudit::ValuePermutations& permutations) {
    if (properties.empty()) return {};
    const qudit::IState& state = *tensor_state(properties);
    return {state, indices_of(properties), permutations};
}

qudit::ValuePermutations value_permutations(Properties properties) {
    std::vector<std::uint64_t> dimensions(properties.size());
    std::transform(properties.begin(), properties.end(), dimensions.begin(), [](const QuantumProperty* property) {
        return property->shared_state->state->qudit_dimension(property->index);
    });
    return qudit::ValuePermutations(std::move(dimensions));
}
} // namespace vantel
