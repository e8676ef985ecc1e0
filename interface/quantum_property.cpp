#include "interface/quantum_property.hpp"

#include <array>
#include <utility>

#include "property/release.hpp"
#include "state/state_factory.hpp"

namespace vantel {

QuantumProperty::QuantumProperty(std::unique_ptr<qudit::IState> state, int index_in_state)
    : shared_state(std::make_shared<SharedState>()), index(index_in_state) {
    shared_state->state = std::move(state);
    shared_state->properties.push_back(this);
}

QuantumProperty::~QuantumProperty() {
    take_out(*this);
}

QuantumProperty make_quantum_property(unsigned long dimension) {
    using Factory = qudit::StateFactory<qudit::MAX_QUDIT_DIMENSION, qudit::MAX_QUDIT_NUM>;
    const std::array ground{qudit::PackedAmplitude{0, dimension - 1, {1.0, 0.0}}};
    return {Factory::make_unique_state({dimension, 1}, qudit::PackedEntries(ground)), 0};
}

} // namespace vantel
