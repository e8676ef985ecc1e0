/// The division of a list by which its holes are filled from the tail.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace vantel {
/// The word with its lowest bit highest.
constexpr std::uint64_t reversed(std::uint64_t bits) noexcept {
    bits = (bits >> 1 & 0x5555555555555555) | (bits & 0x5555555555555555) << 1;
    bits = (bits >> 2 & 0x3333333333333333) | (bits & 0x3333333333333333) << 2;
    bits = (bits >> 4 & 0x0F0F0F0F0F0F0F0F) | (bits & 0x0F0F0F0F0F0F0F0F) << 4;
    return __builtin_bswap64(bits);
}

/// Moves the entries that are kept to the front. Each hole, from the front, is filled with the kept entry nearest the
/// tail, so order is not kept. That order is part of the behaviour: a stable removal will not do. Entries are judged by
/// the word, without a branch for each, which no processor could predict; nothing is allocated. What lies behind the
/// kept entries is to be erased.
/// @param kept_among  kept_among(first, count) has a bit for each of `count` entries, 64 at the most, from place
///                    `first` on: whether it is kept. What stands above these bits means nothing
/// @return how many are kept
template <class Entry, class KeptAmong>
std::size_t partition_two_ended(std::span<Entry> list, KeptAmong kept_among) noexcept {
    const auto all_of = [](std::size_t count) { return ~std::uint64_t{0} >> (64 - count); };
    const auto lowest = [](std::uint64_t bits) { return static_cast<unsigned>(std::countr_zero(bits)); };

    // The places from `front` on and before `back` have not been judged yet.
    std::size_t front = 0;
    std::size_t back = list.size();
    std::uint64_t holes = 0; // of the word that was judged last before `front`, as far as they are not filled
    std::size_t holes_from = 0;
    std::uint64_t fillings = 0; // of the word from `back` on, as far as they are not taken; reversed
    while (front < back) {
        const std::size_t count = std::min<std::size_t>(64, back - front);
        if (holes == 0) {
            holes = ~kept_among(front, count) & all_of(count);
            holes_from = front;
            front += count;
        } else {
            back -= count;
            fillings = reversed(kept_among(back, count) & all_of(count));
        }
        for (; holes != 0 && fillings != 0; holes &= holes - 1, fillings &= fillings - 1)
            list[holes_from + lowest(holes)] = list[back + 63 - lowest(fillings)];
    }

    // One word at most is left that has holes and fillings of its own.
    std::uint64_t kept = reversed(fillings);
    std::size_t first = back;
    if (holes != 0) {
        kept = holes ^ all_of(front - holes_from);
        first = holes_from;
    }
    while ((kept & (kept + 1)) != 0) {
        const std::size_t hole = lowest(~kept);
        const std::size_t filling = 63 - lowest(reversed(kept));
        list[first + hole] = list[first + filling];
        kept ^= std::uint64_t{1} << hole | std::uint64_t{1} << filling;
    }
    return first + static_cast<std::size_t>(std::popcount(kept));
}

/// What partition_two_ended asks, answered by keep(entry).
template <class Entry, class Keep> auto judged_by(std::span<Entry> list, Keep keep) noexcept {
    return [=](std::size_t first, std::size_t count) {
        std::uint64_t kept = 0;
        for (std::size_t i = 0; i < count; ++i) kept |= std::uint64_t{keep(list[first + i])} << i;
        return kept;
    };
}
} // namespace vantel
