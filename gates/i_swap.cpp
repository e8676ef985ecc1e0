#include "algorithms/complex_product.hpp"
#include "algorithms/crossovers.hpp"
#include "gates/exchange.hpp"
#include "gates/frame.hpp"
#include "gates/kernels.hpp"
#include "state/exceptions.hpp"
#include "state/position_table.hpp"
#include "state/reduction.hpp"
#include <numeric>

namespace vantel::qudit {
namespace {
/// An amplitude of an entry whose two levels differ is shared out: cos(theta) of it stays, and i sin(theta) goes to the
/// exchanged levels, with theta = fraction pi / 2.
struct Shares {
    Factor staying;
    Factor crossing;

    explicit Shares(float fraction) {
        constexpr double half_pi = 1.5707963267948966;
        const double theta = static_cast<double>(fraction) * half_pi;
        staying = Factor(Parts{std::cos(theta), 0.0});
        crossing = Factor(Parts{0.0, std::sin(theta)});
    }
};

/// The gate as it is defined: the crossing shares are appended, and the list is reduced.
void share_out(EntryList& list, const ControlTest& controls_hold, const Exchange& exchange, const Shares& shares) {
    const std::size_t size = list.entries().size();
    list.resize(2 * size);
    PackedAmplitude* appended = list.entries().data() + size;
    for (PackedAmplitude& entry : list.entries().first(size)) {
        const std::uint64_t difference = exchange.difference(entry.values);
        if (difference == 0 || !controls_hold(entry.values)) continue;
        const Parts amplitude = parts_of(entry.amplitude);
        *appended++ = {entry.values ^ difference, entry.dimensions ^ exchange.difference(entry.dimensions),
                       complex_of(shares.crossing(amplitude))};
        store(shares.staying(amplitude), entry.amplitude);
    }
    list.resize(static_cast<std::size_t>(appended - list.entries().data()));
    list.resize(reduce_entries(list.entries()));
}

/// An entry without its dimensions, which are those of all, on its way to its new place. Copies stand by rank.
struct Copy {
    std::uint64_t values;
    std::complex<double> amplitude;
};

/// The gate together with its reduction: at most two shares meet in a label, what stays of its own entry and what
/// crosses from its partner, and both are found by rank.
struct SharedByRank {
    std::span<std::uint32_t> positions; ///< of copies, by rank
    std::uint64_t stride;               ///< how far off the partner is for each level that the two qudits differ by
    const Copy* entries;                ///< copies, since the list is written over
    const ControlTest& controls_hold;
    Exchange exchange;
    Shares shares;

    /// Notes, for each label without an entry that a share reaches, whose share that is.
    /// @return how many there are
    [[nodiscard]] std::size_t note_reached() const {
        return wide_loop([own = *this]() VANTEL_INLINED {
            std::size_t reached = 0;
            for (std::size_t rank = 0; rank < own.positions.size(); ++rank) {
                const std::uint32_t position = own.positions[rank];
                if (position == 0 || position >= of_partner) continue;
                const std::uint64_t values = own.entries[position - 1].values;
                std::uint32_t& partner = own.partner_of(rank, values);
                if (partner != 0 || !own.controls_hold(values)) continue;
                partner = position | of_partner;
                ++reached;
            }
            return reached;
        });
    }

    /// Writes the sums, as if `list.size()` of them stay. For a `complete` list, also as if no product had an infinity
    /// to recover: such a one is NaN and so is its sum, which is dropped.
    /// @return how many stay
    template <bool complete> [[nodiscard]] std::size_t write(std::span<PackedAmplitude> list, std::uint64_t dimensions,
                                                             std::uint32_t* holes) const {
        std::size_t kept = 0;
        controls_hold.walk(list, [own = *this, dimensions, holes, &kept](std::span<PackedAmplitude> written, auto holds,
                                                                         auto) VANTEL_INLINED {
            ReducedOrder order(written, dimensions, holes);
            std::size_t count = 0;
            Words stay = ~Words{};
            for (std::size_t rank = 0; rank < own.positions.size(); ++rank)
                if constexpr (complete)
                    stay &= own.add_complete(order, rank, holds);
                else if (const std::uint32_t position = own.positions[rank]; position != 0)
                    count += own.add(order, rank, position, holds) ? 1 : 0;
            kept = complete && highest_bits(stay) == 3 ? written.size() : count;
        });
        return kept;
    }

    /// Set in the position of a label without an entry, which is then that of the partner's.
    static constexpr std::uint32_t of_partner = std::uint32_t{1} << 31;

    [[nodiscard]] std::uint32_t& partner_of(std::size_t rank, std::uint64_t values) const {
        return positions[rank + exchange.ahead(values) * stride];
    }

    // Controls are on other qudits, so they hold for both partners or for neither.

