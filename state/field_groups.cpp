#include "state/field_groups.hpp"

#include "state/radix_sort.hpp"
#include "state/sparse_bytes.hpp"

namespace vantel::qudit {

FieldGroups::FieldGroups(std::span<const PackedAmplitude> entries, unsigned position, unsigned bits,
                         std::uint64_t levels)
    : low_((std::uint64_t{1} << position) - 1), bits_(bits) {
    std::uint64_t any = 0;
    for (const PackedAmplitude& entry : entries)
        any |= entry.values;
    // As long as there are no more places than this for each entry, a table is cheaper than sorting.
    constexpr std::uint64_t sparsest = 16;
    const std::uint64_t range = rest_of(any) + 1;
    if (range > sparsest * entries.size() || range * levels > sparsest * entries.size() ||
        !group_by_table(entries, range, levels))
        group_by_sorting(entries);
}

/// One place in a table for each rest and level. Returns false, with no groups, where repeated labels need
/// more.
bool FieldGroups::group_by_table(std::span<const PackedAmplitude> entries, std::uint64_t range,
                                 std::uint64_t levels) {
    SparseBytes sizes(range);
    members_.reset(new std::uint32_t[range * levels]);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::uint64_t rest = rest_of(entries[i].values);
        if (sizes[rest] == levels)
            return false;
        members_[rest * levels + sizes[rest]++] = static_cast<std::uint32_t>(i);
    }
    groups_.reserve(entries.size() / levels + 1);
    sizes.for_each_set([this, levels](std::uint64_t rest, std::uint8_t size) {
        groups_.push_back({rest, &members_[rest * levels], size});
    });
    return true;
}

void FieldGroups::group_by_sorting(std::span<const PackedAmplitude> entries) {
    constexpr unsigned index_bits = 24;
    std::vector<std::uint64_t> items(2 * entries.size());
    const std::span<std::uint64_t> order(items.data(), entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i)
        order[i] = rest_of(entries[i].values) << index_bits | i;
    radix_sort(order, std::span(items).subspan(entries.size()), index_bits);
    members_.reset(new std::uint32_t[entries.size()]);
    for (std::size_t i = 0; i < order.size(); ++i) {
        members_[i] = static_cast<std::uint32_t>(order[i] & ((1U << index_bits) - 1));
        const std::uint64_t rest = order[i] >> index_bits;
        if (groups_.empty() || groups_.back().rest != rest)
            groups_.push_back({rest, &members_[i], 0});
        ++groups_.back().size;
    }
}

} // namespace vantel::qudit
