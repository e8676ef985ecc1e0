#include "algorithms/first_words.hpp"
#include "algorithms/gathered_bits.hpp"
#include "algorithms/single_precision_sum.hpp"
#include "algorithms/two_ended_partition.hpp"
#include "readout/outcomes.hpp"
#include "readout/weights.hpp"
#include "state/builds.hpp"
#include "state/state.hpp"

namespace vantel::qudit {
namespace {
/// Draws one outcome in proportion to its weight, with one word of the system's randomness. Written out, since
/// std::discrete_distribution's choice at an exact tie of the number with a running sum differs between libraries.
/// @param outcomes  at least one
/// @throws what the system's random source raises when it cannot be opened or read
const PackedOutcome& drawn_of(std::span<const PackedOutcome> outcomes) {
    // The weights pass through single precision; deliberately.
    const auto weight_of = [](const PackedOutcome& outcome) {
        return static_cast<double>(static_cast<float>(outcome.probability));
    };
    double sum = 0.0;
    for (const PackedOutcome& outcome : outcomes) sum += weight_of(outcome);

    std::random_device device("/dev/urandom");
    const auto [low, high] = first_words<2>(device());
    const double number = (static_cast<double>(high) * 0x1p32 + static_cast<double>(low)) * 0x1p-64;

    double running = 0.0;
    for (const PackedOutcome& outcome : outcomes.first(outcomes.size() - 1)) {
        running += weight_of(outcome) / sum;
        if (running > number) return outcome;
    }
    return outcomes.back();
}

[[gnu::always_inline]] inline float squared_norm(std::span<const PackedAmplitude> entries) noexcept {
    SinglePrecisionSum sum;
    std::array<double, SinglePrecisionSum::block> weights;
    while (!entries.empty()) {
        const std::span<const PackedAmplitude> some = entries.first(std::min(weights.size(), entries.size()));
        entries = entries.subspan(some.size());
        if (some.size() == weights.size()) {
            PlainSquare{}(some.data(), weights);
            if (sum.add(weights)) continue;
        }
        for (const PackedAmplitude& entry : some) sum.add(SquaredModulus{}(entry.amplitude));
    }
    return sum.value();
}

[[gnu::always_inline]] inline void divide(std::span<PackedAmplitude> entries, double divisor) noexcept {
    std::size_t i = 0;
    for (; i + 1 < entries.size(); i += 2) {
        const FourParts quotients =
            joined(parts_of(entries[i].amplitude), parts_of(entries[i + 1].amplitude)) / divisor;
        store(low_half(quotients), entries[i].amplitude);
        store(high_half(quotients), entries[i + 1].amplitude);
    }
    if (i < entries.size()) store(parts_of(entries[i].amplitude) / divisor, entries[i].amplitude);
}

/// Divides every amplitude by the norm of the list. Sum and root are single precision on purpose, so the state's norm
/// is 1 to that precision only.
void renormalise(std::span<PackedAmplitude> entries) {
    wide_loop([=]() VANTEL_INLINED { divide(entries, static_cast<double>(std::sqrt(squared_norm(entries)))); });
}

/// Moves the entries that show an outcome in the listed fields to the front. @return how many they are
std::size_t project(std::span<PackedAmplitude> entries, std::uint64_t listed, std::uint64_t outcome,
                    const OutcomeNumbers& numbers) {
    if (numbers)
        return wide_loop([=, &numbers, number = GatheredBits(listed)(outcome)]() VANTEL_INLINED {
            return partition_two_ended(
                entries, [&](std::size_t first, std::size_t count) { return numbers.showing(number, first, count); });
        });
    return partition_two_ended(entries, judged_by(entries, [=](const PackedAmplitude& entry) {
                                   return ((entry.values ^ outcome) & listed) == 0;
                               }));
}
} // namespace

template <class Label> std::vector<int> State<Label>::measure(std::vector<int> qudits) {
    if (amplitudes.empty()) return std::vector<int>(qudits.size(), 0);
    const std::span<PackedAmplitude> entries = packed_view(amplitudes);
    const std::uint64_t listed = known_fields(Label::layout, qudits, Label::qudit_count);
    OutcomeNumbers numbers;
    const std::uint64_t drawn = drawn_of(outcomes_of(entries, listed, &numbers)).values;
    std::vector<int> levels = levels_of(Label::layout, drawn, qudits);
    const std::size_t kept = project(entries, listed, drawn, numbers);
    renormalise(entries.first(kept));
    amplitudes.resize(kept);
    return levels;
}

VANTEL_INSTANTIATE(std::vector<int>, measure, (std::vector<int>))
} // namespace vantel::qudit
