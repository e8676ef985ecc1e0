/// One family of vectors, by width: a word, 16 bytes and 32 bytes. What takes or returns 32 bytes is always inlined,
/// since how such a vector is passed depends on the instructions that a function is compiled for.
#pragma once

#include "algorithms/wide_loop.hpp"
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>

namespace vantel {
/// Two words, and real and imaginary part of a number side by side.
using Words [[gnu::vector_size(16)]] = std::uint64_t;
using Parts [[gnu::vector_size(16)]] = double;

/// Twice as many, in one register where there are such wide ones.
using FourWords [[gnu::vector_size(32)]] = std::uint64_t;
using FourParts [[gnu::vector_size(32)]] = double;

/// The same in memory, where they are aligned as one of their elements.
using StoredWords [[gnu::vector_size(16), gnu::aligned(8), gnu::may_alias]] = std::uint64_t;
using StoredParts [[gnu::vector_size(16), gnu::aligned(8), gnu::may_alias]] = double;
using StoredFourWords [[gnu::vector_size(32), gnu::aligned(8), gnu::may_alias]] = std::uint64_t;
using StoredFourParts [[gnu::vector_size(32), gnu::aligned(8), gnu::may_alias]] = double;

inline Parts parts_of(const std::complex<double>& number) noexcept {
    return *reinterpret_cast<const StoredParts*>(&number);
}
inline void store(Parts parts, std::complex<double>& number) noexcept {
    *reinterpret_cast<StoredParts*>(&number) = parts;
}
inline std::complex<double> complex_of(Parts parts) noexcept { return {parts[0], parts[1]}; }

/// Two numbers in one vector, and the two of a vector.
[[gnu::always_inline]] inline FourParts joined(Parts low, Parts high) noexcept {
    return __builtin_shufflevector(low, high, 0, 1, 2, 3);
}
[[gnu::always_inline]] inline Parts low_half(FourParts both) noexcept {
    return __builtin_shufflevector(both, both, 0, 1);
}
/// Read as it lies in memory, since with a store gcc makes one instruction of that and two of a shuffle.
[[gnu::always_inline]] inline Parts high_half(FourParts both) noexcept {
    return reinterpret_cast<const StoredParts*>(&both)[1];
}
/// Each number with its parts exchanged.
inline Parts exchanged(Parts number) noexcept { return __builtin_shufflevector(number, number, 1, 0); }
[[gnu::always_inline]] inline FourParts exchanged(FourParts both) noexcept {
    return __builtin_shufflevector(both, both, 1, 0, 3, 2);
}

// A mask has all bits of a word set or none. What follows is written alike for one word and for several, so that a
// kernel says once what it does to each.

/// A mask of where a and b are equal.
inline std::uint64_t equal(std::uint64_t a, std::uint64_t b) noexcept { return -static_cast<std::uint64_t>(a == b); }
[[gnu::always_inline]] inline FourWords equal(FourWords a, FourWords b) noexcept {
    return reinterpret_cast<FourWords>(a == b);
}
[[gnu::always_inline]] inline FourWords equal(FourWords a, std::uint64_t b) noexcept {
    return equal(a, FourWords{b, b, b, b});
}

/// The highest bit of each word, side by side: of a mask, which words are set.
inline unsigned highest_bits(std::uint64_t word) noexcept { return static_cast<unsigned>(word >> 63); }
inline unsigned highest_bits(Words words) noexcept { return highest_bits(words[0]) | highest_bits(words[1]) << 1; }

/// `chosen` where the mask is set, `other` elsewhere.
[[gnu::always_inline]] inline Parts select(std::uint64_t mask, Parts chosen, Parts other) noexcept {
    return Words{mask, mask} ? chosen : other;
}

// For wide loops alone: what no compiler makes one instruction of is asked for by name. Vectors go by reference.
#ifdef __x86_64__
[[gnu::target("avx2")]] inline unsigned highest_bits_wide(const FourWords& words) noexcept {
    return static_cast<unsigned>(__builtin_ia32_movmskpd256(reinterpret_cast<const FourParts&>(words)));
}
/// A mask of where a and b are ordered, that is neither is NaN.
[[gnu::target("avx2")]] inline void ordered_wide(const FourParts& a, const FourParts& b, FourWords& mask) noexcept {
    constexpr int ordered = 7;
    mask = reinterpret_cast<FourWords>(__builtin_ia32_cmppd256(a, b, ordered));
}
/// Puts `chosen` where the mask is set.
[[gnu::target("avx2")]] inline void put_wide(const FourWords& mask, const FourParts& chosen,
                                             FourParts& other) noexcept {
    other = __builtin_ia32_blendvpd256(other, chosen, reinterpret_cast<const FourParts&>(mask));
}
#else
unsigned highest_bits_wide(const FourWords& words) noexcept;
void ordered_wide(const FourParts& a, const FourParts& b, FourWords& mask) noexcept;
void put_wide(const FourWords& mask, const FourParts& chosen, FourParts& other) noexcept;
#endif

/// How many numbers a register holds, in a loop of plain vectors and in one of wide ones.
template <class Vectors> struct Numbers {
    static constexpr std::size_t count = 1;
    using Register = Parts;
    using Stored = StoredParts;
    using Mask = Words;

    static bool is_full(const Mask& mask) noexcept { return highest_bits(mask) == 3; }
    static Register all(Parts number) noexcept { return number; }
    template <std::size_t i> static Parts at(Register numbers) noexcept { return numbers; }
};
template <> struct Numbers<WideVectors> {
    static constexpr std::size_t count = 2;
    using Register = FourParts;
    using Stored = StoredFourParts;
    using Mask = FourWords;

    static bool is_full(const Mask& mask) noexcept { return highest_bits_wide(mask) == 15; }
    [[gnu::always_inline]] static Register all(Parts number) noexcept { return joined(number, number); }
    template <std::size_t i> [[gnu::always_inline]] static Parts at(Register numbers) noexcept {
        return i == 0 ? low_half(numbers) : high_half(numbers);
    }
};

/// Four records of two words and a complex number each: every lane holds the same element of all four.
struct FourRecords {
    FourWords first;
    FourWords second;
    FourParts real;
    FourParts imaginary;

