/// Where one form of an algorithm takes over from another. Each number stands beside what set it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vantel::crossover {
/// Labels that are compared one by one before an index of them is made, which allocates.
inline constexpr std::size_t labels_compared = 8;

/// Keys that a direct index has room for in any case; more, up to four times the keys that are expected, as clearing
/// them costs less than hashing.
inline constexpr std::size_t direct_keys = 256;
inline constexpr std::size_t direct_keys_each = 4;

/// Places that a table may have for each entry. Clearing and reading a place costs a sixteenth of sorting an entry.
inline constexpr std::size_t places_an_entry = 16;

/// Whether a table of `places` is not much more than the entries that it sums up: then each sum is found by its rank,
/// and otherwise by its key.
constexpr bool is_close_to(std::size_t entries, std::uint64_t places) noexcept { return places <= 256 + 4 * entries; }

/// Rows up to which a density matrix is worked out as a whole.
inline constexpr std::uint64_t matrix_rows_by_rank = 256;

/// Rows up to which the sums of all are at hand, and entries are taken as they stand; beyond, they are taken row by
/// row, which costs two nanoseconds an entry and saves half of the work on ten columns.
inline constexpr std::size_t matrix_rows_at_hand = 4;

/// Items up to which an insertion sort is quickest, and from which the counters of a radix pass pay.
inline constexpr std::size_t items_inserted = 32;
inline constexpr std::size_t items_for_radix = 512;

/// Children of a transform that stand on the stack, three times as fast as any memory.
inline constexpr std::size_t children_on_stack = 32;

/// Entries from which a transform, whatever they are, goes by its definition: their positions need more than 28 bits.
inline constexpr std::size_t entries_for_definition = std::size_t{1} << 24;

/// Entries from which a fractional exchange finds partners by rank.
inline constexpr std::size_t entries_for_ranks = 17;

/// Entries from which the phases of all levels are worked out, without asking which levels occur.
inline constexpr std::size_t entries_for_all_phases = 256;
} // namespace vantel::crossover
