// Each composite gate is held against its whole matrix, phases included. The gate acts on one half of
// maximally entangled pairs; the pure state that results holds every element of the matrix once.
#include <complex>
#include <functional>
#include <gtest/gtest.h>
#include <numbers>
#include <numeric>
#include <string>
#include <vantel.hpp>
#include <vector>

namespace {
using vantel::Qudit;
using Levels = std::vector<int>;
using Qudits = std::vector<Qudit>;

struct Gate {
    const char* name;
    Levels dimensions;
    void (*apply)(Qudits& q);
    void (*image)(Levels& v);  ///< of levels; each is taken modulo its dimension
    double fourier_sign = 0.0; ///< or of a Fourier transform's exponent

    /// The matrix element from levels `in` to levels `out`.
    [[nodiscard]] std::complex<double> element(const Levels& out, Levels in) const {
        if (image != nullptr) {
            image(in);
            for (std::size_t i = 0; i < in.size(); ++i) in[i] = (in[i] + 10 * dimensions[i]) % dimensions[i];
            return out == in;
        }
        const auto number = [this](const Levels& digits) {
            return std::accumulate(digits.rbegin(), digits.rend(), 0.0,
                                   [this](double high, int digit) { return dimensions[0] * high + digit; });
        };
        const double side = std::pow(dimensions[0], static_cast<double>(in.size()));
        return std::polar(1.0 / std::sqrt(side), fourier_sign * 2 * std::numbers::pi * number(in) * number(out) / side);
    }
};

void PrintTo(const Gate& gate, std::ostream* out) { *out << gate.name; }

/// The levels of row `row`, the first qudit varying fastest.
Levels levels_of(std::size_t row, const Levels& dimensions) {
    Levels levels;
    for (const int dimension : dimensions) {
        levels.push_back(static_cast<int>(row % static_cast<std::size_t>(dimension)));
        row /= static_cast<std::size_t>(dimension);
    }
    return levels;
}

/// Of the pure state with these amplitudes, but for a phase of the whole.
template <class Matrix> void expect_state(const Matrix& matrix, const std::vector<std::complex<double>>& a) {
    ASSERT_EQ(matrix.side(), a.size());
    for (std::size_t row = 0; row < a.size(); ++row)
        for (std::size_t column = 0; column < a.size(); ++column)
            ASSERT_NEAR(std::abs(std::complex<double>(matrix(row, column)) - a[row] * std::conj(a[column])), 0.0, 1e-6)
                << row << ' ' << column;
}

class CompositeGate : public testing::TestWithParam<Gate> {};

TEST_P(CompositeGate, IsItsMatrix) {
    const Gate& gate = GetParam();
    const Levels& dimensions = gate.dimensions;
    Qudits work, partners;
    for (const int dimension : dimensions) {
        Qudit& qudit = work.emplace_back(dimension);
        Qudit& partner = partners.emplace_back(dimension);
        vantel::hadamard(partner);
        for (int level = 1; level < dimension; ++level) vantel::add(qudit, level, partner == level);
    }
    gate.apply(work);

    std::vector<std::reference_wrapper<Qudit>> all(work.begin(), work.end());
    all.insert(all.end(), partners.begin(), partners.end());
    const auto state = vantel::reduced_density_matrix(all);
    const std::size_t side = vantel::Shape(work).size();

    std::vector<std::complex<double>> amplitudes;
    for (std::size_t row = 0; row < side * side; ++row)
        amplitudes.push_back(gate.element(levels_of(row % side, dimensions), levels_of(row / side, dimensions)) /
                             std::sqrt(static_cast<double>(side)));
    expect_state(state, amplitudes);
}

void added(Levels& v) { v[1] += v[0]; }

const Gate gates[] = {
    {"sum_2_2", {2, 2}, [](auto& q) { sum(q[0], q[1]); }, added},
    {"sum_2_5", {2, 5}, [](auto& q) { sum(q[0], q[1]); }, added},
    {"sum_5_3", {5, 3}, [](auto& q) { sum(q[0], q[1]); }, added},
    {"inverse_sum", {4, 3}, [](auto& q) { inverse_sum(q[0], q[1]); }, [](auto& v) { v[1] -= v[0]; }},
    {"sum_if", {3, 2, 2}, [](auto& q) { sum(q[0], q[1], q[2] != 0); }, [](auto& v) { v[1] += v[0] * v[2]; }},
    {"toffoli", {2, 3, 3}, [](auto& q) { toffoli(q[0], q[1], q[2]); }, [](auto& v) { v[2] += v[0] * v[1]; }},
    {"add_three", {5}, [](auto& q) { add(q[0], 3); }, [](auto& v) { v[0] += 3; }},
    {"add_minus_two", {7}, [](auto& q) { add(q[0], -2); }, [](auto& v) { v[0] -= 2; }},
    {"negate", {5}, [](auto& q) { negate(q[0]); }, [](auto& v) { v[0] = -v[0]; }},
    {"swap_by_sums", {4, 4}, [](auto& q) { swap_by_sums(q[0], q[1]); }, [](auto& v) { std::swap(v[0], v[1]); }},
    {"fourier_qubits", {2, 2, 2}, [](auto& q) { fourier_transform(q); }, nullptr, 1},
    {"fourier_qutrits", {3, 3}, [](auto& q) { fourier_transform(q); }, nullptr, 1},
    {"inverse_fourier", {3, 3}, [](auto& q) { inverse_fourier_transform(q); }, nullptr, -1},
};

INSTANTIATE_TEST_SUITE_P(All, CompositeGate, testing::ValuesIn(gates),
                         [](const auto& tested) { return tested.param.name; });

TEST(Preparation, OfAGhzStateOfMixedDimensions) {
    Qudits qudits;
    for (const int dimension : {3, 5, 2}) qudits.emplace_back(dimension);
    vantel::prepare_ghz(qudits);
    std::vector<std::complex<double>> amplitudes(30);
    for (const std::size_t row : {0U, 1U + 3U + 15U, 2U + 6U}) amplitudes[row] = std::sqrt(1.0 / 3);
    expect_state(vantel::reduced_density_matrix(qudits), amplitudes);
}

TEST(Preparation, OfABellStateWithPhaseAndOffset) {
    Qudit first(3), second(3);
    vantel::prepare_bell(first, second, 2, 1);
    std::vector<std::complex<double>> amplitudes(9);
    for (int k = 0; k < 3; ++k)
        amplitudes.at(static_cast<std::size_t>(k + 3 * ((k + 1) % 3))) =
            std::polar(std::sqrt(1.0 / 3), 2 * std::numbers::pi * 2 * k / 3);
    expect_state(vantel::reduced_density_matrix(first, second), amplitudes);
}
} // namespace
