// Phase estimation: by how much of a circle does a gate turn a state that it leaves alone? Four base-3 digits
// read it in 81sts, with certainty where that is exact, and else with a known probability.
#include "check.hpp"
#include <algorithm>
#include <cmath>
#include <iomanip>
#include <numbers>

namespace {
constexpr int base = 3;
constexpr std::size_t digits = 4;
constexpr int values = 81;
constexpr int levels = 5; // of the qudit that is turned

/// The probability of each estimate of the phase by which the gate turns level 1, in 81sts of a circle.
vantel::Outcomes estimate(double phase) {
    // A power of clock turns level 1 by its fraction of a fifth of a circle.
    const double fraction = phase * levels;
    vantel::Qudit turned(levels);
    vantel::add(turned, 1);
    auto number = vantel::make_register(digits, base);
    for (auto& digit : number) vantel::hadamard(digit);
    // The gate is applied x times for number x, 3^j times for a 1 in digit j.
    double times = 1;
    for (auto& digit : number) {
        for (int level = 1; level < base; ++level) vantel::clock(turned, fraction * level * times, digit == level);
        times *= base;
    }
    vantel::inverse_fourier_transform(number);
    return vantel::probabilities(number);
}

/// The numbers x have the phases exp(2 pi i x (phase - y / 81)) against those of estimate y. Its probability
/// is the squared modulus of their mean, which is a geometric series.
double told(double phase, int y) {
    const double off = std::numbers::pi * (phase - static_cast<double>(y) / values);
    if (std::abs(std::sin(off)) < 1e-12) return 1;
    return std::pow(std::sin(values * off) / (values * std::sin(off)), 2);
}
} // namespace

int main(int argc, char** argv) {
    no_options(argc, argv);
    std::cout << "phase     estimate         probability  exactly\n" << std::fixed << std::setprecision(5);
    for (const double phase : {0.0, 2.0 / 9, 50.0 / 81, 1.0 / 7, 0.3, std::numbers::pi - 3, 20.5 / 81}) {
        const vantel::Outcomes seen = estimate(phase);
        for (int y = 0; y < values; ++y)
            check(std::abs(seen[static_cast<std::size_t>(y)].probability - told(phase, y)) < 2e-5,
                  "each estimate has its probability");
        const auto* best = std::ranges::max_element(seen, {}, &ProbabilityRecord::probability);
        const int y = static_cast<int>(best - seen.begin());
        check(std::abs(phase * values - y) < 0.501, "the likeliest estimate is one of the nearest");
        std::cout << phase << std::setw(5) << y << "/81 = " << static_cast<double>(y) / values << std::setw(12)
                  << best->probability << std::setw(12) << told(phase, y) << '\n';
    }
}
