#include <algorithm>
#include <cmath>
#include <complex>
#include <span>
#include <vector>

#include "readout/levels.hpp"
#include "readout/partners.hpp"
#include "readout/ranked.hpp"
#include "state/builds.hpp"
#include "state/key_index.hpp"
#include "state/packed_view.hpp"
#include "state/product.hpp"
#include "state/state.hpp"
#include "state/subkey.hpp"
#include "state/wide_loop.hpp"

namespace vantel::qudit {

namespace {

Parts conjugate(const std::complex<double>& amplitude) {
    return negated<1>(parts_of(amplitude));
}

/// The number of each entry's levels in some fields, in first-seen order.
struct Numbering {
    std::vector<std::uint32_t> of; ///< of each entry
    std::size_t size;              ///< distinct ones

    Numbering(std::span<const PackedAmplitude> entries, std::uint64_t fields) : of(entries.size()) {
        const Subkey levels(fields);
        size = with_key_index(levels.bits(), entries.size(), [&](auto& seen) {
            for (std::size_t i = 0; i < entries.size(); ++i)
                of[i] = static_cast<std::uint32_t>(seen.find_or_add(levels(entries[i].values)));
            return seen.size();
        });
    }
};

std::vector<PackedElement> elements_of(std::span<const PackedAmplitude> entries, std::uint64_t kept_fields,
                                       std::uint64_t traced_fields) {
    const Numbering numbering(entries, kept_fields);
    const std::vector<std::uint32_t>& kept = numbering.of;
    const std::size_t side = numbering.size;
    const Partners partners(entries, traced_fields, side);
    const auto bits = static_cast<unsigned>(std::bit_width(side * side));
    return with_key_index(bits, entries.size(), [&](auto& seen) {
        const Partners::Lists lists = partners.lists();
        std::vector<PackedElement> elements;
        for (std::uint32_t a = 0; a < entries.size(); ++a) {
            const Factor amplitude(entries[a].amplitude);
            const std::uint64_t row = kept[a] * side;
            lists.for_each_of(a, [&](std::uint32_t b) {
                const Parts product = amplitude(conjugate(entries[b].amplitude));
                const std::size_t position = seen.find_or_add(row + kept[b]);
                if (position == elements.size())
                    elements.push_back({entries[a].values, entries[b].values, complex_of(product)});
                else
                    store(parts_of(elements[position].element) + product, elements[position].element);
            });
        }
        return elements;
    });
}

/// Adds up all products by row and column; what is beyond the last of either is left out.
/// @param times  times(factor, conjugate) is the product
template <class Times>
void add_up(RankedMatrix& matrix, std::span<const PackedAmplitude> entries, const Partners& partners,
            std::span<const std::uint32_t> ranks, std::size_t side, Times times) {
    // A sum that starts from negative zero has the bits of its first product.
    std::fill(matrix.elements.begin(), matrix.elements.end(), std::complex<double>(-0.0, -0.0));
    wide_loop([&matrix, entries, &partners, ranks, side, times] {
        // Copies that no store to a byte can be thought to change.
        const PackedAmplitude* const list = entries.data();
        const auto count = static_cast<std::uint32_t>(entries.size());
        const Partners::Lists lists = partners.lists();
        const std::uint32_t* const rank_of = ranks.data();
        const std::size_t own_side = side;
        std::complex<double>* const elements = matrix.elements.data();
        std::uint8_t* const all_reached = matrix.reached.data();
        for (std::uint32_t a = 0; a < count; ++a) {
            const std::size_t rank = rank_of[a];
            if (rank == own_side)
                continue;
            const Factor amplitude(list[a].amplitude);
            std::complex<double>* const row = elements + rank * own_side;
            std::uint8_t* const reached = all_reached + rank * own_side;
            lists.for_each_of(a, [=](std::uint32_t b) {
                const std::uint32_t column = rank_of[b];
                if (column == own_side)
                    return;
                const Parts product = times(amplitude, conjugate(list[b].amplitude));
                store(parts_of(row[column]) + product, row[column]);
                reached[column] = 1;
            });
        }
    });
}

} // namespace

RankedMatrix ranked_density_matrix(std::span<const PackedAmplitude> entries, std::uint64_t traced_fields,
                                   const LevelRank& rank) {
    const std::size_t side = rank.size();
    RankedMatrix matrix{std::vector<std::complex<double>>(side * side),
                        std::vector<std::uint8_t>(side * side, 0)};
    const Partners partners(entries, traced_fields, side);
    // A label with a level beyond its dimension has the rank behind the last.
    std::vector<std::uint32_t> ranks(entries.size());
    rank.cheapest([&](const auto& cheapest) {
        wide_loop([entries, side, rank_of = cheapest, begin = ranks.data()] {
            std::uint32_t* next = begin;
            for (const PackedAmplitude& entry : entries)
                *next++ = static_cast<std::uint32_t>(std::min<std::uint64_t>(rank_of(entry.values), side));
        });
    });
    add_up(matrix, entries, partners, ranks, side,
           [](const Factor& factor, Parts number) { return factor.unrecovered(number); });
    // A product with an infinity to recover leaves NaN.
    if (std::any_of(matrix.elements.begin(), matrix.elements.end(), [](const std::complex<double>& element) {
            return std::isnan(element.real()) || std::isnan(element.imag());
        }))
        add_up(matrix, entries, partners, ranks, side,
               [](const Factor& factor, Parts number) { return factor(number); });
    return matrix;
}

template <class Label>
std::vector<PackedElement> State<Label>::packed_density_matrix(const std::vector<int>& qudits) const {
    const std::uint64_t kept = fields_of(Label::layout, qudits);
    return elements_of(packed_view(amplitudes), kept, all_fields(Label::layout, Label::qudit_count) & ~kept);
}

template <class Label>
std::vector<DensityMatrixEntry> State<Label>::reduced_density_matrix(std::vector<int> qudits) const {
    std::vector<DensityMatrixEntry> matrix;
    for (const PackedElement& element : packed_density_matrix(qudits))
        matrix.push_back({levels_of(Label::layout, element.row_values, qudits),
                          levels_of(Label::layout, element.column_values, qudits), element.element});
    return matrix;
}

VANTEL_INSTANTIATE(std::vector<PackedElement>, packed_density_matrix, (const std::vector<int>&) const)
VANTEL_INSTANTIATE(std::vector<DensityMatrixEntry>, reduced_density_matrix, (std::vector<int>) const)

} // namespace vantel::qudit
