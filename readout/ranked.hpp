/// The tables of readouts with one place for each combination of levels, for callers that want them all.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "state/basis_amplitude.hpp"
#include "state/level_rank.hpp"

namespace vantel::qudit {

/// Whether a table of `places` is not much more than the entries that it sums up.
constexpr bool is_close_to(std::size_t entries, std::uint64_t places) noexcept {
    return places <= 256 + 4 * entries;
}

/// The sums of IState::probabilities by rank; 0 where no entry shows the combination.
/// @param listed  the fields of the listed qudits
/// @throws std::bad_alloc
std::vector<double> ranked_probabilities(std::span<const PackedAmplitude> entries, std::uint64_t listed,
                                         const LevelRank& rank);

/// The elements of IState::reduced_density_matrix by row and column rank.
struct RankedMatrix {
    std::vector<std::complex<double>> elements; ///< row by row
    std::vector<std::uint8_t> reached;          ///< of each, whether any pair of entries contributes to it
};

/// @param rank    of the listed qudits' levels
/// @param traced  the fields of all qudits that are not listed
/// @throws std::bad_alloc
RankedMatrix ranked_density_matrix(std::span<const PackedAmplitude> entries, SlotLayout layout,
                                   std::span<const int> listed, const LevelRank& rank, std::uint64_t traced);

} // namespace vantel::qudit
