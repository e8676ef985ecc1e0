#include <chrono>
#include <limits>

#include "tests/support/states.hpp"

namespace vantel::testing {
namespace {

using namespace qudit;

TEST(Factory, WalksToEachOfTheNinetyBuilds) {
    for (std::uint64_t dim = 2; dim <= 10; ++dim)
        for (std::uint64_t qudits = 1; qudits <= 10; ++qudits) {
            const Levels top(qudits, dim - 1);
            const auto state = state_of(Levels(qudits, dim), {{top, 1.0}});
            EXPECT_EQ(state->dimension(), dim);
            EXPECT_EQ(state->num_qudits(), qudits);
            EXPECT_TRUE(
                same_entries(state->basis_amplitudes(), entries_of(Levels(qudits, dim), {{top, 1.0}})));
        }
}

TEST(Factory, RefusesSizeFirstThenDimensionThenCount) {
    const auto made = [](std::uint64_t dim, std::uint64_t qudits, std::size_t entries) {
        return thrown_by([=] {
            Factory::make_unique_state({dim, qudits}, Entries(entries, Entry{{}, 1.0}));
        });
    };
    const auto low = failure<BadDimension>("dim must be >= 2");
    const auto high = failure<BadDimension>("dim must be <= MAX_QUDIT_DIMENSION: 10");
    EXPECT_EQ(made(0, 0, 100001), failure<StateSizeExceeded>("State size exceeded maximum allowed size"));
    EXPECT_EQ(made(1, 0, 100000), low);
    EXPECT_EQ(made(11, 11, 1), high);
    EXPECT_EQ(made(std::numeric_limits<std::uint64_t>::max(), 1, 1), high);
    EXPECT_EQ(made(2, 0, 1), failure<std::invalid_argument>("num_qudits must be >= 1"));
    EXPECT_EQ(made(10, 11, 1), failure<BadQuditNumber>("num_qudits must be <= MAX_QUDIT_NUM: 10"));
}

TEST(Factory, BuildsTheLargestStateAtOnce) {
    Entries entries;
    for (std::uint64_t i = 100000; i-- > 0;) {
        Entry& entry = entries.emplace_back(Entry{{}, {1.0, static_cast<double>(i)}});
        for (unsigned qudit = 0; qudit < 10; ++qudit)
            entry.dits.push_back({i >> 2 * qudit & 3, 4});
    }
    const auto start = std::chrono::steady_clock::now();
    const auto state = Factory::make_unique_state({4, 10}, entries);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    EXPECT_TRUE(same_entries(state->basis_amplitudes(), entries)); // in descending order still
}

TEST(Limit, IsOfAHundredThousandEntriesWhereverAListCanGrow) {
    const auto refused = failure<StateSizeExceeded>("State size exceeded maximum allowed size");
    const auto spread = [](std::uint64_t dimension, int over, std::size_t qudits) {
        auto state = state_of(Levels(qudits, dimension), {{Levels(qudits, 0), 1.0}});
        for (int i = 0; i < over; ++i)
            state->hadamard({i}, {});
        return state;
    };
    const auto thousand = spread(10, 3, 3);
    const auto full = tensor_product<10, 10>(*thousand, *spread(10, 2, 2));
    EXPECT_EQ(full->packed_amplitudes().size(), 100000U);
    EXPECT_EQ(thrown_by([&] { full->cycle({0}, {}); }), thrown_by([] {}));
    // Both too large and of too many qudits.
    EXPECT_EQ(thrown_by([&] { tensor_product<10, 10>(*thousand, *spread(2, 7, 8)); }), refused);
    EXPECT_EQ(thrown_by([&] { spread(10, 0, 6)->hadamard({0, 1, 2, 3, 4, 5}, {}); }), refused);
}

TEST(Construction, LetsTheFirstOfALabelWinAndDropsExactZerosAfterwards) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto state = state_of({3, 2}, {{{2, 1}, 0.25},
                                         {{1, 0}, 0.0},
                                         {{2, 1}, 0.5},
                                         {{1, 0}, 0.75}, // shadowed by the zero before it
                                         {{0, 1}, {-0.0, 0.0}},
                                         {{2, 0}, {nan, 0.0}},
                                         {{0, 0}, 1e-300}});
    EXPECT_TRUE(same_entries(state->basis_amplitudes(),
                             entries_of({3, 2}, {{{2, 1}, 0.25}, {{2, 0}, {nan, 0.0}}, {{0, 0}, 1e-300}})));
}

TEST(Construction, TellsLabelsApartByTheirLevelsAlone) {
    const auto state =
        Factory::make_unique_state({5, 2}, Entries{{{{1, 2}, {0, 5}}, 0.5}, {{{1, 3}, {0, 4}}, 0.25}});
    EXPECT_EQ(state->basis_amplitudes().size(), 1U);
    const auto shorter = Factory::make_unique_state({5, 3}, Entries{{{{1, 2}}, 0.5}});
    EXPECT_EQ(shorter->basis_amplitudes()[0].dits, (std::vector<Dit>{{1, 2}, {0, 1}, {0, 1}}));
}

} // namespace
} // namespace vantel::testing
