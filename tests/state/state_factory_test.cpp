#include "state/state.hpp"
#include "tests/support/states.hpp"
#include <chrono>
#include <limits>
#include <random>

namespace vantel::testing {
namespace {
using namespace qudit;

const auto exceeded = failure<StateSizeExceeded>("State size exceeded maximum allowed size");

TEST(Factory, RefusesSizeFirstThenDimensionThenCount) {
    const auto made = [](std::uint64_t dim, std::uint64_t qudits, std::size_t entries) {
        return thrown_by([=] { Factory::make_unique_state({dim, qudits}, Entries(entries, Entry{{}, 1.0})); });
    };
    const auto low = failure<BadDimension>("dim must be >= 2");
    const auto high = failure<BadDimension>("dim must be <= MAX_QUDIT_DIMENSION: 10");
    EXPECT_EQ(made(0, 0, 100001), exceeded);
    EXPECT_EQ(made(1, 0, 100000), low);
    EXPECT_EQ(made(1, 11, 1), low);
    EXPECT_EQ(made(11, 11, 1), high);
    EXPECT_EQ(made(std::numeric_limits<std::uint64_t>::max(), 0, 1), high);
    EXPECT_EQ(made(2, 0, 1), failure<std::invalid_argument>("num_qudits must be >= 1"));
    EXPECT_EQ(made(10, 11, 1), failure<BadQuditNumber>("num_qudits must be <= MAX_QUDIT_NUM: 10"));
}

TEST(Limit, IsOfAHundredThousandEntriesWhereverAListCanGrow) {
    const auto spread = [](std::uint64_t dimension, int over, std::size_t qudits) {
        auto state = state_of(Levels(qudits, dimension), {{Levels(qudits, 0), 1.0}});
        for (int i = 0; i < over; ++i) state->hadamard({i}, {});
        return state;
    };
    const auto thousand = spread(10, 3, 3);
    const auto full = tensor_product<10, 10>(*thousand, *spread(10, 2, 2));
    EXPECT_EQ(full->packed_amplitudes().size(), 100000U);
    EXPECT_EQ(thrown_by([&] { full->cycle({0}, {}); }), thrown_by([] {}));
    // Both too large and of too many qudits.
    EXPECT_EQ(thrown_by([&] { tensor_product<10, 10>(*thousand, *spread(2, 7, 8)); }), exceeded);
    EXPECT_EQ(thrown_by([&] { spread(10, 0, 6)->hadamard({0, 1, 2, 3, 4, 5}, {}); }), exceeded);
    // Repeats are looked for in all entries at once.
    const auto start = std::chrono::steady_clock::now();
    const auto again = Factory::make_unique_state({10, 5}, full->basis_amplitudes());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    EXPECT_TRUE(same_entries(again->basis_amplitudes(), full->basis_amplitudes()));
}

TEST(Construction, TellsLabelsApartByTheirLevelsAloneAndDropsExactZerosAfterwards) {
    const auto state = Factory::make_unique_state(
        {5, 3}, Entries{{{{1, 2}}, 0.5}, {{{2, 3}}, {-0.0, 0.0}}, {{{1, 3}, {0, 4}}, 0.25}, {{{2, 3}}, 0.75}});
    ASSERT_EQ(state->basis_amplitudes().size(), 1U);
    EXPECT_EQ(state->basis_amplitudes()[0].dits, (std::vector<Dit>{{1, 2}, {0, 1}, {0, 1}}));
}

// The holes of dropped entries are filled from the tail; a stable removal would be a fault.
TEST(State, HasTheDimensionsOfItsFirstEntry) {
    const auto state = Factory::make_unique_state({4, 2}, Entries{{{{0, 2}, {1, 4}}, 0.6}, {{{1, 3}, {2, 3}}, 0.8}});
    EXPECT_EQ(state->qudit_dimension(0), 2U);
    EXPECT_EQ(state->qudit_dimension(1), 4U);
}

TEST(Reduction, LeavesTheToldEntriesInTheToldOrder) {
    constexpr double t = 0x1p-23, nan = std::numeric_limits<double>::quiet_NaN();
    const double above = std::nextafter(t, 1.0);
    using List = std::vector<Term>;
    const std::pair<List, List> lists[] = {
        {{{{1}, 1.}, {{2}, t}, {{3}, 3.}, {{4}, 0.}, {{5}, 5.}}, {{{1}, 1.}, {{5}, 5.}, {{3}, 3.}}},
        {{{{4}, 1.}, {{2}, .5}, {{4}, .25}, {{4}, .125}}, {{{2}, .5}, {{4}, 1.375}}},
        {{{{4}, .5}, {{4}, -.5}}, {}},
        {{{{1}, {t, 0.}}, {{2}, {1e-7, 1e-7}}, {{3}, {0., -t}}, {{4}, {above, 0.}}, {{5}, {0., -above}}},
         {{{5}, {0., -above}}, {{4}, {above, 0.}}}},
        {{{{1}, {nan, 1.}}, {{2}, {nan, nan}}}, {{{1}, {nan, 1.}}}}};
    for (const auto& [before, after] : lists) {
        std::vector<BasisAmplitude<DitArray<10, 1>>> list;
        for (const Entry& entry : entries_of({10}, before))
            list.push_back(make_basis_amplitude<10, 1>(entry.dits, entry.amplitude));
        State<DitArray<10, 1>>::reduce(list);
        Entries left;
        for (const auto& [label, amplitude] : list) left.push_back({label.dits(), amplitude});
        EXPECT_TRUE(same_entries(left, entries_of({10}, after)));
    }
}
} // namespace
} // namespace vantel::testing
