/// The exchange of two qudits' fields in a packed word, which `swap` and `i_swap` share.
#pragma once

#include <algorithm>
#include <cstdint>

#include "state/dit_array.hpp"

namespace vantel::qudit {

class Exchange {
public:
    Exchange(SlotLayout layout, int first, int second) noexcept {
        const unsigned low = std::min(layout.position(first), layout.position(second));
        distance_ = std::max(layout.position(first), layout.position(second)) - low;
        low_field_ = layout.mask() << low;
        both_ = 1 | std::uint64_t{1} << distance_;
    }

    /// What a word differs in, bit by bit, from itself with the two fields exchanged; 0 if they are equal.
    [[nodiscard]] std::uint64_t difference(std::uint64_t word) const noexcept {
        // The product sets the differing bits in both fields at once.
        return ((word ^ word >> distance_) & low_field_) * both_;
    }

private:
    unsigned distance_;
    std::uint64_t low_field_;
    std::uint64_t both_;
};

} // namespace vantel::qudit
