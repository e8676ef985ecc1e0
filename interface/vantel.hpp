/**
 * @file vantel.hpp
 * @brief A header-only C++20 companion of vantel.h: owning qudits, readable conditions, values and
 * exceptions.
 *
 * @code
 * vantel::Qudit coin(2), die(6);
 * vantel::hadamard(coin);
 * vantel::cycle(die, coin == 1);
 * for (const ProbabilityRecord& row : vantel::probabilities(coin, die))
 *     std::printf("%d %d %.3f\n", row.qudit_values[0], row.qudit_values[1], row.probability);
 * @endcode
 *
 * Conventions that hold beside those of vantel.h:
 *
 * - **Failures** throw vantel::Error, whether the C function reports a status or lets one of the library's
 *   own exceptions pass; Error::status() tells which failure it was. What the standard library raises
 *   (`std::bad_alloc`, `std::length_error`, `std::system_error` of the random source) passes unchanged.
 * - **Conditions** are built from qudits and levels: `a == 1`, `a != 0`, `a == 1 && b == 2`,
 *   `{a == 1, b != 0}`, or any contiguous range of vantel::Condition. They name the qudit itself and stay
 *   good when the Qudit object is moved.
 * - **Lists of qudits** are arguments one by one, or a range of Qudit (or of
 * `std::reference_wrapper<Qudit>`).
 * - **Tables** are written by the C function straight into the storage that the returned value owns.
 * - `swap(a, b)` on two Qudit objects exchanges the objects, as standard algorithms expect; the quantum
 *   gate is vantel::swap_levels().
 */
#ifndef VANTEL_HPP
#define VANTEL_HPP

// The text before this test must be good in every C and C++, so that an old standard meets one clear error.
#if !(defined(__cplusplus) && __cplusplus >= 202002L) && !(defined(_MSVC_LANG) && _MSVC_LANG >= 202002L)
#error "vantel.hpp needs C++20: compile with -std=c++20 or later, or use the C interface, vantel.h."
#else

#include "vantel.h"
#include "vantel_exceptions.hpp"
#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <concepts>
#include <cstddef>
#include <exception>
#include <initializer_list>
#include <limits>
#include <memory>
#include <ostream>
#include <ranges>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// The companion of vantel.h.
namespace vantel {
/// What every failed operation throws. The effect of the failure on the state is that of the C function.
class Error : public std::runtime_error {
public:
    /// A failure with its status and what is said of it.
    Error(vantel_status status, const char* text) : std::runtime_error(text), status_(status) {}

    /// The failure's status code; also for a failure that the C function has no code for and throws.
    [[nodiscard]] vantel_status status() const noexcept { return status_; }

private:
    vantel_status status_;
};

/// A status code in words.
[[nodiscard]] constexpr const char* describe(vantel_status status) noexcept {
    switch (status) {
    case vantel_ok: return "no failure";
    case vantel_null_property: return "the handle is null";
    case vantel_output_too_small: return "the matrix has more elements than the output";
    case vantel_target_control_overlap: return "a condition names a target of the gate";
    case vantel_different_dimensions: return "the qudits have different dimensions";
    case vantel_bad_dimension: return "a dimension is not in 2 .. 10";
    case vantel_bad_qudit_number: return "a joint state would need more than 10 qudits";
    case vantel_output_size_mismatch: return "the matrix has fewer elements than the output";
    case vantel_state_size_exceeded: return "a joint state holds more than 100000 basis states";
    }
    return "unknown status";
}

/// @cond internal
namespace detail {
/// The one way to the C functions: what fails in there leaves here as an Error.
template <class Function, class... Arguments> void call(Function function, Arguments... arguments) {
    int status = vantel_ok;
    try {
        status = function(arguments...);
    } catch (const qudit::BadQuditNumber& failure) {
        throw Error(vantel_bad_qudit_number, failure.what());
    } catch (const qudit::StateSizeExceeded& failure) {
        throw Error(vantel_state_size_exceeded, failure.what());
    }
    if (status != vantel_ok)
        throw Error(static_cast<vantel_status>(status), describe(static_cast<vantel_status>(status)));
}
} // namespace detail
/// @endcond

/// A complex number, of all that is taken and returned here. The C functions work with single precision; the
/// arrays that they wrote are there too, as they are.
using Complex = std::complex<double>;

/// One condition: the record of the C interface.
using Condition = PredicateRecord;

/// Conditions that must hold together, made by `==`, `!=` and `&&`.
template <std::size_t N> struct AllOf {
    std::array<Condition, N> records; ///< in the order in which they were written

    /// A single condition can stand in a list.
    constexpr operator Condition() const noexcept requires(N == 1) { return records[0]; }
};

/// Joins conditions.
template <std::size_t N, std::size_t M>
[[nodiscard]] constexpr AllOf<N + M> operator&&(const AllOf<N>& left, const AllOf<M>& right) noexcept {
    AllOf<N + M> joined{};
    std::ranges::copy(right.records, std::ranges::copy(left.records, joined.records.begin()).out);
    return joined;
}

/// What a gate takes as its conditions. It owns its records, so that it can be named and kept.
class Conditions {
public:
    /// None: the gate acts on every basis state.
    Conditions() noexcept = default;

