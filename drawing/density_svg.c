#include "svg.h"
#include <math.h>

enum { most_rows = 12, cell = 30, line_height = 15, level_width = 15 };

/* The names of the qudits above the levels of the rows, slanting upwards. */
static void put_row_labels(FILE* stream, const VantelPicture* picture, const Rows* rows, double top) {
    char name[vantel_draw_name_length];
    for (size_t qudit = 0; qudit < picture->qudit_count; ++qudit) {
        const double x = 20 + (double)qudit * level_width;
        fprintf(stream,
                "<text class=\"vq-quiet\" text-anchor=\"start\" transform=\"translate(%.1f %.1f) rotate(-60)\">", x + 2,
                top - 5);
        vantel_draw_svg_text(stream, vantel_draw_name(picture, qudit, name));
        fputs("</text>\n", stream);
        for (size_t i = 0; i < rows->count; ++i)
            fprintf(stream, "<text class=\"vq-ink\" x=\"%.1f\" y=\"%.1f\">%zu</text>\n", x,
                    top + ((double)i + 0.5) * cell + 4, vantel_draw_level(picture, rows->shown[i], qudit));
    }
}

/* What the areas mean: the largest element, and a quarter of it. */
static void put_sizes(FILE* stream, double x, double y, double largest) {
    char number[vantel_draw_number_length];
    fprintf(stream, "<text class=\"vq-quiet\" x=\"%.1f\" y=\"%.1f\" text-anchor=\"start\">area: size</text>\n", x,
            y + 8);
    for (int i = 0; i < 2; ++i) {
        const double edge = (cell - 3) / (1.0 + i), middle = x + cell / 2.0 + i * 48;
        vantel_draw_svg_box(stream, middle - edge / 2, y + 28 - edge / 2, edge, edge, 0, 0);
        fprintf(stream, "<text class=\"vq-quiet\" x=\"%.1f\" y=\"%.1f\" font-size=\"11\">%s</text>\n", middle, y + 55,
                vantel_draw_number(largest / (i == 0 ? 1 : 4), number));
    }
}

int vantel_draw_density_svg(FILE* stream, const VantelPicture* picture) {
    const Rows rows = vantel_draw_choose_rows(picture, most_rows);
    const double qudits = (double)picture->qudit_count, names = vantel_draw_svg_name_width(picture);
    const double left = 22 + qudits * level_width, grid = (double)rows.count * cell;
    const double top = 40 + fmax(qudits * line_height, names * 0.9), legend = top + grid + 18;
    const double sizes = 12 + vantel_draw_svg_legend_width - 66;
    vantel_draw_svg_open(stream, picture, &rows, "A square for the size of each element of the density matrix",
                         fmax(left + grid + names + 18, sizes + 88),
                         legend + vantel_draw_svg_legend_height + (rows.left_out > 0 ? line_height : 0));
    double largest = VANTEL_DRAW_VISIBLE;
    for (size_t i = 0; i < rows.count; ++i)
        largest = fmax(largest, vantel_draw_size(picture, rows.shown[i], rows.shown[i]));

    for (size_t i = 0; i <= rows.count; ++i)
        fprintf(stream, "<path class=\"vq-rule\" d=\"M%.1f %.1fh%.1fM%.1f %.1fv%.1f\"/>\n", left,
                top + (double)i * cell, grid, left + (double)i * cell, top, grid);
    put_row_labels(stream, picture, &rows, top);
    vantel_draw_svg_column_labels(stream, picture, &rows, left, top - 8 - (qudits - 1) * line_height, cell,
                                  left + grid + 6, "start");
    for (size_t i = 0; i < rows.count; ++i)
        for (size_t k = 0; k < rows.count; ++k) {
            const size_t row = rows.shown[i], column = rows.shown[k];
            const double size = vantel_draw_size(picture, row, column);
            const double edge = (cell - 3) * sqrt(fmin(size / largest, 1));
            if (size >= VANTEL_DRAW_VISIBLE)
                vantel_draw_svg_box(
                    stream, left + ((double)k + 0.5) * cell - edge / 2, top + ((double)i + 0.5) * cell - edge / 2, edge,
                    edge, vantel_draw_phase(picture, row, column), vantel_draw_coherence(picture, row, column));
        }
    vantel_draw_svg_legend(stream, 12, legend, "phase of an element");
    put_sizes(stream, sizes, legend, largest);
    if (rows.left_out > 0) {
        char number[vantel_draw_number_length];
        fprintf(stream,
                "<text class=\"vq-quiet\" x=\"12\" y=\"%.1f\" text-anchor=\"start\">%zu other%s in the rows "
                "left out, "
                "with probability ",
                legend + vantel_draw_svg_legend_height + 6, rows.left_out, rows.left_out == 1 ? "" : "s");
        vantel_draw_svg_text(stream, vantel_draw_number(rows.left_out_probability, number));
        fputs("</text>\n", stream);
    }
    return vantel_draw_svg_close(stream);
}
