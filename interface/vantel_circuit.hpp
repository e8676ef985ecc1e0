/**
 * @file vantel_circuit.hpp
 * @brief Header-only, beside vantel.hpp: circuits, lists of steps that are recorded once and run as often as
 * one likes.
 *
 * @code
 * vantel::Circuit circuit;
 * const auto a = circuit.add_qudit("a", 3), b = circuit.add_qudit("b", 3);
 * circuit.hadamard(a).sum(a, b);
 * const auto found = circuit.measure(a, "found");
 * circuit.shift(b, found == 1).shift(b, 2, found == 2);
 * std::cout << circuit.run().readings; // found = 0, or 1, or 2
 * @endcode
 *
 * Conventions:
 *
 * - **Steps** are the gates and readouts of vantel.hpp by their names and with their arguments. A run makes
 * the same calls as a program would, in the same order, so that states agree to the bit.
 * - **Names**: qudits and values have one each, of letters, digits and `_`, not beginning with a digit, and
 *   not `if`. A Wire or a Value is a place among them and good for the circuit that gave it.
 * - **Values** are what a run reads: levels, or answers, 0 or 1. They are 0 until they are read, and a later
 *   reading replaces an earlier one.
 * - **Conditions** are `a == 1`, `a != 1` and `m == 1` of qudits and values, joined by `&&`. A step is
 * skipped unless all conditions on values hold; those on qudits are the conditions of its gate.
 * - **Failures**: std::invalid_argument for what cannot be recorded, before the circuit changes; Error as the
 *   calls throw it while it runs.
 *
 * vantel_circuit_text.hpp reads and writes circuits, vantel_circuit_drawing.hpp draws them.
 */
#ifndef VANTEL_CIRCUIT_HPP
#define VANTEL_CIRCUIT_HPP

#include "vantel_circuit_steps.hpp" // refuses what is older than C++20

#if __cplusplus >= 202002L || (defined(_MSVC_LANG) && _MSVC_LANG >= 202002L)

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <memory>
#include <ostream>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vantel {
/// A run from level 0: the qudits as it left them, and what it read.
struct Run {
    std::vector<Qudit> qudits; ///< in the circuit's order
    Readings readings;         ///< all values
};

/// A recorded list of steps over named qudits. It holds no state and can be copied.
class Circuit {
public:
    /// A qudit of a circuit.
    struct NamedQudit {
        std::string name; ///< unlike all other names of the circuit
        int dimension;    ///< 2 to 10
    };

    /// Without qudits and steps.
    Circuit() = default;

    /// With qudits named q0, q1, ... of these dimensions.
    explicit Circuit(std::span<const int> dimensions) {
        for (const int dimension : dimensions) add_qudit("q" + std::to_string(qudits_.size()), dimension);
    }

    /// With qudits named q0, q1, ... of the dimensions in braces.
    Circuit(std::initializer_list<int> dimensions)
        : Circuit(std::span<const int>(std::data(dimensions), dimensions.size())) {}

    /// @name What it has
    /// @{

    [[nodiscard]] const std::vector<NamedQudit>& qudits() const noexcept { return qudits_; }  ///< In order.
    [[nodiscard]] const std::vector<std::string>& values() const noexcept { return values_; } ///< Names.
    [[nodiscard]] const std::vector<Step>& steps() const noexcept { return steps_; }          ///< In order.

    /// The dimensions of the qudits.
    [[nodiscard]] std::vector<int> dimensions() const {
        std::vector<int> list;
        for (const NamedQudit& qudit : qudits_) list.push_back(qudit.dimension);
        return list;
    }

    /// A qudit by its name. Throws std::out_of_range if there is none.
    [[nodiscard]] Wire wire(std::string_view name) const {
        const auto found = std::ranges::find(qudits_, name, &NamedQudit::name);
        if (found == qudits_.end()) throw std::out_of_range("no qudit is named " + std::string(name));
        return {static_cast<std::size_t>(found - qudits_.begin())};
    }

    /// A value by its name. Throws std::out_of_range if there is none.
    [[nodiscard]] Value value(std::string_view name) const {
        const auto found = std::ranges::find(values_, name);
        if (found == values_.end()) throw std::out_of_range("no value is named " + std::string(name));
        return {static_cast<std::size_t>(found - values_.begin())};
    }
    /// @}

    /// @name Recording
    /// Each takes what the function of its name takes, with a Wire for a Qudit. Throws std::invalid_argument
    /// for what that function would refuse, for a number that is not finite and for a place that is not
    /// there.
    /// @{

