/// The exported functions: each checks what it is given, and does what its like in vantel.h does.
#include "guarded/boundary.hpp"
#include "guarded/handles.hpp"
#include "interface/boundary.hpp"
#include "property/operations.hpp"
#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

using vantel::guarded::guard;
using vantel::guarded::Refusal;

namespace {
constexpr const char* no_handle = "a handle is null";

template <class Pointer> void require(Pointer pointer, const char* text) {
    if (pointer == nullptr) throw Refusal(vantel_guarded_bad_argument, text);
}

QuantumProperty& live(QuantumProperty* property) {
    if (property == nullptr) throw Refusal(vantel_null_property, no_handle);
    return *property;
}

/// A handle whose joint state takes gates. One over the limit would let some of them lengthen it tenfold each
/// time, until the system ends the process.
QuantumProperty& usable(QuantumProperty* property) {
    if (live(property).shared_state->state->packed_amplitudes().size() > vantel::qudit::MAX_STATE_ENTRIES)
        throw Refusal(vantel_state_size_exceeded, "the joint state is over the limit and must be measured first");
    return *property;
}

/// A caller's conditions, each on a usable qudit.
vantel::Conditions when(const PredicateRecord* records, std::size_t count) {
    if (count > 0) require(records, "there is a count of conditions and no condition");
    vantel::Conditions copy = vantel::conditions(records, count);
    for (const vantel::QuantumProperty::Predicate& condition : copy) usable(condition.property);
    return copy;
}

/// A caller's qudits, merged into a joint state that has something to read.
std::vector<QuantumProperty*> joined(QuantumProperty** properties, std::size_t count) {
    if (count == 0) throw Refusal(vantel_guarded_bad_argument, "the list of qudits is empty");
    require(properties, "there is a count of qudits and no list of them");
    std::vector<QuantumProperty*> list = vantel::listed(properties, count);
    for (QuantumProperty* const property : list) live(property);
    if (vantel::tensor_state(list)->packed_amplitudes().empty())
        throw Refusal(vantel_guarded_empty_state, "the joint state has lost all amplitudes");
    return list;
}

/// The number of combinations of levels, of which `power` together count the places of a table.
std::uint64_t combinations(const std::vector<QuantumProperty*>& list, int power) {
    constexpr std::uint64_t most = std::numeric_limits<std::int32_t>::max();
    const std::uint64_t size = vantel::value_permutations(list).size();
    if (size > (power == 1 ? most : most / size))
        throw Refusal(vantel_guarded_bad_argument, "a table of 2^31 places or more");
    return size;
}

int project(const char* function, const PredicateRecord* predicates, std::size_t predicate_count, int* result) {
    return guard(function, [&] {
        require(result, "there is no room for the answer");
        const vantel::Conditions conditions = when(predicates, predicate_count);
        if (conditions.size() > 0 && vantel::tensor_state({}, conditions)->packed_amplitudes().empty())
            throw Refusal(vantel_guarded_empty_state, "the joint state has lost all amplitudes");
        *result = vantel::guarded::project(conditions);
    });
}
} // namespace

const char* vantel_guarded_version() { return VANTEL_VERSION; }

const char* vantel_guarded_last_failure() { return vantel::guarded::last_failure(); }

QuantumProperty* vantel_guarded_make_quantum_property(int dimension, int* status) {
    QuantumProperty* made = nullptr;
    const int failure = guard(__func__, [&] {
        // A negative dimension widens to a huge one and is refused as too large, as in vantel.h.
        made = new QuantumProperty(
            vantel::make_quantum_property(static_cast<unsigned long>(static_cast<long>(dimension))));
    });
    if (status != nullptr) *status = failure;
    return made;
}

int vantel_guarded_free_quantum_property(QuantumProperty* property) {
    return guard(__func__, [&] { vantel::guarded::release(&live(property)); });
}

int vantel_guarded_join(QuantumProperty* into, QuantumProperty* newcomer) {
    return guard(__func__, [&] { vantel::tensor_state(live(into), live(newcomer)); });
}

int vantel_guarded_hadamard(QuantumProperty* target, const PredicateRecord* predicates, size_t predicate_count) {
    return guard(__func__, [&] { vantel::hadamard(usable(target), when(predicates, predicate_count)); });
}