    /// What `==`, `!=` and `&&` made.
    template <std::size_t N> Conditions(const AllOf<N>& all) : Conditions(all.records) {}

    /// A list in braces.
    Conditions(std::initializer_list<Condition> list)
        : Conditions(std::span<const Condition>(std::data(list), list.size())) {}

    /// Conditions that were collected before; they are copied.
    template <std::ranges::contiguous_range Range>
    requires std::same_as<std::ranges::range_value_t<Range>, Condition> Conditions(const Range& range) {
        if (std::ranges::size(range) <= few_.size())
            few_count_ = static_cast<std::size_t>(std::ranges::copy(range, few_.begin()).out - few_.begin());
        else
            many_.assign(std::ranges::begin(range), std::ranges::end(range));
    }

    /// The first record; good as long as this object is.
    [[nodiscard]] const Condition* data() const noexcept { return many_.empty() ? few_.data() : many_.data(); }
    /// How many there are.
    [[nodiscard]] std::size_t size() const noexcept { return many_.empty() ? few_count_ : many_.size(); }

private:
    // A gate with few conditions, as most are, asks for no memory.
    std::array<Condition, 4> few_{};
    std::size_t few_count_ = 0;
    std::vector<Condition> many_;
};

/// @cond internal
namespace detail {
/// Whether freeing a handle cannot end the process; if its joint state is over the limit, after measuring it.
/// A phase that is turned nowhere tells the size of the state.
inline bool can_go(QuantumProperty* handle) noexcept {
    const Condition never{handle, -1, 1};
    const auto fits = [&] { return vantel_phase_rotate(&never, 1, 0.0F) != vantel_state_size_exceeded; };
    try {
        if (handle == nullptr || fits()) return true;
        int level = 0;
        return vantel_measure(&handle, 1, &level) == vantel_ok && fits();
    } catch (const std::exception&) {
        return false;
    }
}
} // namespace detail
/// @endcond

/// One qudit, owned. Moving it moves the ownership; the qudit and what refers to it stay where they are. Of
/// an object that was moved from, only assignment and destruction are good.
class Qudit {
public:
    /// A qudit of `dimension` levels, 2 to 10, in level 0 and in a joint state of its own.
    explicit Qudit(int dimension) : dimension_(dimension) {
        detail::call(
            [](Qudit* made) {
                int status = vantel_ok;
                made->handle_ = vantel_make_quantum_property(made->dimension_, &status);
                return status;
            },
            this);
    }

    /// Frees the qudit as vantel_free_quantum_property() does, and lets that not end the process: a qudit of
    /// a joint state over the limit is measured first. Where that leaves the state over the limit, or where
    /// the random source or memory fails, the qudit stays in it, and its place taken, until the process ends.
    ~Qudit() {
        if (detail::can_go(handle_)) vantel_free_quantum_property(handle_);
    }

    /// Takes over the qudit of `other`.
    Qudit(Qudit&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)), dimension_(other.dimension_) {}

    /// Frees the own qudit and takes over that of `other`.
    Qudit& operator=(Qudit&& other) noexcept {
        Qudit taken(std::move(other));
        swap(*this, taken);
        return *this;
    }

    /// Exchanges the objects and leaves the qudits alone.
    friend void swap(Qudit& a, Qudit& b) noexcept {
        std::swap(a.handle_, b.handle_);
        std::swap(a.dimension_, b.dimension_);
    }

    [[nodiscard]] int dimension() const noexcept { return dimension_; } ///< The number of levels.

    /// The handle, for calls of the C interface; still owned by this object.
    [[nodiscard]] QuantumProperty* handle() const noexcept { return handle_; }

