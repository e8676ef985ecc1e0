#include "gates/exchange_sums.hpp"

#include <utility>

#include "gates/words.hpp"
#include "state/direct_reduction.hpp"
#include "state/drop_threshold.hpp"

namespace vantel::qudit {

std::optional<ExchangeSums> ExchangeSums::of(std::span<const PackedAmplitude> entries, SlotLayout layout,
                                             int qudit_count, const ControlTest& controls_hold,
                                             const Exchange& exchange, const Shares& shares) {
    std::optional<EntriesByRank> table = EntriesByRank::of(entries, layout, qudit_count);
    if (!table)
        return {};
    return ExchangeSums(std::move(*table), controls_hold, exchange, shares);
}

ExchangeSums::ExchangeSums(EntriesByRank&& table, const ControlTest& controls_hold, const Exchange& exchange,
                           const Shares& shares)
    : table_(std::move(table)), controls_hold_(controls_hold), exchange_(exchange), shares_(shares),
      partner_stride_(table_.stride(exchange.high()) - table_.stride(exchange.low())),
      room_(table_.is_complete() ? table_.positions.size() : count_kept()),
      holes_(new std::uint32_t[room_ + 1]) {}

/// Also notes, for each label without an entry that a share reaches, whose share that is.
std::size_t ExchangeSums::count_kept() noexcept {
    std::size_t all_kept = 0;
    wide_loop([this, &all_kept] {
        const Exchange exchange = exchange_; // copies that no store to a position can be thought to change
        const Shares shares = shares_;
        const ControlTest& controls_hold = controls_hold_;
        const std::uint64_t stride = partner_stride_;
        const std::size_t ranks = table_.positions.size();
        std::uint32_t* const positions = table_.positions.data();
        const Copy* const copies = table_.copies.get();
        std::size_t kept = 0;
        for (std::size_t rank = 0; rank < ranks; ++rank) {
            const std::uint32_t own = positions[rank];
            if (own == 0 || own >= of_partner)
                continue;
            const Copy& entry = copies[own - 1];
            const Parts amplitude = parts_of(entry.amplitude);
            const std::uint64_t ahead = exchange.ahead(entry.values);
            if (ahead == 0 || !controls_hold(entry.values)) {
                kept += exceeds_threshold(amplitude) ? 1 : 0;
                continue;
            }
            const Parts staying = shares.staying(amplitude);
            std::uint32_t& partner = positions[rank + ahead * stride];
            if (partner == 0 || partner >= of_partner) {
                partner = own | of_partner;
                kept += exceeds_threshold(staying) ? 1 : 0;
                kept += exceeds_threshold(shares.crossing(amplitude)) ? 1 : 0;
            } else {
                const Parts share = shares.crossing(parts_of(copies[partner - 1].amplitude));
                kept += exceeds_threshold(staying + share) ? 1 : 0;
            }
        }
        all_kept = kept;
    });
    return all_kept;
}

void ExchangeSums::write_counted(std::span<PackedAmplitude> list) const noexcept {
    wide_loop([this, list] {
        const Exchange exchange = exchange_; // copies that no store to an entry can be thought to change
        const Shares shares = shares_;
        const ControlTest& controls_hold = controls_hold_;
        const std::uint64_t stride = partner_stride_;
        const std::size_t ranks = table_.positions.size();
        const std::uint32_t* const positions = table_.positions.data();
        const Copy* const copies = table_.copies.get();
        DirectReduction reduction(list, table_.dimensions(), holes_.get());
        for (std::size_t rank = 0; rank < ranks; ++rank) {
            const std::uint32_t own = positions[rank];
            if (own == 0)
                continue;
            const Copy& entry = copies[(own & ~of_partner) - 1];
            const std::uint64_t values = entry.values;
            const Parts amplitude = parts_of(entry.amplitude);
            if (own >= of_partner) {
                reduction.add(values ^ exchange.difference(values), shares.crossing(amplitude), 1);
                continue;
            }
            const std::uint64_t ahead = exchange.ahead(values);
            if (ahead == 0 || !controls_hold(values)) {
                reduction.add(values, amplitude, 1);
                continue;
            }
            // Controls are on other qudits, so they hold for both partners or for neither.
            const std::uint32_t partner = positions[rank + ahead * stride];
            if (partner >= of_partner) {
                reduction.add(values, shares.staying(amplitude), 1);
            } else {
                const Parts share = shares.crossing(parts_of(copies[partner - 1].amplitude));
                reduction.add(values, shares.staying(amplitude) + share, 2);
            }
        }
    });
}

/// For a complete table, as if no sum were dropped and no product had an infinity to recover. Such a product
/// is NaN in both parts and so would be its sum, which is dropped.
/// @return whether that is so
bool ExchangeSums::write_undropped(std::span<PackedAmplitude> list) const noexcept {
    bool undropped = false;
    controls_hold_.walk(list, [this, &undropped](std::span<PackedAmplitude> entries, const auto& test, auto) {
        const auto holds = test; // copies that no store to an entry can be thought to change
        const Exchange exchange = exchange_;
        const Shares shares = shares_;
        const std::uint64_t stride = partner_stride_;
        const std::uint64_t dimensions = table_.dimensions();
        PairedReduction order(entries.size(), holes_.get());
        PackedAmplitude* const written = entries.data();
        std::size_t dropped = 0;
        const Copy* own = table_.copies.get();
        for (const Copy* const end = own + entries.size(); own != end; ++own) {
            const std::uint64_t values = own->values;
            const std::uint64_t ahead = exchange.ahead(values);
            const std::uint64_t shared = ~equal(ahead, 0) & holds(values);
            const Copy& partner = own[static_cast<std::ptrdiff_t>(ahead * stride)];
            const Parts amplitude = parts_of(own->amplitude);
            const Parts met = shares.staying.unrecovered(amplitude) +
                              shares.crossing.unrecovered(parts_of(partner.amplitude));
            const Parts sum = select(Words{shared, shared}, met, amplitude);
            dropped += exceeds_threshold(sum) ? 0 : 1;
            PackedAmplitude& entry = written[order.next(shared & 1)];
            entry.values = values;
            entry.dimensions = dimensions;
            store(sum, entry.amplitude);
        }
        undropped = dropped == 0;
    });
    return undropped;
}

std::size_t ExchangeSums::write(std::span<PackedAmplitude> list) noexcept {
    if (table_.is_complete()) {
        if (write_undropped(list))
            return list.size();
        list = list.first(count_kept());
    }
    write_counted(list);
    return list.size();
}

} // namespace vantel::qudit