    /// Adds a qudit, which begins in level 0.
    /// @param name       unlike all others.
    /// @param dimension  2 to 10.
    Wire add_qudit(std::string name, int dimension) {
        detail::check_name(name);
        if (is_name(name)) throw std::invalid_argument("the name " + name + " is taken");
        if (dimension < 2 || dimension > 10)
            throw std::invalid_argument("a qudit of " + std::to_string(dimension) + " levels");
        qudits_.push_back({std::move(name), dimension});
        return {qudits_.size() - 1};
    }

    /// Names a value before it is read; a name that it has already is that value.
    Value add_value(std::string name) {
        detail::check_name(name);
        for (std::size_t i = 0; i < values_.size(); ++i)
            if (values_[i] == name) return {i};
        if (is_name(name)) throw std::invalid_argument("the name " + name + " is taken");
        values_.push_back(std::move(name));
        return {values_.size() - 1};
    }

    /// hadamard()
    Circuit& hadamard(Wire target, When when = {}) { return gate(Action::hadamard, {target}, 1, when); }
    /// inverse_hadamard()
    Circuit& inverse_hadamard(Wire target, When when = {}) { return gate(Action::inverse_hadamard, {target}, 1, when); }
    /// cycle()
    Circuit& cycle(Wire target, When when = {}) { return gate(Action::cycle, {target}, 1, when); }
    /// The power `fraction` of cycle().
    Circuit& cycle(Wire target, double fraction, When when = {}) {
        return gate(Action::cycle, {target}, fraction, when);
    }
    /// shift()
    Circuit& shift(Wire target, When when = {}) { return gate(Action::shift, {target}, 1, when); }
    /// The power `fraction` of shift().
    Circuit& shift(Wire target, double fraction, When when = {}) {
        return gate(Action::shift, {target}, fraction, when);
    }
    /// clock()
    Circuit& clock(Wire target, When when = {}) { return gate(Action::clock, {target}, 1, when); }
    /// The power `fraction` of clock().
    Circuit& clock(Wire target, double fraction, When when = {}) {
        return gate(Action::clock, {target}, fraction, when);
    }
    /// phase_rotate(), with a condition on a qudit at least.
    Circuit& phase_rotate(When when, double angle) { return gate(Action::phase_rotate, {}, angle, when); }
    /// swap_levels()
    Circuit& swap_levels(Wire first, Wire second, When when = {}) {
        return gate(Action::swap_levels, {first, second}, 1, when);
    }
    /// i_swap()
    Circuit& i_swap(Wire first, Wire second, When when = {}) { return gate(Action::i_swap, {first, second}, 1, when); }
    /// The power `fraction` of i_swap().
    Circuit& i_swap(Wire first, Wire second, double fraction, When when = {}) {
        return gate(Action::i_swap, {first, second}, fraction, when);
    }
    /// add()
    Circuit& add(Wire target, int steps, When when = {}) { return gate(Action::add, {target}, steps, when); }
    /// sum()
    Circuit& sum(Wire control, Wire target, When when = {}) { return gate(Action::sum, {control, target}, 1, when); }
    /// inverse_sum()
    Circuit& inverse_sum(Wire control, Wire target, When when = {}) {
        return gate(Action::inverse_sum, {control, target}, 1, when);
    }
    /// unitary(), which is taken apart now.
    Circuit& unitary(const std::vector<Wire>& targets, std::vector<Complex> matrix, When when = {}) {
        Step step{Action::unitary, places(targets), 1, std::move(when), {}, std::move(matrix), {}};
        return append(std::move(step));
    }

    /// measure() of one qudit, where conditions on values hold. Returns the value that it reads.
    Value measure(Wire target, std::string name, When when = {}) {
        return read(Action::measure, {target}, {std::move(name)}, std::move(when));
    }
    /// measure() of several qudits at once, with one name for each. Returns the first value.
    Value measure(const std::vector<Wire>& targets, std::vector<std::string> names, When when = {}) {
        return read(Action::measure, targets, std::move(names), std::move(when));
    }
    /// project(): asks whether the conditions on qudits hold, where those on values do.
    Value project(When when, std::string name) { return read(Action::project, {}, {std::move(name)}, std::move(when)); }
    /// reset(), where conditions on values hold. Returns the value of the level that it had.
    Value reset(Wire target, std::string name, When when = {}) {
        return read(Action::reset, {target}, {std::move(name)}, std::move(when));
    }

    /// depolarising() with probability p, where conditions on values hold.
    Circuit& depolarise(Wire target, double p, When when = {}) { return gate(Action::depolarise, {target}, p, when); }
    /// dephasing() with probability p, where conditions on values hold.
    Circuit& dephase(Wire target, double p, When when = {}) { return gate(Action::dephase, {target}, p, when); }
    /// amplitude_damping() by gamma, where conditions on values hold.
    Circuit& damp(Wire target, double gamma, When when = {}) { return gate(Action::damp, {target}, gamma, when); }

