/// The place of a label in a table of all combinations of some qudits' levels.
#pragma once

#include "algorithms/short_list.hpp"
#include "state/dit_array.hpp"

namespace vantel::qudit {
/// Numbers the combinations of some qudits' levels, the first qudit varying fastest. Several fields of a
/// word are ranked at once, by looking them up in tables that a call fills first.
class LevelRank {
public:
    /// @param labels          about as many labels will be ranked, so the tables stay smaller than that
    /// @param for_each_qudit  for_each_qudit(add) calls add(qudit, dimension) for each, for one perhaps repeatedly
    /// @throws std::bad_alloc
    template <class ForEach> LevelRank(SlotLayout layout, std::size_t labels, ForEach for_each_qudit)
        : bits_(layout.bits) {
        chunks_[0] = chunks_[1] = {nothing, 0, 0}; // what cheapest() takes in any case
        while (bits_ + layout.bits <= 12 && std::size_t{16} << (bits_ + layout.bits) <= labels) bits_ += layout.bits;
        std::array<Field, 64> fields{};
        for_each_qudit([&](int qudit, std::uint64_t dimension) {
            const unsigned position = layout.position(qudit);
            Field& field = fields[position];
            if (field.dimension == 0) note_chunk(position / bits_ * bits_);
            field = {field.dimension == 0 ? dimension : std::min(field.dimension, dimension), field.stride + size_};
            size_ *= dimension;
        });
        tables_.grow(count_ << bits_, 0);
        for (unsigned i = 0; i < count_; ++i) {
            chunks_[i].ranks = &tables_[std::size_t{i} << bits_];
            fill(std::span(&tables_[std::size_t{i} << bits_], std::size_t{1} << bits_), layout.bits,
                 &fields[chunks_[i].shift]);
        }
    }
    LevelRank(SlotLayout layout, std::span<const int> qudits, std::span<const std::uint64_t> dimensions,
              std::size_t labels)
        : LevelRank(layout, labels, [&](auto add) {
              for (std::size_t i = 0; i < qudits.size(); ++i) add(qudits[i], dimensions[i]);
          }) {}

    LevelRank(const LevelRank&) = delete; // chunks point into the tables
    LevelRank& operator=(const LevelRank&) = delete;
    /// How many combinations there are.
    [[nodiscard]] std::uint64_t size() const noexcept { return size_; }

    /// The label's number; size() or more where some level is beyond its dimension.
    [[nodiscard]] std::uint64_t operator()(std::uint64_t values) const noexcept {
        std::uint64_t rank = 0;
        for (unsigned i = 0; i < count_; ++i) rank += chunks_[i](values);
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
        const std::uint64_t* ranks;
        unsigned shift;
        std::uint64_t mask;

        std::uint64_t operator()(std::uint64_t values) const noexcept { return ranks[values >> shift & mask]; }
    };

    struct Field {
        std::uint64_t dimension; ///< the least that it was given; 0 of a qudit that is not ranked
        std::uint64_t stride;    ///< by how much the rank rises with each level
    };

    void note_chunk(unsigned shift) noexcept {
        for (unsigned i = 0; i < count_; ++i)
            if (chunks_[i].shift == shift) return;
        chunks_[count_++] = {nothing, shift, (std::uint64_t{1} << bits_) - 1};
    }

    /// Field by field: with a level of the next one, ranks are those without it and so much more.
    static void fill(std::span<std::uint64_t> ranks, unsigned bits, const Field* fields) noexcept {
        for (unsigned position = 0; std::size_t{1} << position < ranks.size(); position += bits) {
            const std::size_t below = std::size_t{1} << position;
            const Field& field = fields[position];
            for (std::size_t i = below; i < below << bits; ++i) {
                const std::uint64_t level = i >> position;
                const std::uint64_t added =
                    field.dimension == 0 || level < field.dimension ? level * field.stride : none;
                ranks[i] = std::min(ranks[i & (below - 1)] + added, none);
            }
        }
    }

    unsigned bits_; ///< of a chunk, a whole number of fields
    unsigned count_ = 0;
    std::uint64_t size_ = 1;
    std::array<Chunk, 64> chunks_; ///< one for each bit of a word at the most
    ShortList<std::uint64_t, 160> tables_;
};
} // namespace vantel::qudit
