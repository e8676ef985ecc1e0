/// The exchange of two qudits' fields in a packed word, which `swap` and `i_swap` share.
#pragma once

#include "state/dit_array.hpp"
#include <algorithm>
#include <cstdint>

namespace vantel::qudit {
class Exchange {
public:
    Exchange(SlotLayout layout, int first, int second) noexcept
        : low_(std::min(layout.position(first), layout.position(second))),
          distance_(std::max(layout.position(first), layout.position(second)) - low_), mask_(layout.mask()) {}

    /// By how many levels the lower field is ahead of the higher one; negative numbers wrap around.
    [[nodiscard]] std::uint64_t ahead(std::uint64_t word) const noexcept {
        return (word >> low_ & mask_) - (word >> (low_ + distance_) & mask_);
    }

    /// What a word differs in, bit by bit, from itself with the two fields exchanged; 0 if they are equal. For one word
    /// or for four.
    template <class Word> [[nodiscard, gnu::always_inline]] Word difference(Word word) const noexcept {
        const Word low = (word ^ word >> distance_) & (mask_ << low_);
        return low | low << distance_;
    }

private:
    unsigned low_;
    unsigned distance_;
    std::uint64_t mask_;
};
} // namespace vantel::qudit
