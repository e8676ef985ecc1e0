// Teleportation of a qutrit: a state that nobody knows goes to another place by a shared Bell pair and two
// measured levels.
#include "check.hpp"
#include <array>

int main(int argc, char** argv) {
    const char* const svg = svg_name(argc, argv);
    constexpr int levels = 3;
    std::array message{vantel::Qudit(levels)};
    vantel::cycle(message[0], 0.4);
    vantel::clock(message[0], 0.3);
    draw("The message before", message, {"message"}, svg);
    const auto before = vantel::reduced_density_matrix(message);

    vantel::Qudit here(levels);
    std::array there{vantel::Qudit(levels)};
    vantel::prepare_bell(here, there[0]);

    // The Bell measurement undoes the preparation of a Bell pair and reads which one it would have been.
    vantel::inverse_sum(message[0], here);
    vantel::inverse_hadamard(message[0]);
    const auto [phase, offset] = vantel::measure(message[0], here);
    std::cout << "told by telephone: " << phase << ' ' << offset << '\n';

    // The measurement left level k as k + offset, with the phase exp(2 pi i k phase / 3).
    vantel::add(there[0], -offset);
    vantel::clock(there[0], -phase);
    draw("The message after", there, {"there"});

    const auto after = vantel::reduced_density_matrix(there);
    for (std::size_t row = 0; row < levels; ++row)
        for (std::size_t column = 0; column < levels; ++column)
            check(std::abs(after(row, column) - before(row, column)) < 1e-5F, "the state has arrived");
}
