/// Stable sorting by key: of a few items, and of many in linear time.
#pragma once

#include "algorithms/crossovers.hpp"
#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <span>
#include <utility>

namespace vantel {
/// Sorts `items` ascending by `key(item)`, in as many steps as there are pairs: for up to crossover::items_inserted.
template <class Item, class Key> void insertion_sort(std::span<Item> items, Key key) noexcept {
    for (std::size_t end = 1; end < items.size(); ++end) {
        const Item item = items[end];
        std::size_t place = end;
        for (; place > 0 && key(item) < key(items[place - 1]); --place) items[place] = items[place - 1];
        items[place] = item;
    }
}

inline constexpr unsigned digit_bits = 11; // 2048 counters, which stay in the first-level cache

/// One stable pass by the digit at `shift`.
inline void radix_pass(std::span<const std::uint64_t> from, std::span<std::uint64_t> to, unsigned shift) noexcept {
    std::array<std::uint32_t, 1U << digit_bits> place{};
    const auto digit = [shift, &place](std::uint64_t item) { return item >> shift & (place.size() - 1); };
    for (const std::uint64_t item : from) ++place[digit(item)];
    std::uint32_t start = 0;
    for (std::uint32_t& count : place) start += std::exchange(count, start);
    for (const std::uint64_t item : from) to[place[digit(item)]++] = item;
}

/// Sorts `items` ascending by the bits at `low_bit` and above, items equal there keeping their order. Linear in the
/// items, with one pass for each digit in which the items differ.
/// @param scratch  as many words as `items`; overwritten
inline void radix_sort(std::span<std::uint64_t> items, std::span<std::uint64_t> scratch, unsigned low_bit) noexcept {
    if (items.size() <= crossover::items_inserted)
        return insertion_sort(items, [low_bit](std::uint64_t item) { return item >> low_bit; });
    std::uint64_t differing = 0;
    bool sorted = true;
    for (std::size_t i = 1; i < items.size(); ++i) {
        differing |= items[i] ^ items[0];
        sorted &= items[i - 1] >> low_bit <= items[i] >> low_bit;
    }
    if (sorted) return;
    std::span<std::uint64_t> from = items;
    std::span<std::uint64_t> to = scratch;
    for (std::uint64_t rest = differing >> low_bit << low_bit; rest != 0;) {
        const auto shift = static_cast<unsigned>(std::countr_zero(rest));
        radix_pass(from, to, shift);
        std::swap(from, to);
        rest = shift + digit_bits < 64 ? rest >> (shift + digit_bits) << (shift + digit_bits) : 0;
    }
    if (from.data() != items.data()) std::copy(from.begin(), from.end(), items.begin());
}
} // namespace vantel
