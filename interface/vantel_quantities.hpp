/**
 * @file vantel_quantities.hpp
 * @brief Header-only, beside vantel.hpp: what is computed of a state without measuring it: amplitudes,
 * expectation values, purity, entropy, fidelity and Schmidt coefficients.
 *
 * @code
 * vantel::Qudit a(3), b(5);
 * vantel::hadamard(a);
 * vantel::sum(a, b);
 * std::printf("%.4f\n", vantel::entropy(a));           // 1.0986, which is ln 3
 * std::printf("%.4f\n", vantel::amplitudes({a, b})[4].real()); // 0.5774, of the levels (1, 1)
 * @endcode
 *
 * Conventions:
 *
 * - **Qudits** are listed as one Qudit, as `{a, b}`, or as a range; see vantel::QuditList. P is the number of
 *   combinations of their levels and rho their reduced density matrix, all other qudits traced out.
 * - **Order**: vectors have P elements, matrices P x P row by row, the first listed qudit varying fastest.
 * - **Nothing is measured.** The listed qudits are merged into one joint state, as every readout does.
 * - **Accuracy**: rho comes with the precision of `float`, about 1e-7; all else is computed in `double`.
 * - **Cost**: each function asks for rho, which takes 8 P^2 bytes; eigenvalues take time as P^3.
 * - **Failures**: vantel::Error as from vantel::reduced_density_matrix(); std::invalid_argument for an empty
 *   list and for a vector or matrix of the wrong size; std::domain_error where the joint state is empty, so
 *   that the quantity does not exist.
 */
#ifndef VANTEL_QUANTITIES_HPP
#define VANTEL_QUANTITIES_HPP

#include "vantel_lists.hpp" // refuses what is older than C++20

#if __cplusplus >= 202002L || (defined(_MSVC_LANG) && _MSVC_LANG >= 202002L)

#include <algorithm>
#include <cmath>
#include <complex>
#include <concepts>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <numbers>
#include <ranges>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace vantel {
/// @cond internal
namespace detail {
/// The density matrix of a list, and that it has what quantities divide by: a positive trace.
inline DensityMatrix density(const QuditList& qudits) {
    if (qudits.begin() == qudits.end()) throw std::invalid_argument("a quantity of no qudits");
    DensityMatrix rho(qudits);
    double trace = 0;
    for (std::size_t i = 0; i < rho.side(); ++i) trace += rho(i, i).real();
    if (!(trace > 0)) throw std::domain_error("the joint state of the qudits is empty");
    return rho;
}

/// tr(rho^2), by the squares of the elements, which a Hermitian matrix allows.
inline double sum_of_squares(const DensityMatrix& rho) {
    double sum = 0;
    for (std::size_t i = 0; i < rho.side() * rho.side(); ++i)
        sum += std::norm(Complex(rho.real()[i], rho.imaginary()[i]));
    return sum;
}

inline void check_size(std::size_t given, std::size_t wanted) {
    if (given != wanted)
        throw std::invalid_argument(std::to_string(given) + " elements where the qudits need " +
                                    std::to_string(wanted));
}

/// The eigenvalues of a Hermitian matrix, the largest first, by Jacobi's method: a rotation in the plane of
/// each pair (p, q) makes their element 0, and sweeps over all pairs go on until all elements beside the
/// diagonal are rounding, which takes about ten, or until they would only turn rounding around. A phase makes
/// the element real first; then the rotation is that of a real matrix, of which the smaller of the two
/// possible angles is taken, so that the sweeps converge.
inline std::vector<double> eigenvalues(std::vector<Complex> matrix, std::size_t side) {
    const auto at = [&](std::size_t row, std::size_t column) -> Complex& { return matrix[row * side + column]; };
    double squares = 0;
    for (const Complex& element : matrix) squares += std::norm(element);
    const double rounding = 1e-14 * std::sqrt(squares);

    bool rotated = true;
    constexpr int most_sweeps = 60;
    for (int sweep = 0; rotated && sweep < most_sweeps; ++sweep) {
        rotated = false;
        for (std::size_t p = 0; p + 1 < side; ++p)
            for (std::size_t q = p + 1; q < side; ++q) {
                const double size = std::abs(at(p, q));
                if (!(size > rounding)) continue;
                rotated = true;
                const Complex phase = at(p, q) / size;
                const double cotangent = (at(q, q).real() - at(p, p).real()) / (2 * size); // of the double angle
                const double t = std::copysign(1.0, cotangent) / (std::abs(cotangent) + std::hypot(1.0, cotangent));
                const double c = 1 / std::hypot(1.0, t), s = t * c;
                for (std::size_t k = 0; k < side; ++k) {
                    const Complex x = at(k, p), y = at(k, q) * std::conj(phase);
                    at(k, p) = c * x - s * y;
                    at(k, q) = s * x + c * y;
                }
                for (std::size_t k = 0; k < side; ++k) {
                    const Complex x = at(p, k), y = at(q, k) * phase;
                    at(p, k) = c * x - s * y;
                    at(q, k) = s * x + c * y;
                }
            }
    }
    std::vector<double> values(side);
    for (std::size_t i = 0; i < side; ++i) values[i] = at(i, i).real();
    std::ranges::sort(values, std::greater{});
    return values;
}
} // namespace detail
/// @endcond

