/// Which entries of a list pair in a reduced density matrix.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "state/basis_amplitude.hpp"
#include "state/field_groups.hpp"

namespace vantel::qudit {

/// The entries that pair with each: those with the same levels in the traced fields, itself included, in
/// stored order. Only such pairs contribute.
class Partners {
    using Members = std::span<const std::uint32_t>;

public:
    /// @param most  how many partners an entry has, unless labels are repeated
    /// @throws std::bad_alloc
    Partners(std::span<const PackedAmplitude> entries, std::uint64_t traced, std::uint64_t most);

    /// Which are good as long as the partners are.
    class Lists {
    public:
        Lists(const std::uint32_t* group_of, const Members* groups) noexcept
            : group_of_(group_of), groups_(groups) {}

        /// Calls `visit(partner)` for each partner of an entry.
        template <class Visit> void for_each_of(std::uint32_t entry, Visit visit) const {
            const std::uint32_t group = group_of_[entry];
            if (group == alone) {
                visit(entry);
                return;
            }
            for (const std::uint32_t partner : groups_[group - 1])
                visit(partner);
        }

    private:
        const std::uint32_t* group_of_;
        const Members* groups_;
    };

    [[nodiscard]] Lists lists() const noexcept { return {group_of_.data(), groups_.get()}; }

private:
    static constexpr std::uint32_t alone = 0;

    template <class Own> void number(const FieldGroups& groups, Own own);

    std::vector<std::uint32_t> group_of_; ///< of each entry, counted from 1
    std::unique_ptr<Members[]> groups_;   ///< of more than one
    // Where the members of groups_ are kept:
    std::optional<FieldGroups> of_all_;
    std::unique_ptr<std::uint32_t[]> members_;
};

} // namespace vantel::qudit
