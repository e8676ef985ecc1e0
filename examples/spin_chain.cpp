// A chain of seven spins of size 1, each a qutrit, with H = the sum of S . S' over neighbours. Three quanta
// at one end run through it. Its evolution is made of gates on two neighbours, a Trotter product of second
// order, and held against the exact one, by diagonalisation.
#include "check.hpp"
#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <numeric>
#include <vantel_quantities.hpp>
#include <vantel_unitary.hpp>
#include <vector>

namespace {
using vantel::Complex;

constexpr std::size_t spins = 7;
using Levels = std::array<int, spins>; // level v is the state with S_z = 1 - v
constexpr Levels start{2, 1, 0, 0, 0, 0, 0};

/// The element of S . S' = S_z S_z' + (S+ S-' + S- S+') / 2 between levels (a, b) of two spins and others. S+
/// and S- have the elements sqrt(2).
double coupling(int a, int b, int to_a, int to_b) {
    if (a == to_a && b == to_b) return (1 - a) * (1 - b);
    return std::abs(a - to_a) == 1 && a + b == to_a + to_b ? 1 : 0;
}

/// exp(-i t S . S'). The values of S . S' are -2, -1 and 1, for both spins together of size 0, 1 and 2, so
/// that it is a polynomial of second degree in S . S', that of Lagrange through these three.
vantel::Unitary bond(double t) {
    constexpr std::size_t side = 9;
    std::array<double, side * side> h{}, square{};
    for (std::size_t i = 0; i < h.size(); ++i) {
        const int row = static_cast<int>(i / side), column = static_cast<int>(i % side);
        h.at(i) = coupling(column % 3, column / 3, row % 3, row / 3);
    }
    for (std::size_t i = 0; i < h.size(); ++i)
        for (std::size_t k = 0; k < side; ++k) square.at(i) += h.at(i / side * side + k) * h.at(k * side + i % side);
    std::vector<Complex> matrix;
    for (std::size_t i = 0; i < h.size(); ++i) {
        const double one = i / side == i % side, x = h.at(i), xx = square.at(i);
        matrix.push_back((xx - one) / 3 * std::polar(1.0, 2 * t) - (xx + x - 2 * one) / 2 * std::polar(1.0, t) +
                         (xx + 3 * x + 2 * one) / 6 * std::polar(1.0, -t));
    }
    return {{3, 3}, matrix};
}

/// A real symmetric matrix by Jacobi's method: rotations that make one element after another 0. The matrix
/// becomes that of its eigenvalues; the columns of the result are its eigenvectors.
std::vector<std::vector<double>> diagonalise(std::vector<std::vector<double>>& h) {
    const std::size_t side = h.size();
    std::vector<std::vector<double>> vectors(side, std::vector<double>(side));
    for (std::size_t i = 0; i < side; ++i) vectors[i][i] = 1;
    for (int sweep = 0; sweep < 12; ++sweep)
        for (std::size_t p = 0; p < side; ++p)
            for (std::size_t q = p + 1; q < side; ++q) {
                const double cotangent = (h[q][q] - h[p][p]) / (2 * h[p][q]); // of the double angle
                if (!std::isfinite(cotangent)) continue;
                const double t = std::copysign(1.0, cotangent) / (std::abs(cotangent) + std::hypot(1.0, cotangent));
                const double c = 1 / std::hypot(1.0, t), s = t * c;
                const auto turn = [&](double& x, double& y) {
                    const double old = x;
                    x = c * old - s * y;
                    y = s * old + c * y;
                };
                for (std::size_t k = 0; k < side; ++k) {
                    turn(h[k][p], h[k][q]);
                    turn(vectors[k][p], vectors[k][q]);
                }
                for (std::size_t k = 0; k < side; ++k) turn(h[p][k], h[q][k]);
            }
    return vectors;
}

/// The exact evolution, among the 77 states of three quanta, as many as the first one has: H keeps their
/// number.
class Exact {
public:
    Exact() {
        for (std::size_t row = 0; row < 2187; ++row) {
            Levels levels{};
            int quanta = 0;
            for (std::size_t i = 0, rest = row; i < spins; ++i, rest /= 3)
                quanta += levels.at(i) = static_cast<int>(rest % 3);
            if (quanta == 3) {
                rows_.push_back(row);
                states_.push_back(levels);
            }
        }
        h_.assign(states_.size(), std::vector<double>(states_.size()));
        for (std::size_t i = 0; i < states_.size(); ++i)
            for (std::size_t j = 0; j < states_.size(); ++j)
                for (std::size_t k = 0; k + 1 < spins; ++k) {
                    Levels moved = states_[j];
                    moved.at(k) = states_[i].at(k);
                    moved.at(k + 1) = states_[i].at(k + 1);
                    if (moved == states_[i])
                        h_[i][j] += coupling(states_[j].at(k), states_[j].at(k + 1), moved.at(k), moved.at(k + 1));
                }
        vectors_ = diagonalise(h_);
    }

