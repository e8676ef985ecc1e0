/// The matrix of the Fourier transform of one qudit.
#pragma once

#include <array>
#include <cmath>
#include <complex>
#include <cstdint>

#include "state/product.hpp"

namespace vantel::qudit {

/// The factors by which an amplitude goes from level v to each level k of a d-level qudit:
/// exp(i sign 2 pi (d - k) v / d) / sqrt(d). The angle is taken as it stands, with d - k and unreduced, so
/// that the residues of rounding are those of this very product; no table of roots of unity replaces it.
class FourierFactors {
public:
    static constexpr std::size_t levels = 16; ///< what a field can hold

    /// The factors from one level, ascending in k, taken apart as in Factor.
    struct Row {
        std::array<Parts, levels> real{};
        std::array<Parts, levels> crossed{};

        [[nodiscard]] Factor operator[](std::uint64_t k) const { return {real[k], crossed[k]}; }
    };

    FourierFactors(std::uint64_t dimension, double sign)
        : dimension_(dimension), scale_(1.0 / std::sqrt(static_cast<double>(dimension))),
          unit_((sign + sign) * 3.141592653589793) {}

    [[nodiscard]] std::uint64_t dimension() const noexcept { return dimension_; }

    /// The d factors from level v. A level's factors are worked out when it is first met.
    const Row& from(std::uint64_t v) {
        if ((known_ >> v & 1) == 0) [[unlikely]]
            work_out(v);
        return rows_[v];
    }

private:
    [[gnu::noinline]] void work_out(std::uint64_t v) {
        for (std::uint64_t k = 0; k < dimension_; ++k) {
            const double theta = unit_ * static_cast<double>(dimension_ - k) * static_cast<double>(v) /
                                 static_cast<double>(dimension_);
            const Factor factor({scale_ * std::cos(theta), scale_ * std::sin(theta)});
            rows_[v].real[k] = factor.real();
            rows_[v].crossed[k] = factor.crossed();
        }
        known_ |= std::uint32_t{1} << v;
    }

    std::uint64_t dimension_;
    double scale_;
    double unit_;
    std::uint32_t known_ = 0;
    std::array<Row, levels> rows_;
};

} // namespace vantel::qudit
