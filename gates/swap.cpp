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
    const ControlTest controls_hold(controls, layout);
    controls_hold.specialised([&](auto holds) {
        for (PackedAmplitude& entry : entries) {
            const bool selected = holds(entry.values);
            entry.values ^= exchanged.difference(entry.values) & -std::uint64_t{selected};
            entry.dimensions ^= exchanged.difference(entry.dimensions) & -std::uint64_t{selected};
        }
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
