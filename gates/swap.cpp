#include "gates/exchange.hpp"
#include "gates/kernels.hpp"
#include "gates/relabel.hpp"
#include "state/exceptions.hpp"

namespace vantel::qudit {
void swap(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate) {
    refuse_overlap(gate, "Swap operation has overlapping targets and controls");
    const Exchange exchange(layout, gate.targets[0], gate.targets[1]);
    if (!entries.empty() && exchange.difference(entries.front().dimensions) != 0)
        throw DifferentDimensions("Targets of swap operation have different dimensions");
    relabel_selected(entries, ControlTest(gate.controls, layout), exchange);
    guard_size(entries.size());
}
} // namespace vantel::qudit
