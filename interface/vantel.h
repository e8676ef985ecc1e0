/**
 * @file vantel.h
 * @brief libvantel: a simulator of qudits, quantum systems of 2 to 10 levels.
 *
 * Conventions that hold for every function:
 *
 * - **Handles.** A `QuantumProperty` is an opaque handle to one qudit. The caller owns it from
 *   vantel_make_quantum_property() to vantel_free_quantum_property(), which is the only thing in this
 *   interface that is ever freed. Handles are not tested: a null or dead handle is a programming error
 *   (vantel_free_quantum_property() alone accepts null).
 * - **Joint states.** Qudits start separate. A function that relates several handles first merges them
 *   into one joint state, of at most 10 qudits and 100000 stored basis states. A merge is not undone,
 *   not even when the function then fails. Freeing a handle takes its qudit out again.
 * - **Levels** count from 0. Angles are in radians. A fraction is a power of the gate: 1 is the whole gate.
 * - **Conditions.** A gate acts on those basis states for which every record of its condition list
 *   holds; an empty list (count 0, pointer may be null) selects all. The list is only read during the call.
 * - **Order.** Tables list every combination of the levels of the listed qudits, and the first listed
 *   qudit varies fastest: (0,0), (1,0), (0,1), (1,1), ... for two two-level qudits.
 * - **Buffers** belong to the caller and are written last, so a failing call leaves them as they were.
 * - **Status codes.** Every `int` result is one of #vantel_status. A failure that has a code also writes
 *   one line of text to standard error.
 * - **Exceptions.** A failure for which a function lists no code passes out of it as a C++ exception
 *   (the classes are declared in `vantel_exceptions.hpp`); a host that cannot let one pass must guard
 *   the call. Exhausted memory is such a failure (`std::bad_alloc`) in every function that can allocate.
 *   A count with its top bit set raises `std::length_error`, any other that no memory could hold
 *   `std::bad_alloc`.
 * - **The end of the process.** Three calls can end it, where no exception can leave: freeing a handle of a
 *   joint state, when memory runs out or the state is over the limit; a stochastic projection, when memory
 *   runs out while it frees the place that it took; and vantel_cycle() by a fraction of exactly 1 of a handle
 *   that names no qudit any more (see vantel_free_quantum_property()), with a text on standard output.
 * - **Threads.** The library keeps no global data and takes no locks. Handles of one joint state belong
 *   to one thread at a time; separate joint states are independent.
 * - **An empty joint state** (every amplitude fell below the drop threshold, or became NaN) remains
 *   usable: its tables have no rows to write, and measuring it yields level 0 for each listed qudit.
 */
#ifndef VANTEL_H
#define VANTEL_H

#include <stddef.h>

#if defined(__GNUC__)
#define VANTEL_API __attribute__((visibility("default")))
#else
#define VANTEL_API
#endif

