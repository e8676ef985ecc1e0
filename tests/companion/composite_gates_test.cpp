// Each composite gate is held against its whole matrix, phases included. The gate acts on one half of
// maximally entangled pairs; the pure state that results holds every element of the matrix once.
#include <gtest/gtest.h>

#include <complex>
#include <functional>
#include <numbers>
#include <numeric>
#include <string>
#include <vector>

#include <vantel.hpp>

namespace {

using vantel::Qudit;
using Levels = std::vector<int>;
using Qudits = std::vector<Qudit>;

struct Gate {
    std::string name;
    Levels dimensions;
    std::function<void(Qudits&)> apply;
    /// The matrix element from levels `in` to levels `out`.
    std::function<std::complex<double>(const Levels& out, const Levels& in)> element;
};

void PrintTo(const Gate& gate, std::ostream* out) {
    *out << gate.name;
}

/// A permutation of levels as a matrix.
auto maps_to(std::function<Levels(Levels)> image) {
    return [image](const Levels& out, const Levels& in) -> std::complex<double> { return out == image(in); };
}

/// The levels of row `row`, the first qudit varying fastest.
Levels levels_of(std::size_t row, const Levels& dimensions) {
    Levels levels;
    for (const int dimension : dimensions) {
        levels.push_back(static_cast<int>(row % static_cast<std::size_t>(dimension)));
        row /= static_cast<std::size_t>(dimension);
    }
    return levels;
}

class CompositeGate : public testing::TestWithParam<Gate> {};

TEST_P(CompositeGate, IsItsMatrix) {
    const auto& [name, dimensions, apply, element] = GetParam();
    Qudits work;
    Qudits partners;
    for (const int dimension : dimensions) {
        Qudit& qudit = work.emplace_back(dimension);
        Qudit& partner = partners.emplace_back(dimension);
        vantel::hadamard(partner);
        for (int level = 1; level < dimension; ++level)
            vantel::add(qudit, level, partner == level);
    }
    apply(work);

    std::vector<std::reference_wrapper<Qudit>> all(work.begin(), work.end());
    all.insert(all.end(), partners.begin(), partners.end());
    const auto state = vantel::reduced_density_matrix(all);
    const std::size_t side = vantel::Shape(work).size();
    ASSERT_EQ(state.side(), side * side);

    std::vector<std::complex<double>> amplitudes;
    for (std::size_t row = 0; row < state.side(); ++row)
        amplitudes.push_back(element(levels_of(row % side, dimensions), levels_of(row / side, dimensions)) /
                             std::sqrt(static_cast<double>(side)));
    for (std::size_t row = 0; row < state.side(); ++row)
        for (std::size_t column = 0; column < state.side(); ++column)
            ASSERT_NEAR(std::abs(std::complex<double>(state(row, column)) -
                                 amplitudes[row] * std::conj(amplitudes[column])),
                        0.0, 1e-6)
                << row << ' ' << column;
}

/// The Fourier matrix over all qudits of a register, with the sign of its exponent.
auto fourier(double sign, int dimension) {
    return [=](const Levels& out, const Levels& in) {
        const auto number = [&](const Levels& digits) {
            return std::accumulate(digits.rbegin(), digits.rend(), 0.0,
                                   [&](double high, int digit) { return dimension * high + digit; });
        };
        const double side = std::pow(dimension, static_cast<double>(in.size()));
        return std::polar(1.0 / std::sqrt(side),
                          sign * 2 * std::numbers::pi * number(in) * number(out) / side);
    };
}

Gate sum_of(int control, int target) {
    return {"sum_" + std::to_string(control) + "_" + std::to_string(target),
            {control, target},
            [](Qudits& q) { vantel::sum(q[0], q[1]); },
            maps_to([=](Levels v) {
                return Levels{v[0], (v[1] + v[0]) % target};
            })};
}

INSTANTIATE_TEST_SUITE_P(
    All, CompositeGate,
    testing::Values(
        sum_of(2, 2), sum_of(3, 3), sum_of(2, 5), sum_of(5, 3),
        Gate{"inverse_sum", {4, 3}, [](Qudits& q) { vantel::inverse_sum(q[0], q[1]); }, maps_to([](Levels v) {
                 return Levels{v[0], (v[1] + 6 - v[0]) % 3};
             })},
        Gate{"conditioned_sum",
             {3, 2, 2},
             [](Qudits& q) { vantel::sum(q[0], q[1], q[2] != 0); },
             maps_to([](Levels v) {
                 return Levels{v[0], (v[1] + v[0] * v[2]) % 2, v[2]};
             })},
        Gate{
            "toffoli", {2, 3, 3}, [](Qudits& q) { vantel::toffoli(q[0], q[1], q[2]); }, maps_to([](Levels v) {
                return Levels{v[0], v[1], (v[2] + v[0] * v[1]) % 3};
            })},
        Gate{"add_three", {5}, [](Qudits& q) { vantel::add(q[0], 3); }, maps_to([](Levels v) {
                 return Levels{(v[0] + 3) % 5};
             })},
        Gate{"add_minus_two", {7}, [](Qudits& q) { vantel::add(q[0], -2); }, maps_to([](Levels v) {
                 return Levels{(v[0] + 5) % 7};
             })},
        Gate{"negate", {5}, [](Qudits& q) { vantel::negate(q[0]); }, maps_to([](Levels v) {
                 return Levels{(5 - v[0]) % 5};
             })},
        Gate{"swap_by_sums",
             {4, 4},
             [](Qudits& q) { vantel::swap_by_sums(q[0], q[1]); },
             maps_to([](Levels v) {
                 return Levels{v[1], v[0]};
             })},
        Gate{"fourier_qubits", {2, 2, 2}, [](Qudits& q) { vantel::fourier_transform(q); }, fourier(1, 2)},
        Gate{"fourier_qutrits", {3, 3}, [](Qudits& q) { vantel::fourier_transform(q); }, fourier(1, 3)},
        Gate{"inverse_fourier",
             {3, 3},
             [](Qudits& q) { vantel::inverse_fourier_transform(q); },
             fourier(-1, 3)}),
    [](const auto& tested) { return tested.param.name; });

TEST(Preparation, OfAGhzStateOfMixedDimensions) {
    Qudits qudits;
    for (const int dimension : {3, 5, 2})
        qudits.emplace_back(dimension);
    vantel::prepare_ghz(qudits);
    const auto matrix = vantel::reduced_density_matrix(qudits);
    const std::vector<std::size_t> rows{0, 1 + 3 * 1 + 15 * 1, 2 + 3 * 2};
    for (std::size_t row = 0; row < matrix.side(); ++row)
        for (std::size_t column = 0; column < matrix.side(); ++column) {
            const bool both = std::ranges::count(rows, row) == 1 && std::ranges::count(rows, column) == 1;
            ASSERT_NEAR(std::abs(matrix(row, column) - (both ? 1.0F / 3 : 0.0F)), 0.0F, 1e-6F);
        }
}

TEST(Preparation, OfABellStateWithPhaseAndOffset) {
    Qudit first(3), second(3);
    vantel::prepare_bell(first, second, 2, 1);
    const auto matrix = vantel::reduced_density_matrix(first, second);
    for (int k = 0; k < 3; ++k)
        for (int m = 0; m < 3; ++m) {
            const auto row = static_cast<std::size_t>(k + 3 * ((k + 1) % 3));
            const auto column = static_cast<std::size_t>(m + 3 * ((m + 1) % 3));
            const auto told = std::polar(1.0 / 3, 2 * std::numbers::pi * 2 * (k - m) / 3);
            ASSERT_NEAR(std::abs(std::complex<double>(matrix(row, column)) - told), 0.0, 1e-6);
        }
}

} // namespace
