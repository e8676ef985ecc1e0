#include "state/complete_list.hpp"

#include <limits>

#include "state/limits.hpp"
#include "state/wide_loop.hpp"

namespace vantel::qudit {

CompleteList::Shape::Shape(std::uint64_t dimensions_word, SlotLayout layout, std::span<const int> first) {
    const auto add = [&](int qudit, std::uint64_t field) {
        qudits.push_back(qudit);
        dimensions.push_back(((dimensions_word & field) >> layout.position(qudit)) + 1);
        fields |= field;
    };
    for (const int qudit : first)
        add(qudit, layout.mask() << layout.position(qudit));
    for (int qudit = 0; qudit < MAX_QUDIT_NUM; ++qudit) {
        const std::uint64_t field = layout.mask() << layout.position(qudit);
        if ((dimensions_word & field & ~fields) != 0)
            add(qudit, field);
    }
}

CompleteList::CompleteList(std::span<const PackedAmplitude> entries, SlotLayout layout,
                           std::span<const int> first)
    : CompleteList(entries, layout, Shape(entries.empty() ? 0 : entries.front().dimensions, layout, first)) {}

CompleteList::CompleteList(std::span<const PackedAmplitude> entries, SlotLayout layout, const Shape& shape)
    : rank_(layout, shape.qudits, shape.dimensions, entries.size()) {
    if (rank_.size() != entries.size() || entries.size() > std::numeric_limits<std::uint32_t>::max())
        return;
    positions_.resize(entries.size());
    if (!note_positions(entries, shape.fields))
        positions_.clear();
}

bool CompleteList::note_positions(std::span<const PackedAmplitude> entries, std::uint64_t fields) {
    bool complete = false;
    rank_.cheapest([&](const auto& cheapest_rank) {
        wide_loop([&] {
            // Copies that no store to a position can be thought to change.
            const auto rank = cheapest_rank;
            std::uint32_t* const positions = positions_.data();
            const std::size_t size = entries.size();
            const std::uint64_t dimensions = entries.front().dimensions;
            std::uint32_t taken = 0;
            std::uint64_t any = 0;
            std::uint32_t position = 0;
            for (const PackedAmplitude& entry : entries) {
                const std::uint64_t r = rank(entry.values);
                if (r >= size || entry.dimensions != dimensions) [[unlikely]]
                    return;
                any |= entry.values;
                taken |= positions[r];
                positions[r] = ++position;
            }
            // A level can stand where a label has no qudit, and then it tells labels apart.
            complete = taken == 0 && (any & ~fields) == 0;
        });
    });
    return complete;
}

} // namespace vantel::qudit
