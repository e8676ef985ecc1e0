/// The place of a label in a table of all combinations of some qudits' levels.
#pragma once

#include "algorithms/short_list.hpp"
#include "state/dit_array.hpp"

namespace vantel::qudit {
/// Numbers the combinations of some qudits' levels, the qudit that was added first varying fastest. Several fields of a
/// word are ranked at once, by looking them up in tables that are filled first.
class LevelRank {
public:
    /// @param labels  about as many labels will be ranked, so the tables stay smaller than that
    LevelRank(SlotLayout layout, std::size_t labels) noexcept : layout_(layout), bits_(layout.bits) {
        while (bits_ + layout.bits <= 12 && std::size_t{16} << (bits_ + layout.bits) <= labels) bits_ += layout.bits;
    }
    /// The same, and adds the qudits. @throws std::bad_alloc
    LevelRank(SlotLayout layout, std::span<const int> qudits, std::span<const std::uint64_t> dimensions,
              std::size_t labels)
        : LevelRank(layout, labels) {
        for (std::size_t i = 0; i < qudits.size(); ++i) add(qudits[i], dimensions[i]);
    }

    LevelRank(const LevelRank&) = delete; // chunks point into the tables
    LevelRank& operator=(const LevelRank&) = delete;

    /// Adds a qudit, which may have been added before. @throws std::bad_alloc
    void add(int qudit, std::uint64_t dimension) {
        const unsigned position = layout_.position(qudit);
        const unsigned chunk = chunk_at(position / bits_ * bits_);
        const std::span<std::uint64_t> ranks(&tables_[std::size_t{chunk} << bits_], std::size_t{1} << bits_);
        const std::size_t one_level = std::size_t{1} << (position - chunks_[chunk].shift);
        for (std::size_t fields = 0; fields < ranks.size(); ++fields) {
            const std::uint64_t level = fields / one_level & layout_.mask();
            ranks[fields] = std::min(ranks[fields] + (level < dimension ? level * size_ : none), none);
        }
        size_ *= dimension;
    }

    /// How many combinations there are.
    [[nodiscard]] std::uint64_t size() const noexcept { return size_; }

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

    /// The number of the chunk that begins at a bit, a new one if there is none.
    unsigned chunk_at(unsigned shift) {
        for (unsigned i = 0; i < count_; ++i)
            if (chunks_[i].shift == shift) return i;
        tables_.grow((count_ + std::size_t{1}) << bits_, 0);
        chunks_[count_] = {nothing, shift, (std::uint64_t{1} << bits_) - 1};
        for (unsigned i = 0; i <= count_; ++i) chunks_[i].ranks = &tables_[std::size_t{i} << bits_];
        return count_++;
    }

    SlotLayout layout_;
    unsigned bits_; ///< of a chunk, a whole number of fields
    unsigned count_ = 0;
    std::uint64_t size_ = 1;
    std::array<Chunk, 64> chunks_; ///< one for each bit of a word at the most
    ShortList<std::uint64_t, 160> tables_;
};
} // namespace vantel::qudit
