#include <algorithm>
#include <stdexcept>
#include <string>

#include "interface/boundary.hpp"
#include "property/operations.hpp"

using namespace vantel::qudit;
using vantel::conditions;
using vantel::listed;

// A table that grows too large passes out as StateSizeExceeded, unlike in the gates; that is meant.
using ReadoutFailure = vantel::Translate<BadDimension, BadQuditNumber>;

namespace {

/// Reports a table whose size does not fit 32 bits, and raises the same text.
void refuse_overflow(const ValuePermutations& permutations) {
    if (permutations.size() == static_cast<std::uint64_t>(permutations.wrapped_size()))
        return;
    const std::string text = "permutations.size(): " + std::to_string(permutations.size()) +
                             " != output_size: " + std::to_string(permutations.wrapped_size());
    std::cerr << text << '\n';
    throw std::runtime_error(text);
}

/// Whether the caller's matrix size fits; the size that it is held against wraps in 32 bits, and the text
/// shows the number of combinations and not its square. Both are meant.
int check_matrix_size(std::uint64_t permutations, std::size_t output_size) {
    const auto side = static_cast<std::uint32_t>(permutations);
    const auto required = static_cast<std::size_t>(static_cast<std::int32_t>(side * side));
    if (required == output_size)
        return vantel_ok;
    std::cerr << "permutations.size(): " + std::to_string(permutations) +
                     (required > output_size ? " < output_size: " : " != output_size: ") +
                     std::to_string(output_size) + '\n';
    return required > output_size ? vantel_output_too_small : vantel_output_size_mismatch;
}

/// Writes all combinations of levels, with `probability_of(i)` beside the i-th.
template <class ProbabilityOf>
void write_combinations(const ValuePermutations& permutations, ProbabilityRecord* records,
                        ProbabilityOf probability_of) {
    std::vector<int> levels(permutations.dimensions().size(), 0);
    const std::size_t count = levels.size();
    const int* const first = levels.data();
    for (std::uint64_t i = 0; i < permutations.size(); ++i, permutations.advance(levels)) {
        int* const written = records[i].qudit_values;
        for (std::size_t place = 0; place < count; ++place)
            written[place] = first[place];
        records[i].probability = static_cast<float>(probability_of(i));
    }
}

} // namespace

int vantel_measure(QuantumProperty** properties, size_t property_count, int* results) {
    std::vector<int> levels;
    const int status = ReadoutFailure::run(
        [&] { levels = vantel::measure(vantel::Properties(listed(properties, property_count))); });
    std::copy(levels.begin(), levels.end(), results);
    return status;
}

int vantel_stochastic_projection(const PredicateRecord* predicates, size_t predicate_count, int* result) {
    int answer = 0;
    const int status = ReadoutFailure::run(
        [&] { answer = vantel::measure(vantel::Predicates(conditions(predicates, predicate_count))); });
    if (status == vantel_ok)
        *result = answer;
    return status;
}

int vantel_probabilities(QuantumProperty** properties, size_t property_count, ProbabilityRecord* records) {
    RankedProbabilities table;
    const int status =
        ReadoutFailure::run([&] { table = vantel::probabilities(listed(properties, property_count)); });
    if (status != vantel_ok)
        return status;
    refuse_overflow(table.permutations);
    if (table.all.empty())
        write_combinations(table.permutations, records, [](std::uint64_t) { return 0.0; });
    else
        write_combinations(table.permutations, records, [&](std::uint64_t i) { return table.all[i]; });
    for (const RankedProbabilities::Shown& shown : table.some)
        records[shown.rank].probability = static_cast<float>(shown.probability);
    return vantel_ok;
}

int vantel_reduced_density_matrix(QuantumProperty** properties, size_t property_count, float* real_parts,
                                  float* imaginary_parts, size_t output_size) {
    const std::vector<QuantumProperty*> list = listed(properties, property_count);
    const ValuePermutations permutations = vantel::value_permutations(list);
    if (const int status = check_matrix_size(permutations.size(), output_size); status != vantel_ok)
        return status;
    if (output_size > std::vector<float>().max_size())
        throw std::length_error("the matrix is larger than memory can be");

    const RankedMatrix matrix = vantel::reduced_density_matrix(list, permutations);
    const auto write = [&](std::size_t place, const std::complex<double>& element) {
        real_parts[place] = static_cast<float>(element.real());
        imaginary_parts[place] = static_cast<float>(element.imag());
    };
    for (std::size_t place = 0; place < output_size; ++place)
        write(place, matrix.has(place) ? matrix.all[place] : 0.0);
    for (const RankedMatrix::Shown& shown : matrix.some)
        // A size that wrapped can agree with the caller's and still be less than the matrix.
        if (shown.column < output_size && shown.row <= (output_size - 1 - shown.column) / permutations.size())
            write(shown.row * permutations.size() + shown.column, shown.element);
    return vantel_ok;
}
