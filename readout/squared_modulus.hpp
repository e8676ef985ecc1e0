/// |a|^2 of an amplitude.
#pragma once

#include <cmath>
#include <complex>
#include <limits>

namespace vantel::qudit {

/// The weight of an entry. Infinity stands ahead of NaN: one infinite part makes it infinite, whatever
/// the other is.
inline double squared_modulus(const std::complex<double>& amplitude) noexcept {
    if (std::isinf(amplitude.real()) || std::isinf(amplitude.imag()))
        return std::numeric_limits<double>::infinity();
    return amplitude.real() * amplitude.real() + amplitude.imag() * amplitude.imag();
}

} // namespace vantel::qudit
