/**
 * @file vantel_unitary.hpp
 * @brief Header-only, beside vantel.hpp: any unitary matrix as gates, and any pure state.
 *
 * @code
 * vantel::Qudit a(3), b(3);
 * vantel::prepare({a, b}, {1, 0, 0, 0, 2, 0, 0, 0, 3});                // (0, 0), (1, 1) and (2, 2)
 * vantel::unitary(a, {0, 1, 0, 1, 0, 0, 0, 0, 1}, b == 2);             // exchanges the levels 0 and 1 of a
 * @endcode
 *
 * Conventions:
 *
 * - **Order**: with P combinations of the levels of the listed qudits, vectors have P elements and matrices
 *   P x P row by row; the first listed qudit varies fastest. The element in row r, column c is the amplitude
 *   from combination c to combination r.
 * - **Method**: the matrix becomes a product of two-level rotations, at most P (P - 1) / 2 of them, and one
 *   phase for each combination at most. Elements that are 0 cost nothing.
 * - **The helper**: where two levels are part of a qudit with more than two, the rotation takes a qubit along
 *   that marks them. It joins last and is back in level 0 and gone when the call returns. Qudits of two
 * levels alone need none.
 * - **Cost**: Unitary::gates() calls of the C functions: 4 to 6 for a rotation between the levels of a qubit,
 *   about 10 for any other.
 * - **Accuracy**: angles are applied in double precision. What limits it are the gates, which drop amplitudes
 *   of 1.2e-7 and less: up to P = 30, no element of a random unitary is off by more than 1e-6.
 */
#ifndef VANTEL_UNITARY_HPP
#define VANTEL_UNITARY_HPP

#include "vantel_lists.hpp" // refuses what is older than C++20

#if __cplusplus >= 202002L || (defined(_MSVC_LANG) && _MSVC_LANG >= 202002L)

#include <algorithm>
#include <cmath>
#include <complex>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <numbers>
#include <optional>
#include <ranges>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace vantel {
/// A unitary matrix taken apart into gates, for qudits of given dimensions. It refers to no qudit, can be
/// copied, and be applied as often as one likes.
class Unitary {
public:
    /// How far the product of a matrix's adjoint with the matrix may be off the identity in any element.
    static constexpr double tolerance = 1e-6;

    /// Takes a matrix apart.
    /// @param dimensions  of the qudits that it is for, at least one, each in 2 .. 10.
    /// @param matrix      P x P elements, row by row.
    /// @throws std::invalid_argument  for another size, a dimension out of range, and a matrix that is not
    ///                                unitary; the text tells by how much.
    Unitary(std::vector<int> dimensions, std::span<const Complex> matrix)
        : Unitary(std::move(dimensions), std::vector<Complex>(matrix.begin(), matrix.end()), 0) {}

    /// Some unitary of which only the first columns are wanted: what it does to other combinations is not
    /// defined.
    /// @param dimensions  of the qudits that it is for, at least one, each in 2 .. 10.
    /// @param columns     how many: 1, or the product of the first dimensions.
    /// @param matrix      P x `columns` elements, row by row, whose columns are orthonormal.
    /// @throws std::invalid_argument  as the constructor does.
    [[nodiscard]] static Unitary of_columns(std::vector<int> dimensions, std::size_t columns,
                                            std::span<const Complex> matrix) {
        std::size_t product = 1;
        for (std::size_t i = 0; i < dimensions.size() && product < columns; ++i)
            product *= static_cast<std::size_t>(dimensions[i]);
        if (columns == 0 || product != columns)
            throw std::invalid_argument(std::to_string(columns) + " columns, where 1 is right or a product "
                                                                  "of the first dimensions");
        return {std::move(dimensions), std::vector<Complex>(matrix.begin(), matrix.end()), columns};
    }

    /// The dimensions of the qudits that it is for.
    [[nodiscard]] const std::vector<int>& dimensions() const noexcept { return dimensions_; }

    /// How many gates apply() takes: calls of the C functions, each with its conditions.
    [[nodiscard]] std::size_t gates() const noexcept { return gates_.size(); }

