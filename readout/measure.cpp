#include <algorithm>
#include <array>
#include <cmath>

#include "readout/draw.hpp"
#include "readout/levels.hpp"
#include "readout/single_precision_sum.hpp"
#include "readout/squared_modulus.hpp"
#include "state/builds.hpp"
#include "state/packed_view.hpp"
#include "state/product.hpp"
#include "state/state.hpp"
#include "state/subkey.hpp"
#include "state/two_ended_partition.hpp"
#include "state/wide_loop.hpp"

namespace vantel::qudit {

namespace {

/// |a|^2 of each of some entries. NaN stands ahead of infinity.
template <std::size_t count>
void weigh(const PackedAmplitude* entries, std::array<double, count>& weights) noexcept {
    for (std::size_t i = 0; i < count; i += 4) {
        const FourParts even = __builtin_shufflevector(parts_of(entries[i].amplitude),
                                                       parts_of(entries[i + 2].amplitude), 0, 1, 2, 3);
        const FourParts odd = __builtin_shufflevector(parts_of(entries[i + 1].amplitude),
                                                      parts_of(entries[i + 3].amplitude), 0, 1, 2, 3);
        const FourParts even_squares = even * even;
        const FourParts odd_squares = odd * odd;
        *reinterpret_cast<StoredFourParts*>(&weights[i]) =
            __builtin_shufflevector(even_squares, odd_squares, 0, 4, 2, 6) +
            __builtin_shufflevector(even_squares, odd_squares, 1, 5, 3, 7);
    }
}

float squared_norm(std::span<const PackedAmplitude> entries) noexcept {
    SinglePrecisionSum sum;
    std::array<double, SinglePrecisionSum::block> weights;
    while (!entries.empty()) {
        const std::span<const PackedAmplitude> some = entries.first(std::min(weights.size(), entries.size()));
        entries = entries.subspan(some.size());
        if (some.size() == weights.size()) {
            weigh(some.data(), weights);
            if (sum.add(weights))
                continue;
        }
        for (const PackedAmplitude& entry : some)
            sum.add(squared_modulus(entry.amplitude));
    }
    return sum.value();
}

void divide(std::span<PackedAmplitude> entries, double divisor) noexcept {
    std::size_t i = 0;
    for (; i + 1 < entries.size(); i += 2) {
        const FourParts quotients = __builtin_shufflevector(parts_of(entries[i].amplitude),
                                                            parts_of(entries[i + 1].amplitude), 0, 1, 2, 3) /
                                    divisor;
        store(__builtin_shufflevector(quotients, quotients, 0, 1), entries[i].amplitude);
        store(__builtin_shufflevector(quotients, quotients, 2, 3), entries[i + 1].amplitude);
    }
    if (i < entries.size())
        store(parts_of(entries[i].amplitude) / divisor, entries[i].amplitude);
}

/// Divides every amplitude by the norm of the list. Sum and root are single precision on purpose, so the
/// state's norm is 1 to that precision only.
void renormalise(std::span<PackedAmplitude> entries) {
    wide_loop([=] { divide(entries, static_cast<double>(std::sqrt(squared_norm(entries)))); });
}

/// Keeps the entries that show the drawn outcome in the listed fields, at the front, and renormalises them.
void project(std::span<PackedAmplitude> entries, std::uint64_t listed, const PackedOutcome& drawn) {
    partition_two_ended(entries, drawn.entries, [=](const PackedAmplitude& entry) {
        return ((entry.values ^ drawn.values) & listed) == 0;
    });
    renormalise(entries.first(drawn.entries));
}

} // namespace

template <class Label> std::vector<int> State<Label>::measure(std::vector<int> qudits) {
    const std::vector<PackedOutcome> outcomes = packed_probabilities(qudits);
    if (outcomes.empty())
        return std::vector<int>(qudits.size(), 0);
    const PackedOutcome drawn = outcomes[draw_outcome(outcomes)];
    std::vector<int> levels = levels_of(Label::layout, drawn.values, qudits);
    project(packed_view(amplitudes), fields_of(Label::layout, qudits), drawn);
    amplitudes.resize(drawn.entries);
    return levels;
}

VANTEL_INSTANTIATE(std::vector<int>, measure, (std::vector<int>))

} // namespace vantel::qudit
