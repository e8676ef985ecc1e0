// What the examples in C++ share: a check of what they claim, and a picture of a state.
#pragma once

#include <cstdlib>
#include <iostream>
#include <vector>

#include <vantel.hpp>

#include "draw.h"

/// Ends the example as failed unless what it claims is true.
inline void check(bool claim, const char* text) {
    if (claim)
        return;
    std::cerr << "not true: " << text << '\n';
    std::exit(EXIT_FAILURE);
}

/// Whether a count of `trials` independent trials lies within five standard deviations of its mean.
inline bool is_expected(double count, double trials, double probability) {
    return std::abs(count - trials * probability) <=
           5 * std::sqrt(trials * probability * (1 - probability)) + 0.5;
}

/// Draws a state as text, and as SVG where the command line asks for it.
template <vantel::QuditRange Range>
void draw(const char* title, Range&& qudits, int argc = 0, char** argv = nullptr) {
    const auto matrix = vantel::reduced_density_matrix(qudits);
    std::vector<int> dimensions;
    for (const vantel::Qudit& qudit : qudits)
        dimensions.push_back(qudit.dimension());
    const Picture picture{title, dimensions.data(), dimensions.size(), matrix.real(), matrix.imaginary()};
    draw_text(&picture);
    check(draw_svg_on_request(argc, argv, &picture) == 0, "the SVG files are written");
}
