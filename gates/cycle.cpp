#include "gates/frame.hpp"
#include "gates/step.hpp"
#include "state/builds.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"

namespace vantel::qudit {

namespace {

/// (v + 1) mod d: the level above, and 0 from the top level.
struct Raise {
    template <class Word> Word operator()(Word level, Word top, std::uint64_t one) const {
        return one - ((top + one) & equal(level, top));
    }
    [[nodiscard]] std::uint64_t addend(std::uint64_t /*top*/) const { return 1; }
};

void raise_levels(std::span<PackedAmplitude> entries, SlotLayout layout, const std::vector<int>& targets,
                  const std::vector<Predicate>& controls) {
    refuse_overlap(targets, controls, "Cycle operation has overlapping targets and controls");
    step_levels(entries, layout, targets, controls, Raise{});
    guard_size(entries.size());
}

} // namespace

template <class Label> void State<Label>::cycle(std::vector<int> targets, std::vector<Predicate> controls) {
    raise_levels(packed_view(amplitudes), Label::layout, targets, controls);
}

VANTEL_INSTANTIATE(void, cycle, (std::vector<int>, std::vector<Predicate>))

} // namespace vantel::qudit
