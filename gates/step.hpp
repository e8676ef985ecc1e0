/// The step of a qudit by one level, which `shift` and `cycle` take in opposite directions.
#pragma once

#include "gates/frame.hpp"
#include "gates/relabel.hpp"

namespace vantel::qudit {
/// The new label of a selected entry, one level on, with wrap-around by the dimension that its own label has.
/// @tparam Step  Step::addend(top) is what to add to a level, as a number, before the remainder by the dimension top +
///               1 is taken; Step::change(level, top, one_level) is the same for a level below its dimension as what to
///               add to the word of levels, all in place in their field, for one word or four
template <class Step> struct Stepping {
    unsigned position;
    std::uint64_t one_level;
    std::uint64_t field;

    Stepping(SlotLayout layout, int target)
        : position(layout.position(target)), one_level(std::uint64_t{1} << position), field(layout.field(target)) {}

    template <class Word> [[gnu::always_inline]] Word operator()(Word values, Word dimensions, Word selected) const {
        return values + (Step::change(Word(values & field), Word(dimensions & field), one_level) & selected);
    }

    /// A level beyond its own dimension, which a wider build lets in, or a dimension of 1.
    template <class Word> [[nodiscard, gnu::always_inline]] Word is_irregular(Word values, Word dimensions) const {
        const Word top = dimensions & field;
        return (top - (values & field)) | equal(top, 0);
    }

    void one(PackedAmplitude& entry) const {
        const std::uint64_t top = (entry.dimensions & field) >> position;
        const std::uint64_t level = (entry.values & field) >> position;
        entry.values = (entry.values & ~field) | raised(level, Step::addend(top), top + 1) << position;
    }
};

/// Moves each target of every selected entry by one level.
/// @param overlap  the gate's own text for a target that is also a control
template <class Step>
void step_levels(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate, const char* overlap) {
    refuse_overlap(gate, overlap);
    const ControlTest controls_hold(gate.controls, layout);
    for (const int target : gate.targets) relabel_selected(entries, controls_hold, Stepping<Step>(layout, target));
    guard_size(entries.size());
}
} // namespace vantel::qudit
