#include "readout/matrix_by_rank.hpp"
#include "algorithms/complex_product.hpp"
#include "algorithms/constant_count.hpp"
#include "algorithms/crossovers.hpp"
#include "algorithms/wide_loop.hpp"
#include "state/position_table.hpp"
#include "state/survey.hpp"
#include <algorithm>
#include <cmath>
#include <memory>

namespace vantel::qudit {
namespace {
using Matrix = std::vector<std::complex<double>>;

/// A list in the order of its table. Groups, which are the entries that differ in the listed qudits alone, are
/// neighbours there, with the columns in order.
struct Ranked {
    std::unique_ptr<Parts[]> amplitudes;    ///< by rank, and one place more
    std::unique_ptr<std::uint32_t[]> ranks; ///< in stored order

    Ranked(PackedEntries entries, const PositionTable& table)
        : amplitudes(new Parts[table.size() + 1]), ranks(new std::uint32_t[entries.size()]) {
        table.rank().cheapest([&](auto rank_of) {
            wide_loop([=, by_rank = amplitudes.get(), next = ranks.get()]() VANTEL_INLINED {
                for (std::size_t i = 0; i < entries.size(); ++i) {
                    next[i] = static_cast<std::uint32_t>(rank_of(entries[i].values));
                    by_rank[next[i]] = parts_of(entries[i].amplitude);
                }
            });
        });
        amplitudes[table.size()] = Parts{};
    }
};

/// Sums of some columns of one row. A sum that starts from negative zero has the bits of its first product.
template <std::size_t columns, class Vectors> class RowSums {
    using In = Numbers<Vectors>;
    using Register = typename In::Register;

public:
    [[gnu::always_inline]] RowSums() {
        unrolled<registers>([this](auto i) VANTEL_INLINED { sums_[i] = -Register{}; });
    }

    /// Adds the products of an amplitude with the conjugates of its partners. Their signs are those of the amplitude's
    /// parts, turned instead, which gives the same bits.
    [[gnu::always_inline]] void add(Parts amplitude, const Parts* partners) {
        const Register real = In::all(negated<1>(__builtin_shufflevector(amplitude, amplitude, 0, 0)));
        const Register imaginary = In::all(__builtin_shufflevector(amplitude, amplitude, 1, 1));
        unrolled<registers>([&](auto i) VANTEL_INLINED {
            const Register some = *reinterpret_cast<const typename In::Stored*>(&partners[In::count * i]);
            sums_[i] += some * real + exchanged(some) * imaginary;
        });
    }

    [[gnu::always_inline]] void write(std::complex<double>* elements) const {
        unrolled<columns>([&](auto column) VANTEL_INLINED {
            store(In::template at<column % In::count>(sums_[column / In::count]), elements[column]);
        });
    }

private:
    static constexpr std::size_t registers = (columns + In::count - 1) / In::count;

    Register sums_[registers];
};

constexpr std::size_t most_columns = 10; // whose sums are in registers

void add_few_rows(Matrix& matrix, const Ranked& list, std::size_t size, std::size_t side) {
    with_constant<1, crossover::matrix_rows_at_hand>(side, [&](auto rows) {
        wide_loop([=, amplitudes = list.amplitudes.get(), ranks = list.ranks.get(),
                   elements = matrix.data()](auto vectors) VANTEL_INLINED {
            RowSums<rows, decltype(vectors)> sums[rows];
            for (std::size_t i = 0; i < size; ++i) {
                const std::uint32_t row = ranks[i] % std::uint32_t{rows};
                sums[row].add(amplitudes[ranks[i]], &amplitudes[ranks[i] - row]);
            }
            for (std::size_t row = 0; row < rows; ++row) sums[row].write(elements + row * rows);
        });
    });
}

/// Row by row: the sums of a row are those of its entries in stored order.
void add_many_rows(Matrix& matrix, const Ranked& list, std::size_t size, std::size_t side) {
    const std::size_t groups = size / side;
    const std::unique_ptr<std::uint32_t[]> by_row(new std::uint32_t[size]);
    std::vector<std::uint32_t*> ends(side);
    for (std::size_t row = 0; row < side; ++row) ends[row] = by_row.get() + row * groups;
    for (std::size_t i = 0; i < size; ++i) *ends[list.ranks[i] % static_cast<std::uint32_t>(side)]++ = list.ranks[i];
    wide_loop([=, ranks = by_row.get(), amplitudes = list.amplitudes.get(),
               elements = matrix.data()](auto vectors) VANTEL_INLINED {
        for (std::size_t row = 0; row < side; ++row)
            for (std::size_t first = 0; first < side; first += most_columns)
                with_constant<1, most_columns>(std::min(most_columns, side - first), [=](auto columns) VANTEL_INLINED {
                    RowSums<columns, decltype(vectors)> sums;
                    for (std::size_t i = row * groups; i < (row + 1) * groups; ++i)
                        sums.add(amplitudes[ranks[i]], &amplitudes[ranks[i] - row + first]);
                    sums.write(&elements[row * side + first]);
                });
    });
}

/// The same for any list, with the product of the standard where `recovering`.
template <bool recovering>
void add_any(Matrix& matrix, const Ranked& list, const PositionTable& table, std::size_t size, std::size_t side) {
    std::vector<unsigned char> reached(matrix.size(), 0);
    wide_loop([=, ranks = list.ranks.get(), amplitudes = list.amplitudes.get(), positions = table.positions().data(),
               sums = matrix.data(), flags = reached.data()]() VANTEL_INLINED {
        for (std::size_t i = 0; i < size; ++i) {
            const std::uint32_t row = ranks[i] % static_cast<std::uint32_t>(side);
            const Factor factor(amplitudes[ranks[i]]);
            std::size_t place = row * side;
            for (std::size_t partner = ranks[i] - row; partner < ranks[i] - row + side; ++partner, ++place) {
                if (positions[partner] == 0) continue;
                const Parts number = conjugate(amplitudes[partner]);
                const Parts product = recovering ? factor(number) : factor.unrecovered(number);
                store(flags[place] != 0 ? parts_of(sums[place]) + product : product, sums[place]);
                flags[place] = 1;
            }
        }
    });
}

bool has_nan(const Matrix& matrix) {
    return std::any_of(matrix.begin(), matrix.end(), [](const std::complex<double>& element) {
        return std::isnan(element.real()) || std::isnan(element.imag());
    });
}
} // namespace

Matrix matrix_by_rank(PackedEntries entries, SlotLayout layout, std::span<const int> qudits,
                      std::span<const std::uint64_t> dimensions, std::size_t side) {
    const Survey survey(entries);
    if (!survey.same_dimensions) return {};
    for (std::size_t i = 0; i < qudits.size(); ++i)
        if (layout.dimension(entries.front().dimensions, qudits[i]) != dimensions[i]) return {};
    std::vector<int> ranked = survey.varying_qudits(layout, layout.fields(qudits));
    ranked.insert(ranked.begin(), qudits.begin(), qudits.end());
    PositionTable table(entries.front(), layout, ranked, entries.size());
    Scratch scratch;
    if (!table.is_close() || !table.fill(entries, scratch)) return {};

    const Ranked list(entries, table);
    Matrix matrix(side * side);
    if (!table.is_complete())
        add_any<false>(matrix, list, table, entries.size(), side);
    else if (side <= crossover::matrix_rows_at_hand)
        add_few_rows(matrix, list, entries.size(), side);
    else
        add_many_rows(matrix, list, entries.size(), side);
    // A product with an infinity to recover leaves NaN.
    if (has_nan(matrix)) {
        std::fill(matrix.begin(), matrix.end(), std::complex<double>());
        add_any<true>(matrix, list, table, entries.size(), side);
    }
    return matrix;
}
} // namespace vantel::qudit
