#include "property/operations.hpp"
#include <algorithm>
#include <utility>

namespace vantel {
namespace {
/// The present index of each property, in list order. Good only until the next merge or release, which renumber
/// handles.
std::vector<int> indices_of(Properties properties) {
    std::vector<int> indices(properties.size());
    std::transform(properties.begin(), properties.end(), indices.begin(),
                   [](const QuantumProperty* property) { return property->index; });
    return indices;
}
} // namespace

// Each merges first and reads the indices second: a merge renumbers handles.

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
