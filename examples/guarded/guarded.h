/* libvantel for hosts that no C++ exception may enter: C without unwind tables, Python's ctypes, and other
   languages. Compile guarded.cpp into the host and call these functions in place of those of vantel.h, of the
   same names and arguments. What would pass out of one of those comes back as a status here. */
#ifndef GUARDED_H
#define GUARDED_H

#include <vantel.h>

#ifdef __cplusplus
#define GUARDED_NOEXCEPT noexcept
extern "C" {
#else
#define GUARDED_NOEXCEPT
#endif

/* Beside #vantel_status. A joint state of too many qudits or basis states has its code of old. */
enum guarded_status {
    guarded_out_of_memory = -1,
    guarded_other_failure = -2 /* no randomness to be had, a list beyond all memory, and the like */
};

VANTEL_API QuantumProperty* guarded_make_quantum_property(int dimension, int* status) GUARDED_NOEXCEPT;
VANTEL_API int guarded_free_quantum_property(QuantumProperty* property) GUARDED_NOEXCEPT;

VANTEL_API int guarded_hadamard(QuantumProperty* target, const PredicateRecord* predicates,
                                size_t predicate_count) GUARDED_NOEXCEPT;
VANTEL_API int guarded_inverse_hadamard(QuantumProperty* target, const PredicateRecord* predicates,
                                        size_t predicate_count) GUARDED_NOEXCEPT;
VANTEL_API int guarded_cycle(QuantumProperty* target, float fraction, const PredicateRecord* predicates,
                             size_t predicate_count) GUARDED_NOEXCEPT;
VANTEL_API int guarded_shift(QuantumProperty* target, float fraction, const PredicateRecord* predicates,
                             size_t predicate_count) GUARDED_NOEXCEPT;
VANTEL_API int guarded_clock(QuantumProperty* target, float fraction, const PredicateRecord* predicates,
                             size_t predicate_count) GUARDED_NOEXCEPT;
VANTEL_API int guarded_phase_rotate(const PredicateRecord* predicates, size_t predicate_count,
                                    float angle) GUARDED_NOEXCEPT;
VANTEL_API int guarded_swap(QuantumProperty* first, QuantumProperty* second,
                            const PredicateRecord* predicates, size_t predicate_count) GUARDED_NOEXCEPT;
VANTEL_API int guarded_i_swap(QuantumProperty* first, QuantumProperty* second, float fraction,
                              const PredicateRecord* predicates, size_t predicate_count) GUARDED_NOEXCEPT;

VANTEL_API int guarded_measure(QuantumProperty** properties, size_t property_count,
                               int* results) GUARDED_NOEXCEPT;
VANTEL_API int guarded_stochastic_projection(const PredicateRecord* predicates, size_t predicate_count,
                                             int* result) GUARDED_NOEXCEPT;
VANTEL_API int guarded_probabilities(QuantumProperty** properties, size_t property_count,
                                     ProbabilityRecord* records) GUARDED_NOEXCEPT;
VANTEL_API int guarded_reduced_density_matrix(QuantumProperty** properties, size_t property_count,
                                              float* real_parts, float* imaginary_parts,
                                              size_t output_size) GUARDED_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
