#include <cmath>
#include <complex>

#include "gates/frame.hpp"
#include "state/builds.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"

namespace vantel::qudit {

namespace {

void rotate(std::span<PackedAmplitude> entries, SlotLayout layout, const std::vector<Predicate>& controls,
            float angle) {
    // Single precision, unlike the other phases: repeated rotations let the norm drift by as much. Meant.
    const Factor factor(std::complex<double>(std::cos(angle), std::sin(angle)));
    rephase_selected(entries, ControlTest(controls, layout),
                     [factor](const PackedAmplitude&) { return factor; });
    guard_size(entries.size());
}

} // namespace

template <class Label> void State<Label>::phase_rotate(std::vector<Predicate> controls, float angle) {
    rotate(packed_view(amplitudes), Label::layout, controls, angle);
}

VANTEL_INSTANTIATE(void, phase_rotate, (std::vector<Predicate>, float))

} // namespace vantel::qudit
