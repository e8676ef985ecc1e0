/// The entries of a list grouped by the levels of some qudits.
#pragma once

#include "algorithms/scratch.hpp"
#include "state/entries.hpp"
#include <cstddef>
#include <cstdint>
#include <span>

namespace vantel::qudit {
/// For lists whose labels lie too far apart for a table: groups are found by sorting.
class LabelGroups {
public:
    /// @param entries  fewer than 2^32
    /// @param fields   where the levels stand that the members of a group share
    /// @throws std::bad_alloc
    LabelGroups(PackedEntries entries, std::uint64_t fields, Scratch& scratch);

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
