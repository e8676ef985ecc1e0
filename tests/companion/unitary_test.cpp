// Matrices as gates: held against the matrices, and what is refused.
#include <gtest/gtest.h>
#include <random>
#include <vantel_quantities.hpp>
#include <vantel_unitary.hpp>

namespace {
using vantel::Complex;

/// Columns of random numbers, each made orthogonal to those before it, twice against rounding.
std::vector<Complex> random_unitary(std::size_t side) {
    std::mt19937 random(static_cast<unsigned>(side));
    std::normal_distribution<> part;
    std::vector<Complex> matrix(side * side);
    for (Complex& element : matrix) element = {part(random), part(random)};
    const auto product = [&](std::size_t a, std::size_t b) {
        Complex sum = 0;
        for (std::size_t row = 0; row < side; ++row) sum += std::conj(matrix[row * side + a]) * matrix[row * side + b];
        return sum;
    };
    for (std::size_t column = 0; column < side; ++column) {
        for (std::size_t i = 0; i < 2 * column; ++i) {
            const Complex part_of = product(i % column, column);
            for (std::size_t row = 0; row < side; ++row)
                matrix[row * side + column] -= part_of * matrix[row * side + i % column];
        }
        const double norm = std::sqrt(product(column, column).real());
        for (std::size_t row = 0; row < side; ++row) matrix[row * side + column] /= norm;
    }
    return matrix;
}

// One half of maximally entangled pairs: their state holds every element once. Spectators among the partners
// would spoil it.
TEST(UnitaryMatrix, IsItsMatrixWithinAMillionth) {
    for (const std::vector<int>& dimensions : {std::vector{2}, {7}, {2, 2}, {3, 2, 5}}) {
        auto work = vantel::make_register(dimensions), partners = vantel::make_register(dimensions);
        std::vector<std::reference_wrapper<vantel::Qudit>> all(work.begin(), work.end());
        for (std::size_t i = 0; i < work.size(); ++i) {
            vantel::prepare_bell(partners[i], work[i]);
            all.emplace_back(partners[i]);
        }
        const std::size_t side = vantel::Shape(work).size();
        const auto matrix = random_unitary(side);
        const vantel::Unitary steps(dimensions, matrix);
        EXPECT_EQ(steps.rotations(), side * (side - 1) / 2);
        const auto before = vantel::amplitudes(all);
        EXPECT_EQ(steps.apply(work, partners[0] != 17), steps.gates());
        const auto after = vantel::amplitudes(all);
        // The largest amplitude was made real, and the next of the same size, by rounding, could have been.
        Complex phase = 0;
        for (std::size_t i = 0; i < after.size(); ++i)
            phase += after[i] * std::conj(matrix[i % side * side + i / side]);
        phase /= std::abs(phase);
        for (std::size_t i = 0; i < after.size(); ++i)
            ASSERT_NEAR(
                std::abs(after[i] / phase * std::sqrt(static_cast<double>(side)) - matrix[i % side * side + i / side]),
                0, 1e-6)
                << side << ' ' << i;
        steps.inverse().apply(work);
        EXPECT_NEAR(vantel::fidelity(all, before), 1, 1e-6);
    }
}

TEST(UnitaryMatrix, ActsWhereItsConditionsHold) {
    vantel::Qudit a(4), b(3);
    vantel::hadamard(b);
    std::vector<double> matrix(144); // (1, 0) and (0, 1) change places, the other ten stay
    for (const std::size_t row : {0U, 2U, 3U, 5U, 6U, 7U, 8U, 9U, 10U, 11U}) matrix[row * 12 + row] = 1;
    matrix[1 * 12 + 4] = matrix[4 * 12 + 1] = 1;
    const std::size_t gates = vantel::unitary({a, b}, matrix);
    EXPECT_LT(gates, 20U); // one rotation and at most two phases
    vantel::unitary(a, {0, 0, 0, 1, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}, b == 2);
    const auto table = vantel::probabilities(a, b);
    for (const auto& [x, y] : {std::array{0, 0}, {1, 0}, {1, 2}}) EXPECT_NEAR(table(x, y), 1.0 / 3, 1e-6) << x << y;
    EXPECT_THROW(vantel::unitary(a, random_unitary(4), a == 1), vantel::Error);
    EXPECT_THROW(vantel::unitary({b, b}, random_unitary(9)), std::invalid_argument);
}

TEST(UnitaryMatrix, TellsWhatItCannotDo) {
    auto full = vantel::make_register({3, 2, 2, 2, 2, 2, 2, 2, 2, 2});
    (void)vantel::measure(full);
    vantel::unitary({full[4], full[8]}, random_unitary(4)); // no helper needed
    try {
        vantel::unitary(full[0], random_unitary(3));
        ADD_FAILURE();
    } catch (const vantel::Error& failure) {
        EXPECT_NE(std::string(failure.what()).find("helper"), std::string::npos);
    }
    try {
        vantel::unitary(full[1], {1, 0, 0, Complex(0, 1.25)});
        ADD_FAILURE();
    } catch (const std::invalid_argument& failure) {
        EXPECT_TRUE(std::string(failure.what()).ends_with("off the identity by 0.562"));
    }
}

TEST(PreparedState, HasItsAmplitudesAndBeginsInLevelZero) {
    vantel::Qudit a(3), b(2);
    const std::vector<Complex> state{0, Complex(0, 2), 0, 1, 0, Complex(-1, 1)};
    EXPECT_LT(vantel::prepare({a, b}, state), 40U);
    EXPECT_NEAR(vantel::fidelity({a, b}, state), 1, 1e-6);
    EXPECT_THROW(vantel::prepare(a, {1, 0, 1}), std::domain_error);
}
} // namespace
