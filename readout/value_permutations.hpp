/// The order of every table that a caller gets: all combinations of levels of a list of qudits.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

namespace vantel::qudit {
/// All level combinations of listed qudits, the first qudit varying fastest: (0,0), (1,0), (0,1), ... They are counted
/// by arithmetic and never stored, however many there are; LevelRank numbers them.
class ValuePermutations {
public:
    /// @param dimensions  of each listed qudit; one of an empty joint state has no levels; no list, no combinations
    /// @throws std::length_error where there are 2^64 combinations or more
    explicit ValuePermutations(std::vector<std::uint64_t> dimensions = {})
        : dimensions_(std::move(dimensions)), size_(dimensions_.empty() ? 0 : 1) {
        for (const std::uint64_t dimension : dimensions_) {
            if (size_ > std::numeric_limits<std::uint64_t>::max() / (dimension | 1))
                throw std::length_error("too many value permutations");
            size_ *= dimension;
        }
    }

    [[nodiscard]] std::uint64_t size() const noexcept { return size_; }
    /// Of each listed qudit.
    [[nodiscard]] const std::vector<std::uint64_t>& dimensions() const noexcept { return dimensions_; }

    /// Steps the levels of all qudits but the first, all 0 to start with, to the next combination.
    void advance_others(std::span<int> levels) const noexcept {
        for (std::size_t i = 1; i < levels.size(); ++i) {
            if (static_cast<std::uint64_t>(++levels[i]) < dimensions_[i]) return;
            levels[i] = 0;
        }
    }

private:
    std::vector<std::uint64_t> dimensions_;
    std::uint64_t size_;
};
} // namespace vantel::qudit
