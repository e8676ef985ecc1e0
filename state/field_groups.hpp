/// The entries of a list grouped by some fields of their labels.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "state/basis_amplitude.hpp"
#include "state/sparse_bytes.hpp"
#include "state/subkey.hpp"

namespace vantel::qudit {

class FieldGroups {
public:
    /// Groups fewer than 2^32 entries by their levels in `fields`. Linear in the entries.
    /// @param any   the bits that are set in the levels of some entry
    /// @param most  how many members a group has, unless labels are repeated
    /// @throws std::bad_alloc
    FieldGroups(std::span<const PackedAmplitude> entries, std::uint64_t fields, std::uint64_t any,
                std::uint64_t most);

    /// Whether the groups' levels are so close together that a table of all of them is cheaper than sorting:
    /// as long as it has not many more places than there are entries.
    [[nodiscard]] static bool are_close(std::size_t entries, std::uint64_t fields, std::uint64_t any,
                                        std::uint64_t most) noexcept;

    /// As many groups at the most.
    [[nodiscard]] std::size_t bound() const noexcept { return bound_; }

    /// Calls `visit(members)` for each group, ascending by the levels that its members share. Members are
    /// positions in the list, ascending.
    template <class Visit> void for_each(Visit visit) const {
        if (!keys_.empty())
            for_each_run(visit);
        else
            sizes_.for_each_set(
                [members = members_.get(), most = most_, &visit](std::uint64_t key, std::uint8_t size) {
                    visit(std::span<const std::uint32_t>(&members[key * most], size));
                });
    }

private:
    template <class Visit> void for_each_run(Visit visit) const {
        for (std::size_t begin = 0, end = 0; begin < keys_.size(); begin = end) {
            while (end < keys_.size() && keys_[end] == keys_[begin])
                ++end;
            visit(std::span<const std::uint32_t>(&members_[begin], end - begin));
        }
    }

    bool group_by_table(std::span<const PackedAmplitude> entries, const Subkey& key_of, std::uint64_t range);
    void group_by_sorting(std::span<const PackedAmplitude> entries, const Subkey& key_of,
                          std::uint64_t range);

    std::uint64_t most_;
    std::size_t bound_;
    SparseBytes sizes_;               ///< of each group, by its levels
    std::vector<std::uint64_t> keys_; ///< instead of sizes_, those levels for each of members_
    std::unique_ptr<std::uint32_t[]> members_;
};

} // namespace vantel::qudit
