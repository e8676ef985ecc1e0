/// The entries of a sparse state, in the forms they take.
#pragma once

#include "state/dit_array.hpp"
#include <complex>
#include <cstddef>
#include <functional>

namespace vantel::qudit {
/// One entry of a State: a basis state and its amplitude.
template <class Label> struct BasisAmplitude {
    Label label;
    std::complex<double> amplitude;
};

/// The unpacked entry, which needs no build parameters.
struct BasisAmplitudeData {
    std::vector<Dit> dits; ///< one per qudit, in qudit order
    std::complex<double> amplitude;
};

/// The packed entry without its build in the type: the label's two words, packed as SlotLayout::of(dimension of the
/// state) says. Merges, releases, gates and readouts work on this form; see packed_view for why it may alias.
struct [[gnu::may_alias]] PackedAmplitude {
    std::uint64_t values;
    std::uint64_t dimensions;
    std::complex<double> amplitude;
};

/// A list of packed entries. It owns nothing.
using PackedEntries = std::span<const PackedAmplitude>;

/// Writes dits[i] to slot i, under the checks of DitProxy. A shorter list leaves the other slots at level 0 of
/// dimension 1; elements beyond slot N - 1 have no place in the label, but are held to the same checks.
template <int D, int N>
BasisAmplitude<DitArray<D, N>> make_basis_amplitude(const std::vector<Dit>& dits, std::complex<double> amplitude) {
    BasisAmplitude<DitArray<D, N>> entry{{}, amplitude};
    DitArray<D, N> beyond;
    for (std::size_t i = 0; i < dits.size(); ++i) (i < N ? entry.label[static_cast<int>(i)] : beyond[0]) = dits[i];
    return entry;
}

/// The entries of any build as packed entries, in place. All builds lay an entry out alike and differ only in where its
/// fields stand, which a SlotLayout says; so what works on entries is compiled once and not ninety times.
/// PackedAmplitude is declared so that it may alias them.
template <class Label> std::span<PackedAmplitude> packed_view(std::vector<BasisAmplitude<Label>>& entries) {
    using Entry = BasisAmplitude<Label>;
    static_assert(sizeof(Entry) == sizeof(PackedAmplitude) && alignof(Entry) == alignof(PackedAmplitude));
    static_assert(offsetof(Label, values) == offsetof(PackedAmplitude, values));
    static_assert(offsetof(Label, dimensions) == offsetof(PackedAmplitude, dimensions));
    static_assert(offsetof(Entry, amplitude) == offsetof(PackedAmplitude, amplitude));
    return {reinterpret_cast<PackedAmplitude*>(entries.data()), entries.size()};
}

template <class Label> PackedEntries packed_view(const std::vector<BasisAmplitude<Label>>& entries) {
    return packed_view(const_cast<std::vector<BasisAmplitude<Label>>&>(entries));
}

/// A state's list without its build in the type, for kernels that change its length.
class EntryList {
public:
    EntryList(const EntryList&) = delete;
    EntryList& operator=(const EntryList&) = delete;
    /// Good until the next resize().
    [[nodiscard]] std::span<PackedAmplitude> entries() const noexcept { return entries_; }
    /// Keeps the entries that stand before `size`. What the others hold is unspecified.
    /// @throws std::bad_alloc, and nothing has changed then
    virtual void resize(std::size_t size) = 0;
    /// Scratch memory that the list owns, `bytes` or more: good as long as the list gets no longer than `longest`. It
    /// stays with the list, for the gates to come. The list may move.
    /// @throws std::bad_alloc, and nothing has changed then
    virtual std::span<std::byte> spare_behind(std::size_t longest, std::size_t bytes) = 0;

protected:
    explicit EntryList(std::span<PackedAmplitude> entries) noexcept : entries_(entries) {}
    ~EntryList() = default;

    std::span<PackedAmplitude> entries_;
};

template <class Label> class ListOf final : public EntryList {
public:
    explicit ListOf(std::vector<BasisAmplitude<Label>>& list) : EntryList(packed_view(list)), list_(list) {}

    void resize(std::size_t size) override {
        list_.resize(size);
        entries_ = packed_view(list_);
    }

    std::span<std::byte> spare_behind(std::size_t longest, std::size_t bytes) override {
        list_.reserve(longest + bytes / sizeof(PackedAmplitude) + 1);
        entries_ = packed_view(list_);
        return {reinterpret_cast<std::byte*>(list_.data() + longest),
                (list_.capacity() - longest) * sizeof(PackedAmplitude)};
    }

private:
    std::vector<BasisAmplitude<Label>>& list_;
};

/// Packed entries that are worked out where they will stay: in the list of the state that is made of them.
struct EntrySource {
    std::size_t size;
    /// Writes all entries, in order, packed as SlotLayout::of(dimension of the state to be) says. Raises nothing.
    std::function<void(std::span<PackedAmplitude> list)> write;
    bool distinct = false; ///< whether it is known that no label stands twice
};
} // namespace vantel::qudit
