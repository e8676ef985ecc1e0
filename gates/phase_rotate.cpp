#include <cmath>
#include <complex>

#include "gates/frame.hpp"
#include "state/builds.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"

namespace vantel::qudit {

namespace {

/// One factor for every label.
struct Rotation {
    Factor turn;

    [[nodiscard]] const Factor& factor(std::uint64_t /*values*/) const { return turn; }
    [[nodiscard]] static Words is_odd(Words /*dimensions*/) { return Words{}; }
    [[nodiscard]] const Factor& odd_factor(const PackedAmplitude& /*entry*/) const { return turn; }
};

void rotate(std::span<PackedAmplitude> entries, SlotLayout layout, const std::vector<Predicate>& controls,
            float angle) {
    // Single precision, unlike the other phases: repeated rotations let the norm drift by as much. Meant.
    const Factor turn(std::complex<double>(std::cos(angle), std::sin(angle)));
    rephase_selected(entries, ControlTest(controls, layout), Rotation{turn});
    guard_size(entries.size());
}

} // namespace

template <class Label> void State<Label>::phase_rotate(std::vector<Predicate> controls, float angle) {
    rotate(packed_view(amplitudes), Label::layout, controls, angle);
}

VANTEL_INSTANTIATE(void, phase_rotate, (std::vector<Predicate>, float))

} // namespace vantel::qudit