#ifdef __cplusplus
namespace vantel {
struct QuantumProperty;
}
/** The handle to one qudit; only ever held by pointer. */
typedef vantel::QuantumProperty QuantumProperty;
extern "C" {
#else
/** The handle to one qudit; only ever held by pointer. */
typedef struct QuantumProperty QuantumProperty;
#endif

/** What a function reports. The value 2 is reserved and never reported. */
enum vantel_status {
    vantel_ok = 0,                     /**< The operation finished. */
    vantel_null_property = 1,          /**< The handle to free is null. */
    vantel_output_too_small = 3,       /**< The matrix has more elements than `output_size`. */
    vantel_target_control_overlap = 4, /**< A condition names a target of the gate. */
    vantel_different_dimensions = 5,   /**< The qudits to exchange have different dimensions. */
    vantel_bad_dimension = 6,          /**< A dimension is not in 2 .. 10. */
    vantel_bad_qudit_number = 7,       /**< A joint state would need more than 10 qudits. */
    vantel_output_size_mismatch = 8,   /**< The matrix has fewer elements than `output_size`. */
    vantel_state_size_exceeded = 9     /**< A joint state holds more than 100000 basis states. */
};

/** One condition on the level of a qudit. 16 bytes; the three bytes of padding are never read. */
typedef struct PredicateRecord {
    QuantumProperty* property; /**< The qudit that is tested; a live handle, not owned. */
    int value;                 /**< The level to compare with; any value, in or out of range. */
    unsigned char is_equal;    /**< Non-zero: the levels must be equal. Zero: they must differ. */
} PredicateRecord;

/** One joint outcome of vantel_probabilities(). 16 bytes. */
typedef struct ProbabilityRecord {
    float probability; /**< Written by the library: the probability of this outcome. */
    int* qudit_values; /**< Set by the caller: room for one level per listed qudit, written by the library. */
} ProbabilityRecord;

/* A negative array length stops the compilation where a record would not have its told layout; C99
   has no other way to say it. */
#define VANTEL_LAYOUT(name, condition) typedef char vantel_layout_##name[(condition) ? 1 : -1]
VANTEL_LAYOUT(int_is_32_bits, sizeof(int) == 4 && sizeof(float) == 4 && sizeof(void*) == 8);
VANTEL_LAYOUT(predicate_size, sizeof(PredicateRecord) == 16);
VANTEL_LAYOUT(predicate_value, offsetof(PredicateRecord, value) == 8);
VANTEL_LAYOUT(predicate_is_equal, offsetof(PredicateRecord, is_equal) == 12);
VANTEL_LAYOUT(probability_size, sizeof(ProbabilityRecord) == 16);
VANTEL_LAYOUT(probability_values, offsetof(ProbabilityRecord, qudit_values) == 8);
#undef VANTEL_LAYOUT

/**
 * @brief The library's version, "1.0.0".
 * @return A pointer to the text. It is good only at the moment of return: copy the characters before
 *         any other call, keep nothing, free nothing. Nothing passes out but exhausted memory.
 */
VANTEL_API const char* vantel_version(void);

/**
 * @brief Makes a qudit in level 0, in a joint state of its own.
 * @param dimension  number of levels, 2 to 10.
 * @param status     receives #vantel_ok or #vantel_bad_dimension (and, by its interface only,
 *                   #vantel_state_size_exceeded); must not be null.
 * @return The new handle, owned by the caller; null on failure.
 */
VANTEL_API QuantumProperty* vantel_make_quantum_property(int dimension, int* status);

/**
 * @brief Frees a handle and takes its qudit out of its joint state.
 *
 * The qudit's level is forgotten in every basis state; nothing is measured, traced out or normalised.
 * Of basis states that differed only in this qudit, the one stored first stays and the others go with
 * their amplitudes. Measure a qudit that is not in a definite level before freeing it. The qudit that
 * stood last in the joint state takes the freed place. A failure on the way ends the process: that is
 * memory that runs out, and a joint state of more than 100000 basis states, which must be measured down
 * first. Neither can happen to a qudit that is alone in its joint state.
 *
 * Freed best are the qudit that joined its joint state last, or all qudits of a joint state together. Of
 * any other, the joint state keeps the last comer's handle in two places; when it is later merged *behind*
 * another joint state, that handle counts its new place twice and then names another qudit, or none. A handle
 * that names none reads as a qudit of one level, in level 0, which no gate changes; but measuring it and
 * vantel_probabilities() raise `std::out_of_range`, and a whole vantel_cycle() of it ends the process. The
 * joint state may still be merged *in front*: a gate's target, a readout's first qudit or
 * vantel_phase_rotate()'s first condition stands in front, and what is named after it is merged behind it in
 * that order.
 * @param property  a live handle, or null.
 * @return #vantel_ok, or #vantel_null_property for null.
 */
VANTEL_API int vantel_free_quantum_property(QuantumProperty* property);

/**
 * @brief The generalised Hadamard gate, the discrete Fourier transform of a qudit's levels.
 *
 * Level v of a qudit of d levels goes to the sum over k of exp(-2 pi i k v / d) / sqrt(d) times level k.
 * Basis states whose amplitude ends with both parts at or below 2^-23 in size are dropped.
 * @param target           the qudit to transform.
 * @param predicates       conditions, `predicate_count` records.
 * @param predicate_count  number of conditions; 0 for none.
 * @return #vantel_ok, #vantel_target_control_overlap (gate not applied), #vantel_state_size_exceeded
 *         (a merge would be too large and the gate was not applied, or the gate *was* applied and the
 *         state stays over the limit). Passes out: `BadQuditNumber`, exhausted memory.
 */
VANTEL_API int vantel_hadamard(QuantumProperty* target, const PredicateRecord* predicates, size_t predicate_count);

/**
 * @brief The inverse of vantel_hadamard(), with exp(+2 pi i k v / d) / sqrt(d).
 * @param target           the qudit to transform.
 * @param predicates       conditions, `predicate_count` records.
 * @param predicate_count  number of conditions; 0 for none.
 * @return As vantel_hadamard(), with what passes out of it.
 */
VANTEL_API int vantel_inverse_hadamard(QuantumProperty* target, const PredicateRecord* predicates,
                                       size_t predicate_count);

/**
 * @brief Raises a qudit by one level, the last level going to 0 (the generalised X gate).
 *
 * Level v goes to (v + 1) mod d. Any `fraction` but exactly 1 takes that power of the gate, by way of
 * the Fourier basis: level j goes to the sum over m of (1/d) sum over k of exp(2 pi i k (m - j - f) / d)
 * times level m.
 * @param target           the qudit to raise.
 * @param fraction         the power; any float, NaN included.
 * @param predicates       conditions, `predicate_count` records.
 * @param predicate_count  number of conditions; 0 for none.
 * @return As vantel_hadamard(), with what passes out of it. A fractional form that exceeds the size in
 *         mid-course stays in the Fourier basis. Ends the process if `fraction` is exactly 1, the handle
 * names no qudit any more (see vantel_free_quantum_property()) and the conditions hold for some basis state.
 */
VANTEL_API int vantel_cycle(QuantumProperty* target, float fraction, const PredicateRecord* predicates,
                            size_t predicate_count);

/**
 * @brief Lowers a qudit by one level, 0 going to the last level: the inverse of vantel_cycle().
 *
 * Level v goes to (v + d - 1) mod d; a `fraction` f other than 1 is vantel_cycle() with -f.
 * @param target           the qudit to lower.
 * @param fraction         the power; any float, NaN included.
 * @param predicates       conditions, `predicate_count` records.
 * @param predicate_count  number of conditions; 0 for none.
 * @return As vantel_hadamard(), with what passes out of it. A fractional form that exceeds the size in
 *         mid-course stays in the Fourier basis.
 */
VANTEL_API int vantel_shift(QuantumProperty* target, float fraction, const PredicateRecord* predicates,
                            size_t predicate_count);

/**
 * @brief Turns the phase of each level in proportion to it (the generalised Z gate).
 *
 * The amplitude of level v is multiplied by exp(2 pi i v f / d), with v f rounded to single precision.
 * @param target           the qudit whose level sets the phase.
 * @param fraction         the power f; any float, NaN included.
 * @param predicates       conditions, `predicate_count` records.
 * @param predicate_count  number of conditions; 0 for none.
 * @return #vantel_ok, #vantel_target_control_overlap or #vantel_state_size_exceeded (a merge would be
 *         too large); the gate was not applied then. A state over the limit already is not reported.
 *         Passes out: `BadQuditNumber`, exhausted memory.
 */
VANTEL_API int vantel_clock(QuantumProperty* target, float fraction, const PredicateRecord* predicates,
                            size_t predicate_count);

/**
 * @brief Multiplies by exp(i angle) every basis state that meets the conditions.
 *
 * Without conditions there is no state to act on: the call does nothing. Sine and cosine are taken in
 * single precision.
 * @param predicates       conditions, `predicate_count` records; they alone say where the phase goes.
 * @param predicate_count  number of conditions; 0 for none.
 * @param angle            the angle in radians; any float.
 * @return #vantel_ok, or #vantel_state_size_exceeded (a merge would be too large, or the state was over
 *         the limit already and the phase *was* applied). #vantel_target_control_overlap is kept in the
 *         interface and not reported. Passes out: `BadQuditNumber`, exhausted memory.
 */
VANTEL_API int vantel_phase_rotate(const PredicateRecord* predicates, size_t predicate_count, float angle);

/**
 * @brief Exchanges the levels of two qudits of one dimension.
 * @param first            one qudit.
 * @param second           the other; may be the same handle, which changes nothing.
 * @param predicates       conditions, `predicate_count` records.
 * @param predicate_count  number of conditions; 0 for none.
 * @return #vantel_ok; #vantel_target_control_overlap, #vantel_different_dimensions,
 *         #vantel_bad_qudit_number (gate not applied); #vantel_state_size_exceeded (a merge would be too
 *         large and the gate was not applied, or the state was over the limit already and the exchange *was*
 *         done); #vantel_bad_dimension is kept in the interface. Passes out: exhausted memory.
 */
VANTEL_API int vantel_swap(QuantumProperty* first, QuantumProperty* second, const PredicateRecord* predicates,
                           size_t predicate_count);

/**
 * @brief The fractional i-swap of two qudits of one dimension.
 *
 * With t = fraction pi/2, levels (p, q), p != q, go to cos t (p, q) + i sin t (q, p); equal levels stay.
 * Fraction 1 is the whole i-swap.
 * @param first            one qudit.
 * @param second           the other.
 * @param fraction         the power; any float, NaN included.
 * @param predicates       conditions, `predicate_count` records.
 * @param predicate_count  number of conditions; 0 for none.
 * @return #vantel_ok; #vantel_target_control_overlap, #vantel_different_dimensions,
 *         #vantel_bad_qudit_number (gate not applied); #vantel_state_size_exceeded (a merge would be too
 *         large and the gate was not applied, or the gate *was* applied and the state stays over the limit).
 *         Passes out: exhausted memory.
 */
VANTEL_API int vantel_i_swap(QuantumProperty* first, QuantumProperty* second, float fraction,
                             const PredicateRecord* predicates, size_t predicate_count);

/**
 * @brief Measures qudits and collapses their joint state onto the outcome.
 *
 * The outcome is drawn with one word of the system's randomness. The state is renormalised, to single
 * precision.
 * @param properties      the qudits, at least one; a handle may be listed twice.
 * @param property_count  how many.
 * @param results         receives `property_count` levels, in the order of `properties`.
 * @return #vantel_ok or #vantel_bad_qudit_number (nothing measured); #vantel_bad_dimension is kept in
 *         the interface. Passes out: `StateSizeExceeded` from a merge, `std::out_of_range`,
 *         `std::system_error` or the like from the system's random source, exhausted memory.
 */
VANTEL_API int vantel_measure(QuantumProperty** properties, size_t property_count, int* results);

/**
 * @brief Asks whether all conditions hold, and projects the joint state onto the answer.
 *
 * The conditions' qudits are merged, and one place among the ten is needed for the time of the call.
 * That place is taken in front and freed, so that the joint state must not be merged behind another one
 * afterwards, which a second call on it would do: its qudits then go by wrong handles, and what follows is
 * another program than the one that was written. See vantel_free_quantum_property().
 * @param predicates       conditions, `predicate_count` records; without any the answer is 1.
 * @param predicate_count  number of conditions; 0 for none.
 * @param result           receives 1 where all conditions hold now, 0 where they do not all hold.
 * @return #vantel_ok or #vantel_bad_qudit_number; #vantel_bad_dimension is kept in the interface.
 *         Passes out: as vantel_measure(), but for `std::out_of_range`. Ends the process if memory runs out
 *         while the place is freed.
 */
VANTEL_API int vantel_stochastic_projection(const PredicateRecord* predicates, size_t predicate_count, int* result);

/**
 * @brief The probability of every combination of levels of the listed qudits, without measuring.
 * @param properties      the qudits, at least one; a handle may be listed twice.
 * @param property_count  how many.
 * @param records         one record per combination of levels, that is the product of the dimensions,
 *                        each with `qudit_values` set to room for `property_count` levels. Row i gets
 *                        combination i, the first listed qudit varying fastest, and its probability.
 * @return #vantel_ok or #vantel_bad_qudit_number; #vantel_bad_dimension is kept in the interface.
 *         Passes out: `StateSizeExceeded` from a merge, `std::out_of_range`, `std::runtime_error` where
 *         the number of combinations does not fit 32 bits (its text also goes to standard error),
 *         exhausted memory.
 */
VANTEL_API int vantel_probabilities(QuantumProperty** properties, size_t property_count, ProbabilityRecord* records);

/**
 * @brief The reduced density matrix of the listed qudits, all others traced out.
 *
 * Element (r, c) stands at r P + c in both arrays, with P the number of combinations of levels, and is
 * the sum of a conj(b) over the amplitudes a and b whose listed levels are combinations r and c and
 * whose other levels agree.
 * @param properties       the qudits, at least one; a handle may be listed twice.
 * @param property_count   how many.
 * @param real_parts       receives `output_size` real parts.
 * @param imaginary_parts  receives `output_size` imaginary parts.
 * @param output_size      must be P * P; it is tested before anything is merged.
 * @return #vantel_ok, #vantel_output_too_small or #vantel_output_size_mismatch.
 *         Passes out: `BadQuditNumber` and `StateSizeExceeded` from a merge, exhausted memory.
 */
VANTEL_API int vantel_reduced_density_matrix(QuantumProperty** properties, size_t property_count, float* real_parts,
                                             float* imaginary_parts, size_t output_size);

#ifdef __cplusplus
}
#endif

#endif
