#include "gates/kernels.hpp"
#include "gates/step.hpp"

namespace vantel::qudit {
namespace {
/// (v + 1) mod d: the level above, and 0 from the top level.
struct Up {
    static std::uint64_t addend(std::uint64_t /*top*/) { return 1; }
    template <class Word> [[gnu::always_inline]] static Word change(Word level, Word top, std::uint64_t one_level) {
        return one_level - ((top + one_level) & equal(level, top));
    }
};
} // namespace

void cycle(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate) {
    step_levels<Up>(entries, layout, gate, "Cycle operation has overlapping targets and controls");
}
} // namespace vantel::qudit
