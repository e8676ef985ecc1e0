/// The step of a qudit by one level, which `shift` and `cycle` take in opposite directions.
#pragma once

#include <cstdint>
#include <span>

#include "gates/frame.hpp"

namespace vantel::qudit {

/// The new label of a selected entry, one level on, with wrap-around by the dimension that the entry's own
/// label gives the target.
/// @tparam Step  step(level, top, one) is what to add to the word of levels, with level and top level as
///               they stand in their field and `one` the unit there, for one word or for four;
///               step.addend(top) is what to add to a level, as a number, before the remainder by the
///               dimension is taken
template <class Step> struct Stepping {
    Step step;
    unsigned position;
    std::uint64_t one_level;
    std::uint64_t field;

    template <class Word>
    [[gnu::always_inline]] Word operator()(Word values, Word dimensions, Word selected) const {
        return values + (step(Word(values & field), Word(dimensions & field), one_level) & selected);
    }

    /// A level beyond its own dimension, which a wider build lets in, or a dimension of 1.
    template <class Word> [[nodiscard, gnu::always_inline]] Word is_odd(Word values, Word dimensions) const {
        const Word top = dimensions & field;
        return (top - (values & field)) | equal(top, 0);
    }

    void one(PackedAmplitude& entry) const {
        const std::uint64_t top = (entry.dimensions & field) >> position;
        const std::uint64_t addend = step.addend(top);
        if (addend > top)
            die_of_addend();
        const std::uint64_t stepped = (((entry.values & field) >> position) + addend) % (top + 1);
        entry.values = (entry.values & ~field) | stepped << position;
    }
};

/// Moves each target of every selected entry by one level.
/// @param overlap  the gate's own text for a target that is also a control
template <class Step>
void step_levels(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate, Step step,
                 const char* overlap) {
    refuse_overlap(gate, overlap);
    const ControlTest controls_hold(gate.controls, layout);
    for (const int target : gate.targets) {
        const unsigned position = layout.position(target);
        relabel_selected(
            entries, controls_hold,
            Stepping<Step>{step, position, std::uint64_t{1} << position, layout.mask() << position});
    }
    guard_size(entries.size());
}

} // namespace vantel::qudit
