#include "readout/outcomes.hpp"
#include "algorithms/gathered_bits.hpp"
#include "algorithms/key_index.hpp"
#include "readout/weights.hpp"
#include <algorithm>
#include <cmath>

namespace vantel::qudit {
namespace {
constexpr auto unnoted = [](std::size_t) {};

/// Outcomes that are so few in kind that each has a place from the beginning.
template <class Weight, class Note> std::vector<PackedOutcome> few_outcomes(PackedEntries entries, std::uint64_t listed,
                                                                            const GatheredBits& number_of, Note note) {
    const std::size_t kinds = std::size_t{1} << number_of.bits();
    std::vector<double> sums(kinds, 0.0);
    std::vector<unsigned char> seen(kinds, 0);
    std::vector<PackedOutcome> outcomes;
    outcomes.reserve(std::min(kinds, entries.size()));
    number_of.cheapest([&](auto cheapest_number_of) {
        const auto place_of = [cheapest_number_of, seen = seen.data(), &outcomes](std::uint64_t values) {
            const std::uint64_t number = cheapest_number_of(values);
            if (seen[number] == 0) [[unlikely]] {
                seen[number] = 1;
                outcomes.push_back({values, 0.0});
            }
            return number;
        };
        sum_up<Weight>(
            entries, listed, place_of, [sums = sums.data()](std::size_t place) -> double& { return sums[place]; },
            note);
    });
    for (PackedOutcome& outcome : outcomes) outcome.probability = sums[number_of(outcome.values)];
    return outcomes;
}

template <class Weight> std::vector<PackedOutcome> outcomes_by(PackedEntries entries, std::uint64_t listed) {
    const GatheredBits key_of(listed);
    if (key_of.bits() <= OutcomeNumbers::bits) return few_outcomes<Weight>(entries, listed, key_of, unnoted);
    return with_key_index(key_of.bits(), entries.size(), [&](auto& seen) {
        std::vector<PackedOutcome> outcomes;
        const auto place_of = [&](std::uint64_t values) {
            const std::size_t place = seen.find_or_add(key_of(values));
            if (place == outcomes.size()) outcomes.push_back({values, 0.0});
            return place;
        };
        sum_up<Weight>(
            entries, listed, place_of,
            [&outcomes](std::size_t place) -> double& { return outcomes[place].probability; }, unnoted);
        return outcomes;
    });
}

bool any_is_nan(const std::vector<PackedOutcome>& outcomes) {
    return std::any_of(outcomes.begin(), outcomes.end(),
                       [](const PackedOutcome& outcome) { return std::isnan(outcome.probability); });
}
} // namespace

std::vector<PackedOutcome> outcomes_of(PackedEntries entries, std::uint64_t listed) {
    std::vector<PackedOutcome> outcomes = outcomes_by<PlainSquare>(entries, listed);
    if (any_is_nan(outcomes)) outcomes = outcomes_by<SquaredModulus>(entries, listed);
    return outcomes;
}

NumberedOutcomes numbered_outcomes_of(PackedEntries entries, std::uint64_t listed) {
    const GatheredBits number_of(listed);
    if (number_of.bits() > OutcomeNumbers::bits) return {outcomes_of(entries, listed), {}};
    NumberedOutcomes numbered{{}, OutcomeNumbers(entries.size())};
    numbered.outcomes = few_outcomes<PlainSquare>(entries, listed, number_of, numbered.numbers.noting());
    if (any_is_nan(numbered.outcomes)) numbered.outcomes = outcomes_by<SquaredModulus>(entries, listed);
    return numbered;
}
} // namespace vantel::qudit
