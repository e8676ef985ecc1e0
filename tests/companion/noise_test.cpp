// Noise: which operator is drawn, what it does to a state, and many runs of a circuit.
#include <gtest/gtest.h>
#include <vantel_circuit_text.hpp>
#include <vantel_ensemble.hpp>
#include <vantel_quantities.hpp>

namespace {
using vantel::Complex;

TEST(WeylNoise, DrawsEachErrorByItsShare) {
    const auto depolarising = vantel::depolarising(3, 0.4);
    const auto dephasing = vantel::dephasing(5, 0.4);
    EXPECT_EQ(depolarising.draw(0.599), vantel::Weyl{});
    EXPECT_EQ(dephasing.draw(0.599), vantel::Weyl{});
    for (int error = 1; error < 9; ++error)
        EXPECT_EQ(depolarising.draw(0.575 + 0.05 * error), (vantel::Weyl{error % 3, error / 3}));
    for (int error = 1; error < 5; ++error) EXPECT_EQ(dephasing.draw(0.55 + 0.1 * error), (vantel::Weyl{0, error}));
    EXPECT_EQ(vantel::dephasing(2, 0).draw(1 - 0x1p-53), vantel::Weyl{});
    EXPECT_THROW(vantel::WeylChannel(2, {0.5, 0.25, 0.25, 0.25}), std::invalid_argument);
    EXPECT_THROW((void)vantel::depolarising(2, 1.5), std::invalid_argument);
}

// After each draw the state is the one of that operator; a hundred for more helpers than one.
TEST(KrausNoise, LeavesTheStateOfTheOperatorThatItTells) {
    std::vector<std::size_t> found(3);
    for (const auto& channel : {vantel::amplitude_damping(3, 0.5), kraus(vantel::depolarising(4, 0.9))}) {
        const auto d = static_cast<std::size_t>(channel.dimension());
        std::vector<Complex> before(d * 2), after(d * 2);
        for (std::size_t i = 0; i < before.size(); ++i)
            before[i] = std::polar(static_cast<double>(i + 1), static_cast<double>(i % 3));
        for (int round = 0; round < 50; ++round) {
            vantel::Qudit target(channel.dimension()), spectator(2);
            vantel::prepare({target, spectator}, before);
            const auto& matrix = channel.operators().at(channel.apply(target));
            for (std::size_t i = 0; i < after.size(); ++i) {
                after[i] = 0;
                for (std::size_t v = 0; v < d; ++v) after[i] += matrix[i % d * d + v] * before[i / d * d + v];
            }
            ASSERT_NEAR(vantel::fidelity({target, spectator}, after), 1, 1e-5);
        }
    }
    for (int round = 0; round < 3000; ++round) {
        vantel::Qudit qutrit(3);
        vantel::shift(qutrit);
        const std::size_t lost = vantel::amplitude_damping(3, 0.5).apply(qutrit);
        EXPECT_EQ(vantel::measure(qutrit), 2 - static_cast<int>(lost));
        ++found[lost];
    }
    // Hoeffding: off by t or more at most 2 exp(-2 t^2 / 3000) of the time; two shares together 1e-9.
    EXPECT_NEAR(static_cast<double>(found[0]), 750, 184);
    EXPECT_NEAR(static_cast<double>(found[1]), 1500, 184);
    EXPECT_THROW(vantel::KrausChannel(2, {{1, 0, 0, 0.5}}), std::invalid_argument);
}

TEST(Ensemble, HasTheSameCountsWithAnyNumberOfThreads) {
    const auto circuit = vantel::read_circuit("qudit a 3\nqudit b 2\nvalue never\nhadamard a\ndephase a 0.3\n"
                                              "measure b -> n\ninverse_hadamard a\ndepolarise a 0.1\n"
                                              "measure a -> m\n");
    const auto runs = vantel::ensemble(circuit, 6001, 1, 7);
    EXPECT_EQ(runs.counts(), vantel::ensemble(circuit, 6001, 3, 7).counts());
    EXPECT_NE(runs.counts(), vantel::ensemble(circuit, 6001, 3, 8).counts());
    EXPECT_TRUE(runs.repeatable());
    EXPECT_EQ(runs.shots(), 6001U);
    // The level is right without errors, and where the errors undo each other: a clock, then a shift. Of the
    // eight errors two leave it, two take each wrong level back.
    // Hoeffding: off by 0.042 at most once in a billion.
    EXPECT_NEAR(runs.share("m", 0), 0.7 * (0.9 + 0.1 * 2 / 8) + 0.3 * 0.1 * 3 / 8, 0.042);
    EXPECT_EQ(runs.share("never", 0), 1);
    EXPECT_THROW((void)circuit.run(), std::logic_error);
    EXPECT_THROW((void)circuit.inverse(), std::logic_error);
}

TEST(Ensemble, IsTheSumOfItsParts) {
    // A table that all shots share, with parts inside and across its blocks, and a state for each shot.
    for (const auto& [noise, shots, border] : {std::tuple("", std::size_t{200000}, std::size_t{70000}),
                                               std::tuple("dephase a 0.5\n", std::size_t{500}, std::size_t{123})}) {
        const auto circuit =
            vantel::read_circuit("qudit a 3\ncycle a 0.5\n" + std::string(noise) + "hadamard a\nmeasure a -> m\n");
        const vantel::Trials trials(circuit, 9);
        auto counts = trials.run(0, border, 2).counts();
        const auto rest = trials.run(border, shots, 3);
        for (const auto& [numbers, found] : rest.counts()) counts[numbers] += found;
        EXPECT_EQ(counts, vantel::ensemble(circuit, shots, 1, 9).counts());
        EXPECT_EQ(trials.run(5, 5).shots(), 0U);
    }
}

TEST(Ensemble, SaysWhereItCannotBeRepeated) {
    // The first qudit keeps the places of qudits and values apart.
    const std::string pair = "qudit other 2\nqudit a 3\nqudit b 3\nhadamard a\nsum a b\nmeasure a -> m\n";
    const auto last = vantel::ensemble(vantel::read_circuit(pair + "measure b -> n\n"), 300, 2, 1);
    EXPECT_TRUE(last.repeatable());
    for (const std::string midway : {"shift b if a == 1\n", "shift b if m == 1\n", "reset b -> r\n", "damp b 0.5\n",
                                     "measure b -> m\n", "project -> p if b == 1\n"}) {
        const auto runs = vantel::ensemble(vantel::read_circuit(pair + midway + "measure b -> n\n"), 300, 2, 1);
        EXPECT_FALSE(runs.repeatable()) << midway;
        if (midway[0] == 's') {
            EXPECT_EQ(runs.count({1, 0}) + runs.count({0, 0}) + runs.count({2, 2}), 300U) << midway;
        }
    }
    EXPECT_EQ(last.count({0, 0}) + last.count({1, 1}) + last.count({2, 2}), 300U);
    EXPECT_EQ(
        testing::PrintToString(vantel::ensemble(vantel::read_circuit("qudit a 2\ncycle a\nreset a -> long\n"), 12)),
        "long shots\n   1 12\ncannot be repeated: the circuit collapses its state midway\n");
}
} // namespace
