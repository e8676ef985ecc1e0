#include "state/position_table.hpp"
#include "algorithms/crossovers.hpp"
#include "algorithms/lanes.hpp"
#include "state/limits.hpp"

namespace vantel::qudit {
Survey::Survey(PackedEntries entries) noexcept {
    struct Labels {
        Words some;
        Words all;
    };
    const Labels labels = wide_loop([entries]() VANTEL_INLINED {
        const auto label = [](const PackedAmplitude& entry) { return *reinterpret_cast<const StoredWords*>(&entry); };
        Labels bits{label(entries[0]), label(entries[0])};
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

PositionTable::PositionTable(PackedEntries entries, SlotLayout layout, std::span<const int> first,
                             std::uint64_t varying)
    : entries_(entries.size()), rank_(layout, entries.size(), [&](auto add_ranked) {
          const auto add = [&](int qudit) { add_ranked(qudit, layout.dimension(entries.front().dimensions, qudit)); };
          for (const int qudit : first) add(qudit);
          for (int qudit = 0; qudit < MAX_QUDIT_NUM; ++qudit)
              if ((varying & ~layout.fields(first) & layout.field(qudit)) != 0) add(qudit);
      }) {}

bool PositionTable::is_close() const noexcept {
    return rank_.size() <= crossover::places_an_entry * entries_ && rank_.size() >> 31 == 0;
}
} // namespace vantel::qudit
