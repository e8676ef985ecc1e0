#define _POSIX_C_SOURCE 200809L
#include "draw.h"

#include <math.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

enum { bar_width = 48, bar_height = 160, column_width = 34, cell = 28, margin = 48, longest_label = 64 };

static const double two_pi = 6.283185307179586;
static const double visible = 5e-4;

typedef struct {
    int red, green, blue;
} Colour;

/* Phases go once around the colours: 0 is red, a third of a turn green, two thirds blue. */
static Colour colour_of(double phase) {
    const double middle = 135.0, swing = 95.0;
    const Colour colour = {(int)(middle + swing * cos(phase)),
                           (int)(middle + swing * cos(phase - two_pi / 3)),
                           (int)(middle + swing * cos(phase + two_pi / 3))};
    return colour;
}

static size_t side_of(const Picture* picture) {
    size_t side = 1;
    for (size_t i = 0; i < picture->qudit_count; ++i)
        side *= (size_t)picture->dimensions[i];
    return side;
}

static double size_at(const Picture* picture, size_t row, size_t column) {
    const size_t at = row * side_of(picture) + column;
    return hypot(picture->real_parts[at], picture->imaginary_parts[at]);
}

static double phase_at(const Picture* picture, size_t row, size_t column) {
    const size_t at = row * side_of(picture) + column;
    return atan2(picture->imaginary_parts[at], picture->real_parts[at]);
}

static size_t likeliest(const Picture* picture) {
    size_t best = 0;
    for (size_t row = 1; row < side_of(picture); ++row)
        if (size_at(picture, row, row) > size_at(picture, best, best) + visible)
            best = row;
    return best;
}

/* The levels of a row, a digit each; the first qudit varies fastest. */
static const char* label(const Picture* picture, size_t row, char text[longest_label]) {
    size_t used = 0;
    for (size_t i = 0; i < picture->qudit_count && used < longest_label; ++i) {
        const size_t dimension = (size_t)picture->dimensions[i];
        used += (size_t)snprintf(text + used, longest_label - used, "%zu", row % dimension);
        row /= dimension;
    }
    return text;
}

void draw_text(const Picture* picture) {
    const int colours = isatty(STDOUT_FILENO);
    const size_t reference = likeliest(picture);
    printf("%s\n", picture->title);
    for (size_t row = 0; row < side_of(picture); ++row) {
        const double probability = size_at(picture, row, row);
        if (probability < visible)
            continue;
        const Colour colour = colour_of(phase_at(picture, row, reference));
        char text[longest_label];
        printf("  %s  ", label(picture, row, text));
        if (colours)
            printf("\033[38;2;%d;%d;%dm", colour.red, colour.green, colour.blue);
        for (int i = 0; i < bar_width; ++i)
            putchar(i < probability * bar_width ? '#' : '.');
        printf("%s %.3f\n", colours ? "\033[0m" : "", probability);
    }
}

static FILE* open_svg(const char* name, const char* kind, size_t width, size_t height, const char* title) {
    char path[1024];
    snprintf(path, sizeof path, "%s-%s.svg", name, kind);
    FILE* const file = fopen(path, "w");
    if (file == NULL) {
        perror(path);
        return NULL;
    }
    fprintf(
        file,
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%zu\" height=\"%zu\" font-family=\"sans-serif\" "
        "font-size=\"11\" text-anchor=\"middle\">\n<rect width=\"100%%\" height=\"100%%\" fill=\"white\"/>\n"
        "<text x=\"%d\" y=\"20\" font-size=\"14\" text-anchor=\"start\">%s</text>\n",
        width, height, margin / 3, title);
    return file;
}

static void put_box(FILE* file, double x, double y, double width, double height, double phase) {
    const Colour c = colour_of(phase);
    fprintf(file, "<rect x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\" fill=\"#%02x%02x%02x\"/>\n", x,
            y, width, height, (unsigned)c.red, (unsigned)c.green, (unsigned)c.blue);
}

