/// Which entries of a list pair in a reduced density matrix.
#pragma once

#include "state/entries.hpp"
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace vantel::qudit {
/// The entries that pair with each: those with the same levels in the traced fields, itself included, in stored order.
/// Only such pairs contribute.
class Partners {
public:
    /// @param entries  fewer than 2^32
    /// @throws std::bad_alloc
    Partners(PackedEntries entries, std::uint64_t traced);

    /// Calls `visit(partner)` for each partner of an entry.
    template <class Visit> [[gnu::always_inline]] void for_each_of(std::uint32_t entry, Visit visit) const {
        const std::uint32_t group = group_of_[entry];
        if (group == alone) {
            visit(entry);
            return;
        }
        for (std::uint32_t i = begins_[group - 1]; i < begins_[group]; ++i) visit(members_[i]);
    }

private:
    static constexpr std::uint32_t alone = 0;

    std::vector<std::uint32_t> group_of_; ///< of each entry, counted from 1
    std::vector<std::uint32_t> begins_;   ///< of each group's members, and where the last group ends
    std::vector<std::uint32_t> members_;  ///< of all groups of more than one
};
} // namespace vantel::qudit
