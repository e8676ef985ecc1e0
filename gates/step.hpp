/// The step of a qudit by one level, which `shift` and `cycle` take in opposite directions.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "gates/frame.hpp"

namespace vantel::qudit {

/// Moves each target of every selected entry by one level, with wrap-around by the dimension that the
/// entry's own label gives the target.
/// @param step  step(level, top, one) is what to add to the word of levels, with level and top level as
///              they stand in their field and `one` the unit there; step.addend(top) is what to add to a
///              level, as a number, before the remainder by the dimension is taken
template <class Step>
void step_levels(std::span<PackedAmplitude> entries, SlotLayout layout, const std::vector<int>& targets,
                 const std::vector<Predicate>& controls, Step step) {
    const ControlTest controls_hold(controls, layout);
    for (const int target : targets) {
        const unsigned position = layout.position(target);
        const std::uint64_t one = std::uint64_t{1} << position;
        const std::uint64_t field = layout.mask() << position;
        relabel_selected(entries, controls_hold, [=](const PackedAmplitude& entry, bool selected) {
            const std::uint64_t level = entry.values & field;
            const std::uint64_t top = entry.dimensions & field;
            if (level <= top && top != 0) [[likely]]
                return entry.values + step(level, top, one);
            // A level beyond its own dimension, which a wider build lets in, or a dimension of 1.
            const std::uint64_t addend = step.addend(top >> position);
            if (selected && addend > top >> position)
                die_of_addend();
            const std::uint64_t stepped = ((level >> position) + addend) % ((top >> position) + 1);
            return (entry.values & ~field) | stepped << position;
        });
    }
}

} // namespace vantel::qudit
