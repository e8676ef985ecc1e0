#include <utility>

#include "property/operations.hpp"

namespace vantel {

std::vector<int> measure(std::vector<QuantumProperty*> properties) {
    if (properties.empty())
        return {};
    qudit::IState& state = *tensor_state(properties);
    return state.measure(to_index_list(std::move(properties)));
}

std::vector<int> measure(Targets properties) {
    if (properties.empty())
        return {};
    qudit::IState& state = *tensor_state(properties, {});
    return state.measure(to_index_list(std::move(properties)));
}

int measure(const Predicates& predicates) {
    // A two-level ancilla in front of the joint state, flipped where the conditions hold, carries the
    // answer; its destruction takes it out again.
    QuantumProperty ancilla = make_quantum_property(2);
    relate(ancilla, predicates);
    act(qudit::Gate::cycle, 0, {&ancilla}, predicates);
    return measure(Targets{ancilla}).front();
}

std::vector<qudit::QuditsProbability> probabilities(std::vector<QuantumProperty*> properties) {
    if (properties.empty())
        return {};
    const qudit::IState& state = *tensor_state(properties);
    return state.probabilities(to_index_list(std::move(properties)));
}

std::vector<qudit::DensityMatrixEntry> reduced_density_matrix(std::vector<QuantumProperty*> properties) {
    if (properties.empty())
        return {};
    const qudit::IState& state = *tensor_state(properties);
    return state.reduced_density_matrix(to_index_list(std::move(properties)));
}

ReadoutSource readout_source(std::vector<QuantumProperty*> properties) {
    if (properties.empty())
        return {};
    const qudit::IState& state = *tensor_state(properties);
    return {&state, qudit::SlotLayout::of(state.dimension()), to_index_list(std::move(properties))};
}

} // namespace vantel
