#include "state/distinct_labels.hpp"
#include "state/state_factory.hpp"
#include <algorithm>
#include <complex>
#include <cstdint>
#include <memory>
#include <span>

namespace vantel::qudit {
namespace {
/// Moves the fields of a packed word of `count` slots to their places in another packing, starting at slot `offset`
/// there.
std::uint64_t repacked(std::uint64_t word, SlotLayout from, SlotLayout to, int count, int offset) {
    unsigned place = static_cast<unsigned>(offset) * to.bits;
    if (from.bits == to.bits) return word << place;
    std::uint64_t wide = 0;
    for (int slot = 0; slot < count; ++slot, word >>= from.bits, place += to.bits)
        wide |= (word & from.mask()) << place;
    return wide;
}

/// Packs entries of one state for slots `offset` and up of a build of dimension `dimension`.
class Repacking {
public:
    Repacking(const IState& state, std::uint64_t dimension, std::uint64_t offset)
        : from_(SlotLayout::of(state.dimension())), to_(SlotLayout::of(dimension)),
          count_(static_cast<int>(state.num_qudits())), offset_(static_cast<int>(offset)) {}

    PackedAmplitude operator()(const PackedAmplitude& entry) const {
        return {repacked(entry.values, from_, to_, count_, offset_),
                repacked(entry.dimensions, from_, to_, count_, offset_), entry.amplitude};
    }

private:
    SlotLayout from_;
    SlotLayout to_;
    int count_;
    int offset_;
};

bool is_distinct(const IState& state) {
    const PackedEntries entries = state.packed_amplitudes();
    if (entries.size() < 2) return true;
    const unsigned key_bits = SlotLayout::of(state.dimension()).bits * static_cast<unsigned>(state.num_qudits());
    return has_distinct_labels(entries, key_bits);
}

/// All products of two states' entries, the second's varying fastest.
class Products final : public EntrySource {
public:
    /// Products of distinct labels are distinct, and the factors are shorter lists to look through.
    Products(const IState& a, const IState& b, std::uint64_t dimension, std::size_t size)
        : EntrySource(size, is_distinct(a) && is_distinct(b)), a_(a.packed_amplitudes()), b_(b.packed_amplitudes()),
          front_(a, dimension, 0), behind_(b, dimension, a.num_qudits()) {}

    void write(std::span<PackedAmplitude> list) const noexcept override {
        if (list.empty()) return;
        // The second's entries wait, packed, where their products with the last of the first's will stand.
        const std::span<PackedAmplitude> waiting = list.last(b_.size());
        std::transform(b_.begin(), b_.end(), waiting.begin(), behind_);
        auto place = list.begin();
        for (const PackedAmplitude& entry : a_) {
            const PackedAmplitude x = front_(entry);
            for (const PackedAmplitude& y : waiting)
                *place++ = {x.values | y.values, x.dimensions | y.dimensions, x.amplitude * y.amplitude};
        }
    }

private:
    PackedEntries a_;
    PackedEntries b_;
    Repacking front_;
    Repacking behind_;
};
} // namespace

template <int MAX_DIMENSION, int MAX_NUM> std::unique_ptr<IState> tensor_product(const IState& a, const IState& b) {
    using Factory = StateFactory<MAX_DIMENSION, MAX_NUM>;
    const typename Factory::BasisConfig config{a.dimension() > b.dimension() ? a.dimension() : b.dimension(),
                                               a.num_qudits() + b.num_qudits()};
    // The factory tests both limits too, in this order, but only once the factors have been looked through.
    const std::size_t size = a.packed_amplitudes().size() * b.packed_amplitudes().size();
    if (size > MAX_STATE_ENTRIES) throw StateSizeExceeded("State size exceeded maximum allowed size");
    Factory::check_config(config);
    return Factory::make_unique_state(config, Products(a, b, config.dim, size));
}

template std::unique_ptr<IState> tensor_product<MAX_QUDIT_DIMENSION, MAX_QUDIT_NUM>(const IState& a, const IState& b);
} // namespace vantel::qudit
