#include "gates/frame.hpp"
#include "gates/kernels.hpp"

namespace vantel::qudit {
// Powers of `shift` and `cycle` are the clock seen from the Fourier basis, and only the sign of the fraction tells them
// apart. The three are whole gates: a list that the first leaves over the limit stays in that basis, deliberately.

void fractional_step(EntryList& list, SlotLayout layout, const Gate& gate) {
    const bool is_cycle = gate.kind == Gate::fractional_cycle;
    refuse_overlap(gate, is_cycle ? "Fractional cycle operation has overlapping targets and controls"
                                  : "Fractional shift operation has overlap targets and controls");
    const float fraction = is_cycle ? -gate.number : gate.number;
    hadamard(list, layout, gate, +1.0);
    fractional_clock(list.entries(), layout, {Gate::fractional_clock, fraction, gate.targets, gate.controls});
    hadamard(list, layout, gate, -1.0);
}
} // namespace vantel::qudit
