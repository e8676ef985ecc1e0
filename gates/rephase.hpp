/// The walk that the gates that turn phases share.
#pragma once

#include <span>

#include "gates/entry_group.hpp"
#include "gates/frame.hpp"

namespace vantel::qudit {

/// Multiplies the amplitudes of all selected entries. Entries go by groups, and a group of which none is
/// selected is passed over.
/// @param gate  gate.factor(entry), Doubled, is the factor of an entry whose dimensions have gate.top in
///              gate.field; gate.any_factor(entry) is that of an entry of any kind
template <class Rephasing>
void rephase_selected(std::span<PackedAmplitude> entries, const ControlTest& controls_hold,
                      const Rephasing& gate) {
    controls_hold.walk(entries, [&gate](std::span<PackedAmplitude> walked, const auto& test, auto vectors) {
        using Group = EntryGroup<decltype(vectors)>;
        const auto holds = test; // copies that no store to an entry can be thought to change
        const Rephasing own = gate;
        const auto one = [&](PackedAmplitude& entry) {
            if (holds(entry.values) != 0)
                store(own.any_factor(entry)(parts_of(entry.amplitude)), entry.amplitude);
        };
        PackedAmplitude* entry = walked.data();
        PackedAmplitude* const end = entry + walked.size();
        for (PackedAmplitude* const last = end - walked.size() % Group::size; entry != last;
             entry += Group::size) {
            const Group group(entry);
            const auto selected = holds(group.values);
            if (!Group::any(selected))
                continue;
            const auto turned = group.amplitudes *
                                Group::numbers([&](int i) -> const Doubled& { return own.factor(entry[i]); });
            // A product with NaN may have an infinity to recover.
            if (!Group::all_with_numbers(equal(group.dimensions & own.field, own.top), turned)) [[unlikely]] {
                for (PackedAmplitude& each : std::span(entry, Group::size))
                    one(each);
                continue;
            }
            Group::store(Group::select(selected, turned, group.amplitudes), entry);
        }
        for (; entry != end; ++entry)
            one(*entry);
    });
}

} // namespace vantel::qudit
