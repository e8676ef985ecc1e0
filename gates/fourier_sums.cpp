#include "gates/fourier_sums.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>

#include "gates/fourier_factors.hpp"
#include "state/field_groups.hpp"

namespace vantel::qudit {

namespace {

using Group = FieldGroups::Group;

/// Calls `use` with the dimension, as a constant where it is so small that a loop over it is worth unrolling.
template <class Use> void with_dimension(std::uint64_t dimension, Use use) {
    if (dimension == 2)
        use(std::integral_constant<std::uint64_t, 2>());
    else if (dimension == 3)
        use(std::integral_constant<std::uint64_t, 3>());
    else
        use(dimension);
}

/// Whether all labels have the dimensions of the first, and all levels of the target are below its own.
bool is_regular(std::span<const PackedAmplitude> entries, std::uint64_t target_field) {
    const std::uint64_t dimensions = entries.front().dimensions;
    const std::uint64_t top = dimensions & target_field;
    bool regular = true;
    for (const PackedAmplitude& entry : entries)
        regular &= (entry.dimensions == dimensions) & ((entry.values & target_field) <= top);
    return regular;
}

/// The sums of the groups of one block: of those groups that agree above the target's digit.
class Block {
public:
    Block(std::span<const PackedAmplitude> entries, unsigned position, std::uint64_t field,
          const ControlTest& controls_hold, FourierFactors& factors, std::size_t most_groups)
        : entries_(entries), position_(position), field_(field), controls_hold_(controls_hold),
          factors_(factors), dimension_(factors.dimension()), others_(new std::uint64_t[most_groups]),
          runs_(new std::uint32_t[most_groups]), sums_(new Parts[most_groups * dimension_]),
          own_runs_(new std::uint32_t[most_groups * dimension_]) {}

    /// Works out the sums, group by group.
    void sum(std::span<const Group> groups) {
        with_dimension(dimension_, [this, groups](auto dimension) {
            for (std::size_t g = 0; g < groups.size(); ++g) {
                const std::uint64_t values = entries_[groups[g].members[0]].values;
                others_[g] = values & ~(field_ << position_);
                if (controls_hold_(values)) {
                    runs_[g] = groups[g].size;
                    transform(groups[g], &sums_[g * dimension], dimension);
                } else {
                    runs_[g] = 0;
                    keep(groups[g], &sums_[g * dimension], &own_runs_[g * dimension]);
                }
            }
        });
    }

    /// Adds the sums to the reduction. The order of labels is by the target's new level first.
    void add_to(DirectReduction& reduction, std::span<const Group> groups) {
        const std::uint64_t dimension = dimension_;
        for (std::uint64_t k = 0; k < dimension; ++k) {
            const Parts* sum = &sums_[k];
            const std::uint64_t level = k << position_;
            for (std::size_t g = 0; g < groups.size(); ++g, sum += dimension) {
                const std::uint64_t values = others_[g] | level;
                if (runs_[g] == 0) {
                    if (const std::uint32_t run = own_runs_[g * dimension + k]; run != 0)
                        reduction.add(values, *sum, run);
                    continue;
                }
                // A product whose infinity could be recovered has left both parts of the sum NaN.
                if (!reduction.add(values, *sum, runs_[g]) && is_nan(*sum)) [[unlikely]]
                    reduction.add(values, recovered(groups[g], k), 0);
            }
        }
    }

private:
    static bool is_nan(Parts sum) { return std::isnan(sum[0]) && std::isnan(sum[1]); }

    [[nodiscard]] std::uint64_t level(std::uint32_t member) const {
        return entries_[member].values >> position_ & field_;
    }

    /// The d sums of a group, each over as many children as the group has entries, in stored order.
    template <class Dimension> void transform(const Group& group, Parts* sums, Dimension dimension) {
        add_children(entries_[group.members[0]], dimension,
                     [sums](std::uint64_t k, Parts child) { sums[k] = child; });
        for (std::uint32_t m = 1; m < group.size; ++m)
            add_children(entries_[group.members[m]], dimension,
                         [sums](std::uint64_t k, Parts child) { sums[k] += child; });
    }

    template <class Dimension, class Add>
    void add_children(const PackedAmplitude& entry, Dimension dimension, Add add) {
        const Factor* const row = factors_.from(entry.values >> position_ & field_).data();
        const Parts amplitude = parts_of(entry.amplitude);
        for (std::uint64_t k = 0; k < dimension; ++k)
            add(k, row[k].unrecovered(amplitude));
    }

    /// A group that the controls leave out: each entry is a sum of its own, a repeated label's together.
    void keep(const Group& group, Parts* sums, std::uint32_t* runs) const {
        std::fill_n(runs, dimension_, 0);
        for (std::uint32_t m = 0; m < group.size; ++m) {
            const PackedAmplitude& entry = entries_[group.members[m]];
            const std::uint64_t k = level(group.members[m]);
            sums[k] = runs[k] == 0 ? parts_of(entry.amplitude) : sums[k] + parts_of(entry.amplitude);
            ++runs[k];
        }
    }

    /// One sum with the standard's product throughout.
    Parts recovered(const Group& group, std::uint64_t k) {
        const auto child = [&](std::uint32_t member) {
            return factors_.from(level(member))[k](parts_of(entries_[member].amplitude));
        };
        Parts sum = child(group.members[0]);
        for (std::uint32_t m = 1; m < group.size; ++m)
            sum += child(group.members[m]);
        return sum;
    }

    std::span<const PackedAmplitude> entries_;
    unsigned position_;
    std::uint64_t field_;
    const ControlTest& controls_hold_;
    FourierFactors& factors_;
    std::uint64_t dimension_;
    std::unique_ptr<std::uint64_t[]> others_;   ///< of each group, the levels of all qudits but the target
    std::unique_ptr<std::uint32_t[]> runs_;     ///< of how many children each sum of a group is; 0 where
                                                ///< the controls leave the group out
    std::unique_ptr<Parts[]> sums_;             ///< d of each group
    std::unique_ptr<std::uint32_t[]> own_runs_; ///< of how many entries each sum of such a group is
};

} // namespace

std::optional<DirectReduction> fourier_sums(std::span<const PackedAmplitude> entries, SlotLayout layout,
                                            int target, const ControlTest& controls_hold, double sign) {
    constexpr std::size_t few_children = 32;
    constexpr std::size_t many_entries = std::size_t{1} << 24;
    if (entries.empty() || entries.size() >= many_entries)
        return {};
    const unsigned position = layout.position(target);
    const std::uint64_t dimension = (entries.front().dimensions >> position & layout.mask()) + 1;
    if (entries.size() * dimension <= few_children || !is_regular(entries, layout.mask() << position))
        return {};

    const FieldGroups grouped(entries, position, layout.bits, dimension);
    const std::span<const Group> groups = grouped.groups();
    const auto block_end = [&](std::size_t begin) {
        std::size_t end = begin;
        while (end < groups.size() && groups[end].rest >> position == groups[begin].rest >> position)
            ++end;
        return end;
    };
    const std::size_t widest = std::min(groups.size(), std::size_t{1} << position);
    FourierFactors factors(dimension, sign);
    Block block(entries, position, layout.mask(), controls_hold, factors, widest);
    DirectReduction reduction(groups.size() * dimension, entries.front().dimensions);
    for (std::size_t begin = 0, end = 0; begin < groups.size(); begin = end) {
        end = block_end(begin);
        block.sum(groups.subspan(begin, end - begin));
        block.add_to(reduction, groups.subspan(begin, end - begin));
    }
    return reduction;
}

} // namespace vantel::qudit
