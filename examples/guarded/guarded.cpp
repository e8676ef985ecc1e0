#include "guarded.h"

#include <new>

#include <vantel_exceptions.hpp>

namespace {

/// Calls a function of the library and keeps in what would pass out of it.
template <class Function, class... Arguments> int guard(Function function, Arguments... arguments) noexcept {
    try {
        return function(arguments...);
    } catch (const vantel::qudit::BadQuditNumber&) {
        return vantel_bad_qudit_number;
    } catch (const vantel::qudit::StateSizeExceeded&) {
        return vantel_state_size_exceeded;
    } catch (const std::bad_alloc&) {
        return guarded_out_of_memory;
    } catch (...) {
        return guarded_other_failure;
    }
}

} // namespace

QuantumProperty* guarded_make_quantum_property(int dimension, int* status) noexcept {
    QuantumProperty* made = nullptr;
    const int guarded = guard([&] {
        made = vantel_make_quantum_property(dimension, status);
        return *status;
    });
    *status = guarded;
    return made;
}

int guarded_free_quantum_property(QuantumProperty* property) noexcept {
    return guard(vantel_free_quantum_property, property);
}

int guarded_hadamard(QuantumProperty* target, const PredicateRecord* predicates,
                     size_t predicate_count) noexcept {
    return guard(vantel_hadamard, target, predicates, predicate_count);
}

int guarded_inverse_hadamard(QuantumProperty* target, const PredicateRecord* predicates,
                             size_t predicate_count) noexcept {
    return guard(vantel_inverse_hadamard, target, predicates, predicate_count);
}

int guarded_cycle(QuantumProperty* target, float fraction, const PredicateRecord* predicates,
                  size_t predicate_count) noexcept {
    return guard(vantel_cycle, target, fraction, predicates, predicate_count);
}

int guarded_shift(QuantumProperty* target, float fraction, const PredicateRecord* predicates,
                  size_t predicate_count) noexcept {
    return guard(vantel_shift, target, fraction, predicates, predicate_count);
}

int guarded_clock(QuantumProperty* target, float fraction, const PredicateRecord* predicates,
                  size_t predicate_count) noexcept {
    return guard(vantel_clock, target, fraction, predicates, predicate_count);
}

int guarded_phase_rotate(const PredicateRecord* predicates, size_t predicate_count, float angle) noexcept {
    return guard(vantel_phase_rotate, predicates, predicate_count, angle);
}

int guarded_swap(QuantumProperty* first, QuantumProperty* second, const PredicateRecord* predicates,
                 size_t predicate_count) noexcept {
    return guard(vantel_swap, first, second, predicates, predicate_count);
}

int guarded_i_swap(QuantumProperty* first, QuantumProperty* second, float fraction,
                   const PredicateRecord* predicates, size_t predicate_count) noexcept {
    return guard(vantel_i_swap, first, second, fraction, predicates, predicate_count);
}

int guarded_measure(QuantumProperty** properties, size_t property_count, int* results) noexcept {
    return guard(vantel_measure, properties, property_count, results);
}

int guarded_stochastic_projection(const PredicateRecord* predicates, size_t predicate_count,
                                  int* result) noexcept {
    return guard(vantel_stochastic_projection, predicates, predicate_count, result);
}

int guarded_probabilities(QuantumProperty** properties, size_t property_count,
                          ProbabilityRecord* records) noexcept {
    return guard(vantel_probabilities, properties, property_count, records);
}

int guarded_reduced_density_matrix(QuantumProperty** properties, size_t property_count, float* real_parts,
                                   float* imaginary_parts, size_t output_size) noexcept {
    return guard(vantel_reduced_density_matrix, properties, property_count, real_parts, imaginary_parts,
                 output_size);
}