    /// Records one step.
    Circuit& append(Step step);

    /// Records the steps of another circuit. What has the same name is the same; other names are added.
    Circuit& append(const Circuit& other) {
        std::vector<Wire> onto;
        Circuit joined = *this;
        for (const NamedQudit& qudit : other.qudits_) {
            const auto found = std::ranges::find(joined.qudits_, qudit.name, &NamedQudit::name);
            onto.push_back(found == joined.qudits_.end()
                               ? joined.add_qudit(qudit.name, qudit.dimension)
                               : Wire{static_cast<std::size_t>(found - joined.qudits_.begin())});
        }
        joined.append(other, onto);
        return *this = std::move(joined);
    }

    /// Records the steps of another circuit on other qudits.
    /// @param other  its values are those of the same names here.
    /// @param onto   for each of its qudits one here, of the same dimension.
    Circuit& append(const Circuit& other, const std::vector<Wire>& onto);
    /// @}

    /// The circuit backwards, each step inverted. Throws std::logic_error if a step reads or is noise.
    [[nodiscard]] Circuit inverse() const;

    /// The circuit `times` times over, also 0 times.
    [[nodiscard]] Circuit repeat(std::size_t times) const {
        Circuit result = *this;
        result.steps_.clear();
        for (std::size_t i = 0; i < times; ++i) result.steps_.insert(result.steps_.end(), steps_.begin(), steps_.end());
        return result;
    }

    /// Whether a run needs a generator, to draw noise.
    [[nodiscard]] bool needs_generator() const {
        return std::ranges::any_of(steps_, [](const Step& step) {
            return step.action == Action::depolarise || step.action == Action::dephase;
        });
    }

    /// Runs the steps on given qudits, whatever their state.
    /// @param targets  one for each of qudits(), of its dimension. std::invalid_argument otherwise.
    /// @returns what was read.
    /// @throws std::logic_error  before the first step, if needs_generator().
    Readings run(const Targets& targets) const {
        if (needs_generator()) throw std::logic_error("a circuit with noise needs a generator to run");
        return run_steps(targets, nullptr);
    }

    /// Runs the steps on given qudits and draws their noise.
    /// @param targets    one for each of qudits(), of its dimension. std::invalid_argument otherwise.
    /// @param generator  asked for one uniform_number() by each step that is depolarising or dephasing.
    /// @returns what was read.
    template <BitGenerator Generator> Readings run(const Targets& targets, Generator&& generator) const {
        return run_steps(targets, [&generator] { return uniform_number(generator); });
    }

    /// Runs the steps on new qudits in level 0.
    [[nodiscard]] Run run() const {
        std::vector<Qudit> made = make_register(dimensions());
        Readings readings = run(made);
        return {std::move(made), std::move(readings)};
    }

    /// Runs the steps on new qudits in level 0 and draws their noise.
    /// @param generator  asked for one uniform_number() by each step that is depolarising or dephasing.
    template <BitGenerator Generator> [[nodiscard]] Run run(Generator&& generator) const {
        std::vector<Qudit> made = make_register(dimensions());
        Readings readings = run(made, generator);
        return {std::move(made), std::move(readings)};
    }

private:
    static std::vector<std::size_t> places(const std::vector<Wire>& wires) {
        std::vector<std::size_t> list;
        list.reserve(wires.size());
        for (const Wire wire : wires) list.push_back(wire.place);
        return list;
    }

    [[nodiscard]] bool is_name(std::string_view name) const {
        return std::ranges::find(qudits_, name, &NamedQudit::name) != qudits_.end() ||
               std::ranges::find(values_, name) != values_.end();
    }

    Circuit& gate(Action action, const std::vector<Wire>& targets, double amount, When& when) {
        return append(Step{action, places(targets), amount, std::move(when), {}, {}, {}});
    }

    Value read(Action action, const std::vector<Wire>& targets, std::vector<std::string> names, When when) {
        const std::size_t before = values_.size();
        Step step{action, places(targets), 1, std::move(when), {}, {}, {}};
        try {
            for (std::string& name : names) step.values.push_back(add_value(std::move(name)).place);
            const Value first{step.values.empty() ? before : step.values[0]};
            append(std::move(step));
            return first;
        } catch (const std::invalid_argument&) {
            values_.resize(before);
            throw;
        }
    }

