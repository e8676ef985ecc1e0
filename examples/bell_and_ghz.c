/* Entangled states of qudits that differ in their number of levels: a Bell pair of three and five levels, its
   halves, which have no phase, and a three-party Greenberger-Horne-Zeilinger state of two, three and four
   levels. */
#include "options.h"
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <vantel.h>

enum { most_qudits = 3, most_rows = 2 * 3 * 4 };

static void check(int status) {
    if (status != vantel_ok) {
        fprintf(stderr, "status %d\n", status);
        exit(EXIT_FAILURE);
    }
}

/* Copies the level of `control` onto `target`: each level above k raises the target once more. */
static void copy_level(QuantumProperty* control, int levels, QuantumProperty* target) {
    PredicateRecord above[9];
    for (int k = 0; k + 1 < levels; ++k) {
        above[k] = (PredicateRecord){control, k, 0};
        check(vantel_cycle(target, 1.0f, above, (size_t)k + 1));
    }
}

/* Prepares the sum over k of |k, k, ...> / sqrt(d), with d the levels of the first qudit; draws it, and tells
   whether the density matrix is the right one. */
static int show(const char* title, const int* dimensions, size_t count, const char* svg) {
    static float real[most_rows * most_rows], imaginary[most_rows * most_rows];
    QuantumProperty* qudits[most_qudits];
    size_t rows = 1, step = 0;
    for (size_t i = 0; i < count; ++i) {
        int status;
        qudits[i] = vantel_make_quantum_property(dimensions[i], &status);
        check(status);
        step += rows; /* the row of |1, 1, ...>: the strides of all qudits together */
        rows *= (size_t)dimensions[i];
    }
    check(vantel_hadamard(qudits[0], NULL, 0));
    for (size_t i = 1; i < count; ++i) copy_level(qudits[0], dimensions[0], qudits[i]);
    static const char half[] = "The first of them alone";
    const size_t half_rows = (size_t)dimensions[0];
    check(vantel_reduced_density_matrix(qudits, 1, real, imaginary, half_rows * half_rows));
    const VantelPicture alone = {half, dimensions, 1, real, imaginary, NULL};
    int right = show_picture(&alone, NULL) == 0;
    check(vantel_reduced_density_matrix(qudits, count, real, imaginary, rows * rows));
    for (size_t i = count; i-- > 0;) vantel_free_quantum_property(qudits[i]);

    const VantelPicture picture = {title, dimensions, count, real, imaginary, NULL};
    right = show_picture(&picture, svg) == 0 && right;

    const size_t terms = (size_t)dimensions[0];
    for (size_t r = 0; r < rows; ++r)
        for (size_t c = 0; c < rows; ++c) {
            const int both = r % step == 0 && r / step < terms && c % step == 0 && c / step < terms;
            const float told = both ? 1.0f / (float)terms : 0.0f;
            right = right && fabsf(real[r * rows + c] - told) < 1e-6f && fabsf(imaginary[r * rows + c]) < 1e-6f;
        }
    return right;
}

int main(int argc, char** argv) {
    const int bell[] = {3, 5}, ghz[] = {2, 3, 4};
    const char* const svg = svg_name(argc, argv);
    const int right = show("A Bell pair of three and five levels", bell, 2, NULL);
    return show("A GHZ state of two, three and four levels", ghz, 3, svg) && right ? EXIT_SUCCESS : EXIT_FAILURE;
}
