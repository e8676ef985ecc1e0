#include "gates/fourier_sums.hpp"

#include <bit>
#include <cmath>

#include "gates/fourier_children.hpp"
#include "gates/fourier_factors.hpp"
#include "gates/words.hpp"
#include "state/direct_reduction.hpp"
#include "state/drop_threshold.hpp"
#include "state/field_groups.hpp"
#include "state/small_dimension.hpp"
#include "state/wide_loop.hpp"

namespace vantel::qudit {

namespace {

using Members = std::span<const std::uint32_t>;

/// What the labels of a list have in common.
struct Survey {
    std::uint64_t any; ///< the bits that are set in the levels of some entry
    bool regular;      ///< whether all have the dimensions of the first, and target levels below their own

    Survey(std::span<const PackedAmplitude> entries, std::uint64_t target_field) {
        const std::uint64_t dimensions = entries.front().dimensions;
        const std::uint64_t top = dimensions & target_field;
        std::uint64_t some = 0;
        std::uint64_t odd = 0;
        wide_loop([&] {
            Words some_pairs{};
            Words odd_pairs{};
            std::size_t i = 0;
            for (; i + 2 <= entries.size(); i += 2) {
                const LabelPair labels(&entries[i]);
                some_pairs |= labels.values;
                // A level beyond its own dimension borrows from the bits above its field.
                odd_pairs |= (labels.dimensions ^ dimensions) |
                             ((top - (labels.values & target_field)) & ~target_field);
            }
            for (; i < entries.size(); ++i) {
                some |= entries[i].values;
                odd |= (entries[i].dimensions ^ dimensions) |
                       ((top - (entries[i].values & target_field)) & ~target_field);
            }
            some |= some_pairs[0] | some_pairs[1];
            odd |= odd_pairs[0] | odd_pairs[1];
        });
        any = some;
        regular = odd == 0;
    }
};

} // namespace

class FourierSums::Builder {
public:
    Builder(FourierSums& sums, std::span<const PackedAmplitude> entries, std::uint64_t field,
            const ControlTest& controls_hold, FourierFactors& factors)
        : into_(sums), entries_(entries.data()), position_(sums.position_), field_(field),
          controls_hold_(controls_hold), factors_(factors), others_(sums.others_.get()),
          runs_(sums.runs_.get()), own_runs_(sums.own_runs_.get()), sums_(sums.sums_.get()) {}

    void add_groups(const FieldGroups& groups) {
        with_dimension(into_.dimension_, [&](auto dimension) {
            wide_loop([&] {
                Builder own = *this; // a copy that no store to a sum can be thought to change
                groups.for_each([&](Members members) { own.add_group(members, dimension); });
                into_.groups_ = own.groups_;
                into_.kept_ = own.kept_;
                into_.run_of_all_ = own.same_run_ ? own.runs_[0] : 0;
            });
        });
    }

private:
    template <class Dimension> void add_group(Members members, Dimension dimension) {
        const std::size_t g = groups_++;
        const std::uint64_t values = entries_[members[0]].values;
        others_[g] = values & ~(field_ << position_);
        if (controls_hold_(values)) {
            runs_[g] = static_cast<std::uint32_t>(members.size());
            same_run_ &= runs_[g] == runs_[0];
            kept_ += transform(members, &sums_[g * dimension], dimension);
        } else {
            runs_[g] = 0;
            same_run_ = false;
            kept_ += keep(members, g * dimension, dimension);
        }
    }

    /// The d sums of a group, each over as many children as the group has entries, in stored order.
    /// @return how many of them stay
    template <class Dimension>
    std::size_t transform(Members members, Parts* sums, Dimension dimension) const {
        Children of_group(dimension, factors_.from(level(members[0])), amplitude(members[0]));
        for (const std::uint32_t member : members.subspan(1))
            of_group.add(Children(dimension, factors_.from(level(member)), amplitude(member)), dimension);
        of_group.write(sums, dimension);
        std::size_t kept = 0;
        for (std::uint64_t k = 0; k < dimension; ++k)
            kept += exceeds_threshold(sums[k]) ? 1 : 0;
        return kept == dimension ? kept : recover(members, sums);
    }

    /// Sums in which an infinity could be recovered have both parts NaN; they take the standard's product
    /// throughout. @return how many sums stay
    std::size_t recover(Members members, Parts* sums) const {
        std::size_t kept = 0;
        for (std::uint64_t k = 0; k < into_.dimension_; ++k) {
            if (std::isnan(sums[k][0]) && std::isnan(sums[k][1])) {
                const auto child = [&](std::uint32_t member) {
                    return factors_.from(level(member))[k](amplitude(member));
                };
                sums[k] = child(members[0]);
                for (const std::uint32_t member : members.subspan(1))
                    sums[k] += child(member);
            }
            kept += exceeds_threshold(sums[k]) ? 1 : 0;
        }
        return kept;
    }

    /// A group that the controls leave out: each entry is a sum of its own, a repeated label's together.
    /// @return how many stay
    template <class Dimension>
    std::size_t keep(Members members, std::size_t first, Dimension dimension) const {
        Parts* const sums = &sums_[first];
        std::uint32_t* const runs = &own_runs_[first];
        for (std::uint64_t k = 0; k < dimension; ++k)
            runs[k] = 0;
        for (const std::uint32_t member : members) {
            const std::uint64_t k = level(member);
            sums[k] = runs[k] == 0 ? amplitude(member) : sums[k] + amplitude(member);
            ++runs[k];
        }
        std::size_t kept = 0;
        for (std::uint64_t k = 0; k < dimension; ++k)
            kept += runs[k] != 0 && exceeds_threshold(sums[k]) ? 1 : 0;
        return kept;
    }

