/// What the labels of a list have in common.
#pragma once

#include "algorithms/lanes.hpp"
#include "algorithms/wide_loop.hpp"
#include "state/entries.hpp"
#include "state/limits.hpp"
#include <cstdint>
#include <vector>

namespace vantel::qudit {
/// A qudit that is left in one level, by a measurement or because no gate has acted on it yet, tells no two labels
/// apart. What finds labels by their rank leaves such qudits out.
struct Survey {
    std::uint64_t some; ///< the bits that are set in the levels of some entry
    std::uint64_t all;  ///< those that are set in all
    bool same_dimensions;

    /// @param entries  at least one
    explicit Survey(PackedEntries entries) {
        const auto labels = wide_loop([entries]() VANTEL_INLINED {
            const auto label = [](const PackedAmplitude& entry) {
                return *reinterpret_cast<const StoredWords*>(&entry);
            };
            struct {
                Words some;
                Words all;
            } bits{label(entries[0]), label(entries[0])};
            for (const PackedAmplitude& entry : entries) {
                bits.some |= label(entry);
                bits.all &= label(entry);
            }
            return bits;
        });
        some = labels.some[0];
        all = labels.all[0];
        same_dimensions = labels.some[1] == labels.all[1];
    }

    /// Whether an entry may have a qudit in that level.
    [[nodiscard]] bool may_occur(SlotLayout layout, int qudit, std::uint64_t level) const noexcept {
        return (layout.level(all, qudit) & ~level) == 0 && (level & ~layout.level(some, qudit)) == 0;
    }

    /// The qudits whose levels differ within the list and whose fields are not among `but`, ascending.
    [[nodiscard]] std::vector<int> varying_qudits(SlotLayout layout, std::uint64_t but) const {
        std::vector<int> qudits;
        for (int qudit = 0; qudit < MAX_QUDIT_NUM; ++qudit)
            if (((some ^ all) & ~but & layout.field(qudit)) != 0) qudits.push_back(qudit);
        return qudits;
    }
};
} // namespace vantel::qudit
