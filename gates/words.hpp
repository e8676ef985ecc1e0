/// The label words of some entries side by side, for kernels that treat several entries at once.
#pragma once

#include <cstdint>

#include "state/basis_amplitude.hpp"
#include "state/product.hpp"

namespace vantel::qudit {

/// One 64-bit word of each of two entries in one vector register.
using Words [[gnu::vector_size(16)]] = std::uint64_t;

/// Likewise of four.
using FourWords [[gnu::vector_size(32)]] = std::uint64_t;

/// The two label words of an entry as they lie in memory.
using StoredWords [[gnu::vector_size(16), gnu::aligned(8), gnu::may_alias]] = std::uint64_t;

/// And of each of four. What takes or returns such a vector is always inlined, since how it is passed hangs
/// on the instructions that a function is compiled for.
using FourWords [[gnu::vector_size(32)]] = std::uint64_t;

// What follows is written alike for one word and for several, so that a kernel says once what it does to
// each.

/// All bits set where a and b are equal, none elsewhere.
inline std::uint64_t equal(std::uint64_t a, std::uint64_t b) noexcept {
    return -static_cast<std::uint64_t>(a == b);
}
inline Words equal(Words a, Words b) noexcept {
    return reinterpret_cast<Words>(a == b);
}
inline Words equal(Words a, std::uint64_t b) noexcept {
    return equal(a, Words{b, b});
}
[[gnu::always_inline]] inline FourWords equal(FourWords a, FourWords b) noexcept {
    return reinterpret_cast<FourWords>(a == b);
}
[[gnu::always_inline]] inline FourWords equal(FourWords a, std::uint64_t b) noexcept {
    return equal(a, FourWords{b, b, b, b});
}

/// Whether the highest bit of some word is set, which no label has.
inline bool any_highest(std::uint64_t word) noexcept {
    return word >> 63 != 0;
}
inline bool any_highest(Words words) noexcept {
#ifdef __SSE2__
    return __builtin_ia32_movmskpd(reinterpret_cast<Parts>(words)) != 0; // at once, and not word by word
#else
    return any_highest(words[0] | words[1]);
#endif
}
[[gnu::always_inline]] inline bool any_highest(FourWords words) noexcept {
    return any_highest(__builtin_shufflevector(words, words, 0, 1) |
                       __builtin_shufflevector(words, words, 2, 3));
}

inline bool any(Words words) noexcept {
    return (words[0] | words[1]) != 0;
}

/// The label of an entry.
struct OneLabel {
    static constexpr int count = 1;

    std::uint64_t values;
    std::uint64_t dimensions;

    explicit OneLabel(const PackedAmplitude* entry) noexcept
        : values(entry->values), dimensions(entry->dimensions) {}
    static void write(PackedAmplitude* entry, std::uint64_t values) noexcept { entry->values = values; }
};

/// The labels of two neighbouring entries.
struct LabelPair {
    static constexpr int count = 2;

    Words values;
    Words dimensions;

    explicit LabelPair(const PackedAmplitude* first) noexcept {
        const Words a = *reinterpret_cast<const StoredWords*>(first);
        const Words b = *reinterpret_cast<const StoredWords*>(first + 1);
        values = __builtin_shufflevector(a, b, 0, 2);
        dimensions = __builtin_shufflevector(a, b, 1, 3);
    }
    static void write(PackedAmplitude* first, Words values) noexcept {
        first[0].values = values[0];
        first[1].values = values[1];
    }
};

/// The labels of four.
struct FourLabels {
    static constexpr int count = 4;

    FourWords values;
    FourWords dimensions;

    explicit FourLabels(const PackedAmplitude* first) noexcept {
        const auto label = [first](int i) { return *reinterpret_cast<const StoredWords*>(first + i); };
        const FourWords even = __builtin_shufflevector(label(0), label(2), 0, 1, 2, 3);
        const FourWords odd = __builtin_shufflevector(label(1), label(3), 0, 1, 2, 3);
        values = __builtin_shufflevector(even, odd, 0, 4, 2, 6);
        dimensions = __builtin_shufflevector(even, odd, 1, 5, 3, 7);
    }
    [[gnu::always_inline]] static void write(PackedAmplitude* first, FourWords values) noexcept {
        first[0].values = values[0];
        first[1].values = values[1];
        first[2].values = values[2];
        first[3].values = values[3];
    }
};

/// `chosen` where the mask's bits are set, `other` elsewhere.
inline Parts select(Words mask, Parts chosen, Parts other) noexcept {
    return mask ? chosen : other;
}

} // namespace vantel::qudit