int vantel_guarded_inverse_hadamard(QuantumProperty* target, const PredicateRecord* predicates,
                                    size_t predicate_count) {
    return guard(__func__, [&] { vantel::inverse_hadamard(usable(target), when(predicates, predicate_count)); });
}

int vantel_guarded_cycle(QuantumProperty* target, float fraction, const PredicateRecord* predicates,
                         size_t predicate_count) {
    return guard(__func__, [&] {
        if (fraction == 1.0F)
            vantel::cycle(usable(target), when(predicates, predicate_count));
        else
            vantel::cycle(usable(target), fraction, when(predicates, predicate_count));
    });
}

int vantel_guarded_shift(QuantumProperty* target, float fraction, const PredicateRecord* predicates,
                         size_t predicate_count) {
    return guard(__func__, [&] {
        if (fraction == 1.0F)
            vantel::shift(usable(target), when(predicates, predicate_count));
        else
            vantel::shift(usable(target), fraction, when(predicates, predicate_count));
    });
}

int vantel_guarded_clock(QuantumProperty* target, float fraction, const PredicateRecord* predicates,
                         size_t predicate_count) {
    return guard(__func__, [&] {
        if (fraction == 1.0F)
            vantel::clock(usable(target), when(predicates, predicate_count));
        else
            vantel::clock(usable(target), fraction, when(predicates, predicate_count));
    });
}

int vantel_guarded_phase_rotate(const PredicateRecord* predicates, size_t predicate_count, float angle) {
    return guard(__func__, [&] { vantel::phase_rotate(when(predicates, predicate_count), angle); });
}

int vantel_guarded_swap(QuantumProperty* first, QuantumProperty* second, const PredicateRecord* predicates,
                        size_t predicate_count) {
    return guard(__func__, [&] { vantel::swap(usable(first), usable(second), when(predicates, predicate_count)); });
}

int vantel_guarded_i_swap(QuantumProperty* first, QuantumProperty* second, float fraction,
                          const PredicateRecord* predicates, size_t predicate_count) {
    return guard(__func__,
                 [&] { vantel::i_swap(usable(first), usable(second), fraction, when(predicates, predicate_count)); });
}

int vantel_guarded_measure(QuantumProperty** properties, size_t property_count, int* results) {
    return guard(__func__, [&] {
        require(results, "there is no room for the levels");
        const std::vector<QuantumProperty*> list = joined(properties, property_count);
        std::ranges::copy(vantel::measure(vantel::Properties(list)), results);
    });
}

int vantel_guarded_project(const PredicateRecord* predicates, size_t predicate_count, int* result) {
    return project(__func__, predicates, predicate_count, result);
}

int vantel_guarded_stochastic_projection(const PredicateRecord* predicates, size_t predicate_count, int* result) {
    return project(__func__, predicates, predicate_count, result);
}

int vantel_guarded_probabilities(QuantumProperty** properties, size_t property_count, ProbabilityRecord* records) {
    return guard(__func__, [&] {
        require(records, "there are no rows to write");
        std::vector<QuantumProperty*> list = joined(properties, property_count);
        const std::uint64_t rows = combinations(list, 1);
        for (std::uint64_t row = 0; row < rows; ++row)
            require(records[row].qudit_values, "a row has no room for levels");
        return vantel_probabilities(list.data(), list.size(), records);
    });
}

int vantel_guarded_reduced_density_matrix(QuantumProperty** properties, size_t property_count, float* real_parts,
                                          float* imaginary_parts, size_t output_size) {
    return guard(__func__, [&] {
        require(real_parts, "there is no room for the real parts");
        require(imaginary_parts, "there is no room for the imaginary parts");
        std::vector<QuantumProperty*> list = joined(properties, property_count);
        const std::uint64_t side = combinations(list, 2);
        if (output_size < side * side)
            throw Refusal(vantel_output_too_small, "the matrix has more elements than the output");
        if (output_size > side * side)
            throw Refusal(vantel_output_size_mismatch, "the matrix has fewer elements than the output");
        return vantel_reduced_density_matrix(list.data(), list.size(), real_parts, imaginary_parts, output_size);
    });
}
