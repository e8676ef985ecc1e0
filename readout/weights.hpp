/// |a|^2 of entries, and their sums, one for each outcome that they show.
#pragma once

#include "algorithms/lanes.hpp"
#include "state/entries.hpp"
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
            const FourRecords four(&entries[i]);
            *reinterpret_cast<StoredFourParts*>(&weights[i]) = four.real * four.real + four.imaginary * four.imaginary;
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
template <class Weight, class PlaceOf, class Note>
[[gnu::always_inline]] inline void sum_up_each(PackedEntries entries, PlaceOf place_of, double* sums, Note note) {
#pragma GCC unroll 4
    for (const PackedAmplitude& entry : entries) {
        const std::size_t place = place_of(entry.values);
        sums[place] += Weight{}(entry.amplitude);
        note(place);
    }
}

/// The same where most entries show one of the two outcomes that were met last: their sums stay in registers, since a
/// sum in memory has to come back from its last store before it can be added to.
template <class Weight, class PlaceOf, class Note> [[gnu::always_inline]] inline void
sum_up_two_at_hand(PackedEntries entries, std::uint64_t listed, PlaceOf place_of, double* sums, Note note) {
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
        return AtHand{first.values & listed, place, sums[place]};
    };
    std::uint64_t shown = entry->values & listed;
    // Adds a run of entries that show one outcome, for which another may have to go. Returns whether there are more.
    const auto add_run = [&](AtHand& hand) VANTEL_INLINED {
        if (shown != hand.shown) {
            sums[hand.place] = hand.sum;
            hand = take(*entry);
        }
#pragma GCC unroll 2
        do {
            hand.sum += Weight{}(entry->amplitude);
            note(hand.place);
            if (++entry == end) return false;
            shown = entry->values & listed;
        } while (shown == hand.shown);
        return true;
    };
    AtHand one = take(*entry);
    AtHand other = one; // until the first run of another outcome, and then stored before it could do harm
    while (add_run(one) && add_run(other)) {
    }
    sums[other.place] = other.sum;
    sums[one.place] = one.sum;
}

constexpr auto unnoted = [](std::size_t) {};

/// Adds the weights of the entries, in stored order, to the sums at their places.
/// @param place_of  place_of(values) depends on the listed fields alone, so not every entry is asked for it
/// @param note      note(place) is given the place of each entry, one after another
template <class Weight, class PlaceOf, class Note = decltype(unnoted)>
void sum_up(PackedEntries entries, std::uint64_t listed, PlaceOf place_of, double* sums, Note note = unnoted) {
    if (is_mixed(entries, listed))
        wide_loop([=]() VANTEL_INLINED { sum_up_each<Weight>(entries, place_of, sums, note); });
    else
        wide_loop([=]() VANTEL_INLINED { sum_up_two_at_hand<Weight>(entries, listed, place_of, sums, note); });
}
} // namespace vantel::qudit
