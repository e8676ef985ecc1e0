#include "algorithms/single_precision_sum.hpp"
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace vantel::qudit {
namespace {
using Weights = std::array<double, SinglePrecisionSum::block>;

float literally(float sum, double weight) { return static_cast<float>(static_cast<double>(sum) + weight); }

/// Adds blocks of what `draw` makes of the sum so far. @return how many could be added at once
int blocks_at_once(int blocks, const std::function<double(float sum)>& draw) {
    SinglePrecisionSum sum;
    float literal = 0.0F;
    int at_once = 0;
    for (int i = 0; i < blocks; ++i) {
        Weights weights;
        for (double& weight : weights) {
            weight = draw(literal);
            literal = literally(literal, weight);
        }
        if (sum.add(weights))
            ++at_once;
        else
            for (const double weight : weights) sum.add(weight);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(sum.value()), std::bit_cast<std::uint32_t>(literal)) << i;
    }
    return at_once;
}

class SinglePrecision : public ::testing::Test {
protected:
    double uniform() { return std::uniform_real_distribution<>()(generator_); }
    bool once_in(int times) { return std::uniform_int_distribution<>(1, times)(generator_) == 1; }

    /// Half the last place of a sum and a few steps, exactly or off by an error like that of the sum in
    /// double.
    double near_tie(float sum) {
        const double step = static_cast<double>(std::nextafter(sum, 2 * sum + 1) - sum);
        const double off = std::ldexp(uniform() - 0.5, -std::uniform_int_distribution<>(20, 40)(generator_));
        return step * (std::floor(4 * uniform()) + 0.5 + (once_in(2) ? 0.0 : off));
    }

    std::mt19937 generator_{1};
};

TEST_F(SinglePrecision, IsRoundedAfterEachAddition) {
    EXPECT_GT(blocks_at_once(3000, [&](float) { return uniform() / 90000; }), 2900);
    EXPECT_GT(blocks_at_once(3000, [&](float) { return 1.0 / 59049; }), 2900);
    blocks_at_once(3000, [&](float) { return std::ldexp(uniform(), static_cast<int>(-60 * uniform())); });
    blocks_at_once(3000, [&](float) { return once_in(9) ? 0.0 : std::ldexp(uniform(), -150); });
}

TEST_F(SinglePrecision, LeavesTiesToTheSum) {
    blocks_at_once(3000, [&](float sum) { return once_in(40) ? near_tie(sum) : uniform() / 90000; });
    blocks_at_once(300, [&](float sum) { return near_tie(sum); });
}

TEST_F(SinglePrecision, GoesOnToInfinityAndNaN) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double odd : {infinity, nan, 0x1p+110, 0x1p+126, 0x1p+400, 0x1.fffffffp+127})
        for (const double fill : {0.3, 0x1p+120})
            blocks_at_once(200, [&](float) { return once_in(1000) ? odd : fill * uniform(); });
}
} // namespace
} // namespace vantel::qudit
