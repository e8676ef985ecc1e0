/**
 * @file vantel_sampling.hpp
 * @brief Header-only, beside vantel.hpp: shots. What many measurements of equal states would find is drawn
 * from tables of probabilities, and the state stays as it is.
 *
 * @code
 * vantel::Qudit a(3), b(2);
 * vantel::hadamard(a);
 * vantel::cycle(b, a == 1);
 * std::mt19937_64 generator(2024);
 * std::cout << vantel::counts({a, b}, 1000, generator); // three lines, about 333 shots each
 * @endcode
 *
 * Conventions:
 *
 * - **Qudits** are listed as one Qudit, as `{a, b}`, or as a range; see vantel::QuditList. Levels stand in
 * the order of the list, rows in that of vantel::probabilities(): the first listed qudit varies fastest.
 * - **Nothing is measured.** The listed qudits are merged into one joint state, as every readout does.
 * - **Generators** are those of `<random>`, or any other std::uniform_random_bit_generator of at most 64
 * bits. What is made of their bits is fixed here and takes nothing from the standard library's distributions,
 * so that the same seed gives the same shots with every compiler's library.
 * - **Accuracy**: the probabilities have the precision of `float`, and so have the shares of the shots.
 * - **Cost**: one call of vantel::probabilities() and time and memory for each row of its table; then a shot
 *   takes the same time, however many rows there are. Of a list with too many rows for one table,
 *   vantel::sample() and vantel::counts() draw a few qudits at a time, from tables of at most 1000 rows of
 * what goes with the levels drawn before; shots with the same levels share a table. This takes one of the ten
 *   places for the time of the call, and three calls for each table.
 * - **Failures**: vantel::Error as from vantel::probabilities(); std::invalid_argument for an empty list;
 * std::length_error for a list whose table has more than most_sampled_rows rows, of an OutcomeSampler, and of
 * a call if the ten places are taken, too; std::domain_error for a table without rows, as that of an empty
 * joint state is, or without a positive and finite sum.
 */
#ifndef VANTEL_SAMPLING_HPP
#define VANTEL_SAMPLING_HPP

#include "vantel_conditional_sampling.hpp"
#include "vantel_lists.hpp" // refuses what is older than C++20
#include "vantel_random.hpp"

#if __cplusplus >= 202002L || (defined(_MSVC_LANG) && _MSVC_LANG >= 202002L)

#include <algorithm>
#include <array>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <map>
#include <ostream>
#include <random>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vantel {
/// The most rows that a table to draw from can have: 2^24, as eight qudits of eight levels have.
inline constexpr std::size_t most_sampled_rows = std::size_t{1} << 24;

/// How often one combination of levels was drawn.
struct Count {
    std::size_t row;         ///< Where the combination stands in the table of probabilities.
    std::vector<int> levels; ///< One level per listed qudit, in their order.
    std::size_t shots;       ///< How often, at least once.
};

/// How often each combination of levels was drawn: a Count for each that was, in the order of their rows.
class Counts {
public:
    /// Puts together what OutcomeSampler::counts() found.
    /// @param shape    the order of the rows.
    /// @param entries  by rising row.
    Counts(Shape shape, std::vector<Count> entries) : shape_(std::move(shape)), entries_(std::move(entries)) {}

    [[nodiscard]] auto begin() const noexcept { return entries_.begin(); } ///< The first that was drawn.
    [[nodiscard]] auto end() const noexcept { return entries_.end(); }     ///< Behind the last.
    /// How many different combinations were drawn.
    [[nodiscard]] std::size_t size() const noexcept { return entries_.size(); }

    /// How often one combination was drawn, 0 if never, by one level per qudit: `found(0, 2)`. Throws
    /// std::out_of_range as Shape::row() does.
    template <std::convertible_to<int>... Levels> [[nodiscard]] std::size_t operator()(Levels... levels) const {
        const std::size_t row = shape_.row(std::array<int, sizeof...(levels)>{static_cast<int>(levels)...});
        const auto found = std::ranges::lower_bound(entries_, row, {}, &Count::row);
        return found != entries_.end() && found->row == row ? found->shots : 0;
    }

