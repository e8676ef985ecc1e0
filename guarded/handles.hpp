/// Release and projection that leave every handle good. The lists of handles in joint states that only these
/// two have changed name each live handle once, so that a merge raises none twice.
#pragma once

#include "interface/quantum_property.hpp"
#include "property/merge.hpp"

namespace vantel::guarded {
/// Takes the handle's qudit out of its joint state and deletes the handle.
/// @throws qudit::StateSizeExceeded, std::bad_alloc; nothing has changed then
void release(QuantumProperty* leaving);

/// Relates the predicates' qudits, asks whether all predicates hold, and projects onto the answer.
/// @return 1 if they hold, 0 if they do not all hold; 1 without any
/// @throws qudit::StateSizeExceeded, qudit::BadQuditNumber, std::bad_alloc, and what the random source
/// raises;
///         nothing has happened then but merges
int project(Predicates predicates);
} // namespace vantel::guarded
