#include <array>
#include <cmath>
#include <complex>
#include <memory>
#include <optional>
#include <vector>

#include "gates/exchange.hpp"
#include "gates/frame.hpp"
#include "state/builds.hpp"
#include "state/direct_reduction.hpp"
#include "state/drop_threshold.hpp"
#include "state/exceptions.hpp"
#include "state/label_table.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"

namespace vantel::qudit {

namespace {

/// The two shares of an amplitude: cos(theta) of it stays, and i sin(theta) goes to the exchanged levels.
struct Shares {
    explicit Shares(float fraction) {
        constexpr double half_pi = 1.5707963267948966;
        const double theta = static_cast<double>(fraction) * half_pi;
        staying = Factor({std::cos(theta), 0.0});
        crossing = Factor({0.0, std::sin(theta)});
    }

    Factor staying;
    Factor crossing;
};

/// Shares out each selected entry whose two levels differ.
/// @param crossed  receives the crossing shares; room for as many as there are entries
/// @return how many there are
std::size_t share_out(std::span<PackedAmplitude> entries, const ControlTest& controls_hold,
                      const Exchange& exchange, const Shares& shares, PackedAmplitude* crossed) {
    PackedAmplitude* end = crossed;
    for (PackedAmplitude& entry : entries) {
        const std::uint64_t difference = exchange.difference(entry.values);
        if (difference == 0 || !controls_hold(entry.values))
            continue;
        const Parts amplitude = parts_of(entry.amplitude);
        *end++ = {entry.values ^ difference, entry.dimensions ^ exchange.difference(entry.dimensions),
                  complex_of(shares.crossing(amplitude))};
        store(shares.staying(amplitude), entry.amplitude);
    }
    return static_cast<std::size_t>(end - crossed);
}

/// What the reduction makes of all shares that meet in a label.
struct Sum {
    Parts amplitude;
    std::uint64_t values;
    std::uint64_t run; ///< of how many shares it is
};

/// The sums, ascending by label.
struct Sums {
    std::unique_ptr<Sum[]> list;
    std::unique_ptr<std::uint32_t[]> holes; ///< scratch of write()
    std::size_t size = 0;
    std::size_t kept = 0; ///< how many of them the reduction keeps
    std::uint64_t dimensions;

    Sums(std::size_t most, std::uint64_t dimensions_of_all)
        : list(new Sum[most]), holes(new std::uint32_t[most]), dimensions(dimensions_of_all) {}

    void add(const Sum& sum) {
        list[size++] = sum;
        kept += exceeds_threshold(sum.amplitude) ? 1 : 0;
    }

    void write(std::span<PackedAmplitude> entries) const noexcept {
        DirectReduction reduction(entries, dimensions, holes.get());
        for (const Sum& sum : std::span(list.get(), size))
            reduction.add(sum.values, sum.amplitude, sum.run);
    }
};

/// The gate with the reduction that follows it, without the list between them: at most two shares meet in
/// a label, what stays of its own entry and what crosses from its partner.
/// @return nothing where the list is short, its labels are far apart, repeated or of unequal dimensions
std::optional<Sums> shared_out(std::span<const PackedAmplitude> entries, const ControlTest& controls_hold,
                               const Exchange& exchange, const Shares& shares) {
    constexpr std::size_t few = 16;
    if (entries.size() <= few)
        return {};
    std::uint64_t any = 0;
    std::uint64_t unequal = 0;
    for (const PackedAmplitude& entry : entries) {
        any |= entry.values | (entry.values ^ exchange.difference(entry.values));
        unequal |= entry.dimensions ^ entries.front().dimensions;
    }
    std::optional<LabelTable> table = LabelTable::for_labels(any, entries.size());
    if (unequal != 0 || !table)
        return {};

    constexpr std::uint8_t own = 1;     // the label has an entry
    constexpr std::uint8_t crosses = 2; // a partner's share comes to it
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::uint64_t values = entries[i].values;
        const std::uint64_t difference = exchange.difference(values);
        if ((table->mark(values) & own) != 0)
            return {};
        table->mark(values) |= own;
        table->position(values) = static_cast<std::uint32_t>(i);
        if (difference != 0 && controls_hold(values))
            table->mark(values ^ difference) |= crosses;
    }

    const auto amplitude = [&](std::uint64_t values) {
        return parts_of(entries[table->position(values)].amplitude);
    };
    Sums sums(2 * entries.size(), entries.front().dimensions);
    table->for_each_marked([&](std::uint64_t values, std::uint8_t mark) {
        const std::uint64_t difference = exchange.difference(values);
        Parts sum{};
        if ((mark & own) != 0) {
            sum = amplitude(values);
            if (difference != 0 && controls_hold(values))
                sum = shares.staying(sum);
        }
        if ((mark & crosses) != 0) {
            const Parts share = shares.crossing(amplitude(values ^ difference));
            sum = (mark & own) != 0 ? sum + share : share;
        }
        sums.add({sum, values, mark == (own | crosses) ? 2U : 1U});
    });
    return sums;
}

} // namespace

template <class Label>
void State<Label>::i_swap(int first, int second, float fraction, std::vector<Predicate> controls) {
    refuse_overlap(std::array{first, second}, controls,
                   "Fractional i-swap operation has overlapping targets and controls");
    if (qudit_dimension(first) != qudit_dimension(second))
        throw DifferentDimensions("Targets of fractional-i-swap operation have different dimensions");

    const Shares shares(fraction);
    const Exchange exchange(Label::layout, first, second);
    const ControlTest controls_hold(controls, Label::layout);
    if (const std::optional<Sums> sums =
            shared_out(packed_view(amplitudes), controls_hold, exchange, shares)) {
        amplitudes.resize(sums->kept);
        sums->write(packed_view(amplitudes));
    } else {
        const std::size_t n = amplitudes.size();
        amplitudes.resize(2 * n);
        const std::span<PackedAmplitude> entries = packed_view(amplitudes);
        const std::size_t crossed =
            share_out(entries.first(n), controls_hold, exchange, shares, entries.data() + n);
        amplitudes.resize(n + crossed);
        reduce(amplitudes);
    }
    guard_size(amplitudes.size(), "State size exceeds maximum allowed size");
}

VANTEL_INSTANTIATE(void, i_swap, (int, int, float, std::vector<Predicate>))

} // namespace vantel::qudit
