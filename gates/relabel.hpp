/// The walk that the gates that change labels share.
#pragma once

#include "gates/frame.hpp"
#include <span>
#include <type_traits>

namespace vantel::qudit {
/// Gives all selected entries new labels. The selection follows no pattern that a processor could predict, so no branch
/// depends on it: new levels are worked out for all entries.
/// @param gate  gate(values, dimensions, selected) is the new word of levels, unchanged where the mask is not set, and
///              gate.is_irregular(values, dimensions) has the highest bit set where that does not serve; both for one
///              label or for four. gate.one(entry) relabels a selected entry of any kind.
template <class Relabelling>
void relabel_selected(std::span<PackedAmplitude> entries, const ControlTest& controls_hold, Relabelling gate) {
    controls_hold.walk(entries, [gate](std::span<PackedAmplitude> walked, auto holds, auto vectors) VANTEL_INLINED {
        const auto relabel = [=](PackedAmplitude& entry) VANTEL_INLINED {
            if (any_highest(gate.is_irregular(entry.values, entry.dimensions))) [[unlikely]] {
                if (holds(entry.values) != 0) gate.one(entry);
                return;
            }
            entry.values = gate(entry.values, entry.dimensions, holds(entry.values));
        };
        PackedAmplitude* entry = walked.data();
        PackedAmplitude* const end = entry + walked.size();
        if constexpr (std::is_same_v<decltype(vectors), WideVectors>)
            for (; end - entry >= 4; entry += 4) {
                const FourRecords labels(entry);
                if (any_highest(gate.is_irregular(labels.first, labels.second))) [[unlikely]] {
                    for (PackedAmplitude& each : std::span(entry, 4)) relabel(each);
                    continue;
                }
                const FourWords values = gate(labels.first, labels.second, holds(labels.first));
                for (int i = 0; i < 4; ++i) entry[i].values = values[i];
            }
        for (; entry != end; ++entry) relabel(*entry);
    });
}
} // namespace vantel::qudit
