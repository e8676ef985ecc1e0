/* A coin and a die with three faces: the coin is tossed, and the die is turned by one where it shows 1. The
   table of joint probabilities is drawn, and then held against a thousand pairs that are measured. With
   `--svg NAME` the state becomes a picture. */
#include "options.h"
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <vantel.h>

enum { coin_levels = 2, die_levels = 3, outcomes = coin_levels * die_levels, preparations = 1000, width = 40 };

typedef struct {
    QuantumProperty* coin;
    QuantumProperty* die;
} Pair;

static void check(int status, const char* step) {
    if (status != vantel_ok) {
        fprintf(stderr, "%s: status %d\n", step, status);
        exit(EXIT_FAILURE);
    }
}

static QuantumProperty* make_qudit(int levels) {
    int status;
    QuantumProperty* const qudit = vantel_make_quantum_property(levels, &status);
    check(status, "making a qudit");
    return qudit;
}

static Pair prepare(void) {
    const Pair pair = {make_qudit(coin_levels), make_qudit(die_levels)};
    const PredicateRecord coin_shows_1 = {pair.coin, 1, 1};
    check(vantel_hadamard(pair.coin, NULL, 0), "Hadamard");
    check(vantel_cycle(pair.die, 1.0f, &coin_shows_1, 1), "controlled cycle");
    return pair;
}

static void release(Pair pair) {
    vantel_free_quantum_property(pair.die);
    vantel_free_quantum_property(pair.coin);
}

static void draw_bar(double share) {
    const int full = (int)(share * width + 1e-4); /* full only at 1 */
    for (int i = 0; i < width; ++i) fputs(i < full ? "#" : ".", stdout);
}

static int save_pictures(const char* name, Pair pair) {
    static const int dimensions[] = {coin_levels, die_levels};
    static const char* const names[] = {"coin", "die"};
    QuantumProperty* both[] = {pair.coin, pair.die};
    float real[outcomes * outcomes], imaginary[outcomes * outcomes];
    check(vantel_reduced_density_matrix(both, 2, real, imaginary, outcomes * outcomes), "density matrix");
    const VantelPicture picture = {"A coin that turned a die", dimensions, 2, real, imaginary, names};
    return save_svg(name, "outcomes", vantel_draw_outcomes_svg, &picture) |
           save_svg(name, "density", vantel_draw_density_svg, &picture);
}

int main(int argc, char** argv) {
    const char* const svg = svg_name(argc, argv);
    int levels[outcomes][2];
    ProbabilityRecord expected[outcomes];
    for (int i = 0; i < outcomes; ++i) expected[i].qudit_values = levels[i];

    const Pair pair = prepare();
    QuantumProperty* both[] = {pair.coin, pair.die};
    check(vantel_probabilities(both, 2, expected), "probabilities");
    const int unwritten = svg != NULL && save_pictures(svg, pair);
    release(pair);

    puts("coin die  probability");
    for (int i = 0; i < outcomes; ++i) {
        printf("%4d %3d  ", levels[i][0], levels[i][1]);
        draw_bar(expected[i].probability);
        printf(" %.3f\n", expected[i].probability);
    }

    int counts[outcomes] = {0};
    for (int i = 0; i < preparations; ++i) {
        const Pair copy = prepare();
        QuantumProperty* measured[] = {copy.coin, copy.die};
        int result[2];
        check(vantel_measure(measured, 2, result), "measuring");
        ++counts[result[0] + coin_levels * result[1]];
        release(copy);
    }

    /* A count of independent trials has the standard deviation sqrt(n p (1 - p)). */
    int wrong = 0;
    printf("\n%d pairs measured\ncoin die  counted  expected\n", preparations);
    for (int i = 0; i < outcomes; ++i) {
        const double p = expected[i].probability;
        const double mean = preparations * p;
        const double deviation = sqrt(preparations * p * (1.0 - p));
        const int good = fabs(counts[i] - mean) <= 5.0 * deviation + 0.5;
        printf("%4d %3d  %7d  %8.1f +- %.1f%s\n", levels[i][0], levels[i][1], counts[i], mean, deviation,
               good ? "" : "  more than five standard deviations off");
        wrong += !good;
    }
    return wrong == 0 && !unwritten ? EXIT_SUCCESS : EXIT_FAILURE;
}
