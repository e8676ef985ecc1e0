#include <array>

#include "gates/exchange.hpp"
#include "gates/frame.hpp"
#include "state/builds.hpp"
#include "state/exceptions.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"

namespace vantel::qudit {

namespace {

void exchange(std::span<PackedAmplitude> entries, SlotLayout layout, int first, int second,
              const std::vector<Predicate>& controls) {
    const Exchange exchanged(layout, first, second);
    relabel_selected(entries, ControlTest(controls, layout), [=](PackedAmplitude& entry, bool selected) {
        // Dimensions differ only in a label whose own ones are not those of the first entry.
        if (exchanged.difference(entry.dimensions) != 0 && selected) [[unlikely]]
            entry.dimensions ^= exchanged.difference(entry.dimensions);
        return entry.values ^ exchanged.difference(entry.values);
    });
    guard_size(entries.size());
}

} // namespace

template <class Label> void State<Label>::swap(int first, int second, std::vector<Predicate> controls) {
    refuse_overlap(std::array{first, second}, controls,
                   "Swap operation has overlapping targets and controls");
    if (qudit_dimension(first) != qudit_dimension(second))
        throw DifferentDimensions("Targets of swap operation have different dimensions");
    exchange(packed_view(amplitudes), Label::layout, first, second, controls);
}

VANTEL_INSTANTIATE(void, swap, (int, int, std::vector<Predicate>))

} // namespace vantel::qudit
