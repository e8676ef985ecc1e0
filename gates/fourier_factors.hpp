/// The matrix of the Fourier transform of one qudit.
#pragma once

#include <array>
#include <cmath>
#include <complex>
#include <cstdint>
#include <span>

#include "state/product.hpp"

namespace vantel::qudit {

/// The factors by which an amplitude goes from level v to each level k of a d-level qudit:
/// exp(i sign 2 pi (d - k) v / d) / sqrt(d). The angle is taken as it stands, with d - k and unreduced, so
/// that the residues of rounding are those of this very product; no table of roots of unity replaces it.
class FourierFactors {
public:
    FourierFactors(std::uint64_t dimension, double sign)
        : dimension_(dimension), scale_(1.0 / std::sqrt(static_cast<double>(dimension))),
          unit_((sign + sign) * 3.141592653589793) {}

    [[nodiscard]] std::uint64_t dimension() const noexcept { return dimension_; }

    /// The d factors from level v, ascending in k. A level's factors are worked out when it is first met.
    std::span<const Factor> from(std::uint64_t v) {
        if ((known_ >> v & 1) == 0) {
            for (std::uint64_t k = 0; k < dimension_; ++k) {
                const double theta = unit_ * static_cast<double>(dimension_ - k) * static_cast<double>(v) /
                                     static_cast<double>(dimension_);
                rows_[v][k] = Factor({scale_ * std::cos(theta), scale_ * std::sin(theta)});
            }
            known_ |= std::uint32_t{1} << v;
        }
        return {rows_[v].data(), dimension_};
    }

private:
    static constexpr std::size_t levels = 16; ///< what a field can hold

    std::uint64_t dimension_;
    double scale_;
    double unit_;
    std::uint32_t known_ = 0;
    std::array<std::array<Factor, levels>, levels> rows_;
};

} // namespace vantel::qudit
