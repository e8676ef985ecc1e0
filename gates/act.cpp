#include "gates/kernels.hpp"
#include "state/builds.hpp"
#include "state/reduction.hpp"
#include "state/state.hpp"

namespace vantel::qudit {
namespace {
void apply(EntryList& list, SlotLayout layout, const Gate& gate) {
    switch (gate.kind) {
    case Gate::phase_rotate: return phase_rotate(list.entries(), layout, gate);
    case Gate::shift: return shift(list.entries(), layout, gate);
    case Gate::cycle: return cycle(list.entries(), layout, gate);
    case Gate::fractional_shift:
    case Gate::fractional_cycle: return fractional_step(list, layout, gate);
    case Gate::clock: return clock(list.entries(), layout, gate);
    case Gate::fractional_clock: return fractional_clock(list.entries(), layout, gate);
    case Gate::hadamard: return hadamard(list, layout, gate, +1.0);
    case Gate::inverse_hadamard: return hadamard(list, layout, gate, -1.0);
    case Gate::swap: return swap(list.entries(), layout, gate);
    case Gate::i_swap: return i_swap(list, layout, gate);
    }
}
} // namespace

template <class Label> void State<Label>::act(const Gate& gate) {
    ListOf<Label> list(amplitudes);
    apply(list, Label::layout, gate);
}

template <class Label> void State<Label>::reduce(std::vector<Entry>& list) noexcept {
    const std::size_t kept = reduce_entries(packed_view(list));
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(kept), list.end());
}

template <class Label> auto State<Label>::hadamard_no_reduce(const std::vector<Entry>& input, int target,
                                                             const std::vector<Predicate>& controls, double sign)
    -> std::vector<Entry> {
    std::vector<Entry> output;
    ListOf<Label> list(output);
    qudit::hadamard_no_reduce(packed_view(input), Label::layout, target, controls, sign, list);
    return output;
}

VANTEL_INSTANTIATE(void, act, (const Gate&))
VANTEL_INSTANTIATE(void, reduce, (std::vector<Entry>&) noexcept)
VANTEL_INSTANTIATE(auto, hadamard_no_reduce,
                   (const std::vector<Entry>&, int, const std::vector<Predicate>&, double)->std::vector<Entry>)
} // namespace vantel::qudit
