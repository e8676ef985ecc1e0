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
/// They are counted and ranked by arithmetic and never stored, however many there are.
class ValuePermutations {
public:
    /// What rank() gives for levels that are no combination of the list.
    static constexpr std::uint64_t none = std::numeric_limits<std::uint64_t>::max();

    /// Reads the properties' dimensions as they stand; nothing is merged. A property of an empty joint
    /// state has no levels, and an empty list no combinations.
    /// @throws std::length_error where there are 2^64 combinations or more
    explicit ValuePermutations(const std::vector<QuantumProperty*>& properties)
        : size_(properties.empty() ? 0 : 1) {
        dimensions_.reserve(properties.size());
        for (const QuantumProperty* const property : properties) {
            dimensions_.push_back(property->shared_state->state->qudit_dimension(property->index));
            if (size_ > none / (dimensions_.back() | 1))
                throw std::length_error("too many value permutations");
            size_ *= dimensions_.back();
        }
    }

    [[nodiscard]] std::uint64_t size() const noexcept { return size_; }

    /// The product of the dimensions as 32-bit arithmetic leaves it, wrapped where it overflows.
    [[nodiscard]] std::int32_t wrapped_size() const noexcept { return static_cast<std::int32_t>(size_); }

    /// The position in the order of the combination whose i-th level is level_of(i).
    template <class LevelOf> [[nodiscard]] std::uint64_t rank(LevelOf level_of) const {
        std::uint64_t position = 0;
        std::uint64_t stride = 1;
        for (std::size_t i = 0; i < dimensions_.size(); ++i) {
            const std::uint64_t level = level_of(i);
            if (level >= dimensions_[i])
                return none;
            position += level * stride;
            stride *= dimensions_[i];
        }
        return position;
    }

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
