/// Where each label of a list stands, by its rank among all combinations of levels.
#pragma once

#include "algorithms/scratch.hpp"
#include "state/entries.hpp"
#include "state/level_rank.hpp"
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vantel::qudit {
class PositionTable {
public:
    /// @param any     an entry of the list, all of which have the same dimensions
    /// @param qudits  those whose levels tell the labels apart, that which varies fastest in the table first
    /// @param size    of the list
    /// @throws std::bad_alloc
    PositionTable(const PackedAmplitude& any, SlotLayout layout, std::span<const int> qudits, std::size_t size);

    /// Whether the table has not many more places than there are entries, and a place fits 32 bits.
    [[nodiscard]] bool is_close() const noexcept;

    /// Notes the positions of a list for which is_close().
    /// @return false where a label is repeated, or a level stands beyond its dimension: there is no table then
    /// @throws std::bad_alloc
    bool fill(PackedEntries entries, Scratch& scratch);

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
