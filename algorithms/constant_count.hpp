/// Loops over a few items, unrolled.
#pragma once

#include "algorithms/wide_loop.hpp"
#include <cstddef>
#include <type_traits>
#include <utility>

namespace vantel {
/// Calls `use` with the count as a constant. @param count  from `least` to `most`
/// @return what `use` returns
template <std::size_t least, std::size_t most, class Use>
[[gnu::always_inline]] inline auto with_constant(std::size_t count, Use use) {
    if constexpr (least < most)
        if (count > least) return with_constant<least + 1, most>(count, use);
    return use(std::integral_constant<std::size_t, least>());
}

/// Calls `use` with 0 to count - 1, each as a constant, which holds what they index in registers.
template <std::size_t count, class Use> [[gnu::always_inline]] inline void unrolled(Use use) {
    [&]<std::size_t... i>(std::index_sequence<i...>) VANTEL_INLINED {
        (use(std::integral_constant<std::size_t, i>()), ...);
    }
    (std::make_index_sequence<count>());
}
} // namespace vantel