    /// A line for each combination that was drawn: its levels, how often, and a bar of 1 to 40 signs, 40 for
    /// the most frequent one and in proportion, rounded up, for the others.
    friend std::ostream& operator<<(std::ostream& stream, const Counts& counts) {
        constexpr double longest = 40;
        std::size_t most = 0;
        for (const Count& entry : counts) most = std::max(most, entry.shots);
        const std::size_t digits = std::to_string(most).size();
        std::string text;
        for (const Count& entry : counts) {
            for (const int level : entry.levels) text += std::to_string(level) + ' ';
            const std::string number = std::to_string(entry.shots);
            const double length = std::ceil(longest * static_cast<double>(entry.shots) / static_cast<double>(most));
            text += std::string(digits - number.size() + 1, ' ') + number + "  " +
                    std::string(static_cast<std::size_t>(length), '#') + '\n';
        }
        return stream << text;
    }

private:
    Shape shape_;
    std::vector<Count> entries_;
};

/// Draws rows of a table of probabilities, each shot in the same time, by the alias method of A. J. Walker
/// (1977) with the tables of M. D. Vose (1991): a shot picks one of n equally likely columns and then, by the
/// column's threshold, its own row or the one other row, its alias, that fills the column up.
///
/// It keeps the table and asks nothing of the qudits after it was made: gates that follow do not change what
/// it draws. It can be moved and not copied, and drawing does not change it.
class OutcomeSampler {
public:
    /// Asks for the table of the listed qudits, by one call of vantel::probabilities().
    /// @param qudits  at least one.
    /// @throws std::length_error  if the table would have more than #most_sampled_rows rows, before it is
    /// asked
    ///                            for and before memory is taken for it.
    explicit OutcomeSampler(const QuditList& qudits) : OutcomeSampler(table_of(qudits)) {}

    /// Takes a table over: `OutcomeSampler(vantel::probabilities(a, b))`. Its probabilities are relative
    /// weights; they need not add up to 1.
    /// @param table  at least one row and at most #most_sampled_rows.
    /// @throws std::length_error  if there are more rows.
    /// @throws std::domain_error  if there is no row, or if the sum of the weights is 0 or not finite.
    explicit OutcomeSampler(Outcomes table) : table_(std::move(table)) {
        check_rows(table_.size());
        double total = 0;
        for (const ProbabilityRecord& record : table_) total += record.probability;
        if (table_.size() == 0) throw std::domain_error("no outcome to draw: the joint state of the qudits is empty");
        if (!(total > 0) || !std::isfinite(total))
            throw std::domain_error("no outcome to draw: the probabilities add up to " + std::to_string(total));

        // The share of each row in columns; what has less than one column is filled up from what has more.
        const double columns = static_cast<double>(table_.size()) / total;
        std::vector<std::uint32_t> less, more;
        thresholds_.resize(table_.size());
        for (std::uint32_t row = 0; row < table_.size(); ++row) {
            thresholds_[row] = table_[row].probability * columns;
            (thresholds_[row] < 1 ? less : more).push_back(row);
        }
        aliases_.resize(table_.size());
        while (!less.empty() && !more.empty()) {
            const std::uint32_t from = more.back(), filled = less.back();
            less.pop_back();
            aliases_[filled] = from;
            thresholds_[from] -= 1 - thresholds_[filled];
            if (thresholds_[from] < 1) {
                more.pop_back();
                less.push_back(from);
            }
        }
        // But for rounding, what is left fills its column alone. An impossible row is never among it: up to
        // most_sampled_rows, all rounding together is less than a tenth of a column.
        for (const std::uint32_t row : less) thresholds_[row] = 1;
    }

    [[nodiscard]] std::size_t size() const noexcept { return table_.size(); } ///< How many rows there are.

    /// The levels of a row, one per listed qudit and in their order; good as long as this object is.
    /// Row = the first level + d1 (the second + d2 (...)), so that the first qudit varies fastest.
    /// @param row  0 .. size() - 1.
    /// @throws std::out_of_range  for any other.
    [[nodiscard]] std::span<const int> levels(std::size_t row) const {
        if (row >= size())
            throw std::out_of_range("no row " + std::to_string(row) + " of a table of " + std::to_string(size()));
        return {table_[row].qudit_values, table_.shape().qudits()};
    }

    /// One shot: a row, 0 .. size() - 1, never one of probability 0. With u and then v of uniform_number(),
    /// it is column floor(u size()), or the alias of that column where v is not below its threshold.
    /// @param generator  asked for two uniform_number().
    template <BitGenerator Generator> [[nodiscard]] std::size_t operator()(Generator&& generator) const {
        // At most 1 - 2^-53 times a whole number is rounded to less than that number.
        const auto column = static_cast<std::size_t>(uniform_number(generator) * static_cast<double>(table_.size()));
        return uniform_number(generator) < thresholds_[column] ? column : aliases_[column];
    }

