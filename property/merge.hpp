/// How separate qudits come into one joint state.
#pragma once

#include "interface/quantum_property.hpp"
#include <span>

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
} // namespace vantel
