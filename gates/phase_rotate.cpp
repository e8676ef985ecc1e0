#include <cmath>
#include <complex>

#include "gates/entry_group.hpp"
#include "gates/frame.hpp"
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
    [[nodiscard]] Factor any_factor(const PackedAmplitude& /*entry*/) const { return Factor(turn.parts()); }
};

} // namespace

void rotate(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& phase_rotate) {
    const float angle = phase_rotate.number;
    // Single precision, unlike the other phases: repeated rotations let the norm drift by as much. Meant.
    const Doubled turn(std::complex<double>(std::cos(angle), std::sin(angle)));
    rephase_selected(entries, ControlTest(phase_rotate.controls, layout), Rotation{turn});
    guard_size(entries.size());
}

} // namespace vantel::qudit