    /// Hands the ownership of the handle to the caller.
    [[nodiscard]] QuantumProperty* release() noexcept { return std::exchange(handle_, nullptr); }

    /// The condition that the qudit is in `level`.
    [[nodiscard]] AllOf<1> operator==(int level) const noexcept { return {{{{handle_, level, 1}}}}; }

    /// The condition that the qudit is not in `level`.
    [[nodiscard]] AllOf<1> operator!=(int level) const noexcept { return {{{{handle_, level, 0}}}}; }

private:
    QuantumProperty* handle_ = nullptr;
    int dimension_;
};

/// A range of Qudit, or of what converts to one by reference.
template <class Range>
concept QuditRange = std::ranges::forward_range<Range> && std::convertible_to < std::ranges::range_reference_t<Range>,
const Qudit& > ;

/// `count` qudits of one dimension, each in level 0.
[[nodiscard]] inline std::vector<Qudit> make_register(std::size_t count, int dimension) {
    std::vector<Qudit> qudits;
    qudits.reserve(count);
    for (std::size_t i = 0; i < count; ++i) qudits.emplace_back(dimension);
    return qudits;
}

/// A qudit for each of `dimensions`, in their order and each in level 0.
[[nodiscard]] inline std::vector<Qudit> make_register(std::span<const int> dimensions) {
    return std::vector<Qudit>(dimensions.begin(), dimensions.end());
}

/// A qudit for each of the dimensions in braces: `make_register({2, 3, 5})`.
[[nodiscard]] inline std::vector<Qudit> make_register(std::initializer_list<int> dimensions) {
    return make_register(std::span<const int>(std::data(dimensions), dimensions.size()));
}

/// What a power of a gate can be: a number, whole or not. A truth value is none; it would be a condition
/// whose qudit was forgotten.
template <class Number>
concept Fraction = std::floating_point<Number> ||(std::integral<Number> && !std::same_as<Number, bool>);

/// @name The gates of vantel.h
/// Each acts where `when` holds, takes its arguments in the order of the C function, and throws Error.
/// @{

/// Level v goes to the sum over k of exp(-2 pi i k v / d) / sqrt(d) times level k.
inline void hadamard(Qudit& target, Conditions when = {}) {
    detail::call(vantel_hadamard, target.handle(), when.data(), when.size());
}

/// The inverse of hadamard().
inline void inverse_hadamard(Qudit& target, Conditions when = {}) {
    detail::call(vantel_inverse_hadamard, target.handle(), when.data(), when.size());
}

/// Level v goes to (v + 1) mod d.
inline void cycle(Qudit& target, Conditions when = {}) {
    detail::call(vantel_cycle, target.handle(), 1.0F, when.data(), when.size());
}

/// The power `fraction` of cycle().
template <Fraction Number> void cycle(Qudit& target, Number fraction, Conditions when = {}) {
    detail::call(vantel_cycle, target.handle(), static_cast<float>(fraction), when.data(), when.size());
}

/// Level v goes to (v - 1) mod d.
inline void shift(Qudit& target, Conditions when = {}) {
    detail::call(vantel_shift, target.handle(), 1.0F, when.data(), when.size());
}

/// The power `fraction` of shift().
template <Fraction Number> void shift(Qudit& target, Number fraction, Conditions when = {}) {
    detail::call(vantel_shift, target.handle(), static_cast<float>(fraction), when.data(), when.size());
}

/// Level v is multiplied by exp(2 pi i v / d).
inline void clock(Qudit& target, Conditions when = {}) {
    detail::call(vantel_clock, target.handle(), 1.0F, when.data(), when.size());
}

/// The power `fraction` of clock().
template <Fraction Number> void clock(Qudit& target, Number fraction, Conditions when = {}) {
    detail::call(vantel_clock, target.handle(), static_cast<float>(fraction), when.data(), when.size());
}

/// Multiplies by exp(i angle) where `when` holds; without conditions it does nothing.
template <Fraction Number> void phase_rotate(Conditions when, Number angle) {
    detail::call(vantel_phase_rotate, when.data(), when.size(), static_cast<float>(angle));
}

/// Exchanges the levels of two qudits of one dimension (vantel_swap()).
inline void swap_levels(Qudit& first, Qudit& second, Conditions when = {}) {
    detail::call(vantel_swap, first.handle(), second.handle(), when.data(), when.size());
}

