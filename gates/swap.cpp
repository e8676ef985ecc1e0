#include "gates/exchange.hpp"
#include "gates/kernels.hpp"
#include "gates/relabel.hpp"
#include "state/exceptions.hpp"

namespace vantel::qudit {
namespace {
/// The new label of a selected entry, with the dits of two qudits exchanged.
struct Exchanged {
    Exchange exchange;

    template <class Word>
    [[gnu::always_inline]] Word operator()(Word values, Word /*dimensions*/, Word selected) const {
        return values ^ (exchange.difference(values) & selected);
    }

    /// Dimensions differ only in a label whose own ones are not those of the first entry.
    template <class Word> [[nodiscard, gnu::always_inline]] Word is_irregular(Word /*values*/, Word dimensions) const {
        return -exchange.difference(dimensions);
    }

    void one(PackedAmplitude& entry) const {
        entry.values ^= exchange.difference(entry.values);
        entry.dimensions ^= exchange.difference(entry.dimensions);
    }
};
} // namespace

void swap(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate) {
    refuse_overlap(gate, "Swap operation has overlapping targets and controls");
    const Exchange levels(layout, gate.targets[0], gate.targets[1]);
    if (!entries.empty() && levels.difference(entries.front().dimensions) != 0)
        throw DifferentDimensions("Targets of swap operation have different dimensions");
    relabel_selected(entries, ControlTest(gate.controls, layout), Exchanged{levels});
    guard_size(entries.size());
}
} // namespace vantel::qudit
