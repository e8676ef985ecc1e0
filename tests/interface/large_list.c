/* A joint state that gates have left far over the limit, of more entries than 24 bits can count, is still
   read out right. Takes a gigabyte or two for a second. */
#include <math.h>
#include <stdio.h>
#include <vantel.h>

enum { tens = 7, qudits = 9 };

int main(void) {
    QuantumProperty* all[qudits];
    PredicateRecord never[qudits];
    for (int i = 0; i < qudits; ++i) {
        int status = 0;
        all[i] = vantel_make_quantum_property(i < tens ? 10 : 2, &status);
        never[i] = (PredicateRecord){all[i], -1, 1};
    }
    vantel_phase_rotate(never, qudits, 0.0F); /* merges them */
    int last = 0;
    for (int i = 0; i < qudits - 1; ++i) /* one stays in level 0, so the list is not complete */
        last = vantel_hadamard(all[i], NULL, 0);

    float real[4];
    float imaginary[4];
    int wrong = last != vantel_state_size_exceeded;
    wrong += vantel_reduced_density_matrix(&all[tens], 1, real, imaginary, 4) != vantel_ok;
    for (int i = 0; i < 4; ++i) wrong += !(fabsf(real[i] - 0.5F) < 1e-5F && fabsf(imaginary[i]) < 1e-5F);

    int levels[qudits];
    wrong += vantel_measure(all, qudits, levels) != vantel_ok; /* or a handle could not be freed */
    for (int i = 0; i < qudits; ++i) wrong += vantel_free_quantum_property(all[i]) != vantel_ok;
    if (wrong != 0)
        printf("%d answers are wrong; the matrix begins with %g %g\n", wrong, (double)real[0], (double)real[1]);
    return wrong != 0;
}