    /// Many shots, as the levels that each found.
    /// @param shots      how many, also 0.
    /// @param generator  asked for two uniform_number() a shot.
    /// @returns  `shots` elements, in the order in which they were drawn, of one level per listed qudit.
    template <BitGenerator Generator>
    [[nodiscard]] std::vector<std::vector<int>> sample(std::size_t shots, Generator&& generator) const {
        std::vector<std::vector<int>> drawn(shots);
        for (std::vector<int>& shot : drawn) {
            const std::span<const int> found = levels((*this)(generator));
            shot.assign(found.begin(), found.end());
        }
        return drawn;
    }

    /// Many shots, as how often each combination of levels was found: the same shots as sample() draws.
    /// @param shots      how many, also 0; they take no memory.
    /// @param generator  asked for two uniform_number() a shot.
    template <BitGenerator Generator> [[nodiscard]] Counts counts(std::size_t shots, Generator&& generator) const {
        std::vector<std::size_t> tally(size());
        for (std::size_t i = 0; i < shots; ++i) ++tally[(*this)(generator)];
        std::vector<Count> entries;
        for (std::size_t row = 0; row < tally.size(); ++row)
            if (tally[row] > 0) {
                const std::span<const int> found = levels(row);
                entries.push_back({row, {found.begin(), found.end()}, tally[row]});
            }
        return {table_.shape(), std::move(entries)};
    }

private:
    static void check_rows(std::size_t rows) {
        if (rows > most_sampled_rows)
            throw std::length_error("a table of " + std::to_string(rows) + " outcomes, where at most " +
                                    std::to_string(most_sampled_rows) +
                                    " can be drawn from: ask for fewer qudits at a time");
    }

    static Outcomes table_of(const QuditList& qudits) {
        if (qudits.begin() == qudits.end()) throw std::invalid_argument("outcomes of no qudits");
        check_rows(Shape(qudits).size());
        return probabilities(qudits);
    }

    Outcomes table_;
    std::vector<double> thresholds_;
    std::vector<std::uint32_t> aliases_;
};

/// Draws what `shots` measurements of equal states would find; the state stays as it is. Who draws again from
/// the same state keeps an OutcomeSampler.
/// @param qudits     at least one.
/// @param shots      how many, also 0.
/// @param generator  asked for two uniform_number() a shot, or one for each part of a list without one table.
/// @returns  `shots` elements, in the order in which they were drawn, of one level per listed qudit.
/// @throws std::length_error  for more than #most_sampled_rows outcomes where no place among the ten is left.
/// @throws std::domain_error  as OutcomeSampler does.
template <BitGenerator Generator>
[[nodiscard]] std::vector<std::vector<int>> sample(const QuditList& qudits, std::size_t shots, Generator&& generator) {
    if (Shape(qudits).size() > most_sampled_rows) return detail::ConditionalSampler(qudits).draw(shots, generator);
    return OutcomeSampler(qudits).sample(shots, generator);
}

/// Counts what `shots` measurements of equal states would find; the state stays as it is. These are the shots
/// that sample() draws with the same generator.
/// @param qudits     at least one.
/// @param shots      how many, also 0; drawn from one table, they take no memory.
/// @param generator  as sample() asks it.
/// @throws std::length_error, std::domain_error  as sample() does.
template <BitGenerator Generator>
[[nodiscard]] Counts counts(const QuditList& qudits, std::size_t shots, Generator&& generator) {
    const Shape shape(qudits);
    if (shape.size() <= most_sampled_rows) return OutcomeSampler(qudits).counts(shots, generator);
    std::map<std::size_t, Count> found;
    for (std::vector<int>& levels : detail::ConditionalSampler(qudits).draw(shots, generator)) {
        const std::size_t row = shape.row(levels);
        ++found.try_emplace(row, Count{row, std::move(levels), 0}).first->second.shots;
    }
    std::vector<Count> entries;
    entries.reserve(found.size());
    for (auto& [row, count] : found) entries.push_back(std::move(count));
    return {shape, std::move(entries)};
}
} // namespace vantel

#endif // C++20
#endif
