#include "svg.h"
#include "colours.h"
#include <math.h>
#include <string.h>

enum { line_height = 15 };

static const double letter_width = 7;

/* The class names begin alike, for an SVG in an HTML page shares its style with the page. */
static const char style[] =
    "<style>.vq-page{fill:#fff}.vq-ink{fill:#1a1a1a}.vq-quiet{fill:#595959}.vq-rule{stroke:#d0d0d0}"
    ".vq-edge{stroke:#1a1a1a;stroke-width:.6}@media(prefers-color-scheme:dark){.vq-page{fill:#16181d}"
    ".vq-ink{fill:#f0f0f0}.vq-quiet{fill:#b4b4b4}.vq-rule{stroke:#44474d}.vq-edge{stroke:#f0f0f0}}</style>\n";

void vantel_draw_svg_text(FILE* stream, const char* text) {
    for (; *text != '\0'; ++text) switch (*text) {
        case '&': fputs("&amp;", stream); break;
        case '<': fputs("&lt;", stream); break;
        case '>': fputs("&gt;", stream); break;
        default: putc((unsigned char)*text < ' ' ? ' ' : *text, stream);
        }
}

static void put_description(FILE* stream, const VantelPicture* picture, const Rows* rows, const char* kind) {
    char name[vantel_draw_name_length], number[vantel_draw_number_length];
    fprintf(stream, "<desc>%s.", kind);
    for (size_t i = 0; i < rows->count; ++i) {
        const size_t row = rows->shown[i];
        for (size_t qudit = 0; qudit < picture->qudit_count; ++qudit) {
            fputs(qudit == 0 ? " " : ", ", stream);
            vantel_draw_svg_text(stream, vantel_draw_name(picture, qudit, name));
            fprintf(stream, " %zu", vantel_draw_level(picture, row, qudit));
        }
        fprintf(stream, ": probability %s;", vantel_draw_number(vantel_draw_size(picture, row, row), number));
    }
    fprintf(stream, " %zu others: %s.</desc>\n", rows->left_out,
            vantel_draw_number(rows->left_out_probability, number));
}

void vantel_draw_svg_open(FILE* stream, const VantelPicture* picture, const Rows* rows, const char* kind, double width,
                          double height) {
    const double bold_letter_width = 8.5;
    width = fmax(width, 24 + bold_letter_width * (double)strlen(picture->title));
    fprintf(stream,
            "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %.0f %.0f\" width=\"%.0f\" height=\"%.0f\" "
            "style=\"max-width:100%%;height:auto\" role=\"img\" font-family=\"sans-serif\" font-size=\"12\" "
            "text-anchor=\"middle\">\n<title>",
            width, height, width, height);
    vantel_draw_svg_text(stream, picture->title);
    fputs("</title>\n", stream);
    put_description(stream, picture, rows, kind);
    fputs(style, stream);
    fprintf(stream,
            "<rect class=\"vq-page\" width=\"%.0f\" height=\"%.0f\"/>\n"
            "<text class=\"vq-ink\" x=\"12\" y=\"22\" font-size=\"14\" font-weight=\"bold\" "
            "text-anchor=\"start\">",
            width, height);
    vantel_draw_svg_text(stream, picture->title);
    fputs("</text>\n", stream);
}

static void put_colour(FILE* stream, double phase, double coherence) {
    const Colour colour = vantel_draw_colour(phase, coherence);
    fprintf(stream, " fill=\"#%02x%02x%02x\"", colour.red, colour.green, colour.blue);
}

void vantel_draw_svg_box(FILE* stream, double x, double y, double width, double height, double phase,
                         double coherence) {
    fprintf(stream, "<rect class=\"vq-edge\" x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\"", x, y, width,
            height);
    put_colour(stream, phase, coherence);
    fputs("/>\n", stream);
}

void vantel_draw_svg_legend(FILE* stream, double x, double y, const char* of_what) {
    enum { steps = 48, lines = 3, ticks = 4 };
    static const char* const numbers[] = {"0", "&#960;/2", "&#960;", "3&#960;/2", "2&#960;"};
    const double step = 3.5, line = 8;
    fprintf(stream, "<text class=\"vq-quiet\" x=\"%.1f\" y=\"%.1f\" text-anchor=\"start\">%s</text>\n", x, y + 8,
            of_what);
    /* Each step reaches under the next one, so that no page shows between them. */
    for (int i = 0; i < lines; ++i)
        for (int k = 0; k < steps; ++k) {
            fprintf(stream, "<rect x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\"", x + k * step,
                    y + 14 + i * line, k + 1 < steps ? step + 0.5 : step, line);
            put_colour(stream, 2.0 * (k + 0.5) / steps, 1 - 0.5 * i);
            fputs("/>\n", stream);
        }
    for (int k = 0; k <= ticks; ++k)
        fprintf(stream, "<text class=\"vq-quiet\" x=\"%.1f\" y=\"%.1f\" font-size=\"11\">%s</text>\n",
                x + k * steps * step / ticks, y + 14 + lines * line + 13, numbers[k]);
    fprintf(stream,
            "<text class=\"vq-quiet\" x=\"%.1f\" y=\"%.1f\" font-size=\"11\" text-anchor=\"start\">coherence "
            "1</text>"
            "<text class=\"vq-quiet\" x=\"%.1f\" y=\"%.1f\" font-size=\"11\" text-anchor=\"start\">0: no "
            "phase</text>\n",
            x + steps * step + 6, y + 23, x + steps * step + 6, y + 39);
}

double vantel_draw_svg_name_width(const VantelPicture* picture) {
    size_t longest = 1;
    char name[vantel_draw_name_length];
    for (size_t i = 0; i < picture->qudit_count; ++i) {
        const size_t length = strlen(vantel_draw_name(picture, i, name));
        longest = length > longest ? length : longest;
    }
    return letter_width * (double)longest;
}

void vantel_draw_svg_column_labels(FILE* stream, const VantelPicture* picture, const Rows* rows, double left, double y,
                                   double column_width, double name_x, const char* name_anchor) {
    char name[vantel_draw_name_length];
    for (size_t qudit = 0; qudit < picture->qudit_count; ++qudit) {
        const double line = y + (double)qudit * line_height;
        fprintf(stream, "<text class=\"vq-quiet\" x=\"%.1f\" y=\"%.1f\" text-anchor=\"%s\">", name_x, line,
                name_anchor);
        vantel_draw_svg_text(stream, vantel_draw_name(picture, qudit, name));
        fputs("</text>\n", stream);
        for (size_t i = 0; i < rows->count; ++i)
            fprintf(stream, "<text class=\"vq-ink\" x=\"%.1f\" y=\"%.1f\">%zu</text>\n",
                    left + ((double)i + 0.5) * column_width, line, vantel_draw_level(picture, rows->shown[i], qudit));
    }
}

int vantel_draw_svg_close(FILE* stream) {
    fputs("</svg>\n", stream);
    return ferror(stream) != 0 || fflush(stream) != 0;
}
