/// The order of every table that a caller gets: all combinations of levels of a property list.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <vector>

#include "interface/quantum_property.hpp"

namespace vantel {

/// All level combinations of a property list, the first property varying fastest: (0,0), (1,0), (0,1), ...
/// They are counted by arithmetic and never stored, however many there are; qudit::LevelRank numbers them.
class ValuePermutations {
public:
    /// Reads the properties' dimensions as they stand; nothing is merged. A property of an empty joint
    /// state has no levels, and an empty list no combinations.
    /// @throws std::length_error where there are 2^64 combinations or more
    explicit ValuePermutations(const std::vector<QuantumProperty*>& properties)
        : size_(properties.empty() ? 0 : 1) {
        dimensions_.reserve(properties.size());
        for (const QuantumProperty* const property : properties) {
            dimensions_.push_back(property->shared_state->state->qudit_dimension(property->index));
            if (size_ > std::numeric_limits<std::uint64_t>::max() / (dimensions_.back() | 1))
                throw std::length_error("too many value permutations");
            size_ *= dimensions_.back();
        }
    }

    [[nodiscard]] std::uint64_t size() const noexcept { return size_; }

    /// The product of the dimensions as 32-bit arithmetic leaves it, wrapped where it overflows.
    [[nodiscard]] std::int32_t wrapped_size() const noexcept { return static_cast<std::int32_t>(size_); }

    /// Of each property.
    [[nodiscard]] const std::vector<std::uint64_t>& dimensions() const noexcept { return dimensions_; }

    /// Steps `levels`, one per property and all 0 to start with, to the next combination.
    void advance(std::vector<int>& levels) const noexcept {
        for (std::size_t i = 0; i < levels.size(); ++i) {
            if (static_cast<std::uint64_t>(++levels[i]) < dimensions_[i])
                return;
            levels[i] = 0;
        }
    }

private:
    std::vector<std::uint64_t> dimensions_;
    std::uint64_t size_;
};

} // namespace vantel
