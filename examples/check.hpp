// What the examples in C++ share: a check of what they claim, and a picture of a state.
#pragma once

#include "options.h"
#include <cstdlib>
#include <iostream>
#include <vantel.hpp>
#include <vector>

/// Ends the example as failed unless what it claims is true.
inline void check(bool claim, const char* text) {
    if (claim) return;
    std::cerr << "not true: " << text << '\n';
    std::exit(EXIT_FAILURE);
}

/// Whether a count of `trials` independent trials lies within five standard deviations of its mean.
inline bool is_expected(double count, double trials, double probability) {
    return std::abs(count - trials * probability) <= 5 * std::sqrt(trials * probability * (1 - probability)) + 0.5;
}

/// Draws a state as text, and as SVG if there is a name for the files.
/// @param names  of the qudits, as many as there are; without any they are numbered.
template <vantel::QuditRange Range>
void draw(const char* title, Range&& qudits, const std::vector<const char*>& names = {}, const char* svg = nullptr) {
    const auto matrix = vantel::reduced_density_matrix(qudits);
    std::vector<int> dimensions;
    for (const vantel::Qudit& qudit : qudits) dimensions.push_back(qudit.dimension());
    const VantelPicture picture{title,         dimensions.data(),  dimensions.size(),
                                matrix.real(), matrix.imaginary(), names.empty() ? nullptr : names.data()};
    check(show_picture(&picture, svg) == 0, "the pictures are written");
}
