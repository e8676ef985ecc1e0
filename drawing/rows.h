/* What the pictures share: which rows of a density matrix are shown, and what is read of them. */
#ifndef VANTEL_DRAWING_ROWS_H
#define VANTEL_DRAWING_ROWS_H

#include "vantel_draw.h"

enum { vantel_draw_most_rows = 24, vantel_draw_number_length = 16, vantel_draw_name_length = 24 };

/* Below this size nothing is drawn; three decimals would show it as 0. */
#define VANTEL_DRAW_VISIBLE 5e-4

/* The rows that a picture shows, rising, and what is left out. */
typedef struct Rows {
    size_t shown[vantel_draw_most_rows];
    size_t count;
    size_t left_out;
    double left_out_probability;
} Rows;

/* Every row if there are at most `most`, else the likeliest visible ones. */
Rows vantel_draw_choose_rows(const VantelPicture* picture, size_t most);

size_t vantel_draw_side(const VantelPicture* picture);
double vantel_draw_size(const VantelPicture* picture, size_t row, size_t column);

/* The phase of an element in units of pi, -1 .. 1. */
double vantel_draw_phase(const VantelPicture* picture, size_t row, size_t column);

/* |rho_rc| / sqrt(rho_rr rho_cc), 0 .. 1; 0 where a row is empty. */
double vantel_draw_coherence(const VantelPicture* picture, size_t row, size_t column);

/* The row that phases are shown against: the likeliest. */
size_t vantel_draw_likeliest(const VantelPicture* picture);

/* How far an outcome has a phase: its coherence with the likeliest one, and for that one the best of any
   other outcome's, or 1 if it is the only one. */
double vantel_draw_coherence_of_outcome(const VantelPicture* picture, size_t row, size_t likeliest);

size_t vantel_draw_level(const VantelPicture* picture, size_t row, size_t qudit);
const char* vantel_draw_name(const VantelPicture* picture, size_t qudit, char text[vantel_draw_name_length]);

/* A probability with three decimals, which says 1 only of 1. */
const char* vantel_draw_number(double probability, char text[vantel_draw_number_length]);

#endif
