/// The sums of the Fourier transform's groups.
#include "algorithms/crossovers.hpp"
#include "gates/fourier_group.hpp"
#include "gates/fourier_sums.hpp"
#include "state/label_groups.hpp"
#include "state/position_table.hpp"

namespace vantel::qudit {
namespace {
/// Adds groups to the sums of a list. It is copied into the loop that it works in.
template <std::size_t d> class GroupAdder {
public:
    GroupAdder(PackedEntries entries, SlotLayout layout, int target, const ControlTest& controls_hold,
               const FourierFactors& factors, const FourierSums& sums)
        : entries_(entries.data()), field_(layout.field(target)),
          controls_hold_(controls_hold.is_empty() ? nullptr : &controls_hold), rows_(factors.rows()), sums_(sums) {}

    /// @param row  by level, positions counted from 1; 0 where there is no entry
    template <class Vectors> [[gnu::always_inline]] void add(const std::uint32_t* row, Vectors) {
        if (!order_.is_that_of(row)) [[unlikely]] {
            const Members<d> members(row);
            if (members.size() < d) {
                if (members.size() != 0)
                    add_group<Vectors>(row, members.size(), [&](std::size_t i) VANTEL_INLINED { return members[i]; });
                return;
            }
            order_ = StoredOrder<d>(members);
        }
        add_group<Vectors>(row, std::integral_constant<std::size_t, d>(), [this, row](std::size_t i) VANTEL_INLINED {
            return Member{row[order_[i]] - 1, order_[i]};
        });
    }

    /// @param size       how many members there are, a constant where an entry has each level
    /// @param member_at  member_at(i) is the i-th of them, in stored order
    template <class Vectors, class Size, class MemberAt>
    [[gnu::always_inline]] void add_group(const std::uint32_t* row, Size size, MemberAt member_at) {
        const std::uint64_t values = entries_[member_at(0).position].values;
        Parts* const sums = sums_.sum(sums_.count, 0);
        FourierSums::Group& group = sums_.groups[sums_.count++];
        group.others = values & ~field_;
        auto run = static_cast<std::uint32_t>(size);
        if (controls_hold_ != nullptr && !(*controls_hold_)(values)) {
            group.present = keep(row, sums);
            run = group.present == (1U << d) - 1 ? 1 : 0;
        } else {
            // Each sum over the children of all members, in stored order.
            LevelSums<d, Vectors> of_group;
            const auto add = [&](std::size_t i, auto first) VANTEL_INLINED {
                const Member member = member_at(i);
                of_group.add(rows_[member.level], amplitude(member.position), first);
            };
            add(0, std::true_type());
            if constexpr (!std::is_integral_v<Size>)
                unrolled<d - 1>([&](auto i) VANTEL_INLINED { add(i + 1, std::false_type()); });
            else
                for (std::size_t i = 1; i < size; ++i) add(i, std::false_type());
            const bool all_stay = of_group.store(sums, sums_.stride);
            sums_.kept += all_stay ? d : recover(entries_, rows_, row, sums, sums_.stride);
        }
        group.run = run;
        sums_.same_run &= run != 0 && run == sums_.groups[0].run;
    }

    [[nodiscard]] const FourierSums& sums() const { return sums_; }

private:
    /// A sum in which an infinity could be recovered takes the standard's product throughout. Static, since an object
    /// that is handed over would not stay in registers.
    /// @return how many stay
    [[gnu::noinline]] static std::size_t recover(const PackedAmplitude* entries, const FourierFactors::Row* rows,
                                                 const std::uint32_t* row, Parts* sums, std::size_t stride) {
        std::size_t kept = 0;
        for (std::uint64_t k = 0; k < d; ++k, sums += stride) {
            if (is_lost(*sums)) [[unlikely]] {
                const Members<d> members(row);
                for (std::size_t i = 0; i < members.size(); ++i) {
                    const Parts child = rows[members[i].level][k](parts_of(entries[members[i].position].amplitude));
                    *sums = i == 0 ? child : *sums + child;
                }
            }
            kept += exceeds_threshold(*sums) ? 1 : 0;
        }
        return kept;
    }

    /// A group that the controls leave out: each entry is a sum of its own. @return a bit for each level that has one
    [[gnu::always_inline]] std::uint32_t keep(const std::uint32_t* row, Parts* sums) {
        std::uint32_t present = 0;
        unrolled<d>([&](auto level) VANTEL_INLINED {
            if (row[level] == 0) return;
            present |= 1U << level;
            const Parts sum = sums[level * sums_.stride] = amplitude(row[level] - 1);
            sums_.kept += exceed_threshold<PlainVectors>(sum)[0] & 1;
        });
        return present;
    }

    [[nodiscard]] Parts amplitude(std::uint32_t position) const { return parts_of(entries_[position].amplitude); }

    const PackedAmplitude* entries_;
    std::uint64_t field_;
    const ControlTest* controls_hold_; ///< none where there are no controls
    const FourierFactors::Row* rows_;
    FourierSums sums_;
    StoredOrder<d> order_; ///< of the last group that had all levels
};

/// All groups of a list that has a table with the target's level varying fastest.
template <std::size_t d> FourierSums add_groups(const GroupAdder<d>& adder, std::span<const std::uint32_t> positions) {
    return wide_loop([adder, positions](auto vectors) VANTEL_INLINED {
        GroupAdder<d> own = adder;
        for (std::size_t rank = 0; rank < positions.size(); rank += d) own.add(&positions[rank], vectors);
        return own.sums();
    });
}

/// All groups of a list whose labels are far apart.
template <std::size_t d> FourierSums add_groups(const GroupAdder<d>& adder, const LabelGroups& groups,
                                                PackedEntries entries, unsigned position, std::uint64_t mask) {
    return wide_loop([=, &groups](auto vectors) VANTEL_INLINED {
        GroupAdder<d> own = adder;
        bool regular = true;
        groups.for_each([&](std::span<const std::uint32_t> members) VANTEL_INLINED {
            std::array<std::uint32_t, d> row{};
            const auto level_of = [=](std::uint32_t member) { return entries[member].values >> position & mask; };
            for (const std::uint32_t member : members) {
                regular &= level_of(member) < d && row[std::min(level_of(member), d - 1)] == 0;
                row[std::min(level_of(member), d - 1)] = member + 1;
            }
            own.template add_group<decltype(vectors)>(row.data(), members.size(), [=](std::size_t i) VANTEL_INLINED {
                return Member{members[i], std::min(level_of(members[i]), d - 1)};
            });
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
    if (table.is_close() && !table.fill(entries, scratch, [](auto...) {})) return false;
    FourierFactors factors(d, sign);
    for (std::uint64_t level = 0; level < d; ++level)
        if (survey.may_occur(layout, target, level)) factors.from(level);
    FourierSums sums(most, table.is_close(), layout, target, entries.front(), scratch);
    sums = with_constant<2, MAX_QUDIT_DIMENSION>(d, [&](auto constant) {
        const GroupAdder<constant> adder(entries, layout, target, controls_hold, factors, sums);
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
