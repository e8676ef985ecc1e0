/// The step of a qudit by one level, which `shift` and `cycle` take in opposite directions.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "gates/frame.hpp"

namespace vantel::qudit {

/// Adds addend(d - 1), which is 1 or d - 1, to the level of each target in every selected entry, modulo the
/// dimension d that the entry's own label gives the target.
template <class Addend>
void step_levels(std::span<PackedAmplitude> entries, SlotLayout layout, const std::vector<int>& targets,
                 const std::vector<Predicate>& controls, Addend addend) {
    const ControlTest controls_hold(controls, layout);
    const std::uint64_t field = layout.mask();
    for (const int target : targets)
        relabel_selected(
            entries, controls_hold,
            [=, position = layout.position(target)](const PackedAmplitude& entry, bool selected) {
                const std::uint64_t level = entry.values >> position & field;
                const std::uint64_t top = entry.dimensions >> position & field;
                const std::uint64_t step = addend(top);
                const std::uint64_t sum = level + step;
                std::uint64_t stepped = sum > top ? sum - top - 1 : sum;
                // A level beyond its own dimension, which a wider build lets in, wraps more than once.
                if (stepped > top || step > top) [[unlikely]] {
                    if (selected && step > top)
                        die_of_addend();
                    stepped = sum % (top + 1);
                }
                return (entry.values & ~(field << position)) | stepped << position;
            });
}

} // namespace vantel::qudit
