// What is computed of a state, against numbers known in closed form.
#include <gtest/gtest.h>

#include <vantel_quantities.hpp>

namespace {

TEST(Quantity, OfPartsOfAGhzState) {
    auto q = vantel::make_register({3, 5, 4});
    vantel::prepare_ghz(q);
    EXPECT_NEAR(vantel::entropy(q), 0, 1e-5);
    EXPECT_NEAR(vantel::entropy({q[2], q[0]}), std::log(3), 1e-6);
    EXPECT_NEAR(vantel::entropy_in_bits(q[1]), std::log2(3), 1e-6);
    EXPECT_NEAR(vantel::purity(q[1]), 1.0 / 3, 1e-6);
    EXPECT_NEAR(vantel::expectation(q[1], std::vector<float>(25, 2)).real(), 2, 1e-6);
    EXPECT_NEAR(vantel::fidelity({q[0], q[2]}, std::vector<vantel::Complex>(12, 2)), 1.0 / 12, 1e-6);
    EXPECT_THROW((void)vantel::expectation(q[1], std::vector<float>(24)), std::invalid_argument);
    try {
        (void)vantel::amplitudes(q[1]);
        FAIL();
    } catch (const std::domain_error& failure) {
        EXPECT_NE(std::string(failure.what()).find("0.333333"), std::string::npos) << failure.what();
    }
}

TEST(Quantity, HasThePhasesOfTheState) {
    vantel::Qudit a(2), b(3);
    vantel::hadamard(a);
    vantel::clock(a, 0.5);
    vantel::hadamard(b);
    vantel::clock(b);
    const auto state = vantel::amplitudes({a, b});
    for (int row = 0; row < 6; ++row)
        EXPECT_NEAR(std::abs(state.at(static_cast<std::size_t>(row)) / state[0] -
                             std::polar(1.0, std::numbers::pi * (row % 2 / 2.0 + row / 2 * 2.0 / 3))),
                    0, 1e-6);
    EXPECT_NEAR(vantel::fidelity({a, b}, state), 1, 1e-6);
    EXPECT_NEAR(std::abs(vantel::expectation(a, {1, 2, 0, 3}) - vantel::Complex(2, 1)), 0, 1e-6);
}

TEST(Quantity, SchmidtCoefficientsOfAPartlyEntangledPair) {
    vantel::Qudit a(3), b(4), c(2);
    vantel::cycle(a, 0.5); // levels 0 .. 2 with probabilities 4/9, 4/9, 1/9
    vantel::cycle(c, a == 2);
    vantel::hadamard(b, c == 1);
    const auto found = vantel::schmidt({b, a}, c);
    EXPECT_NEAR(found.at(0), std::sqrt(8.0 / 9), 1e-6);
    EXPECT_NEAR(found.at(1), 1.0 / 3, 1e-6);
    EXPECT_NEAR(vantel::schmidt(a, {c, b}).at(2), 0, 1e-6);
    EXPECT_THROW((void)vantel::schmidt(a, {a, c}), std::invalid_argument);
}

} // namespace
