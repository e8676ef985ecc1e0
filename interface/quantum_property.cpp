#include "interface/quantum_property.hpp"
#include "property/release.hpp"
#include "state/state_factory.hpp"
#include <utility>

namespace vantel {
namespace {
/// The one entry of a qudit in level 0.
class Ground final : public qudit::EntrySource {
public:
    explicit Ground(std::uint64_t dimension) noexcept : EntrySource(1), dimension_(dimension) {}

    void write(std::span<qudit::PackedAmplitude> list) const noexcept override {
        list[0] = {0, dimension_ - 1, {1.0, 0.0}};
    }

private:
    std::uint64_t dimension_;
};
} // namespace

QuantumProperty::QuantumProperty(std::unique_ptr<qudit::IState> state, int index_in_state)
    : shared_state(std::make_shared<SharedState>(std::move(state), this)), index(index_in_state) {}

QuantumProperty::~QuantumProperty() { take_out(*this); }

QuantumProperty make_quantum_property(unsigned long dimension) {
    using Factory = qudit::StateFactory<qudit::MAX_QUDIT_DIMENSION, qudit::MAX_QUDIT_NUM>;
    return {Factory::make_unique_state({dimension, 1}, Ground(dimension)), 0};
}
} // namespace vantel
