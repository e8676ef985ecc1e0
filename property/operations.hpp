/// The library's operations in terms of handles. Each merges the properties that it names and then acts on
/// their joint state; a merge stays, whatever becomes of the operation.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

#include "interface/quantum_property.hpp"
#include "property/merge.hpp"

namespace vantel {

/// A condition by index, and a list of them. Good only until the next merge or release, which renumber
/// handles.
inline qudit::Predicate indexed(const QuantumProperty::Predicate& predicate) {
    return {predicate.property->index, predicate.value, predicate.is_equal};
}
std::vector<qudit::Predicate> convert_to_indexed_predicates(Predicates predicates);

/// The present index of each property, in list order.
std::vector<int> to_index_list(std::vector<QuantumProperty*> properties);
std::vector<int> to_index_list(Targets properties);

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

/// The door of all gates, which those above go through.
/// @param number   as in qudit::Gate
/// @param targets  none for `phase_rotate`, which acts on the joint state of its first condition
void act(qudit::Gate::Kind kind, float number, std::initializer_list<QuantumProperty*> targets,
         std::span<const QuantumProperty::Predicate> predicates);

// Readouts, in the order of the list; an empty list has an empty result.

std::vector<int> measure(std::vector<QuantumProperty*> properties);
std::vector<int> measure(Targets properties);
/// Asks whether all conditions hold and projects onto the answer: 1 if they do, 0 if they do not all.
/// Takes one more place in the joint state for the time of the call.
int measure(const Predicates& predicates);
std::vector<qudit::QuditsProbability> probabilities(std::vector<QuantumProperty*> properties);
std::vector<qudit::DensityMatrixEntry> reduced_density_matrix(std::vector<QuantumProperty*> properties);

/// What a table of listed properties is read out of.
struct ReadoutSource {
    const qudit::IState* state = nullptr; ///< the joint state of all of them; none for an empty list
    qudit::SlotLayout layout{};
    std::vector<int> indices; ///< of the listed properties, in list order
};

/// Merges the listed properties and reads their indices.
ReadoutSource readout_source(std::vector<QuantumProperty*> properties);

} // namespace vantel
