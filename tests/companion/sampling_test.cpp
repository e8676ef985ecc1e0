// Shots: what one generator gives by hand, and how often many give what.
#include <gtest/gtest.h>

#include <sstream>
#include <vantel_sampling.hpp>

namespace {

/// Counts in steps, from `Min` to what `Max` allows and again.
template <std::uint64_t Min, std::uint64_t Max, std::uint64_t Step> struct Counter {
    static constexpr std::uint64_t min() { return Min; }
    static constexpr std::uint64_t max() { return Max; }
    std::uint64_t operator()() { return std::exchange(next, next + Step > Max ? Min : next + Step); }
    std::uint64_t next = Min;
};

TEST(Sampling, DrawsWhatTheGeneratorSaysByHand) {
    // Pairs of bits 0, 1, 2, 3, and a 4 that is dropped.
    EXPECT_EQ(vantel::uniform_number(Counter<1, 5, 1>()), (0x1B1B1B1B1B1B1B1B >> 11) * 0x1p-53);
    vantel::Qudit a(3);
    vantel::cycle(a, 0.5); // 4/9, 4/9, 1/9: column 2 keeps 1/3, its alias 1 then 2/3, whose alias is 0
    const std::vector<std::vector<int>> shots{{0}, {1}, {1}, {0}, {0}, {2}, {0}, {0}};
    EXPECT_EQ(vantel::sample(a, 8, Counter<0, ~0ULL, 3ULL << 60>()),
              shots); // u, v, u ... are 0, 3/16, 6/16 ... 2/16
}

TEST(Sampling, FindsTheSharesOfAnEntangledPairAndLeavesIt) {
    vantel::Qudit a(3), b(2);
    vantel::cycle(a, 0.5);
    vantel::cycle(b, a == 1);
    constexpr std::size_t shots = 100000;
    const auto found = vantel::counts({b, a}, shots, std::mt19937(1));
    EXPECT_EQ(found.size(), 3U);                        // and none of the impossible three
    for (const auto& row : vantel::probabilities(b, a)) // Hoeffding: 2 exp(-2 shots t^2), six times, is 1e-9
        EXPECT_NEAR(static_cast<double>(found(row.qudit_values[0], row.qudit_values[1])) / shots,
                    row.probability, std::sqrt(std::log(12e9) / 2 / shots));
}

} // namespace
