/// How a qudit leaves its joint state.
#pragma once

#include "interface/quantum_property.hpp"

namespace vantel {
/// Takes the handle's qudit out of its joint state, unless it is the last one there, and renumbers the handle of the
/// qudit that moves into its place. No level is measured and no amplitude changes; entries that differed in this qudit
/// alone become one, the first stored. The handle keeps its share of the SharedState.
/// @throws qudit::StateSizeExceeded where the state is over the limit; std::bad_alloc
void take_out(QuantumProperty& leaving);
} // namespace vantel
