// Grover's search in a register of three, four and five levels: one marked combination of sixty.
#include "check.hpp"
#include <cmath>
#include <numbers>

int main(int argc, char** argv) {
    const char* const svg = svg_name(argc, argv);
    std::vector<vantel::Qudit> qudits;
    for (const int levels : {3, 4, 5}) qudits.emplace_back(levels);
    const std::vector<vantel::Condition> marked{qudits[0] == 2, qudits[1] == 1, qudits[2] == 3};
    const std::vector<vantel::Condition> zero{qudits[0] == 0, qudits[1] == 0, qudits[2] == 0};
    constexpr double half_turn = std::numbers::pi;

    for (auto& qudit : qudits) vantel::hadamard(qudit);
    // Each round turns the state by twice the angle between the even superposition and the unmarked part.
    const double angle = std::asin(1 / std::sqrt(60.0));
    const int rounds = static_cast<int>(std::numbers::pi / (4 * angle));
    for (int round = 1; round <= rounds; ++round) {
        vantel::phase_rotate(marked, half_turn);
        for (auto& qudit : qudits) vantel::inverse_hadamard(qudit);
        vantel::phase_rotate(zero, half_turn);
        for (auto& qudit : qudits) vantel::hadamard(qudit);

        const double found = vantel::probabilities(qudits)(2, 1, 3);
        const double told = std::pow(std::sin((2 * round + 1) * angle), 2);
        std::cout << "round " << round << ": found with probability " << found << '\n';
        check(std::abs(found - told) < 1e-5, "the probability is sin^2 of (2 rounds + 1) angles");
    }
    draw("The register after the search", qudits, {"three", "four", "five"}, svg);
    check(vantel::probabilities(qudits)(2, 1, 3) > 0.98F, "the search finds what is marked");
}
