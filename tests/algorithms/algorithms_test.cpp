#include "algorithms/complex_product.hpp"
#include "algorithms/gathered_bits.hpp"
#include "algorithms/key_index.hpp"
#include "algorithms/radix_sort.hpp"
#include "algorithms/scratch.hpp"
#include "algorithms/two_ended_partition.hpp"
#include "state/reduction.hpp"
#include <algorithm>
#include <bit>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace vantel::testing {
namespace {
TEST(KeyIndex, NumbersKeysAsTheyAreFirstSeenHoweverManyCome) {
    HashedKeyIndex index(1);
    for (int again = 0; again < 2; ++again) {
        std::mt19937_64 keys(1);
        for (std::size_t i = 0; i < 5000; ++i) ASSERT_EQ(index.find_or_add(keys()), i);
    }
}

TEST(GatheredBits, AreThoseOfTheMaskInTheirOrder) {
    std::mt19937_64 words(1);
    for (int i = 0; i < 1000; ++i) {
        const std::uint64_t mask = words() & words();
        const GatheredBits gather(mask);
        const std::uint64_t word = words();
        std::uint64_t key = 0;
        unsigned bits = 0;
        for (unsigned bit = 0; bit < 64; ++bit)
            if ((mask >> bit & 1) != 0) key |= (word >> bit & 1) << bits++;
        ASSERT_EQ(gather.bits(), bits);
        ASSERT_EQ(gather(word), key);
        ASSERT_EQ(gather.cheapest([&](auto cheapest) { return cheapest(word); }), key);
    }
}

TEST(RadixSort, IsStableAboveTheLowBits) {
    std::mt19937_64 words(1);
    for (const unsigned low_bit : {0U, 12U, 40U})
        for (const std::size_t size : {std::size_t{3000}, crossover::items_inserted}) {
            std::vector<std::uint64_t> items(size);
            for (std::uint64_t& item : items) item = words() & 0xFFFFFFF0FFFU; // with digits in which none differ
            std::vector<std::uint64_t> sorted = items;
            std::vector<std::uint64_t> scratch(items.size());
            std::stable_sort(sorted.begin(), sorted.end(),
                             [=](std::uint64_t a, std::uint64_t b) { return a >> low_bit < b >> low_bit; });
            radix_sort(items, scratch, low_bit);
            EXPECT_EQ(items, sorted) << low_bit;
        }
}

TEST(TwoEndedPartition, FillsEachHoleWithTheKeptItemNearestTheTail) {
    std::mt19937_64 random(1);
    for (std::size_t size = 0; size < 300; ++size) {
        std::vector<int> list(size);
        for (int& item : list) item = static_cast<int>(random() % 1000);
        std::vector<int> literal = list;
        const int share = static_cast<int>(size % 5) * 250;
        const auto keep = [=](int item) { return item < share; };
        std::size_t end = literal.size();
        for (std::size_t i = 0; i < end; ++i) {
            while (i < end && !keep(literal[i])) literal[i] = literal[--end];
        }
        const std::span<int> span(list);
        ASSERT_EQ(partition_two_ended(span, judged_by(span, keep)), end);
        ASSERT_TRUE(std::equal(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(end), literal.begin())) << size;
    }
}

TEST(Scratch, TakesFromTheSpareStretchAndThenElsewhere) {
    alignas(16) std::byte spare[64];
    Scratch scratch(spare);
    EXPECT_EQ(reinterpret_cast<std::byte*>(scratch.take<std::uint32_t>(3)), spare);
    EXPECT_EQ(reinterpret_cast<std::byte*>(scratch.take<std::uint64_t>(6)), spare + 16);
    std::uint64_t* const other = scratch.take<std::uint64_t>(1000);
    std::fill(other, other + 1000, 1);
    EXPECT_TRUE(reinterpret_cast<std::byte*>(other) + 8000 <= spare ||
                reinterpret_cast<std::byte*>(other) >= spare + 64);
}

TEST(Factor, GivesTheBitsOfTheStandardProduct) {
    constexpr double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
    const double parts[] = {0.0, -0.0, 1.0, -0.3, 1e308, inf, -inf, nan};
    for (const double a : parts)
        for (const double b : parts)
            for (const double c : parts)
                for (const double d : parts) {
                    const std::complex<double> expected = std::complex<double>(a, b) * std::complex<double>(c, d);
                    const Parts product = Factor(std::complex<double>(c, d))(Parts{a, b});
                    for (const auto& [one, other] :
                         {std::pair(product[0], expected.real()), std::pair(product[1], expected.imag())})
                        ASSERT_TRUE(std::isnan(one)
                                        ? std::isnan(other)
                                        : std::bit_cast<std::uint64_t>(one) == std::bit_cast<std::uint64_t>(other));
                }
}

/// What reduce_entries leaves of the children is what each order writes of their sums.
TEST(Reduction, LeavesTheOrderThatIsWrittenFromTheSums) {
    std::mt19937_64 random(1);
    for (std::uint64_t times = 0; times < 500; ++times) {
        const std::size_t run = times % 4; // 0: runs of any length, and sums that are dropped
        std::vector<qudit::PackedAmplitude> list;
        std::vector<std::pair<std::size_t, double>> sums;
        for (std::uint64_t label = 0; label < times / 8; ++label) {
            sums.push_back({run == 0 ? 1 + random() % 4 : run, run == 0 && random() % 3 == 0 ? 0.0 : 1.0});
            list.insert(list.end(), sums.back().first, {label, 1, sums.back().second});
        }
        list.resize(qudit::reduce_entries(list));
        std::vector<qudit::PackedAmplitude> written(list.size());
        std::vector<std::uint32_t> holes(list.size() + 1);
        qudit::ReducedOrder order(written, 1, holes.data());
        for (std::uint64_t label = 0; label < sums.size(); ++label)
            order.add(label, Parts{sums[label].second, 0}, sums[label].first);
        for (std::size_t i = 0; i < list.size(); ++i) ASSERT_EQ(written[i].values, list[i].values) << times;
        if (run == 0) continue;
        qudit::UniformOrder uniform(list.size(), run);
        for (std::size_t taken = 0; taken < list.size(); taken += std::min<std::size_t>(7, list.size() - taken))
            uniform.take(std::min<std::size_t>(7, list.size() - taken),
                         [&](std::size_t i, std::size_t place) { ASSERT_EQ(list[place].values, taken + i) << times; });
    }
}
} // namespace
} // namespace vantel::testing
