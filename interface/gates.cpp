#include "interface/boundary.hpp"
#include "property/operations.hpp"

using namespace vantel::qudit;
using vantel::conditions;

// Each function names the failures that it has a code for, and no two lists need agree.
using OverlapOrSize = vantel::Translate<TargetControlOverlap, StateSizeExceeded>;
using AnySwapFailure =
    vantel::Translate<TargetControlOverlap, DifferentDimensions, BadDimension, BadQuditNumber, StateSizeExceeded>;
using AnyISwapFailure = vantel::Translate<TargetControlOverlap, DifferentDimensions, BadQuditNumber, StateSizeExceeded>;

namespace {
/// The fraction that stands for the whole gate; only this very number selects the integer form.
constexpr float whole = 1.0F;
} // namespace

int vantel_hadamard(QuantumProperty* target, const PredicateRecord* predicates, size_t predicate_count) {
    return OverlapOrSize::run([&] { vantel::hadamard(*target, conditions(predicates, predicate_count)); });
}

int vantel_inverse_hadamard(QuantumProperty* target, const PredicateRecord* predicates, size_t predicate_count) {
    return OverlapOrSize::run([&] { vantel::inverse_hadamard(*target, conditions(predicates, predicate_count)); });
}

int vantel_cycle(QuantumProperty* target, float fraction, const PredicateRecord* predicates, size_t predicate_count) {
    return OverlapOrSize::run([&] {
        if (fraction == whole)
            vantel::cycle(*target, conditions(predicates, predicate_count));
        else
            vantel::cycle(*target, fraction, conditions(predicates, predicate_count));
    });
}

int vantel_shift(QuantumProperty* target, float fraction, const PredicateRecord* predicates, size_t predicate_count) {
    return OverlapOrSize::run([&] {
        if (fraction == whole)
            vantel::shift(*target, conditions(predicates, predicate_count));
        else
            vantel::shift(*target, fraction, conditions(predicates, predicate_count));
    });
}

int vantel_clock(QuantumProperty* target, float fraction, const PredicateRecord* predicates, size_t predicate_count) {
    return OverlapOrSize::run([&] {
        if (fraction == whole)
            vantel::clock(*target, conditions(predicates, predicate_count));
        else
            vantel::clock(*target, fraction, conditions(predicates, predicate_count));
    });
}

int vantel_phase_rotate(const PredicateRecord* predicates, size_t predicate_count, float angle) {
    return OverlapOrSize::run([&] { vantel::phase_rotate(conditions(predicates, predicate_count), angle); });
}

int vantel_swap(QuantumProperty* first, QuantumProperty* second, const PredicateRecord* predicates,
                size_t predicate_count) {
    return AnySwapFailure::run([&] { vantel::swap(*first, *second, conditions(predicates, predicate_count)); });
}

int vantel_i_swap(QuantumProperty* first, QuantumProperty* second, float fraction, const PredicateRecord* predicates,
                  size_t predicate_count) {
    return AnyISwapFailure::run(
        [&] { vantel::i_swap(*first, *second, fraction, conditions(predicates, predicate_count)); });
}
