/// The place of a label in a table of all combinations of some qudits' levels.
#pragma once

#include "algorithms/short_list.hpp"
#include "state/dit_array.hpp"
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace vantel::qudit {
/// Numbers the combinations of the listed qudits' levels, the first qudit varying fastest. Several fields of a word are
/// ranked at once, by looking them up in tables that a call fills first.
class LevelRank {
public:
    /// @param dimensions  of each listed qudit; a qudit may be listed more than once
    /// @param labels      about as many labels will be ranked, so the tables stay smaller than that
    /// @throws std::bad_alloc
    LevelRank(SlotLayout layout, std::span<const int> qudits, std::span<const std::uint64_t> dimensions,
              std::size_t labels)
        : bits_(layout.bits) {
        while (bits_ + layout.bits <= 12 && std::size_t{16} << (bits_ + layout.bits) <= labels) bits_ += layout.bits;
        for (const int qudit : qudits) add_chunk(layout.position(qudit));
        tables_.grow(count_ << bits_, 0);
        for (unsigned i = 0; i < count_; ++i) chunks_[i].ranks = tables_.data() + (std::size_t{i} << bits_);
        for (std::size_t i = 0; i < qudits.size(); ++i) {
            add_levels(layout, layout.position(qudits[i]), dimensions[i]);
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
        for (unsigned i = 2; i < count_; ++i) rank += chunks_[i](values);
        return rank;
    }

    /// Calls `use` with the cheapest function that gives the same numbers.
    template <class Use> auto cheapest(Use use) const {
        if (count_ > 2) return use([this](std::uint64_t values) { return (*this)(values); });
        return use([low = chunks_[0], high = chunks_[1]](std::uint64_t values) { return low(values) + high(values); });
    }

private:
    /// More than the size of any table that fits into memory. A word has no more than ten qudits with a level above 0,
    /// so sums of this do not overflow.
    static constexpr std::uint64_t none = std::uint64_t{1} << 60;
    static constexpr std::uint64_t nothing[1] = {0};

    /// What some neighbouring fields of a word add to the rank.
    struct Chunk {
        const std::uint64_t* ranks = nothing;
        unsigned shift = 0;
        std::uint64_t mask = 0;

        std::uint64_t operator()(std::uint64_t values) const noexcept { return ranks[values >> shift & mask]; }
    };

    /// The number of the chunk in which a field stands, or of a new one.
    [[nodiscard]] unsigned chunk_at(unsigned position) const noexcept {
        unsigned i = 0;
        while (i < count_ && chunks_[i].shift != position / bits_ * bits_) ++i;
        return i;
    }

    void add_chunk(unsigned position) noexcept {
        if (chunk_at(position) == count_)
            chunks_[count_++] = {nothing, position / bits_ * bits_, (std::uint64_t{1} << bits_) - 1};
    }

    void add_levels(SlotLayout layout, unsigned position, std::uint64_t dimension) noexcept {
        const unsigned chunk = chunk_at(position);
        const std::span<std::uint64_t> ranks(&tables_[std::size_t{chunk} << bits_], std::size_t{1} << bits_);
        const unsigned shift = position - chunks_[chunk].shift;
        for (std::size_t block = 0; block < ranks.size(); block += std::size_t{1} << (shift + layout.bits))
            for (std::uint64_t level = 1; level <= layout.mask(); ++level) {
                const std::uint64_t added = level < dimension ? level * stride_ : none;
                const std::size_t begin = block + (level << shift);
                for (std::size_t fields = begin; fields < begin + (std::size_t{1} << shift); ++fields)
                    ranks[fields] = std::min(ranks[fields] + added, none);
            }
    }

    unsigned bits_; ///< of a chunk, a whole number of fields
    unsigned count_ = 0;
    std::uint64_t stride_ = 1;
    std::array<Chunk, 64> chunks_; ///< one for each bit of a word at the most
    ShortList<std::uint64_t, 160> tables_;
};
} // namespace vantel::qudit
