/// The place of a label in a table of all combinations of some qudits' levels.
#pragma once

#include <algorithm>
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
        while (bits_ + layout.bits <= 12 && std::size_t{4} << bits_ < labels)
            bits_ += layout.bits;
        for (std::size_t i = 0; i < qudits.size(); ++i) {
            const unsigned position = layout.position(qudits[i]);
            Chunk& chunk = chunk_of(position);
            add_levels(chunk, position - chunk.shift, layout, dimensions[i]);
            stride_ *= dimensions[i];
        }
    }

    /// How many combinations there are.
    [[nodiscard]] std::uint64_t size() const noexcept { return stride_; }

    /// The label's number; size() or more where some level is beyond its dimension.
    [[nodiscard]] std::uint64_t operator()(std::uint64_t values) const noexcept {
        const std::uint64_t mask = (std::uint64_t{1} << bits_) - 1;
        std::uint64_t rank = 0;
        for (const Chunk& chunk : chunks_)
            rank += chunk.ranks[values >> chunk.shift & mask];
        return rank;
    }

private:
    static constexpr std::uint64_t none = std::uint64_t{1}
                                          << 48; ///< more than any size, and still to be summed

    /// What the fields of a word from `shift` on add to the rank.
    struct Chunk {
        unsigned shift;
        std::vector<std::uint64_t> ranks;
    };

    Chunk& chunk_of(unsigned position) {
        const unsigned shift = position / bits_ * bits_;
        const auto known = std::find_if(chunks_.begin(), chunks_.end(),
                                        [shift](const Chunk& chunk) { return chunk.shift == shift; });
        if (known != chunks_.end())
            return *known;
        return chunks_.emplace_back(shift, std::vector<std::uint64_t>(std::size_t{1} << bits_, 0));
    }

    void add_levels(Chunk& chunk, unsigned position, SlotLayout layout, std::uint64_t dimension) const {
        for (std::size_t fields = 0; fields < chunk.ranks.size(); ++fields) {
            const std::uint64_t level = fields >> position & layout.mask();
            chunk.ranks[fields] += level < dimension ? level * stride_ : none;
        }
    }

    unsigned bits_; ///< of a chunk, a whole number of fields
    std::uint64_t stride_ = 1;
    std::vector<Chunk> chunks_;
};

} // namespace vantel::qudit
