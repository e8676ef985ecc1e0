#include "state/distinct_labels.hpp"
#include "algorithms/crossovers.hpp"
#include "algorithms/key_index.hpp"
#include <algorithm>

namespace vantel::qudit {
namespace {
bool has_label(std::span<const PackedAmplitude> entries, std::uint64_t values) {
    return std::any_of(entries.begin(), entries.end(),
                       [values](const PackedAmplitude& entry) { return entry.values == values; });
}
} // namespace

std::size_t keep_first_of_label(std::span<PackedAmplitude> entries, unsigned key_bits) {
    std::size_t kept = 0;
    if (entries.size() <= crossover::labels_compared) {
        for (const PackedAmplitude& entry : entries)
            if (!has_label(entries.first(kept), entry.values)) entries[kept++] = entry;
        return kept;
    }
    return with_key_index(key_bits, entries.size(), [entries, kept](auto& seen) mutable {
        for (const PackedAmplitude& entry : entries)
            if (seen.find_or_add(entry.values) == kept) entries[kept++] = entry;
        return kept;
    });
}

bool has_distinct_labels(std::span<const PackedAmplitude> entries, unsigned key_bits) {
    if (entries.size() <= crossover::labels_compared) {
        for (std::size_t i = 1; i < entries.size(); ++i)
            if (has_label(entries.first(i), entries[i].values)) return false;
        return true;
    }
    return with_key_index(key_bits, entries.size(), [entries](auto& seen) {
        return std::all_of(entries.begin(), entries.end(), [&seen](const PackedAmplitude& entry) {
            const std::size_t known = seen.size();
            return seen.find_or_add(entry.values) == known;
        });
    });
}
} // namespace vantel::qudit
