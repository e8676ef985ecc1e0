/// The library's operations in terms of handles, one for each exported gate and readout. Each merges the properties
/// that it names and then acts on their joint state; a merge stays, whatever becomes of the operation.
#pragma once

#include "interface/quantum_property.hpp"
#include "property/merge.hpp"
#include "readout/density_matrix.hpp"
#include "readout/probabilities.hpp"
#include <vector>

namespace vantel {
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
