/// What the program of the benchmarks is put together from.
#pragma once

#include "joint_state.hpp"

namespace benchmarks {
void register_limits(const Description& description);

/// Calls that have no state to run on.
void register_lifetimes();

/// Whole programs, each of which makes its qudits and frees them.
void register_programs();

/// Gates and readouts that leave a state with as many entries, or come back to it within four calls.
void register_repeatable(const Description& description);

/// What changes a state for good and is timed apart from what restores it.
void register_consuming(const Description& description);
} // namespace benchmarks
