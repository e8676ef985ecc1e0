/// Sort, merge, drop.
#pragma once

#include <cstddef>
#include <span>

#include "state/basis_amplitude.hpp"

namespace vantel::qudit {

/// State::reduce on packed entries.
/// @return how many entries stay, at the front of the list; what lies behind them is to be erased
std::size_t reduce_entries(std::span<PackedAmplitude> list) noexcept;

} // namespace vantel::qudit
