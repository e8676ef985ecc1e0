/// |a|^2 of an amplitude.
#pragma once

#include <cmath>
#include <complex>
#include <limits>

namespace vantel::qudit {

/// The weight of an entry. Infinity stands ahead of NaN: one infinite part makes it infinite, whatever
/// the other is.
inline double squared_modulus(const std::complex<double>& amplitude) noexcept {
    const double sum = amplitude.real() * amplitude.real() + amplitude.imag() * amplitude.imag();
    if (std::isnan(sum) && (std::isinf(amplitude.real()) || std::isinf(amplitude.imag()))) [[unlikely]]
        return std::numeric_limits<double>::infinity();
    return sum;
}

} // namespace vantel::qudit
