#include "algorithms/crossovers.hpp"
#include "gates/kernels.hpp"
#include "gates/rephase.hpp"

namespace vantel::qudit {
namespace {
/// exp(i theta) with theta = (2 pi / d) steps, for a dit of dimension d.
Parts phase(std::uint64_t dimension, double steps) {
    constexpr double two_pi = 6.283185307179586;
    const double theta = two_pi / static_cast<double>(dimension) * steps;
    return Parts{std::cos(theta), std::sin(theta)};
}

/// The turning of one target. @tparam Steps  steps(level) is how many steps of the clock a level stands for
template <class Steps> struct Turning {
    Steps steps;
    unsigned position;
    std::uint64_t levels;  ///< mask of a level as a number
    std::uint64_t field;   ///< the same in place
    std::uint64_t top;     ///< the target's highest level in the first entry, in place
    const Doubled* phases; ///< of the levels of such a target, each worked out once a call

    [[nodiscard]] std::uint64_t level(const PackedAmplitude& entry) const { return entry.values >> position & levels; }
    [[nodiscard]] const Doubled& factor(const PackedAmplitude& entry) const { return phases[level(entry)]; }
    [[nodiscard]] Factor any_factor(const PackedAmplitude& entry) const {
        const std::uint64_t own_top = entry.dimensions & field;
        return own_top == top ? factor_of(factor(entry))
                              : Factor(phase((own_top >> position) + 1, steps(level(entry))));
    }
};

/// Multiplies each selected amplitude by phase(d, steps(v)), target by target.
template <class Steps> void turn(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate, Steps steps) {
    if (entries.empty()) return;
    const ControlTest controls_hold(gate.controls, layout);
    for (const int target : gate.targets) {
        std::array<Doubled, 16> phases;
        const std::uint64_t field = layout.field(target);
        const Turning<Steps> turning{
            steps, layout.position(target), layout.mask(), field, entries.front().dimensions & field, phases.data()};
        // A phase costs as much as many entries.
        const bool all = entries.size() >= crossover::entries_for_all_phases;
        std::uint32_t occurring = all ? ~std::uint32_t{0} : 0;
        for (const PackedAmplitude& entry : entries.first(all ? 0 : entries.size()))
            occurring |= std::uint32_t{1} << turning.level(entry);
        for (std::uint64_t level = 0; level <= turning.levels; ++level)
            if ((occurring >> level & 1) != 0)
                phases[level] = doubled(phase((turning.top >> turning.position) + 1, steps(level)));
        rephase_selected(entries, controls_hold, turning);
    }
}
} // namespace

// Neither form ends with the guard that every other gate has: a list over the limit passes, deliberately.

void clock(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate) {
    refuse_overlap(gate, "Clock operation has overlapping targets and controls");
    turn(entries, layout, gate, [](std::uint64_t level) { return static_cast<double>(level); });
}

void fractional_clock(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate) {
    refuse_overlap(gate, "Fractional Clock operation has overlapped targets and controls");
    // The product is rounded to single precision before it is widened, deliberately.
    turn(entries, layout, gate, [fraction = gate.number](std::uint64_t level) {
        return static_cast<double>(static_cast<float>(level) * fraction);
    });
}
} // namespace vantel::qudit
