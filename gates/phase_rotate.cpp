#include "gates/kernels.hpp"
#include "gates/rephase.hpp"

namespace vantel::qudit {
namespace {
/// One factor for every label, whatever its dimensions.
struct Rotation {
    static constexpr std::uint64_t field = 0;
    static constexpr std::uint64_t top = 0;
    Doubled turn;

    [[nodiscard]] const Doubled& factor(const PackedAmplitude& /*entry*/) const { return turn; }
    [[nodiscard]] Factor any_factor(const PackedAmplitude& /*entry*/) const { return factor_of(turn); }
};
} // namespace

void phase_rotate(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate) {
    const float angle = gate.number;
    // Single precision, unlike the other phases, and deliberate: repeated rotations let the norm drift by as much.
    const Doubled turn = doubled(Parts{std::cos(angle), std::sin(angle)});
    rephase_selected(entries, ControlTest(gate.controls, layout), Rotation{turn});
    guard_size(entries.size());
}
} // namespace vantel::qudit
