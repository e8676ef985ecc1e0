/**
 * @file vantel_ensemble.hpp
 * @brief Header-only, beside vantel_circuit.hpp: many independent runs of a circuit, on all processors.
 *
 * @code
 * vantel::Circuit circuit{3};
 * circuit.hadamard({0}).depolarise({0}, 0.1).inverse_hadamard({0}).measure(vantel::Wire{0}, "m");
 * const vantel::Ensemble runs = vantel::ensemble(circuit, 10000, 0, 2024);
 * std::cout << runs << runs.share("m", 0) << '\n'; // about 1 - 0.1 6 / 8
 * @endcode
 *
 * **What can be repeated.** Where a circuit measures its qudits last, and neither projects nor resets nor
 * damps, nothing is collapsed: shots are drawn from tables of probabilities. Then every draw is that of
 * vantel::generator_of_shot(), and the same seed gives the same counts, whatever the number of threads. A
 * circuit that collapses its state midway draws from the system's randomness; Ensemble::repeatable() says so.
 */
#ifndef VANTEL_ENSEMBLE_HPP
#define VANTEL_ENSEMBLE_HPP

#include "vantel_circuit.hpp" // refuses what is older than C++20
#include "vantel_sampling.hpp"

#if __cplusplus >= 202002L || (defined(_MSVC_LANG) && _MSVC_LANG >= 202002L)

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace vantel {
/// How often many runs of a circuit read what.
class Ensemble {
public:
    /// Puts together what ensemble() found.
    Ensemble(std::vector<std::string> names, std::map<std::vector<int>, std::size_t> counts, bool repeatable)
        : names_(std::move(names)), counts_(std::move(counts)), repeatable_(repeatable) {
        for (const auto& [numbers, shots] : counts_) shots_ += shots;
    }

    /// The names of the circuit's values.
    [[nodiscard]] const std::vector<std::string>& names() const noexcept { return names_; }

    /// For each combination of numbers that was read, in the order of names(): how often, at least once.
    [[nodiscard]] const std::map<std::vector<int>, std::size_t>& counts() const noexcept { return counts_; }

    [[nodiscard]] std::size_t shots() const noexcept { return shots_; } ///< How many runs there were.

    /// Whether the same seed gives the same counts: no run drew from the system's randomness.
    [[nodiscard]] bool repeatable() const noexcept { return repeatable_; }

    /// How often a combination of numbers was read, one for each of names(); 0 if never.
    [[nodiscard]] std::size_t count(const std::vector<int>& numbers) const {
        const auto found = counts_.find(numbers);
        return found == counts_.end() ? 0 : found->second;
    }

    /// The share of the runs in which a value was this number, 0 .. 1; of no runs it is 0.
    /// @throws std::out_of_range  if there is no value of this name.
    [[nodiscard]] double share(std::string_view name, int number) const {
        const auto found = std::ranges::find(names_, name);
        if (found == names_.end()) throw std::out_of_range("no value is named " + std::string(name));
        std::size_t sum = 0;
        for (const auto& [numbers, shots] : counts_)
            if (numbers[static_cast<std::size_t>(found - names_.begin())] == number) sum += shots;
        return shots_ == 0 ? 0 : static_cast<double>(sum) / static_cast<double>(shots_);
    }

    /// A line of names, and one for each combination that was read with how often; then, if it is so, a line
    /// that says that the counts cannot be repeated.
    friend std::ostream& operator<<(std::ostream& stream, const Ensemble& ensemble) {
        std::string text;
        for (const std::string& name : ensemble.names_) text += name + ' ';
        text += "shots\n";
        for (const auto& [numbers, shots] : ensemble.counts_) {
            for (std::size_t i = 0; i < numbers.size(); ++i) {
                const std::string number = std::to_string(numbers[i]);
                text +=
                    std::string(ensemble.names_[i].size() - std::min(ensemble.names_[i].size(), number.size()), ' ') +
                    number + ' ';
            }
            text += std::to_string(shots) + '\n';
        }
        if (!ensemble.repeatable_) text += "cannot be repeated: the circuit collapses its state midway\n";
        return stream << text;
    }

private:
    std::vector<std::string> names_;
    std::map<std::vector<int>, std::size_t> counts_;
    std::size_t shots_ = 0;
    bool repeatable_;
};

/// @cond internal
namespace detail {
/// A circuit whose measurements are all at its end, in two parts.
struct MeasuredLast {
    Circuit gates;
    std::vector<std::size_t> qudits, values; ///< what is measured, and the value of each
};

/// Takes the measurements out, if no later step touches what they measure or asks what they read, and nothing
/// else collapses the state.
inline std::optional<MeasuredLast> measured_last(const Circuit& circuit) {
    MeasuredLast result;
    for (const Circuit::NamedQudit& qudit : circuit.qudits()) result.gates.add_qudit(qudit.name, qudit.dimension);
    const auto is_measured = [&](std::size_t place) {
        return std::ranges::find(result.qudits, place) != result.qudits.end();
    };
    for (const Step& step : circuit.steps()) {
        if (step.action == Action::project || step.action == Action::reset || step.action == Action::damp ||
            std::ranges::any_of(step.targets, is_measured) ||
            std::ranges::any_of(step.when.all,
                                [&](const StepCondition& asked) { return asked.on_value || is_measured(asked.place); }))
            return {};
        if (step.action == Action::measure) {
            for (const std::size_t value : step.values)
                if (std::ranges::find(result.values, value) != result.values.end()) return {};
            result.qudits.insert(result.qudits.end(), step.targets.begin(), step.targets.end());
            result.values.insert(result.values.end(), step.values.begin(), step.values.end());
        } else
            result.gates.append(step);
    }
    return result;
}
} // namespace detail
/// @endcond

/// The runs of an ensemble by their numbers, so that they can be made in parts: by several processes, or with
/// a look at the clock in between. Parts that do not overlap add up to the ensemble of all, with the same
/// counts where they can be repeated. It holds no reference and does not change; threads can share it.
class Trials {
public:
    /// @param circuit  what runs.
    /// @param seed     of all draws that are not the system's.
    /// @throws  what the circuit's run throws, if it is run but once because its draws come last.
    explicit Trials(Circuit circuit, std::uint64_t seed = 0)
        : circuit_(std::move(circuit)), seed_(seed), last_(detail::measured_last(circuit_)) {
        if (!last_ || circuit_.needs_generator() || last_->qudits.empty()) return;
        // What the shots of a circuit without noise have in common is its last state.
        const Run run = last_->gates.run();
        table_ = std::make_shared<const OutcomeSampler>(measured(run.qudits));
    }

    /// Whether the same seed gives the same counts: no run draws from the system's randomness.
    [[nodiscard]] bool repeatable() const noexcept { return last_.has_value(); }

    /// Makes the runs of numbers `from` up to but not `to`.
    /// @param from     the number of the first run.
    /// @param to       the number behind that of the last; none are made unless it is above `from`.
    /// @param threads  how many share them; 0 for as many as the machine has processors.
    /// @throws Error, or what else the circuit's run throws; that of the first thread that failed, once all
    /// ended.
    [[nodiscard]] Ensemble run(std::size_t from, std::size_t to, unsigned threads = 0) const {
        const std::size_t shots = to > from ? to - from : 0;
        const std::size_t parts = std::clamp<std::size_t>(threads != 0 ? threads : std::thread::hardware_concurrency(),
                                                          1, std::max<std::size_t>(shots, 1));
        const auto border = [&](std::size_t part) {
            return from + shots / parts * part + std::min(part, shots % parts);
        };
        std::vector<std::future<Tally>> others;
        for (std::size_t part = 1; part < parts; ++part)
            others.push_back(std::async(std::launch::async, [this, first = border(part), end = border(part + 1)] {
                return tally(first, end);
            }));
        Tally counts = tally(from, from + (shots > 0 ? border(1) - from : 0));
        for (std::future<Tally>& other : others)
            for (const auto& [numbers, found] : other.get()) counts[numbers] += found;
        return {circuit_.values(), std::move(counts), repeatable()};
    }

private:
    using Tally = std::map<std::vector<int>, std::size_t>;

    [[nodiscard]] std::vector<std::reference_wrapper<const Qudit>> measured(const std::vector<Qudit>& qudits) const {
        std::vector<std::reference_wrapper<const Qudit>> list;
        for (const std::size_t place : last_->qudits) list.emplace_back(qudits[place]);
        return list;
    }

    [[nodiscard]] std::vector<int> numbers_of(std::span<const int> levels) const {
        std::vector<int> numbers(circuit_.values().size());
        for (std::size_t i = 0; i < levels.size(); ++i) numbers[last_->values[i]] = levels[i];
        return numbers;
    }

    [[nodiscard]] Tally tally(std::size_t from, std::size_t to) const {
        if (table_) return tally_of_table(from, to);
        if (last_ && last_->qudits.empty()) return to > from ? Tally{{numbers_of({}), to - from}} : Tally{};
        Tally counts;
        for (std::size_t shot = from; shot < to; ++shot) {
            auto generator = generator_of_shot(seed_, shot);
            if (!last_)
                ++counts[circuit_.run(generator).readings.numbers()];
            else {
                const Run run = last_->gates.run(generator);
                ++counts[numbers_of(sample(measured(run.qudits), 1, generator)[0])];
            }
        }
        return counts;
    }

    /// A generator takes longer to set up than a shot of a table, so that it draws a block of them.
    [[nodiscard]] Tally tally_of_table(std::size_t from, std::size_t to) const {
        constexpr std::size_t block = 1 << 16;
        constexpr std::size_t numbers_of_a_shot = 2;
        std::vector<std::size_t> rows(table_->size());
        for (std::size_t shot = from; shot < to;) {
            auto generator = generator_of_shot(seed_, shot / block);
            generator.discard(numbers_of_a_shot * (shot % block));
            for (const std::size_t end = std::min(to, (shot / block + 1) * block); shot < end; ++shot)
                ++rows[(*table_)(generator)];
        }
        Tally counts;
        for (std::size_t row = 0; row < rows.size(); ++row)
            if (rows[row] > 0) counts[numbers_of(table_->levels(row))] = rows[row];
        return counts;
    }

    Circuit circuit_;
    std::uint64_t seed_;
    std::optional<detail::MeasuredLast> last_;
    std::shared_ptr<const OutcomeSampler> table_; ///< of a circuit without noise that measures last
};

/// Runs a circuit many times from level 0, each run independent of all others.
/// @param circuit  what runs.
/// @param shots    how many runs.
/// @param threads  how many share them; 0 for as many as the machine has processors.
/// @param seed     of all draws that are not the system's.
/// @throws Error, or what else the circuit's run throws; that of the first thread that failed, once all
/// ended.
[[nodiscard]] inline Ensemble ensemble(const Circuit& circuit, std::size_t shots, unsigned threads = 0,
                                       std::uint64_t seed = 0) {
    return Trials(circuit, seed).run(0, shots, threads);
}
} // namespace vantel

#endif // C++20
#endif