    Readings run_steps(const Targets& targets, const std::function<double()>& uniform) const {
        if (detail::dimensions(targets) != dimensions())
            throw std::invalid_argument("the qudits have not the dimensions of the circuit");
        std::vector<int> numbers(values_.size());
        for (const Step& step : steps_)
            if (detail::holds(step, numbers)) detail::run(step, targets, numbers, uniform);
        return {values_, std::move(numbers)};
    }

    void check(const Step& step) const;

    std::vector<NamedQudit> qudits_;
    std::vector<std::string> values_;
    std::vector<Step> steps_;
};

inline void Circuit::check(const Step& step) const {
    const auto demand = [](bool holds, const char* what) {
        if (!holds) throw std::invalid_argument(what);
    };
    const detail::StepForm& form = detail::form_of(step.action);
    demand(form.targets == detail::StepForm::any ? !step.targets.empty() : step.targets.size() == form.targets,
           "another number of qudits than the step takes");
    demand(std::isfinite(step.amount), "a number that is not finite");
    for (std::size_t i = 0; i < step.targets.size(); ++i) {
        demand(step.targets[i] < qudits_.size(), "a qudit that the circuit has not");
        demand(std::ranges::count(step.targets, step.targets[i]) == 1, "a qudit is listed twice");
    }
    bool asks = false;
    for (const StepCondition& asked : step.when.all) {
        demand(asked.place < (asked.on_value ? values_.size() : qudits_.size()),
               "a condition on what the circuit has not");
        if (asked.on_value) continue;
        asks = true;
        demand(form.asks, "a step that reads or is noise has conditions on values only");
        demand(std::ranges::count(step.targets, asked.place) == 0, "a condition names a target of the step");
    }
    demand(asks || form.targets > 0, "a step without a qudit");
    demand(step.values.size() == (form.reads ? std::max<std::size_t>(step.targets.size(), 1) : 0),
           "another number of values than the step reads");
    for (const std::size_t value : step.values) demand(value < values_.size(), "a value that the circuit has not");
    if (step.action == Action::swap_levels || step.action == Action::i_swap)
        demand(qudits_[step.targets[0]].dimension == qudits_[step.targets[1]].dimension,
               "the qudits have different dimensions");
    if (form.amount == detail::StepForm::Amount::whole)
        demand(step.amount == std::trunc(step.amount) && std::abs(step.amount) < 1e9,
               "a number of steps that is not whole, or beyond a billion");
    if (form.amount == detail::StepForm::Amount::probability)
        demand(0 <= step.amount && step.amount <= 1, "a probability that is not in 0 .. 1");
}

inline Circuit& Circuit::append(Step step) {
    check(step);
    PreparedStep prepared;
    std::vector<int> of_targets;
    for (const std::size_t target : step.targets) of_targets.push_back(qudits_[target].dimension);
    if (step.action == Action::unitary)
        prepared.unitary.emplace(std::move(of_targets), step.matrix);
    else if (step.action == Action::depolarise)
        prepared.weyl = depolarising(of_targets[0], step.amount);
    else if (step.action == Action::dephase)
        prepared.weyl = dephasing(of_targets[0], step.amount);
    else if (step.action == Action::damp)
        prepared.kraus = amplitude_damping(of_targets[0], step.amount);
    step.prepared = std::make_shared<PreparedStep>(std::move(prepared));
    steps_.push_back(std::move(step));
    return *this;
}

inline Circuit& Circuit::append(const Circuit& other, const std::vector<Wire>& onto) {
    Circuit joined = *this;
    if (onto.size() != other.qudits_.size())
        throw std::invalid_argument("another number of qudits than the circuit to append has");
    for (std::size_t i = 0; i < onto.size(); ++i)
        if (onto[i].place >= qudits_.size() || qudits_[onto[i].place].dimension != other.qudits_[i].dimension)
            throw std::invalid_argument("no qudit of the dimension of " + other.qudits_[i].name);
    std::vector<std::size_t> values;
    for (const std::string& name : other.values_) values.push_back(joined.add_value(name).place);
    for (Step step : other.steps_) {
        for (std::size_t& target : step.targets) target = onto[target].place;
        for (std::size_t& value : step.values) value = values[value];
        for (StepCondition& asked : step.when.all)
            asked.place = asked.on_value ? values[asked.place] : onto[asked.place].place;
        joined.check(step);
        joined.steps_.push_back(std::move(step));
    }
    return *this = std::move(joined);
}

inline Circuit Circuit::inverse() const {
    Circuit result = *this;
    result.steps_.clear();
    for (std::size_t i = steps_.size(); i-- > 0;) result.append(detail::inverse(steps_[i]));
    return result;
}
} // namespace vantel

#endif // C++20
#endif
