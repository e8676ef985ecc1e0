/// The fields of some qudits, drawn out of a level word into one compact key.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <vector>

#include "state/dit_array.hpp"

namespace vantel::qudit {

/// The bits of a level word in which the listed qudits' levels stand.
inline std::uint64_t fields_of(SlotLayout layout, const std::vector<int>& qudits) {
    std::uint64_t fields = 0;
    for (const int qudit : qudits)
        fields |= layout.mask() << layout.position(qudit);
    return fields;
}

/// The bits of a level word that N slots use.
constexpr std::uint64_t all_fields(SlotLayout layout, int qudit_count) noexcept {
    return (std::uint64_t{1} << static_cast<unsigned>(qudit_count) * layout.bits) - 1;
}

/// Draws the bits that are set in `fields` together at the low end, order kept. Two words agree in `fields`
/// exactly if their subkeys are equal, and subkeys order as the words' levels there do.
class Subkey {
public:
    explicit constexpr Subkey(std::uint64_t fields) noexcept {
        while (fields != 0) {
            const auto gap = static_cast<unsigned>(std::countr_zero(fields));
            const auto width = static_cast<unsigned>(std::countr_one(fields >> gap));
            const std::uint64_t run = (width == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << width) - 1);
            runs_[count_++] = {run << gap, gap - bits_};
            bits_ += width;
            fields &= ~(run << gap);
        }
    }

    [[nodiscard]] constexpr unsigned bits() const noexcept { return bits_; }

    [[nodiscard]] constexpr std::uint64_t operator()(std::uint64_t values) const noexcept {
        // One or two runs are the common case; where there is no run, its mask is empty.
        std::uint64_t key =
            (values & runs_[0].mask) >> runs_[0].shift | (values & runs_[1].mask) >> runs_[1].shift;
        for (unsigned run = 2; run < count_; ++run)
            key |= (values & runs_[run].mask) >> runs_[run].shift;
        return key;
    }

    /// Calls `use` with the cheapest function that gives the same keys.
    template <class Use> auto cheapest(Use use) const {
        if (count_ > 2)
            return use(*this);
        return use([low = runs_[0], high = runs_[1]](std::uint64_t values) {
            return (values & low.mask) >> low.shift | (values & high.mask) >> high.shift;
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

} // namespace vantel::qudit
