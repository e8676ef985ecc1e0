#include "state/distinct_labels.hpp"

#include <algorithm>

#include "state/key_index.hpp"

namespace vantel::qudit {

std::size_t keep_first_of_label(std::span<PackedAmplitude> entries, unsigned key_bits) {
    if (entries.size() < 2)
        return entries.size();
    return with_key_index(key_bits, entries.size(), [entries](auto& seen) {
        std::size_t kept = 0;
        for (const PackedAmplitude& entry : entries)
            if (seen.find_or_add(entry.values) == kept)
                entries[kept++] = entry;
        return kept;
    });
}

bool has_distinct_labels(std::span<const PackedAmplitude> entries, unsigned key_bits) {
    if (entries.size() < 2)
        return true;
    return with_key_index(key_bits, entries.size(), [entries](auto& seen) {
        return std::all_of(entries.begin(), entries.end(), [&seen](const PackedAmplitude& entry) {
            const std::size_t known = seen.size();
            return seen.find_or_add(entry.values) == known;
        });
    });
}

} // namespace vantel::qudit
