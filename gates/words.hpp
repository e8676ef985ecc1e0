/// The label words of two entries side by side, for kernels that treat entries in pairs, and of four.
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

// What follows is written alike for one word and for several, so that a kernel says once what it does to any.
// What takes or returns four is always inlined: where 32 bytes are passed depends on the instructions that a
// function is compiled for.

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
[[gnu::always_inline]] inline FourWords equal(FourWords a, std::uint64_t b) noexcept {
    return reinterpret_cast<FourWords>(a == FourWords{b, b, b, b});
}

inline bool any(Words words) noexcept {
    return (words[0] | words[1]) != 0;
}

/// The labels of two neighbouring entries.
struct LabelPair {
    Words values;
    Words dimensions;

    explicit LabelPair(const PackedAmplitude* first) noexcept {
        const Words a = *reinterpret_cast<const StoredWords*>(first);
        const Words b = *reinterpret_cast<const StoredWords*>(first + 1);
        values = __builtin_shufflevector(a, b, 0, 2);
        dimensions = __builtin_shufflevector(a, b, 1, 3);
    }
};

} // namespace vantel::qudit
