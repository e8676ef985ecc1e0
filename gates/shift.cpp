#include "gates/frame.hpp"
#include "gates/step.hpp"
#include "state/builds.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"

namespace vantel::qudit {

namespace {

/// Level v goes to (v + (d - 1)) mod d.
void lower_levels(std::span<PackedAmplitude> entries, SlotLayout layout, const std::vector<int>& targets,
                  const std::vector<Predicate>& controls) {
    refuse_overlap(targets, controls, "Shift operation has overlapping targets and controls");
    step_levels(entries, layout, targets, controls, [](std::uint64_t top) { return top; });
    guard_size(entries.size());
}

} // namespace

template <class Label> void State<Label>::shift(std::vector<int> targets, std::vector<Predicate> controls) {
    lower_levels(packed_view(amplitudes), Label::layout, targets, controls);
}

VANTEL_INSTANTIATE(void, shift, (std::vector<int>, std::vector<Predicate>))

} // namespace vantel::qudit
