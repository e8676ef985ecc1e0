/**
 * @file vantel_guarded.h
 * @brief The functions of vantel.h for hosts that no C++ exception may enter and that must not end: C without
 * unwind tables, Python's ctypes, other languages.
 *
 * They stand in a library of their own, `libvantel_guarded.so.1`, which contains all that it needs. Records,
 * levels, angles, fractions, orders and buffers are those of vantel.h. What differs:
 *
 * - **Every failure is a status**, exhausted memory included: one of #vantel_status or of
 *   #vantel_guarded_status. No exception leaves a function, nothing is printed, and
 *   vantel_guarded_last_failure() has the text. Buffers are as they were after a failure.
 * - **Handles** are made and freed here. One that vantel_make_quantum_property() made must not be handed
 *   over, nor one of these to a function of vantel.h. A null handle is refused with #vantel_null_property,
 * also within a list; one that was freed is a programming error.
 * - **Freeing is safe in any order.** Whichever qudit of a joint state goes, the others may be merged with
 *   anything afterwards, in front or behind, and no handle comes to name another qudit or none. A handle that
 *   cannot be freed is still good.
 * - **A joint state over the limit** of 100000 basis states, which a gate can leave behind, takes no gate and
 *   gives no handle back: both are refused with #vantel_state_size_exceeded until measuring has shortened it.
 * - **An empty joint state** is refused by the readouts, which would write nothing.
 * - **A merge** that was done stays when the function then fails, as in vantel.h. A gate was applied if it
 *   reports 0, or reports #vantel_state_size_exceeded for a state that it has lengthened over the limit
 * itself (a fractional vantel_guarded_cycle() or vantel_guarded_shift() then stays in the Fourier basis).
 * After any other status it was not; but memory that runs out within such a fractional gate can leave the
 * target in the Fourier basis.
 * - **Threads.** As vantel.h; the text of the last failure is each thread's own.
 */
#ifndef VANTEL_GUARDED_H
#define VANTEL_GUARDED_H

#include "vantel.h"

