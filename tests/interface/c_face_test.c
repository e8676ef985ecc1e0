/* The installed header and the shared library, as a C program sees them. */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <vantel.h>

static int failures = 0;

#define CHECK(condition)                                                                                               \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            printf("%s:%d: %s\n", __FILE__, __LINE__, #condition);                                                     \
            ++failures;                                                                                                \
        }                                                                                                              \
    } while (0)

static QuantumProperty* make(int dimension) {
    int status = 77;
    QuantumProperty* const property = vantel_make_quantum_property(dimension, &status);
    CHECK(property != NULL && status == vantel_ok);
    return property;
}

int main(void) {
    QuantumProperty* const a = make(2);
    QuantumProperty* const b = make(3);
    QuantumProperty* list[2];
    PredicateRecord condition;
    ProbabilityRecord records[6];
    int values[6][2], levels[2] = {-1, -1}, result = -1;
    /* (level of a, level of b), a varying fastest; b is 1 where a is 1. */
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

    real_parts[36] = -7.0F;
    CHECK(vantel_phase_rotate(&condition, 1, 1.5707964F) == vantel_ok);
    CHECK(vantel_reduced_density_matrix(list, 2, real_parts, imaginary_parts, 36) == vantel_ok);
    CHECK(fabsf(real_parts[0] - 0.5F) < 1e-6F && fabsf(real_parts[3 * 6 + 3] - 0.5F) < 1e-6F);
    CHECK(fabsf(imaginary_parts[3 * 6 + 0] - 0.5F) < 1e-6F && fabsf(imaginary_parts[0 * 6 + 3] + 0.5F) < 1e-6F);
    CHECK(real_parts[36] == -7.0F);

    CHECK(vantel_hadamard(a, &condition, 1) == vantel_target_control_overlap);
    CHECK(vantel_measure(list, 2, levels) == vantel_ok);
    CHECK(levels[0] == levels[1] && (levels[0] == 0 || levels[0] == 1));
    condition.value = levels[0];
    CHECK(vantel_stochastic_projection(&condition, 1, &result) == vantel_ok && result == 1);
    CHECK(vantel_stochastic_projection(NULL, 0, &result) == vantel_ok && result == 1);
    CHECK(vantel_phase_rotate(NULL, 0, 1.0F) == vantel_ok);
    CHECK(vantel_measure(NULL, 0, NULL) == vantel_ok && vantel_probabilities(NULL, 0, NULL) == vantel_ok &&
          vantel_reduced_density_matrix(NULL, 0, NULL, NULL, 0) == vantel_ok);
    CHECK(vantel_free_quantum_property(a) == vantel_ok);
    CHECK(vantel_free_quantum_property(b) == vantel_ok);
    CHECK(vantel_free_quantum_property(NULL) == vantel_null_property);
    return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
