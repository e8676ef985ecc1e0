#include <algorithm>

#include "property/operations.hpp"

namespace vantel {

std::vector<qudit::Predicate> convert_to_indexed_predicates(Predicates predicates) {
    std::vector<qudit::Predicate> controls(predicates.size());
    std::transform(predicates.begin(), predicates.end(), controls.begin(), indexed);
    return controls;
}

std::vector<int> to_index_list(std::vector<QuantumProperty*> properties) {
    std::vector<int> indices;
    indices.reserve(properties.size());
    for (const QuantumProperty* const property : properties)
        indices.push_back(property->index);
    return indices;
}

std::vector<int> to_index_list(Targets properties) {
    std::vector<int> indices;
    indices.reserve(properties.size());
    for (const QuantumProperty& property : properties)
        indices.push_back(property.index);
    return indices;
}

} // namespace vantel
