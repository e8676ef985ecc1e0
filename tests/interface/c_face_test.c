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
    QuantumProperty* list[2];
    PredicateRecord condition;
    ProbabilityRecord records[6];
    int values[6][2], levels[2] = {-1, -1}, result = -1;
    float parts[2][36];
    list[0] = make(2);
    list[1] = make(3);

    CHECK(vantel_hadamard(list[0], NULL, 0) == vantel_ok);
    memset(&condition, 0xA5, sizeof condition); /* padding included */
    condition.property = list[0];
    condition.value = 1;
    condition.is_equal = 2;
    CHECK(vantel_cycle(list[1], 1.0F, &condition, 1) == vantel_ok);
    condition.is_equal = 1;
    CHECK(vantel_phase_rotate(&condition, 1, 1.5707964F) == vantel_ok);

    for (int i = 0; i < 6; ++i)
        records[i].qudit_values = values[i];
    CHECK(vantel_probabilities(list, 2, records) == vantel_ok);
    for (int i = 0; i < 6; ++i) {
        /* The first varies fastest; the second is raised where the first is. */
        CHECK(values[i][0] == i % 2 && values[i][1] == i / 2);
        CHECK(fabsf(records[i].probability - (i == 0 || i == 3 ? 0.5F : 0.0F)) < 1e-6F);
    }
    CHECK(vantel_reduced_density_matrix(list, 2, parts[0], parts[1], 36) == vantel_ok);
    CHECK(fabsf(parts[0][0] - 0.5F) < 1e-6F && fabsf(parts[0][3 * 6 + 3] - 0.5F) < 1e-6F);
    CHECK(fabsf(parts[1][3 * 6] - 0.5F) < 1e-6F && fabsf(parts[1][3] + 0.5F) < 1e-6F);

    condition.property = list[1];
    CHECK(reports(vantel_hadamard(list[1], &condition, 1), vantel_target_control_overlap,
                  "Hadamard operation has overlapping targets and controls\n"));
    CHECK(vantel_measure(list, 2, levels) == vantel_ok);
    CHECK(levels[0] == levels[1] && (levels[0] == 0 || levels[0] == 1));
    condition.value = levels[1];
    CHECK(vantel_stochastic_projection(&condition, 1, &result) == vantel_ok && result == 1);
    CHECK(vantel_free_quantum_property(list[0]) == vantel_ok);
    CHECK(vantel_free_quantum_property(list[1]) == vantel_ok);
    CHECK(vantel_free_quantum_property(NULL) == vantel_null_property);
}

static void empty_lists(void) {
    int result = -1;
    CHECK(vantel_stochastic_projection(NULL, 0, &result) == vantel_ok && result == 1);
    CHECK(vantel_phase_rotate(NULL, 0, 1.0F) == vantel_ok);
    CHECK(vantel_measure(NULL, 0, NULL) == vantel_ok && vantel_probabilities(NULL, 0, NULL) == vantel_ok &&
          vantel_reduced_density_matrix(NULL, 0, NULL, NULL, 0) == vantel_ok);
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
    empty_lists();
    dup2(standard_error, STDERR_FILENO);
    CHECK(read(reading_end, &rest, 1) == 0); /* no call has written more than its line */
    return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
