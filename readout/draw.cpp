#include "readout/draw.hpp"
#include "algorithms/first_words.hpp"
#include <random>

namespace vantel::qudit {
// The draw is written out and not left to std::discrete_distribution, whose choice at an exact tie of the number with a
// running sum differs between standard libraries.
std::size_t draw_outcome(const std::vector<PackedOutcome>& outcomes) {
    // The weights pass through single precision; deliberately.
    std::vector<double> weights;
    weights.reserve(outcomes.size());
    double sum = 0.0;
    for (const PackedOutcome& outcome : outcomes) {
        weights.push_back(static_cast<double>(static_cast<float>(outcome.probability)));
        sum += weights.back();
    }

    std::random_device device("/dev/urandom");
    const auto [low, high] = first_words<2>(device());
    const double number = (static_cast<double>(high) * 0x1p32 + static_cast<double>(low)) * 0x1p-64;

    double running = 0.0;
    for (std::size_t i = 0; i + 1 < weights.size(); ++i) {
        running += weights[i] / sum;
        if (running > number) return i;
    }
    return weights.size() - 1;
}
} // namespace vantel::qudit
