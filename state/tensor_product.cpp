#include <algorithm>
#include <complex>
#include <cstdint>
#include <iterator>
#include <memory>
#include <vector>

#include "state/distinct_labels.hpp"
#include "state/state_factory.hpp"

namespace vantel::qudit {

namespace {

/// Moves the fields of a packed word of `count` slots to their places in another packing, starting at slot
/// `offset` there.
std::uint64_t repacked(std::uint64_t word, SlotLayout from, SlotLayout to, int count, int offset) {
    unsigned place = static_cast<unsigned>(offset) * to.bits;
    if (from.bits == to.bits)
        return word << place;
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
    const unsigned key_bits =
        SlotLayout::of(state.dimension()).bits * static_cast<unsigned>(state.num_qudits());
    return has_distinct_labels(state.packed_amplitudes(), key_bits);
}

} // namespace

template <int MAX_DIMENSION, int MAX_NUM>
std::unique_ptr<IState> tensor_product(const IState& a, const IState& b) {
    using Factory = StateFactory<MAX_DIMENSION, MAX_NUM>;
    const typename Factory::BasisConfig config{a.dimension() > b.dimension() ? a.dimension() : b.dimension(),
                                               a.num_qudits() + b.num_qudits()};
    // The factory tests both limits, in this order, but only once the list stands; a product that is
    // far too large is refused here before it exhausts the memory.
    const std::size_t size = a.packed_amplitudes().size() * b.packed_amplitudes().size();
    if (size > MAX_STATE_ENTRIES)
        throw StateSizeExceeded("State size exceeded maximum allowed size");
    Factory::check_config(config);

    const Repacking first(a, config.dim, 0);
    const Repacking second(b, config.dim, a.num_qudits());
    std::vector<PackedAmplitude> behind;
    behind.reserve(b.packed_amplitudes().size());
    std::transform(b.packed_amplitudes().begin(), b.packed_amplitudes().end(), std::back_inserter(behind),
                   second);
    std::vector<PackedAmplitude> product;
    product.reserve(size);
    for (const PackedAmplitude& entry : a.packed_amplitudes()) {
        const PackedAmplitude x = first(entry);
        for (const PackedAmplitude& y : behind)
            product.push_back({x.values | y.values, x.dimensions | y.dimensions, x.amplitude * y.amplitude});
    }
    // Products of distinct labels are distinct, and the factors are shorter lists to look through.
    return Factory::make_unique_state(config, PackedEntries(product, is_distinct(a) && is_distinct(b)));
}

template std::unique_ptr<IState> tensor_product<MAX_QUDIT_DIMENSION, MAX_QUDIT_NUM>(const IState& a,
                                                                                    const IState& b);

} // namespace vantel::qudit
