/* The frame that both kinds of SVG share. */
#ifndef VANTEL_DRAWING_SVG_H
#define VANTEL_DRAWING_SVG_H

#include "rows.h"

enum { vantel_draw_svg_legend_width = 320, vantel_draw_svg_legend_height = 62 };

/* Text with the characters that XML keeps for itself replaced; a control character becomes a space. */
void vantel_draw_svg_text(FILE* stream, const char* text);

/* Everything up to the drawing: the size, titles for readers and for the eye, colours, and a page behind it
 * all. */
void vantel_draw_svg_open(FILE* stream, const VantelPicture* picture, const Rows* rows, const char* kind, double width,
                          double height);

/* A rectangle in the colour of a phase. */
void vantel_draw_svg_box(FILE* stream, double x, double y, double width, double height, double phase, double coherence);

/* The colours of all phases, of full, half and no coherence. */
void vantel_draw_svg_legend(FILE* stream, double x, double y, const char* of_what);

/* The width that the longest name takes. */
double vantel_draw_svg_name_width(const VantelPicture* picture);

/* The levels of the shown rows as column labels: a line for each qudit, with its name at x. */
void vantel_draw_svg_column_labels(FILE* stream, const VantelPicture* picture, const Rows* rows, double left, double y,
                                   double column_width, double name_x, const char* name_anchor);

/* The end of the file. Returns 0, or 1 if anything could not be written. */
int vantel_draw_svg_close(FILE* stream);

#endif
