#include "state/label_groups.hpp"
#include "algorithms/gathered_bits.hpp"
#include "algorithms/radix_sort.hpp"
#include <algorithm>
#include <bit>
#include <numeric>

namespace vantel::qudit {
LabelGroups::LabelGroups(PackedEntries entries, std::uint64_t fields, Scratch& scratch)
    : size_(entries.size()), keys_(scratch.take<std::uint64_t>(entries.size())),
      members_(scratch.take<std::uint32_t>(entries.size())) {
    const GatheredBits key_of(fields);
    std::uint64_t some = 0;
    for (const PackedAmplitude& entry : entries) some |= entry.values;
    const auto position_bits = static_cast<unsigned>(std::bit_width(size_));
    // Levels and position together are one word, unless both are extreme.
    if (static_cast<unsigned>(std::bit_width(key_of(some))) + position_bits > 64) {
        std::iota(members_, members_ + size_, std::uint32_t{0});
        const auto key_at = [&](std::uint32_t member) { return key_of(entries[member].values); };
        std::stable_sort(members_, members_ + size_,
                         [&](std::uint32_t a, std::uint32_t b) { return key_at(a) < key_at(b); });
        std::transform(members_, members_ + size_, keys_, key_at);
        return;
    }
    for (std::size_t i = 0; i < size_; ++i) keys_[i] = key_of(entries[i].values) << position_bits | i;
    radix_sort({keys_, size_}, {scratch.take<std::uint64_t>(size_), size_}, position_bits);
    const std::uint64_t position = (std::uint64_t{1} << position_bits) - 1;
    for (std::size_t i = 0; i < size_; ++i) {
        members_[i] = static_cast<std::uint32_t>(keys_[i] & position);
        keys_[i] >>= position_bits;
    }
}
} // namespace vantel::qudit
