/// Sums of the weights of entries, one for each outcome that they show.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

#include "state/basis_amplitude.hpp"
#include "state/wide_loop.hpp"

namespace vantel::qudit {

/// Whether many entries differ in the listed fields from both outcomes that were met last before them, as far
/// as the first of them show.
inline bool is_mixed(std::span<const PackedAmplitude> entries, std::uint64_t listed) {
    constexpr std::size_t some = 64;
    if (entries.size() < some)
        return false;
    std::uint64_t present = entries[0].values & listed;
    std::uint64_t former = present;
    std::size_t others = 0;
    for (const PackedAmplitude& entry : entries.first(some)) {
        const std::uint64_t shown = entry.values & listed;
        if (shown == present)
            continue;
        others += shown != former ? 1 : 0;
        former = std::exchange(present, shown);
    }
    return others > some / 4;
}

/// Adds weight after weight to sums in memory.
template <class Weight, class PlaceOf, class SumAt, class Note>
void sum_up_each(std::span<const PackedAmplitude> entries, PlaceOf place_of, SumAt sum_at, Note note) {
    const Weight weight;
#pragma GCC unroll 4
    for (const PackedAmplitude& entry : entries) {
        const std::size_t place = place_of(entry);
        sum_at(place) += weight(entry.amplitude);
        note(place);
    }
}

/// The same where most entries show one of the two outcomes that were met last: their sums stay in registers,
/// since a sum in memory has to come back from its last store before it can be added to.
template <class Weight, class PlaceOf, class SumAt, class Note>
void sum_up_two_at_hand(std::span<const PackedAmplitude> entries, std::uint64_t listed, PlaceOf place_of,
                        SumAt sum_at, Note note) {
    const Weight weight;
    const PackedAmplitude* entry = entries.data();
    const PackedAmplitude* const end = entry + entries.size();
    if (entry == end)
        return;
    struct AtHand {
        std::uint64_t shown; ///< in the listed fields
        std::size_t place;
        double sum;
    };
    const auto take = [&](const PackedAmplitude& first) {
        const std::size_t place = place_of(first);
        return AtHand{first.values & listed, place, sum_at(place)};
    };
    // Adds a run of entries that show one outcome, for which another may have to go. Returns whether there
    // are more.
    const auto add_run = [&](AtHand& hand) {
        if ((entry->values & listed) != hand.shown) {
            sum_at(hand.place) = hand.sum;
            hand = take(*entry);
        }
        do {
            hand.sum += weight((entry++)->amplitude);
            note(hand.place);
        } while (entry != end && (entry->values & listed) == hand.shown);
        return entry != end;
    };
    AtHand one = take(*entry);
    AtHand other = one; // until the first run of another outcome, and then stored before it could do harm
    while (add_run(one) && add_run(other)) {
    }
    sum_at(other.place) = other.sum;
    sum_at(one.place) = one.sum;
}

/// Sums up the weights of the entries in stored order.
/// @param place_of  place_of(entry) hangs on the listed fields alone, so not every entry is asked for it
/// @param sum_at    sum_at(place) is the sum up to now
/// @param note      note(place) is told the place of each entry, one after another
template <class Weight, class PlaceOf, class SumAt, class Note>
void sum_up(std::span<const PackedAmplitude> entries, std::uint64_t listed, PlaceOf place_of, SumAt sum_at,
            Note note) {
    // Copies that no store to a sum can be thought to change.
    if (is_mixed(entries, listed))
        wide_loop([=] { sum_up_each<Weight>(entries, PlaceOf(place_of), SumAt(sum_at), Note(note)); });
    else
        wide_loop([=] {
            sum_up_two_at_hand<Weight>(entries, listed, PlaceOf(place_of), SumAt(sum_at), Note(note));
        });
}

} // namespace vantel::qudit
