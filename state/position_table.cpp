#include "state/position_table.hpp"
#include "algorithms/crossovers.hpp"
#include "algorithms/wide_loop.hpp"
#include <algorithm>

namespace vantel::qudit {
namespace {
std::vector<std::uint64_t> dimensions_of(const PackedAmplitude& entry, SlotLayout layout, std::span<const int> qudits) {
    std::vector<std::uint64_t> dimensions(qudits.size());
    std::transform(qudits.begin(), qudits.end(), dimensions.begin(),
                   [&](int qudit) { return layout.dimension(entry.dimensions, qudit); });
    return dimensions;
}
} // namespace

PositionTable::PositionTable(const PackedAmplitude& any, SlotLayout layout, std::span<const int> qudits,
                             std::size_t size)
    : entries_(size), rank_(layout, qudits, dimensions_of(any, layout, qudits), size) {}

bool PositionTable::is_close() const noexcept {
    return rank_.size() <= crossover::places_an_entry * entries_ && rank_.size() >> 31 == 0;
}

bool PositionTable::fill(PackedEntries entries, Scratch& scratch) {
    positions_ = {scratch.take<std::uint32_t>(rank_.size()), rank_.size()};
    return rank_.cheapest([entries, positions = positions_](auto rank) {
        return wide_loop([=]() VANTEL_INLINED {
            std::fill(positions.begin(), positions.end(), 0);
            std::uint32_t position = 0;
            for (const PackedAmplitude& entry : entries) {
                const std::uint64_t r = rank(entry.values);
                if (r >= positions.size() || positions[r] != 0) [[unlikely]]
                    return false;
                positions[r] = ++position;
            }
            return true;
        });
    });
}
} // namespace vantel::qudit
