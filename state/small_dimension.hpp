/// Loops over the levels of a qudit, unrolled where they are few.
#pragma once

#include <cstdint>
#include <type_traits>

namespace vantel::qudit {

/// Up to as many levels are unrolled.
inline constexpr std::uint64_t SMALL_DIMENSION = 5;

/// Calls `use` with the dimension as a constant, if it is small. @return whether it is
template <class Use> bool with_small_dimension(std::uint64_t dimension, Use use) {
    switch (dimension) {
    case 2:
        use(std::integral_constant<std::uint64_t, 2>());
        return true;
    case 3:
        use(std::integral_constant<std::uint64_t, 3>());
        return true;
    case 4:
        use(std::integral_constant<std::uint64_t, 4>());
        return true;
    case SMALL_DIMENSION:
        use(std::integral_constant<std::uint64_t, SMALL_DIMENSION>());
        return true;
    default:
        return false;
    }
}

/// Calls `use` with the dimension, as a constant where it is small.
template <class Use> void with_dimension(std::uint64_t dimension, Use use) {
    if (!with_small_dimension(dimension, use))
        use(dimension);
}

} // namespace vantel::qudit
