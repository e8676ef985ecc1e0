#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <span>
#include <stdexcept>
#include <vector>

#include "readout/levels.hpp"
#include "readout/partners.hpp"
#include "readout/ranked.hpp"
#include "state/builds.hpp"
#include "state/complete_list.hpp"
#include "state/key_index.hpp"
#include "state/level_rank.hpp"
#include "state/packed_view.hpp"
#include "state/product.hpp"
#include "state/small_dimension.hpp"
#include "state/state.hpp"
#include "state/subkey.hpp"
#include "state/wide_loop.hpp"

namespace vantel::qudit {

namespace {

Parts conjugate(const std::complex<double>& amplitude) {
    return negated<1>(parts_of(amplitude));
}

/// Positions are noted in 32 bits.
void refuse_too_many(std::span<const PackedAmplitude> entries) {
    if (entries.size() > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("too many basis states for a density matrix");
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

/// DensityMatrixEntry with its levels still packed: the words of the first two entries that reach it, of
/// which only the kept qudits' fields mean anything.
struct PackedElement {
    std::uint64_t row_values;
    std::uint64_t column_values;
    std::complex<double> element;
};

std::vector<PackedElement> elements_of(std::span<const PackedAmplitude> entries, std::uint64_t kept_fields,
                                       std::uint64_t traced_fields) {
    refuse_too_many(entries);
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

/// A sum that starts from negative zero has the bits of its first product.
void clear(RankedMatrix& matrix) {
    std::fill(matrix.all.begin(), matrix.all.end(), std::complex<double>(-0.0, -0.0));
}

/// Adds up all products by row and column; what is beyond the last of either is left out.
/// @param times  times(factor, conjugate) is the product
template <class Times>
void add_up(RankedMatrix& matrix, std::span<const PackedAmplitude> entries, const Partners& partners,
            std::span<const std::uint32_t> ranks, std::size_t side, Times times) {
    clear(matrix);
    wide_loop([&matrix, entries, &partners, ranks, side, times] {
        // Copies that no store to a byte can be thought to change.
        const PackedAmplitude* const list = entries.data();
        const auto count = static_cast<std::uint32_t>(entries.size());
        const Partners::Lists lists = partners.lists();
        const std::uint32_t* const rank_of = ranks.data();
        const std::size_t own_side = side;
        std::complex<double>* const elements = matrix.all.data();
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

/// Adds to the sums of a row the products of one entry with the conjugates of a whole group, two at a time.
template <class Side>
void add_row(std::complex<double>* row, Parts amplitude, std::span<const PackedAmplitude> entries,
             const std::uint32_t* positions, Side side) {
    const FourParts real = __builtin_shufflevector(amplitude, amplitude, 0, 0, 0, 0);
    const Parts imaginary = negated<0>(__builtin_shufflevector(amplitude, amplitude, 1, 1));
    const FourParts crossed = __builtin_shufflevector(imaginary, imaginary, 0, 1, 0, 1);
    const auto conjugate_at = [&](std::size_t column) {
        return conjugate(entries[positions[column] - 1].amplitude);
    };
    std::size_t column = 0;
    for (; column + 2 <= side; column += 2) {
        const FourParts both =
            __builtin_shufflevector(conjugate_at(column), conjugate_at(column + 1), 0, 1, 2, 3);
        *reinterpret_cast<StoredFourParts*>(&row[column]) +=
            both * real + __builtin_shufflevector(both, both, 1, 0, 3, 2) * crossed;
    }
    if (column < side)
        store(parts_of(row[column]) + Factor(amplitude).unrecovered(conjugate_at(column)), row[column]);
}

/// The same sums as add_up() forms, for a list in which each entry's partners have all levels.
void add_up_complete(RankedMatrix& matrix, std::span<const PackedAmplitude> entries,
                     const CompleteList& complete, std::size_t side) {
    clear(matrix);
    std::fill(matrix.reached.begin(), matrix.reached.end(), 1);
    complete.rank().cheapest([&](const auto& rank) {
        with_dimension(side, [&](auto columns) {
            wide_loop([entries, rank, columns, elements = matrix.all.data(),
                       positions = complete.positions().data()] {
                // Copies that no store to an element can be thought to change.
                const auto place_of = rank;
                for (const PackedAmplitude& entry : entries) {
                    const std::size_t place = place_of(entry.values);
                    const std::size_t row = place % columns;
                    add_row(elements + row * columns, parts_of(entry.amplitude), entries,
                            positions + (place - row), columns);
                }
            });
        });
    });
}

bool has_nan(const RankedMatrix& matrix) {
    return std::any_of(matrix.all.begin(), matrix.all.end(), [](const std::complex<double>& element) {
        return std::isnan(element.real()) || std::isnan(element.imag());
    });
}

/// Whether the qudits of a list still have the dimensions by which its combinations of levels are ranked. The
/// first entry's label tells, and all of a complete list are alike.
bool has_dimensions(const PackedAmplitude& first, SlotLayout layout, const std::vector<int>& qudits,
                    const std::vector<std::uint64_t>& dimensions) {
    for (std::size_t i = 0; i < qudits.size(); ++i)
        if ((first.dimensions >> layout.position(qudits[i]) & layout.mask()) + 1 != dimensions[i])
            return false;
    return true;
}

/// All elements by rank, where the matrix is not much larger than the list.
RankedMatrix matrix_of_all(PackedEntries entries, SlotLayout layout, const std::vector<int>& qudits,
                           const ValuePermutations& permutations, const LevelRank& rank,
                           std::uint64_t traced) {
    refuse_too_many(entries);
    const std::size_t side = rank.size();
    RankedMatrix matrix{
        std::vector<std::complex<double>>(side * side), std::vector<std::uint8_t>(side * side, 0), {}};
    if (has_dimensions(entries.front(), layout, qudits, permutations.dimensions())) {
        const CompleteList complete(entries, layout, qudits);
        if (!complete.positions().empty()) {
            add_up_complete(matrix, entries, complete, side);
            if (!has_nan(matrix))
                return matrix;
        }
    }
    const Partners partners(entries, traced, side);
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
    if (has_nan(matrix))
        add_up(matrix, entries, partners, ranks, side,
               [](const Factor& factor, Parts number) { return factor(number); });
    return matrix;
}

} // namespace

RankedMatrix ranked_density_matrix(const IState& state, const std::vector<int>& qudits,
                                   const ValuePermutations& permutations) {
    const PackedEntries entries = state.packed_amplitudes();
    const std::uint64_t side = permutations.size();
    if (entries.empty() || side == 0)
        return {};
    const SlotLayout layout = SlotLayout::of(state.dimension());
    const LevelRank rank(layout, qudits, permutations.dimensions(), entries.size());
    const std::uint64_t kept = fields_of(layout, qudits);
    const std::uint64_t traced = all_fields(layout, static_cast<int>(state.num_qudits())) & ~kept;
    constexpr std::uint64_t few_rows = 256;
    if (side <= few_rows && is_close_to(entries.size(), side * side))
        return matrix_of_all(entries, layout, qudits, permutations, rank, traced);
    RankedMatrix matrix;
    for (const PackedElement& element : elements_of(entries, kept, traced)) {
        const std::uint64_t row = rank(element.row_values);
        const std::uint64_t column = rank(element.column_values);
        if (row < side && column < side)
            matrix.some.push_back({row, column, element.element});
    }
    return matrix;
}

template <class Label>
std::vector<DensityMatrixEntry> State<Label>::reduced_density_matrix(std::vector<int> qudits) const {
    const std::uint64_t kept = fields_of(Label::layout, qudits);
    const std::uint64_t traced = all_fields(Label::layout, Label::qudit_count) & ~kept;
    std::vector<DensityMatrixEntry> matrix;
    for (const PackedElement& element : elements_of(packed_view(amplitudes), kept, traced))
        matrix.push_back({levels_of(Label::layout, element.row_values, qudits),
                          levels_of(Label::layout, element.column_values, qudits), element.element});
    return matrix;
}

VANTEL_INSTANTIATE(std::vector<DensityMatrixEntry>, reduced_density_matrix, (std::vector<int>) const)

} // namespace vantel::qudit
