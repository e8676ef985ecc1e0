#include "state/field_groups.hpp"

#include <algorithm>

#include "state/radix_sort.hpp"

namespace vantel::qudit {

FieldGroups::FieldGroups(std::span<const PackedAmplitude> entries, unsigned position, unsigned bits,
                         std::uint64_t levels, std::uint64_t any)
    : rest_of_{(std::uint64_t{1} << position) - 1, bits}, levels_(levels) {
    // As long as there are no more places than this for each entry, a table is cheaper than sorting.
    constexpr std::uint64_t sparsest = 16;
    const std::uint64_t range = rest_of_(any) + 1;
    if (range > sparsest * entries.size() || range * levels > sparsest * entries.size() ||
        !group_by_table(entries, range))
        group_by_sorting(entries);
    bound_ = std::min<std::uint64_t>(range, entries.size());
}

/// One place in a table for each rest and level. Returns false where repeated labels need more.
bool FieldGroups::group_by_table(std::span<const PackedAmplitude> entries, std::uint64_t range) {
    sizes_ = SparseBytes(range);
    members_.reset(new std::uint32_t[range * levels_]);
    // Copies that no store to a byte can be thought to change.
    const Rest rest_of = rest_of_;
    const std::uint64_t levels = levels_;
    std::uint8_t* const sizes = &sizes_[0];
    std::uint32_t* const members = members_.get();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::uint64_t rest = rest_of(entries[i].values);
        const std::uint64_t size = sizes[rest];
        if (size == levels)
            return false;
        members[rest * levels + size] = static_cast<std::uint32_t>(i);
        sizes[rest] = static_cast<std::uint8_t>(size + 1);
    }
    return true;
}

void FieldGroups::group_by_sorting(std::span<const PackedAmplitude> entries) {
    std::vector<std::uint64_t> scratch(entries.size());
    sorted_.resize(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i)
        sorted_[i] = rest_of_(entries[i].values) << index_bits | i;
    radix_sort(sorted_, scratch, index_bits);
    members_.reset(new std::uint32_t[entries.size()]);
    for (std::size_t i = 0; i < entries.size(); ++i)
        members_[i] = static_cast<std::uint32_t>(sorted_[i] & ((1U << index_bits) - 1));
}

} // namespace vantel::qudit