/// The purity tr(rho^2): 1 for a pure state, 1 / P for the completely mixed one.
/// @param qudits  at least one.
[[nodiscard]] inline double purity(const QuditList& qudits) { return detail::sum_of_squares(detail::density(qudits)); }

/// The spectrum: the P eigenvalues of rho, the largest first. They add up to 1, each in 0 .. 1 but for
/// rounding, which can take one below 0.
/// @param qudits  at least one.
[[nodiscard]] inline std::vector<double> spectrum(const QuditList& qudits) {
    const DensityMatrix rho = detail::density(qudits);
    std::vector<Complex> elements(rho.side() * rho.side());
    for (std::size_t i = 0; i < elements.size(); ++i) elements[i] = {rho.real()[i], rho.imaginary()[i]};
    return detail::eigenvalues(std::move(elements), rho.side());
}

/// The von Neumann entropy -tr(rho ln rho) in nats, 0 .. ln P: 0 for a pure state, ln P for the completely
/// mixed one. For a part of a pure state it is the entropy of entanglement with the rest.
/// @param qudits  at least one.
[[nodiscard]] inline double entropy(const QuditList& qudits) {
    double sum = 0;
    for (const double value : spectrum(qudits))
        if (value > 0) sum -= value * std::log(value);
    return sum;
}

/// The von Neumann entropy -tr(rho log2 rho) in bits, 0 .. log2 P; see entropy().
/// @param qudits  at least one.
[[nodiscard]] inline double entropy_in_bits(const QuditList& qudits) { return entropy(qudits) / std::numbers::ln2; }

/// The P amplitudes of a pure state, up to its global phase: the largest (of equal ones the first) is made
/// real and positive. With it in row m, amplitude r is rho(r, m) / sqrt(rho(m, m)).
/// @param qudits  at least one, and not entangled with others.
/// @throws std::domain_error  if the state is mixed, that is of a purity below 1 - 1e-5; the text has it.
[[nodiscard]] inline std::vector<Complex> amplitudes(const QuditList& qudits) {
    const DensityMatrix rho = detail::density(qudits);
    double trace = 0;
    std::size_t largest = 0;
    for (std::size_t i = 0; i < rho.side(); ++i) {
        trace += rho(i, i).real();
        if (rho(i, i).real() > rho(largest, largest).real()) largest = i;
    }
    constexpr double pure = 1 - 1e-5;
    const double purity = detail::sum_of_squares(rho) / (trace * trace);
    if (!(purity >= pure))
        throw std::domain_error("a mixed state has no amplitudes: its purity is " + std::to_string(purity));
    const double root = std::sqrt(static_cast<double>(rho(largest, largest).real()));
    std::vector<Complex> result(rho.side());
    for (std::size_t i = 0; i < result.size(); ++i) result[i] = Complex(rho(i, largest)) / root;
    return result;
}

/// The expectation value tr(rho A); that of an observable, whose matrix is Hermitian, is real but for
/// rounding.
/// @param qudits  at least one.
/// @param matrix  A, of real or complex elements: a contiguous range of P x P, row by row.
template <std::ranges::contiguous_range Matrix> [[nodiscard]] Complex
expectation(const QuditList& qudits,
            const Matrix& matrix) requires std::convertible_to<std::ranges::range_value_t<Matrix>, Complex> {
    const DensityMatrix rho = detail::density(qudits);
    detail::check_size(std::ranges::size(matrix), rho.side() * rho.side());
    Complex sum = 0;
    for (std::size_t row = 0; row < rho.side(); ++row)
        for (std::size_t column = 0; column < rho.side(); ++column)
            sum +=
                Complex(rho(row, column)) * static_cast<Complex>(std::ranges::data(matrix)[column * rho.side() + row]);
    return sum;
}

