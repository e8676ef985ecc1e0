/* Pictures of a state for the examples: text bars in a terminal, and SVG files on request. The length of a
   bar, or the area of a square, is a probability; its colour is the phase. */
#ifndef DRAW_H
#define DRAW_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A density matrix as vantel_reduced_density_matrix() writes it, over qudits of these dimensions. */
typedef struct Picture {
    const char* title;
    const int* dimensions;
    size_t qudit_count;
    const float* real_parts;
    const float* imaginary_parts;
} Picture;

/* One line per outcome that can happen. Phases are those against the likeliest outcome, and are shown as
   colours where standard output is a terminal. */
void draw_text(const Picture* picture);

/* Where the command line says `--svg NAME`, writes NAME-outcomes.svg and NAME-density.svg. Returns 0, or 1 if
   a file could not be written. */
int draw_svg_on_request(int argc, char** argv, const Picture* picture);

#ifdef __cplusplus
}
#endif

#endif
