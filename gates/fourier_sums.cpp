#include "gates/fourier_sums.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <type_traits>

#include "gates/fourier_factors.hpp"
#include "gates/words.hpp"
#include "state/direct_reduction.hpp"
#include "state/drop_threshold.hpp"
#include "state/field_groups.hpp"
#include "state/wide_loop.hpp"

namespace vantel::qudit {

namespace {

using Members = std::span<const std::uint32_t>;

/// Calls `use` with the dimension, as a constant where it is so small that a loop over it is worth unrolling.
template <class Use> void with_dimension(std::uint64_t dimension, Use use) {
    switch (dimension) {
    case 2:
        return use(std::integral_constant<std::uint64_t, 2>());
    case 3:
        return use(std::integral_constant<std::uint64_t, 3>());
    case 4:
        return use(std::integral_constant<std::uint64_t, 4>());
    case 5:
        return use(std::integral_constant<std::uint64_t, 5>());
    default:
        return use(dimension);
    }
}

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

/// The children of one entry, or their sums over several, two levels in one vector.
class Children {
public:
    template <class Dimension>
    Children(Dimension dimension, const FourierFactors::Row& row, Parts amplitude) {
        const FourParts twice = __builtin_shufflevector(amplitude, amplitude, 0, 1, 0, 1);
        const FourParts exchanged = __builtin_shufflevector(amplitude, amplitude, 1, 0, 1, 0);
        for (std::uint64_t k = 0; k < dimension; k += 2)
            pairs_[k / 2] = twice * *reinterpret_cast<const StoredFourParts*>(&row.real[k]) +
                            exchanged * *reinterpret_cast<const StoredFourParts*>(&row.crossed[k]);
    }

    template <class Dimension> void add(const Children& others, Dimension dimension) {
        for (std::uint64_t k = 0; k < dimension; k += 2)
            pairs_[k / 2] += others.pairs_[k / 2];
    }

    template <class Dimension> void write(Parts* sums, Dimension dimension) const {
        for (std::uint64_t k = 0; k < dimension; k += 2) {
            sums[k] = __builtin_shufflevector(pairs_[k / 2], pairs_[k / 2], 0, 1);
            if (k + 1 < dimension)
                sums[k + 1] = __builtin_shufflevector(pairs_[k / 2], pairs_[k / 2], 2, 3);
        }
    }

private:
    std::array<FourParts, FourierFactors::levels / 2> pairs_;
};

} // namespace

class FourierSums::Builder {
public:
    Builder(FourierSums& sums, std::span<const PackedAmplitude> entries, std::uint64_t field,
            const ControlTest& controls_hold, FourierFactors& factors)
        : into_(sums), entries_(entries.data()), position_(sums.position_), field_(field),
          controls_hold_(controls_hold), factors_(factors), others_(sums.others_.get()),
          runs_(sums.runs_.get()), sums_(sums.sums_.get()) {}

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
            kept_ += keep(members, g * dimension);
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
    std::size_t keep(Members members, std::size_t first) const {
        if (!into_.own_runs_)
            into_.own_runs_.reset(new std::uint32_t[into_.most_]);
        std::uint32_t* const runs = &into_.own_runs_[first];
        std::fill_n(runs, into_.dimension_, 0);
        for (const std::uint32_t member : members) {
            Parts& sum = sums_[first + level(member)];
            std::uint32_t& run = runs[level(member)];
            sum = run == 0 ? amplitude(member) : sum + amplitude(member);
            ++run;
        }
        std::size_t kept = 0;
        for (std::uint64_t k = 0; k < into_.dimension_; ++k)
            kept += runs[k] != 0 && exceeds_threshold(sums_[first + k]) ? 1 : 0;
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
    Parts* sums_;
    std::size_t groups_ = 0;
    std::size_t kept_ = 0;
    bool same_run_ = true;
};

FourierSums::FourierSums(std::size_t most_groups, std::uint64_t dimension, unsigned position,
                         std::uint64_t dimensions)
    : dimension_(dimension), position_(position), dimensions_(dimensions), most_(most_groups * dimension),
      others_(new std::uint64_t[most_groups]), runs_(new std::uint32_t[most_groups]),
      sums_(new Parts[most_]) {}

std::optional<FourierSums> FourierSums::of(std::span<const PackedAmplitude> entries, SlotLayout layout,
                                           int target, const ControlTest& controls_hold, double sign) {
    constexpr std::size_t few_children = 32;
    constexpr std::size_t many_entries = std::size_t{1} << 24;
    if (entries.empty() || entries.size() >= many_entries)
        return {};
    const unsigned position = layout.position(target);
    const std::uint64_t dimensions = entries.front().dimensions;
    const std::uint64_t dimension = (dimensions >> position & layout.mask()) + 1;
    if (entries.size() * dimension <= few_children)
        return {};
    const Survey survey(entries, layout.mask() << position);
    if (!survey.regular)
        return {};

    const FieldGroups groups(entries, ~(layout.mask() << position), survey.any, dimension);
    FourierSums sums(groups.bound(), dimension, position, dimensions);
    FourierFactors factors(dimension, sign);
    Builder(sums, entries, layout.mask(), controls_hold, factors).add_groups(groups);
    if (!sums.is_uniform())
        sums.holes_.reset(new std::uint32_t[sums.kept_]);
    return sums;
}

/// Calls `visit(values, sum, group)` for each sum by its position, ascending by label.
template <class Visit> void FourierSums::for_each_sum(Visit visit) const noexcept {
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
            for (std::size_t group = begin; group < end; ++group)
                visit(others[group] | k << position, group * dimension + k, group);
    }
}

void FourierSums::write(std::span<PackedAmplitude> list) const noexcept {
    const std::uint64_t dimensions = dimensions_;
    const Parts* const sums = sums_.get();
    if (is_uniform()) {
        UniformReduction order(kept_, run_of_all_);
        for_each_sum([&order, sums, dimensions, first = list.data()](std::uint64_t values, std::size_t sum,
                                                                     std::size_t /*group*/) {
            PackedAmplitude& entry = first[order.next()];
            entry.values = values;
            entry.dimensions = dimensions;
            store(sums[sum], entry.amplitude);
        });
        return;
    }
    DirectReduction reduction(list, dimensions, holes_.get());
    for_each_sum([&reduction, sums, runs = runs_.get(),
                  own_runs = own_runs_.get()](std::uint64_t values, std::size_t sum, std::size_t group) {
        const std::uint32_t run = runs[group] != 0 ? runs[group] : own_runs[sum];
        if (run != 0)
            reduction.add(values, sums[sum], run);
    });
}

} // namespace vantel::qudit