    /// How many two-level rotations there are among them.
    [[nodiscard]] std::size_t rotations() const noexcept { return rotations_; }

    /// Whether apply() takes a qubit along, which needs one of the ten places of the joint state.
    [[nodiscard]] bool needs_helper() const noexcept {
        return std::ranges::any_of(gates_, [this](const Gate& gate) { return gate.place == dimensions_.size(); });
    }

    /// The inverse: the same gates backwards.
    [[nodiscard]] Unitary inverse() const {
        Unitary result = *this;
        std::ranges::reverse(result.gates_);
        for (Gate& gate : result.gates_)
            if (gate.act == Act::raise || gate.act == Act::lower)
                gate.act = gate.act == Act::raise ? Act::lower : Act::raise;
            else
                gate.amount = -gate.amount;
        return result;
    }

    /// Applies it where `when` holds.
    /// @param targets  as many qudits as dimensions(), of these dimensions and each listed once.
    /// @param when     conditions on other qudits.
    /// @returns gates().
    /// @throws std::invalid_argument  for other targets.
    /// @throws Error  #vantel_target_control_overlap for a condition on a target; #vantel_bad_qudit_number
    ///                where the joint state has no place, the text tells whether for the helper;
    ///                #vantel_state_size_exceeded. Nothing was applied, but for the last one, which can come
    ///                on the way.
    std::size_t apply(const Targets& targets, const Conditions& when = {}) const {
        check(targets, when);
        detail::merge(targets, when);
        std::vector<QuantumProperty*> handles;
        for (const Qudit& qudit : targets) handles.push_back(qudit.handle());
        std::optional<Qudit> helper;
        if (needs_helper()) {
            helper.emplace(2);
            try {
                join(targets[0], *helper);
            } catch (const Error& failure) {
                throw Error(failure.status(), failure.status() == vantel_bad_qudit_number
                                                  ? "the joint state has no place among its ten for the "
                                                    "helper qubit that this unitary takes along"
                                                  : failure.what());
            }
            handles.push_back(helper->handle());
        }
        for (const Gate& gate : gates_) apply(gate, handles, when);
        return gates();
    }

private:
    enum class Act : std::uint8_t { raise, lower, fourier, turn, rephase };

    // A gate on the qudit in `place`, of which the helper is the last. Where there is a marker, it acts where
    // that qudit is in the marked level; else where all targets but `place` have the levels of `row`, and
    // where the conditions of the call hold.
    struct Gate {
        Act act;
        std::uint8_t place;
        std::uint8_t marker;
        std::uint8_t marked;
        float amount; ///< the fraction of a turn, or the angle of a new phase
        std::uint32_t row;
    };
    static constexpr std::uint8_t none = 255;

    // exp(i pi turn) for what is in level 1, then the power `mixing` of the exchange of both rows. With
    // t = mixing pi / 2 that is exp(i t) times cos t (the same row) - i sin t (the other one).
    struct Rotation {
        std::size_t low, high;
        double turn, mixing;
    };

    Unitary(std::vector<int> dimensions, std::vector<Complex> matrix, std::size_t columns)
        : dimensions_(std::move(dimensions)) {
        std::size_t rows = dimensions_.empty() ? 0 : 1;
        for (const int dimension : dimensions_) {
            if (dimension < 2 || dimension > 10)
                throw std::invalid_argument("dimension " + std::to_string(dimension) + ", where 2 to 10 is right");
            if (rows > matrix.size()) // and the product is never too large to be counted
                break;
            rows *= static_cast<std::size_t>(dimension);
        }
        if (columns == 0) columns = rows;
        if (rows == 0 || matrix.size() / columns != rows || matrix.size() % columns != 0)
            throw std::invalid_argument(std::to_string(matrix.size()) +
                                        " elements are no matrix for qudits of these dimensions");
        check_columns(matrix, rows, columns);
        take_apart(matrix, rows, columns);
    }

