#include <array>
#include <cmath>
#include <complex>

#include "gates/frame.hpp"
#include "state/builds.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"

namespace vantel::qudit {

namespace {

/// exp(i theta) with theta = (2 pi / d) steps, for a dit of dimension d.
std::complex<double> phase(std::uint64_t dimension, double steps) {
    constexpr double two_pi = 6.283185307179586;
    const double theta = two_pi / static_cast<double>(dimension) * steps;
    return {std::cos(theta), std::sin(theta)};
}

/// How many steps of the clock a level stands for.
struct WholeSteps {
    double operator()(std::uint64_t level) const { return static_cast<double>(level); }
};

/// The product is rounded to single precision before it is widened; that is meant.
struct FractionalSteps {
    float fraction;

    double operator()(std::uint64_t level) const {
        return static_cast<double>(static_cast<float>(level) * fraction);
    }
};

/// Multiplies each selected amplitude by phase(d, steps(v)), target by target.
template <class Steps>
void turn(std::span<PackedAmplitude> entries, SlotLayout layout, const std::vector<int>& targets,
          const std::vector<Predicate>& controls, Steps steps) {
    const ControlTest controls_hold(controls, layout);
    for (const int target : targets) {
        const unsigned position = layout.position(target);
        // The phases of the levels that occur, each worked out once for the dimension met first.
        std::array<std::complex<double>, 16> phases;
        std::uint32_t known = 0;
        const std::uint64_t first =
            entries.empty() ? 0 : entries.front().dimensions >> position & layout.mask();
        rephase_selected(entries, controls_hold, [&](const PackedAmplitude& entry) {
            const std::uint64_t level = entry.values >> position & layout.mask();
            const std::uint64_t top = entry.dimensions >> position & layout.mask();
            if (top != first) [[unlikely]]
                return phase(top + 1, steps(level));
            if ((known >> level & 1) == 0) [[unlikely]] {
                phases[level] = phase(top + 1, steps(level));
                known |= std::uint32_t{1} << level;
            }
            return phases[level];
        });
    }
}

} // namespace

// Neither form ends with the guard that every other gate has: a list over the limit passes. That is meant.

template <class Label> void State<Label>::clock(std::vector<int> targets, std::vector<Predicate> controls) {
    refuse_overlap(targets, controls, "Clock operation has overlapping targets and controls");
    turn(packed_view(amplitudes), Label::layout, targets, controls, WholeSteps{});
}

template <class Label>
void State<Label>::clock(std::vector<int> targets, float fraction, std::vector<Predicate> controls) {
    refuse_overlap(targets, controls, "Fractional Clock operation has overlapped targets and controls");
    turn(packed_view(amplitudes), Label::layout, targets, controls, FractionalSteps{fraction});
}

VANTEL_INSTANTIATE(void, clock, (std::vector<int>, std::vector<Predicate>))
VANTEL_INSTANTIATE(void, clock, (std::vector<int>, float, std::vector<Predicate>))

} // namespace vantel::qudit