/// The expectation value tr(rho A) of a matrix in braces: `expectation(qubit, {1, 0, 0, -1})`.
/// @param qudits  at least one.
/// @param matrix  A, P x P elements row by row.
[[nodiscard]] inline Complex expectation(const QuditList& qudits, std::initializer_list<Complex> matrix) {
    return expectation(qudits, std::span<const Complex>(std::data(matrix), matrix.size()));
}

/// The fidelity <psi|rho|psi> with a pure state, 0 .. 1: the probability that a measurement finds psi.
/// @param qudits  at least one.
/// @param state   psi, P amplitudes of any norm but 0; the norm is divided out.
/// @throws std::invalid_argument  also for a norm that is 0 or not finite.
[[nodiscard]] inline double fidelity(const QuditList& qudits, std::span<const Complex> state) {
    const DensityMatrix rho = detail::density(qudits);
    detail::check_size(state.size(), rho.side());
    double norm = 0, sum = 0;
    for (std::size_t row = 0; row < rho.side(); ++row) {
        norm += std::norm(state[row]);
        for (std::size_t column = 0; column < rho.side(); ++column)
            sum += (std::conj(state[row]) * Complex(rho(row, column)) * state[column]).real();
    }
    if (!(norm > 0) || !std::isfinite(norm)) throw std::invalid_argument("a state whose norm is 0 or not finite");
    return sum / norm;
}

/// The fidelity with a pure state in braces: `fidelity(qubit, {1, Complex(0, 1)})`.
/// @param qudits  at least one.
/// @param state   psi, P amplitudes of any norm but 0.
[[nodiscard]] inline double fidelity(const QuditList& qudits, std::initializer_list<Complex> state) {
    return fidelity(qudits, std::span<const Complex>(std::data(state), state.size()));
}

/// The Schmidt coefficients of a pure state between two sides, the largest first: the positive s_i of
/// sum over i of s_i |left_i>|right_i>, as many as the side with fewer combinations has, their squares adding
/// up to 1. They are the roots of the eigenvalues of that side's density matrix, which is made from the
/// amplitudes of both sides, so that a coefficient that is 0 comes out below 1e-6.
///
/// Of large sides in a state that is known to be pure, the roots of spectrum() of the smaller one say the
/// same, to about 1e-3 near 0, without a matrix of both.
/// @param left   one side, at least one qudit.
/// @param right  the other, at least one and none of `left`.
/// @throws std::invalid_argument  also for a qudit on both sides.
/// @throws std::domain_error      if both sides together are not in a pure state, as amplitudes() does.
[[nodiscard]] inline std::vector<double> schmidt(const QuditList& left, const QuditList& right) {
    std::vector<std::reference_wrapper<const Qudit>> all(left.begin(), left.end());
    for (const Qudit& qudit : right) {
        for (const Qudit& other : left)
            if (qudit.handle() == other.handle()) throw std::invalid_argument("a qudit on both sides");
        all.push_back(qudit);
    }
    if (left.begin() == left.end() || right.begin() == right.end())
        throw std::invalid_argument("a side without qudits");
    const std::vector<Complex> state = amplitudes(all);

    // The amplitude of combination i on the smaller side and j on the larger stands at i step_i + j step_j.
    const std::size_t lefts = Shape(left).size(), rights = Shape(right).size();
    const auto [side, other, step_i, step_j] = lefts <= rights ? std::array{lefts, rights, std::size_t{1}, lefts}
                                                               : std::array{rights, lefts, lefts, std::size_t{1}};
    std::vector<Complex> matrix(side * side);
    for (std::size_t row = 0; row < side; ++row)
        for (std::size_t column = 0; column < side; ++column)
            for (std::size_t j = 0; j < other; ++j)
                matrix[row * side + column] +=
                    state[row * step_i + j * step_j] * std::conj(state[column * step_i + j * step_j]);
    std::vector<double> values = detail::eigenvalues(std::move(matrix), side);
    for (double& value : values) value = std::sqrt(std::max(value, 0.0));
    return values;
}
} // namespace vantel

#endif // C++20
#endif
