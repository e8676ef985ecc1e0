/**
 * @file vantel_random.hpp
 * @brief Header-only, beside vantel.hpp: random numbers that are the same with every standard library.
 */
#ifndef VANTEL_RANDOM_HPP
#define VANTEL_RANDOM_HPP

#include "vantel.hpp" // refuses what is older than C++20

#if __cplusplus >= 202002L || (defined(_MSVC_LANG) && _MSVC_LANG >= 202002L)

#include <bit>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>

namespace vantel {
/// A source of random bits: one of `<random>`'s generators, or a reference to one. Its numbers have at most
/// 64 bits.
template <class Generator>
concept BitGenerator = std::uniform_random_bit_generator<std::remove_reference_t<Generator>> &&
    (std::numeric_limits<std::invoke_result_t<Generator&>>::digits <= 64);

/// A number in [0, 1), a multiple of 2^-53, from 64 random bits by this rule: of a number x of the generator,
/// x - min() is taken if it is below 2^k, the largest power of two with 2^k <= max() - min() + 1, and else
/// dropped for the next; its k bits go behind those taken before, until there are 64 or more. Of the last 64
/// the upper 53, as a whole number, are divided by 2^53.
/// @param generator  where the bits come from: of std::mt19937_64 one number, of std::mt19937 two.
template <BitGenerator Generator> [[nodiscard]] double uniform_number(Generator&& generator) {
    using Source = std::remove_reference_t<Generator>;
    constexpr std::uint64_t least = Source::min(), span = Source::max() - least;
    constexpr int width = span == std::numeric_limits<std::uint64_t>::max() ? 64 : std::bit_width(span + 1) - 1;
    constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max() >> (64 - width);
    std::uint64_t bits = 0;
    for (int taken = 0; taken < 64;) {
        const std::uint64_t number = generator() - least;
        if (number > largest) continue;
        if constexpr (width < 64) bits <<= width;
        bits |= number;
        taken += width;
    }
    return static_cast<double>(bits >> 11) * 0x1p-53;
}

/// The generator of one shot of many, which depends on its number and the seed of all and on nothing else, so
/// that it does not matter which thread draws the shot. A std::mt19937_64 whose seed is both numbers mixed by
/// the steps of splitmix64 (S. Vigna, 2015).
/// @param seed  any number, of all shots.
/// @param shot  the number of the shot.
[[nodiscard]] inline std::mt19937_64 generator_of_shot(std::uint64_t seed, std::uint64_t shot) {
    const auto mixed = [](std::uint64_t x) {
        x += 0x9E3779B97F4A7C15;
        x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9;
        x = (x ^ (x >> 27)) * 0x94D049BB133111EB;
        return x ^ (x >> 31);
    };
    return std::mt19937_64(mixed(mixed(seed) + shot));
}
} // namespace vantel

#endif // C++20
#endif
