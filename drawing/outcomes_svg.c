#include "svg.h"
#include <math.h>

enum { most_columns = 12, column_width = 36, others_width = 76, bar_height = 180, top = 66, line_height = 15 };

static void put_axis(FILE* stream, double left, double width) {
    enum { steps = 4 };
    for (int i = 0; i <= steps; ++i) {
        const double value = (double)i / steps, y = top + bar_height * (1 - value);
        fprintf(stream,
                "<path class=\"vq-rule\" d=\"M%.1f %.1fh%.1f\"/>"
                "<text class=\"vq-quiet\" x=\"%.1f\" y=\"%.1f\" text-anchor=\"end\">%g</text>\n",
                left, y, width, left - 6, y + 4, value);
    }
    fprintf(stream, "<text class=\"vq-quiet\" x=\"12\" y=\"%d\" text-anchor=\"start\">probability</text>\n", top - 22);
}

static void put_bar(FILE* stream, double x, double width, double probability, double phase, double coherence) {
    char number[vantel_draw_number_length];
    const double height = fmin(probability, 1) * bar_height;
    if (probability >= VANTEL_DRAW_VISIBLE)
        vantel_draw_svg_box(stream, x + 5, top + bar_height - height, width - 10, height, phase, coherence);
    fprintf(stream, "<text class=\"vq-ink\" x=\"%.1f\" y=\"%.1f\" font-size=\"11\">", x + width / 2,
            top + bar_height - height - 4);
    vantel_draw_svg_text(stream, vantel_draw_number(probability, number));
    fputs("</text>\n", stream);
}

int vantel_draw_outcomes_svg(FILE* stream, const VantelPicture* picture) {
    const Rows rows = vantel_draw_choose_rows(picture, most_columns);
    const size_t likeliest = vantel_draw_likeliest(picture);
    const double left = fmax(46, 18 + vantel_draw_svg_name_width(picture));
    const double bars = (double)rows.count * column_width;
    const double plot = fmax(bars + (rows.left_out > 0 ? others_width : 0), vantel_draw_svg_legend_width - 40);
    const double labels = top + bar_height + 18, legend = labels + (double)picture->qudit_count * line_height;
    vantel_draw_svg_open(stream, picture, &rows, "A bar for the probability of each outcome", left + plot + 16,
                         legend + vantel_draw_svg_legend_height);
    put_axis(stream, left, plot);
    for (size_t i = 0; i < rows.count; ++i) {
        const size_t row = rows.shown[i];
        const double probability = vantel_draw_size(picture, row, row);
        if (probability >= VANTEL_DRAW_VISIBLE)
            put_bar(stream, left + (double)i * column_width, column_width, probability,
                    vantel_draw_phase(picture, row, likeliest),
                    vantel_draw_coherence_of_outcome(picture, row, likeliest));
    }
    vantel_draw_svg_column_labels(stream, picture, &rows, left, labels, column_width, left - 6, "end");
    if (rows.left_out > 0) {
        put_bar(stream, left + bars, others_width, rows.left_out_probability, 0, 0);
        fprintf(stream, "<text class=\"vq-quiet\" x=\"%.1f\" y=\"%.1f\">%zu other%s</text>\n",
                left + bars + others_width / 2.0, labels, rows.left_out, rows.left_out == 1 ? "" : "s");
    }
    vantel_draw_svg_legend(stream, 12, legend, "phase against the likeliest outcome");
    return vantel_draw_svg_close(stream);
}
