/**
 * @file vantel_noise.hpp
 * @brief Header-only, beside vantel.hpp: noise on qudits, as trajectories: each call makes one of the things
 * that can happen, by its probability, so that a mean over many runs is the channel.
 *
 * @code
 * vantel::Qudit qutrit(3);
 * std::mt19937_64 generator(1);
 * vantel::depolarising(3, 0.01).apply(qutrit, generator); // mostly nothing
 * vantel::amplitude_damping(3, 0.1).apply(qutrit);        // draws from the system's randomness
 * @endcode
 *
 * Two kinds of channels, of d levels:
 *
 * - A **WeylChannel** is a mixture of the d^2 Weyl operators X^a Z^b, powers of cycle() and clock(). Which
 * one is drawn by a generator of the caller, so that runs can be repeated; the state stays pure, and its list
 * as long as it was.
 * - A **KrausChannel** is any channel, by its Kraus operators. It entangles the qudit with helpers and
 * measures them: a draw from the system's randomness, which collapses the state. Helpers take one or two of
 * the ten places, and a qubit one more, for the time of the call.
 *
 * Matrices are d x d, row by row; std::invalid_argument for numbers that are no channel, vantel::Error as the
 * gates throw it.
 */
#ifndef VANTEL_NOISE_HPP
#define VANTEL_NOISE_HPP

#include "vantel_random.hpp"
#include "vantel_unitary.hpp" // refuses what is older than C++20

#if __cplusplus >= 202002L || (defined(_MSVC_LANG) && _MSVC_LANG >= 202002L)

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <functional>
#include <numbers>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace vantel {
/// A Weyl operator X^shifts Z^clocks: the clock first, then whole cycles. {0, 0} is no error at all.
struct Weyl {
    int shifts = 0;                               ///< 0 .. d - 1
    int clocks = 0;                               ///< 0 .. d - 1
    bool operator==(const Weyl&) const = default; ///< whether both powers are equal

    /// Applies it.
    void apply(Qudit& target) const {
        if (clocks != 0) clock(target, clocks);
        add(target, shifts);
    }
};

/// rho goes to the sum over a and b of p_ab W rho W^-1 with W = X^a Z^b.
class WeylChannel {
public:
    /// @param dimension      d, 2 to 10.
    /// @param probabilities  d^2 numbers from 0 on, which add up to 1 within 1e-6; p_ab stands at a + d b.
    WeylChannel(int dimension, std::vector<double> probabilities)
        : dimension_(dimension), probabilities_(std::move(probabilities)) {
        double sum = 0;
        bool good = 2 <= dimension && dimension <= 10 &&
                    probabilities_.size() == static_cast<std::size_t>(dimension) * static_cast<std::size_t>(dimension);
        for (const double probability : probabilities_) {
            good = good && probability >= 0;
            sum += probability;
        }
        if (!good || !(std::abs(sum - 1) <= 1e-6))
            throw std::invalid_argument("a Weyl channel needs a probability for each of its d^2 operators, "
                                        "which add up to 1 and not to " +
                                        std::to_string(sum));
    }

    [[nodiscard]] int dimension() const noexcept { return dimension_; } ///< d

    /// The probabilities as they were given.
    [[nodiscard]] const std::vector<double>& probabilities() const noexcept { return probabilities_; }

    /// Which operator a number u in [0, 1) draws: the first with u below the sum of the probabilities up to
    /// it. An operator of probability 0 never is.
    [[nodiscard]] Weyl draw(double u) const noexcept {
        std::size_t drawn = 0;
        for (std::size_t i = 0; i < probabilities_.size(); ++i) {
            if (probabilities_[i] > 0) drawn = i; // also where rounding leaves u above all sums
            u -= probabilities_[i];
            if (u < 0) break;
        }
        const int number = static_cast<int>(drawn);
        return {number % dimension_, number / dimension_};
    }

    /// Draws an operator.
    /// @param generator  asked for one uniform_number().
    template <BitGenerator Generator> [[nodiscard]] Weyl draw(Generator&& generator) const {
        return draw(uniform_number(generator));
    }

    /// Draws an operator and applies it. Returns what was drawn.
    /// @param target     a qudit of dimension().
    /// @param generator  asked for one uniform_number().
    template <BitGenerator Generator> Weyl apply(Qudit& target, Generator&& generator) const {
        if (target.dimension() != dimension_)
            throw std::invalid_argument("the qudit has not the dimension of the channel");
        const Weyl drawn = draw(generator);
        drawn.apply(target);
        return drawn;
    }

private:
    int dimension_;
    std::vector<double> probabilities_;
};

/// @cond internal
namespace detail {
inline void check_noise(int dimension, double probability) {
    if (dimension < 2 || dimension > 10 || !(probability >= 0 && probability <= 1))
        throw std::invalid_argument("noise on " + std::to_string(dimension) + " levels with a probability of " +
                                    std::to_string(probability));
}

/// No error with probability 1 - p; every `step`-th of the other operators has an equal share of p.
inline WeylChannel mixture(int dimension, double p, std::size_t step) {
    check_noise(dimension, p);
    const auto d = static_cast<std::size_t>(dimension);
    const std::size_t errors = (d * d - 1) / step;
    std::vector<double> probabilities(d * d);
    for (std::size_t i = 1; i <= errors; ++i) probabilities[i * step] = p / static_cast<double>(errors);
    probabilities[0] = 1 - p;
    return {dimension, std::move(probabilities)};
}
} // namespace detail
/// @endcond

