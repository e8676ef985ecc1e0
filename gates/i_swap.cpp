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
#include "state/level_rank.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"
#include "state/wide_loop.hpp"

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

/// The rank of a label among all combinations of levels, with the dimensions of one label.
LevelRank rank_of_all(SlotLayout layout, int qudit_count, std::uint64_t dimensions, std::size_t labels) {
    std::vector<int> qudits;
    std::vector<std::uint64_t> levels;
    for (int qudit = 0; qudit < qudit_count; ++qudit) {
        qudits.push_back(qudit);
        levels.push_back((dimensions >> layout.position(qudit) & layout.mask()) + 1);
    }
    return {layout, qudits, levels, labels};
}

/// A sum of all shares that meet in a label, which the reduction keeps.
struct Sum {
    Parts amplitude;
    std::uint64_t values;
    std::size_t place; ///< in the sorted list of all shares
};

/// The kept sums, ascending by label.
struct Sums {
    std::unique_ptr<Sum[]> list;
    std::unique_ptr<std::uint32_t[]> holes; ///< scratch of write()
    std::size_t kept = 0;
    std::size_t length = 0; ///< of the sorted list up to now
    std::uint64_t dimensions;

    Sums(std::size_t most, std::uint64_t dimensions_of_all)
        : list(new Sum[most]), holes(new std::uint32_t[most]), dimensions(dimensions_of_all) {}

    void add(std::uint64_t values, Parts amplitude, std::size_t run) noexcept {
        length += run;
        if (!exceeds_threshold(amplitude))
            return;
        Sum& sum = list[kept++];
        sum.amplitude = amplitude;
        sum.values = values;
        sum.place = length - 1;
    }

    void write(std::span<PackedAmplitude> entries) const noexcept {
        DirectReduction reduction(entries, dimensions, holes.get());
        for (const Sum& sum : std::span(list.get(), kept))
            reduction.keep(sum.values, sum.amplitude, sum.place);
    }
};

/// The gate with the reduction that follows it, without the list between them: at most two shares meet in
/// a label, what stays of its own entry and what crosses from its partner. Both are found by the rank of the
/// label among all combinations of levels.
/// @return nothing where the list is short, its labels are far apart, repeated or unlike in their dimensions
std::optional<Sums> shared_out(std::span<const PackedAmplitude> entries, SlotLayout layout, int qudit_count,
                               const ControlTest& controls_hold, const Exchange& exchange,
                               const Shares& shares) {
    constexpr std::size_t few = 16;
    constexpr std::size_t many = std::size_t{1} << 31;
    constexpr std::uint64_t sparsest = 16; // combinations an entry, beyond which sorting is quicker
    if (entries.size() <= few || entries.size() >= many)
        return {};
    const std::uint64_t dimensions = entries.front().dimensions;
    const LevelRank rank = rank_of_all(layout, qudit_count, dimensions, entries.size());
    const std::uint64_t ranks = rank.size();
    if (ranks / sparsest >= entries.size())
        return {};

    // Positions are counted from 1; 0 stands for none.
    constexpr std::uint32_t sharing = std::uint32_t{1} << 31;
    std::vector<std::uint32_t> own(ranks, 0);      ///< the entry of each label, and whether it shares
    std::vector<std::uint32_t> partners(ranks, 0); ///< the entry whose share crosses to each label
    bool regular = true;
    wide_loop([&regular, &rank, &controls_hold, entries, exchange, dimensions, ranks, mine = own.data(),
               crossing = partners.data()] {
        for (std::size_t i = 0; i < entries.size() && regular; ++i) {
            const std::uint64_t values = entries[i].values;
            const std::uint64_t r = rank(values);
            if (entries[i].dimensions != dimensions || r >= ranks || mine[r] != 0) {
                regular = false;
                continue;
            }
            const auto position = static_cast<std::uint32_t>(i + 1);
            const std::uint64_t difference = exchange.difference(values);
            const bool shared = difference != 0 && controls_hold(values);
            mine[r] = shared ? position | sharing : position;
            if (shared)
                crossing[rank(values ^ difference)] = position;
        }
    });
    if (!regular)
        return {};

    Sums sums(2 * entries.size(), dimensions);
    wide_loop([shares, exchange, entries, &sums, &own, &partners, ranks] {
        for (std::uint64_t r = 0; r < ranks; ++r) {
            const std::uint32_t mine = own[r];
            const std::uint32_t partner = partners[r];
            if (partner == 0) {
                if (mine == 0)
                    continue;
                const PackedAmplitude& entry = entries[(mine & ~sharing) - 1];
                const Parts amplitude = parts_of(entry.amplitude);
                sums.add(entry.values, (mine & sharing) != 0 ? shares.staying(amplitude) : amplitude, 1);
                continue;
            }
            const PackedAmplitude& from = entries[partner - 1];
            const Parts share = shares.crossing(parts_of(from.amplitude));
            const std::uint64_t values = from.values ^ exchange.difference(from.values);
            if (mine == 0) {
                sums.add(values, share, 1);
                continue;
            }
            // Controls are on other qudits, so they hold for both partners or for neither.
            const Parts amplitude = parts_of(entries[(mine & ~sharing) - 1].amplitude);
            sums.add(values, shares.staying(amplitude) + share, 2);
        }
    });
    return sums;
}

} // namespace

template <class Label> void State<Label>::exchange_in_part(const Gate& gate) {
    refuse_overlap(gate, "Fractional i-swap operation has overlapping targets and controls");
    const int first = gate.targets[0];
    const int second = gate.targets[1];
    if (qudit_dimension(first) != qudit_dimension(second))
        throw DifferentDimensions("Targets of fractional-i-swap operation have different dimensions");

    const Shares shares(gate.number);
    const Exchange exchange(Label::layout, first, second);
    const ControlTest controls_hold(gate.controls, Label::layout);
    if (const std::optional<Sums> sums = shared_out(packed_view(amplitudes), Label::layout,
                                                    Label::qudit_count, controls_hold, exchange, shares)) {
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

VANTEL_INSTANTIATE(void, exchange_in_part, (const Gate&))

} // namespace vantel::qudit
