#include "algorithms/complex_product.hpp"
#include "algorithms/constant_count.hpp"
#include "algorithms/crossovers.hpp"
#include "readout/density_matrix.hpp"
#include "state/position_table.hpp"

namespace vantel::qudit {
namespace {
using Matrix = std::vector<std::complex<double>>;

/// A list in the order of its table. Groups, which are the entries that differ in the listed qudits alone, are
/// neighbours there, with the columns in order.
struct Ranked {
    std::size_t size;     ///< of the list
    std::uint32_t side;   ///< of the matrix, and the size of a group
    Parts* amplitudes;    ///< by rank, and one place more
    std::uint32_t* ranks; ///< in stored order
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

void add_few_rows(Matrix& matrix, const Ranked& list) {
    with_constant<1, crossover::matrix_rows_at_hand>(list.side, [&](auto rows) {
        wide_loop([=, elements = matrix.data()](auto vectors) VANTEL_INLINED {
            RowSums<rows, decltype(vectors)> sums[rows];
            for (std::size_t i = 0; i < list.size; ++i) {
                const std::uint32_t row = list.ranks[i] % std::uint32_t{rows};
                sums[row].add(list.amplitudes[list.ranks[i]], &list.amplitudes[list.ranks[i] - row]);
            }
            for (std::size_t row = 0; row < rows; ++row) sums[row].write(elements + row * rows);
        });
    });
}

/// Row by row: the sums of a row are those of its entries in stored order.
void add_many_rows(Matrix& matrix, const Ranked& list, Scratch& scratch) {
    const std::size_t groups = list.size / list.side;
    std::uint32_t* const by_row = scratch.take<std::uint32_t>(list.size);
    std::vector<std::uint32_t*> ends(list.side);
    for (std::size_t row = 0; row < list.side; ++row) ends[row] = by_row + row * groups;
    for (std::size_t i = 0; i < list.size; ++i) *ends[list.ranks[i] % list.side]++ = list.ranks[i];
    wide_loop([=, side = std::size_t{list.side}, amplitudes = list.amplitudes,
               elements = matrix.data()](auto vectors) VANTEL_INLINED {
        for (std::size_t row = 0; row < side; ++row)
            for (std::size_t first = 0; first < side; first += most_columns)
                with_constant<1, most_columns>(std::min(most_columns, side - first), [=](auto columns) VANTEL_INLINED {
                    RowSums<columns, decltype(vectors)> sums;
                    for (std::size_t i = row * groups; i < (row + 1) * groups; ++i)
                        sums.add(amplitudes[by_row[i]], &amplitudes[by_row[i] - row + first]);
                    sums.write(&elements[row * side + first]);
                });
    });
}

/// The same for any list, with the product of the standard where `recovering`.
template <bool recovering> void add_any(Matrix& matrix, const Ranked& list, const PositionTable& table) {
    std::vector<unsigned char> reached(matrix.size(), 0);
    wide_loop([=, positions = table.positions().data(), sums = matrix.data(), flags = reached.data()]() VANTEL_INLINED {
        for (std::size_t i = 0; i < list.size; ++i) {
            const std::uint32_t row = list.ranks[i] % list.side;
            const std::size_t group = list.ranks[i] - row;
            const Factor factor(list.amplitudes[list.ranks[i]]);
            std::size_t place = std::size_t{row} * list.side;
            for (std::size_t partner = group; partner < group + list.side; ++partner, ++place) {
                if (positions[partner] == 0) continue;
                const Parts number = conjugate(list.amplitudes[partner]);
                const Parts product = recovering ? factor(number) : factor.unrecovered(number);
                store(flags[place] != 0 ? parts_of(sums[place]) + product : product, sums[place]);
                flags[place] = 1;
            }
        }
    });
}
} // namespace

Matrix DensityMatrix::by_rank(PackedEntries entries, SlotLayout layout, const std::vector<int>& qudits,
                              const ValuePermutations& permutations) {
    const Survey survey(entries);
    if (!survey.same_dimensions) return {};
    for (std::size_t i = 0; i < qudits.size(); ++i)
        if (layout.dimension(entries.front().dimensions, qudits[i]) != permutations.dimensions()[i]) return {};
    PositionTable table(entries, layout, qudits, survey.varying());
    if (!table.is_close()) return {};
    Scratch scratch;
    const Ranked list{entries.size(), static_cast<std::uint32_t>(permutations.size()),
                      scratch.take<Parts>(table.size() + 1), scratch.take<std::uint32_t>(entries.size())};
    list.amplitudes[table.size()] = Parts{};
    const auto note = [list](const PackedAmplitude& entry, std::uint64_t rank, std::uint32_t i) VANTEL_INLINED {
        list.amplitudes[rank] = parts_of(entry.amplitude);
        list.ranks[i] = static_cast<std::uint32_t>(rank);
    };
    if (!table.fill(entries, scratch, note)) return {};

    Matrix matrix(permutations.size() * permutations.size());
    if (!table.is_complete())
        add_any<false>(matrix, list, table);
    else if (list.side <= crossover::matrix_rows_at_hand)
        add_few_rows(matrix, list);
    else
        add_many_rows(matrix, list, scratch);
    // A product with an infinity to recover leaves NaN.
    const auto is_nan = [](const auto& element) { return std::isnan(element.real()) || std::isnan(element.imag()); };
    if (std::any_of(matrix.begin(), matrix.end(), is_nan)) {
        std::fill(matrix.begin(), matrix.end(), std::complex<double>());
        add_any<true>(matrix, list, table);
    }
    return matrix;
}
} // namespace vantel::qudit
