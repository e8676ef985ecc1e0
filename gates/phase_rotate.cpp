#include <cmath>
#include <complex>

#include "gates/frame.hpp"
#include "gates/kernels.hpp"

namespace vantel::qudit {

namespace {

/// One factor for every label.
struct Rotation {
    Factor turn;

    [[nodiscard]] const Factor& factor(std::uint64_t /*values*/) const { return turn; }
    [[nodiscard]] static Words is_odd(Words /*dimensions*/) { return Words{}; }
    [[nodiscard]] const Factor& odd_factor(const PackedAmplitude& /*entry*/) const { return turn; }
};

} // namespace

void rotate(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& phase_rotate) {
    const float angle = phase_rotate.number;
    // Single precision, unlike the other phases: repeated rotations let the norm drift by as much. Meant.
    const Factor turn(std::complex<double>(std::cos(angle), std::sin(angle)));
    rephase_selected(entries, ControlTest(phase_rotate.controls, layout), Rotation{turn});
    guard_size(entries.size());
}

} // namespace vantel::qudit
