/* Two qutrits that always agree. */
#include <vantel.h>

int main(void) {
    int status, levels[2];
    QuantumProperty* pair[] = {vantel_make_quantum_property(3, &status), vantel_make_quantum_property(3, &status)};
    const PredicateRecord at_least_1 = {pair[0], 0, 0}, is_2 = {pair[0], 2, 1};
    if (vantel_hadamard(pair[0], 0, 0) || vantel_cycle(pair[1], 1.0f, &at_least_1, 1) ||
        vantel_cycle(pair[1], 1.0f, &is_2, 1) || vantel_measure(pair, 2, levels))
        return 1;
    vantel_free_quantum_property(pair[1]);
    vantel_free_quantum_property(pair[0]);
    return levels[0] != levels[1];
}
