#include "readout/outcomes.hpp"
#include "algorithms/gathered_bits.hpp"
#include "algorithms/key_index.hpp"
#include "readout/weights.hpp"
#include <algorithm>

namespace vantel::qudit {
namespace {
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
        sum_up<Weight>(entries, listed, place_of, sums.data(), note);
    });
    for (PackedOutcome& outcome : outcomes) outcome.probability = sums[number_of(outcome.values)];
    return outcomes;
}

template <class Weight>
std::vector<PackedOutcome> many_outcomes(PackedEntries entries, std::uint64_t listed, const GatheredBits& key_of) {
    const auto sums = std::make_unique_for_overwrite<double[]>(entries.size());
    std::vector<PackedOutcome> outcomes;
    outcomes.reserve(entries.size());
    with_key_index(key_of.bits(), entries.size(), [&](auto& seen) {
        const auto place_of = [&, sums = sums.get()](std::uint64_t values) {
            const std::size_t place = seen.find_or_add(key_of(values));
            if (place == outcomes.size()) {
                outcomes.push_back({values, 0.0});
                sums[place] = 0.0;
            }
            return place;
        };
        sum_up<Weight>(entries, listed, place_of, sums.get());
    });
    for (std::size_t i = 0; i < outcomes.size(); ++i) outcomes[i].probability = sums[i];
    return outcomes;
}

template <class Weight>
std::vector<PackedOutcome> outcomes_by(PackedEntries entries, std::uint64_t listed, OutcomeNumbers* numbers) {
    const GatheredBits number_of(listed);
    if (number_of.bits() > OutcomeNumbers::bits) return many_outcomes<Weight>(entries, listed, number_of);
    if (numbers == nullptr) return few_outcomes<Weight>(entries, listed, number_of, unnoted);
    *numbers = OutcomeNumbers(entries.size());
    return few_outcomes<Weight>(entries, listed, number_of, numbers->noting());
}
} // namespace

std::vector<PackedOutcome> outcomes_of(PackedEntries entries, std::uint64_t listed, OutcomeNumbers* numbers) {
    std::vector<PackedOutcome> outcomes = outcomes_by<PlainSquare>(entries, listed, numbers);
    const auto is_nan = [](const PackedOutcome& outcome) { return std::isnan(outcome.probability); };
    if (std::any_of(outcomes.begin(), outcomes.end(), is_nan))
        outcomes = outcomes_by<SquaredModulus>(entries, listed, nullptr);
    return outcomes;
}
} // namespace vantel::qudit
