/// What callers get of a readout: tables by the rank of each combination of levels among all of them. Where
/// the combinations are many more than the entries, only those stand there that some entry shows.
#pragma once

#include <complex>
#include <cstdint>
#include <vector>

#include "readout/value_permutations.hpp"
#include "state/istate.hpp"

namespace vantel::qudit {

/// Whether a table of `places` is not much more than the entries that it sums up.
constexpr bool is_close_to(std::size_t entries, std::uint64_t places) noexcept {
    return places <= 256 + 4 * entries;
}

/// The sums of IState::probabilities.
struct RankedProbabilities {
    struct Shown {
        std::uint64_t rank;
        double probability;
    };

    ValuePermutations permutations; ///< those that are ranked
    std::vector<double> all;        ///< by rank, 0 where no entry shows the combination; or empty
    std::vector<Shown> some;        ///< instead of all
};

/// @param permutations  of the listed qudits' levels; what an entry shows beyond them is left out
/// @throws what IState::probabilities raises
RankedProbabilities ranked_probabilities(const IState& state, const std::vector<int>& qudits,
                                         ValuePermutations permutations);

/// The elements of IState::reduced_density_matrix.
struct RankedMatrix {
    struct Shown {
        std::uint64_t row;
        std::uint64_t column;
        std::complex<double> element;
    };

    std::vector<std::complex<double>> all; ///< row by row; or empty
    std::vector<std::uint8_t> reached;     ///< of each of all, whether any pair of entries contributes to it
    std::vector<Shown> some;               ///< instead of all

    [[nodiscard]] bool has(std::size_t place) const { return !all.empty() && reached[place] != 0; }
};

/// @param permutations  the rows and columns; the qudits' dimensions may be others by now, and elements whose
///                      row or column is none of these are left out
/// @throws std::bad_alloc; std::length_error for a list of 2^32 entries or more
RankedMatrix ranked_density_matrix(const IState& state, const std::vector<int>& qudits,
                                   const ValuePermutations& permutations);

} // namespace vantel::qudit
