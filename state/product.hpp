/// The complex product of the hot loops.
#pragma once

#include <cmath>
#include <complex>
#include <cstdint>

namespace vantel::qudit {

/// Real and imaginary part side by side in one vector register.
using Parts [[gnu::vector_size(16)]] = double;

/// Two such pairs in one register, where there are such wide ones.
using FourParts [[gnu::vector_size(32)]] = double;

/// The same in memory, where an amplitude is aligned as one of its parts.
using StoredParts [[gnu::vector_size(16), gnu::aligned(8), gnu::may_alias]] = double;
using StoredFourParts [[gnu::vector_size(32), gnu::aligned(8), gnu::may_alias]] = double;

inline Parts parts_of(const std::complex<double>& number) noexcept {
    return *reinterpret_cast<const StoredParts*>(&number);
}

inline void store(Parts parts, std::complex<double>& number) noexcept {
    *reinterpret_cast<StoredParts*>(&number) = parts;
}

inline std::complex<double> complex_of(Parts parts) noexcept {
    return {parts[0], parts[1]};
}

/// The vector with the sign of one part turned.
template <int part> Parts negated(Parts number) noexcept {
    using Words [[gnu::vector_size(16)]] = std::uint64_t;
    constexpr std::uint64_t sign = std::uint64_t{1} << 63;
    return reinterpret_cast<Parts>(reinterpret_cast<Words>(number) ^
                                   Words{part == 0 ? sign : 0, part == 1 ? sign : 0});
}

/// A number that many amplitudes are multiplied by.
class Factor {
public:
    Factor() = default;
    explicit Factor(const std::complex<double>& factor) noexcept : Factor(parts_of(factor)) {}
    /// The vector is put together from vectors: a store of its parts would have to reach memory first.
    explicit Factor(Parts factor) noexcept
        : Factor(__builtin_shufflevector(factor, factor, 0, 0),
                 negated<0>(__builtin_shufflevector(factor, factor, 1, 1))) {}
    /// From real() and crossed() of a factor.
    Factor(Parts real, Parts crossed) noexcept : parts_(__builtin_shufflevector(real, crossed, 0, 1, 2, 3)) {}

    /// The amplitude times the factor, to the last bit what std::complex gives: real part a f - b g and
    /// imaginary part b f + a g, each product rounded by itself. Where both parts come out NaN, the
    /// standard's own product, which recovers infinities, is taken.
    [[nodiscard]] Parts operator()(Parts amplitude) const noexcept {
        const Parts product = unrecovered(amplitude);
        if (std::isunordered(product[0], product[1])) [[unlikely]]
            return parts_of(complex_of(amplitude) * std::complex<double>(parts_[0], parts_[3]));
        return product;
    }

    /// The same without the recovery, for whoever looks for NaN in both parts later.
    [[nodiscard]] Parts unrecovered(Parts amplitude) const noexcept {
        const FourParts products = __builtin_shufflevector(amplitude, amplitude, 0, 1, 1, 0) * parts_;
        return __builtin_shufflevector(products, products, 0, 1) +
               __builtin_shufflevector(products, products, 2, 3);
    }

    /// The real part, twice.
    [[nodiscard]] Parts real() const noexcept { return __builtin_shufflevector(parts_, parts_, 0, 1); }
    /// The imaginary part negated, and as it is.
    [[nodiscard]] Parts crossed() const noexcept { return __builtin_shufflevector(parts_, parts_, 2, 3); }

private:
    FourParts parts_; ///< real() and crossed()
};

} // namespace vantel::qudit
