/// The density matrix of a list whose entries are found by rank.
#pragma once

#include "state/entries.hpp"
#include <complex>
#include <cstdint>
#include <span>
#include <vector>

namespace vantel::qudit {
/// @param entries     at least one
/// @param dimensions  of the listed qudits, by which rows and columns are ranked
/// @param side        how many combinations of their levels there are
/// @return the elements row by row; none where no table of the labels can be made, or the qudits have other dimensions
/// by now
/// @throws std::bad_alloc
std::vector<std::complex<double>> matrix_by_rank(PackedEntries entries, SlotLayout layout, std::span<const int> qudits,
                                                 std::span<const std::uint64_t> dimensions, std::size_t side);
} // namespace vantel::qudit
