/// The matrix of the Fourier transform of one qudit.
#pragma once

#include "algorithms/complex_product.hpp"
#include <array>
#include <bitset>
#include <cmath>
#include <cstdint>

namespace vantel::qudit {
/// The factors by which an amplitude goes from level v to each level k of a d-level qudit: exp(i sign 2 pi (d - k) v /
/// d) / sqrt(d). The angle is taken as it stands, with d - k and unreduced, so that the residues of rounding are those
/// of this very product; no table of roots of unity replaces it.
class FourierFactors {
public:
    static constexpr std::size_t levels = 16; ///< what a field can hold

    /// The factors from one level, ascending in k, taken apart as in Factor.
    struct Row {
        std::array<Parts, levels + 1> real;
        std::array<Parts, levels + 1> crossed;

        [[nodiscard]] Factor operator[](std::uint64_t k) const { return {real[k], crossed[k]}; }
    };

    FourierFactors(std::uint64_t dimension, double sign)
        : dimension_(dimension), scale_(1.0 / std::sqrt(number(dimension))), unit_((sign + sign) * 3.141592653589793) {}

    [[nodiscard]] std::uint64_t dimension() const noexcept { return dimension_; }

    /// The d factors from level v. A level's factors are worked out when it is first met.
    const Row& from(std::uint64_t v) {
        if ((known_ >> v & 1) == 0) [[unlikely]]
            work_out(v);
        return rows_[v];
    }

    /// By level; those are known that have been asked for.
    [[nodiscard]] const Row* rows() const noexcept { return rows_.data(); }

private:
    [[gnu::noinline]] void work_out(std::uint64_t v) {
        Row& row = rows_[v];
        for (std::uint64_t k = 0; k < dimension_; ++k) {
            const double theta = unit_ * number(dimension_ - k) * number(v) / number(dimension_);
            const Factor factor(factor_of(theta, (dimension_ - k) * v));
            row.real[k] = factor.real();
            row.crossed[k] = factor.crossed();
        }
        // Two levels at a time are worked on; what comes of this one is not used.
        row.real[dimension_] = row.crossed[dimension_] = Parts{};
        known_ |= std::uint32_t{1} << v;
    }

    /// Angles of the same whole number of steps are mostly equal, and then are not worked out again.
    Parts factor_of(double theta, std::uint64_t steps) {
        Angle& angle = angles_[steps];
        if (!seen_[steps] || angle.theta != theta) {
            angle.theta = theta;
            angle.factor = Parts{scale_ * std::cos(theta), scale_ * std::sin(theta)};
            seen_[steps] = true;
        }
        return angle.factor;
    }

    /// A count of levels, which a signed conversion takes at once.
    static double number(std::uint64_t count) { return static_cast<double>(static_cast<int>(count)); }

    struct Angle {
        Parts factor;
        double theta;
    };

    std::uint64_t dimension_;
    double scale_;
    double unit_;
    std::uint32_t known_ = 0;
    std::array<Row, levels> rows_;
    std::bitset<(levels + 1) * levels> seen_;
    std::array<Angle, (levels + 1) * levels> angles_;
};
} // namespace vantel::qudit
