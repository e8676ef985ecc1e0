/// The exchange of two qudits' fields in a packed word, which `swap` and `i_swap` share.
#pragma once

#include <cstdint>

#include "state/dit_array.hpp"

namespace vantel::qudit {

class Exchange {
public:
    Exchange(SlotLayout layout, int first, int second) noexcept
        : first_(layout.position(first)), second_(layout.position(second)), field_(layout.mask()) {}

    /// What a word differs in, bit by bit, from itself with the two fields exchanged; 0 if they are equal.
    [[nodiscard]] std::uint64_t difference(std::uint64_t word) const noexcept {
        const std::uint64_t differing = (word >> first_ ^ word >> second_) & field_;
        return differing << first_ | differing << second_;
    }

private:
    unsigned first_;
    unsigned second_;
    std::uint64_t field_;
};

} // namespace vantel::qudit
