/// The place of a label in a table of all combinations of some qudits' levels.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "state/dit_array.hpp"

namespace vantel::qudit {

/// Numbers the combinations of the listed qudits' levels, the first qudit varying fastest. Several fields
/// of a word are ranked at once, by looking them up in tables that a call fills first.
class LevelRank {
public:
    /// @param dimensions  of each listed qudit; a qudit may be listed more than once
    /// @param labels      about as many labels will be ranked, so the tables stay smaller than that
    /// @throws std::bad_alloc
    LevelRank(SlotLayout layout, std::span<const int> qudits, std::span<const std::uint64_t> dimensions,
              std::size_t labels)
        : bits_(layout.bits) {
        while (bits_ + layout.bits <= 12 && std::size_t{16} << (bits_ + layout.bits) <= labels)
            bits_ += layout.bits;
        tables_.reserve(std::min(qudits.size(), chunks_.size()));
        for (std::size_t i = 0; i < qudits.size(); ++i) {
            const unsigned position = layout.position(qudits[i]);
            const Chunk& chunk = chunk_of(position);
            add_levels(chunk, position - chunk.shift, layout, dimensions[i]);
            stride_ *= dimensions[i];
        }
    }

    LevelRank(const LevelRank&) = delete; // chunks point into the tables
    LevelRank& operator=(const LevelRank&) = delete;

    /// How many combinations there are.
    [[nodiscard]] std::uint64_t size() const noexcept { return stride_; }

    /// The label's number; size() or more where some level is beyond its dimension.
    [[nodiscard]] std::uint64_t operator()(std::uint64_t values) const noexcept {
        // One or two chunks are the common case; where there is no chunk, its table has one place.
        std::uint64_t rank = chunks_[0](values) + chunks_[1](values);
        for (unsigned i = 2; i < count_; ++i)
            rank += chunks_[i](values);
        return rank;
    }

    /// Calls `use` with the cheapest function that gives the same numbers.
    template <class Use> auto cheapest(Use use) const {
        if (count_ > 2)
            return use([this](std::uint64_t values) { return (*this)(values); });
        return use([low = chunks_[0], high = chunks_[1]](std::uint64_t values) {
            return low(values) + high(values);
        });
    }

private:
    /// More than the size of any table that fits into memory. A word has no more than ten qudits with a level
    /// above 0, so sums of this do not overflow.
    static constexpr std::uint64_t none = std::uint64_t{1} << 60;
    static constexpr std::uint64_t nothing[1] = {0};

    /// What some neighbouring fields of a word add to the rank.
    struct Chunk {
        const std::uint64_t* ranks = nothing;
        unsigned shift = 0;
        std::uint64_t mask = 0;

        std::uint64_t operator()(std::uint64_t values) const noexcept {
            return ranks[values >> shift & mask];
        }
    };

    const Chunk& chunk_of(unsigned position) {
        const unsigned shift = position / bits_ * bits_;
        const auto end = chunks_.begin() + count_;
        const auto known =
            std::find_if(chunks_.begin(), end, [shift](const Chunk& chunk) { return chunk.shift == shift; });
        if (known != end)
            return *known;
        tables_.emplace_back(std::size_t{1} << bits_, 0);
        return chunks_[count_++] = {tables_.back().data(), shift, (std::uint64_t{1} << bits_) - 1};
    }

    void add_levels(const Chunk& chunk, unsigned position, SlotLayout layout, std::uint64_t dimension) {
        std::vector<std::uint64_t>& ranks = tables_[static_cast<std::size_t>(&chunk - chunks_.data())];
        for (std::size_t block = 0; block < ranks.size(); block += std::size_t{1} << (position + layout.bits))
            for (std::uint64_t level = 1; level <= layout.mask(); ++level) {
                const std::uint64_t added = level < dimension ? level * stride_ : none;
                const std::size_t begin = block + (level << position);
                for (std::size_t fields = begin; fields < begin + (std::size_t{1} << position); ++fields)
                    ranks[fields] = std::min(ranks[fields] + added, none);
            }
    }

    unsigned bits_; ///< of a chunk, a whole number of fields
    unsigned count_ = 0;
    std::uint64_t stride_ = 1;
    std::array<Chunk, 64> chunks_; ///< one for each bit of a word at the most
    std::vector<std::vector<std::uint64_t>> tables_;
};

} // namespace vantel::qudit