/// Levels (p, q), p != q, go to i (q, p); equal ones stay.
inline void i_swap(Qudit& first, Qudit& second, Conditions when = {}) {
    detail::call(vantel_i_swap, first.handle(), second.handle(), 1.0F, when.data(), when.size());
}

/// The power `fraction` of i_swap(). With t = fraction pi/2: levels (p, q), p != q, go to
/// cos t (p, q) + i sin t (q, p); equal ones stay.
template <Fraction Number> void i_swap(Qudit& first, Qudit& second, Number fraction, Conditions when = {}) {
    detail::call(vantel_i_swap, first.handle(), second.handle(), static_cast<float>(fraction), when.data(),
                 when.size());
}
/// @}

/// The levels of several qudits and their order in tables: the first qudit varies fastest.
class Shape {
public:
    /// The shape of a list of qudits. Throws std::length_error where its rows could not be counted.
    template <QuditRange Range> explicit Shape(Range&& qudits) {
        for (const Qudit& qudit : qudits) {
            dimensions_.push_back(qudit.dimension());
            const auto levels = static_cast<std::size_t>(qudit.dimension());
            if (size_ > std::numeric_limits<std::size_t>::max() / levels)
                throw std::length_error("too many combinations of levels");
            size_ *= levels;
        }
    }

    [[nodiscard]] std::size_t size() const noexcept { return size_; } ///< How many combinations there are.
    [[nodiscard]] std::size_t qudits() const noexcept { return dimensions_.size(); } ///< How many qudits.

    /// Where a combination stands. Throws std::out_of_range unless there is one level per qudit, each from
    /// 0 to below the qudit's dimension; the text has the levels and the dimensions.
    [[nodiscard]] std::size_t row(std::span<const int> levels) const {
        if (!std::ranges::equal(levels, dimensions_, [](int v, int d) { return 0 <= v && v < d; }))
            throw std::out_of_range("no row " + listed(levels) + " of qudits with dimensions " + listed(dimensions_));
        std::size_t position = 0;
        for (std::size_t i = levels.size(); i-- > 0;)
            position = position * static_cast<std::size_t>(dimensions_[i]) + static_cast<std::size_t>(levels[i]);
        return position;
    }

private:
    static std::string listed(std::span<const int> numbers) {
        std::string text = "(";
        for (const int number : numbers) text += (text.size() > 1 ? ", " : "") + std::to_string(number);
        return text + ')';
    }

    std::vector<int> dimensions_;
    std::size_t size_ = 1;
};

/// @cond internal
namespace detail {
template <QuditRange Range> std::vector<QuantumProperty*> handles(Range&& qudits) {
    std::vector<QuantumProperty*> list;
    for (const Qudit& qudit : qudits) list.push_back(qudit.handle());
    return list;
}

/// The arguments of a readout as a range.
template <class... Qudits> auto listed(Qudits&... qudits) { return std::array{std::ref(qudits)...}; }
} // namespace detail
/// @endcond

/// The probability of every combination of levels, in the records that the C function wrote. Iterating
/// gives ProbabilityRecord; an empty joint state has no rows.
class Outcomes {
public:
    /// Asks for the table; see probabilities().
    template <QuditRange Range> explicit Outcomes(Range&& qudits)
        : shape_(qudits), size_(shape_.size()), records_(std::make_unique_for_overwrite<ProbabilityRecord[]>(size_)),
          levels_(std::make_unique_for_overwrite<int[]>(size_ * shape_.qudits())) {
        for (std::size_t i = 0; i < size_; ++i) records_[i].qudit_values = levels_.get() + i * shape_.qudits();
        constexpr float unwritten = -1.0F;
        records_[0].probability = unwritten;
        auto list = detail::handles(qudits);
        detail::call(vantel_probabilities, list.data(), list.size(), records_.get());
        if (records_[0].probability == unwritten) size_ = 0;
    }

    [[nodiscard]] std::size_t size() const noexcept { return size_; } ///< How many rows there are.
    [[nodiscard]] const ProbabilityRecord* begin() const noexcept { return records_.get(); } ///< The first row.
    [[nodiscard]] const ProbabilityRecord* end() const noexcept { return begin() + size_; }  ///< Behind the last.

    /// Row `row`, below size(); not checked.
    [[nodiscard]] const ProbabilityRecord& operator[](std::size_t row) const noexcept { return records_[row]; }

