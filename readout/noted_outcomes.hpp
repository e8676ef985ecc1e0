/// The outcomes of a list of entries, and which of them each entry shows.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "readout/outcome_numbers.hpp"
#include "state/basis_amplitude.hpp"
#include "state/istate.hpp"

namespace vantel::qudit {

struct NotedOutcomes {
    std::vector<PackedOutcome> outcomes;
    OutcomeNumbers numbers; ///< subkeys of the listed fields; none where these have too many bits
};

/// What IState::probabilities tells of the listed fields, its levels still packed.
std::vector<PackedOutcome> outcomes_of(std::span<const PackedAmplitude> entries, std::uint64_t listed);

/// The same, with the outcomes' numbers where they have so few kinds.
NotedOutcomes noted_outcomes_of(std::span<const PackedAmplitude> entries, std::uint64_t listed);

} // namespace vantel::qudit
