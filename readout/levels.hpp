/// Listed qudits in a packed word.
#pragma once

#include <cstdint>
#include <vector>

#include "state/dit_array.hpp"
#include "state/subkey.hpp"

namespace vantel::qudit {

/// One level per listed qudit, in list order. Indices are trusted.
inline std::vector<int> levels_of(SlotLayout layout, std::uint64_t values, const std::vector<int>& qudits) {
    std::vector<int> levels;
    levels.reserve(qudits.size());
    for (const int qudit : qudits)
        levels.push_back(static_cast<int>(values >> layout.position(qudit) & layout.mask()));
    return levels;
}

/// The fields of listed qudits, each of which is one of `qudit_count`. @throws what refuse_index raises
inline std::uint64_t known_fields_of(SlotLayout layout, const std::vector<int>& qudits, int qudit_count) {
    for (const int qudit : qudits)
        refuse_index(qudit, qudit_count);
    return fields_of(layout, qudits);
}

} // namespace vantel::qudit
