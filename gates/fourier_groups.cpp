/// The sums of the Fourier transform's groups.
#include "algorithms/constant_count.hpp"
#include "algorithms/crossovers.hpp"
#include "gates/fourier_factors.hpp"
#include "gates/fourier_group.hpp"
#include "gates/fourier_sums.hpp"
#include "state/label_groups.hpp"
#include "state/position_table.hpp"
#include "state/reduction.hpp"
#include "state/survey.hpp"
#include <algorithm>
#include <array>
#include <vector>

namespace vantel::qudit {
namespace {
/// Adds groups to the sums of a list. It is copied into the loop that it works in.
template <std::size_t d, bool full> class GroupAdder {
    using Group = FourierSums::Group;
    using Members = qudit::Members<d, full>;

public:
    GroupAdder(PackedEntries entries, SlotLayout layout, int target, const ControlTest& controls_hold,
               const FourierFactors& factors, const FourierSums& sums)
        : entries_(entries.data()), field_(layout.field(target)),
          controls_hold_(controls_hold.is_empty() ? nullptr : &controls_hold), rows_(factors.rows()),
          groups_(sums.groups()), sums_(sums.sums()) {}

    /// @param row  by level, positions counted from 1; 0 where there is no entry
    template <class Vectors> [[gnu::always_inline]] void add(const std::uint32_t* row, Vectors) {
        const Members members(row);
        if (members.size() == 0) return;
        const std::uint64_t values = entries_[members.position(0)].values;
        Group& group = groups_[count_];
        Parts* const sums = sums_ + count_ * d;
        ++count_;
        group.others = values & ~field_;
        group.run = members.size();
        if (controls_hold_ != nullptr && !(*controls_hold_)(values)) {
            keep(group, row, sums);
        } else if (transform<Vectors>(members, sums)) {
            kept_ += d;
        } else {
            kept_ += recover(members, sums);
        }
        same_run_ &= group.run != 0 && group.run == groups_[0].run;
    }

    void give(FourierSums& sums) const { sums.set_added(count_, kept_, same_run_); }

private:
    /// Each sum over the children of all members, in stored order. @return whether all stay
    template <class Vectors> [[gnu::always_inline]] bool transform(const Members& members, Parts* sums) const {
        LevelSums<d, Vectors> of_group;
        of_group.start(rows_[members.level(0)], amplitude(members.position(0)));
        if constexpr (full)
            unrolled<d - 1>([&](auto i) VANTEL_INLINED {
                of_group.add(rows_[members.level(i + 1)], amplitude(members.position(i + 1)));
            });
        else
            for (std::size_t i = 1; i < members.size(); ++i)
                of_group.add(rows_[members.level(i)], amplitude(members.position(i)));
        return of_group.store(sums);
    }

    /// Sums in which an infinity could be recovered take the standard's product throughout.
    /// @return how many stay
    [[gnu::noinline]] std::size_t recover(Members members, Parts* sums) const {
        std::size_t kept = 0;
        for (std::uint64_t k = 0; k < d; ++k) {
            if (is_lost(sums[k])) {
                const auto child = [&](std::size_t i) {
                    return rows_[members.level(i)][k](amplitude(members.position(i)));
                };
                sums[k] = child(0);
                for (std::size_t i = 1; i < members.size(); ++i) sums[k] += child(i);
            }
            kept += exceeds_threshold(sums[k]) ? 1 : 0;
        }
        return kept;
    }

    /// A group that the controls leave out: each entry is a sum of its own.
    void keep(Group& group, const std::uint32_t* row, Parts* sums) {
        group.present = 0;
        for (std::uint64_t level = 0; level < d; ++level) {
            if (row[level] == 0) continue;
            group.present |= 1U << level;
            sums[level] = amplitude(row[level] - 1);
            kept_ += exceeds_threshold(sums[level]) ? 1 : 0;
        }
        group.run = group.present == (1U << d) - 1 ? 1 : 0;
    }

    [[nodiscard]] Parts amplitude(std::uint32_t position) const { return parts_of(entries_[position].amplitude); }

    const PackedAmplitude* entries_;
    std::uint64_t field_;
    const ControlTest* controls_hold_; ///< none where there are no controls
    const FourierFactors::Row* rows_;
    Group* groups_;
    Parts* sums_;
    std::size_t count_ = 0;
    std::size_t kept_ = 0;
    bool same_run_ = true;
};

/// All groups of a list that has a table with the target's level varying fastest.
template <std::size_t d, bool full>
void add_groups(FourierSums& sums, const GroupAdder<d, full>& adder, std::span<const std::uint32_t> positions) {
    wide_loop([adder, positions](auto vectors) VANTEL_INLINED {
        GroupAdder<d, full> own = adder;
        for (std::size_t rank = 0; rank < positions.size(); rank += d) own.add(&positions[rank], vectors);
        return own;
    }).give(sums);
}

/// All groups of a list whose labels are far apart. @return false where a label is repeated or its level is not one
template <std::size_t d> bool add_groups(FourierSums& sums, const GroupAdder<d, false>& adder,
                                         const LabelGroups& groups, PackedEntries entries, unsigned position,
                                         std::uint64_t mask) {
    bool regular = true;
    wide_loop([=, &groups, &regular](auto vectors) VANTEL_INLINED {
        GroupAdder<d, false> own = adder;
        groups.for_each([&](std::span<const std::uint32_t> members) VANTEL_INLINED {
            std::array<std::uint32_t, d> row{};
            for (const std::uint32_t member : members) {
                const std::uint64_t level = entries[member].values >> position & mask;
                regular &= level < d && row[std::min(level, d - 1)] == 0;
                row[std::min(level, d - 1)] = member + 1;
            }
            own.add(row.data(), vectors);
        });
        return own;
    }).give(sums);
    return regular;
}
} // namespace

bool transform_by_groups(EntryList& list, SlotLayout layout, int target, const ControlTest& controls_hold,
                         double sign) {
    const std::size_t size = list.entries().size();
    if (size == 0 || size >= crossover::entries_for_definition) return false;
    const Survey survey(list.entries());
    const std::uint64_t d = layout.dimension(list.entries().front().dimensions, target);
    if (!survey.same_dimensions || d < 2 || d > MAX_QUDIT_DIMENSION) return false;

    std::vector<int> qudits = survey.varying_qudits(layout, layout.field(target));
    qudits.insert(qudits.begin(), target);
    PositionTable table(list.entries().front(), layout, qudits, size);
    const std::size_t most = std::min(size, table.size() / d);
    Scratch scratch(list.spare_behind(std::max(size, most * d)));
    const PackedEntries entries = list.entries();
    const bool by_table = table.is_close();
    if (by_table && !table.fill(entries, scratch)) return false;
    FourierSums sums(most, layout, target, entries.front(), scratch);
    FourierFactors factors(d, sign);
    for (std::uint64_t level = 0; level < d; ++level)
        if (survey.may_occur(layout, target, level)) factors.from(level);
    const bool regular = with_constant<2, MAX_QUDIT_DIMENSION>(d, [&](auto constant) {
        const GroupAdder<constant, false> adder(entries, layout, target, controls_hold, factors, sums);
        if (!by_table)
            return add_groups<constant>(sums, adder, LabelGroups(entries, ~layout.field(target), scratch), entries,
                                        layout.position(target), layout.mask());
        if (table.is_complete())
            add_groups(sums, GroupAdder<constant, true>(entries, layout, target, controls_hold, factors, sums),
                       table.positions());
        else
            add_groups(sums, adder, table.positions());
        return true;
    });
    if (!regular) return false;
    std::uint32_t* const holes = scratch.take<std::uint32_t>(sums.kept() + 1);
    list.resize(sums.kept());
    sums.write(list.entries(), holes);
    return true;
}
} // namespace vantel::qudit