#ifdef __cplusplus
extern "C" {
#endif

/** What a function can report beside #vantel_status. */
enum vantel_guarded_status {
    vantel_guarded_out_of_memory = -1, /**< Memory is exhausted. */
    vantel_guarded_other_failure = -2, /**< The system gives no randomness; the text says what it was. */
    vantel_guarded_bad_argument = -3,  /**< A null buffer, an empty list, a table of 2^31 places or more. */
    vantel_guarded_empty_state = -4    /**< Every amplitude was dropped: there is nothing to read. */
};

/**
 * @brief The library's version.
 * @return A text that is good for ever, like "1.0.0".
 */
VANTEL_API const char* vantel_guarded_version(void);

/**
 * @brief What the last failure in this thread was: the name of the function, a colon, and what failed.
 * @return A line of up to 159 characters, good until the next failure in this thread; empty before the first.
 *         A success leaves it as it is.
 */
VANTEL_API const char* vantel_guarded_last_failure(void);

/**
 * @brief vantel_make_quantum_property(): a qudit in level 0, in a joint state of its own.
 * @param dimension  number of levels, 2 to 10.
 * @param status     receives #vantel_ok, #vantel_bad_dimension or #vantel_guarded_out_of_memory; may be null.
 * @return The new handle, owned by the caller; null on failure.
 */
VANTEL_API QuantumProperty* vantel_guarded_make_quantum_property(int dimension, int* status);

/**
 * @brief Frees a handle and takes its qudit out of its joint state, whatever its place there.
 *
 * As vantel_free_quantum_property() it forgets the qudit's level and does not measure. On any failure the
 * handle and all of its joint state are as before.
 * @param property  a live handle, or null.
 * @return #vantel_ok; #vantel_null_property for null; #vantel_state_size_exceeded (measure first) and
 *         #vantel_guarded_out_of_memory, neither of which meets a qudit that is alone.
 */
VANTEL_API int vantel_guarded_free_quantum_property(QuantumProperty* property);

/**
 * @brief Brings two qudits, with all that they are joined to, into one joint state, and changes nothing else.
 * @param into      one qudit; whether they are in one joint state already does not matter.
 * @param newcomer  the other, whose joint state goes behind the first one's.
 * @return #vantel_ok, #vantel_null_property, #vantel_bad_qudit_number, #vantel_state_size_exceeded or
 *         #vantel_guarded_out_of_memory; nothing was merged then.
 */
VANTEL_API int vantel_guarded_join(QuantumProperty* into, QuantumProperty* newcomer);

/**
 * @name The gates of vantel.h
 * Targets, fractions and conditions are those of the function of the same name there.
 * @return #vantel_ok; #vantel_target_control_overlap, #vantel_bad_qudit_number, #vantel_null_property,
 *         #vantel_guarded_bad_argument (no conditions where a count of them is given),
 *         #vantel_different_dimensions (the two exchanges), #vantel_guarded_out_of_memory: not applied;
 *         #vantel_state_size_exceeded: a merge would be too large or a state was over the limit, and the gate
 *         was not applied; or it was, and the state is over the limit now.
 * @{
 */
/** vantel_hadamard(). */
VANTEL_API int vantel_guarded_hadamard(QuantumProperty* target, const PredicateRecord* predicates,
                                       size_t predicate_count);
/** vantel_inverse_hadamard(). */
VANTEL_API int vantel_guarded_inverse_hadamard(QuantumProperty* target, const PredicateRecord* predicates,
                                               size_t predicate_count);
/** vantel_cycle(). */
VANTEL_API int vantel_guarded_cycle(QuantumProperty* target, float fraction, const PredicateRecord* predicates,
                                    size_t predicate_count);
/** vantel_shift(). */
VANTEL_API int vantel_guarded_shift(QuantumProperty* target, float fraction, const PredicateRecord* predicates,
                                    size_t predicate_count);
/** vantel_clock(). */
VANTEL_API int vantel_guarded_clock(QuantumProperty* target, float fraction, const PredicateRecord* predicates,
                                    size_t predicate_count);
/** vantel_phase_rotate(); without conditions it does nothing. */
VANTEL_API int vantel_guarded_phase_rotate(const PredicateRecord* predicates, size_t predicate_count, float angle);
/** vantel_swap(). */
VANTEL_API int vantel_guarded_swap(QuantumProperty* first, QuantumProperty* second, const PredicateRecord* predicates,
                                   size_t predicate_count);
/** vantel_i_swap(). */
VANTEL_API int vantel_guarded_i_swap(QuantumProperty* first, QuantumProperty* second, float fraction,
                                     const PredicateRecord* predicates, size_t predicate_count);
/** @} */

/**
 * @brief vantel_measure(): measures qudits and collapses their joint state onto the outcome.
 *
 * A state over the limit can be measured, which is how it becomes shorter.
 * @param properties      the qudits, at least one; a handle may be listed twice.
 * @param property_count  how many.
 * @param results         receives `property_count` levels, in the order of `properties`.
 * @return #vantel_ok; #vantel_null_property, #vantel_bad_qudit_number, #vantel_state_size_exceeded (by a
 *         merge) or any of #vantel_guarded_status: nothing was measured.
 */
VANTEL_API int vantel_guarded_measure(QuantumProperty** properties, size_t property_count, int* results);

/**
 * @brief Asks whether all conditions hold, and projects their joint state onto the answer, as often as one
 * likes.
 *
 * One place among the ten must be free. Nothing but a merge has happened unless the function reports 0, and
 * no call spoils a later one.
 * @param predicates       conditions, `predicate_count` records; without any the answer is 1.
 * @param predicate_count  number of conditions; 0 for none.
 * @param result           receives 1 where all conditions hold now, 0 where they do not all hold.
 * @return As vantel_guarded_measure(); #vantel_state_size_exceeded also for a state over the limit.
 */
VANTEL_API int vantel_guarded_project(const PredicateRecord* predicates, size_t predicate_count, int* result);

/**
 * @brief vantel_guarded_project() by its name in vantel.h; unlike vantel_stochastic_projection() it can be
 * repeated.
 * @param predicates       conditions, `predicate_count` records.
 * @param predicate_count  number of conditions; 0 for none.
 * @param result           receives the answer.
 * @return As vantel_guarded_project().
 */
VANTEL_API int vantel_guarded_stochastic_projection(const PredicateRecord* predicates, size_t predicate_count,
                                                    int* result);

/**
 * @brief vantel_probabilities(): the probability of every combination of levels, without measuring.
 * @param properties      the qudits, at least one; a handle may be listed twice.
 * @param property_count  how many.
 * @param records         one record per combination, each with `qudit_values` set to room for
 *                        `property_count` levels.
 * @return #vantel_ok, or as vantel_guarded_measure() with nothing written.
 */
VANTEL_API int vantel_guarded_probabilities(QuantumProperty** properties, size_t property_count,
                                            ProbabilityRecord* records);

/**
 * @brief vantel_reduced_density_matrix(): the density matrix of the listed qudits, all others traced out.
 * @param properties       the qudits, at least one; a handle may be listed twice.
 * @param property_count   how many.
 * @param real_parts       receives `output_size` real parts.
 * @param imaginary_parts  receives `output_size` imaginary parts.
 * @param output_size      the square of the number of combinations of levels, below 2^31.
 * @return #vantel_ok; #vantel_output_too_small, #vantel_output_size_mismatch, or as
 *         vantel_guarded_measure(), with nothing written.
 */
VANTEL_API int vantel_guarded_reduced_density_matrix(QuantumProperty** properties, size_t property_count,
                                                     float* real_parts, float* imaginary_parts, size_t output_size);

#ifdef __cplusplus
}
#endif

#endif