/// Depolarising noise: with probability p one of the d^2 - 1 Weyl operators that are errors, all equally
/// likely. rho goes to (1 - q) rho + q 1 / d, with q = p d^2 / (d^2 - 1).
/// @param dimension  d, 2 to 10.
/// @param p          0 to 1.
[[nodiscard]] inline WeylChannel depolarising(int dimension, double p) { return detail::mixture(dimension, p, 1); }

/// Dephasing noise: with probability p one of the d - 1 powers of clock(), all equally likely. Elements
/// beside the diagonal of rho are multiplied by 1 - p d / (d - 1).
/// @param dimension  d, 2 to 10.
/// @param p          0 to 1.
[[nodiscard]] inline WeylChannel dephasing(int dimension, double p) {
    return detail::mixture(dimension, p, static_cast<std::size_t>(dimension));
}

/// rho goes to the sum over l of K_l rho K_l*, for up to 100 Kraus operators.
class KrausChannel {
public:
    /// @param dimension  d, 2 to 10.
    /// @param operators  1 to 100 matrices, the sum of whose K* K is the identity, within
    ///                   Unitary::tolerance in each element.
    KrausChannel(int dimension, std::vector<std::vector<Complex>> operators)
        : operators_(std::move(operators)), helpers_(helpers(operators_.size())),
          isometry_(isometry(dimension, operators_, helpers_)) {}

    [[nodiscard]] int dimension() const noexcept { return isometry_.dimensions()[0]; } ///< d

    /// The operators as they were given.
    [[nodiscard]] const std::vector<std::vector<Complex>>& operators() const noexcept { return operators_; }

    /// Applies one of the operators, K_l by its probability tr(K_l rho K_l*), and normalises the state.
    /// @param target  a qudit of dimension().
    /// @returns l.
    std::size_t apply(Qudit& target) const {
        std::vector<Qudit> helpers = make_register(helpers_);
        std::vector<std::reference_wrapper<Qudit>> targets{target};
        for (Qudit& helper : helpers) {
            join(target, helper);
            targets.emplace_back(helper);
        }
        isometry_.apply(targets);
        const std::vector<int> levels = measure(helpers);
        const std::size_t found = Shape(helpers).row(levels);
        while (!helpers.empty()) helpers.pop_back(); // the last comer first
        return found;
    }

private:
    /// The dimensions of qudits with enough levels for a number of each operator.
    static std::vector<int> helpers(std::size_t operators) {
        if (operators == 0 || operators > 100)
            throw std::invalid_argument(std::to_string(operators) + " Kraus operators, where 1 to 100 are right");
        const auto count = static_cast<int>(operators);
        return count > 10 ? std::vector{10, std::max((count + 9) / 10, 2)} : std::vector{std::max(count, 2)};
    }

    /// |v, 0> goes to the sum over l of K_l |v> |l>.
    static Unitary isometry(int dimension, const std::vector<std::vector<Complex>>& operators,
                            std::vector<int> helpers) {
        const auto d = static_cast<std::size_t>(dimension);
        std::size_t rows = d;
        for (const int levels : helpers) rows *= static_cast<std::size_t>(levels);
        std::vector<Complex> matrix;
        for (const std::vector<Complex>& one : operators) {
            if (dimension < 2 || one.size() != d * d)
                throw std::invalid_argument("a Kraus operator of another size than d x d");
            matrix.insert(matrix.end(), one.begin(), one.end());
        }
        matrix.resize(rows * d);
        helpers.insert(helpers.begin(), dimension);
        return Unitary::of_columns(std::move(helpers), d, matrix);
    }

    std::vector<std::vector<Complex>> operators_;
    std::vector<int> helpers_;
    Unitary isometry_;
};

/// Amplitude damping: level v holds v quanta, each of which is lost with probability gamma, alone. K_l takes
/// level v to v - l, with the root of (v over l) gamma^l (1 - gamma)^(v - l).
/// @param dimension  d, 2 to 10.
/// @param gamma      0 to 1.
[[nodiscard]] inline KrausChannel amplitude_damping(int dimension, double gamma) {
    detail::check_noise(dimension, gamma);
    const auto d = static_cast<std::size_t>(dimension);
    std::vector<std::vector<Complex>> operators(d, std::vector<Complex>(d * d));
    for (std::size_t v = 0; v < d; ++v) {
        double ways = 1;
        for (std::size_t l = 0; l <= v; ++l) {
            operators[l][(v - l) * d + v] = std::sqrt(ways * std::pow(gamma, static_cast<double>(l)) *
                                                      std::pow(1 - gamma, static_cast<double>(v - l)));
            ways *= static_cast<double>(v - l) / static_cast<double>(l + 1);
        }
    }
    return {dimension, std::move(operators)};
}

/// A Weyl channel as a Kraus channel: K = the root of p_ab times X^a Z^b, those of probability 0 left out.
[[nodiscard]] inline KrausChannel kraus(const WeylChannel& channel) {
    const auto d = static_cast<std::size_t>(channel.dimension());
    std::vector<std::vector<Complex>> operators;
    for (std::size_t i = 0; i < d * d; ++i) {
        if (channel.probabilities()[i] <= 0) continue;
        std::vector<Complex>& matrix = operators.emplace_back(d * d);
        for (std::size_t v = 0; v < d; ++v)
            matrix[(v + i % d) % d * d + v] =
                std::polar(std::sqrt(channel.probabilities()[i]),
                           2 * std::numbers::pi * static_cast<double>(v * (i / d) % d) / static_cast<double>(d));
    }
    return {channel.dimension(), std::move(operators)};
}
} // namespace vantel

#endif // C++20
#endif
