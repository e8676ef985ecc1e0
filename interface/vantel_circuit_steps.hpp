/**
 * @file vantel_circuit_steps.hpp
 * @brief Header-only, part of vantel_circuit.hpp: the steps of circuits, what they ask and what they read.
 */
#ifndef VANTEL_CIRCUIT_STEPS_HPP
#define VANTEL_CIRCUIT_STEPS_HPP

#include "vantel_noise.hpp" // refuses what is older than C++20

#if __cplusplus >= 202002L || (defined(_MSVC_LANG) && _MSVC_LANG >= 202002L)

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <ostream>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vantel {
/// One condition of a step.
struct StepCondition {
    bool on_value;     ///< whether a value is asked and not a qudit
    std::size_t place; ///< which one
    int level;         ///< what it is compared with
    bool is_equal;     ///< whether both must be equal, or must differ
};

/// A qudit of a circuit, by its place.
struct Wire {
    std::size_t place; ///< counted from 0 in the order in which they were added
    /// The condition that the qudit is in `level`.
    [[nodiscard]] StepCondition operator==(int level) const noexcept { return {false, place, level, true}; }
    /// The condition that the qudit is not in `level`.
    [[nodiscard]] StepCondition operator!=(int level) const noexcept { return {false, place, level, false}; }
};

/// A value of a circuit, by its place.
struct Value {
    std::size_t place; ///< counted from 0 in the order in which they were named first
    /// The condition that this was read.
    [[nodiscard]] StepCondition operator==(int level) const noexcept { return {true, place, level, true}; }
    /// The condition that something else was read.
    [[nodiscard]] StepCondition operator!=(int level) const noexcept { return {true, place, level, false}; }
};

/// The conditions of a step, all of which must hold.
struct When {
    std::vector<StepCondition> all; ///< in the order in which they were written

    When() = default; ///< None.
    /// A single one.
    When(const StepCondition& condition) : all{condition} {}
    /// Conditions in braces.
    When(std::initializer_list<StepCondition> conditions) : all(conditions) {}
    /// Conditions that were collected before.
    explicit When(std::vector<StepCondition> conditions) : all(std::move(conditions)) {}
};

/// Joins conditions.
[[nodiscard]] inline When operator&&(When left, const When& right) {
    left.all.insert(left.all.end(), right.all.begin(), right.all.end());
    return left;
}

/// What a step does: the function of this name.
enum class Action {
    hadamard,
    inverse_hadamard,
    cycle,
    shift,
    clock,
    phase_rotate,
    swap_levels,
    i_swap,
    add,
    sum,
    inverse_sum,
    unitary,
    measure,
    project,
    reset,
    depolarise, ///< depolarising(), drawn by the generator of the run
    dephase,    ///< dephasing(), drawn by the generator of the run
    damp        ///< amplitude_damping(), drawn by the system
};

/// What is made of a step once, for all its runs.
struct PreparedStep {
    std::optional<Unitary> unitary;    ///< of Action::unitary
    std::optional<WeylChannel> weyl;   ///< of Action::depolarise and Action::dephase
    std::optional<KrausChannel> kraus; ///< of Action::damp
};

/// One step of a circuit.
struct Step {
    Action action{};                  ///< what is done
    std::vector<std::size_t> targets; ///< the places of its qudits, in the order of the function's arguments
    double amount = 1; ///< the fraction, the angle in radians, the number of steps to add, or the probability
    When when;         ///< its conditions; of Action::project what is asked
    std::vector<std::size_t> values; ///< the places of what it reads: one for each target, or one answer
    std::vector<Complex> matrix;     ///< of Action::unitary, row by row
    /// Made by Circuit::append(), whatever it was.
    std::shared_ptr<const PreparedStep> prepared;
};

/// What a run has read: a number for each value of the circuit.
class Readings {
public:
    /// Names and as many numbers.
    Readings(std::vector<std::string> names, std::vector<int> numbers)
        : names_(std::move(names)), numbers_(std::move(numbers)) {}

    /// The number of a value.
    [[nodiscard]] int operator[](Value value) const { return numbers_.at(value.place); }

    /// The number of a value by its name. Throws std::out_of_range if there is none of this name.
    [[nodiscard]] int operator[](std::string_view name) const {
        const auto found = std::ranges::find(names_, name);
        if (found == names_.end()) throw std::out_of_range("no value is named " + std::string(name));
        return numbers_[static_cast<std::size_t>(found - names_.begin())];
    }

    [[nodiscard]] const std::vector<std::string>& names() const noexcept { return names_; } ///< In order.
    [[nodiscard]] const std::vector<int>& numbers() const noexcept { return numbers_; }     ///< In this order.

    /// A line `name = number` for each.
    friend std::ostream& operator<<(std::ostream& stream, const Readings& readings) {
        std::string text;
        for (std::size_t i = 0; i < readings.names_.size(); ++i)
            text += readings.names_[i] + " = " + std::to_string(readings.numbers_[i]) + '\n';
        return stream << text;
    }

private:
    std::vector<std::string> names_;
    std::vector<int> numbers_;
};

/// @cond internal
namespace detail {
/// How a step is written: its name and what follows it.
struct StepForm {
    enum class Amount { none, fraction, angle, whole, probability };
    static constexpr std::size_t any = 100;

    Action action;
    std::string_view name;
    std::size_t targets; ///< how many, or any number but 0
    Amount amount;
    bool reads; ///< values
    bool asks;  ///< qudits, in its conditions
};

inline constexpr StepForm step_forms[] = {
    {Action::hadamard, "hadamard", 1, StepForm::Amount::none, false, true},
    {Action::inverse_hadamard, "inverse_hadamard", 1, StepForm::Amount::none, false, true},
    {Action::cycle, "cycle", 1, StepForm::Amount::fraction, false, true},
    {Action::shift, "shift", 1, StepForm::Amount::fraction, false, true},
    {Action::clock, "clock", 1, StepForm::Amount::fraction, false, true},
    {Action::phase_rotate, "phase_rotate", 0, StepForm::Amount::angle, false, true},
    {Action::swap_levels, "swap_levels", 2, StepForm::Amount::none, false, true},
    {Action::i_swap, "i_swap", 2, StepForm::Amount::fraction, false, true},
    {Action::add, "add", 1, StepForm::Amount::whole, false, true},
    {Action::sum, "sum", 2, StepForm::Amount::none, false, true},
    {Action::inverse_sum, "inverse_sum", 2, StepForm::Amount::none, false, true},
    {Action::unitary, "unitary", StepForm::any, StepForm::Amount::none, false, true},
    {Action::measure, "measure", StepForm::any, StepForm::Amount::none, true, false},
    {Action::project, "project", 0, StepForm::Amount::none, true, true},
    {Action::reset, "reset", 1, StepForm::Amount::none, true, false},
    {Action::depolarise, "depolarise", 1, StepForm::Amount::probability, false, false},
    {Action::dephase, "dephase", 1, StepForm::Amount::probability, false, false},
    {Action::damp, "damp", 1, StepForm::Amount::probability, false, false},
};

inline const StepForm& form_of(Action action) { return *std::ranges::find(step_forms, action, &StepForm::action); }

/// Throws unless the text can be a name.
inline void check_name(std::string_view name) {
    const auto is_letter = [](char c) { return ('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z') || c == '_'; };
    const auto is_digit = [](char c) { return '0' <= c && c <= '9'; };
    if (name.empty() || !is_letter(name[0]) || name == "if" ||
        !std::ranges::all_of(name, [&](char c) { return is_letter(c) || is_digit(c); }))
        throw std::invalid_argument("'" + std::string(name) + "' is no name");
}

/// The step that undoes another. Throws std::logic_error for one that reads or is noise.
inline Step inverse(const Step& original) {
    Step step = original;
    switch (step.action) {
    case Action::hadamard: step.action = Action::inverse_hadamard; break;
    case Action::inverse_hadamard: step.action = Action::hadamard; break;
    case Action::cycle: step.action = Action::shift; break;
    case Action::shift: step.action = Action::cycle; break;
    case Action::sum: step.action = Action::inverse_sum; break;
    case Action::inverse_sum: step.action = Action::sum; break;
    case Action::clock:
    case Action::phase_rotate:
    case Action::i_swap:
    case Action::add: step.amount = -step.amount; break;
    case Action::swap_levels: break;
    case Action::unitary: {
        const auto side = static_cast<std::size_t>(std::sqrt(static_cast<double>(step.matrix.size())));
        for (std::size_t row = 0; row < side; ++row)
            for (std::size_t column = 0; column < side; ++column)
                step.matrix[row * side + column] = std::conj(original.matrix[column * side + row]);
        step.prepared = nullptr;
        break;
    }
    case Action::measure:
    case Action::project:
    case Action::reset:
    case Action::depolarise:
    case Action::dephase:
    case Action::damp: throw std::logic_error("a circuit that reads or has noise has no inverse");
    }
    return step;
}

/// Whether the conditions of a step on values hold.
inline bool holds(const Step& step, std::span<const int> numbers) {
    return std::ranges::all_of(step.when.all, [&](const StepCondition& asked) {
        return !asked.on_value || (numbers[asked.place] == asked.level) == asked.is_equal;
    });
}

/// Makes the call that a step stands for, on the qudits of a circuit, with room for its values and what
/// draws numbers in [0, 1) for its noise, if there is any.
inline void run(const Step& step, const Targets& qudits, std::span<int> numbers,
                const std::function<double()>& uniform) {
    const auto target = [&](std::size_t i) -> Qudit& { return qudits[step.targets[i]]; };
    std::vector<Condition> when;
    for (const StepCondition& asked : step.when.all)
        if (!asked.on_value) when.push_back({qudits[asked.place].handle(), asked.level, asked.is_equal});
    std::vector<std::reference_wrapper<Qudit>> targets;
    for (const std::size_t place : step.targets) targets.emplace_back(qudits[place]);
    switch (step.action) {
    case Action::hadamard: return vantel::hadamard(target(0), when);
    case Action::inverse_hadamard: return vantel::inverse_hadamard(target(0), when);
    case Action::cycle: return vantel::cycle(target(0), step.amount, when);
    case Action::shift: return vantel::shift(target(0), step.amount, when);
    case Action::clock: return vantel::clock(target(0), step.amount, when);
    case Action::phase_rotate: return vantel::phase_rotate(when, step.amount);
    case Action::swap_levels: return vantel::swap_levels(target(0), target(1), when);
    case Action::i_swap: return vantel::i_swap(target(0), target(1), step.amount, when);
    case Action::add: return vantel::add(target(0), static_cast<int>(step.amount), when);
    case Action::sum: return vantel::sum(target(0), target(1), when);
    case Action::inverse_sum: return vantel::inverse_sum(target(0), target(1), when);
    case Action::unitary: step.prepared->unitary->apply(targets, when); return;
    case Action::measure: {
        const std::vector<int> levels = vantel::measure(targets);
        for (std::size_t i = 0; i < levels.size(); ++i) numbers[step.values[i]] = levels[i];
        return;
    }
    case Action::project: numbers[step.values[0]] = vantel::project(when) ? 1 : 0; return;
    case Action::reset: numbers[step.values[0]] = vantel::reset(target(0)); return;
    case Action::depolarise:
    case Action::dephase:
        if (!uniform) throw std::logic_error("a circuit with noise needs a generator to run");
        step.prepared->weyl->draw(uniform()).apply(target(0));
        return;
    case Action::damp: step.prepared->kraus->apply(target(0)); return;
    }
}
} // namespace detail
/// @endcond
} // namespace vantel

#endif // C++20
#endif
