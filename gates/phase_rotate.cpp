#include <cmath>
#include <complex>

#include "gates/entry_group.hpp"
#include "gates/frame.hpp"
#include "gates/rephase.hpp"
#include "state/builds.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"

namespace vantel::qudit {

namespace {

/// One factor for every label, whatever its dimensions.
struct Rotation {
    static constexpr std::uint64_t field = 0;
    static constexpr std::uint64_t top = 0;
    Doubled turn;

    [[nodiscard]] const Doubled& factor(const PackedAmplitude& /*entry*/) const { return turn; }
    [[nodiscard]] Factor any_factor(const PackedAmplitude& /*entry*/) const { return Factor(turn.parts()); }
};

void rotate(std::span<PackedAmplitude> entries, SlotLayout layout, const std::vector<Predicate>& controls,
            float angle) {
    // Single precision, unlike the other phases: repeated rotations let the norm drift by as much. Meant.
    const Doubled turn(std::complex<double>(std::cos(angle), std::sin(angle)));
    rephase_selected(entries, ControlTest(controls, layout), Rotation{turn});
    guard_size(entries.size());
}

} // namespace

template <class Label> void State<Label>::phase_rotate(std::vector<Predicate> controls, float angle) {
    rotate(packed_view(amplitudes), Label::layout, controls, angle);
}

VANTEL_INSTANTIATE(void, phase_rotate, (std::vector<Predicate>, float))

} // namespace vantel::qudit
