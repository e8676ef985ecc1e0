// What is computed of a state, against numbers known in closed form.
#include <gtest/gtest.h>
#include <vantel_quantities.hpp>

TEST(Quantity, OfPartsOfAGhzState) {
    auto q = vantel::make_register({3, 5, 4});
    vantel::prepare_ghz(q);
    EXPECT_NEAR(vantel::entropy_in_bits({q[2], q[0]}), std::log2(3), 1e-6);
    EXPECT_NEAR(vantel::purity(q[1]), 1.0 / 3, 1e-6);
    EXPECT_NEAR(vantel::fidelity({q[0], q[2]}, std::vector<vantel::Complex>(12, 2)), 1.0 / 12, 1e-6);
    EXPECT_THROW((void)vantel::amplitudes(q[1]), std::domain_error);
    EXPECT_THROW((void)vantel::expectation(q[1], std::vector<float>(24)), std::invalid_argument);
}

TEST(Quantity, HasThePhasesOfTheState) {
    vantel::Qudit a(2), b(3);
    vantel::hadamard(a);
    vantel::clock(a, 0.5);
    vantel::hadamard(b);
    vantel::clock(b);
    const auto state = vantel::amplitudes({a, b});
    EXPECT_NEAR(std::abs(state.at(5) / state[0] - std::polar(1.0, std::numbers::pi * 11 / 6)), 0, 1e-6);
    EXPECT_NEAR(std::abs(vantel::expectation(a, {1, 2, 0, 3}) - vantel::Complex(2, 1)), 0, 1e-6);
    EXPECT_NEAR(vantel::entropy({a, b}), 0, 1e-5);
}

TEST(Quantity, SchmidtCoefficientsOfAPartlyEntangledPair) {
    vantel::Qudit a(3), b(4);
    vantel::cycle(a, 0.5); // levels with probabilities 4/9, 4/9 and 1/9
    vantel::cycle(b, a == 2);
    EXPECT_NEAR(vantel::schmidt(b, a).at(1), 1.0 / 3, 1e-6);
    EXPECT_NEAR(vantel::schmidt(a, b).at(2), 0, 1e-6);
}
