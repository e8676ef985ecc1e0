/// |a|^2 of entries, and their sums, one for each outcome that they show.
#pragma once

#include "algorithms/lanes.hpp"
#include "algorithms/wide_loop.hpp"
#include "state/entries.hpp"
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

namespace vantel::qudit {
/// The weight of an entry. Infinity stands ahead of NaN: one infinite part makes it infinite, whatever the other is.
struct SquaredModulus {
    double operator()(const std::complex<double>& amplitude) const noexcept {
        const double sum = amplitude.real() * amplitude.real() + amplitude.imag() * amplitude.imag();
        if (std::isnan(sum) && (std::isinf(amplitude.real()) || std::isinf(amplitude.imag()))) [[unlikely]]
            return std::numeric_limits<double>::infinity();
        return sum;
    }
};

/// The same, but NaN where that is infinite beside a part that is NaN: for whoever takes SquaredModulus where a sum
/// comes out NaN.
struct PlainSquare {
    double operator()(const std::complex<double>& amplitude) const noexcept {
        const Parts squares = parts_of(amplitude) * parts_of(amplitude);
        return squares[0] + squares[1];
    }

    template <std::size_t count>
    void operator()(const PackedAmplitude* entries, std::array<double, count>& weights) const noexcept {
        static_assert(count % 4 == 0);
        for (std::size_t i = 0; i < count; i += 4) {
            const FourParts even = joined(parts_of(entries[i].amplitude), parts_of(entries[i + 2].amplitude));
            const FourParts uneven = joined(parts_of(entries[i + 1].amplitude), parts_of(entries[i + 3].amplitude));
            const FourParts even_squares = even * even;
            const FourParts uneven_squares = uneven * uneven;
            *reinterpret_cast<StoredFourParts*>(&weights[i]) =
                __builtin_shufflevector(even_squares, uneven_squares, 0, 4, 2, 6) +
                __builtin_shufflevector(even_squares, uneven_squares, 1, 5, 3, 7);
        }
    }
};

/// Whether many entries differ in the listed fields from both outcomes that were met last before them, as far as the
/// first of them show.
inline bool is_mixed(PackedEntries entries, std::uint64_t listed) {
    constexpr std::size_t some = 64;
    if (entries.size() < some) return false;
    std::uint64_t present = entries[0].values & listed;
    std::uint64_t former = present;
    std::size_t others = 0;
    for (const PackedAmplitude& entry : entries.first(some)) {
        const std::uint64_t shown = entry.values & listed;
        if (shown == present) continue;
        others += shown != former ? 1 : 0;
        former = std::exchange(present, shown);
    }
    return others > some / 4;
}

/// Adds weight after weight to sums in memory.
template <class Weight, class PlaceOf, class SumAt, class Note>
[[gnu::always_inline]] inline void sum_up_each(PackedEntries entries, PlaceOf place_of, SumAt sum_at, Note note) {
    const Weight weight;
#pragma GCC unroll 4
    for (const PackedAmplitude& entry : entries) {
        const std::size_t place = place_of(entry.values);
        sum_at(place) += weight(entry.amplitude);
        note(place);
    }
}

/// The same where most entries show one of the two outcomes that were met last: their sums stay in registers, since a
/// sum in memory has to come back from its last store before it can be added to.
template <class Weight, class PlaceOf, class SumAt, class Note> [[gnu::always_inline]] inline void
sum_up_two_at_hand(PackedEntries entries, std::uint64_t listed, PlaceOf place_of, SumAt sum_at, Note note) {
    const Weight weight;
    const PackedAmplitude* entry = entries.data();
    const PackedAmplitude* const end = entry + entries.size();
    if (entry == end) return;
    struct AtHand {
        std::uint64_t shown; ///< in the listed fields
        std::size_t place;
        double sum;
    };
    const auto take = [&](const PackedAmplitude& first) VANTEL_INLINED {
        const std::size_t place = place_of(first.values);
        return AtHand{first.values & listed, place, sum_at(place)};
    };
    // Adds a run of entries that show one outcome, for which another may have to go. Returns whether there are more.
    const auto add_run = [&](AtHand& hand) VANTEL_INLINED {
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
/// @param place_of  place_of(values) depends on the listed fields alone, so not every entry is asked for it
/// @param sum_at    sum_at(place) is the sum up to now
/// @param note      note(place) is given the place of each entry, one after another
template <class Weight, class PlaceOf, class SumAt, class Note>
void sum_up(PackedEntries entries, std::uint64_t listed, PlaceOf place_of, SumAt sum_at, Note note) {
    if (is_mixed(entries, listed))
        wide_loop([=]() VANTEL_INLINED { sum_up_each<Weight>(entries, place_of, sum_at, note); });
    else
        wide_loop([=]() VANTEL_INLINED { sum_up_two_at_hand<Weight>(entries, listed, place_of, sum_at, note); });
}
} // namespace vantel::qudit
