/// The limits of the system, fixed at build time.
#pragma once

#include <cstddef>

namespace vantel::qudit {
inline constexpr int MIN_QUDIT_DIMENSION = 2;
inline constexpr int MAX_QUDIT_DIMENSION = 10;
inline constexpr int MAX_QUDIT_NUM = 10;

/// Most entries that a state may store. It counts entries and not basis states: ten ten-level qudits have 10^10 of
/// those, and are welcome as long as few are in use.
inline constexpr std::size_t MAX_STATE_ENTRIES = 100000;
} // namespace vantel::qudit
