/// The entries of a list grouped by all of their label but one qudit's level.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "state/basis_amplitude.hpp"

namespace vantel::qudit {

class FieldGroups {
public:
    struct Group {
        std::uint64_t rest; ///< the label's levels with the field left out and what is above it moved down
        const std::uint32_t* members; ///< positions in the list, ascending
        std::uint32_t size;
    };

    /// Groups fewer than 2^24 entries by their levels without the field at `position`, `bits` wide. Linear
    /// in the entries.
    /// @param levels  no entry has this level or a higher one in the field
    /// @throws std::bad_alloc
    FieldGroups(std::span<const PackedAmplitude> entries, unsigned position, unsigned bits,
                std::uint64_t levels);

    /// The groups, ascending by `rest`.
    [[nodiscard]] std::span<const Group> groups() const noexcept { return groups_; }

private:
    [[nodiscard]] std::uint64_t rest_of(std::uint64_t values) const noexcept {
        return (values & low_) | (values >> bits_ & ~low_);
    }

    bool group_by_table(std::span<const PackedAmplitude> entries, std::uint64_t range, std::uint64_t levels);
    void group_by_sorting(std::span<const PackedAmplitude> entries);

    std::uint64_t low_; ///< the bits below the field
    unsigned bits_;
    std::vector<Group> groups_;
    std::unique_ptr<std::uint32_t[]> members_;
};

} // namespace vantel::qudit
