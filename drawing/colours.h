/* The colours of phases. */
#ifndef VANTEL_DRAWING_COLOURS_H
#define VANTEL_DRAWING_COLOURS_H

typedef struct Colour {
    unsigned red, green, blue; /* 0 .. 255 */
} Colour;

/* The colour of a phase, in units of pi and with any number of turns, faded to grey by `coherence`, 0 .. 1.
 */
Colour vantel_draw_colour(double phase, double coherence);

#endif
