#include "property/release.hpp"
#include "state/state_factory.hpp"
#include <cstddef>

namespace vantel {
namespace {
using Factory = qudit::StateFactory<qudit::MAX_QUDIT_DIMENSION, qudit::MAX_QUDIT_NUM>;

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

void take_out(QuantumProperty& leaving) {
    if (!leaving.shared_state || !leaving.shared_state->state) return;
    QuantumProperty::SharedState& shared = *leaving.shared_state;
    if (shared.state->num_qudits() < 2 || shared.properties.size() < 2) return;
    const auto [last, freed] = Factory::free_qudit(shared.state, leaving.index);
    renumber(shared, last, freed);
    compact(shared, leaving);
}
} // namespace vantel
