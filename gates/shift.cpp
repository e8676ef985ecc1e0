#include "gates/kernels.hpp"
#include "gates/step.hpp"

namespace vantel::qudit {
namespace {
/// v + (d - 1) mod d: the level below, and the top level from 0.
struct Down {
    static std::uint64_t addend(std::uint64_t top) { return top; }
    template <class Word> [[gnu::always_inline]] static Word change(Word level, Word top, std::uint64_t one_level) {
        return ((top + one_level) & equal(level, 0)) - one_level;
    }
};
} // namespace

void shift(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate) {
    step_levels<Down>(entries, layout, gate, "Shift operation has overlapping targets and controls");
}
} // namespace vantel::qudit
