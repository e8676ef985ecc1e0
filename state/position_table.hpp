/// Where each label of a list stands, by its rank among all combinations of levels.
#pragma once

#include "algorithms/scratch.hpp"
#include "algorithms/wide_loop.hpp"
#include "state/entries.hpp"
#include "state/level_rank.hpp"

namespace vantel::qudit {
/// What the labels of a list have in common. A qudit that is left in one level, by a measurement or because no gate has
/// acted on it yet, tells no two labels apart, and what finds labels by their rank leaves it out.
struct Survey {
    /// @param entries  at least one
    explicit Survey(PackedEntries entries) noexcept;

    /// Whether an entry may have a qudit in that level.
    [[nodiscard]] bool may_occur(SlotLayout layout, int qudit, std::uint64_t level) const noexcept {
        return (layout.level(all, qudit) & ~level) == 0 && (level & ~layout.level(some, qudit)) == 0;
    }
    /// The bits that differ between the levels of some entries.
    [[nodiscard]] std::uint64_t varying() const noexcept { return some ^ all; }

    std::uint64_t some; ///< the bits that are set in the levels of some entry
    std::uint64_t all;  ///< those that are set in all
    bool same_dimensions;
};

class PositionTable {
public:
    /// @param entries  at least one, all of the same dimensions
    /// @param first    the qudits that vary fastest in the table
    /// @param varying  bits in the fields of the qudits that follow, in ascending order
    /// @throws std::bad_alloc
    PositionTable(PackedEntries entries, SlotLayout layout, std::span<const int> first, std::uint64_t varying);
    /// Whether the table has not many more places than there are entries, and a place fits 32 bits.
    [[nodiscard]] bool is_close() const noexcept;
    /// Notes the positions of a list for which is_close(), the one that the table was made for.
    /// @param visit  visit(entry, rank, i) is called for the i-th entry
    /// @return false where a label is repeated, or a level stands beyond its dimension: there is no table then
    /// @throws std::bad_alloc
    template <class Visit> bool fill(PackedEntries entries, Scratch& scratch, Visit visit) {
        positions_ = {scratch.take<std::uint32_t>(rank_.size()), rank_.size()};
        return rank_.cheapest([entries, visit, positions = positions_](auto rank) {
            return wide_loop([=]() VANTEL_INLINED {
                std::fill(positions.begin(), positions.end(), 0);
                std::uint32_t position = 0;
                for (const PackedAmplitude& entry : entries) {
                    const std::uint64_t r = rank(entry.values);
                    if (r >= positions.size() || positions[r] != 0) [[unlikely]]
                        return false;
                    visit(entry, r, position);
                    positions[r] = ++position;
                }
                return true;
            });
        });
    }
    /// By rank, a position in the list counted from 1; 0 where no entry has the label.
    [[nodiscard]] std::span<std::uint32_t> positions() const noexcept { return positions_; }
    [[nodiscard]] std::size_t size() const noexcept { return rank_.size(); }
    /// Whether every combination of levels has an entry.
    [[nodiscard]] bool is_complete() const noexcept { return entries_ == rank_.size(); }
    [[nodiscard]] const LevelRank& rank() const noexcept { return rank_; }

private:
    std::size_t entries_;
    LevelRank rank_;
    std::span<std::uint32_t> positions_;
};
} // namespace vantel::qudit
