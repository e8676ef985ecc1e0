#include "gates/kernels.hpp"
#include "gates/step.hpp"

namespace vantel::qudit {

namespace {

/// (v + 1) mod d: the level above, and 0 from the top level.
struct Raise {
    template <class Word>
    [[gnu::always_inline]] Word operator()(Word level, Word top, std::uint64_t one) const {
        return one - ((top + one) & equal(level, top));
    }
    [[nodiscard]] std::uint64_t addend(std::uint64_t /*top*/) const { return 1; }
};

} // namespace

void raise_levels(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& cycle) {
    step_levels(entries, layout, cycle, Raise{}, "Cycle operation has overlapping targets and controls");
}

} // namespace vantel::qudit
