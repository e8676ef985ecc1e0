/// Copies of a list's entries, found by the rank of their labels among all combinations of levels.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "state/basis_amplitude.hpp"

namespace vantel::qudit {

/// Combinations are ranked as their labels order, the first qudit varying fastest, so whoever goes from rank
/// to rank meets the labels sorted.
class EntriesByRank {
public:
    /// An entry without its dimensions, which are those of all.
    struct Copy {
        std::uint64_t values;
        std::complex<double> amplitude;
    };

    /// @return nothing where the list is short, its labels are far apart, repeated or unlike in their
    ///         dimensions
    /// @throws std::bad_alloc
    static std::optional<EntriesByRank> of(std::span<const PackedAmplitude> entries, SlotLayout layout,
                                           int qudit_count);

    /// Whether every combination has an entry. Then the copies stand by rank, too.
    [[nodiscard]] bool is_complete() const noexcept { return entries_ == positions.size(); }

    [[nodiscard]] std::uint64_t dimensions() const noexcept { return dimensions_; }

    /// By how much a rank rises with the level of the qudit whose field stands at `field`.
    [[nodiscard]] std::uint64_t stride(unsigned field) const noexcept;

    /// By rank, the position of a copy plus one; 0 where there is no entry.
    std::vector<std::uint32_t> positions;
    std::unique_ptr<Copy[]> copies;

private:
    EntriesByRank(SlotLayout layout, std::uint64_t dimensions, std::size_t ranks, std::size_t entries)
        : positions(ranks, 0), copies(new Copy[entries]), layout_(layout), dimensions_(dimensions),
          entries_(entries) {}

    SlotLayout layout_;
    std::uint64_t dimensions_;
    std::size_t entries_;
};

} // namespace vantel::qudit
