/// The Fourier transform of a list that holds every combination of levels once.
#include <algorithm>
#include <array>
#include <cmath>

#include "gates/fourier_children.hpp"
#include "gates/fourier_factors.hpp"
#include "gates/fourier_sums.hpp"
#include "state/complete_list.hpp"
#include "state/drop_threshold.hpp"
#include "state/small_dimension.hpp"
#include "state/wide_loop.hpp"

namespace vantel::qudit {

namespace {

/// A group's entries, by level and in stored order.
template <std::uint64_t d> class Members {
public:
    explicit Members(const std::uint32_t* positions) {
        for (std::uint64_t level = 0; level < d; ++level)
            members_[level] = (positions[level] - 1) << level_bits | static_cast<std::uint32_t>(level);
        // Two summands have one sum in either order.
        if constexpr (d > 2)
            sort();
    }

    [[nodiscard]] std::uint32_t position(std::uint64_t i) const { return members_[i] >> level_bits; }
    [[nodiscard]] std::uint64_t level(std::uint64_t i) const {
        return members_[i] & ((1U << level_bits) - 1);
    }

private:
    static constexpr unsigned level_bits = 4;

    /// Insertion, without a branch on an order that no processor could foresee.
    void sort() {
        for (std::uint64_t end = 1; end < d; ++end)
            for (std::uint64_t i = end; i > 0; --i) {
                const std::uint32_t first = std::min(members_[i - 1], members_[i]);
                members_[i] = std::max(members_[i - 1], members_[i]);
                members_[i - 1] = first;
            }
    }

    std::array<std::uint32_t, d> members_;
};

/// How many sums stay.
std::size_t count_exceeding(std::span<const Parts> sums) {
    using FourWords [[gnu::vector_size(32)]] = std::uint64_t;
    using StoredFourWords [[gnu::vector_size(32), gnu::aligned(16), gnu::may_alias]] = std::uint64_t;
    constexpr std::uint64_t unsigned_bits = ~std::uint64_t{0} >> 1;
    std::size_t kept = 0;
    wide_loop([&] {
        FourWords pairs_kept{}; ///< each sum's count, negative, in both of its words
        std::size_t i = 0;
        for (; i + 2 <= sums.size(); i += 2) {
            const FourWords magnitudes = *reinterpret_cast<const StoredFourWords*>(&sums[i]) & unsigned_bits;
            const auto exceed =
                reinterpret_cast<FourWords>(reinterpret_cast<FourParts>(magnitudes) > DROP_THRESHOLD);
            pairs_kept += exceed | __builtin_shufflevector(exceed, exceed, 1, 0, 3, 2);
        }
        kept = -(pairs_kept[0] + pairs_kept[2]);
        for (; i < sums.size(); ++i)
            kept += exceeds_threshold(sums[i]) ? 1 : 0;
    });
    return kept;
}

/// Whether an infinity may have been lost, which only the standard's product recovers.
bool is_recoverable(Parts sum) {
    return std::isnan(sum[0]) && std::isnan(sum[1]);
}

} // namespace

std::optional<FourierSums> FourierSums::of_complete(std::span<const PackedAmplitude> entries,
                                                    SlotLayout layout, int target,
                                                    const ControlTest& controls_hold, double sign) {
    const unsigned position = layout.position(target);
    const std::uint64_t dimensions = entries.front().dimensions;
    const std::uint64_t dimension = (dimensions >> position & layout.mask()) + 1;
    if (dimension < 2 || dimension > SMALL_DIMENSION)
        return {};
    const CompleteList complete(entries, layout, std::array{target});
    if (complete.positions().empty())
        return {};

    FourierSums all(entries.size() / dimension, dimension, position, dimensions);
    all.groups_ = entries.size() / dimension;
    all.complete_ = true;
    FourierFactors factors(dimension, sign);
    with_small_dimension(dimension, [&](auto constant) {
        constexpr std::uint64_t d = constant;
        controls_hold.walk(entries, [&](std::span<const PackedAmplitude> list, const auto& test, auto) {
            const auto holds = test; // copies that no store to a sum can be thought to change
            const FourierFactors::Row* const rows = factors.all();
            const auto amplitude = [list](std::uint32_t member) { return parts_of(list[member].amplitude); };
            Parts* sums = all.sums_.get();
            std::uint64_t* const others = all.others_.get();
            std::uint32_t* const runs = all.runs_.get();
            const std::uint32_t* of_group = complete.positions().data();
            for (std::size_t group = 0, end = all.groups_; group < end; ++group, of_group += d, sums += d) {
                others[group] = list[of_group[0] - 1].values;
                if (holds(others[group]) == 0) {
                    runs[group] = 1;
                    for (std::uint64_t level = 0; level < d; ++level)
                        sums[level] = amplitude(of_group[level] - 1);
                    continue;
                }
                runs[group] = d;
                const Members<d> members(of_group);
                Children children(constant, rows[members.level(0)], amplitude(members.position(0)));
                for (std::uint64_t i = 1; i < d; ++i)
                    children.add(Children(constant, rows[members.level(i)], amplitude(members.position(i))),
                                 constant);
                children.write(sums, constant);
            }
        });
    });

    const std::span<const Parts> sums(all.sums_.get(), entries.size());
    all.kept_ = count_exceeding(sums);
    if (all.kept_ != sums.size() && std::any_of(sums.begin(), sums.end(), is_recoverable))
        return {};
    all.run_of_all_ = controls_hold.is_empty() ? static_cast<std::uint32_t>(dimension) : 0;
    all.prepare_writing();
    return all;
}

} // namespace vantel::qudit
