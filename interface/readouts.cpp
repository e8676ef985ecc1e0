#include <algorithm>
#include <complex>
#include <sstream>
#include <stdexcept>
#include <string>

#include "interface/boundary.hpp"
#include "interface/value_permutations.hpp"
#include "property/operations.hpp"
#include "readout/ranked.hpp"
#include "state/subkey.hpp"

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
    const int status =
        ReadoutFailure::run([&] { levels = vantel::measure(listed(properties, property_count)); });
    std::copy(levels.begin(), levels.end(), results);
    return status;
}

int vantel_stochastic_projection(const PredicateRecord* predicates, size_t predicate_count, int* result) {
    int answer = 0;
    const int status = ReadoutFailure::run([&] {
        const vantel::Conditions all = conditions(predicates, predicate_count);
        answer = vantel::measure(vantel::Predicates(all.begin(), all.end()));
    });
    if (status == vantel_ok)
        *result = answer;
    return status;
}

int vantel_probabilities(QuantumProperty** properties, size_t property_count, ProbabilityRecord* records) {
    const std::vector<QuantumProperty*> list = listed(properties, property_count);
    vantel::ReadoutSource source;
    if (const int status = ReadoutFailure::run([&] { source = vantel::readout_source(list); });
        status != vantel_ok)
        return status;
    if (source.state == nullptr)
        return vantel_ok;
    const PackedEntries entries = source.state->packed_amplitudes();
    if (!entries.empty())
        for (const int index : source.indices)
            refuse_index(index, static_cast<int>(source.state->num_qudits()));
    const ValuePermutations permutations(list);
    refuse_overflow(permutations);

    const LevelRank rank(source.layout, source.indices, permutations.dimensions(), entries.size());
    if (is_close_to(entries.size(), permutations.size())) {
        const std::vector<double> sums =
            ranked_probabilities(entries, fields_of(source.layout, source.indices), rank);
        write_combinations(permutations, records, [&](std::uint64_t i) { return sums[i]; });
        return vantel_ok;
    }
    const std::vector<PackedOutcome> outcomes = source.state->packed_probabilities(source.indices);
    write_combinations(permutations, records, [](std::uint64_t) { return 0.0; });
    for (const PackedOutcome& outcome : outcomes)
        if (const std::uint64_t i = rank(outcome.values); i < permutations.size())
            records[i].probability = static_cast<float>(outcome.probability);
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
    const vantel::ReadoutSource source = vantel::readout_source(list);
    if (source.state == nullptr)
        return vantel_ok;

    const PackedEntries entries = source.state->packed_amplitudes();
    const LevelRank rank(source.layout, source.indices, permutations.dimensions(), entries.size());
    const std::uint64_t side = permutations.size();
    const auto write = [&](std::size_t place, const std::complex<double>& element) {
        real_parts[place] = static_cast<float>(element.real());
        imaginary_parts[place] = static_cast<float>(element.imag());
    };
    if (side <= 256 && is_close_to(entries.size(), side * side)) {
        const std::uint64_t listed_fields = fields_of(source.layout, source.indices);
        const std::uint64_t all = all_fields(source.layout, static_cast<int>(source.state->num_qudits()));
        const RankedMatrix matrix =
            ranked_density_matrix(entries, source.layout, source.indices, rank, all & ~listed_fields);
        for (std::size_t place = 0; place < output_size; ++place)
            write(place, matrix.reached[place] != 0 ? matrix.elements[place] : 0.0);
        return vantel_ok;
    }
    const std::vector<PackedElement> elements = source.state->packed_density_matrix(source.indices);
    std::fill_n(real_parts, output_size, 0.0F);
    std::fill_n(imaginary_parts, output_size, 0.0F);
    for (const PackedElement& element : elements) {
        const std::uint64_t row = rank(element.row_values);
        const std::uint64_t column = rank(element.column_values);
        // A size that wrapped can agree with the caller's and still be less than the matrix.
        if (row < side && column < side && row * side + column < output_size)
            write(row * side + column, element.element);
    }
    return vantel_ok;
}