    [[nodiscard]] std::uint64_t level(std::uint32_t member) const {
        return entries_[member].values >> position_ & field_;
    }
    [[nodiscard]] Parts amplitude(std::uint32_t member) const { return parts_of(entries_[member].amplitude); }

    FourierSums& into_;
    const PackedAmplitude* entries_;
    unsigned position_;
    std::uint64_t field_;
    const ControlTest& controls_hold_;
    FourierFactors& factors_;
    std::uint64_t* others_;
    std::uint32_t* runs_;
    std::uint32_t* own_runs_;
    Parts* sums_;
    std::size_t groups_ = 0;
    std::size_t kept_ = 0;
    bool same_run_ = true;
};

FourierSums::FourierSums(std::size_t most_groups, std::uint64_t dimension, unsigned position,
                         std::uint64_t dimensions)
    : dimension_(dimension), position_(position), dimensions_(dimensions),
      others_(new std::uint64_t[most_groups]), runs_(new std::uint32_t[most_groups]),
      sums_(new Parts[most_groups * dimension]) {}

std::optional<FourierSums> FourierSums::of(std::span<const PackedAmplitude> entries, SlotLayout layout,
                                           int target, const ControlTest& controls_hold, double sign) {
    constexpr std::size_t many_entries = std::size_t{1} << 24;
    if (entries.empty() || entries.size() >= many_entries)
        return {};
    const unsigned position = layout.position(target);
    const std::uint64_t dimensions = entries.front().dimensions;
    const std::uint64_t dimension = (dimensions >> position & layout.mask()) + 1;
    if (std::optional<FourierSums> sums = of_complete(entries, layout, target, controls_hold, sign))
        return sums;
    const Survey survey(entries, layout.mask() << position);
    if (!survey.regular)
        return {};

    const FieldGroups groups(entries, ~(layout.mask() << position), survey.any, dimension);
    FourierSums sums(groups.bound(), dimension, position, dimensions);
    if (!controls_hold.is_empty())
        sums.own_runs_.reset(new std::uint32_t[groups.bound() * dimension]);
    FourierFactors factors(dimension, sign);
    Builder(sums, entries, layout.mask(), controls_hold, factors).add_groups(groups);
    sums.prepare_writing();
    return sums;
}

void FourierSums::prepare_writing() {
    if (!is_uniform())
        holes_.reset(new std::uint32_t[kept_ + 1]);
}

/// Calls `visit(k, begin, end)` for the k-th sums of neighbouring groups, all sums ascending by label.
template <class Visit> void FourierSums::for_each_stretch(Visit visit) const noexcept {
    // Copies that no store to an entry can be thought to change.
    const std::uint64_t* const others = others_.get();
    const std::uint64_t dimension = dimension_;
    const std::size_t groups = groups_;
    const unsigned position = position_;
    // Labels order by the levels above the target's first, then by the target's, then by those below.
    for (std::size_t begin = 0, end = 0; begin < groups; begin = end) {
        const std::uint64_t above = others[begin] >> position;
        while (end < groups && others[end] >> position == above)
            ++end;
        for (std::uint64_t k = 0; k < dimension; ++k)
            visit(k, begin, end);
    }
}

void FourierSums::write(std::span<PackedAmplitude> list) const noexcept {
    // What counts along is part of the visitors, where no store to an entry can be thought to change it.
    const auto write_sum = [sums = sums_.get(), others = others_.get(), dimensions = dimensions_,
                            dimension = dimension_, position = position_,
                            entries = list.data()](std::size_t place, std::uint64_t k, std::size_t group) {
        PackedAmplitude& entry = entries[place];
        entry.values = others[group] | k << position;
        entry.dimensions = dimensions;
        store(sums[group * dimension + k], entry.amplitude);
    };
    if (is_uniform())
        for_each_stretch([order = UniformReduction(kept_, run_of_all_),
                          write_sum](std::uint64_t k, std::size_t begin, std::size_t end) mutable {
            order.take(end - begin,
                       [=](std::size_t i, std::size_t place) { write_sum(place, k, begin + i); });
        });
    else if (is_paired())
        for_each_stretch([order = PairedReduction(kept_, holes_.get()), write_sum,
                          runs = runs_.get()](std::uint64_t k, std::size_t begin, std::size_t end) mutable {
            for (std::size_t group = begin; group < end; ++group)
                write_sum(order.next(runs[group] - std::size_t{1}), k, group);
        });
    else
        for_each_stretch([reduction = DirectReduction(list, dimensions_, holes_.get()), sums = sums_.get(),
                          others = others_.get(), runs = runs_.get(), own_runs = own_runs_.get(),
                          dimension = dimension_,
                          position = position_](std::uint64_t k, std::size_t begin, std::size_t end) mutable {
            for (std::size_t group = begin; group < end; ++group) {
                const std::size_t sum = group * dimension + k;
                const std::uint32_t run = runs[group] != 0 ? runs[group] : own_runs[sum];
                if (run != 0)
                    reduction.add(others[group] | k << position, sums[sum], run);
            }
        });
}

} // namespace vantel::qudit
