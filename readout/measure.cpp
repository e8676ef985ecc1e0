#include <cmath>

#include "readout/draw.hpp"
#include "readout/levels.hpp"
#include "readout/squared_modulus.hpp"
#include "state/builds.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"
#include "state/subkey.hpp"
#include "state/two_ended_partition.hpp"

namespace vantel::qudit {

namespace {

/// Divides every amplitude by the norm of the list. Sum and root are single precision on purpose, so the
/// state's norm is 1 to that precision only.
void renormalise(std::span<PackedAmplitude> entries) {
    float sum = 0.0F;
    for (const PackedAmplitude& entry : entries)
        sum = static_cast<float>(static_cast<double>(sum) + squared_modulus(entry.amplitude));
    const double norm = static_cast<double>(std::sqrt(sum));
    for (PackedAmplitude& entry : entries)
        entry.amplitude = {entry.amplitude.real() / norm, entry.amplitude.imag() / norm};
}

/// Keeps the entries that show the drawn levels in the listed fields, and renormalises them.
/// @return how many there are, at the front
std::size_t project(std::span<PackedAmplitude> entries, std::uint64_t listed, std::uint64_t drawn) {
    const std::size_t kept = partition_two_ended(
        entries, [=](const PackedAmplitude& entry) { return ((entry.values ^ drawn) & listed) == 0; });
    renormalise(entries.first(kept));
    return kept;
}

} // namespace

template <class Label> std::vector<int> State<Label>::measure(std::vector<int> qudits) {
    const std::vector<PackedOutcome> outcomes = packed_probabilities(qudits);
    if (outcomes.empty())
        return std::vector<int>(qudits.size(), 0);
    const std::uint64_t drawn = outcomes[draw_outcome(outcomes)].values;
    std::vector<int> levels = levels_of(Label::layout, drawn, qudits);
    const std::size_t kept = project(packed_view(amplitudes), fields_of(Label::layout, qudits), drawn);
    amplitudes.resize(kept);
    return levels;
}

VANTEL_INSTANTIATE(std::vector<int>, measure, (std::vector<int>))

} // namespace vantel::qudit
