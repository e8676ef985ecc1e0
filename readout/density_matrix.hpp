/// What callers get of `reduced_density_matrix`.
#pragma once

#include "readout/value_permutations.hpp"
#include "state/istate.hpp"

namespace vantel::qudit {
/// The elements of IState::reduced_density_matrix by row and column, each a combination of levels.
class DensityMatrix {
public:
    DensityMatrix() = default;
    /// @param permutations  the rows and columns; the qudits' dimensions may be others by now, and elements whose row
    ///                      or column is none of these are left out
    /// @throws std::bad_alloc; std::length_error for a list of 2^32 entries or more
    DensityMatrix(const IState& state, const std::vector<int>& qudits, const ValuePermutations& permutations);

    /// Calls write(place, element) for the places below `count` of the matrix row by row, and once more for some of
    /// them, which then hold what was written last. What no pair of entries reaches is 0.
    template <class Write> void for_each(std::size_t count, Write write) const {
        for (std::size_t place = 0; place < count; ++place)
            write(place, place < all_.size() ? all_[place] : std::complex<double>());
        // A count that wrapped can be less than the matrix.
        for (const Reached& reached : some_)
            if (reached.column < count && reached.row <= (count - 1 - reached.column) / side_)
                write(reached.row * side_ + reached.column, reached.element);
    }

    /// An element by row and column, be it their ranks or labels that show their levels.
    struct Reached {
        std::uint64_t row;
        std::uint64_t column;
        std::complex<double> element;
    };

private:
    /// The elements row by row, by way of a table of all labels; none where no such table can be made, or the qudits
    /// have other dimensions by now.
    /// @param entries  at least one
    static std::vector<std::complex<double>> by_rank(PackedEntries entries, SlotLayout layout,
                                                     const std::vector<int>& qudits,
                                                     const ValuePermutations& permutations);

    std::uint64_t side_ = 0;
    std::vector<std::complex<double>> all_; ///< row by row; or empty
    std::vector<Reached> some_;             ///< instead of all_
};
} // namespace vantel::qudit
