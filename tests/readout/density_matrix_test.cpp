#include <algorithm>
#include <limits>
#include <random>

#include "readout/ranked.hpp"
#include "reference/literal_state.hpp"
#include "state/subkey.hpp"
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

TEST(DensityMatrix, AddsUpFarApartLabelsAsTheLiteralModelDoes) {
    for (const std::size_t count : std::vector<std::size_t>{3, 64, 65, 400})
        for (const bool finite : {true, false})
            for (const Ints& kept : {Ints{5}, Ints{5, 2}}) {
                const Entries entries = scattered(count, finite);
                const auto state = Factory::make_unique_state({10, 10}, entries);
                const auto expected = reference::LiteralState({10, 10}, entries).reduced_density_matrix(kept);

                const auto actual = state->reduced_density_matrix(kept);
                ASSERT_EQ(actual.size(), expected.size());
                for (std::size_t i = 0; i < actual.size(); ++i) {
                    EXPECT_EQ(actual[i].row_values, expected[i].row_values) << i;
                    EXPECT_EQ(actual[i].column_values, expected[i].column_values) << i;
                    EXPECT_TRUE(same_bits(actual[i].element, expected[i].element)) << i;
                }

                constexpr auto layout = qudit::SlotLayout::of(10);
                const Levels dimensions(kept.size(), 10);
                const qudit::LevelRank rank(layout, kept, dimensions, count);
                const qudit::RankedMatrix ranked = ranked_density_matrix(
                    state->packed_amplitudes(), all_fields(layout, 10) & ~fields_of(layout, kept), rank);
                const auto place_of = [](const Ints& levels) {
                    return levels[0] + (levels.size() == 2 ? 10 * levels[1] : 0);
                };
                for (const auto& element : expected) {
                    const std::size_t place =
                        static_cast<std::size_t>(place_of(element.row_values)) * rank.size() +
                        static_cast<std::size_t>(place_of(element.column_values));
                    EXPECT_TRUE(same_bits(ranked.elements[place], element.element)) << place;
                }
                EXPECT_EQ(std::count(ranked.reached.begin(), ranked.reached.end(), 1),
                          static_cast<std::ptrdiff_t>(expected.size()));
            }
}

} // namespace
} // namespace vantel::testing