    static void check_columns(std::span<const Complex> matrix, std::size_t rows, std::size_t columns) {
        double off = 0;
        for (std::size_t a = 0; a < columns; ++a)
            for (std::size_t b = 0; b <= a; ++b) {
                Complex sum = a == b ? -1.0 : 0.0;
                for (std::size_t row = 0; row < rows; ++row)
                    sum += std::conj(matrix[row * columns + a]) * matrix[row * columns + b];
                if (!(std::abs(sum) <= off)) off = std::abs(sum);
            }
        if (off <= tolerance) return;
        char text[100];
        std::snprintf(text, sizeof text,
                      "the matrix is not unitary: its adjoint times itself is off the identity by %.3g", off);
        throw std::invalid_argument(text);
    }

    [[nodiscard]] int level(std::size_t row, std::size_t place) const {
        for (std::size_t i = 0; i < place; ++i) row /= static_cast<std::size_t>(dimensions_[i]);
        return static_cast<int>(row % static_cast<std::size_t>(dimensions_[place]));
    }

    // The rows in the order of a reflected Gray code: two that follow each other differ by one in one level.
    [[nodiscard]] std::vector<std::size_t> gray_order(std::size_t rows) const {
        std::vector<std::size_t> order(rows);
        for (std::size_t i = 0; i < rows; ++i) {
            std::size_t rest = i, weight = 1;
            for (const int dimension : dimensions_) {
                const auto levels = static_cast<std::size_t>(dimension);
                const std::size_t digit = rest % levels;
                rest /= levels;
                order[i] += weight * (rest % 2 == 0 ? digit : levels - 1 - digit);
                weight *= levels;
            }
        }
        return order;
    }

    // Rotations take the matrix to a diagonal one, column by column: in each, every element below is turned
    // into the nearest one above it that is not 0. The gates are their inverses backwards, behind the phases
    // of the diagonal.
    void take_apart(std::vector<Complex>& matrix, std::size_t rows, std::size_t columns) {
        // Far below what the gates drop.
        constexpr double nothing = 1e-9;
        const std::vector<std::size_t> order = gray_order(rows);
        std::vector<Rotation> rotations;
        for (std::size_t pivot = 0; pivot < columns; ++pivot) {
            const auto size = [&](std::size_t i) { return std::abs(matrix[order[i] * columns + order[pivot]]); };
            for (std::size_t i = rows; --i > pivot;) {
                if (size(i) <= nothing) continue;
                std::size_t above = i - 1;
                while (above > pivot && size(above) <= nothing) --above;
                rotations.push_back(rotation(matrix, columns, order[above], order[i], order[pivot]));
            }
        }
        for (std::size_t i = 0; i < columns; ++i) {
            const double angle = std::arg(matrix[order[i] * columns + order[i]]);
            if (std::abs(angle) > nothing)
                gates_.push_back(
                    {Act::rephase, none, none, 0, static_cast<float>(angle), static_cast<std::uint32_t>(order[i])});
        }
        for (std::size_t i = rotations.size(); i-- > 0;) add_inverse(rotations[i]);
        rotations_ = rotations.size();
    }

    /// Finds the rotation that makes the element of row `high` 0, and applies it to the matrix.
    Rotation rotation(std::vector<Complex>& matrix, std::size_t columns, std::size_t low, std::size_t high,
                      std::size_t column) const {
        Complex* const lows = &matrix[low * columns];
        Complex* const highs = &matrix[high * columns];
        // The rotation leaves cos t y - i sin t x of y: 0 if y / x = i tan t.
        const double t = std::atan2(std::abs(highs[column]), std::abs(lows[column]));
        const bool high_turns = marked_level(low, high) == 1;
        double angle = std::numbers::pi / 2 - std::arg(highs[column]) + std::arg(lows[column]);
        if (!high_turns) angle = -angle;
        angle = std::remainder(angle, 2 * std::numbers::pi);

        const Complex turn = std::polar(1.0, angle), phase = std::polar(1.0, t);
        const Complex same = phase * std::cos(t), other = phase * Complex(0, -std::sin(t));
        for (std::size_t i = 0; i < columns; ++i) {
            const Complex x = high_turns ? lows[i] : turn * lows[i];
            const Complex y = high_turns ? turn * highs[i] : highs[i];
            lows[i] = same * x + other * y;
            highs[i] = other * x + same * y;
        }
        highs[column] = 0;
        return {low, high, angle / std::numbers::pi, 2 * t / std::numbers::pi};
    }

