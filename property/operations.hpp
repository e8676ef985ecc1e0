/// The library's operations in terms of handles, one for each exported gate and readout. Each merges the properties
/// that it names and then acts on their joint state; a merge stays, whatever becomes of the operation.
#pragma once

#include "interface/quantum_property.hpp"
#include "readout/density_matrix.hpp"
#include "readout/probabilities.hpp"

namespace vantel {
using Properties = std::span<QuantumProperty* const>;
using Predicates = std::span<const QuantumProperty::Predicate>;

/// Merges b's joint state into a's: the tensor product replaces a's state, and the indices of b's handles rise by a's
/// qudit count. Handles of one joint state merge for nothing.
/// @return the joint state that holds both, owned by its SharedState
/// @throws qudit::StateSizeExceeded, qudit::BadQuditNumber, std::bad_alloc; nothing has changed then
qudit::IState* tensor_state(QuantumProperty& a, QuantumProperty& b);
/// Merges all listed properties, and then those of the predicates, into the first one's joint state, in order. Where a
/// merge fails, those before it stand.
/// @return the joint state; null where nothing is listed
/// @throws as the pair form
qudit::IState* tensor_state(Properties properties, Predicates predicates = {});

// Gates: as the IState operation of the name, with its exceptions and those of a merge.

void hadamard(QuantumProperty& target, Predicates predicates);
void inverse_hadamard(QuantumProperty& target, Predicates predicates);
void cycle(QuantumProperty& target, Predicates predicates);
void cycle(QuantumProperty& target, float fraction, Predicates predicates);
void shift(QuantumProperty& target, Predicates predicates);
void shift(QuantumProperty& target, float fraction, Predicates predicates);
void clock(QuantumProperty& target, Predicates predicates);
void clock(QuantumProperty& target, float fraction, Predicates predicates);
/// Without predicates there is no joint state to act on: nothing is done.
void phase_rotate(Predicates predicates, float angle);
void swap(QuantumProperty& first, QuantumProperty& second, Predicates predicates);
void i_swap(QuantumProperty& first, QuantumProperty& second, float fraction, Predicates predicates);

// Readouts, in the order of the list; an empty list has an empty result.

std::vector<int> measure(Properties properties);
/// Asks whether all conditions hold and projects onto the answer: 1 if they do, 0 if they do not all. Takes one more
/// place in the joint state for the time of the call.
int measure(Predicates predicates);
/// By the dimensions that the properties have once they are merged.
qudit::ProbabilityTable probabilities(Properties properties);
/// @param permutations  value_permutations(properties), which the caller's matrix was measured by before the merge; a
///                      handle that stands twice in its joint state's list can have another dimension after it
qudit::DensityMatrix reduced_density_matrix(Properties properties, const qudit::ValuePermutations& permutations);

/// By the properties' dimensions as they stand; nothing is merged.
/// @throws std::length_error where there are 2^64 combinations or more
qudit::ValuePermutations value_permutations(Properties properties);
} // namespace vantel
