#include <algorithm>
#include <cstddef>
#include <optional>

#include "gates/fourier_factors.hpp"
#include "gates/fourier_sums.hpp"
#include "gates/frame.hpp"
#include "state/builds.hpp"
#include "state/packed_view.hpp"
#include "state/reduction.hpp"
#include "state/state.hpp"

namespace vantel::qudit {

namespace {

/// How many entries one pass over `input` yields.
std::size_t count_children(std::span<const PackedAmplitude> input, const ControlTest& controls_hold,
                           std::uint64_t dimension) {
    std::size_t selected = 0;
    for (const PackedAmplitude& entry : input)
        selected += controls_hold(entry.values) ? 1 : 0;
    return input.size() + selected * (dimension - 1);
}

/// By two whole registers, since entries are read by such when they are sorted.
void write(PackedAmplitude& entry, Words label, Parts amplitude) {
    *reinterpret_cast<StoredWords*>(&entry) = label;
    store(amplitude, entry.amplitude);
}

/// Writes each entry, or the children of a selected one ascending in k, to `output`.
/// @return the end of what was written
PackedAmplitude* spread(std::span<const PackedAmplitude> input, const ControlTest& controls_hold,
                        unsigned position, std::uint64_t field, FourierFactors& factors,
                        PackedAmplitude* output) {
    for (const PackedAmplitude& entry : input) {
        if (!controls_hold(entry.values)) {
            *output++ = entry;
            continue;
        }
        const std::uint64_t others = entry.values & ~(field << position);
        const FourierFactors::Row& row = factors.from(entry.values >> position & field);
        for (std::uint64_t k = 0; k < factors.dimension(); ++k)
            write(*output++, Words{others | k << position, entry.dimensions},
                  row[k](parts_of(entry.amplitude)));
    }
    return output;
}

/// The children of a list so short that they need no memory, reduced.
class FewChildren {
public:
    static bool suffice_for(std::span<const PackedAmplitude> input, SlotLayout layout, int target) {
        return input.empty() || input.size() * dimension(input, layout, target) <= few;
    }

    FewChildren(std::span<const PackedAmplitude> input, SlotLayout layout, int target,
                const ControlTest& controls_hold, double sign) {
        if (input.empty())
            return;
        FourierFactors factors(dimension(input, layout, target), sign);
        PackedAmplitude* const end =
            spread(input, controls_hold, layout.position(target), layout.mask(), factors, list());
        kept_ = reduce_entries(std::span(list(), end));
    }

    [[nodiscard]] std::span<const PackedAmplitude> kept() { return {list(), kept_}; }

private:
    static constexpr std::size_t few = 32;

    static std::uint64_t dimension(std::span<const PackedAmplitude> input, SlotLayout layout, int target) {
        return (input.front().dimensions >> layout.position(target) & layout.mask()) + 1;
    }

    /// Memory that nothing clears first.
    PackedAmplitude* list() { return reinterpret_cast<PackedAmplitude*>(list_); }

    alignas(PackedAmplitude) std::byte list_[few * sizeof(PackedAmplitude)];
    std::size_t kept_ = 0;
};

} // namespace

template <class Label>
auto State<Label>::hadamard_no_reduce(const std::vector<Entry>& input, int target,
                                      const std::vector<Predicate>& controls, double sign)
    -> std::vector<Entry> {
    if (input.empty())
        return {};
    const Label& first = input.front().label;
    const ControlTest controls_hold(controls, Label::layout);
    FourierFactors factors(first[target].dimension, sign);
    std::vector<Entry> output(count_children(packed_view(input), controls_hold, factors.dimension()));
    spread(packed_view(input), controls_hold, Label::layout.position(target), Label::layout.mask(), factors,
           packed_view(output).data());
    return output;
}

template <class Label> void State<Label>::transform(const Gate& gate, double sign) {
    refuse_overlap(gate, sign > 0 ? "Hadamard operation has overlapping targets and controls"
                                  : "inverse-Hadamard operation has overlapping targets and controls");
    const std::span<const int> targets = gate.targets;
    if (targets.size() == 1) {
        const std::span<const PackedAmplitude> entries = packed_view(amplitudes);
        const ControlTest controls_hold(gate.controls, Label::layout);
        if (FewChildren::suffice_for(entries, Label::layout, targets.front())) {
            FewChildren children(entries, Label::layout, targets.front(), controls_hold, sign);
            const std::span<const PackedAmplitude> kept = children.kept();
            amplitudes.resize(kept.size());
            std::copy(kept.begin(), kept.end(), packed_view(amplitudes).begin());
            return;
        }
        if (const std::optional<FourierSums> sums =
                FourierSums::of(entries, Label::layout, targets.front(), controls_hold, sign)) {
            amplitudes.resize(sums->kept());
            sums->write(packed_view(amplitudes));
            return guard_size(amplitudes.size());
        }
    }
    const std::vector<Predicate> controls(gate.controls.begin(), gate.controls.end());
    std::vector<Entry> working =
        targets.empty() ? amplitudes : hadamard_no_reduce(amplitudes, targets.front(), controls, sign);
    for (std::size_t i = 1; i < targets.size(); ++i)
        working = hadamard_no_reduce(working, targets[i], controls, sign);
    reduce(working);
    amplitudes.swap(working);
    guard_size(amplitudes.size());
}

VANTEL_INSTANTIATE(
    auto, hadamard_no_reduce,
    (const std::vector<Entry>&, int, const std::vector<Predicate>&, double)->std::vector<Entry>)
VANTEL_INSTANTIATE(void, transform, (const Gate&, double))

} // namespace vantel::qudit
