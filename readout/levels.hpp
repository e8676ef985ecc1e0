/// The levels of listed qudits, read out of a packed word.
#pragma once

#include <cstdint>
#include <vector>

#include "state/dit_array.hpp"

namespace vantel::qudit {

/// One level per listed qudit, in list order. Indices are trusted.
inline std::vector<int> levels_of(SlotLayout layout, std::uint64_t values, const std::vector<int>& qudits) {
    std::vector<int> levels;
    levels.reserve(qudits.size());
    for (const int qudit : qudits)
        levels.push_back(static_cast<int>(values >> layout.position(qudit) & layout.mask()));
    return levels;
}

} // namespace vantel::qudit
