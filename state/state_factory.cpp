#include "state/state_factory.hpp"
#include "state/state.hpp"
#include <algorithm>
#include <string>

namespace vantel::qudit {
namespace {
using Factory = StateFactory<MAX_QUDIT_DIMENSION, MAX_QUDIT_NUM>;

/// The size is tested before the shape, so a list that is too long is reported as such in either case.
template <class Entries>
std::unique_ptr<IState> make_checked(Factory::BasisConfig config, std::size_t size, const Entries& entries) {
    if (size > MAX_STATE_ENTRIES) throw StateSizeExceeded("State size exceeded maximum allowed size");
    Factory::check_config(config);
    return std::unique_ptr<IState>(Factory::make<MIN_QUDIT_DIMENSION, 1, const Entries&>(config, entries));
}
} // namespace

template <int MAX_DIMENSION, int MAX_NUM> template <int D, int N, class Entries>
IState* StateFactory<MAX_DIMENSION, MAX_NUM>::make(BasisConfig config, Entries entries) {
    if constexpr (D < MAX_DIMENSION)
        if (config.dim > D) return make<D + 1, N, Entries>(config, std::forward<Entries>(entries));
    if constexpr (N < MAX_NUM)
        if (config.num_qudits > N) return make<D, N + 1, Entries>(config, std::forward<Entries>(entries));
    return new State<DitArray<D, N>>(entries);
}

template <int MAX_DIMENSION, int MAX_NUM> void StateFactory<MAX_DIMENSION, MAX_NUM>::refuse(BasisConfig config) {
    if (config.dim < MIN_QUDIT_DIMENSION) throw BadDimension("dim must be >= 2");
    if (config.dim > MAX_DIMENSION)
        throw BadDimension("dim must be <= MAX_QUDIT_DIMENSION: " + std::to_string(MAX_DIMENSION));
    if (config.num_qudits == 0) throw std::invalid_argument("num_qudits must be >= 1");
    throw BadQuditNumber("num_qudits must be <= MAX_QUDIT_NUM: " + std::to_string(MAX_NUM));
}

template <int MAX_DIMENSION, int MAX_NUM> std::unique_ptr<IState>
StateFactory<MAX_DIMENSION, MAX_NUM>::make_unique_state(BasisConfig config,
                                                        const std::vector<BasisAmplitudeData>& entries) {
    return make_checked(config, entries.size(), entries);
}

template <int MAX_DIMENSION, int MAX_NUM> std::unique_ptr<IState>
StateFactory<MAX_DIMENSION, MAX_NUM>::make_unique_state(BasisConfig config, const EntrySource& entries) {
    return make_checked(config, entries.size, entries);
}

template <int MAX_DIMENSION, int MAX_NUM>
std::pair<int, int> StateFactory<MAX_DIMENSION, MAX_NUM>::free_qudit(std::unique_ptr<IState>& state, int index) {
    const PackedEntries former = state->packed_amplitudes();
    const SlotLayout layout = SlotLayout::of(state->dimension());
    const int last = static_cast<int>(state->num_qudits()) - 1;
    const unsigned from = layout.position(last);
    const unsigned to = layout.position(index);
    // A handle that two merges have shifted can name no slot at all; nothing is overwritten then.
    const std::uint64_t freed = index >= 0 && index < last ? layout.mask() : 0;
    const auto without_qudit = [=, rest = layout.fields_below(last)](std::uint64_t word) {
        return ((word & ~(freed << to)) | (word >> from & freed) << to) & rest;
    };
    const auto write = [=](std::span<PackedAmplitude> list) {
        std::transform(former.begin(), former.end(), list.begin(), [=](const PackedAmplitude& entry) {
            return PackedAmplitude{without_qudit(entry.values), without_qudit(entry.dimensions), entry.amplitude};
        });
    };
    state = make_unique_state({state->dimension(), static_cast<std::uint64_t>(last)},
                              EntrySource{former.size(), std::ref(write)});
    return {last, index};
}

template class StateFactory<MAX_QUDIT_DIMENSION, MAX_QUDIT_NUM>;
template IState* Factory::make<MIN_QUDIT_DIMENSION, 1>(BasisConfig, std::vector<BasisAmplitudeData>);
} // namespace vantel::qudit
