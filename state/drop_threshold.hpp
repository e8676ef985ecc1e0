/// When an amplitude is negligible.
#pragma once

#include <cmath>

#include "state/product.hpp"

namespace vantel::qudit {

/// 2^-23, compared in double.
inline constexpr double DROP_THRESHOLD = 1.1920928955078125e-07;

/// Whether an entry stays in a reduced list: whether |real part| or |imaginary part| is above the
/// threshold. The parts are tested one by one, a box around zero and not a circle; a NaN part does not
/// exceed.
inline bool exceeds_threshold(Parts amplitude) noexcept {
    return std::abs(amplitude[0]) > DROP_THRESHOLD || std::abs(amplitude[1]) > DROP_THRESHOLD;
}

} // namespace vantel::qudit
