/// Entries found by label, where labels lie close together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "state/sparse_bytes.hpp"

namespace vantel::qudit {

/// A mark and the position of an entry for each possible label.
class LabelTable {
public:
    /// @param most  no label is greater
    /// @return nothing where labels are so far apart that a table would be more work than sorting
    /// @throws std::bad_alloc
    static std::optional<LabelTable> for_labels(std::uint64_t most, std::size_t entries) {
        constexpr std::uint64_t sparsest = 16; // places an entry
        if (most / sparsest >= entries)
            return {};
        return LabelTable(most + 1);
    }

    /// The mark of a label; 0 to begin with.
    std::uint8_t& mark(std::uint64_t values) noexcept { return marks_[values]; }

    /// The position kept for a label; whatever stood in memory until one is.
    std::uint32_t& position(std::uint64_t values) noexcept { return positions_[values]; }

    /// Calls `visit(values, mark)` for each label with a mark, ascending.
    template <class Visit> void for_each_marked(Visit visit) const { marks_.for_each_set(visit); }

private:
    explicit LabelTable(std::uint64_t labels) : marks_(labels), positions_(new std::uint32_t[labels]) {}

    SparseBytes marks_;
    std::unique_ptr<std::uint32_t[]> positions_;
};

} // namespace vantel::qudit