    /// The probability of one combination, one level per qudit: `table(0, 2)`. Throws std::out_of_range as
    /// Shape::row() does, and where the table has no rows.
    template <std::convertible_to<int>... Levels> [[nodiscard]] double operator()(Levels... levels) const {
        const std::size_t row = shape_.row(std::array<int, sizeof...(levels)>{static_cast<int>(levels)...});
        if (row >= size_) throw std::out_of_range("the table of an empty joint state has no rows");
        return records_[row].probability;
    }

    [[nodiscard]] const Shape& shape() const noexcept { return shape_; } ///< The order of the rows.

    /// A line for each row whose probability is not 0: the levels, and the probability to six digits.
    friend std::ostream& operator<<(std::ostream& stream, const Outcomes& outcomes) {
        for (const ProbabilityRecord& record : outcomes) {
            if (record.probability == 0) continue;
            for (std::size_t i = 0; i < outcomes.shape_.qudits(); ++i)
                stream << std::to_string(record.qudit_values[i]) + ' ';
            stream << ' ' + std::to_string(record.probability) + '\n';
        }
        return stream;
    }

private:
    Shape shape_;
    std::size_t size_;
    std::unique_ptr<ProbabilityRecord[]> records_;
    std::unique_ptr<int[]> levels_;
};

/// A reduced density matrix, in the two arrays that the C function wrote.
class DensityMatrix {
public:
    /// Asks for the matrix; see reduced_density_matrix().
    template <QuditRange Range> explicit DensityMatrix(Range&& qudits) : shape_(qudits) {
        if (side() > std::numeric_limits<std::size_t>::max() / side())
            throw std::length_error("too many elements in a density matrix");
        const std::size_t elements = side() * side();
        real_ = std::make_unique_for_overwrite<float[]>(elements);
        imaginary_ = std::make_unique_for_overwrite<float[]>(elements);
        auto list = detail::handles(qudits);
        detail::call(vantel_reduced_density_matrix, list.data(), list.size(), real_.get(), imaginary_.get(), elements);
    }

    [[nodiscard]] std::size_t side() const noexcept { return shape_.size(); } ///< Rows, and columns.

    /// The element in `row` and `column`. Throws std::out_of_range unless both are below side().
    [[nodiscard]] Complex operator()(std::size_t row, std::size_t column) const {
        if (row >= side() || column >= side())
            throw std::out_of_range("no element (" + std::to_string(row) + ", " + std::to_string(column) +
                                    ") of a density matrix with side " + std::to_string(side()));
        return {real_[row * side() + column], imaginary_[row * side() + column]};
    }

    [[nodiscard]] const Shape& shape() const noexcept { return shape_; }     ///< The order of rows and columns.
    [[nodiscard]] const float* real() const noexcept { return real_.get(); } ///< Real parts, row by row.
    [[nodiscard]] const float* imaginary() const noexcept { return imaginary_.get(); } ///< Imaginary parts.

    /// A line for each row, its elements as `(real, imaginary)` to six digits behind the point.
    friend std::ostream& operator<<(std::ostream& stream, const DensityMatrix& matrix) {
        for (std::size_t i = 0; i < matrix.side() * matrix.side(); ++i)
            stream << '(' + std::to_string(matrix.real_[i]) + ", " + std::to_string(matrix.imaginary_[i]) + ')' +
                          ((i + 1) % matrix.side() == 0 ? '\n' : ' ');
        return stream;
    }

private:
    Shape shape_;
    std::unique_ptr<float[]> real_;
    std::unique_ptr<float[]> imaginary_;
};

/// @name The readouts of vantel.h
/// Each takes at least one qudit and throws Error. Who measures for the collapse alone says so: `(void)`.
/// @{

/// Measures the qudits of a range and collapses their joint state; one level per qudit, in their order.
template <QuditRange Range> [[nodiscard]] std::vector<int> measure(Range&& qudits) {
    auto list = detail::handles(qudits);
    std::vector<int> levels(list.size());
    detail::call(vantel_measure, list.data(), list.size(), levels.data());
    return levels;
}

/// Measures one qudit.
[[nodiscard]] inline int measure(Qudit& qudit) {
    QuantumProperty* handle = qudit.handle();
    int level = 0;
    detail::call(vantel_measure, &handle, std::size_t{1}, &level);
    return level;
}

