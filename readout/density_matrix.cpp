#include "readout/density_matrix.hpp"
#include "algorithms/complex_product.hpp"
#include "algorithms/crossovers.hpp"
#include "algorithms/gathered_bits.hpp"
#include "algorithms/key_index.hpp"
#include "algorithms/wide_loop.hpp"
#include "readout/matrix_by_rank.hpp"
#include "readout/outcomes.hpp"
#include "readout/partners.hpp"
#include "state/builds.hpp"
#include "state/level_rank.hpp"
#include "state/state.hpp"
#include <algorithm>
#include <bit>
#include <span>
#include <stdexcept>

namespace vantel::qudit {
namespace {
/// A number for each entry's levels in some fields.
struct Numbering {
    std::vector<std::uint32_t> of; ///< of each entry
    std::size_t size;              ///< above all of them

    Numbering(PackedEntries entries, std::uint64_t fields) : of(entries.size()) {
        const GatheredBits levels(fields);
        if (levels.bits() <= 8) { // levels so few that they are numbers themselves
            std::transform(entries.begin(), entries.end(), of.begin(), [&](const PackedAmplitude& entry) {
                return static_cast<std::uint32_t>(levels(entry.values));
            });
            size = std::size_t{1} << levels.bits();
            return;
        }
        size = with_key_index(levels.bits(), entries.size(), [&](auto& seen) {
            for (std::size_t i = 0; i < entries.size(); ++i)
                of[i] = static_cast<std::uint32_t>(seen.find_or_add(levels(entries[i].values)));
            return seen.size();
        });
    }
};

/// DensityMatrixEntry with its levels still packed: the words of the first two entries that reach it, of which only the
/// kept qudits' fields mean anything.
struct PackedElement {
    std::uint64_t row_values;
    std::uint64_t column_values;
    std::complex<double> element;
};

/// The sum over all pairs of entries that agree in the traced fields of a times the conjugate of b, one for each pair
/// of levels in the kept fields, in first-seen order.
std::vector<PackedElement> elements_of(PackedEntries entries, std::uint64_t kept_fields, std::uint64_t traced_fields) {
    const Numbering kept(entries, kept_fields);
    const Partners partners(entries, traced_fields);
    const auto bits = static_cast<unsigned>(std::bit_width(kept.size * kept.size));
    return with_key_index(bits, entries.size(), [&](auto& seen) {
        return wide_loop([&, entries]() VANTEL_INLINED {
            std::vector<PackedElement> elements;
            for (std::uint32_t a = 0; a < entries.size(); ++a) {
                const Factor amplitude(entries[a].amplitude);
                partners.for_each_of(a, [&](std::uint32_t b) VANTEL_INLINED {
                    const Parts product = amplitude(conjugate(parts_of(entries[b].amplitude)));
                    const std::size_t position = seen.find_or_add(kept.of[a] * kept.size + kept.of[b]);
                    if (position == elements.size()) [[unlikely]]
                        elements.push_back({entries[a].values, entries[b].values, complex_of(product)});
                    else
                        store(parts_of(elements[position].element) + product, elements[position].element);
                });
            }
            return elements;
        });
    });
}

/// Positions are noted in 32 bits.
void refuse_too_many(PackedEntries entries) {
    if (entries.size() > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("too many basis states for a density matrix");
}
} // namespace

DensityMatrix::DensityMatrix(const IState& state, const std::vector<int>& qudits, const ValuePermutations& permutations)
    : side_(permutations.size()) {
    const PackedEntries entries = state.packed_amplitudes();
    if (entries.empty() || side_ == 0) return;
    refuse_too_many(entries);
    const SlotLayout layout = SlotLayout::of(state.dimension());
    if (side_ <= crossover::matrix_rows_by_rank && crossover::is_close_to(entries.size(), side_ * side_)) {
        all_ = matrix_by_rank(entries, layout, qudits, permutations.dimensions(), side_);
        if (!all_.empty()) return;
    }
    const LevelRank rank(layout, qudits, permutations.dimensions(), entries.size());
    const std::uint64_t kept = layout.fields(qudits);
    const std::uint64_t all = layout.fields_below(static_cast<int>(state.num_qudits()));
    for (const PackedElement& element : elements_of(entries, kept, all & ~kept)) {
        const std::uint64_t row = rank(element.row_values);
        const std::uint64_t column = rank(element.column_values);
        if (row < side_ && column < side_) some_.push_back({row, column, element.element});
    }
}

template <class Label>
std::vector<DensityMatrixEntry> State<Label>::reduced_density_matrix(std::vector<int> qudits) const {
    const PackedEntries entries = packed_view(amplitudes);
    refuse_too_many(entries);
    const std::uint64_t kept = Label::layout.fields(qudits);
    const std::uint64_t traced = Label::layout.fields_below(Label::qudit_count) & ~kept;
    std::vector<DensityMatrixEntry> matrix;
    for (const PackedElement& element : elements_of(entries, kept, traced))
        matrix.push_back({levels_of(Label::layout, element.row_values, qudits),
                          levels_of(Label::layout, element.column_values, qudits), element.element});
    return matrix;
}

VANTEL_INSTANTIATE(std::vector<DensityMatrixEntry>, reduced_density_matrix, (std::vector<int>) const)
} // namespace vantel::qudit
