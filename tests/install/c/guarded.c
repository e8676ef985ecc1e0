/* A failure that comes back as a status and a text. */
#include <stdio.h>
#include <string.h>
#include <vantel_guarded.h>

int main(void) {
    int status = 0;
    QuantumProperty* qutrit = vantel_guarded_make_quantum_property(3, &status);
    const PredicateRecord itself = {qutrit, 0, 1};
    if (status || vantel_guarded_hadamard(qutrit, &itself, 1) != vantel_target_control_overlap) return 1;
    puts(vantel_guarded_last_failure());
    return strncmp(vantel_guarded_last_failure(), "vantel_guarded_hadamard: ", 25) != 0 ||
           vantel_guarded_free_quantum_property(qutrit);
}
