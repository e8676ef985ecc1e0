/// The direct form of `reduce`, for whoever knows the sums already.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "state/basis_amplitude.hpp"
#include "state/drop_threshold.hpp"
#include "state/product.hpp"

namespace vantel::qudit {

/// Produces what reduce_entries leaves of a list, order included, from the list's sums alone. In the
/// sorted list a run of equal labels ends with its sum and is a hole before it; what the drop then makes of
/// the list depends on no more than where the kept sums stand.
class DirectReduction {
public:
    /// @param most        sums that will be added at the most
    /// @param dimensions  the dimensions of every label
    DirectReduction(std::size_t most, std::uint64_t dimensions)
        : kept_(new Sum[most]), dimensions_(dimensions) {}

    /// Adds the sum of `run` equal labels. Sums come in ascending order of their labels.
    /// @return whether it is kept
    bool add(std::uint64_t values, Parts amplitude, std::size_t run) noexcept {
        length_ += run;
        if (!exceeds_threshold(amplitude))
            return false;
        kept_[size_++] = {amplitude, values, length_ - 1};
        return true;
    }

    /// How many entries stay.
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    /// Writes the size() entries in their told order: a kept sum stays where it stands in the sorted list,
    /// and each hole takes the kept sum nearest the tail.
    void write(std::span<PackedAmplitude> list) const noexcept {
        std::size_t next = 0;
        std::size_t tail = size_;
        for (std::size_t place = 0; place < list.size(); ++place) {
            const bool stays = next < tail && kept_[next].place == place;
            const Sum& sum = kept_[stays ? next++ : --tail];
            list[place].values = sum.values;
            list[place].dimensions = dimensions_;
            store(sum.amplitude, list[place].amplitude);
        }
    }

private:
    struct Sum {
        Parts amplitude;
        std::uint64_t values;
        std::size_t place; ///< in the sorted list
    };

    std::unique_ptr<Sum[]> kept_;
    std::uint64_t dimensions_;
    std::size_t size_ = 0;
    std::size_t length_ = 0; ///< of the sorted list up to now
};

} // namespace vantel::qudit
