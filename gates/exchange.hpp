/// The exchange of two qudits, which `swap` and `i_swap` share.
#pragma once

#include "algorithms/lanes.hpp"
#include "state/entries.hpp"
#include <algorithm>

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

    /// The new label of a selected entry, for one or for four.
    template <class Word>
    [[gnu::always_inline]] Word operator()(Word values, Word /*dimensions*/, Word selected) const noexcept {
        return values ^ (difference(values) & selected);
    }
    /// Dimensions differ only in a label whose own ones are not those of the first entry.
    template <class Word>
    [[nodiscard, gnu::always_inline]] Word is_irregular(Word /*values*/, Word dimensions) const noexcept {
        return -difference(dimensions);
    }
    void one(PackedAmplitude& entry) const noexcept {
        entry.values ^= difference(entry.values);
        entry.dimensions ^= difference(entry.dimensions);
    }

private:
    unsigned low_;
    unsigned distance_;
    std::uint64_t mask_;
};
} // namespace vantel::qudit
