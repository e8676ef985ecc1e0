#include <algorithm>
#include <cmath>

#include "readout/levels.hpp"
#include "readout/noted_outcomes.hpp"
#include "readout/ranked.hpp"
#include "readout/sum_up.hpp"
#include "readout/weights.hpp"
#include "state/builds.hpp"
#include "state/key_index.hpp"
#include "state/level_rank.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"
#include "state/subkey.hpp"

namespace vantel::qudit {

namespace {

constexpr auto unnoted = [](std::size_t) {};

/// Outcomes that are so few in kind that each has a place from the beginning.
template <class Weight, class Note>
std::vector<PackedOutcome> few_outcomes_by(std::span<const PackedAmplitude> entries, std::uint64_t listed,
                                           const Subkey& outcome_of, Note note) {
    const std::size_t kinds = std::size_t{1} << outcome_of.bits();
    std::vector<double> sums(kinds, 0.0);
    std::vector<unsigned char> seen(kinds, 0);
    std::vector<PackedOutcome> outcomes;
    outcomes.reserve(std::min(kinds, entries.size()));
    outcome_of.cheapest([&](const auto& number_of) {
        const auto place_of = [number_of, seen = seen.data(), &outcomes](const PackedAmplitude& entry) {
            const std::uint64_t number = number_of(entry.values);
            if (seen[number] == 0) [[unlikely]] {
                seen[number] = 1;
                outcomes.push_back({entry.values, 0.0});
            }
            return number;
        };
        sum_up<Weight>(
            entries, listed, place_of,
            [sums = sums.data()](std::size_t place) -> double& { return sums[place]; }, note);
    });
    for (PackedOutcome& outcome : outcomes)
        outcome.probability = sums[outcome_of(outcome.values)];
    return outcomes;
}

template <class Weight>
std::vector<PackedOutcome> outcomes_by(std::span<const PackedAmplitude> entries, std::uint64_t listed) {
    const Subkey outcome_of(listed);
    if (outcome_of.bits() <= OutcomeNumbers::bits)
        return few_outcomes_by<Weight>(entries, listed, outcome_of, unnoted);
    return with_key_index(outcome_of.bits(), entries.size(), [&](auto& seen) {
        std::vector<PackedOutcome> outcomes;
        const auto place_of = [&](const PackedAmplitude& entry) {
            const std::size_t place = seen.find_or_add(outcome_of(entry.values));
            if (place == outcomes.size())
                outcomes.push_back({entry.values, 0.0});
            return place;
        };
        sum_up<Weight>(
            entries, listed, place_of,
            [&](std::size_t place) -> double& { return outcomes[place].probability; }, unnoted);
        return outcomes;
    });
}

template <class Weight>
std::vector<double> sums_by(std::span<const PackedAmplitude> entries, std::uint64_t listed,
                            const LevelRank& rank) {
    // Labels with a level beyond its dimension share one more place, which is dropped.
    const std::uint64_t places = rank.size();
    std::vector<double> sums(places + 1, 0.0);
    sum_up<Weight>(
        entries, listed,
        [&rank, places](const PackedAmplitude& entry) { return std::min(rank(entry.values), places); },
        [sums = sums.data()](std::size_t place) -> double& { return sums[place]; }, unnoted);
    sums.pop_back();
    return sums;
}

bool any_is_nan(const std::vector<PackedOutcome>& outcomes) {
    return std::any_of(outcomes.begin(), outcomes.end(),
                       [](const PackedOutcome& outcome) { return std::isnan(outcome.probability); });
}

} // namespace

std::vector<PackedOutcome> outcomes_of(std::span<const PackedAmplitude> entries, std::uint64_t listed) {
    std::vector<PackedOutcome> outcomes = outcomes_by<PlainSquare>(entries, listed);
    if (any_is_nan(outcomes))
        outcomes = outcomes_by<SquaredModulus>(entries, listed);
    return outcomes;
}

NotedOutcomes noted_outcomes_of(std::span<const PackedAmplitude> entries, std::uint64_t listed) {
    const Subkey outcome_of(listed);
    if (outcome_of.bits() > OutcomeNumbers::bits)
        return {outcomes_of(entries, listed), {}};
    NotedOutcomes noted{{}, OutcomeNumbers(entries.size())};
    noted.outcomes = few_outcomes_by<PlainSquare>(entries, listed, outcome_of, noted.numbers.noting());
    if (any_is_nan(noted.outcomes))
        noted.outcomes = outcomes_by<SquaredModulus>(entries, listed);
    return noted;
}

RankedProbabilities ranked_probabilities(const IState& state, const std::vector<int>& qudits,
                                         ValuePermutations permutations) {
    RankedProbabilities table{std::move(permutations), {}, {}};
    const PackedEntries entries = state.packed_amplitudes();
    if (entries.empty())
        return table;
    const SlotLayout layout = SlotLayout::of(state.dimension());
    const std::uint64_t listed = known_fields_of(layout, qudits, static_cast<int>(state.num_qudits()));
    const LevelRank rank(layout, qudits, table.permutations.dimensions(), entries.size());
    if (is_close_to(entries.size(), rank.size())) {
        table.all = sums_by<PlainSquare>(entries, listed, rank);
        if (std::any_of(table.all.begin(), table.all.end(), [](double sum) { return std::isnan(sum); }))
            table.all = sums_by<SquaredModulus>(entries, listed, rank);
        return table;
    }
    const std::vector<PackedOutcome> outcomes = outcomes_of(entries, listed);
    table.some.reserve(outcomes.size());
    for (const PackedOutcome& outcome : outcomes)
        if (const std::uint64_t place = rank(outcome.values); place < rank.size())
            table.some.push_back({place, outcome.probability});
    return table;
}

template <class Label>
std::vector<QuditsProbability> State<Label>::probabilities(std::vector<int> qudits) const {
    std::vector<QuditsProbability> table;
    if (amplitudes.empty())
        return table;
    const std::uint64_t listed = known_fields_of(Label::layout, qudits, Label::qudit_count);
    for (const PackedOutcome& outcome : outcomes_of(packed_view(amplitudes), listed))
        table.push_back({levels_of(Label::layout, outcome.values, qudits), outcome.probability});
    return table;
}

VANTEL_INSTANTIATE(std::vector<QuditsProbability>, probabilities, (std::vector<int>) const)

} // namespace vantel::qudit
