#include <cmath>

#include "readout/draw.hpp"
#include "readout/levels.hpp"
#include "readout/squared_modulus.hpp"
#include "state/builds.hpp"
#include "state/packed_view.hpp"
#include "state/product.hpp"
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
    const double root = static_cast<double>(std::sqrt(sum));
    const Parts norm{root, root};
    for (PackedAmplitude& entry : entries)
        store(parts_of(entry.amplitude) / norm, entry.amplitude);
}

/// Keeps the entries that show the drawn outcome in the listed fields, at the front, and renormalises them.
void project(std::span<PackedAmplitude> entries, std::uint64_t listed, const PackedOutcome& drawn) {
    partition_two_ended(entries, drawn.entries, [=](const PackedAmplitude& entry) {
        return ((entry.values ^ drawn.values) & listed) == 0;
    });
    renormalise(entries.first(drawn.entries));
}

} // namespace

template <class Label> std::vector<int> State<Label>::measure(std::vector<int> qudits) {
    const std::vector<PackedOutcome> outcomes = packed_probabilities(qudits);
    if (outcomes.empty())
        return std::vector<int>(qudits.size(), 0);
    const PackedOutcome drawn = outcomes[draw_outcome(outcomes)];
    std::vector<int> levels = levels_of(Label::layout, drawn.values, qudits);
    project(packed_view(amplitudes), fields_of(Label::layout, qudits), drawn);
    amplitudes.resize(drawn.entries);
    return levels;
}

VANTEL_INSTANTIATE(std::vector<int>, measure, (std::vector<int>))

} // namespace vantel::qudit
