/// Sorting by key in linear time.
#pragma once

#include <cstdint>
#include <span>

namespace vantel {
/// Sorts `items` ascending by the bits at `low_bit` and above, items equal there keeping their order. Linear in the
/// items, with one pass for each digit in which the items differ.
/// @param scratch  as many words as `items`; overwritten
void radix_sort(std::span<std::uint64_t> items, std::span<std::uint64_t> scratch, unsigned low_bit) noexcept;
} // namespace vantel
