/// |a|^2 of entries, one by one and several at once.
#pragma once

#include <array>
#include <cstddef>

#include "readout/squared_modulus.hpp"
#include "state/basis_amplitude.hpp"
#include "state/product.hpp"

namespace vantel::qudit {

/// |a|^2, but NaN where that is infinite beside a part that is NaN.
struct PlainSquare {
    double operator()(const std::complex<double>& amplitude) const noexcept {
        const Parts parts = parts_of(amplitude);
        const Parts squares = parts * parts;
        return squares[0] + squares[1];
    }

    template <std::size_t count>
    void operator()(const PackedAmplitude* entries, std::array<double, count>& weights) const noexcept {
        static_assert(count % 4 == 0);
        for (std::size_t i = 0; i < count; i += 4) {
            const FourParts even = __builtin_shufflevector(parts_of(entries[i].amplitude),
                                                           parts_of(entries[i + 2].amplitude), 0, 1, 2, 3);
            const FourParts odd = __builtin_shufflevector(parts_of(entries[i + 1].amplitude),
                                                          parts_of(entries[i + 3].amplitude), 0, 1, 2, 3);
            const FourParts even_squares = even * even;
            const FourParts odd_squares = odd * odd;
            *reinterpret_cast<StoredFourParts*>(&weights[i]) =
                __builtin_shufflevector(even_squares, odd_squares, 0, 4, 2, 6) +
                __builtin_shufflevector(even_squares, odd_squares, 1, 5, 3, 7);
        }
    }
};

struct SquaredModulus {
    double operator()(const std::complex<double>& amplitude) const noexcept {
        return squared_modulus(amplitude);
    }
};

} // namespace vantel::qudit