/* The colours of the phases, from 0 to a whole turn. */
static void put_scale(FILE* file, double y) {
    enum { steps = 36, step = 4 };
    for (int i = 0; i < steps; ++i)
        put_box(file, margin + i * step, y, step, 8, two_pi * i / steps);
    fprintf(file, "<text x=\"%d\" y=\"%.1f\">0</text><text x=\"%d\" y=\"%.1f\">2&#960; phase</text>\n",
            margin - 8, y + 8, margin + steps * step + 34, y + 8);
}

static int close_svg(FILE* file) {
    fputs("</svg>\n", file);
    const int failed = ferror(file);
    return fclose(file) != 0 || failed;
}

static size_t at_least(size_t size, size_t least) {
    return size > least ? size : least;
}

static int write_outcomes(const char* name, const Picture* picture) {
    const size_t side = side_of(picture), reference = likeliest(picture);
    FILE* const file = open_svg(name, "outcomes", at_least(2 * margin + side * column_width, 440),
                                bar_height + 2 * margin + 24, picture->title);
    if (file == NULL)
        return 1;
    const double floor_line = margin + bar_height;
    for (size_t row = 0; row < side; ++row) {
        const double probability = size_at(picture, row, row), height = probability * bar_height;
        const double x = margin + (double)row * column_width;
        char text[longest_label];
        if (probability >= visible) {
            put_box(file, x + 4, floor_line - height, column_width - 8, height,
                    phase_at(picture, row, reference));
            fprintf(file, "<text x=\"%.1f\" y=\"%.1f\" font-size=\"9\">%.3f</text>\n", x + column_width / 2.0,
                    floor_line - height - 4, probability);
        }
        fprintf(file, "<text x=\"%.1f\" y=\"%.1f\">%s</text>\n", x + column_width / 2.0, floor_line + 16,
                label(picture, row, text));
    }
    fprintf(file, "<path d=\"M%d %.1fh%zu\" stroke=\"black\"/>\n", margin, floor_line, side * column_width);
    put_scale(file, floor_line + 36);
    return close_svg(file);
}

static int write_density(const char* name, const Picture* picture) {
    const size_t side = side_of(picture);
    const double top = margin + 16, left = margin + 16;
    FILE* const file = open_svg(name, "density", at_least((size_t)left + side * cell + margin, 440),
                                (size_t)top + side * cell + margin, picture->title);
    if (file == NULL)
        return 1;
    double largest = visible;
    for (size_t row = 0; row < side; ++row)
        largest = fmax(largest, size_at(picture, row, row));
    for (size_t row = 0; row < side; ++row) {
        char text[longest_label];
        const double middle = ((double)row + 0.5) * cell;
        fprintf(file, "<text x=\"%.1f\" y=\"%.1f\">%s</text><text x=\"%.1f\" y=\"%.1f\">%s</text>\n",
                left + middle, top - 8, label(picture, row, text), left - 22, top + middle + 4, text);
        for (size_t column = 0; column < side; ++column) {
            const double size = size_at(picture, row, column);
            const double edge = (cell - 2) * sqrt(fmin(size / largest, 1.0));
            if (size >= visible)
                put_box(file, left + ((double)column + 0.5) * cell - edge / 2, top + middle - edge / 2, edge,
                        edge, phase_at(picture, row, column));
        }
    }
    for (size_t i = 0; i <= side; ++i)
        fprintf(file, "<path d=\"M%.1f %.1fh%zuM%.1f %.1fv%zu\" stroke=\"#ccc\"/>\n", left,
                top + (double)i * cell, side * cell, left + (double)i * cell, top, side * cell);
    put_scale(file, top + (double)side * cell + 20);
    return close_svg(file);
}

int draw_svg_on_request(int argc, char** argv, const Picture* picture) {
    for (int i = 1; i + 1 < argc; ++i)
        if (strcmp(argv[i], "--svg") == 0)
            return write_outcomes(argv[i + 1], picture) | write_density(argv[i + 1], picture);
    return 0;
}
