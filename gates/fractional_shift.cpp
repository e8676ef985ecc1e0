#include "gates/frame.hpp"
#include "gates/kernels.hpp"
#include "state/builds.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"

namespace vantel::qudit {

// The two gates are the clock seen from the Fourier basis, and only the sign of the fraction tells them
// apart. The three steps are whole gates: where the first leaves a list over the limit, the state stays in
// the Fourier basis. That is meant.

template <class Label> void State<Label>::step_in_part(const Gate& gate) {
    const bool raises = gate.kind == Gate::fractional_cycle;
    refuse_overlap(gate, raises ? "Fractional cycle operation has overlapping targets and controls"
                                : "Fractional shift operation has overlap targets and controls");
    const float fraction = raises ? -gate.number : gate.number;
    transform(gate, +1.0);
    turn_levels_in_part(packed_view(amplitudes), Label::layout,
                        {Gate::fractional_clock, fraction, gate.targets, gate.controls});
    transform(gate, -1.0);
}

VANTEL_INSTANTIATE(void, step_in_part, (const Gate&))

} // namespace vantel::qudit
