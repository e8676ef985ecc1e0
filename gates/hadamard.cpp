#include <array>
#include <cmath>
#include <complex>

#include "gates/frame.hpp"
#include "state/builds.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"

namespace vantel::qudit {

namespace {

/// The elements of the transform of a d-level qudit from one level v to each level k:
/// exp(i sign 2 pi (d - k) v / d) / sqrt(d). The angle is taken as it stands, unreduced, so that the
/// residues of rounding are those of this very product; no table of roots of unity replaces it.
class Factors {
public:
    Factors(std::uint64_t dimension, double sign)
        : dimension_(dimension), scale_(1.0 / std::sqrt(static_cast<double>(dimension))),
          unit_((sign + sign) * 3.141592653589793) {}

    /// The factors from level v, ascending in k.
    std::span<const std::complex<double>> from(std::uint64_t v) {
        std::array<std::complex<double>, levels>& row = rows_[v];
        if ((known_ >> v & 1) == 0) {
            for (std::uint64_t k = 0; k < dimension_; ++k) {
                const double theta = unit_ * static_cast<double>(dimension_ - k) * static_cast<double>(v) /
                                     static_cast<double>(dimension_);
                row[k] = {scale_ * std::cos(theta), scale_ * std::sin(theta)};
            }
            known_ |= std::uint32_t{1} << v;
        }
        return {row.data(), dimension_};
    }

private:
    static constexpr std::size_t levels = 16; ///< what a field can hold

    std::uint64_t dimension_;
    double scale_;
    double unit_;
    std::uint32_t known_ = 0;
    std::array<std::array<std::complex<double>, levels>, levels> rows_;
};

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
            std::uint64_t field, Factors& factors, PackedAmplitude* output) {
    for (const PackedAmplitude& entry : input) {
        if (!controls_hold(entry.values)) {
            *output++ = entry;
            continue;
        }
        const std::uint64_t others = entry.values & ~(field << position);
        const std::span<const std::complex<double>> row = factors.from(entry.values >> position & field);
        for (std::uint64_t k = 0; k < row.size(); ++k)
            *output++ = {others | k << position, entry.dimensions, entry.amplitude * row[k]};
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
    const std::uint64_t dimension = first[target].dimension;
    const ControlTest controls_hold(controls, Label::layout);
    Factors factors(dimension, sign);
    std::vector<Entry> output(count_children(packed_view(input), controls_hold, dimension));
    spread(packed_view(input), controls_hold, Label::layout.position(target), Label::layout.mask(), factors,
           packed_view(output).data());
    return output;
}

template <class Label>
void State<Label>::transform(const std::vector<int>& targets, const std::vector<Predicate>& controls,
                             double sign) {
    std::vector<Entry> working = amplitudes;
    for (const int target : targets)
        working = hadamard_no_reduce(working, target, controls, sign);
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
