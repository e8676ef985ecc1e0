#include "gates/frame.hpp"
#include "state/builds.hpp"
#include "state/state.hpp"

namespace vantel::qudit {

// The two gates are the clock seen from the Fourier basis, and only the sign of the fraction tells them
// apart. The three steps are whole gates: where the first leaves a list over the limit, the state stays in
// the Fourier basis. That is meant.

template <class Label>
void State<Label>::shift(std::vector<int> targets, float fraction, std::vector<Predicate> controls) {
    refuse_overlap(targets, controls, "Fractional shift operation has overlap targets and controls");
    hadamard(targets, controls);
    clock(targets, fraction, controls);
    inverse_hadamard(std::move(targets), std::move(controls));
    guard_size(amplitudes.size());
}

template <class Label>
void State<Label>::cycle(std::vector<int> targets, float fraction, std::vector<Predicate> controls) {
    refuse_overlap(targets, controls, "Fractional cycle operation has overlapping targets and controls");
    hadamard(targets, controls);
    clock(targets, -fraction, controls);
    inverse_hadamard(std::move(targets), std::move(controls));
    guard_size(amplitudes.size());
}

VANTEL_INSTANTIATE(void, shift, (std::vector<int>, float, std::vector<Predicate>))
VANTEL_INSTANTIATE(void, cycle, (std::vector<int>, float, std::vector<Predicate>))

} // namespace vantel::qudit
