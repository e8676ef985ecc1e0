#include <complex>
#include <cstdint>
#include <memory>
#include <vector>

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

/// Packs the state's entries for slots `offset` and up of a build of dimension `dimension`.
void repack(std::vector<PackedAmplitude>& entries, const IState& state, std::uint64_t dimension, int offset) {
    const SlotLayout from = SlotLayout::of(state.dimension());
    const SlotLayout to = SlotLayout::of(dimension);
    const int count = static_cast<int>(state.num_qudits());
    for (PackedAmplitude& entry : entries) {
        entry.values = repacked(entry.values, from, to, count, offset);
        entry.dimensions = repacked(entry.dimensions, from, to, count, offset);
    }
}

} // namespace

template <int MAX_DIMENSION, int MAX_NUM>
std::unique_ptr<IState> tensor_product(const IState& a, const IState& b) {
    using Factory = StateFactory<MAX_DIMENSION, MAX_NUM>;
    const typename Factory::BasisConfig config{a.dimension() > b.dimension() ? a.dimension() : b.dimension(),
                                               a.num_qudits() + b.num_qudits()};
    // The factory tests both limits, in this order, but only once the list stands; a product that is
    // far too large is refused here before it exhausts the memory.
    std::vector<PackedAmplitude> first = a.packed_amplitudes();
    std::vector<PackedAmplitude> second = b.packed_amplitudes();
    if (first.size() * second.size() > MAX_STATE_ENTRIES)
        throw StateSizeExceeded("State size exceeded maximum allowed size");
    Factory::check_config(config);
    repack(first, a, config.dim, 0);
    repack(second, b, config.dim, static_cast<int>(a.num_qudits()));

    std::vector<PackedAmplitude> product;
    product.reserve(first.size() * second.size());
    for (const PackedAmplitude& x : first)
        for (const PackedAmplitude& y : second)
            product.push_back({x.values | y.values, x.dimensions | y.dimensions, x.amplitude * y.amplitude});
    return Factory::make_unique_state(config, product);
}

template std::unique_ptr<IState> tensor_product<MAX_QUDIT_DIMENSION, MAX_QUDIT_NUM>(const IState& a,
                                                                                    const IState& b);

} // namespace vantel::qudit
