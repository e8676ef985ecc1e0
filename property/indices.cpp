#include "property/operations.hpp"

namespace vantel {

std::vector<qudit::Predicate> convert_to_indexed_predicates(Predicates predicates) {
    std::vector<qudit::Predicate> controls(predicates.size());
    for (std::size_t i = 0; i < predicates.size(); ++i)
        controls[i] = {predicates[i].property->index, predicates[i].value, predicates[i].is_equal};
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
