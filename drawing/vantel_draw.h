/**
 * @file vantel_draw.h
 * @brief Pictures of a state: bars of text, and SVG.
 *
 * They are drawn from a density matrix, as vantel_reduced_density_matrix() writes it; nothing here calls the
 * library or needs it. Link `vantel::draw` with CMake, or what `pkg-config --libs vantel-draw` says.
 *
 * - **Sizes.** The length of a bar and the area of a square are in proportion to what they show. A bar fills
 * its whole length only at probability 1.
 * - **Colours** are phases, by the perceptually uniform cyclic colour map *romaO*, which readers with colour
 *   vision deficiencies can tell apart. A phase exists as far as two rows r and c are coherent, that is by
 *   |rho_rc| / sqrt(rho_rr rho_cc), 0 .. 1: colours fade to grey with it, so that what has no phase has no
 * colour. A picture of outcomes shows each phase against the likeliest outcome, which has the colour of phase
 * 0 as far as any other outcome is coherent with it.
 * - **Many rows** are reduced to the likeliest ones, in their order; what the others hold together is said.
 * - **Readers.** An SVG has a title, a description with the numbers, and colours for light and dark pages.
 */
#ifndef VANTEL_DRAW_H
#define VANTEL_DRAW_H

#include <stddef.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

/** What is drawn: P is the product of the dimensions, and the first qudit varies fastest in rows and columns.
 */
typedef struct VantelPicture {
    const char* title;            /**< UTF-8 text; any characters. */
    const int* dimensions;        /**< The number of levels of each qudit, `qudit_count` of them. */
    size_t qudit_count;           /**< How many qudits, 1 to 10. */
    const float* real_parts;      /**< P * P elements of the density matrix, row by row. */
    const float* imaginary_parts; /**< P * P elements. */
    const char* const* names;     /**< `qudit_count` names of qudits; null for q0, q1, ... */
} VantelPicture;

/**
 * @brief Writes one line for each outcome of probability 0.0005 or more, at most 24: levels, a bar, the
 * probability, and the phase in units of pi where the outcome has one.
 *
 * Bars are coloured where the stream is a terminal, unless the environment has `NO_COLOR` with any text or
 * `TERM` is `dumb` or missing.
 * @return 0, or 1 if it could not be written.
 */
int vantel_draw_text(FILE* stream, const VantelPicture* picture);

/** @brief Writes an SVG with a bar for each outcome, at most 10. @return 0, or 1 if it could not be written.
 */
int vantel_draw_outcomes_svg(FILE* stream, const VantelPicture* picture);

/**
 * @brief Writes an SVG with a square for each element of the density matrix, of at most 10 rows and columns.
 * @return 0, or 1 if it could not be written.
 */
int vantel_draw_density_svg(FILE* stream, const VantelPicture* picture);

#ifdef __cplusplus
}
#endif

#endif
