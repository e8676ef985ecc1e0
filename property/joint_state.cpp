/// How a qudit begins, comes into a joint state, and leaves it.
#include "property/operations.hpp"
#include "state/state_factory.hpp"

namespace vantel {
namespace {
using Factory = qudit::StateFactory<qudit::MAX_QUDIT_DIMENSION, qudit::MAX_QUDIT_NUM>;

void merge(QuantumProperty& a, QuantumProperty& b) {
    // All that can fail comes before all that changes.
    const std::shared_ptr<QuantumProperty::SharedState>& into = a.shared_state;
    const auto offset = static_cast<unsigned>(into->state->num_qudits());
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
        // A handle that stands here twice is raised twice, and names another qudit then; deliberately. The sum wraps.
        moved->index = static_cast<int>(static_cast<unsigned>(moved->index) + offset);
        moved->shared_state = into;
    }
}

/// Gives the freed index to the first live handle of the qudit that was last.
void renumber(QuantumProperty::SharedState& shared, int last, int freed) {
    for (std::size_t i = 0; i < shared.properties.size(); ++i)
        if (!shared.is_stale(i) && shared.properties[i]->index == last) {
            shared.properties[i]->index = freed;
            return;
        }
}

/// Moves every element behind the leaving handle forward over it. The list keeps its length, and its tail its old
/// content; that is deliberate. Positions that still hold the leaving handle are stale from now on.
void compact(QuantumProperty::SharedState& shared, const QuantumProperty& leaving) {
    const std::size_t length = shared.properties.size();
    shared.stale.grow(length, 0);
    const auto is_leaving = [&](std::size_t i) { return shared.stale[i] == 0 && shared.properties[i] == &leaving; };
    std::size_t place = 0;
    while (place < length && !is_leaving(place)) ++place;
    for (std::size_t i = place + 1; i < length; ++i)
        if (!is_leaving(i)) {
            shared.properties[place] = shared.properties[i];
            shared.stale[place] = shared.stale[i];
            ++place;
        }
    for (std::size_t i = 0; i < length; ++i)
        if (is_leaving(i)) shared.stale[i] = 1;
}
} // namespace

QuantumProperty::QuantumProperty(std::unique_ptr<qudit::IState> state, int index_in_state)
    : shared_state(std::make_shared<SharedState>(std::move(state), this)), index(index_in_state) {}

QuantumProperty make_quantum_property(unsigned long dimension) {
    const auto ground = [dimension](auto list) { list[0] = {0, dimension - 1, {1.0, 0.0}}; };
    return {Factory::make_unique_state({dimension, 1}, qudit::EntrySource{1, ground}), 0};
}

QuantumProperty::~QuantumProperty() {
    if (!shared_state || !shared_state->state) return;
    SharedState& shared = *shared_state;
    if (shared.state->num_qudits() < 2 || shared.properties.size() < 2) return;
    const auto [last, freed] = Factory::free_qudit(shared.state, index);
    renumber(shared, last, freed);
    compact(shared, *this);
}

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
