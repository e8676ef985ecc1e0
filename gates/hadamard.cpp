#include <optional>

#include "gates/fourier_factors.hpp"
#include "gates/fourier_sums.hpp"
#include "gates/frame.hpp"
#include "state/builds.hpp"
#include "state/packed_view.hpp"
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

/// Writes each entry, or the children of a selected one ascending in k, to `output`.
void spread(std::span<const PackedAmplitude> input, const ControlTest& controls_hold, unsigned position,
            std::uint64_t field, FourierFactors& factors, PackedAmplitude* output) {
    for (const PackedAmplitude& entry : input) {
        if (!controls_hold(entry.values)) {
            *output++ = entry;
            continue;
        }
        const std::uint64_t others = entry.values & ~(field << position);
        const FourierFactors::Row& row = factors.from(entry.values >> position & field);
        for (std::uint64_t k = 0; k < factors.dimension(); ++k)
            *output++ = {others | k << position, entry.dimensions,
                         complex_of(row[k](parts_of(entry.amplitude)))};
    }
}

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

template <class Label>
void State<Label>::transform(const std::vector<int>& targets, const std::vector<Predicate>& controls,
                             double sign) {
    if (targets.size() == 1) {
        if (const std::optional<FourierSums> sums =
                FourierSums::of(packed_view(amplitudes), Label::layout, targets.front(),
                                ControlTest(controls, Label::layout), sign)) {
            amplitudes.resize(sums->kept());
            sums->write(packed_view(amplitudes));
            return guard_size(amplitudes.size());
        }
    }
    std::vector<Entry> working =
        targets.empty() ? amplitudes : hadamard_no_reduce(amplitudes, targets.front(), controls, sign);
    for (std::size_t i = 1; i < targets.size(); ++i)
        working = hadamard_no_reduce(working, targets[i], controls, sign);
    reduce(working);
    amplitudes.swap(working);
    guard_size(amplitudes.size());
}

template <class Label>
void State<Label>::hadamard(std::vector<int> targets, std::vector<Predicate> controls) {
    refuse_overlap(targets, controls, "Hadamard operation has overlapping targets and controls");
    transform(targets, controls, +1.0);
}

template <class Label>
void State<Label>::inverse_hadamard(std::vector<int> targets, std::vector<Predicate> controls) {
    refuse_overlap(targets, controls, "inverse-Hadamard operation has overlapping targets and controls");
    transform(targets, controls, -1.0);
}

VANTEL_INSTANTIATE(
    auto, hadamard_no_reduce,
    (const std::vector<Entry>&, int, const std::vector<Predicate>&, double)->std::vector<Entry>)
VANTEL_INSTANTIATE(void, transform, (const std::vector<int>&, const std::vector<Predicate>&, double))
VANTEL_INSTANTIATE(void, hadamard, (std::vector<int>, std::vector<Predicate>))
VANTEL_INSTANTIATE(void, inverse_hadamard, (std::vector<int>, std::vector<Predicate>))

} // namespace vantel::qudit
