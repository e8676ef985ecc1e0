/// The sums of one group of the Fourier transform.
#pragma once

#include <array>
#include <cstdint>

#include "gates/fourier_factors.hpp"
#include "state/product.hpp"

namespace vantel::qudit {

/// The children of one entry, or their sums over several, two levels in one vector.
class Children {
public:
    template <class Dimension>
    Children(Dimension dimension, const FourierFactors::Row& row, Parts amplitude) {
        const FourParts twice = __builtin_shufflevector(amplitude, amplitude, 0, 1, 0, 1);
        const FourParts exchanged = __builtin_shufflevector(amplitude, amplitude, 1, 0, 1, 0);
        for (std::uint64_t k = 0; k < dimension; k += 2)
            pairs_[k / 2] = twice * *reinterpret_cast<const StoredFourParts*>(&row.real[k]) +
                            exchanged * *reinterpret_cast<const StoredFourParts*>(&row.crossed[k]);
    }

    template <class Dimension> void add(const Children& others, Dimension dimension) {
        for (std::uint64_t k = 0; k < dimension; k += 2)
            pairs_[k / 2] += others.pairs_[k / 2];
    }

    template <class Dimension> void write(Parts* sums, Dimension dimension) const {
        for (std::uint64_t k = 0; k < dimension; k += 2) {
            sums[k] = __builtin_shufflevector(pairs_[k / 2], pairs_[k / 2], 0, 1);
            if (k + 1 < dimension)
                sums[k + 1] = __builtin_shufflevector(pairs_[k / 2], pairs_[k / 2], 2, 3);
        }
    }

private:
    std::array<FourParts, FourierFactors::levels / 2> pairs_;
};

} // namespace vantel::qudit
