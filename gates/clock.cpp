#include "algorithms/crossovers.hpp"
#include "gates/kernels.hpp"
#include "gates/rephase.hpp"
#include <array>
#include <cmath>
#include <complex>

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

/// The product is rounded to single precision before it is widened, deliberately.
struct FractionalSteps {
    float fraction;

    double operator()(std::uint64_t level) const { return static_cast<double>(static_cast<float>(level) * fraction); }
};

/// The phases of the levels of a dit in a call, each worked out once.
using Phases = std::array<Doubled, 16>;

template <class Steps> Phases phases_of(std::span<const PackedAmplitude> entries, unsigned position,
                                        std::uint64_t field, std::uint64_t dimension, Steps steps) {
    // A phase costs as much as many entries.
    std::uint32_t occurring = ~std::uint32_t{0};
    if (entries.size() < crossover::entries_for_all_phases) {
        occurring = 0;
        for (const PackedAmplitude& entry : entries)
            occurring |= std::uint32_t{1} << ((entry.values & field) >> position);
    }
    Phases phases;
    for (std::uint64_t level = 0; level <= field >> position; ++level)
        if ((occurring >> level & 1) != 0) phases[level] = Doubled(phase(dimension, steps(level)));
    return phases;
}

/// The phases of one target in a call.
template <class Steps> struct Turning {
    Steps steps;
    unsigned position;
    std::uint64_t levels; ///< mask of a level as a number
    std::uint64_t field;  ///< the same in place
    std::uint64_t top;    ///< the target's highest level in the first entry, in place
    const Phases* phases;

    [[nodiscard]] const Doubled& factor(const PackedAmplitude& entry) const { return (*phases)[level(entry)]; }
    [[nodiscard]] Factor any_factor(const PackedAmplitude& entry) const {
        const std::uint64_t own_top = entry.dimensions & field;
        return own_top == top ? Factor(factor(entry).parts())
                              : Factor(phase((own_top >> position) + 1, steps(level(entry))));
    }
    [[nodiscard]] std::uint64_t level(const PackedAmplitude& entry) const { return entry.values >> position & levels; }
};

/// Multiplies each selected amplitude by phase(d, steps(v)), target by target.
template <class Steps> void turn(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate, Steps steps) {
    if (entries.empty()) return;
    const ControlTest controls_hold(gate.controls, layout);
    for (const int target : gate.targets) {
        const unsigned position = layout.position(target);
        const std::uint64_t field = layout.field(target);
        const std::uint64_t top = entries.front().dimensions & field;
        const Phases phases = phases_of(entries, position, field, (top >> position) + 1, steps);
        rephase_selected(entries, controls_hold, Turning<Steps>{steps, position, layout.mask(), field, top, &phases});
    }
}
} // namespace

// Neither form ends with the guard that every other gate has: a list over the limit passes, deliberately.

void clock(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate) {
    refuse_overlap(gate, "Clock operation has overlapping targets and controls");
    turn(entries, layout, gate, WholeSteps{});
}

void fractional_clock(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate) {
    refuse_overlap(gate, "Fractional Clock operation has overlapped targets and controls");
    turn(entries, layout, gate, FractionalSteps{gate.number});
}
} // namespace vantel::qudit
