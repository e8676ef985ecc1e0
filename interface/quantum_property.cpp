#include "interface/quantum_property.hpp"
#include "property/release.hpp"
#include "state/state_factory.hpp"
#include <utility>

namespace vantel {
QuantumProperty::QuantumProperty(std::unique_ptr<qudit::IState> state, int index_in_state)
    : shared_state(std::make_shared<SharedState>(std::move(state), this)), index(index_in_state) {}

QuantumProperty::~QuantumProperty() { take_out(*this); }

QuantumProperty make_quantum_property(unsigned long dimension) {
    using Factory = qudit::StateFactory<qudit::MAX_QUDIT_DIMENSION, qudit::MAX_QUDIT_NUM>;
    const auto ground = [dimension](std::span<qudit::PackedAmplitude> list) {
        list[0] = {0, dimension - 1, {1.0, 0.0}};
    };
    return {Factory::make_unique_state({dimension, 1}, qudit::EntrySource{1, ground}), 0};
}
} // namespace vantel
