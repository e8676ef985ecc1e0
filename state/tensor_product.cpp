#include "state/distinct_labels.hpp"
#include "state/state_factory.hpp"

namespace vantel::qudit {
namespace {
/// What packs the entries of a state for the slots from `offset` on of a build of dimension `dimension`.
auto repacking(const IState& state, std::uint64_t dimension, std::uint64_t offset) {
    const SlotLayout from = SlotLayout::of(state.dimension());
    const SlotLayout to = SlotLayout::of(dimension);
    const auto repacked = [from, to, count = state.num_qudits(), place = offset * to.bits](std::uint64_t word) {
        if (from.bits == to.bits) return word << place;
        std::uint64_t wide = 0;
        for (std::uint64_t slot = 0; slot < count; ++slot, word >>= from.bits)
            wide |= (word & from.mask()) << (place + slot * to.bits);
        return wide;
    };
    return [repacked](const PackedAmplitude& entry) {
        return PackedAmplitude{repacked(entry.values), repacked(entry.dimensions), entry.amplitude};
    };
}

bool is_distinct(const IState& state) {
    const PackedEntries entries = state.packed_amplitudes();
    if (entries.size() < 2) return true;
    const unsigned bits = SlotLayout::of(state.dimension()).bits;
    return has_distinct_labels(entries, bits * static_cast<unsigned>(state.num_qudits()));
}
} // namespace

template <int MAX_DIMENSION, int MAX_NUM> std::unique_ptr<IState> tensor_product(const IState& a, const IState& b) {
    using Factory = StateFactory<MAX_DIMENSION, MAX_NUM>;
    const typename Factory::BasisConfig config{std::max(a.dimension(), b.dimension()), a.num_qudits() + b.num_qudits()};
    const PackedEntries of_a = a.packed_amplitudes();
    const PackedEntries of_b = b.packed_amplitudes();
    // The factory tests both limits too, in this order, but only once the factors have been looked through.
    const std::size_t size = of_a.size() * of_b.size();
    if (size > MAX_STATE_ENTRIES) throw StateSizeExceeded("State size exceeded maximum allowed size");
    Factory::check_config(config);
    const auto in_front = repacking(a, config.dim, 0);
    const auto behind = repacking(b, config.dim, a.num_qudits());
    const auto write = [=](std::span<PackedAmplitude> list) {
        if (list.empty()) return;
        // The second's entries wait, packed, where their products with the last of the first's will stand.
        const std::span<PackedAmplitude> waiting = list.last(of_b.size());
        std::transform(of_b.begin(), of_b.end(), waiting.begin(), behind);
        auto place = list.begin();
        for (const PackedAmplitude& entry : of_a) {
            const PackedAmplitude x = in_front(entry);
            for (const PackedAmplitude& y : waiting)
                *place++ = {x.values | y.values, x.dimensions | y.dimensions, x.amplitude * y.amplitude};
        }
    };
    // Products of distinct labels are distinct, and the factors are shorter lists to look through.
    return Factory::make_unique_state(config, EntrySource{size, std::ref(write), is_distinct(a) && is_distinct(b)});
}

template std::unique_ptr<IState> tensor_product<MAX_QUDIT_DIMENSION, MAX_QUDIT_NUM>(const IState& a, const IState& b);
} // namespace vantel::qudit
