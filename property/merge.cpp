#include "property/merge.hpp"

#include <cstddef>
#include <memory>
#include <utility>

#include "state/state_factory.hpp"

namespace vantel {

namespace {

/// Collects the joint state of a list that comes one property at a time. The first is the anchor.
class Merge {
public:
    void add(QuantumProperty& property) {
        if (anchor_ == nullptr)
            anchor_ = &property;
        else
            tensor_state(*anchor_, property);
    }

    [[nodiscard]] qudit::IState* joint_state() const {
        return anchor_ == nullptr ? nullptr : anchor_->shared_state->state.get();
    }

private:
    QuantumProperty* anchor_ = nullptr;
};

/// Index arithmetic wraps in 32 bits.
int raised(int index, int offset) {
    return static_cast<int>(static_cast<unsigned>(index) + static_cast<unsigned>(offset));
}

} // namespace

qudit::IState* tensor_state(QuantumProperty& a, QuantumProperty& b) {
    // Kept alive until the walk below is through: moving b's last handle over gives up the last share.
    const std::shared_ptr<QuantumProperty::SharedState> into = a.shared_state;
    const std::shared_ptr<QuantumProperty::SharedState> from = b.shared_state;
    if (into->state == from->state)
        return into->state.get();

    // All that can fail comes before all that changes.
    const int offset = static_cast<int>(into->state->num_qudits());
    std::unique_ptr<qudit::IState> product =
        qudit::tensor_product<qudit::MAX_QUDIT_DIMENSION, qudit::MAX_QUDIT_NUM>(*into->state, *from->state);
    into->properties.reserve(into->properties.size() + from->properties.size());
    into->stale.reserve(into->stale.size() + from->stale.size());

    into->state = std::move(product);
    for (std::size_t i = 0; i < from->properties.size(); ++i) {
        QuantumProperty* const moved = from->properties[i];
        // A handle that stands here twice is raised twice, and names another qudit then. That is meant.
        if (!from->stale[i]) {
            moved->index = raised(moved->index, offset);
            moved->shared_state = into;
        }
        into->properties.push_back(moved);
        into->stale.push_back(from->stale[i]);
    }
    return into->state.get();
}

qudit::IState* tensor_state(Targets targets, Predicates predicates) {
    Merge merge;
    for (QuantumProperty& target : targets)
        merge.add(target);
    for (const QuantumProperty::Predicate& predicate : predicates)
        merge.add(*predicate.property);
    return merge.joint_state();
}

qudit::IState* tensor_state(Predicates predicates) {
    return tensor_state(Targets{}, std::move(predicates));
}

qudit::IState* tensor_state(std::vector<QuantumProperty*> properties) {
    Merge merge;
    for (QuantumProperty* const property : properties)
        merge.add(*property);
    return merge.joint_state();
}

} // namespace vantel
