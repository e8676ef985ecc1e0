/// What callers get of `probabilities`.
#pragma once

#include <cstdint>
#include <vector>

#include "readout/value_permutations.hpp"
#include "state/istate.hpp"

namespace vantel::qudit {

/// The sums of IState::probabilities for every combination of levels, whether an entry shows it or not. Where the
/// combinations are many more than the entries, only those are held that some entry shows.
class ProbabilityTable {
public:
    /// No combinations.
    ProbabilityTable() = default;
    /// @param permutations  of the listed qudits' levels; what an entry shows beyond them is left out
    /// @throws what IState::probabilities raises
    ProbabilityTable(const IState& state, const std::vector<int>& qudits, ValuePermutations permutations);

    [[nodiscard]] const ValuePermutations& permutations() const noexcept { return permutations_; }

    /// Calls write(levels, probability) for each combination, in order. Of the levels, the first changes from one
    /// call to the next, and the others mostly stay.
    template <class Write> void for_each(Write write) const {
        std::vector<int> levels(permutations_.dimensions().size(), 0);
        auto shown = some_.begin();
        for (std::uint64_t i = 0; i < permutations_.size(); ++i, permutations_.advance(levels)) {
            double probability = all_.empty() ? 0.0 : all_[i];
            if (shown != some_.end() && shown->rank == i)
                probability = (shown++)->probability;
            write(levels, probability);
        }
    }

private:
    struct Shown {
        std::uint64_t rank;
        double probability;
    };

    ValuePermutations permutations_;
    std::vector<double> all_; ///< by rank, 0 where no entry shows the combination; or empty
    std::vector<Shown> some_; ///< instead of all_, ascending by rank
};

} // namespace vantel::qudit
