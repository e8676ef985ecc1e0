#include "algorithms/short_list.hpp"
#include "property/operations.hpp"
#include "state/limits.hpp"
#include <algorithm>
#include <array>
#include <initializer_list>

namespace vantel {
using qudit::Gate;

namespace {
// Merges first and reads the indices second: a merge renumbers handles.
void act(Gate::Kind kind, float number, std::initializer_list<QuantumProperty*> targets, Predicates predicates) {
    qudit::IState* const state = tensor_state({targets.begin(), targets.size()}, predicates);
    if (state == nullptr) return;
    std::array<int, 2> indices;
    std::transform(targets.begin(), targets.end(), indices.begin(),
                   [](const QuantumProperty* target) { return target->index; });
    ShortList<qudit::Predicate, qudit::MAX_QUDIT_NUM> controls(predicates.size());
    std::transform(predicates.begin(), predicates.end(), controls.begin(),
                   [](const QuantumProperty::Predicate& predicate) {
                       return qudit::Predicate{predicate.property->index, predicate.value, predicate.is_equal};
                   });
    state->act({kind, number, std::span(indices).first(targets.size()), controls});
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
} // namespace vantel
