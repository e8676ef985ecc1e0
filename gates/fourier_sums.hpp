/// The Fourier transform of one qudit without its list of children.
#pragma once

#include "algorithms/scratch.hpp"
#include "gates/frame.hpp"

namespace vantel::qudit {
/// What becomes of the groups of a list, that is of the entries that differ in the target alone. Children that come to
/// share a label are of one group, so their sums are formed group by group, in stored order, and none is ever sorted.
struct FourierSums {
    /// What is known of the sums of a group.
    struct Group {
        std::uint64_t others;  ///< the levels of all qudits but the target
        std::uint32_t run;     ///< of how many children each sum is; 0 where only some levels have a sum, of one entry
        std::uint32_t present; ///< for such a group, a bit for each of these levels
    };

    /// @param most        how many groups will be added at the most
    /// @param neighbours  whether many of them will be, so that their sums of one level are written together
    FourierSums(std::size_t most, bool neighbours, SlotLayout layout, int target, const PackedAmplitude& first,
                Scratch& scratch)
        : dimension(layout.dimension(first.dimensions, target)), position(layout.position(target)),
          dimensions(first.dimensions), stride(neighbours ? most + (most < 64 ? 0 : 4) : 1),
          group_stride(neighbours ? 1 : dimension), groups(scratch.take<Group>(most)),
          sums(scratch.take<Parts>((most + 4) * dimension)) {}
    /// Of the group that was added after `group` others.
    [[nodiscard]] Parts* sum(std::size_t group, std::uint64_t level) const noexcept {
        return sums + group * group_stride + level * stride;
    }

    /// Writes the sums that stay, `kept` of them, in the order that a reduction leaves.
    /// @param holes  scratch for kept + 1 places
    void write(std::span<PackedAmplitude> list, std::uint32_t* holes) const noexcept;

    std::uint64_t dimension; ///< of the target
    unsigned position;
    std::uint64_t dimensions; ///< of every label
    std::size_t stride;       ///< from level to level; no power of two, or the levels would contend for the cache
    std::size_t group_stride; ///< from group to group
    Group* groups;
    Parts* sums; ///< level by level, or group by group
    std::size_t count = 0;
    std::size_t kept = 0;
    bool same_run = true; ///< whether all groups have as many children, and none only some levels
    bool regular = true;  ///< whether no label is repeated and each level is one of the target's
};

/// Works out the sums of a list for one target.
/// @return false where the list is empty, far over the limit, or so unlike what the gates leave (repeated labels,
/// labels of unequal dimensions, levels beyond them) that only the definition serves; nothing has changed
/// @throws std::bad_alloc, and nothing has changed then
bool transform_by_groups(EntryList& list, SlotLayout layout, int target, const ControlTest& controls_hold, double sign);
} // namespace vantel::qudit
