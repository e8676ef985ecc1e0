/// Some bits of a word, drawn out of it into one compact key.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

namespace vantel {
/// Draws the bits that are set in `mask` together at the low end, order kept. Two words agree in these bits exactly if
/// their keys are equal, and keys order as the words' bits there do.
class GatheredBits {
public:
    explicit constexpr GatheredBits(std::uint64_t mask) noexcept {
        while (mask != 0) {
            const auto gap = static_cast<unsigned>(std::countr_zero(mask));
            const auto width = static_cast<unsigned>(std::countr_one(mask >> gap));
            const std::uint64_t run = (width == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << width) - 1);
            runs_[count_++] = {run << gap, gap - bits_};
            bits_ += width;
            mask &= ~(run << gap);
        }
    }

    [[nodiscard]] constexpr unsigned bits() const noexcept { return bits_; }

    [[nodiscard]] constexpr std::uint64_t operator()(std::uint64_t word) const noexcept {
        // One or two runs are the common case; where there is no run, its mask is empty.
        std::uint64_t key = (word & runs_[0].mask) >> runs_[0].shift | (word & runs_[1].mask) >> runs_[1].shift;
        for (unsigned run = 2; run < count_; ++run) key |= (word & runs_[run].mask) >> runs_[run].shift;
        return key;
    }

    /// Calls `use` with the cheapest function that gives the same keys.
    template <class Use> auto cheapest(Use use) const {
        if (count_ > 2) return use(*this);
        return use([low = runs_[0], high = runs_[1]](std::uint64_t word) {
            return (word & low.mask) >> low.shift | (word & high.mask) >> high.shift;
        });
    }

private:
    struct Run {
        std::uint64_t mask;
        unsigned shift;
    };

    std::array<Run, 32> runs_{}; ///< a word has no more separate runs of set bits
    unsigned count_ = 0;
    unsigned bits_ = 0;
};
} // namespace vantel
