// A quantum walk on a ring of ten sites: a coin is tossed, and the walker goes one way or the other, without
// anybody looking. It spreads faster than a drunkard.
#include "check.hpp"
#include <array>
#include <cmath>
#include <complex>
#include <string>

namespace {
constexpr int sites = 10;
constexpr int steps = 4;

/// The same walk by its definition: the amplitudes of both coins at each site.
using Amplitudes = std::array<std::array<std::complex<double>, 2>, sites>;

Amplitudes stepped(const Amplitudes& before) {
    Amplitudes after{};
    for (std::size_t site = 0; site < sites; ++site) {
        const auto [tail, head] = before[site];
        after[(site + 1) % sites][0] = (tail + head) * std::sqrt(0.5);
        after[(site + sites - 1) % sites][1] = (tail - head) * std::sqrt(0.5);
    }
    return after;
}
} // namespace

int main(int argc, char** argv) {
    const char* const svg = svg_name(argc, argv);
    vantel::Qudit coin(2);
    std::array walker{vantel::Qudit(sites)};
    vantel::add(walker[0], sites / 2);
    // A coin in (|0> + i |1>) / sqrt(2) favours neither side.
    vantel::hadamard(coin);
    vantel::clock(coin, 0.5);

    Amplitudes told{};
    told[sites / 2] = {std::sqrt(0.5), {0.0, std::sqrt(0.5)}};
    for (int step = 1; step <= steps; ++step) {
        vantel::hadamard(coin);
        vantel::cycle(walker[0], coin == 0);
        vantel::shift(walker[0], coin == 1);
        told = stepped(told);

        draw(("After step " + std::to_string(step)).c_str(), walker, {"site"}, step == steps ? svg : nullptr);
        const auto seen = vantel::probabilities(walker);
        for (std::size_t site = 0; site < sites; ++site)
            check(std::abs(seen[site].probability - std::norm(told[site][0]) - std::norm(told[site][1])) < 1e-5,
                  "the walker is where the amplitudes say");
    }
}
