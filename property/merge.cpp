#include "property/merge.hpp"

#include <cstddef>
#include <memory>
#include <utility>

#include "state/state_factory.hpp"

namespace vantel {

namespace {

/// Index arithmetic wraps in 32 bits.
int raised(int index, int offset) {
    return static_cast<int>(static_cast<unsigned>(index) + static_cast<unsigned>(offset));
}

} // namespace

qudit::IState* tensor_state(QuantumProperty& a, QuantumProperty& b) {
    if (a.shared_state->state == b.shared_state->state)
        return a.shared_state->state.get();
    // Kept alive until the walk below is through: moving b's last handle over gives up the last share.
    const std::shared_ptr<QuantumProperty::SharedState> into = a.shared_state;
    const std::shared_ptr<QuantumProperty::SharedState> from = b.shared_state;

    // All that can fail comes before all that changes.
    const int offset = static_cast<int>(into->state->num_qudits());
    std::unique_ptr<qudit::IState> product =
        qudit::tensor_product<qudit::MAX_QUDIT_DIMENSION, qudit::MAX_QUDIT_NUM>(*into->state, *from->state);
    into->properties.reserve(into->properties.size() + from->properties.size());
    if (!into->stale.empty() || !from->stale.empty())
        into->stale.resize(into->properties.size() + from->properties.size(), false);

    into->state = std::move(product);
    for (std::size_t i = 0; i < from->properties.size(); ++i) {
        QuantumProperty* const moved = from->properties[i];
        // A handle that stands here twice is raised twice, and names another qudit then. That is meant.
        const bool stale = from->is_stale(i);
        if (!stale) {
            moved->index = raised(moved->index, offset);
            moved->shared_state = into;
        }
        into->properties.push_back(moved);
        if (stale)
            into->stale[into->properties.size() - 1] = true;
    }
    return into->state.get();
}

qudit::IState& relate(QuantumProperty& anchor, const Predicates& predicates) {
    for (const QuantumProperty::Predicate& predicate : predicates)
        tensor_state(anchor, *predicate.property);
    return *anchor.shared_state->state;
}

qudit::IState* tensor_state(Targets targets, Predicates predicates) {
    if (targets.empty())
        return tensor_state(std::move(predicates));
    QuantumProperty& anchor = targets.front();
    for (QuantumProperty& target : targets)
        tensor_state(anchor, target);
    return &relate(anchor, predicates);
}

qudit::IState* tensor_state(Predicates predicates) {
    return predicates.empty() ? nullptr : &relate(*predicates.front().property, predicates);
}

qudit::IState* tensor_state(std::vector<QuantumProperty*> properties) {
    if (properties.empty())
        return nullptr;
    for (QuantumProperty* const property : properties)
        tensor_state(*properties.front(), *property);
    return properties.front()->shared_state->state.get();
}

} // namespace vantel
