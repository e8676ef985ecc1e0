/* The installed header and the shared library, as a C program sees them. */
#define _POSIX_C_SOURCE 200809L
#include <vantel.h>

#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static int failures = 0;

#define CHECK(condition)                                                                                     \
    do {                                                                                                     \
        if (!(condition)) {                                                                                  \
            printf("%s:%d: %s\n", __FILE__, __LINE__, #condition);                                           \
            ++failures;                                                                                      \
        }                                                                                                    \
    } while (0)

/* Standard error goes into a pipe, whose text is taken after each call. */
static int reading_end;

static int reports(int status, int expected, const char* text) {
    char read_text[256] = "";
    ssize_t length = 0;
    if (text[0] != '\0')
        length = read(reading_end, read_text, sizeof read_text - 1);
    read_text[length > 0 ? length : 0] = '\0';
    if (status == expected && strcmp(read_text, text) == 0)
        return 1;
    printf("status %d, not %d; text \"%s\"\n", status, expected, read_text);
    return 0;
}

static QuantumProperty* make(int dimension) {
    int status = 77;
    QuantumProperty* const property = vantel_make_quantum_property(dimension, &status);
    CHECK(property != NULL && status == vantel_ok);
    return property;
}

static void refused_dimensions(void) {
    static const struct {
        int dimension;
        const char* text;
    } cases[] = {{0, "dim must be >= 2\n"},
                 {1, "dim must be >= 2\n"},
                 {11, "dim must be <= MAX_QUDIT_DIMENSION: 10\n"},
                 {-1, "dim must be <= MAX_QUDIT_DIMENSION: 10\n"}};
    for (size_t i = 0; i < sizeof cases / sizeof cases[0]; ++i) {
        int status = 77;
        CHECK(vantel_make_quantum_property(cases[i].dimension, &status) == NULL);
        CHECK(reports(status, vantel_bad_dimension, cases[i].text));
    }
}

static void circuit(void) {
    QuantumProperty* const a = make(2);
    QuantumProperty* const b = make(3);
    QuantumProperty* list[2];
    PredicateRecord condition;
    ProbabilityRecord records[6];
    int values[6][2], levels[2] = {-1, -1}, result = -1;
    /* (level of a, level of b), a varying fastest; b is 1 where a is 1, and a third of the rest went on to 2.
     */
    static const int order[6][2] = {{0, 0}, {1, 0}, {0, 1}, {1, 1}, {0, 2}, {1, 2}};
    static const float expected[6] = {0.5F, 0.0F, 0.0F, 0.5F, 0.0F, 0.0F};
    float real_parts[37], imaginary_parts[37];
    list[0] = a;
    list[1] = b;

    CHECK(vantel_hadamard(a, NULL, 0) == vantel_ok);
    memset(&condition, 0xA5, sizeof condition); /* padding included */
    condition.property = a;
    condition.value = 1;
    condition.is_equal = 2;
    CHECK(vantel_cycle(b, 1.0F, &condition, 1) == vantel_ok);

    for (int i = 0; i < 6; ++i) {
        records[i].probability = -1.0F;
        records[i].qudit_values = values[i];
    }
    CHECK(vantel_probabilities(list, 2, records) == vantel_ok);
    for (int i = 0; i < 6; ++i) {
        CHECK(memcmp(values[i], order[i], sizeof order[i]) == 0);
        CHECK(fabsf(records[i].probability - expected[i]) < 1e-6F);
    }

    for (int i = 0; i < 37; ++i)
        real_parts[i] = imaginary_parts[i] = -7.0F;
    condition.is_equal = 1;
    CHECK(vantel_phase_rotate(&condition, 1, 1.5707964F) == vantel_ok);
    CHECK(vantel_reduced_density_matrix(list, 2, real_parts, imaginary_parts, 36) == vantel_ok);
    CHECK(fabsf(real_parts[0] - 0.5F) < 1e-6F && fabsf(real_parts[3 * 6 + 3] - 0.5F) < 1e-6F);
    CHECK(fabsf(imaginary_parts[3 * 6 + 0] - 0.5F) < 1e-6F &&
          fabsf(imaginary_parts[0 * 6 + 3] + 0.5F) < 1e-6F);
    CHECK(real_parts[36] == -7.0F);

    condition.property = b;
    CHECK(reports(vantel_hadamard(b, &condition, 1), vantel_target_control_overlap,
                  "Hadamard operation has overlapping targets and controls\n"));
    CHECK(vantel_measure(list, 2, levels) == vantel_ok);
    CHECK(levels[0] == levels[1] && (levels[0] == 0 || levels[0] == 1));
    condition.value = levels[1];
    CHECK(vantel_stochastic_projection(&condition, 1, &result) == vantel_ok && result == 1);
    condition.is_equal = 0;
    CHECK(vantel_stochastic_projection(&condition, 1, &result) == vantel_ok && result == 0);
    CHECK(vantel_stochastic_projection(NULL, 0, &result) == vantel_ok && result == 1);
    CHECK(vantel_phase_rotate(NULL, 0, 1.0F) == vantel_ok);
    CHECK(vantel_measure(NULL, 0, NULL) == vantel_ok && vantel_probabilities(NULL, 0, NULL) == vantel_ok &&
          vantel_reduced_density_matrix(NULL, 0, NULL, NULL, 0) == vantel_ok);
    CHECK(vantel_free_quantum_property(a) == vantel_ok);
    CHECK(vantel_free_quantum_property(b) == vantel_ok);
    CHECK(vantel_free_quantum_property(NULL) == vantel_null_property);
}

int main(void) {
    int ends[2];
    char rest = 0;
    const int standard_error = dup(STDERR_FILENO);
    if (standard_error < 0 || pipe(ends) != 0 || dup2(ends[1], STDERR_FILENO) < 0)
        return EXIT_FAILURE;
    close(ends[1]);
    reading_end = ends[0];
    refused_dimensions();
    circuit();
    dup2(standard_error, STDERR_FILENO);
    CHECK(read(reading_end, &rest, 1) == 0); /* no call has written more than its line */
    return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
