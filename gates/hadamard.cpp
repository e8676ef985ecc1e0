#include "algorithms/crossovers.hpp"
#include "gates/fourier_factors.hpp"
#include "gates/fourier_sums.hpp"
#include "gates/frame.hpp"
#include "gates/kernels.hpp"
#include "state/reduction.hpp"

namespace vantel::qudit {
namespace {
std::uint64_t dimension_of(PackedEntries entries, SlotLayout layout, int target) {
    return entries.empty() ? 0 : layout.dimension(entries.front().dimensions, target);
}

/// One pass of the gate as it is defined: each selected entry becomes one child for each level k of the target,
/// ascending, and every other one stays.
/// @param output  room for all of them. @return their end
PackedAmplitude* branch(PackedEntries input, SlotLayout layout, int target, const ControlTest& controls_hold,
                        double sign, PackedAmplitude* output) {
    FourierFactors factors(dimension_of(input, layout, target), sign);
    for (const PackedAmplitude& entry : input) {
        if (!controls_hold(entry.values)) {
            *output++ = entry;
            continue;
        }
        const std::uint64_t others = entry.values & ~layout.field(target);
        const FourierFactors::Row& row = factors.from(layout.level(entry.values, target));
        for (std::uint64_t k = 0; k < factors.dimension(); ++k, ++output) {
            // By two whole registers, since entries are read by such when they are sorted.
            *reinterpret_cast<StoredWords*>(output) = Words{others | k << layout.position(target), entry.dimensions};
            store(row[k](parts_of(entry.amplitude)), output->amplitude);
        }
    }
    return output;
}

/// The same into memory of its own.
std::vector<PackedAmplitude> branched(PackedEntries input, SlotLayout layout, int target,
                                      const ControlTest& controls_hold, double sign) {
    const auto selected = std::count_if(input.begin(), input.end(),
                                        [&](const PackedAmplitude& entry) { return controls_hold(entry.values); });
    const std::uint64_t dimension = dimension_of(input, layout, target);
    std::vector<PackedAmplitude> children(input.size() + static_cast<std::size_t>(selected) * (dimension - 1));
    branch(input, layout, target, controls_hold, sign, children.data());
    return children;
}

void replace(EntryList& list, PackedEntries kept) {
    list.resize(kept.size());
    std::copy(kept.begin(), kept.end(), list.entries().begin());
}

/// For so few children that they need no memory. Nothing clears theirs first.
void transform_few(EntryList& list, SlotLayout layout, int target, const ControlTest& controls_hold, double sign) {
    alignas(PackedAmplitude) std::byte memory[crossover::children_on_stack * sizeof(PackedAmplitude)];
    PackedAmplitude* const children = reinterpret_cast<PackedAmplitude*>(memory);
    PackedAmplitude* const end = branch(list.entries(), layout, target, controls_hold, sign, children);
    replace(list, {children, reduce_entries({children, end})});
}
} // namespace

void hadamard(EntryList& list, SlotLayout layout, const Gate& gate, double sign) {
    refuse_overlap(gate, sign > 0 ? "Hadamard operation has overlapping targets and controls"
                                  : "inverse-Hadamard operation has overlapping targets and controls");
    const ControlTest controls_hold(gate.controls, layout);
    if (gate.targets.size() == 1) {
        const PackedEntries entries = list.entries();
        const int target = gate.targets.front();
        if (entries.size() * dimension_of(entries, layout, target) <= crossover::children_on_stack)
            return transform_few(list, layout, target, controls_hold, sign);
        if (transform_by_groups(list, layout, target, controls_hold, sign)) return guard_size(list.entries().size());
    }
    std::vector<PackedAmplitude> working(list.entries().begin(), list.entries().end());
    for (const int target : gate.targets) working = branched(working, layout, target, controls_hold, sign);
    replace(list, std::span(working).first(reduce_entries(working)));
    guard_size(list.entries().size());
}

void hadamard_no_reduce(PackedEntries input, SlotLayout layout, int target, std::span<const Predicate> controls,
                        double sign, EntryList& output) {
    replace(output, branched(input, layout, target, ControlTest(controls, layout), sign));
}
} // namespace vantel::qudit
