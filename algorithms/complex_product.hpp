/// The complex product of the hot loops, to the last bit that of std::complex.
#pragma once

#include "algorithms/lanes.hpp"
#include <cmath>
#include <complex>
#include <cstdint>

namespace vantel {
/// The number with the sign of one part turned.
template <int part> Parts negated(Parts number) noexcept {
    constexpr std::uint64_t sign = std::uint64_t{1} << 63;
    return reinterpret_cast<Parts>(reinterpret_cast<Words>(number) ^ Words{part == 0 ? sign : 0, part == 1 ? sign : 0});
}

inline Parts conjugate(Parts number) noexcept { return negated<1>(number); }

/// Whether both parts are NaN, as they are where an infinity may have been lost.
inline bool is_lost(Parts product) noexcept { return std::isnan(product[0]) && std::isnan(product[1]); }

/// A number that many others are multiplied by.
class Factor {
public:
    Factor() = default;
    explicit Factor(const std::complex<double>& factor) noexcept : Factor(parts_of(factor)) {}
    /// Put together from vectors: a store of the parts would have to reach memory first.
    explicit Factor(Parts factor) noexcept
        : Factor(__builtin_shufflevector(factor, factor, 0, 0),
                 negated<0>(__builtin_shufflevector(factor, factor, 1, 1))) {}
    /// From real() and crossed() of a factor.
    Factor(Parts real, Parts crossed) noexcept : real_(real), crossed_(crossed) {}

    /// Real part a f - b g and imaginary part b f + a g, each product rounded by itself. Where both parts come out NaN,
    /// the standard's own product, which recovers infinities, is taken.
    [[nodiscard]] Parts operator()(Parts number) const noexcept {
        const Parts product = unrecovered(number);
        if (std::isunordered(product[0], product[1])) [[unlikely]]
            return parts_of(complex_of(number) * std::complex<double>(real_[0], crossed_[1]));
        return product;
    }

    /// The same without the recovery, for whoever looks for is_lost() later.
    [[nodiscard]] Parts unrecovered(Parts number) const noexcept {
        return number * real_ + exchanged(number) * crossed_;
    }

    /// The real part, twice.
    [[nodiscard]] Parts real() const noexcept { return real_; }
    /// The imaginary part negated, and as it is.
    [[nodiscard]] Parts crossed() const noexcept { return crossed_; }

private:
    Parts real_;
    Parts crossed_;
};
} // namespace vantel
