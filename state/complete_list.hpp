/// Lists that hold every combination of levels once, as most states do that fill a library of this kind.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "state/basis_amplitude.hpp"
#include "state/level_rank.hpp"

namespace vantel::qudit {

/// Where each label of such a list stands.
class CompleteList {
public:
    /// @param first  the qudits whose levels vary fastest in the order of positions(), by index
    /// @throws std::bad_alloc
    CompleteList(std::span<const PackedAmplitude> entries, SlotLayout layout, std::span<const int> first);

    /// Positions in the list, counted from 1, ordered by the levels of the other qudits, as labels are, and
    /// then by those of the first ones; so entries that agree in the others are neighbours. None where a
    /// label is missing or repeated, or its dimensions are not those of the first entry.
    [[nodiscard]] std::span<const std::uint32_t> positions() const noexcept { return positions_; }

    /// The place of a label among positions().
    [[nodiscard]] const LevelRank& rank() const noexcept { return rank_; }

private:
    /// The qudits of a label in an order of their own.
    struct Shape {
        std::vector<int> qudits;
        std::vector<std::uint64_t> dimensions;
        std::uint64_t fields = 0;

        Shape(std::uint64_t dimensions_word, SlotLayout layout, std::span<const int> first);
    };

    CompleteList(std::span<const PackedAmplitude> entries, SlotLayout layout, const Shape& shape);

    /// @return whether the list is complete
    bool note_positions(std::span<const PackedAmplitude> entries, std::uint64_t fields);

    LevelRank rank_;
    std::vector<std::uint32_t> positions_;
};

} // namespace vantel::qudit