/// Measures several qudits: `auto [a, b] = measure(first, second)`.
template <std::same_as<Qudit>... Rest>
[[nodiscard]] std::array<int, sizeof...(Rest) + 2> measure(Qudit& first, Qudit& second, Rest&... rest) {
    std::array list{first.handle(), second.handle(), rest.handle()...};
    std::array<int, sizeof...(Rest) + 2> levels{};
    detail::call(vantel_measure, list.data(), list.size(), levels.data());
    return levels;
}

/// vantel_stochastic_projection(): asks whether `when` holds, and projects the joint state onto the answer.
/// The joint state can then no longer be merged safely as vantel_free_quantum_property() tells, nor asked
/// again; project() can.
inline bool stochastic_projection(Conditions when) {
    int answer = 0;
    detail::call(vantel_stochastic_projection, when.data(), when.size(), &answer);
    return answer != 0;
}

/// The probability of every combination of levels of a range, without measuring.
template <QuditRange Range> [[nodiscard]] Outcomes probabilities(Range&& qudits) { return Outcomes(qudits); }

/// The probability of every combination of levels of the arguments, without measuring.
template <std::same_as<Qudit>... Rest> [[nodiscard]] Outcomes probabilities(Qudit& first, Rest&... rest) {
    return Outcomes(detail::listed(first, rest...));
}

/// The density matrix of a range of qudits, all others traced out.
template <QuditRange Range> [[nodiscard]] DensityMatrix reduced_density_matrix(Range&& qudits) {
    return DensityMatrix(qudits);
}

/// The density matrix of the arguments, all other qudits traced out.
template <std::same_as<Qudit>... Rest> [[nodiscard]] DensityMatrix reduced_density_matrix(Qudit& first, Rest&... rest) {
    return DensityMatrix(detail::listed(first, rest...));
}
/// @}

/// @name Composite gates
/// Built from the fifteen functions. A failure on the way leaves what was applied before it.
/// @{

/// Brings a newcomer into the joint state of `into`, as its last qudit, and changes nothing else. The qudit
/// that joined last can be freed and its joint state used on; a target joins in front of its controls unless
/// it is brought in before.
inline void join(Qudit& into, Qudit& newcomer) {
    constexpr int never = -1;
    phase_rotate(into == never && newcomer == never, 0.0F);
}

/// Asks whether `when` holds, and projects the joint state onto the answer, as often as one likes. Takes one
/// more place among the ten for the time of the call.
inline bool project(Conditions when) {
    if (when.size() == 0) return true;
    Qudit answer(2);
    std::vector<Condition> joined(when.data(), when.data() + when.size());
    joined.push_back(answer == 1);
    phase_rotate(joined, 0.0F);
    cycle(answer, when);
    return measure(answer) == 1;
}

/// Adds a constant: level v goes to (v + steps) mod d, by whole cycles or shifts, whichever are fewer.
inline void add(Qudit& target, int steps, Conditions when = {}) {
    const int dimension = target.dimension();
    const int up = (steps % dimension + dimension) % dimension;
    if (2 * up <= dimension)
        for (int i = 0; i < up; ++i) cycle(target, when);
    else
        for (int i = up; i < dimension; ++i) shift(target, when);
}

/// Measures a qudit and takes it back to level 0, ready for another use. Returns the level that it had.
inline int reset(Qudit& target) {
    const int level = measure(target);
    add(target, -level);
    return level;
}

/// @cond internal
namespace detail {
/// Applies `gate` as often as the level of `control` says. The k-th of d - 1 rounds asks for a level above
/// k, that is for none of 0 .. k, so that level c takes part in c rounds.
template <class Gate> void for_each_level(const Qudit& control, Conditions when, Gate gate) {
    std::vector<Condition> all(when.data(), when.data() + when.size());
    for (int level = 0; level + 1 < control.dimension(); ++level) {
        all.push_back(control != level);
        gate(Conditions(all));
    }
}
} // namespace detail
/// @endcond

/// SUM, the generalised controlled NOT: |c, t> goes to |c, (t + c) mod d>, with d the target's dimension,
/// whatever that of the control.
inline void sum(const Qudit& control, Qudit& target, Conditions when = {}) {
    detail::for_each_level(control, when, [&](Conditions all) { cycle(target, all); });
}

/// The inverse of sum(): |c, t> goes to |c, (t - c) mod d>.
inline void inverse_sum(const Qudit& control, Qudit& target, Conditions when = {}) {
    detail::for_each_level(control, when, [&](Conditions all) { shift(target, all); });
}

