#define _POSIX_C_SOURCE 200809L
#include "colours.h"
#include "rows.h"
#include "vantel_draw.h"
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

enum { bar_width = 48 };

/* Below this coherence the sign of a phase is rounding. */
static const double coherent = 1e-3;

static const double rounded = 0.005;

static int takes_colours(FILE* stream) {
    const char* const refused = getenv("NO_COLOR");
    const char* const terminal = getenv("TERM");
    return isatty(fileno(stream)) && (refused == NULL || *refused == '\0') && terminal != NULL &&
           strcmp(terminal, "dumb") != 0;
}

static int column_width(const VantelPicture* picture, size_t qudit) {
    char name[vantel_draw_name_length];
    const size_t length = strlen(vantel_draw_name(picture, qudit, name));
    return length > 1 ? (int)length : 1;
}

static void put_bar(FILE* stream, double probability) {
    const double single_precision = 1e-6;
    int full = (int)(fmin(probability + single_precision, 1) * bar_width);
    full = full > 0 ? full : 1;
    for (int i = 0; i < bar_width; ++i) putc(i < full ? '#' : '.', stream);
}

int vantel_draw_text(FILE* stream, const VantelPicture* picture) {
    const int colours = takes_colours(stream);
    const size_t likeliest = vantel_draw_likeliest(picture);
    const Rows rows = vantel_draw_choose_rows(picture, vantel_draw_most_rows);
    char text[vantel_draw_name_length], number[vantel_draw_number_length];
    fprintf(stream, "%s\n ", picture->title);
    for (size_t i = 0; i < picture->qudit_count; ++i)
        fprintf(stream, " %*s", column_width(picture, i), vantel_draw_name(picture, i, text));
    fprintf(stream, "  %-*s       phase\n", bar_width, "probability");

    size_t hidden = rows.left_out;
    for (size_t i = 0; i < rows.count; ++i) {
        const size_t row = rows.shown[i];
        const double probability = vantel_draw_size(picture, row, row);
        if (!(probability >= VANTEL_DRAW_VISIBLE)) {
            ++hidden;
            continue;
        }
        putc(' ', stream);
        for (size_t qudit = 0; qudit < picture->qudit_count; ++qudit)
            fprintf(stream, " %*zu", column_width(picture, qudit), vantel_draw_level(picture, row, qudit));
        fputs("  ", stream);
        double phase = vantel_draw_phase(picture, row, likeliest);
        phase += phase < -rounded ? 2 : 0; /* 0 .. 2, and no 2.00 for rounding below 0 */
        const double coherence = vantel_draw_coherence_of_outcome(picture, row, likeliest);
        if (colours) {
            const Colour colour = vantel_draw_colour(phase, coherence);
            fprintf(stream, "\033[38;2;%u;%u;%um", colour.red, colour.green, colour.blue);
        }
        put_bar(stream, probability);
        fprintf(stream, "%s %-6s", colours ? "\033[0m" : "", vantel_draw_number(probability, number));
        if (coherence >= coherent)
            fprintf(stream, "%6.2f pi\n", fabs(phase));
        else
            fputs("   none\n", stream);
    }
    if (hidden > 0)
        fprintf(stream, "  %zu other%s together %s\n", hidden, hidden == 1 ? "," : "s,",
                vantel_draw_number(rows.left_out_probability, number));
    return ferror(stream) != 0 || fflush(stream) != 0;
}
