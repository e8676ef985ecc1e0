#include "gates/kernels.hpp"
#include "gates/step.hpp"

namespace vantel::qudit {

namespace {

/// v + (d - 1) mod d: the level below, and the top level from 0.
struct Lower {
    template <class Word>
    [[gnu::always_inline]] Word operator()(Word level, Word top, std::uint64_t one) const {
        return ((top + one) & equal(level, 0)) - one;
    }
    [[nodiscard]] std::uint64_t addend(std::uint64_t top) const { return top; }
};

} // namespace

void lower_levels(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& shift) {
    step_levels(entries, layout, shift, Lower{}, "Shift operation has overlapping targets and controls");
}

} // namespace vantel::qudit
