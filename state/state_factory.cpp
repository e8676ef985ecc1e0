#include "state/state_factory.hpp"

#include <stdexcept>
#include <string>

#include "state/state.hpp"
#include "state/subkey.hpp"

namespace vantel::qudit {

namespace {

using Factory = StateFactory<MAX_QUDIT_DIMENSION, MAX_QUDIT_NUM>;

/// The size is tested before the shape, so a list that is too long is reported as such in either case.
template <class Entries>
std::unique_ptr<IState> make_checked(Factory::BasisConfig config, const Entries& entries) {
    if (entries.size() > MAX_STATE_ENTRIES)
        throw StateSizeExceeded("State size exceeded maximum allowed size");
    Factory::check_config(config);
    return std::unique_ptr<IState>(Factory::make<MIN_QUDIT_DIMENSION, 1, const Entries&>(config, entries));
}

} // namespace

template <int MAX_DIMENSION, int MAX_NUM>
template <int D, int N, class Entries>
IState* StateFactory<MAX_DIMENSION, MAX_NUM>::make(BasisConfig config, Entries entries) {
    if constexpr (D < MAX_DIMENSION)
        if (config.dim > D)
            return make<D + 1, N, Entries>(config, std::forward<Entries>(entries));
    if constexpr (N < MAX_NUM)
        if (config.num_qudits > N)
            return make<D, N + 1, Entries>(config, std::forward<Entries>(entries));
    return new State<DitArray<D, N>>(entries);
}

template <int MAX_DIMENSION, int MAX_NUM>
void StateFactory<MAX_DIMENSION, MAX_NUM>::check_config(BasisConfig config) {
    if (config.dim < MIN_QUDIT_DIMENSION)
        throw BadDimension("dim must be >= 2");
    if (config.dim > MAX_DIMENSION)
        throw BadDimension("dim must be <= MAX_QUDIT_DIMENSION: " + std::to_string(MAX_DIMENSION));
    if (config.num_qudits == 0)
        throw std::invalid_argument("num_qudits must be >= 1");
    if (config.num_qudits > MAX_NUM)
        throw BadQuditNumber("num_qudits must be <= MAX_QUDIT_NUM: " + std::to_string(MAX_NUM));
}

template <int MAX_DIMENSION, int MAX_NUM>
std::unique_ptr<IState>
StateFactory<MAX_DIMENSION, MAX_NUM>::make_unique_state(BasisConfig config,
                                                        const std::vector<BasisAmplitudeData>& entries) {
    return make_checked(config, entries);
}

template <int MAX_DIMENSION, int MAX_NUM>
std::unique_ptr<IState> StateFactory<MAX_DIMENSION, MAX_NUM>::make_unique_state(BasisConfig config,
                                                                                PackedEntries entries) {
    return make_checked(config, entries);
}

template <int MAX_DIMENSION, int MAX_NUM>
std::pair<int, int> StateFactory<MAX_DIMENSION, MAX_NUM>::free_qudit(std::unique_ptr<IState>& state,
                                                                     int index) {
    const PackedEntries former = state->packed_amplitudes();
    std::vector<PackedAmplitude> entries(former.begin(), former.end());
    const int last = static_cast<int>(state->num_qudits()) - 1;
    const SlotLayout layout = SlotLayout::of(state->dimension());
    const std::uint64_t last_field = layout.mask() << layout.position(last);
    // A handle that two merges have shifted can name no slot at all; nothing is overwritten then.
    const bool moves = index >= 0 && index < last;
    const auto without_qudit = [&](std::uint64_t word) {
        const std::uint64_t moved = (word & last_field) >> layout.position(last);
        if (moves)
            word = (word & ~(layout.mask() << layout.position(index))) | moved << layout.position(index);
        return word & all_fields(layout, last);
    };
    for (PackedAmplitude& entry : entries) {
        entry.values = without_qudit(entry.values);
        entry.dimensions = without_qudit(entry.dimensions);
    }
    state = make_unique_state({state->dimension(), static_cast<std::uint64_t>(last)}, PackedEntries(entries));
    return {last, index};
}

template class StateFactory<MAX_QUDIT_DIMENSION, MAX_QUDIT_NUM>;
template IState* Factory::make<MIN_QUDIT_DIMENSION, 1>(BasisConfig, std::vector<BasisAmplitudeData>);

} // namespace vantel::qudit
