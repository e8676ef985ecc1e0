#include <utility>

#include "property/operations.hpp"

namespace vantel {

namespace {

using Indices = std::vector<int>;
using Controls = std::vector<qudit::Predicate>;

/// Merges first and reads the indices second: a merge renumbers handles.
/// @param gate  called with the joint state, the target's index in a list, and the indexed conditions
template <class Gate> void act_on(QuantumProperty& target, Predicates& predicates, Gate gate) {
    qudit::IState& state = relate(target, predicates);
    Controls controls = convert_to_indexed_predicates(std::move(predicates));
    gate(state, Indices{target.index}, std::move(controls));
}

} // namespace

void hadamard(QuantumProperty& target, Predicates predicates) {
    act_on(target, predicates, [](qudit::IState& state, Indices targets, Controls controls) {
        state.hadamard(std::move(targets), std::move(controls));
    });
}

void inverse_hadamard(QuantumProperty& target, Predicates predicates) {
    act_on(target, predicates, [](qudit::IState& state, Indices targets, Controls controls) {
        state.inverse_hadamard(std::move(targets), std::move(controls));
    });
}

void cycle(QuantumProperty& target, Predicates predicates) {
    act_on(target, predicates, [](qudit::IState& state, Indices targets, Controls controls) {
        state.cycle(std::move(targets), std::move(controls));
    });
}

void cycle(QuantumProperty& target, float fraction, Predicates predicates) {
    act_on(target, predicates, [fraction](qudit::IState& state, Indices targets, Controls controls) {
        state.cycle(std::move(targets), fraction, std::move(controls));
    });
}

void shift(QuantumProperty& target, Predicates predicates) {
    act_on(target, predicates, [](qudit::IState& state, Indices targets, Controls controls) {
        state.shift(std::move(targets), std::move(controls));
    });
}

void shift(QuantumProperty& target, float fraction, Predicates predicates) {
    act_on(target, predicates, [fraction](qudit::IState& state, Indices targets, Controls controls) {
        state.shift(std::move(targets), fraction, std::move(controls));
    });
}

void clock(QuantumProperty& target, Predicates predicates) {
    act_on(target, predicates, [](qudit::IState& state, Indices targets, Controls controls) {
        state.clock(std::move(targets), std::move(controls));
    });
}

void clock(QuantumProperty& target, float fraction, Predicates predicates) {
    act_on(target, predicates, [fraction](qudit::IState& state, Indices targets, Controls controls) {
        state.clock(std::move(targets), fraction, std::move(controls));
    });
}

void phase_rotate(Predicates predicates, float angle) {
    if (predicates.empty())
        return;
    qudit::IState& state = relate(*predicates.front().property, predicates);
    state.phase_rotate(convert_to_indexed_predicates(std::move(predicates)), angle);
}

void swap(QuantumProperty& first, QuantumProperty& second, Predicates predicates) {
    tensor_state(first, second);
    qudit::IState& state = relate(first, predicates);
    Controls controls = convert_to_indexed_predicates(std::move(predicates));
    state.swap(first.index, second.index, std::move(controls));
}

void i_swap(QuantumProperty& first, QuantumProperty& second, float fraction, Predicates predicates) {
    tensor_state(first, second);
    qudit::IState& state = relate(first, predicates);
    Controls controls = convert_to_indexed_predicates(std::move(predicates));
    state.i_swap(first.index, second.index, fraction, std::move(controls));
}

} // namespace vantel
