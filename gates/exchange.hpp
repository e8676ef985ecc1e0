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
    }

    /// What a word differs in, bit by bit, from itself with the two fields exchanged; 0 if they are equal.
    /// For one word or for several.
    template <class Word> [[nodiscard, gnu::always_inline]] Word difference(Word word) const noexcept {
        const Word low = (word ^ word >> distance_) & low_field_;
        return low | low << distance_;
    }

private:
    unsigned distance_;
    std::uint64_t low_field_;
};

} // namespace vantel::qudit