    [[gnu::always_inline]] explicit FourRecords(const void* records) noexcept {
        const StoredFourWords* const record = static_cast<const StoredFourWords*>(records);
        const FourWords a = record[0], b = record[1], c = record[2], d = record[3];
        const FourWords even = __builtin_shufflevector(a, c, 0, 1, 4, 5);
        const FourWords uneven = __builtin_shufflevector(b, d, 0, 1, 4, 5);
        first = __builtin_shufflevector(even, uneven, 0, 4, 2, 6);
        second = __builtin_shufflevector(even, uneven, 1, 5, 3, 7);
        const FourWords even_numbers = __builtin_shufflevector(a, c, 2, 3, 6, 7);
        const FourWords uneven_numbers = __builtin_shufflevector(b, d, 2, 3, 6, 7);
        real = reinterpret_cast<FourParts>(__builtin_shufflevector(even_numbers, uneven_numbers, 0, 4, 2, 6));
        imaginary = reinterpret_cast<FourParts>(__builtin_shufflevector(even_numbers, uneven_numbers, 1, 5, 3, 7));
    }
};

/// The numbers of four records from their parts.
[[gnu::always_inline]] inline void store_numbers(FourParts real, FourParts imaginary,
                                                 std::complex<double>* const (&numbers)[4]) noexcept {
    const FourParts even = __builtin_shufflevector(real, imaginary, 0, 4, 2, 6);
    const FourParts uneven = __builtin_shufflevector(real, imaginary, 1, 5, 3, 7);
    store(low_half(even), *numbers[0]);
    store(low_half(uneven), *numbers[1]);
    store(high_half(even), *numbers[2]);
    store(high_half(uneven), *numbers[3]);
}
} // namespace vantel
