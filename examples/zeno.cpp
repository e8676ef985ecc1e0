// The quantum Zeno effect on a qutrit: a whole cycle takes it from level 0 to level 1. Asked after each n-th
// part of the cycle whether it still stands in level 0, it is held there: the more questions, the better.
#include "check.hpp"
#include <cmath>
#include <iomanip>
#include <numbers>

namespace {
/// A cycle multiplies the three Fourier states by exp(-2 pi i k / 3). Level 0 has an equal part of each, so
/// the part f of a cycle leaves |1 + w + w^2|^2 / 9 of it, with w = exp(2 pi i f / 3), and this is a sum of a
/// geometric series: sin^2(pi f) / (9 sin^2(pi f / 3)).
double stays(double part) {
    const double ratio = std::sin(std::numbers::pi * part) / (3 * std::sin(std::numbers::pi * part / 3));
    return ratio * ratio;
}

/// Whether every one of `steps` questions finds the qutrit in level 0.
bool survives(int steps) {
    vantel::Qudit qutrit(3);
    for (int step = 0; step < steps; ++step) {
        vantel::cycle(qutrit, 1.0 / steps);
        check(std::abs(vantel::probabilities(qutrit)(0) - stays(1.0 / steps)) < 1e-5,
              "each step begins in level 0 again");
        if (!vantel::project(qutrit == 0)) return false;
    }
    return true;
}
} // namespace

int main(int argc, char** argv) {
    no_options(argc, argv);
    constexpr int trials = 3000;
    // By Hoeffding's inequality a share of n trials is off by more than e with a probability of at most
    // 2 exp(-2 n e^2). This e makes it 1e-10 in each of the four rows.
    const double bound = std::sqrt(std::log(2e10) / (2 * trials));
    std::cout << "steps  survived   exactly\n" << std::fixed << std::setprecision(3);
    for (const int steps : {2, 4, 8, 16}) {
        int survived = 0;
        for (int trial = 0; trial < trials; ++trial) survived += survives(steps);
        const double share = static_cast<double>(survived) / trials;
        const double told = std::pow(stays(1.0 / steps), steps);
        std::cout << std::setw(5) << steps << std::setw(11) << share << std::setw(10) << told << '\n';
        check(std::abs(share - told) < bound, "each question is answered by the probability of its step");
    }
}
