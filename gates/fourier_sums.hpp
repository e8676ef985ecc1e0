/// The Fourier transform of one qudit without its list of children.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "gates/frame.hpp"
#include "state/basis_amplitude.hpp"
#include "state/product.hpp"

namespace vantel::qudit {

/// One pass of the transform for one target together with the reduction that follows it. The children that
/// come to share a label are those of the entries that differ in the target alone, so their sums are formed
/// group by group, in stored order, and no child is ever sorted.
class FourierSums {
public:
    /// Works out the sums.
    /// @return nothing where the list is empty, far over the limit, or so unlike what the gates leave (labels
    ///         of unequal dimensions, levels beyond them) that only the literal form serves
    /// @throws std::bad_alloc
    static std::optional<FourierSums> of(std::span<const PackedAmplitude> entries, SlotLayout layout,
                                         int target, const ControlTest& controls_hold, double sign);

    /// How many entries the reduction leaves.
    [[nodiscard]] std::size_t kept() const noexcept { return kept_; }

    /// Writes these entries in their told order.
    void write(std::span<PackedAmplitude> list) const noexcept;

private:
    class Builder;

    /// The same for a list that is not empty; nothing where some combination of levels is missing or occurs
    /// more than once.
    static std::optional<FourierSums> of_complete(std::span<const PackedAmplitude> entries, SlotLayout layout,
                                                  int target, const ControlTest& controls_hold, double sign);

    FourierSums(std::size_t most_groups, std::uint64_t dimension, unsigned position,
                std::uint64_t dimensions);

    /// Whether every sum is of as many children and stays.
    [[nodiscard]] bool is_uniform() const noexcept { return run_of_all_ != 0 && is_full(); }
    /// Whether every sum is of one child or of two and stays.
    [[nodiscard]] bool is_paired() const noexcept { return complete_ && dimension_ == 2 && is_full(); }
    [[nodiscard]] bool is_full() const noexcept { return kept_ == groups_ * dimension_; }
    void prepare_writing();
    template <class Visit> void for_each_stretch(Visit visit) const noexcept;

    std::uint64_t dimension_; ///< of the target
    unsigned position_;
    std::uint64_t dimensions_; ///< of every label
    std::size_t kept_ = 0;
    std::size_t groups_ = 0;
    bool complete_ = false;        ///< whether the list has every combination of levels once
    std::uint32_t run_of_all_ = 0; ///< of how many children every sum is; 0 if their numbers differ
    std::unique_ptr<std::uint64_t[]> others_;   ///< of each group, the levels of all qudits but the target
    std::unique_ptr<std::uint32_t[]> runs_;     ///< of how many children each sum of a group is; 0 where
                                                ///< that differs, as the controls leave the group out
    std::unique_ptr<Parts[]> sums_;             ///< d of each group
    std::unique_ptr<std::uint32_t[]> holes_;    ///< scratch of write(); none where all sums have one order
    std::unique_ptr<std::uint32_t[]> own_runs_; ///< of how many entries each sum of such a group is
};

} // namespace vantel::qudit
