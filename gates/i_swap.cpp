#include <array>
#include <cmath>
#include <complex>
#include <vector>

#include "gates/exchange.hpp"
#include "gates/frame.hpp"
#include "state/builds.hpp"
#include "state/exceptions.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"

namespace vantel::qudit {

namespace {

/// Leaves cos(theta) of each selected entry whose two levels differ where it is.
/// @param exchanged  receives the other shares, i sin(theta) of each such entry with its levels exchanged;
///                   room for as many as there are entries
/// @return how many there are
std::size_t share_out(std::span<PackedAmplitude> entries, const ControlTest& controls_hold,
                      const Exchange& exchange, double theta, PackedAmplitude* exchanged) {
    const std::complex<double> staying{std::cos(theta), 0.0};
    const std::complex<double> crossing{0.0, std::sin(theta)};
    PackedAmplitude* end = exchanged;
    for (PackedAmplitude& entry : entries) {
        const std::uint64_t difference = exchange.difference(entry.values);
        if (difference == 0 || !controls_hold(entry.values))
            continue;
        *end++ = {entry.values ^ difference, entry.dimensions ^ exchange.difference(entry.dimensions),
                  entry.amplitude * crossing};
        entry.amplitude *= staying;
    }
    return static_cast<std::size_t>(end - exchanged);
}

} // namespace

template <class Label>
void State<Label>::i_swap(int first, int second, float fraction, std::vector<Predicate> controls) {
    refuse_overlap(std::array{first, second}, controls,
                   "Fractional i-swap operation has overlapping targets and controls");
    if (qudit_dimension(first) != qudit_dimension(second))
        throw DifferentDimensions("Targets of fractional-i-swap operation have different dimensions");

    constexpr double half_pi = 1.5707963267948966;
    const double theta = static_cast<double>(fraction) * half_pi;
    const std::size_t n = amplitudes.size();
    amplitudes.resize(2 * n);
    const std::span<PackedAmplitude> entries = packed_view(amplitudes);
    const std::size_t exchanged =
        share_out(entries.first(n), ControlTest(controls, Label::layout),
                  Exchange(Label::layout, first, second), theta, entries.data() + n);
    amplitudes.resize(n + exchanged);
    reduce(amplitudes);
    guard_size(amplitudes.size(), "State size exceeds maximum allowed size");
}

VANTEL_INSTANTIATE(void, i_swap, (int, int, float, std::vector<Predicate>))

} // namespace vantel::qudit