    /// Which qudit's level tells the two rows apart: one of two levels, or the helper.
    [[nodiscard]] std::size_t marker(std::size_t low, std::size_t high) const {
        std::size_t place = 0;
        while (place < dimensions_.size() && (dimensions_[place] > 2 || level(low, place) == level(high, place)))
            ++place;
        return place;
    }

    [[nodiscard]] int marked_level(std::size_t low, std::size_t high) const {
        const std::size_t place = marker(low, high);
        return place == dimensions_.size() ? 1 : level(high, place);
    }

    // The high row is marked and moved to where the low one stands, but for the marker, which is turned, and
    // all of it back again.
    void add_inverse(const Rotation& rotation) {
        const std::size_t marker = this->marker(rotation.low, rotation.high);
        const auto place = static_cast<std::uint8_t>(marker);
        const auto marked = static_cast<std::uint8_t>(marked_level(rotation.low, rotation.high));
        const auto row = static_cast<std::uint32_t>(rotation.low);
        const Gate mark{Act::raise, place, none, 0, 0, static_cast<std::uint32_t>(rotation.high)};
        if (marker == dimensions_.size()) gates_.push_back(mark);
        std::vector<Gate> moves;
        for (std::size_t i = 0; i < dimensions_.size(); ++i) {
            if (i == marker) continue;
            const int d = dimensions_[i], up = (level(rotation.low, i) - level(rotation.high, i) + d) % d;
            const bool raise = 2 * up <= d;
            moves.insert(moves.end(), static_cast<std::size_t>(raise ? up : d - up),
                         {raise ? Act::raise : Act::lower, static_cast<std::uint8_t>(i), place, marked, 0, 0});
        }
        gates_.insert(gates_.end(), moves.begin(), moves.end());

        const Gate fourier{Act::fourier, place, none, 0, 0, row};
        // The sum of two numbers of single precision has double precision.
        const auto turn = [&](double fraction) {
            const auto rounded = static_cast<float>(fraction);
            const auto rest = static_cast<float>(fraction - static_cast<double>(rounded));
            for (const float amount : {rounded, rest})
                if (amount != 0) gates_.push_back({Act::turn, place, none, 0, amount, row});
        };
        gates_.push_back(fourier);
        turn(-rotation.mixing);
        gates_.push_back(fourier);
        turn(-rotation.turn);

        for (Gate& move : moves) move.act = move.act == Act::raise ? Act::lower : Act::raise;
        gates_.insert(gates_.end(), moves.begin(), moves.end());
        if (marker == dimensions_.size()) gates_.push_back(mark);
    }

    void check(const Targets& targets, const Conditions& when) const {
        if (detail::dimensions(targets) != dimensions_)
            throw std::invalid_argument("the qudits have not the dimensions of the unitary");
        for (std::size_t i = 0; i < targets.size(); ++i) {
            const QuantumProperty* const handle = targets[i].handle();
            for (std::size_t j = 0; j < i; ++j)
                if (targets[j].handle() == handle) throw std::invalid_argument("a qudit is listed twice");
            if (std::ranges::any_of(std::span(when.data(), when.size()),
                                    [&](const Condition& tested) { return tested.property == handle; }))
                throw Error(vantel_target_control_overlap, describe(vantel_target_control_overlap));
        }
    }

