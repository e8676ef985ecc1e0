/// How separate qudits come into one joint state.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "interface/quantum_property.hpp"

namespace vantel {

using Targets = std::vector<std::reference_wrapper<QuantumProperty>>;
using Predicates = std::vector<QuantumProperty::Predicate>;

/// Merges b's joint state into a's: the tensor product replaces a's state, and the indices of b's handles
/// rise by a's qudit count. Handles of one joint state merge for nothing.
/// @return the joint state that holds both, owned by its SharedState
/// @throws qudit::StateSizeExceeded, qudit::BadQuditNumber, std::bad_alloc; nothing has changed then
qudit::IState* tensor_state(QuantumProperty& a, QuantumProperty& b);

/// Merges the predicates' properties into the anchor's joint state, in order. @throws as the pair form; where
/// a merge fails, those before it stand
/// @return the joint state
qudit::IState& relate(QuantumProperty& anchor, std::span<const QuantumProperty::Predicate> predicates);

/// Merges all listed properties into the first one's joint state, in list order. Where a merge fails,
/// those before it stand.
/// @return the joint state; null for an empty list
/// @throws as the pair form
qudit::IState* tensor_state(Targets targets, Predicates predicates);
qudit::IState* tensor_state(Predicates predicates);
qudit::IState* tensor_state(std::vector<QuantumProperty*> properties);

} // namespace vantel
