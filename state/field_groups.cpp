#include "state/field_groups.hpp"

#include <algorithm>
#include <limits>

#include "state/radix_sort.hpp"
#include "state/wide_loop.hpp"

namespace vantel::qudit {

bool FieldGroups::are_close(std::size_t entries, std::uint64_t fields, std::uint64_t any,
                            std::uint64_t most) noexcept {
    constexpr std::uint64_t sparsest = 16;
    const std::uint64_t range = Subkey(fields)(any) + 1;
    return most <= std::numeric_limits<std::uint8_t>::max() && range <= sparsest * entries &&
           range * most <= sparsest * entries;
}

FieldGroups::FieldGroups(std::span<const PackedAmplitude> entries, std::uint64_t fields, std::uint64_t any,
                         std::uint64_t most)
    : most_(most) {
    const Subkey key_of(fields);
    const std::uint64_t range = key_of(any) + 1;
    if (!are_close(entries.size(), fields, any, most) || !group_by_table(entries, key_of, range))
        group_by_sorting(entries, key_of);
    bound_ = std::min<std::uint64_t>(range, entries.size());
}

/// `most` places in a table for each group. Returns false where repeated labels need more.
bool FieldGroups::group_by_table(std::span<const PackedAmplitude> entries, const Subkey& key_of,
                                 std::uint64_t range) {
    sizes_ = SparseBytes(range);
    members_.reset(new std::uint32_t[range * most_]);
    return key_of.cheapest([&](const auto& cheapest_key_of) {
        bool fits = true;
        wide_loop([&] {
            // Copies that no store to a byte can be thought to change.
            const auto own_key_of = cheapest_key_of;
            const std::uint64_t most = most_;
            std::uint8_t* const sizes = &sizes_[0];
            std::uint32_t* const members = members_.get();
            std::uint32_t position = 0;
            for (const PackedAmplitude& entry : entries) {
                const std::uint64_t key = own_key_of(entry.values);
                const std::uint64_t size = sizes[key];
                if (size == most) [[unlikely]] {
                    fits = false;
                    return;
                }
                members[key * most + size] = position++;
                sizes[key] = static_cast<std::uint8_t>(size + 1);
            }
        });
        return fits;
    });
}

void FieldGroups::group_by_sorting(std::span<const PackedAmplitude> entries, const Subkey& key_of) {
    std::vector<std::uint64_t> scratch(entries.size());
    sorted_.resize(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i)
        sorted_[i] = key_of(entries[i].values) << index_bits | i;
    radix_sort(sorted_, scratch, index_bits);
    members_.reset(new std::uint32_t[entries.size()]);
    for (std::size_t i = 0; i < entries.size(); ++i)
        members_[i] = static_cast<std::uint32_t>(sorted_[i] & ((1U << index_bits) - 1));
}

} // namespace vantel::qudit
