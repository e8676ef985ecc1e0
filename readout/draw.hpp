/// The one random step of the library.
#pragma once

#include "readout/outcomes.hpp"
#include <cstddef>
#include <vector>

namespace vantel::qudit {
/// Draws one outcome in proportion to its weight, with one word of the system's randomness.
/// @param outcomes  at least one
/// @return the outcome's position
/// @throws what the system's random source raises when it cannot be opened or read; std::bad_alloc
std::size_t draw_outcome(const std::vector<PackedOutcome>& outcomes);
} // namespace vantel::qudit
