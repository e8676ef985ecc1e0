// Circuits: what a run calls, what text and drawings say, and what is refused where.
#include <cstring>
#include <gtest/gtest.h>
#include <sstream>
#include <vantel_circuit_drawing.hpp>
#include <vantel_circuit_text.hpp>
#include <vantel_quantities.hpp>

namespace {
const std::string gates = "qudit a 3\nqudit b 3\nqudit c 2\nhadamard a\ncycle b 0.3 if a != 1\nclock a 0.25\n"
                          "inverse_hadamard c if b == 2 && a == 0\nsum a b\nshift a\ni_swap a b -0.7 if c == 1\n"
                          "phase_rotate 0.1 if a == 1 && c == 0\nswap_levels b a\nadd b -2\ninverse_sum c a\n"
                          "unitary c a 0 0 1 0 0 0 1 0 0 0 0 0 0 1 0 0 0 0 0 0 0 0 0 (0,1) 0 0 0 0 1 0 0 0 0 1 0 0\n";

TEST(CircuitRun, HasTheBitsOfTheCallsAndItsTextAndInverse) {
    const vantel::Circuit circuit = vantel::read_circuit("# all gates\r\n\n" + gates);
    std::ostringstream written;
    written << circuit;
    EXPECT_EQ(written.str(), gates);
    const auto run = circuit.run();

    auto q = vantel::make_register({3, 3, 2});
    hadamard(q[0]);
    cycle(q[1], 0.3F, q[0] != 1);
    clock(q[0], 0.25F);
    inverse_hadamard(q[2], q[1] == 2 && q[0] == 0);
    sum(q[0], q[1]);
    shift(q[0]);
    i_swap(q[0], q[1], -0.7F, q[2] == 1);
    vantel::phase_rotate(q[0] == 1 && q[2] == 0, 0.1F);
    swap_levels(q[1], q[0]);
    add(q[1], -2);
    inverse_sum(q[2], q[0]);
    vantel::unitary({q[2], q[0]}, circuit.steps().back().matrix);
    const auto expected = vantel::reduced_density_matrix(q), found = vantel::reduced_density_matrix(run.qudits);
    const std::size_t bytes = expected.side() * expected.side() * sizeof(float);
    EXPECT_EQ(std::memcmp(expected.real(), found.real(), bytes), 0);
    EXPECT_EQ(std::memcmp(expected.imaginary(), found.imaginary(), bytes), 0);

    auto twice = circuit.repeat(2);
    twice.append(circuit.inverse().repeat(2));
    EXPECT_EQ(twice.steps().size(), 48U);
    EXPECT_NEAR(vantel::probabilities(twice.run().qudits)(0, 0, 0), 1, 1e-5);
}

TEST(CircuitRun, AsksWhatItHasRead) {
    vantel::Circuit teleport;
    const auto message = teleport.add_qudit("message", 3), here = teleport.add_qudit("here", 3),
               there = teleport.add_qudit("there", 3);
    teleport.hadamard(here).sum(here, there).inverse_sum(message, here).inverse_hadamard(message);
    const auto phase = teleport.measure({message, here}, {"phase", "offset"});
    const auto offset = teleport.value("offset");
    for (const int k : {1, 2}) teleport.add(there, -k, offset == k).clock(there, -k, phase != 0 && phase == k);
    EXPECT_EQ(teleport.project({there == 1, phase == 5}, "never").place, 2U);
    EXPECT_EQ(teleport.reset(there, "level", phase == 5).place, 3U);

    vantel::Circuit larger{2, 3, 3, 3}; // and on other qudits
    larger.append(teleport, {{2}, {1}, {3}});
    auto qudits = vantel::make_register(larger.dimensions());
    for (int round = 0; round < 9; ++round) {
        for (auto& qudit : qudits) (void)vantel::reset(qudit);
        vantel::prepare(qudits[2], {1, vantel::Complex(0, 2), 3});
        const auto readings = larger.run(qudits);
        EXPECT_NEAR(vantel::fidelity(qudits[3], {1, vantel::Complex(0, 2), 3}), 1, 1e-5);
        EXPECT_EQ(readings["phase"], vantel::measure(qudits[2]));
        EXPECT_EQ(readings["level"], 0);
    }
    EXPECT_THROW((void)teleport.inverse(), std::logic_error);
    EXPECT_THROW(larger.append(teleport, {{0}, {1}, {3}}), std::invalid_argument);
    EXPECT_THROW(larger.cycle(here, here == 1), std::invalid_argument);
}

TEST(CircuitText, TellsWhereItIsWrong) {
    const std::array<std::array<std::string, 2>, 10> wrong{{
        {"hadamard c", "column 10: there is no qudit 'c'"},
        {"  cycle a 0.5.5", "column 11: '0.5.5' is no number"},
        {"cycle a 1 2", "column 11: the end of the line expected, not '2'"},
        {"swap_levels a a", "column 1: a qudit is listed twice"},
        {"measure a", "column 10: '->' expected, not the end of the line"},
        {"measure a -> a", "column 14: the name a is taken"},
        {"cycle a if m == 1", "column 12: there is no qudit or value 'm'"},
        {"cycle a if b == 0.5", "column 17: a whole number below a billion expected"},
        {"unitary a (0;1)", "column 13: a sign that has no meaning here"},
        {"qudit if 3", "column 7: a name expected, not 'if'"},
    }};
    for (const auto& [line, refusal] : wrong) try {
            (void)vantel::read_circuit("qudit a 2\nqudit b 2\n" + line);
            ADD_FAILURE() << line;
        } catch (const vantel::CircuitTextError& failure) {
            EXPECT_EQ(failure.what(), "line 3, " + refusal);
        }
}

TEST(CircuitDrawing, IsAligned) {
    const auto circuit = vantel::read_circuit("qudit a 3\nqudit bob 10\nqudit c 2\nvalue m\nsum a c\nhadamard bob\n"
                                              "measure a -> m\nadd bob -2 if m == 1 && a != 2\nhadamard c\n"
                                              "phase_rotate 3 if a == 0 && c == 1\n");
    const std::string box = "a (3):    ─┤c├──┤M→m├───○2────────●0──────\n"
                            "            │           │         │\n"
                            "bob (10): ──┼───┤H├────┤-2 m=1├───┼───────\n"
                            "            │                     │\n"
                            "c (2):    ─┤+├──┤H├───────────────●1 e^3i─\n";
    EXPECT_EQ(vantel::draw_text(circuit), box);
    const std::string ascii = vantel::draw_text(circuit, vantel::Characters::ascii);
    EXPECT_EQ(ascii.substr(ascii.rfind('c')), "c (2):    -[+]--[H]--------------(1 e^3i)--\n");
    const std::string svg = vantel::draw_svg(circuit);
    std::size_t circles = 0;
    for (std::size_t at = 0; (at = svg.find("<circle", at)) != std::string::npos; ++at) ++circles;
    EXPECT_EQ(circles, 3U);
    EXPECT_NE(svg.find(">M→m</text>"), std::string::npos);
}
} // namespace
