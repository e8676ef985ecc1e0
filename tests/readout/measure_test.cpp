#include <random>
#include <system_error>

#include "tests/support/random_source.hpp"
#include "tests/support/states.hpp"

namespace vantel::testing {
namespace {

using Ints = std::vector<int>;

TEST(Measure, OpensTheDeviceOnceAndTakesOneWord) {
    const auto state = state_of({2, 3}, {{{0, 0}, 0.6}, {{1, 2}, 0.8}});
    const RandomSource source(7);
    const Ints levels = state->measure({1, 0, 1});
    EXPECT_TRUE(levels == (Ints{0, 0, 0}) || levels == (Ints{2, 1, 2}));
    EXPECT_EQ(source.opened(), 1);
    EXPECT_EQ(source.left_open(), 0);
    EXPECT_EQ(source.words_taken(), 1);
}

TEST(Measure, LeavesTheStateWhenItFails) {
    const auto state = state_of({2}, {{{0}, 0.6}, {{1}, 0.8}});
    const Entries before = state->basis_amplitudes();
    for (const auto fault : {RandomSource::Fault::cannot_open, RandomSource::Fault::cannot_read}) {
        const RandomSource source(0, fault);
        EXPECT_THROW(state->measure({0}), std::runtime_error);
        EXPECT_TRUE(same_entries(state->basis_amplitudes(), before));
        EXPECT_EQ(source.left_open(), 0);
    }
    const RandomSource source(0);
    EXPECT_EQ(thrown_by([&] {
                  state->measure({0, 1});
              }),
              failure<std::out_of_range>("qudit index out of range"));
    EXPECT_EQ(source.opened(), 0);
    EXPECT_TRUE(same_entries(state->basis_amplitudes(), before));
}

/// Three float weights whose first running sum is the drawn number itself.
std::vector<float> tie_at(double number) {
    for (float first = 0.3F; first < 0.4F; first = std::nextafter(first, 1.0F)) {
        const double rest = static_cast<double>(first) / number - static_cast<double>(first);
        const float second = std::nextafter(static_cast<float>(rest), 0.0F);
        const float third = static_cast<float>(rest - static_cast<double>(second));
        const double sum =
            static_cast<double>(first) + static_cast<double>(second) + static_cast<double>(third);
        if (third > 0.0F && static_cast<double>(first) / sum == number)
            return {first, second, third};
    }
    return {};
}

TEST(Measure, TakesTheFirstRunningSumStrictlyAboveTheNumber) {
    const std::uint32_t word = 20;
    std::mt19937 generator(word);
    const auto low = static_cast<double>(generator());
    const double number = (static_cast<double>(generator()) * 0x1p32 + low) * 0x1p-64;
    const std::vector<float> weights = tie_at(number);
    ASSERT_EQ(weights.size(), 3U) << number;
    std::vector<Term> terms;
    for (std::uint64_t i = 0; i < 3; ++i)
        terms.push_back({{i}, std::sqrt(static_cast<double>(weights[i]))});
    const RandomSource source(word);
    EXPECT_EQ(state_of({3}, terms)->measure({0}), Ints{1});
    terms[0].amplitude = std::sqrt(static_cast<double>(std::nextafter(weights[0], 1.0F)));
    EXPECT_EQ(state_of({3}, terms)->measure({0}), Ints{0});
}

TEST(Measure, YieldsLevelZeroFromAnEmptyState) {
    const RandomSource source(0);
    EXPECT_EQ(state_of({2, 3}, {})->measure({1, 0}), (Ints{0, 0}));
    EXPECT_EQ(source.opened(), 0);
}

} // namespace
} // namespace vantel::testing
