#include "state/field_groups.hpp"

#include <algorithm>
#include <bit>
#include <limits>
#include <numeric>

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
        group_by_sorting(entries, key_of, range);
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

void FieldGroups::group_by_sorting(std::span<const PackedAmplitude> entries, const Subkey& key_of,
                                   std::uint64_t range) {
    const std::size_t size = entries.size();
    keys_.resize(size);
    members_.reset(new std::uint32_t[size]);
    // Levels and position together are one word, unless both are extreme.
    const auto position_bits = static_cast<unsigned>(std::bit_width(size));
    if (static_cast<unsigned>(std::bit_width(range)) + position_bits > 64) {
        std::iota(members_.get(), members_.get() + size, std::uint32_t{0});
        const auto key_at = [&](std::uint32_t member) { return key_of(entries[member].values); };
        std::stable_sort(members_.get(), members_.get() + size,
                         [&](std::uint32_t a, std::uint32_t b) { return key_at(a) < key_at(b); });
        std::transform(members_.get(), members_.get() + size, keys_.begin(), key_at);
        return;
    }
    std::vector<std::uint64_t> scratch(size);
    for (std::size_t i = 0; i < size; ++i)
        keys_[i] = key_of(entries[i].values) << position_bits | i;
    radix_sort(keys_, scratch, position_bits);
    const std::uint64_t position = (std::uint64_t{1} << position_bits) - 1;
    for (std::size_t i = 0; i < size; ++i) {
        members_[i] = static_cast<std::uint32_t>(keys_[i] & position);
        keys_[i] >>= position_bits;
    }
}

} // namespace vantel::qudit
