#include <algorithm>
#include <cmath>

#include "readout/levels.hpp"
#include "readout/ranked.hpp"
#include "readout/squared_modulus.hpp"
#include "state/builds.hpp"
#include "state/key_index.hpp"
#include "state/packed_view.hpp"
#include "state/product.hpp"
#include "state/state.hpp"
#include "state/subkey.hpp"
#include "state/wide_loop.hpp"

namespace vantel::qudit {

namespace {

/// |a|^2, but NaN where that is infinite beside a part that is NaN.
struct PlainSquare {
    double operator()(const std::complex<double>& amplitude) const noexcept {
        const Parts parts = parts_of(amplitude);
        const Parts squares = parts * parts;
        return squares[0] + squares[1];
    }
};

struct SquaredModulus {
    double operator()(const std::complex<double>& amplitude) const noexcept {
        return squared_modulus(amplitude);
    }
};

/// Whether neighbouring entries mostly differ in the listed fields, as far as the first of them show.
bool is_mixed(std::span<const PackedAmplitude> entries, std::uint64_t listed) {
    constexpr std::size_t some = 64;
    if (entries.size() < some)
        return false;
    std::size_t changes = 0;
    for (std::size_t i = 1; i < some; ++i)
        changes += ((entries[i].values ^ entries[i - 1].values) & listed) != 0 ? 1 : 0;
    return changes > some / 4;
}

/// Sums up the weights of the entries by `place_of(values)`, which hangs on the listed fields alone. Each sum
/// is in stored order.
/// @param enter  enter(place, entry) is the sum of a place up to now
/// @param leave  leave(place, sum, count) takes the new one, which `count` entries have been added to
template <class Weight, class PlaceOf, class Enter, class Leave>
void sum_up(std::span<const PackedAmplitude> entries, std::uint64_t listed, PlaceOf place_of, Enter enter,
            Leave leave) {
    const Weight weight;
    const auto each_alone = [entries, place_of, enter, leave, weight] {
        const auto own_place_of = place_of; // copies that no store to a sum can be thought to change
        const auto own_enter = enter;
        const auto own_leave = leave;
        for (const PackedAmplitude& entry : entries) {
            const auto place = own_place_of(entry.values);
            own_leave(place, own_enter(place, entry) + weight(entry.amplitude), 1);
        }
    };
    // The sum stays in a register until another place is met, which no processor could foresee if places
    // are mixed.
    const auto in_runs = [&] {
        const PackedAmplitude* entry = entries.data();
        const PackedAmplitude* const end = entry + entries.size();
        while (entry != end) {
            const PackedAmplitude* const first = entry;
            const std::uint64_t shown = first->values & listed;
            const auto place = place_of(entry->values);
            double sum = enter(place, *entry);
            do
                sum += weight((entry++)->amplitude);
            while (entry != end && (entry->values & listed) == shown);
            leave(place, sum, static_cast<std::size_t>(entry - first));
        }
    };
    if (is_mixed(entries, listed))
        wide_loop(each_alone);
    else
        wide_loop(in_runs);
}

/// A sum and of how many weights it is. A sum that starts from 0 has the bits of its first weight, since no
/// weight is negative zero.
struct WeightSum {
    double sum = 0.0;
    std::size_t entries = 0;
};

/// Outcomes that are so few in kind that each has a place from the beginning.
template <class Weight>
std::vector<PackedOutcome> few_outcomes_by(std::span<const PackedAmplitude> entries, std::uint64_t listed,
                                           const Subkey& outcome_of) {
    std::vector<WeightSum> sums(std::size_t{1} << outcome_of.bits());
    std::vector<PackedOutcome> outcomes;
    outcomes.reserve(std::min(sums.size(), entries.size()));
    const auto enter = [at = sums.data(), &outcomes](std::uint64_t outcome, const PackedAmplitude& entry) {
        if (at[outcome].entries == 0) [[unlikely]]
            outcomes.push_back({entry.values, 0.0, 0});
        return at[outcome].sum;
    };
    const auto leave = [at = sums.data()](std::uint64_t outcome, double sum, std::size_t count) {
        at[outcome].sum = sum;
        at[outcome].entries += count;
    };
    outcome_of.cheapest(
        [&](const auto& place_of) { sum_up<Weight>(entries, listed, place_of, enter, leave); });
    for (PackedOutcome& outcome : outcomes) {
        const WeightSum& of_all = sums[outcome_of(outcome.values)];
        outcome.probability = of_all.sum;
        outcome.entries = of_all.entries;
    }
    return outcomes;
}

template <class Weight>
std::vector<PackedOutcome> outcomes_by(std::span<const PackedAmplitude> entries, std::uint64_t listed) {
    constexpr unsigned few = 8; // bits
    const Subkey outcome_of(listed);
    if (outcome_of.bits() <= few)
        return few_outcomes_by<Weight>(entries, listed, outcome_of);
    return with_key_index(outcome_of.bits(), entries.size(), [&](auto& seen) {
        std::vector<PackedOutcome> outcomes;
        std::size_t current = 0;
        sum_up<Weight>(
            entries, listed, outcome_of,
            [&](std::uint64_t outcome, const PackedAmplitude& entry) {
                current = seen.find_or_add(outcome);
                if (current == outcomes.size())
                    outcomes.push_back({entry.values, 0.0, 0});
                return outcomes[current].probability;
            },
            [&](std::uint64_t /*outcome*/, double sum, std::size_t count) {
                outcomes[current].probability = sum;
                outcomes[current].entries += count;
            });
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
        entries, listed, [&rank, places](std::uint64_t values) { return std::min(rank(values), places); },
        [&sums](std::uint64_t place, const PackedAmplitude&) { return sums[place]; },
        [&sums](std::uint64_t place, double sum, std::size_t) { sums[place] = sum; });
    sums.pop_back();
    return sums;
}

} // namespace

std::vector<double> ranked_probabilities(std::span<const PackedAmplitude> entries, std::uint64_t listed,
                                         const LevelRank& rank) {
    std::vector<double> sums = sums_by<PlainSquare>(entries, listed, rank);
    if (std::any_of(sums.begin(), sums.end(), [](double sum) { return std::isnan(sum); }))
        sums = sums_by<SquaredModulus>(entries, listed, rank);
    return sums;
}

template <class Label>
std::vector<PackedOutcome> State<Label>::packed_probabilities(const std::vector<int>& qudits) const {
    if (amplitudes.empty())
        return {};
    for (const int qudit : qudits)
        refuse_index(qudit, Label::qudit_count);
    const std::span<const PackedAmplitude> entries = packed_view(amplitudes);
    const std::uint64_t listed = fields_of(Label::layout, qudits);
    std::vector<PackedOutcome> outcomes = outcomes_by<PlainSquare>(entries, listed);
    if (std::any_of(outcomes.begin(), outcomes.end(),
                    [](const PackedOutcome& outcome) { return std::isnan(outcome.probability); }))
        outcomes = outcomes_by<SquaredModulus>(entries, listed);
    return outcomes;
}

template <class Label>
std::vector<QuditsProbability> State<Label>::probabilities(std::vector<int> qudits) const {
    std::vector<QuditsProbability> table;
    for (const PackedOutcome& outcome : packed_probabilities(qudits))
        table.push_back({levels_of(Label::layout, outcome.values, qudits), outcome.probability});
    return table;
}

VANTEL_INSTANTIATE(std::vector<PackedOutcome>, packed_probabilities, (const std::vector<int>&) const)
VANTEL_INSTANTIATE(std::vector<QuditsProbability>, probabilities, (std::vector<int>) const)

} // namespace vantel::qudit
