#include "interface/boundary.hpp"
#include "property/operations.hpp"
#include <algorithm>
#include <span>
#include <stdexcept>
#include <string>

using namespace vantel::qudit;
using vantel::conditions;
using vantel::listed;

// A table that grows too large passes out as StateSizeExceeded, unlike in the gates, deliberately.
using ReadoutFailure = vantel::Translate<BadDimension, BadQuditNumber>;

namespace {
/// Reports a table whose size does not fit 32 bits, and raises the same text.
void refuse_overflow(const ValuePermutations& permutations) {
    if (permutations.size() == static_cast<std::uint64_t>(permutations.wrapped_size())) return;
    const std::string text = "permutations.size(): " + std::to_string(permutations.size()) +
                             " != output_size: " + std::to_string(permutations.wrapped_size());
    std::cerr << text << '\n';
    throw std::runtime_error(text);
}

/// Whether the caller's matrix size fits; the size that it is held against wraps in 32 bits, and the text shows the
/// number of combinations and not its square. Both are deliberate.
int check_matrix_size(std::uint64_t permutations, std::size_t output_size) {
    const auto side = static_cast<std::uint32_t>(permutations);
    const auto required = static_cast<std::size_t>(static_cast<std::int32_t>(side * side));
    if (required == output_size) return vantel_ok;
    std::cerr << "permutations.size(): " + std::to_string(permutations) +
                     (required > output_size ? " < output_size: " : " != output_size: ") + std::to_string(output_size) +
                     '\n';
    return required > output_size ? vantel_output_too_small : vantel_output_size_mismatch;
}

/// Writes a level and those behind levels[0], four at a time where there are so many, the last four once more.
void write_levels(int first, std::span<const int> levels, int* written) {
    using Four [[gnu::vector_size(16), gnu::aligned(4), gnu::may_alias]] = int;
    const auto write_four = [&](std::size_t i) {
        *reinterpret_cast<Four*>(&written[i]) = *reinterpret_cast<const Four*>(&levels[i]);
    };
    const std::size_t count = levels.size();
    if (count >= 4) {
        for (std::size_t i = 0; i + 4 < count; i += 4) write_four(i);
        write_four(count - 4);
    } else {
        for (std::size_t i = 1; i < count; ++i) written[i] = levels[i];
    }
    written[0] = first;
}
} // namespace

int vantel_measure(QuantumProperty** properties, size_t property_count, int* results) {
    std::vector<int> levels;
    const int status =
        ReadoutFailure::run([&] { levels = vantel::measure(vantel::Properties(listed(properties, property_count))); });
    std::copy(levels.begin(), levels.end(), results);
    return status;
}

int vantel_stochastic_projection(const PredicateRecord* predicates, size_t predicate_count, int* result) {
    int answer = 0;
    const int status = ReadoutFailure::run(
        [&] { answer = vantel::measure(vantel::Predicates(conditions(predicates, predicate_count))); });
    if (status == vantel_ok) *result = answer;
    return status;
}

int vantel_probabilities(QuantumProperty** properties, size_t property_count, ProbabilityRecord* records) {
    ProbabilityTable table;
    const int status = ReadoutFailure::run([&] { table = vantel::probabilities(listed(properties, property_count)); });
    if (status != vantel_ok) return status;
    refuse_overflow(table.permutations());
    table.for_each([next = records](int first, std::span<const int> levels, double probability) mutable {
        write_levels(first, levels, next->qudit_values);
        (next++)->probability = static_cast<float>(probability);
    });
    return vantel_ok;
}

int vantel_reduced_density_matrix(QuantumProperty** properties, size_t property_count, float* real_parts,
                                  float* imaginary_parts, size_t output_size) {
    const std::vector<QuantumProperty*> list = listed(properties, property_count);
    const ValuePermutations permutations = vantel::value_permutations(list);
    if (const int status = check_matrix_size(permutations.size(), output_size); status != vantel_ok) return status;
    if (output_size > std::vector<float>().max_size())
        throw std::length_error("the matrix is larger than memory can be");

    const DensityMatrix matrix = vantel::reduced_density_matrix(list, permutations);
    matrix.for_each(output_size, [=](std::size_t place, const std::complex<double>& element) {
        real_parts[place] = static_cast<float>(element.real());
        imaginary_parts[place] = static_cast<float>(element.imag());
    });
    return vantel_ok;
}
