/// The walk that the gates that change labels share.
#pragma once

#include "gates/frame.hpp"

namespace vantel::qudit {
/// Gives all selected entries new labels. The selection follows no pattern that a processor could predict, so no branch
/// depends on it: new levels are worked out for all entries.
/// @param gate  gate(values, dimensions, selected) is the new word of levels, unchanged where the mask is not set, and
///              gate.is_irregular(values, dimensions) has the highest bit set where that does not serve; both for one
///              label or for four. gate.one(entry) relabels a selected entry of any kind.
template <class Relabelling>
void relabel_selected(std::span<PackedAmplitude> entries, const ControlTest& controls_hold, Relabelling gate) {
    controls_hold.walk(entries, [gate](std::span<PackedAmplitude> walked, auto holds, auto vectors) VANTEL_INLINED {
        const auto four = [=](PackedAmplitude* entry) VANTEL_INLINED {
            const FourRecords labels(entry);
            if (highest_bits_wide(gate.is_irregular(labels.first, labels.second)) != 0) [[unlikely]]
                return false;
            const FourWords values = gate(labels.first, labels.second, holds(labels.first));
            for (int i = 0; i < 4; ++i) entry[i].values = values[i];
            return true;
        };
        for_each_by_four(walked, vectors, four, [=](PackedAmplitude& entry) VANTEL_INLINED {
            if (highest_bits(gate.is_irregular(entry.values, entry.dimensions)) != 0) [[unlikely]] {
                if (holds(entry.values) != 0) gate.one(entry);
            } else {
                entry.values = gate(entry.values, entry.dimensions, holds(entry.values));
            }
        });
    });
}
} // namespace vantel::qudit
