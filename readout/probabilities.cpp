#include "readout/levels.hpp"
#include "readout/squared_modulus.hpp"
#include "state/builds.hpp"
#include "state/key_index.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"
#include "state/subkey.hpp"

namespace vantel::qudit {

namespace {

std::vector<PackedOutcome> outcomes_of(std::span<const PackedAmplitude> entries, std::uint64_t listed) {
    const Subkey outcome_of(listed);
    return with_key_index(outcome_of.bits(), entries.size(), [&](auto& seen) {
        std::vector<PackedOutcome> outcomes;
        // Neighbours often share an outcome; its sum stays in a register until another one is met.
        std::size_t current = 0;
        double sum = 0.0;
        for (const PackedAmplitude& entry : entries) {
            const std::size_t known = seen.size();
            const std::size_t position = seen.find_or_add(outcome_of(entry.values));
            const double weight = squared_modulus(entry.amplitude);
            if (position == current && known != 0) {
                sum += weight;
                continue;
            }
            if (known != 0)
                outcomes[current].probability = sum;
            if (position == known)
                outcomes.push_back({entry.values, 0.0});
            sum = position == known ? weight : outcomes[position].probability + weight;
            current = position;
        }
        if (!outcomes.empty())
            outcomes[current].probability = sum;
        return outcomes;
    });
}

} // namespace

template <class Label>
std::vector<PackedOutcome> State<Label>::packed_probabilities(const std::vector<int>& qudits) const {
    if (amplitudes.empty())
        return {};
    for (const int qudit : qudits)
        static_cast<void>(amplitudes.front().label.at(qudit));
    return outcomes_of(packed_view(amplitudes), fields_of(Label::layout, qudits));
}

template <class Label>
std::vector<QuditsProbability> State<Label>::probabilities(std::vector<int> qudits) const {
    std::vector<QuditsProbability> table;
    for (const PackedOutcome& outcome : packed_probabilities(qudits))
        table.push_back({levels_of(Label::layout, outcome.values, qudits), outcome.probability});
    return table;
}

VANTEL_INSTANTIATE(std::vector<PackedOutcome>, packed_probabilities, (const std::vector<int>&) const)
VANTEL_INSTANTIATE(std::vector<QuditsProbability>, probabilities, (std::vector<int>) const)

} // namespace vantel::qudit
