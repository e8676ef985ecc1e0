#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <string>

#include "interface/boundary.hpp"
#include "interface/value_permutations.hpp"
#include "property/operations.hpp"

using namespace vantel::qudit;
using vantel::conditions;
using vantel::listed;
using vantel::ValuePermutations;

// A table that grows too large passes out as StateSizeExceeded, unlike in the gates; that is meant.
using ReadoutFailure = vantel::Translate<BadDimension, BadQuditNumber>;

namespace {

/// Reports a table whose size does not fit 32 bits, and raises the same text.
void refuse_overflow(const ValuePermutations& permutations) {
    if (permutations.size() == static_cast<std::uint64_t>(permutations.wrapped_size()))
        return;
    std::ostringstream text;
    text << "permutations.size(): " << permutations.size()
         << " != output_size: " << permutations.wrapped_size();
    std::cerr << text.str() << '\n';
    throw std::runtime_error(text.str());
}

/// Whether the caller's matrix size fits; the size that it is held against wraps in 32 bits, and the text
/// shows the number of combinations and not its square. Both are meant.
int check_matrix_size(std::uint64_t permutations, std::size_t output_size) {
    const auto side = static_cast<std::uint32_t>(permutations);
    const auto required = static_cast<std::size_t>(static_cast<std::int32_t>(side * side));
    if (required == output_size)
        return vantel_ok;
    std::cerr << "permutations.size(): " << permutations
              << (required > output_size ? " < output_size: " : " != output_size: ") << output_size << '\n';
    return required > output_size ? vantel_output_too_small : vantel_output_size_mismatch;
}

} // namespace

int vantel_measure(QuantumProperty** properties, size_t property_count, int* results) {
    std::vector<int> levels;
    const int status =
        ReadoutFailure::run([&] { levels = vantel::measure(listed(properties, property_count)); });
    std::copy(levels.begin(), levels.end(), results);
    return status;
}

int vantel_stochastic_projection(const PredicateRecord* predicates, size_t predicate_count, int* result) {
    int answer = 0;
    const int status =
        ReadoutFailure::run([&] { answer = vantel::measure(conditions(predicates, predicate_count)); });
    if (status == vantel_ok)
        *result = answer;
    return status;
}

int vantel_probabilities(QuantumProperty** properties, size_t property_count, ProbabilityRecord* records) {
    const std::vector<QuantumProperty*> list = listed(properties, property_count);
    vantel::PackedTable<PackedOutcome> table;
    if (const int status = ReadoutFailure::run([&] { table = vantel::packed_probabilities(list); });
        status != vantel_ok)
        return status;
    const ValuePermutations permutations(list);
    refuse_overflow(permutations);

    std::vector<int> levels(list.size(), 0);
    for (std::uint64_t i = 0; i < permutations.size(); ++i, permutations.advance(levels)) {
        std::copy(levels.begin(), levels.end(), records[i].qudit_values);
        records[i].probability = 0.0F;
    }
    for (const PackedOutcome& outcome : table.rows) {
        const std::uint64_t rank =
            permutations.rank([&](std::size_t i) { return table.level(outcome.values, i); });
        if (rank != ValuePermutations::none)
            records[rank].probability = static_cast<float>(outcome.probability);
    }
    return vantel_ok;
}

int vantel_reduced_density_matrix(QuantumProperty** properties, size_t property_count, float* real_parts,
                                  float* imaginary_parts, size_t output_size) {
    const std::vector<QuantumProperty*> list = listed(properties, property_count);
    const ValuePermutations permutations(list);
    if (const int status = check_matrix_size(permutations.size(), output_size); status != vantel_ok)
        return status;
    if (output_size > std::vector<float>().max_size())
        throw std::length_error("the matrix is larger than memory can be");
    const vantel::PackedTable<PackedElement> table = vantel::packed_density_matrix(list);

    std::fill_n(real_parts, output_size, 0.0F);
    std::fill_n(imaginary_parts, output_size, 0.0F);
    for (const PackedElement& element : table.rows) {
        const auto rank = [&](std::uint64_t values) {
            return permutations.rank([&](std::size_t i) { return table.level(values, i); });
        };
        const std::uint64_t row = rank(element.row_values);
        const std::uint64_t column = rank(element.column_values);
        // A size that wrapped can agree with the caller's and still be less than the matrix.
        if (row >= permutations.size() || column >= permutations.size() ||
            row * permutations.size() + column >= output_size)
            continue;
        real_parts[row * permutations.size() + column] = static_cast<float>(element.element.real());
        imaginary_parts[row * permutations.size() + column] = static_cast<float>(element.element.imag());
    }
    return vantel_ok;
}