/// The generalised Toffoli gate: |a, b, t> goes to |a, b, (t + a b) mod d>, with d the target's dimension.
inline void toffoli(const Qudit& a, const Qudit& b, Qudit& target, Conditions when = {}) {
    detail::for_each_level(a, when, [&](Conditions all) { sum(b, target, all); });
}

/// The parity of a qudit: |v> goes to |-v mod d>, the square of hadamard().
inline void negate(Qudit& target, Conditions when = {}) {
    hadamard(target, when);
    hadamard(target, when);
}

/// SWAP of two qudits of one dimension from SUMs: |a, b> to |a, a+b> to |-b, a+b> to |-b, a> to |b, a>.
/// The gate swap_levels() does the same in one step; this is the circuit of a machine that has only SUM.
/// Throws Error with #vantel_different_dimensions, before anything is applied.
inline void swap_by_sums(Qudit& first, Qudit& second) {
    if (first.dimension() != second.dimension())
        throw Error(vantel_different_dimensions, describe(vantel_different_dimensions));
    sum(first, second);
    inverse_sum(second, first);
    sum(first, second);
    negate(first);
}

/// @cond internal
namespace detail {
/// The Fourier transform of a register, or its inverse, as the same steps backwards.
template <class Range> void transform_register(Range&& qudits, bool inverse) {
    const auto count = static_cast<std::size_t>(std::ranges::distance(qudits));
    std::vector<Qudit*> digits;
    for (Qudit& qudit : qudits) digits.push_back(&qudit);
    for (const Qudit* const qudit : digits)
        if (qudit->dimension() != digits[0]->dimension())
            throw Error(vantel_different_dimensions, describe(vantel_different_dimensions));

    const auto reverse = [&] {
        for (std::size_t i = 0; i < count / 2; ++i) swap_levels(*digits[i], *digits[count - 1 - i]);
    };
    // Digit j turns by exp(2 pi i x_m y / d^(j - m + 1)) for each lower digit x_m.
    const auto turn = [&](std::size_t j, float sign) {
        const auto d = static_cast<float>(digits[j]->dimension());
        for (std::size_t m = 0; m < j; ++m)
            for (int level = 1; level < digits[m]->dimension(); ++level)
                clock(*digits[j], sign * static_cast<float>(level) * std::pow(d, -static_cast<float>(j - m)),
                      *digits[m] == level);
    };
    if (inverse) {
        reverse();
        for (std::size_t j = 0; j < count; ++j) {
            turn(j, -1.0F);
            hadamard(*digits[j]);
        }
    } else {
        for (std::size_t j = count; j-- > 0;) {
            inverse_hadamard(*digits[j]);
            turn(j, 1.0F);
        }
        reverse();
    }
}
} // namespace detail
/// @endcond

/// The Fourier transform over a register of qudits of one dimension d, whose first qudit is the lowest
/// digit: with P = d^n, |x> goes to the sum over y of exp(2 pi i x y / P) / sqrt(P) times |y>.
/// Note the sign: on one qudit this is inverse_hadamard().
/// Throws Error with #vantel_different_dimensions, before anything is applied.
template <QuditRange Range> void fourier_transform(Range&& qudits) { detail::transform_register(qudits, false); }

/// The inverse of fourier_transform().
template <QuditRange Range> void inverse_fourier_transform(Range&& qudits) { detail::transform_register(qudits, true); }

/// Takes qudits from level 0 to the sum over k of |k, k mod d2, k mod d3, ...> / sqrt(d1), the
/// Greenberger-Horne-Zeilinger state of as many terms as the first qudit has levels.
template <QuditRange Range> void prepare_ghz(Range&& qudits) {
    auto next = std::ranges::begin(qudits);
    Qudit& first = *next;
    hadamard(first);
    while (++next != std::ranges::end(qudits)) sum(first, static_cast<Qudit&>(*next));
}

/// Takes two qudits from level 0 to a Bell state: the sum over k of
/// exp(2 pi i k phase / d1) |k, (k + offset) mod d2> / sqrt(d1).
inline void prepare_bell(Qudit& first, Qudit& second, int phase = 0, int offset = 0) {
    hadamard(first);
    clock(first, static_cast<float>(phase));
    sum(first, second);
    add(second, offset);
}
/// @}
} // namespace vantel

#endif // C++20
#endif
