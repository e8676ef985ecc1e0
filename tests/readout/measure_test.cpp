#include "algorithms/first_words.hpp"
#include "readout/density_matrix.hpp"
#include "tests/support/random_source.hpp"
#include "tests/support/states.hpp"
#include <random>

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
    EXPECT_THROW(state->measure({0, 1}), std::out_of_range);
    EXPECT_EQ(state_of({2, 3}, {})->measure({1, 0}), (Ints{0, 0})); // there is nothing to draw
    EXPECT_EQ(source.opened(), 0);
    EXPECT_TRUE(same_entries(state->basis_amplitudes(), before));
}

/// Four float weights: the drawn number is the second running sum itself, though not that of the undivided
/// weights, which is greater.
std::vector<float> tie_at(double number) {
    for (float first = 0.1F; first < 0.2F; first = std::nextafter(first, 1.0F)) {
        const float second = 1.5F * first;
        const double both = static_cast<double>(first) + static_cast<double>(second);
        const double rest = both / number - both;
        const float third = std::nextafter(static_cast<float>(rest), 0.0F);
        const float fourth = static_cast<float>(rest - static_cast<double>(third));
        const double sum = both + static_cast<double>(third) + static_cast<double>(fourth);
        if (fourth > 0.0F && static_cast<double>(first) / sum + static_cast<double>(second) / sum == number &&
            both / sum > number)
            return {first, second, third, fourth};
    }
    return {};
}

TEST(Measure, TakesTheFirstRunningSumStrictlyAboveTheNumber) {
    const std::uint32_t word = 20;
    std::mt19937 generator(word);
    const auto low = static_cast<double>(generator());
    const double number = (static_cast<double>(generator()) * 0x1p32 + low) * 0x1p-64;
    const std::vector<float> weights = tie_at(number);
    ASSERT_EQ(weights.size(), 4U) << number;
    std::vector<Term> terms;
    for (std::uint64_t i = 0; i < 4; ++i) // the excess is lost in single precision
        terms.push_back({{i}, std::sqrt(static_cast<double>(weights[i]) * (i == 1 ? 1.0 + 1e-9 : 1.0))});
    const RandomSource source(word);
    EXPECT_EQ(state_of({4}, terms)->measure({0}), Ints{2});
    terms[1].amplitude = std::sqrt(static_cast<double>(std::nextafter(weights[1], 1.0F)));
    EXPECT_EQ(state_of({4}, terms)->measure({0}), Ints{1});
}

// A sum begins with its first product and not with a zero that is added to it.
TEST(DensityMatrix, KeepsTheSignOfAProductThatIsANegativeZero) {
    for (const std::uint64_t dimension : {2U, 3U}) { // a complete list, and one that is not
        const auto state = state_of({dimension}, {{{0}, {-0.5, 0.0}}, {{1}, {0.0, -1.0}}});
        std::vector<Complex> elements(dimension * dimension);
        qudit::DensityMatrix(*state, {0}, qudit::ValuePermutations({dimension}))
            .for_each(elements.size(), [&](std::size_t place, const Complex& element) { elements[place] = element; });
        EXPECT_TRUE(same_bits(elements[1], {-0.0, -0.5})) << dimension;
    }
}

TEST(FirstWords, AreThoseOfTheEngine) {
    std::mt19937 seeds(1);
    for (const std::uint32_t seed : {0U, 1U, ~0U, static_cast<std::uint32_t>(seeds())}) {
        std::mt19937 engine(seed);
        for (const std::uint32_t word : first_words<200>(seed)) ASSERT_EQ(word, engine()) << seed;
    }
}
} // namespace
} // namespace vantel::testing
