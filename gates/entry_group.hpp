/// Neighbouring entries in vectors, the same part of all in one, for kernels that treat several at a time.
#pragma once

#include <complex>
#include <cstddef>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

#include "gates/words.hpp"
#include "state/basis_amplitude.hpp"
#include "state/product.hpp"
#include "state/wide_loop.hpp"

namespace vantel::qudit {

/// Complex numbers, their real parts side by side and so their imaginary ones.
template <class Parts> struct ComplexLanes {
    Parts real;
    Parts imaginary;

    /// Each product as Factor::unrecovered gives it.
    friend ComplexLanes operator*(const ComplexLanes& a, const ComplexLanes& b) noexcept {
        return {a.real * b.real - a.imaginary * b.imaginary, a.imaginary * b.real + a.real * b.imaginary};
    }
};

/// A number that stands twice, so that either half of a vector can be taken from where it is.
class Doubled {
public:
    Doubled() = default;
    explicit Doubled(const std::complex<double>& number) noexcept
        : words_(reinterpret_cast<FourWords>(
              __builtin_shufflevector(parts_of(number), parts_of(number), 0, 1, 0, 1))) {}

    /// As words, since gcc joins halves of those in one cheap instruction and halves of doubles in a dear
    /// one.
    [[nodiscard]] const FourWords& words() const noexcept { return words_; }
    [[nodiscard]] Parts parts() const noexcept { return *reinterpret_cast<const StoredParts*>(&words_); }

private:
    FourWords words_;
};

/// As many entries as fit the vectors of that tag. Masks have all bits of a word set or none.
template <class Vectors> struct EntryGroup;

/// Two entries, in vectors that every processor has.
template <> struct EntryGroup<PlainVectors> {
    static constexpr std::size_t size = 2;
    using Numbers = ComplexLanes<Parts>;

    Words values;
    Words dimensions;
    Numbers amplitudes;

    explicit EntryGroup(const PackedAmplitude* first) noexcept {
        const LabelPair labels(first);
        values = labels.values;
        dimensions = labels.dimensions;
        amplitudes = joined(parts_of(first[0].amplitude), parts_of(first[1].amplitude));
    }

    /// The numbers doubled(0) and on.
    template <class DoubledAt> static Numbers numbers(const DoubledAt& doubled) noexcept {
        return joined(doubled(0).parts(), doubled(1).parts());
    }

    static void store(const Numbers& numbers, PackedAmplitude* first) noexcept {
        qudit::store(__builtin_shufflevector(numbers.real, numbers.imaginary, 0, 2), first[0].amplitude);
        qudit::store(__builtin_shufflevector(numbers.real, numbers.imaginary, 1, 3), first[1].amplitude);
    }

    static bool any(const Words& mask) noexcept { return qudit::any(mask); }

    /// Whether the mask is set for all and no part of the numbers is NaN. Infinities of both signs in one
    /// number may be taken for that.
    static bool all_with_numbers(const Words& mask, const Numbers& numbers) noexcept {
        const Parts sum = numbers.real + numbers.imaginary;
        return !qudit::any(~mask | reinterpret_cast<Words>(sum != sum));
    }

    /// `chosen` where the mask is set, `other` elsewhere.
    static Numbers select(const Words& mask, const Numbers& chosen, const Numbers& other) noexcept {
        return {mask ? chosen.real : other.real, mask ? chosen.imaginary : other.imaginary};
    }

private:
    static Numbers joined(Parts a, Parts b) noexcept {
        return {__builtin_shufflevector(a, b, 0, 2), __builtin_shufflevector(a, b, 1, 3)};
    }
};

#if defined(__x86_64__)

/// Four entries. No function but an inlined one passes a single vector of these by value, as said of words;
/// and what no compiler makes one instruction of is asked for by name.
template <> struct EntryGroup<WideVectors> {
    static constexpr std::size_t size = 4;
    using Numbers = ComplexLanes<FourParts>;

    FourWords values;
    FourWords dimensions;
    Numbers amplitudes;

    explicit EntryGroup(const PackedAmplitude* first) noexcept {
        using Stored [[gnu::vector_size(32), gnu::aligned(8), gnu::may_alias]] = std::uint64_t;
        const Stored* const entries = reinterpret_cast<const Stored*>(first);
        const FourWords a = entries[0];
        const FourWords b = entries[1];
        const FourWords c = entries[2];
        const FourWords d = entries[3];
        const FourWords even = __builtin_shufflevector(a, c, 0, 1, 4, 5);
        const FourWords uneven = __builtin_shufflevector(b, d, 0, 1, 4, 5);
        values = __builtin_shufflevector(even, uneven, 0, 4, 2, 6);
        dimensions = __builtin_shufflevector(even, uneven, 1, 5, 3, 7);
        amplitudes =
            joined(__builtin_shufflevector(a, c, 2, 3, 6, 7), __builtin_shufflevector(b, d, 2, 3, 6, 7));
    }

    template <class DoubledAt> static Numbers numbers(const DoubledAt& doubled) noexcept {
        return joined(__builtin_shufflevector(doubled(0).words(), doubled(2).words(), 0, 1, 6, 7),
                      __builtin_shufflevector(doubled(1).words(), doubled(3).words(), 0, 1, 6, 7));
    }

    /// Halves are read as they lie in memory: with the store, gcc makes one instruction of that and two of a
    /// shuffle.
    static void store(const Numbers& numbers, PackedAmplitude* first) noexcept {
        const FourParts even = __builtin_shufflevector(numbers.real, numbers.imaginary, 0, 4, 2, 6);
        const FourParts uneven = __builtin_shufflevector(numbers.real, numbers.imaginary, 1, 5, 3, 7);
        const StoredParts* const even_halves = reinterpret_cast<const StoredParts*>(&even);
        const StoredParts* const uneven_halves = reinterpret_cast<const StoredParts*>(&uneven);
        qudit::store(even_halves[0], first[0].amplitude);
        qudit::store(uneven_halves[0], first[1].amplitude);
        qudit::store(even_halves[1], first[2].amplitude);
        qudit::store(uneven_halves[1], first[3].amplitude);
    }

    [[gnu::target("avx2")]] static bool any(const FourWords& mask) noexcept {
        return _mm256_movemask_pd(reinterpret_cast<FourParts>(mask)) != 0;
    }

    [[gnu::target("avx2")]] static bool all_with_numbers(const FourWords& mask,
                                                         const Numbers& numbers) noexcept {
        const FourParts ordered = _mm256_cmp_pd(numbers.real, numbers.imaginary, _CMP_ORD_Q);
        return _mm256_movemask_pd(_mm256_and_pd(ordered, reinterpret_cast<FourParts>(mask))) == 15;
    }

    [[gnu::target("avx2")]] static Numbers select(const FourWords& mask, const Numbers& chosen,
                                                  const Numbers& other) noexcept {
        const auto places = reinterpret_cast<FourParts>(mask);
        return {_mm256_blendv_pd(other.real, chosen.real, places),
                _mm256_blendv_pd(other.imaginary, chosen.imaginary, places)};
    }

private:
    /// From the first and the third number and from the second and the fourth.
    static Numbers joined(const FourWords& even, const FourWords& uneven) noexcept {
        return {reinterpret_cast<FourParts>(__builtin_shufflevector(even, uneven, 0, 4, 2, 6)),
                reinterpret_cast<FourParts>(__builtin_shufflevector(even, uneven, 1, 5, 3, 7))};
    }
};

#endif

} // namespace vantel::qudit
