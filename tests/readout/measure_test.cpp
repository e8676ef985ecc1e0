#include <limits>
#include <random>
#include <system_error>

#include "readout/first_words.hpp"
#include "reference/literal_readout.hpp"
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

/// Levels of the first of four ten-level qudits, by number of the entry; the other levels number the entries.
struct Order {
    const char* name;
    std::uint64_t (*level)(std::size_t i, std::mt19937& generator);
};
constexpr Order orders[] = {
    {"at random", [](std::size_t, std::mt19937& generator) { return std::uint64_t{generator() % 10}; }},
    {"seldom another",
     [](std::size_t, std::mt19937& generator) { return std::uint64_t{generator() % 40 / 38}; }},
    {"nine and one",
     [](std::size_t i, std::mt19937&) { return std::uint64_t{i % 10 == 9 ? 0 : 1 + i / 200}; }},
    {"runs", [](std::size_t i, std::mt19937&) { return std::uint64_t{i / 37 % 3}; }},
};

using Part = double (*)(std::mt19937&);
constexpr Part parts[] = {
    [](std::mt19937& generator) { return static_cast<double>(generator()) * 0x1p-37; },
    [](std::mt19937& generator) { return generator() % 2 == 0 ? -0.03125 : 0.0625; },
    [](std::mt19937& generator) {
        constexpr double odd[] = {0.0, -0.0, 0x1p-23, 0x1p-600, 0x1p600, 0x1p64};
        return odd[generator() % 6];
    },
    [](std::mt19937& generator) {
        constexpr double odd[] = {std::numeric_limits<double>::infinity(),
                                  std::numeric_limits<double>::quiet_NaN()};
        const std::size_t one_of = generator() % 9;
        return one_of < 2 ? odd[one_of] : 0.01;
    },
};

TEST(Measure, ReadsAndLeavesWhatTheModelDoes) {
    std::mt19937 generator(1);
    for (const std::size_t entries : {1U, 3U, 63U, 64U, 65U, 127U, 200U, 1000U})
        for (const Order& order : orders)
            for (const Part part : parts) {
                std::vector<Term> terms;
                for (std::uint64_t i = 0; i < entries; ++i) {
                    const Levels levels{order.level(i, generator), i % 10, i / 10 % 10, i / 100};
                    const double real = part(generator);
                    terms.push_back({levels, {real, part(generator)}});
                }
                const Entries before = entries_of({10, 10, 10, 10}, terms);
                for (const Ints& listed : {Ints{0}, Ints{3, 0}, Ints{0, 3, 0, 1}}) {
                    const auto state = Factory::make_unique_state({10, 4}, before);
                    reference::LiteralReadout model({10, 4}, before);
                    const auto word = static_cast<std::uint32_t>(generator());
                    const RandomSource source(word);
                    EXPECT_EQ(state->measure(listed), model.measure(listed, word));
                    EXPECT_TRUE(same_entries(state->basis_amplitudes(), model.basis_amplitudes()))
                        << entries << ' ' << order.name << ' ' << listed.size();
                }
            }
}

TEST(FirstWords, AreThoseOfTheEngine) {
    std::mt19937 seeds(1);
    for (const std::uint32_t seed : {0U, 1U, ~0U, static_cast<std::uint32_t>(seeds())}) {
        std::mt19937 engine(seed);
        for (const std::uint32_t word : qudit::first_words<200>(seed))
            ASSERT_EQ(word, engine()) << seed;
    }
}

TEST(Measure, YieldsLevelZeroFromAnEmptyState) {
    const RandomSource source(0);
    EXPECT_EQ(state_of({2, 3}, {})->measure({1, 0}), (Ints{0, 0}));
    EXPECT_EQ(source.opened(), 0);
}

} // namespace
} // namespace vantel::testing
