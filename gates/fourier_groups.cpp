/// The sums of the Fourier transform's groups.
#include "algorithms/constant_count.hpp"
#include "algorithms/crossovers.hpp"
#include "gates/fourier_group.hpp"
#include "gates/fourier_sums.hpp"
#include "state/label_groups.hpp"
#include "state/position_table.hpp"
#include "state/reduction.hpp"

namespace vantel::qudit {
namespace {
/// Adds groups to the sums of a list. It is copied into the loop that it works in.
template <std::size_t d, bool full> class GroupAdder {
    using Members = qudit::Members<d, full>;

public:
    GroupAdder(PackedEntries entries, SlotLayout layout, int target, const ControlTest& controls_hold,
               const FourierFactors& factors, const FourierSums& sums)
        : entries_(entries.data()), field_(layout.field(target)),
          controls_hold_(controls_hold.is_empty() ? nullptr : &controls_hold), rows_(factors.rows()), sums_(sums) {}

    /// @param row  by level, positions counted from 1; 0 where there is no entry
    template <class Vectors> [[gnu::always_inline]] void add(const std::uint32_t* row, Vectors) {
        const Members members(row);
        if (members.size() == 0) return;
        const std::uint64_t values = entries_[members.position(0)].values;
        Parts* const sums = sums_.sums + sums_.count;
        FourierSums::Group& group = sums_.groups[sums_.count++];
        group.others = values & ~field_;
        group.run = members.size();
        if (controls_hold_ != nullptr && !(*controls_hold_)(values))
            keep(group, row, sums);
        else
            sums_.kept += transform<Vectors>(members, sums) ? d : recover(entries_, rows_, row, sums, sums_.stride);
        sums_.same_run &= group.run != 0 && group.run == sums_.groups[0].run;
    }

    [[nodiscard]] const FourierSums& sums() const { return sums_; }

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
        return of_group.store(sums, sums_.stride);
    }

    /// A sum in which an infinity could be recovered takes the standard's product throughout. Static, since an object
    /// that is handed over would not stay in registers.
    /// @return how many stay
    [[gnu::noinline]] static std::size_t recover(const PackedAmplitude* entries, const FourierFactors::Row* rows,
                                                 const std::uint32_t* row, Parts* sums, std::size_t stride) {
        std::size_t kept = 0;
        for (std::uint64_t k = 0; k < d; ++k, sums += stride) {
            if (is_lost(*sums)) [[unlikely]]
                *sums = recovered(entries, rows, Members(row), k);
            kept += exceeds_threshold(*sums) ? 1 : 0;
        }
        return kept;
    }
    static Parts recovered(const PackedAmplitude* entries, const FourierFactors::Row* rows, Members members,
                           std::uint64_t k) {
        const auto child = [&](std::size_t i) {
            return rows[members.level(i)][k](parts_of(entries[members.position(i)].amplitude));
        };
        Parts sum = child(0);
        for (std::size_t i = 1; i < members.size(); ++i) sum += child(i);
        return sum;
    }

    /// A group that the controls leave out: each entry is a sum of its own.
    [[gnu::always_inline]] void keep(FourierSums::Group& group, const std::uint32_t* row, Parts* sums) {
        group.present = 0;
        unrolled<d>([&](auto level) VANTEL_INLINED {
            if (!full && row[level] == 0) return;
            group.present |= 1U << level;
            const Parts sum = sums[level * sums_.stride] = amplitude(row[level] - 1);
            sums_.kept += exceeds_threshold(sum) ? 1 : 0;
        });
        group.run = group.present == (1U << d) - 1 ? 1 : 0;
    }

    [[nodiscard]] Parts amplitude(std::uint32_t position) const { return parts_of(entries_[position].amplitude); }

    const PackedAmplitude* entries_;
    std::uint64_t field_;
    const ControlTest* controls_hold_; ///< none where there are no controls
    const FourierFactors::Row* rows_;
    FourierSums sums_;
};

/// All groups of a list that has a table with the target's level varying fastest.
template <std::size_t d, bool full>
FourierSums add_groups(const GroupAdder<d, full>& adder, std::span<const std::uint32_t> positions) {
    return wide_loop([adder, positions](auto vectors) VANTEL_INLINED {
        GroupAdder<d, full> own = adder;
        for (std::size_t rank = 0; rank < positions.size(); rank += d) own.add(&positions[rank], vectors);
        return own.sums();
    });
}

/// All groups of a list whose labels are far apart.
template <std::size_t d> FourierSums add_groups(const GroupAdder<d, false>& adder, const LabelGroups& groups,
                                                PackedEntries entries, unsigned position, std::uint64_t mask) {
    return wide_loop([=, &groups](auto vectors) VANTEL_INLINED {
        GroupAdder<d, false> own = adder;
        bool regular = true;
        groups.for_each([&](std::span<const std::uint32_t> members) VANTEL_INLINED {
            std::array<std::uint32_t, d> row{};
            for (const std::uint32_t member : members) {
                const std::uint64_t level = entries[member].values >> position & mask;
                regular &= level < d && row[std::min(level, d - 1)] == 0;
                row[std::min(level, d - 1)] = member + 1;
            }
            own.add(row.data(), vectors);
        });
        FourierSums sums = own.sums();
        sums.regular = regular;
        return sums;
    });
}
} // namespace

bool transform_by_groups(EntryList& list, SlotLayout layout, int target, const ControlTest& controls_hold,
                         double sign) {
    const std::size_t size = list.entries().size();
    if (size == 0 || size >= crossover::entries_for_definition) return false;
    const Survey survey(list.entries());
    const std::uint64_t d = layout.dimension(list.entries().front().dimensions, target);
    if (!survey.same_dimensions || d < 2 || d > MAX_QUDIT_DIMENSION) return false;

    PositionTable table(list.entries(), layout, std::span(&target, 1), survey.varying());
    const std::size_t most = std::min(size, table.size() / d);
    // Sums, groups and holes; and positions, or keys with their members and as many to sort them.
    const std::size_t bytes = (20 * d + 16) * (most + 8) + (table.is_close() ? 4 * table.size() : 20 * size);
    Scratch scratch(list.spare_behind(std::max(size, most * d), bytes));
    const PackedEntries entries = list.entries();
    if (table.is_close() && !table.fill(entries, scratch)) return false;
    FourierFactors factors(d, sign);
    for (std::uint64_t level = 0; level < d; ++level)
        if (survey.may_occur(layout, target, level)) factors.from(level);
    FourierSums sums(most, layout, target, entries.front(), scratch);
    sums = with_constant<2, MAX_QUDIT_DIMENSION>(d, [&](auto constant) {
        if (table.is_close() && table.is_complete())
            return add_groups(GroupAdder<constant, true>(entries, layout, target, controls_hold, factors, sums),
                              table.positions());
        const GroupAdder<constant, false> adder(entries, layout, target, controls_hold, factors, sums);
        if (table.is_close()) return add_groups(adder, table.positions());
        return add_groups(adder, LabelGroups(entries, ~layout.field(target), scratch), entries, layout.position(target),
                          layout.mask());
    });
    if (!sums.regular) return false;
    std::uint32_t* const holes = scratch.take<std::uint32_t>(sums.kept + 1);
    list.resize(sums.kept);
    sums.write(list.entries(), holes);
    return true;
}
} // namespace vantel::qudit
