#include "algorithms/crossovers.hpp"
#include "gates/fourier_factors.hpp"
#include "gates/fourier_sums.hpp"
#include "gates/frame.hpp"
#include "gates/kernels.hpp"
#include "state/reduction.hpp"
#include <array>
#include <cstddef>
#include <vector>

namespace vantel::qudit {
namespace {
std::uint64_t dimension_of(PackedEntries entries, SlotLayout layout, int target) {
    return entries.empty() ? 0 : layout.dimension(entries.front().dimensions, target);
}

/// How many entries one pass over `input` yields.
std::size_t count_children(PackedEntries input, const ControlTest& controls_hold, std::uint64_t dimension) {
    std::size_t count = input.size();
    for (const PackedAmplitude& entry : input) count += controls_hold(entry.values) ? dimension - 1 : 0;
    return count;
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

/// All passes of the gate, without reduction.
std::vector<PackedAmplitude> branched(PackedEntries input, SlotLayout layout, std::span<const int> targets,
                                      const ControlTest& controls_hold, double sign) {
    std::vector<PackedAmplitude> working(input.begin(), input.end());
    for (const int target : targets) {
        std::vector<PackedAmplitude> next(
            count_children(working, controls_hold, dimension_of(working, layout, target)));
        branch(working, layout, target, controls_hold, sign, next.data());
        working.swap(next);
    }
    return working;
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
    std::vector<PackedAmplitude> working = branched(list.entries(), layout, gate.targets, controls_hold, sign);
    replace(list, std::span(working).first(reduce_entries(working)));
    guard_size(list.entries().size());
}

void hadamard_no_reduce(PackedEntries input, SlotLayout layout, int target, std::span<const Predicate> controls,
                        double sign, EntryList& output) {
    const ControlTest controls_hold(controls, layout);
    output.resize(count_children(input, controls_hold, dimension_of(input, layout, target)));
    branch(input, layout, target, controls_hold, sign, output.entries().data());
}
} // namespace vantel::qudit
