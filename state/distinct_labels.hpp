/// Repeated labels.
#pragma once

#include "algorithms/crossovers.hpp"
#include "algorithms/key_index.hpp"
#include "state/entries.hpp"
#include <algorithm>

namespace vantel::qudit {
/// Calls `use(is_new)`, where is_new(entry) tells whether no entry that it was asked for before has this one's label.
template <class Use> std::size_t with_labels_seen(std::size_t entries, unsigned key_bits, Use use) {
    if (entries <= crossover::labels_compared) {
        std::array<std::uint64_t, crossover::labels_compared> seen;
        auto end = seen.begin();
        return use([&](const PackedAmplitude& entry) {
            if (std::find(seen.begin(), end, entry.values) != end) return false;
            *end++ = entry.values;
            return true;
        });
    }
    return with_key_index(key_bits, entries, [&](auto& seen) {
        return use([&](const PackedAmplitude& entry) {
            const std::size_t known = seen.size();
            return seen.find_or_add(entry.values) == known;
        });
    });
}

/// Moves the entries whose labels are new to the front, in their order; the first of a label stands.
/// @param key_bits  no label has a bit at or above this one
/// @return how many there are
/// @throws std::bad_alloc
inline std::size_t keep_first_of_label(std::span<PackedAmplitude> entries, unsigned key_bits) {
    return with_labels_seen(entries.size(), key_bits, [entries](auto is_new) {
        std::size_t kept = 0;
        for (const PackedAmplitude& entry : entries)
            if (is_new(entry)) entries[kept++] = entry;
        return kept;
    });
}

/// Whether no label stands twice. @throws std::bad_alloc
inline bool has_distinct_labels(PackedEntries entries, unsigned key_bits) {
    return with_labels_seen(entries.size(), key_bits, [entries](auto is_new) -> std::size_t {
               return std::all_of(entries.begin(), entries.end(), is_new);
           }) != 0;
}
} // namespace vantel::qudit
