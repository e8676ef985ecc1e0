#include "state/entries_by_rank.hpp"

#include <vector>

#include "state/level_rank.hpp"
#include "state/product.hpp"
#include "state/wide_loop.hpp"

namespace vantel::qudit {

namespace {

/// The rank of a label among all combinations of levels, with the dimensions of one label.
LevelRank rank_of_all(SlotLayout layout, int qudit_count, std::uint64_t dimensions, std::size_t labels) {
    std::vector<int> qudits;
    std::vector<std::uint64_t> levels;
    for (int qudit = 0; qudit < qudit_count; ++qudit) {
        qudits.push_back(qudit);
        levels.push_back((dimensions >> layout.position(qudit) & layout.mask()) + 1);
    }
    return {layout, qudits, levels, labels};
}

} // namespace

std::optional<EntriesByRank> EntriesByRank::of(std::span<const PackedAmplitude> entries, SlotLayout layout,
                                               int qudit_count) {
    constexpr std::size_t few = 16;
    constexpr std::size_t many = std::size_t{1} << 31;
    constexpr std::uint64_t sparsest = 16; // combinations an entry, beyond which sorting is quicker
    if (entries.size() <= few || entries.size() >= many)
        return {};
    const std::uint64_t dimensions = entries.front().dimensions;
    const LevelRank rank = rank_of_all(layout, qudit_count, dimensions, entries.size());
    const std::uint64_t ranks = rank.size();
    if (ranks / sparsest >= entries.size())
        return {};

    EntriesByRank table(layout, dimensions, ranks, entries.size());
    bool regular = true;
    rank.cheapest([&](const auto& cheapest_rank) {
        wide_loop([&] {
            const auto own_rank = cheapest_rank; // copies that no store can be thought to change
            const std::span<const PackedAmplitude> own_entries = entries;
            const std::uint64_t own_dimensions = dimensions;
            const std::uint64_t own_ranks = ranks;
            const bool complete = table.is_complete();
            std::uint32_t* const position_of = table.positions.data();
            Copy* const copied = table.copies.get();
            std::uint64_t i = 0;
            for (const PackedAmplitude& entry : own_entries) {
                const std::uint64_t r = own_rank(entry.values);
                if (entry.dimensions != own_dimensions || r >= own_ranks || position_of[r] != 0)
                    [[unlikely]] {
                    regular = false;
                    return;
                }
                const std::uint64_t position = complete ? r : i++;
                position_of[r] = static_cast<std::uint32_t>(position + 1);
                copied[position].values = entry.values;
                store(parts_of(entry.amplitude), copied[position].amplitude);
            }
        });
    });
    if (!regular)
        return {};
    return table;
}

std::uint64_t EntriesByRank::stride(unsigned field) const noexcept {
    std::uint64_t combinations = 1;
    for (unsigned below = 0; below < field; below += layout_.bits)
        combinations *= (dimensions_ >> below & layout_.mask()) + 1;
    return combinations;
}

} // namespace vantel::qudit
