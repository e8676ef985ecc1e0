#include "readout/probabilities.hpp"
#include "algorithms/crossovers.hpp"
#include "readout/outcomes.hpp"
#include "readout/weights.hpp"
#include "state/builds.hpp"
#include "state/level_rank.hpp"
#include "state/state.hpp"
#include <algorithm>
#include <cmath>
#include <utility>

namespace vantel::qudit {
namespace {
template <class Weight>
std::vector<double> sums_by_rank(PackedEntries entries, std::uint64_t listed, const LevelRank& rank) {
    // Labels with a level beyond its dimension share one more place, which is dropped.
    std::vector<double> sums(rank.size() + 1, 0.0);
    rank.cheapest([&](auto rank_of) {
        sum_up<Weight>(
            entries, listed,
            [rank_of, beyond = rank.size()](std::uint64_t values) { return std::min(rank_of(values), beyond); },
            [sums = sums.data()](std::size_t place) -> double& { return sums[place]; }, [](std::size_t) {});
    });
    sums.pop_back();
    return sums;
}
} // namespace

ProbabilityTable::ProbabilityTable(const IState& state, const std::vector<int>& qudits, ValuePermutations permutations)
    : permutations_(std::move(permutations)) {
    const PackedEntries entries = state.packed_amplitudes();
    if (entries.empty()) return;
    const SlotLayout layout = SlotLayout::of(state.dimension());
    const std::uint64_t listed = known_fields(layout, qudits, static_cast<int>(state.num_qudits()));
    const LevelRank rank(layout, qudits, permutations_.dimensions(), entries.size());
    if (crossover::is_close_to(entries.size(), rank.size())) {
        all_ = sums_by_rank<PlainSquare>(entries, listed, rank);
        if (std::any_of(all_.begin(), all_.end(), [](double sum) { return std::isnan(sum); }))
            all_ = sums_by_rank<SquaredModulus>(entries, listed, rank);
        return;
    }
    const std::vector<PackedOutcome> outcomes = outcomes_of(entries, listed);
    some_.reserve(outcomes.size());
    for (const PackedOutcome& outcome : outcomes)
        if (const std::uint64_t place = rank(outcome.values); place < rank.size())
            some_.push_back({place, outcome.probability});
    std::sort(some_.begin(), some_.end(), [](const Shown& a, const Shown& b) { return a.rank < b.rank; });
}

template <class Label> std::vector<QuditsProbability> State<Label>::probabilities(std::vector<int> qudits) const {
    std::vector<QuditsProbability> table;
    if (amplitudes.empty()) return table;
    const std::uint64_t listed = known_fields(Label::layout, qudits, Label::qudit_count);
    for (const PackedOutcome& outcome : outcomes_of(packed_view(amplitudes), listed))
        table.push_back({levels_of(Label::layout, outcome.values, qudits), outcome.probability});
    return table;
}

VANTEL_INSTANTIATE(std::vector<QuditsProbability>, probabilities, (std::vector<int>) const)
} // namespace vantel::qudit