    /// All amplitudes at a time t: the sum over eigenvectors v of v v(start) exp(-i t E).
    [[nodiscard]] std::vector<Complex> state(double t) const {
        std::size_t first = 0;
        while (states_[first] != start) ++first;
        std::vector<Complex> amplitudes(2187);
        for (std::size_t i = 0; i < rows_.size(); ++i)
            for (std::size_t k = 0; k < rows_.size(); ++k)
                amplitudes[rows_[i]] += vectors_[i][k] * vectors_[first][k] * std::polar(1.0, -t * h_[k][k]);
        return amplitudes;
    }

private:
    std::vector<std::size_t> rows_; ///< where the states stand among all combinations of levels
    std::vector<Levels> states_;
    std::vector<std::vector<double>> h_, vectors_;
};

/// The chain after a time t in so many steps: in each half of the bonds that begin at an even spin, then the
/// odd ones, then the other half.
std::vector<vantel::Qudit> evolve(double t, int steps) {
    auto chain = vantel::make_register(spins, 3);
    for (std::size_t i = 0; i < spins; ++i) vantel::add(chain[i], start.at(i));
    const vantel::Unitary half = bond(t / steps / 2), whole = bond(t / steps);
    const auto apply = [&](const vantel::Unitary& gate, std::size_t first) {
        for (std::size_t i = first; i + 1 < spins; i += 2) gate.apply({chain[i], chain[i + 1]});
    };
    for (int step = 0; step < steps; ++step) {
        apply(half, 0);
        apply(whole, 1);
        apply(half, 0);
    }
    return chain;
}

/// The mean of S_z of each spin.
using Profile = std::array<double, spins>;

Profile profile(const std::vector<vantel::Qudit>& chain) {
    Profile means{};
    for (std::size_t i = 0; i < spins; ++i)
        means.at(i) = vantel::expectation(chain[i], {1, 0, 0, 0, 0, 0, 0, 0, -1}).real();
    return means;
}

Profile profile(const std::vector<Complex>& state) {
    Profile means{};
    for (std::size_t row = 0; row < state.size(); ++row)
        for (std::size_t i = 0, rest = row; i < spins; ++i, rest /= 3)
            means.at(i) += std::norm(state[row]) * (1 - static_cast<double>(rest % 3));
    return means;
}

double largest_difference(const Profile& a, const Profile& b) {
    double largest = 0;
    for (std::size_t i = 0; i < spins; ++i) largest = std::max(largest, std::abs(a.at(i) - b.at(i)));
    return largest;
}
} // namespace

int main(int argc, char** argv) {
    no_options(argc, argv);
    const Exact exact;
    std::cout << "gates of a bond: " << bond(0.1).gates() << "\ntime   S_z of each spin\n"
              << std::fixed << std::setprecision(3);
    for (const double t : {0.5, 1.0, 2.0}) {
        const auto chain = evolve(t, 40);
        const auto expected = exact.state(t);
        const Profile means = profile(chain);
        std::cout << t;
        for (const double mean : means) std::cout << std::setw(8) << mean;
        std::cout << '\n';
        check(largest_difference(means, profile(expected)) < 2e-3, "each spin turns as diagonalisation says");
        check(vantel::fidelity(chain, expected) > 1 - 1e-4, "and so does the whole chain");
        check(std::abs(std::accumulate(means.begin(), means.end(), -4.0)) < 1e-4, "no quantum is lost");
    }

    // Of second order: half the step makes a quarter of the error.
    const Profile expected = profile(exact.state(1));
    std::cout << "steps  error at time 1\n" << std::setprecision(5);
    double before = 0;
    for (const int steps : {5, 10, 20, 40}) {
        const double error = largest_difference(profile(evolve(1, steps)), expected);
        std::cout << std::setw(5) << steps << std::setw(10) << error << '\n';
        check(before == 0 || std::abs(before / error - 4) < 0.4, "the product is of second order");
        before = error;
    }
}
