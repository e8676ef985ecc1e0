/// A sum that is rounded to single precision after each addition, formed without a chain of roundings.
#pragma once

#include "algorithms/complex_product.hpp"
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace vantel {
/// The literal form is `sum = float(double(sum) + weight)` for one weight after another, in which each addition waits
/// for the conversions of the one before.
///
/// While the sum stays below the next power of two, it is a multiple of one step, the last place of such a float. Each
/// addition then rounds to the next multiple of the step, so it adds the weight's own next multiple, whatever the sum
/// is up to then; and multiples of one step add up exactly in double precision, in any order. Only where a weight lies
/// half a step between two multiples does it depend on the sum which of them is taken, and where it lies within the
/// error of the sum in double precision from there, on that error. Such weights, and those that carry the sum across a
/// power of two, are added literally.
class SinglePrecisionSum {
public:
    static constexpr std::size_t block = 16;

    [[nodiscard]] float value() const noexcept { return static_cast<float>(sum_); }

    void add(double weight) noexcept {
        const auto sum = static_cast<float>(sum_ + weight);
        constexpr std::uint32_t exponent = 0x7F800000;
        sum_ = static_cast<double>(sum);
        power_ = static_cast<double>(std::bit_cast<float>(std::bit_cast<std::uint32_t>(sum) & exponent));
    }

    /// Adds the weights, which are not negative, and which may be infinite or NaN.
    /// @return whether it did; where not, nothing has changed, and each is to be added by itself
    [[nodiscard]] bool add(const std::array<double, block>& weights) noexcept {
        const double step = power_ * 0x1p-23;
        // At this height the last place of a double is one step. What is not small beside it is far above the next
        // power of two.
        const double height = 0x1p52 * step;
        // The sum in double precision is off by 2^-30 of a step at most.
        const double nearly_half = step * (0.5 - 0x1p-28);

        using Verdicts [[gnu::vector_size(32)]] = std::int64_t;
        FourParts multiples{};
        Verdicts clear = ~Verdicts{};
        for (std::size_t i = 0; i < block; i += 4) {
            const FourParts four = *reinterpret_cast<const StoredFourParts*>(&weights[i]);
            const FourParts multiple = (four + height) - height;
            const FourParts rest = four - multiple;
            multiples += multiple;
            clear &= (rest < nearly_half) & (rest > -nearly_half);
        }
        const double sum = sum_ + ((multiples[0] + multiples[1]) + (multiples[2] + multiples[3]));
        if ((clear[0] & clear[1] & clear[2] & clear[3]) == 0 || sum >= 2 * power_) return false;
        sum_ = sum;
        return true;
    }

private:
    double sum_ = 0.0; ///< as single precision has it
    /// The power of two that the sum has reached. Zero for what is below the normal numbers, and infinity for what is
    /// above them all: no rest is less than half of a step then.
    double power_ = 0.0;
};
} // namespace vantel
