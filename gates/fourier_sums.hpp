/// The Fourier transform of one qudit without its list of children.
#pragma once

#include "algorithms/lanes.hpp"
#include "algorithms/scratch.hpp"
#include "gates/frame.hpp"
#include "state/entries.hpp"
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace vantel::qudit {
/// What becomes of the groups of a list, that is of the entries that differ in the target alone. The children that come
/// to share a label are those of one group, so their sums are formed group by group, in stored order, and no child is
/// ever sorted.
class FourierSums {
public:
    /// @param most  how many groups will be added at the most
    FourierSums(std::size_t most, SlotLayout layout, int target, const PackedAmplitude& first, Scratch& scratch);

    /// What is known of the sums of a group.
    struct Group {
        std::uint64_t others;  ///< the levels of all qudits but the target
        std::uint32_t run;     ///< of how many children each sum is; 0 where only some levels have a sum, of one entry
        std::uint32_t present; ///< for such a group, a bit for each of these levels
    };

    /// How many entries the reduction leaves.
    [[nodiscard]] std::size_t kept() const noexcept { return kept_; }

    /// Writes these entries in the order that a reduction leaves. @param holes  scratch for kept() + 1 places
    void write(std::span<PackedAmplitude> list, std::uint32_t* holes) const noexcept;

    [[nodiscard]] std::uint64_t dimension() const noexcept { return dimension_; }
    [[nodiscard]] unsigned position() const noexcept { return position_; }
    /// Where the groups and the d sums of each go.
    [[nodiscard]] Group* groups() const noexcept { return groups_; }
    [[nodiscard]] Parts* sums() const noexcept { return sums_; }
    /// @param kept      how many sums stay
    /// @param same_run  whether no group is left out and all have as many children
    void set_added(std::size_t groups, std::size_t kept, bool same_run) noexcept {
        count_ = groups;
        kept_ = kept;
        same_run_ = same_run;
    }

private:
    void write_uniform(std::span<PackedAmplitude> list) const noexcept;
    template <bool all_stay> void write_each(std::span<PackedAmplitude> list, std::uint32_t* holes) const noexcept;
    template <class Visit> void for_each_stretch(Visit visit) const noexcept;

    std::uint64_t dimension_; ///< of the target
    unsigned position_;
    std::uint64_t dimensions_; ///< of every label
    Group* groups_;
    Parts* sums_;
    std::size_t count_ = 0;
    std::size_t kept_ = 0;
    bool same_run_ = false;
};

/// Works out the sums of a list for one target.
/// @return false where the list is empty, far over the limit, or so unlike what the gates leave (repeated labels,
/// labels of unequal dimensions, levels beyond them) that only the definition serves; nothing has changed
/// @throws std::bad_alloc, and nothing has changed then
bool transform_by_groups(EntryList& list, SlotLayout layout, int target, const ControlTest& controls_hold, double sign);
} // namespace vantel::qudit
