/// The view under which all ninety builds share one kernel.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "state/basis_amplitude.hpp"

namespace vantel::qudit {

/// The entries of any build as packed entries, in place. All builds lay an entry out alike and differ only
/// in where its fields stand, which a SlotLayout says; so what works on entries is compiled once and not
/// ninety times. PackedAmplitude is declared so that it may alias them.
template <class Label> std::span<PackedAmplitude> packed_view(std::vector<BasisAmplitude<Label>>& entries) {
    using Entry = BasisAmplitude<Label>;
    static_assert(sizeof(Entry) == sizeof(PackedAmplitude) && alignof(Entry) == alignof(PackedAmplitude));
    static_assert(offsetof(Label, values) == offsetof(PackedAmplitude, values));
    static_assert(offsetof(Label, dimensions) == offsetof(PackedAmplitude, dimensions));
    static_assert(offsetof(Entry, amplitude) == offsetof(PackedAmplitude, amplitude));
    return {reinterpret_cast<PackedAmplitude*>(entries.data()), entries.size()};
}

template <class Label>
std::span<const PackedAmplitude> packed_view(const std::vector<BasisAmplitude<Label>>& entries) {
    return packed_view(const_cast<std::vector<BasisAmplitude<Label>>&>(entries));
}

} // namespace vantel::qudit
