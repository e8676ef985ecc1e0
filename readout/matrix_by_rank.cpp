#include "readout/matrix_by_rank.hpp"

#include <algorithm>
#include <cmath>
#include <memory>

#include "algorithms/complex_product.hpp"
#include "algorithms/constant_count.hpp"
#include "algorithms/wide_loop.hpp"
#include "state/position_table.hpp"
#include "state/survey.hpp"

namespace vantel::qudit {

namespace {

using Matrix = std::vector<std::complex<double>>;

/// The entries by row, those of a row in stored order. Groups, which are the entries that differ in the listed qudits
/// alone, are neighbours in the table, with the columns in order.
class Rows {
public:
    Rows(PackedEntries entries, const PositionTable& table, const LevelRank& row_of)
        : side_(row_of.size()), positions_(table.positions()), amplitudes_(new Parts[table.size() + 1]),
          ranks_(new std::uint32_t[table.size()]), ends_(side_) {
        for (std::size_t row = 0; row < side_; ++row)
            ends_[row] = ranks_.get() + begin_of(row);
        table.rank().cheapest([&](auto rank_of) {
            row_of.cheapest([&](auto row_of_label) {
                wide_loop([=, ends = ends_.data(), amplitudes = amplitudes_.get()]() __attribute__((always_inline)) {
                    for (const PackedAmplitude& entry : entries) {
                        const std::uint64_t rank = rank_of(entry.values);
                        *ends[row_of_label(entry.values)]++ = static_cast<std::uint32_t>(rank);
                        amplitudes[rank] = parts_of(entry.amplitude);
                    }
                });
            });
        });
        amplitudes_[table.size()] = Parts{};
    }

    /// The sums, for a list that has every combination of levels, as if no product had an infinity to recover.
    void add_complete(Matrix& matrix) const {
        constexpr std::size_t most = 10; // columns, whose sums stand in registers
        for (std::size_t row = 0; row < side_; ++row)
            for (std::size_t column = 0; column < side_; column += most)
                with_constant<1, most>(std::min(most, side_ - column), [&](auto columns) {
                    add_columns<columns>(row, column, &matrix[row * side_ + column]);
                });
    }

    /// The same for any list, with the product of the standard where `recovering`.
    template <bool recovering> void add(Matrix& matrix) const {
        for (std::size_t row = 0; row < side_; ++row) {
            std::vector<bool> reached(side_, false);
            std::complex<double>* const sums = &matrix[row * side_];
            for (const std::uint32_t rank : ranks_of(row)) {
                const Factor factor(amplitudes_[rank]);
                for (std::size_t column = 0; column < side_; ++column) {
                    const std::size_t partner = rank - row + column;
                    if (positions_[partner] == 0)
                        continue;
                    const Parts number = conjugate(amplitudes_[partner]);
                    const Parts product = recovering ? factor(number) : factor.unrecovered(number);
                    store(reached[column] ? parts_of(sums[column]) + product : product, sums[column]);
                    reached[column] = true;
                }
            }
        }
    }

private:
    /// Each row has room for an entry of each group.
    [[nodiscard]] std::size_t begin_of(std::size_t row) const { return row * (positions_.size() / side_); }
    [[nodiscard]] std::span<const std::uint32_t> ranks_of(std::size_t row) const {
        return {ranks_.get() + begin_of(row), ends_[row]};
    }

    /// A number times the conjugate of another is taken by turning signs of the first: both have the same bits.
    template <std::size_t columns>
    void add_columns(std::size_t row, std::size_t first, std::complex<double>* written) const {
        wide_loop([=, ranks = ranks_of(row), amplitudes = amplitudes_.get()]() __attribute__((always_inline)) {
            constexpr std::size_t pairs = (columns + 1) / 2;
            FourParts sums[pairs];
            // A sum that starts from negative zero has the bits of its first product.
            std::fill(sums, sums + pairs, -FourParts{});
            for (const std::uint32_t rank : ranks) {
                const Parts amplitude = amplitudes[rank];
                const Parts real = negated<1>(__builtin_shufflevector(amplitude, amplitude, 0, 0));
                const Parts imaginary = __builtin_shufflevector(amplitude, amplitude, 1, 1);
                const Parts* const partners = amplitudes + (rank - row + first);
                unrolled<pairs>([&](auto pair) __attribute__((always_inline)) {
                    const FourParts both = *reinterpret_cast<const StoredFourParts*>(&partners[2 * pair]);
                    sums[pair] += both * joined(real, real) + exchanged(both) * joined(imaginary, imaginary);
                });
            }
            for (std::size_t column = 0; column < columns; ++column)
                store(column % 2 == 0 ? low_half(sums[column / 2]) : high_half(sums[column / 2]), written[column]);
        });
    }

    std::size_t side_;
    std::span<const std::uint32_t> positions_;
    std::unique_ptr<Parts[]> amplitudes_;  ///< by rank, and one place more
    std::unique_ptr<std::uint32_t[]> ranks_; ///< of all entries, row by row
    std::vector<std::uint32_t*> ends_;       ///< of each row's ranks
};

bool has_nan(const Matrix& matrix) {
    return std::any_of(matrix.begin(), matrix.end(), [](const std::complex<double>& element) {
        return std::isnan(element.real()) || std::isnan(element.imag());
    });
}

} // namespace

Matrix matrix_by_rank(PackedEntries entries, SlotLayout layout, std::span<const int> qudits,
                      std::span<const std::uint64_t> dimensions, const LevelRank& row_of) {
    const Survey survey(entries);
    if (!survey.same_dimensions)
        return {};
    for (std::size_t i = 0; i < qudits.size(); ++i)
        if (layout.dimension(entries.front().dimensions, qudits[i]) != dimensions[i])
            return {};
    std::vector<int> ranked = survey.varying_qudits(layout, layout.fields(qudits));
    ranked.insert(ranked.begin(), qudits.begin(), qudits.end());
    PositionTable table(entries.front(), layout, ranked, entries.size());
    Scratch scratch;
    if (!table.is_close() || !table.fill(entries, scratch))
        return {};

    const Rows rows(entries, table, row_of);
    Matrix matrix(row_of.size() * row_of.size());
    if (table.is_complete())
        rows.add_complete(matrix);
    else
        rows.add<false>(matrix);
    // A product with an infinity to recover leaves NaN.
    if (has_nan(matrix)) {
        std::fill(matrix.begin(), matrix.end(), std::complex<double>());
        rows.add<true>(matrix);
    }
    return matrix;
}

} // namespace vantel::qudit
