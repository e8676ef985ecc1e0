#include "state/distinct_labels.hpp"
#include "state/state_factory.hpp"
#include <algorithm>

namespace vantel::qudit {
namespace {
/// Packs entries of one state for the slots from `offset` on of a build of dimension `dimension`.
class Repacking {
public:
    Repacking(const IState& state, std::uint64_t dimension, std::uint64_t offset)
        : from_(SlotLayout::of(state.dimension())), to_(SlotLayout::of(dimension)),
          count_(static_cast<int>(state.num_qudits())), place_(static_cast<unsigned>(offset) * to_.bits) {}

    PackedAmplitude operator()(const PackedAmplitude& entry) const {
        return {repacked(entry.values), repacked(entry.dimensions), entry.amplitude};
    }

private:
    [[nodiscard]] std::uint64_t repacked(std::uint64_t word) const {
        if (from_.bits == to_.bits) return word << place_;
        std::uint64_t wide = 0;
        for (int slot = 0; slot < count_; ++slot, word >>= from_.bits)
            wide |= (word & from_.mask()) << (place_ + static_cast<unsigned>(slot) * to_.bits);
        return wide;
    }

    SlotLayout from_;
    SlotLayout to_;
    int count_;
    unsigned place_; ///< of the first field
};

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

    const Repacking in_front(a, config.dim, 0);
    const Repacking behind(b, config.dim, a.num_qudits());
    const auto write = [&](std::span<PackedAmplitude> list) {
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
