#include "gates/frame.hpp"
#include "gates/step.hpp"
#include "state/builds.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"

namespace vantel::qudit {

namespace {

/// v + (d - 1) mod d: the level below, and the top level from 0.
struct Lower {
    template <class Word> Word operator()(Word level, Word top, std::uint64_t one) const {
        return ((top + one) & equal(level, 0)) - one;
    }
    [[nodiscard]] std::uint64_t addend(std::uint64_t top) const { return top; }
};

void lower_levels(std::span<PackedAmplitude> entries, SlotLayout layout, const std::vector<int>& targets,
                  const std::vector<Predicate>& controls) {
    refuse_overlap(targets, controls, "Shift operation has overlapping targets and controls");
    step_levels(entries, layout, targets, controls, Lower{});
    guard_size(entries.size());
}

} // namespace

template <class Label> void State<Label>::shift(std::vector<int> targets, std::vector<Predicate> controls) {
    lower_levels(packed_view(amplitudes), Label::layout, targets, controls);
}

VANTEL_INSTANTIATE(void, shift, (std::vector<int>, std::vector<Predicate>))

} // namespace vantel::qudit
