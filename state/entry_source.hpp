/// Entries on their way into a state.
#pragma once

#include <cstddef>
#include <span>

#include "state/basis_amplitude.hpp"

namespace vantel::qudit {

/// Packed entries that are worked out where they will stay: in the list of the state that is made of them.
class EntrySource {
public:
    /// @param distinct  whether it is known that no label stands twice
    explicit EntrySource(std::size_t size, bool distinct = false) noexcept
        : size_(size), distinct_(distinct) {}
    EntrySource(const EntrySource&) = delete;
    EntrySource& operator=(const EntrySource&) = delete;

    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] bool known_distinct() const noexcept { return distinct_; }

    /// Writes all entries, in order, packed as SlotLayout::of(dimension of the state to be) says.
    virtual void write(std::span<PackedAmplitude> list) const noexcept = 0;

protected:
    ~EntrySource() = default;

private:
    std::size_t size_;
    bool distinct_;
};

} // namespace vantel::qudit
