/// What callers get of `probabilities`.
#pragma once

#include "readout/value_permutations.hpp"
#include "state/istate.hpp"

namespace vantel::qudit {
/// The sums of IState::probabilities for every combination of levels, whether an entry shows it or not. Where the
/// combinations are many more than the entries, only those are held that some entry shows.
class ProbabilityTable {
public:
    ProbabilityTable() = default;
    /// @param permutations  of the listed qudits' levels; what an entry shows beyond them is left out
    /// @throws what IState::probabilities raises
    ProbabilityTable(const IState& state, const std::vector<int>& qudits, ValuePermutations permutations);

    [[nodiscard]] const ValuePermutations& permutations() const noexcept { return permutations_; }

    /// Calls write(first, levels, probability) for each combination, in order. The level of the first qudit, which
    /// changes each time, comes apart, and levels[0] means nothing.
    template <class Write> void for_each(Write write) const {
        std::vector<int> levels(permutations_.dimensions().size(), 0);
        auto shown = some_.begin();
        for (std::uint64_t i = 0; i < permutations_.size(); permutations_.advance_others(levels))
            for (int first = 0; first < static_cast<int>(permutations_.dimensions()[0]); ++first, ++i) {
                double probability = all_.empty() ? 0.0 : all_[i];
                if (shown != some_.end() && shown->rank == i) probability = (shown++)->probability;
                write(first, std::span<const int>(levels), probability);
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
