/// The entries of a list grouped by the levels of some qudits.
#pragma once

#include "algorithms/gathered_bits.hpp"
#include "algorithms/radix_sort.hpp"
#include "algorithms/scratch.hpp"
#include "state/entries.hpp"
#include <numeric>

namespace vantel::qudit {
/// For lists whose labels lie too far apart for a table: groups are found by sorting.
class LabelGroups {
public:
    /// @param entries  fewer than 2^32
    /// @param fields   where the levels stand that the members of a group share
    /// @throws std::bad_alloc
    LabelGroups(PackedEntries entries, std::uint64_t fields, Scratch& scratch)
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

    /// Calls `visit(members)` for each group, ascending by the levels that its members share. Members are positions in
    /// the list, ascending.
    template <class Visit> [[gnu::always_inline]] void for_each(Visit visit) const {
        for (std::size_t begin = 0, end = 0; begin < size_; begin = end) {
            while (end < size_ && keys_[end] == keys_[begin]) ++end;
            visit(std::span<const std::uint32_t>(&members_[begin], end - begin));
        }
    }

private:
    std::size_t size_;
    std::uint64_t* keys_; ///< the levels that are shared, of each of members_
    std::uint32_t* members_;
};
} // namespace vantel::qudit
