#include "property/merge.hpp"
#include "state/state_factory.hpp"
#include <cstddef>
#include <memory>
#include <utility>

namespace vantel {
namespace {
/// Index arithmetic wraps in 32 bits.
int raised(int index, int offset) {
    return static_cast<int>(static_cast<unsigned>(index) + static_cast<unsigned>(offset));
}

void merge(QuantumProperty& a, QuantumProperty& b) {
    // All that can fail comes before all that changes.
    const std::shared_ptr<QuantumProperty::SharedState>& into = a.shared_state;
    const int offset = static_cast<int>(into->state->num_qudits());
    std::unique_ptr<qudit::IState> product =
        qudit::tensor_product<qudit::MAX_QUDIT_DIMENSION, qudit::MAX_QUDIT_NUM>(*into->state, *b.shared_state->state);
    const std::size_t before = into->properties.size();
    const std::size_t together = before + b.shared_state->properties.size();
    into->properties.reserve(together);
    if (into->stale.size() > 0 || b.shared_state->stale.size() > 0) into->stale.grow(together, 0);

    into->state = std::move(product);
    // Kept alive until the walk is through, in which b gets its new share and the last old one is given up.
    const std::shared_ptr<QuantumProperty::SharedState> from = std::move(b.shared_state);
    for (std::size_t i = 0; i < from->properties.size(); ++i) {
        QuantumProperty* const moved = from->properties[i];
        into->properties.push_back(moved);
        if (from->is_stale(i)) {
            into->stale[before + i] = 1;
            continue;
        }
        // A handle that stands here twice is raised twice, and names another qudit then. That is deliberate.
        moved->index = raised(moved->index, offset);
        moved->shared_state = into;
    }
}
} // namespace

qudit::IState* tensor_state(QuantumProperty& a, QuantumProperty& b) {
    if (a.shared_state->state != b.shared_state->state) merge(a, b);
    return a.shared_state->state.get();
}

qudit::IState* tensor_state(Properties properties, Predicates predicates) {
    if (properties.empty() && predicates.empty()) return nullptr;
    QuantumProperty& anchor = properties.empty() ? *predicates.front().property : *properties.front();
    for (QuantumProperty* const property : properties) tensor_state(anchor, *property);
    for (const QuantumProperty::Predicate& predicate : predicates) tensor_state(anchor, *predicate.property);
    return anchor.shared_state->state.get();
}
} // namespace vantel
