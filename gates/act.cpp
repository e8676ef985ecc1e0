#include "gates/kernels.hpp"
#include "state/builds.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"

namespace vantel::qudit {

template <class Label> void State<Label>::act(const Gate& gate) {
    const std::span<PackedAmplitude> entries = packed_view(amplitudes);
    switch (gate.kind) {
    case Gate::phase_rotate:
        return rotate(entries, Label::layout, gate);
    case Gate::shift:
        return lower_levels(entries, Label::layout, gate);
    case Gate::cycle:
        return raise_levels(entries, Label::layout, gate);
    case Gate::fractional_shift:
    case Gate::fractional_cycle:
        return step_in_part(gate);
    case Gate::clock:
        return turn_levels(entries, Label::layout, gate);
    case Gate::fractional_clock:
        return turn_levels_in_part(entries, Label::layout, gate);
    case Gate::hadamard:
        return transform(gate, +1.0);
    case Gate::inverse_hadamard:
        return transform(gate, -1.0);
    case Gate::swap:
        return exchange(entries, Label::layout, gate);
    case Gate::i_swap:
        return exchange_in_part(gate);
    }
}

VANTEL_INSTANTIATE(void, act, (const Gate&))

} // namespace vantel::qudit