    template <class Holds> [[gnu::always_inline]] bool add(ReducedOrder& order, std::size_t rank,
                                                           std::uint32_t position, const Holds& holds) const {
        const Copy& entry = entries[(position & ~of_partner) - 1];
        const std::uint64_t values = entry.values;
        const Parts amplitude = parts_of(entry.amplitude);
        if (position >= of_partner)
            return order.add(values ^ exchange.difference(values), shares.crossing(amplitude), 1);
        const std::uint32_t partner = partner_of(rank, values);
        if (partner == position || holds(values) == 0) return order.add(values, amplitude, 1);
        if (partner >= of_partner) return order.add(values, shares.staying(amplitude), 1);
        const Parts share = shares.crossing(parts_of(entries[partner - 1].amplitude));
        return order.add(values, shares.staying(amplitude) + share, 2);
    }

    /// The same without a branch on what an entry is.
    template <class Holds>
    [[gnu::always_inline]] Words add_complete(ReducedOrder& order, std::size_t rank, const Holds& holds) const {
        const std::uint64_t values = entries[rank].values;
        const std::uint64_t ahead = exchange.ahead(values);
        const std::uint64_t shared = ~equal(ahead, 0) & holds(values);
        const Parts amplitude = parts_of(entries[rank].amplitude);
        const Parts met = shares.staying.unrecovered(amplitude) +
                          shares.crossing.unrecovered(parts_of(entries[rank + ahead * stride].amplitude));
        const Parts sum = select(shared, met, amplitude);
        order.keep(values, sum, 1 + (shared & 1));
        return exceed_threshold<PlainVectors>(sum);
    }
};

/// @return whether it did; where not, the list stands, and the gate as it is defined is to serve
bool share_by_rank(EntryList& list, SlotLayout layout, int low, int high, const ControlTest& controls_hold,
                   const Exchange& exchange, const Shares& shares) {
    const std::size_t size = list.entries().size();
    if (size < crossover::entries_for_ranks) return false;
    const Survey survey(list.entries());
    if (!survey.same_dimensions) return false;
    const std::uint64_t varying = survey.varying() | layout.field(low) | layout.field(high);
    PositionTable table(list.entries(), layout, {}, varying);
    if (!table.is_close()) return false;
    const std::size_t longest = std::clamp(table.size(), size, 2 * size);
    Scratch scratch(
        list.spare_behind(longest, sizeof(Copy) * size + sizeof(std::uint32_t) * (table.size() + longest) + 64));
    const std::span<const PackedAmplitude> entries = list.entries();
    Copy* const copies = scratch.take<Copy>(size);
    const auto copy = [copies](const PackedAmplitude& entry, std::size_t place, auto...) VANTEL_INLINED {
        copies[place].values = entry.values;
        store(parts_of(entry.amplitude), copies[place].amplitude);
    };
    const bool complete = table.is_complete();
    if (!(complete ? table.fill(entries, scratch, copy) : table.fill(entries, scratch, [](auto...) {}))) return false;
    if (std::uint32_t copied = 0; !complete)
        for (std::uint32_t& position : table.positions())
            if (position != 0) {
                copy(entries[position - 1], copied);
                position = ++copied;
            }
    const std::uint64_t stride = table.rank()(layout.one_level(high)) - table.rank()(layout.one_level(low));
    const SharedByRank shared{table.positions(), stride, copies, controls_hold, exchange, shares};
    const std::uint64_t dimensions = entries.front().dimensions;
    const std::size_t reached = complete ? 0 : shared.note_reached();
    std::uint32_t* const holes = scratch.take<std::uint32_t>(size + reached + 1);
    list.resize(size + reached);
    if (complete) {
        if (shared.write<true>(list.entries(), dimensions, holes) == size) return true;
        std::iota(table.positions().begin(), table.positions().end(), std::uint32_t{1});
    }
    // Mostly nothing is dropped. Otherwise it is known now how many sums stay, and they are written once more.
    if (const std::size_t kept = shared.write<false>(list.entries(), dimensions, holes); kept < list.entries().size()) {
        list.resize(kept);
        static_cast<void>(shared.write<false>(list.entries(), dimensions, holes));
    }
    return true;
}
} // namespace

void i_swap(EntryList& list, SlotLayout layout, const Gate& gate) {
    refuse_overlap(gate, "Fractional i-swap operation has overlapping targets and controls");
    const auto [low, high] = std::minmax(gate.targets[0], gate.targets[1]);
    const std::span<const PackedAmplitude> entries = list.entries();
    if (!entries.empty() &&
        layout.dimension(entries.front().dimensions, low) != layout.dimension(entries.front().dimensions, high))
        throw DifferentDimensions("Targets of fractional-i-swap operation have different dimensions");

    const Shares shares(gate.number);
    const Exchange exchange(layout, low, high);
    const ControlTest controls_hold(gate.controls, layout);
    if (!share_by_rank(list, layout, low, high, controls_hold, exchange, shares))
        share_out(list, controls_hold, exchange, shares);
    guard_size(list.entries().size(), "State size exceeds maximum allowed size");
}
} // namespace vantel::qudit
