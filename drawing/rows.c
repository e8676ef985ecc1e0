#include "rows.h"
#include <math.h>

size_t vantel_draw_side(const VantelPicture* picture) {
    size_t side = 1;
    for (size_t i = 0; i < picture->qudit_count; ++i) side *= (size_t)picture->dimensions[i];
    return side;
}

double vantel_draw_size(const VantelPicture* picture, size_t row, size_t column) {
    const size_t at = row * vantel_draw_side(picture) + column;
    return hypot(picture->real_parts[at], picture->imaginary_parts[at]);
}

double vantel_draw_phase(const VantelPicture* picture, size_t row, size_t column) {
    const double pi = 3.141592653589793;
    const size_t at = row * vantel_draw_side(picture) + column;
    return atan2(picture->imaginary_parts[at], picture->real_parts[at]) / pi;
}

double vantel_draw_coherence(const VantelPicture* picture, size_t row, size_t column) {
    const double largest = sqrt(vantel_draw_size(picture, row, row) * vantel_draw_size(picture, column, column));
    return largest > 0 ? fmin(vantel_draw_size(picture, row, column) / largest, 1) : 0;
}

size_t vantel_draw_likeliest(const VantelPicture* picture) {
    const size_t side = vantel_draw_side(picture);
    size_t best = 0;
    /* Of rows that are equal but for rounding, the first: a picture does not change with the rounding. */
    for (size_t row = 1; row < side; ++row)
        if (vantel_draw_size(picture, row, row) > vantel_draw_size(picture, best, best) + VANTEL_DRAW_VISIBLE)
            best = row;
    return best;
}

double vantel_draw_coherence_of_outcome(const VantelPicture* picture, size_t row, size_t likeliest) {
    if (row != likeliest) return vantel_draw_coherence(picture, row, likeliest);
    const size_t side = vantel_draw_side(picture);
    double best = 0;
    int alone = 1;
    for (size_t other = 0; other < side; ++other)
        if (other != row && vantel_draw_size(picture, other, other) >= VANTEL_DRAW_VISIBLE) {
            alone = 0;
            best = fmax(best, vantel_draw_coherence(picture, other, row));
        }
    return alone ? 1 : best;
}

Rows vantel_draw_choose_rows(const VantelPicture* picture, size_t most) {
    const size_t side = vantel_draw_side(picture);
    Rows rows = {.count = 0};
    double all = 0, shown = 0;
    for (size_t row = 0; row < side; ++row) {
        const double probability = vantel_draw_size(picture, row, row);
        all += probability;
        if (side > most && !(probability >= VANTEL_DRAW_VISIBLE)) continue;
        if (rows.count < most) {
            rows.shown[rows.count++] = row;
            continue;
        }
        size_t least = 0;
        for (size_t i = 1; i < rows.count; ++i)
            if (vantel_draw_size(picture, rows.shown[i], rows.shown[i]) <
                vantel_draw_size(picture, rows.shown[least], rows.shown[least]))
                least = i;
        if (!(probability > vantel_draw_size(picture, rows.shown[least], rows.shown[least]))) continue;
        for (size_t i = least; i + 1 < rows.count; ++i) rows.shown[i] = rows.shown[i + 1];
        rows.shown[rows.count - 1] = row;
    }
    for (size_t i = 0; i < rows.count; ++i) shown += vantel_draw_size(picture, rows.shown[i], rows.shown[i]);
    rows.left_out = side - rows.count;
    rows.left_out_probability = rows.left_out > 0 ? fmax(all - shown, 0) : 0;
    return rows;
}

size_t vantel_draw_level(const VantelPicture* picture, size_t row, size_t qudit) {
    for (size_t i = 0; i < qudit; ++i) row /= (size_t)picture->dimensions[i];
    return row % (size_t)picture->dimensions[qudit];
}

const char* vantel_draw_name(const VantelPicture* picture, size_t qudit, char text[vantel_draw_name_length]) {
    if (picture->names != NULL) return picture->names[qudit];
    snprintf(text, vantel_draw_name_length, "q%zu", qudit);
    return text;
}

const char* vantel_draw_number(double probability, char text[vantel_draw_number_length]) {
    const double single_precision = 1e-6;
    const char* format = "%.3f";
    if (probability < 1 - single_precision && probability >= 0.9995) format = ">0.999";
    snprintf(text, vantel_draw_number_length, format, probability);
    return text;
}