    void apply(const Gate& gate, std::span<QuantumProperty* const> handles, const Conditions& when) const {
        std::vector<Condition> all;
        if (gate.marker != none)
            all.push_back({handles[gate.marker], gate.marked, 1});
        else {
            for (std::size_t i = 0; i < dimensions_.size(); ++i)
                if (i != gate.place) all.push_back({handles[i], level(gate.row, i), 1});
            all.insert(all.end(), when.data(), when.data() + when.size());
        }
        switch (gate.act) {
        case Act::raise: return detail::call(vantel_cycle, handles[gate.place], 1.0F, all.data(), all.size());
        case Act::lower: return detail::call(vantel_shift, handles[gate.place], 1.0F, all.data(), all.size());
        case Act::fourier: return detail::call(vantel_hadamard, handles[gate.place], all.data(), all.size());
        case Act::turn: return detail::call(vantel_clock, handles[gate.place], gate.amount, all.data(), all.size());
        case Act::rephase: return detail::call(vantel_phase_rotate, all.data(), all.size(), gate.amount);
        }
    }

    std::vector<int> dimensions_;
    std::vector<Gate> gates_;
    std::size_t rotations_ = 0;
};

/// Applies a unitary matrix where `when` holds. Who applies it again keeps a Unitary.
/// @param targets  at least one, each listed once.
/// @param matrix   of real or complex elements: a contiguous range of P x P, row by row.
/// @param when     conditions on other qudits.
/// @returns how many gates that took.
/// @throws std::invalid_argument  for a matrix of another size and for one that is not unitary; the text
/// tells
///                                by how much.
/// @throws Error  as Unitary::apply() does.
template <std::ranges::contiguous_range Matrix> std::size_t
unitary(const Targets& targets, const Matrix& matrix,
        const Conditions& when = {}) requires std::convertible_to<std::ranges::range_value_t<Matrix>, Complex> {
    const std::vector<Complex> elements(std::ranges::begin(matrix), std::ranges::end(matrix));
    return Unitary(detail::dimensions(targets), elements).apply(targets, when);
}

/// Applies a unitary matrix in braces: `unitary(qubit, {0, 1, 1, 0})`.
/// @param targets  at least one, each listed once.
/// @param matrix   P x P elements, row by row.
/// @param when     conditions on other qudits.
/// @returns how many gates that took.
inline std::size_t unitary(const Targets& targets, std::initializer_list<Complex> matrix, const Conditions& when = {}) {
    return unitary(targets, std::span<const Complex>(std::data(matrix), matrix.size()), when);
}

/// Takes qudits from level 0 to a pure state, by at most P - 1 rotations.
/// @param targets  at least one, each listed once and in level 0.
/// @param state    P amplitudes of any norm but 0; the norm is divided out.
/// @returns how many gates that took.
/// @throws std::invalid_argument  for another number of amplitudes and for a norm that is 0 or not finite.
/// @throws std::domain_error      if a qudit is not in level 0, by more than a probability of 1e-5.
/// @throws Error  as Unitary::apply() does.
inline std::size_t prepare(const Targets& targets, std::span<const Complex> state) {
    double norm = 0;
    for (const Complex& amplitude : state) norm += std::norm(amplitude);
    if (!(norm > 0) || !std::isfinite(norm)) throw std::invalid_argument("a state whose norm is 0 or not finite");
    std::vector<Complex> column(state.begin(), state.end());
    for (Complex& amplitude : column) amplitude /= std::sqrt(norm);
    const Unitary steps = Unitary::of_columns(detail::dimensions(targets), 1, column);
    for (const Qudit& qudit : targets)
        if (const double found = probabilities(std::span(&qudit, 1))(0); !(std::abs(found - 1) < 1e-5))
            throw std::domain_error("a qudit to prepare is in level 0 with a probability of " + std::to_string(found));
    return steps.apply(targets);
}

/// Takes qudits from level 0 to the pure state in braces: `prepare({a, b}, {1, 0, 0, 1})`.
/// @param targets  at least one, each listed once and in level 0.
/// @param state    P amplitudes of any norm but 0.
/// @returns how many gates that took.
inline std::size_t prepare(const Targets& targets, std::initializer_list<Complex> state) {
    return prepare(targets, std::span<const Complex>(std::data(state), state.size()));
}
} // namespace vantel

#endif // C++20
#endif
