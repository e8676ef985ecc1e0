#include <optional>

#include "gates/exchange.hpp"
#include "gates/exchange_sums.hpp"
#include "gates/frame.hpp"
#include "state/builds.hpp"
#include "state/exceptions.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"

namespace vantel::qudit {

namespace {

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
    if (std::optional<ExchangeSums> sums = ExchangeSums::of(
            packed_view(amplitudes), Label::layout, Label::qudit_count, controls_hold, exchange, shares)) {
        amplitudes.resize(sums->room());
        amplitudes.resize(sums->write(packed_view(amplitudes)));
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
