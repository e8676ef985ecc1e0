#include <algorithm>
#include <limits>
#include <random>

#include "readout/ranked.hpp"
#include "reference/literal_state.hpp"
#include "tests/support/states.hpp"

namespace vantel::testing {
namespace {

using Ints = std::vector<int>;

/// Labels of ten ten-level qudits so far apart that most are alone in their traced levels. Some agree in
/// them, some stand twice, and some amplitudes have no finite square.
Entries scattered(std::size_t count, bool finite) {
    std::mt19937_64 generator(count);
    const double infinity = std::numeric_limits<double>::infinity();
    Entries entries;
    for (std::size_t i = 0; i < count; ++i) {
        std::vector<qudit::Dit> dits;
        for (int qudit = 0; qudit < 10; ++qudit)
            dits.push_back({generator() % 10, 10});
        if (i > 20 && i % 3 == 0)
            dits = entries[generator() % i].dits;
        if (i % 6 == 0)
            dits[5].value = generator() % 10;
        const auto part = [&generator] { return static_cast<double>(generator() % 1000) / 1000 - 0.5; };
        const double real = part();
        entries.push_back({dits, {real, part()}});
        if (!finite && i % 29 == 0)
            entries.back().amplitude = {i % 2 == 0 ? infinity : -0.0, i % 4 < 2 ? -infinity : 0.0};
    }
    return entries;
}

/// Both forms of the matrix, the sparse one in its order and the one by rank.
void expect_as_literal(const Entries& entries, const Ints& kept) {
    const std::vector<qudit::Dit>& dits = entries.front().dits;
    const std::uint64_t build = std::max_element(dits.begin(), dits.end(), [](auto& a, auto& b) {
                                    return a.dimension < b.dimension;
                                })->dimension;
    const auto state = Factory::make_unique_state({build, dits.size()}, entries);
    const auto expected = reference::LiteralState({build, dits.size()}, entries).reduced_density_matrix(kept);

    const auto actual = state->reduced_density_matrix(kept);
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        EXPECT_EQ(actual[i].row_values, expected[i].row_values) << i;
        EXPECT_EQ(actual[i].column_values, expected[i].column_values) << i;
        EXPECT_TRUE(same_bits(actual[i].element, expected[i].element)) << i;
    }

    Levels dimensions;
    for (const int qudit : kept)
        dimensions.push_back(dits[static_cast<std::size_t>(qudit)].dimension);
    const qudit::ValuePermutations permutations(dimensions);
    const qudit::RankedMatrix ranked = ranked_density_matrix(*state, kept, permutations);
    if (ranked.all.empty()) {
        EXPECT_EQ(ranked.some.size(), expected.size());
        return;
    }
    const auto place_of = [&](const Ints& levels) {
        return static_cast<std::size_t>(levels[0]) +
               (levels.size() == 2 ? dimensions[0] * static_cast<std::size_t>(levels[1]) : 0);
    };
    for (const auto& element : expected) {
        const std::size_t place =
            place_of(element.row_values) * permutations.size() + place_of(element.column_values);
        EXPECT_TRUE(same_bits(ranked.all[place], element.element)) << place;
    }
    EXPECT_EQ(std::count(ranked.reached.begin(), ranked.reached.end(), 1),
              static_cast<std::ptrdiff_t>(expected.size()));
}

TEST(DensityMatrix, AddsUpFarApartLabelsAsTheLiteralModelDoes) {
    for (const std::size_t count : std::vector<std::size_t>{3, 64, 65, 400})
        for (const bool finite : {true, false})
            for (const Ints& kept : {Ints{5}, Ints{5, 2}})
                expect_as_literal(scattered(count, finite), kept);
}

TEST(DensityMatrix, AddsUpAllCombinationsAsTheLiteralModelDoes) {
    std::vector<Term> terms;
    for (std::uint64_t i = 0; i < 60; ++i) {
        const std::uint64_t rank = 7 * i % 60;
        terms.push_back({{rank % 3, rank / 3 % 4, rank / 12},
                         {std::sin(static_cast<double>(i + 1)), i % 5 == 0 ? -0.0 : 0.1}});
    }
    for (const bool finite : {true, false}) {
        if (!finite)
            terms[11].amplitude = {std::numeric_limits<double>::infinity(), std::nan("")};
        for (const Ints& kept : {Ints{0}, Ints{1}, Ints{2}, Ints{2, 0}, Ints{0, 1}, Ints{1, 1}})
            expect_as_literal(entries_of({3, 4, 5}, terms), kept);
    }
}

} // namespace
} // namespace vantel::testing
