/// What `scripts/bench peers` asks of the library and of those that are held beside it.
#pragma once

#include <cmath>
#include <complex>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

namespace peers {
using Amplitude = std::complex<double>;

enum class Act {
    anew, ///< all qudits in level 0, in memory that was just asked for
    fourier,
    inverse_fourier,
    cycle,
    clock,
    phase,
    swap,
    i_swap,
    sum,           ///< of a control and a target, by the companion
    transform,     ///< the Fourier transform of the whole register
    probabilities, ///< of all qudits
    matrix,        ///< of the listed qudits
    pair           ///< two qubits of their own: made, entangled, measured, freed
};

struct Step {
    Act act;
    std::vector<std::size_t> qudits;               ///< targets, or what is read
    float amount;                                  ///< a fraction or an angle
    std::vector<std::pair<std::size_t, int>> when; ///< qudits and the levels that they must have
};

/// A register of qudits of one dimension; the first qudit varies fastest where amplitudes stand in a row.
struct Register {
    std::size_t dimension;
    std::size_t qudits;

    [[nodiscard]] std::size_t stride(std::size_t qudit) const {
        std::size_t stride = 1;
        for (std::size_t i = 0; i < qudit; ++i) stride *= dimension;
        return stride;
    }
    [[nodiscard]] std::size_t size() const { return stride(qudits); }
};

class Contender {
public:
    Contender() = default;
    Contender(const Contender&) = delete;
    Contender& operator=(const Contender&) = delete;
    virtual ~Contender() = default;

    /// Takes over a state by all of its amplitudes.
    virtual void load(const std::vector<Amplitude>& amplitudes) = 0;
    virtual void apply(const Step& step) = 0;

    /// What the gates have left.
    [[nodiscard]] virtual std::vector<Amplitude> amplitudes() const = 0;

    /// What the last readout gave: probabilities, or a matrix row by row.
    [[nodiscard]] virtual std::vector<Amplitude> read() const { throw std::logic_error("reads nothing"); }
};

std::unique_ptr<Contender> library(const Register& of);
std::unique_ptr<Contender> by_hand(const Register& of);
std::unique_ptr<Contender> same_bits(const Register& of);    ///< two lists of numbers
std::unique_ptr<Contender> same_entries(const Register& of); ///< one list of 32 bytes an entry
std::unique_ptr<Contender> bare_pass(const Register& of);
std::unique_ptr<Contender> by_eigen(const Register& of);
std::unique_ptr<Contender> by_fftw(const Register& of);
std::unique_ptr<Contender> by_libquantum(const Register& of);

/// A pair in four numbers, drawn by a generator that the system's randomness seeds.
void pair_by_hand();

/// Calls with a dimension that the compiler knows, 2 to 10.
template <class Call> void with_dimension(std::size_t dimension, Call call) {
    switch (dimension) {
    case 2: return call(std::integral_constant<std::size_t, 2>());
    case 3: return call(std::integral_constant<std::size_t, 3>());
    case 4: return call(std::integral_constant<std::size_t, 4>());
    case 5: return call(std::integral_constant<std::size_t, 5>());
    case 6: return call(std::integral_constant<std::size_t, 6>());
    case 7: return call(std::integral_constant<std::size_t, 7>());
    case 8: return call(std::integral_constant<std::size_t, 8>());
    case 9: return call(std::integral_constant<std::size_t, 9>());
    case 10: return call(std::integral_constant<std::size_t, 10>());
    default: throw std::invalid_argument("a dimension that no qudit has");
    }
}

/// The element of the Fourier gate that takes level v to level k.
inline Amplitude fourier_factor(std::size_t dimension, std::size_t k, std::size_t v, bool inverse) {
    const double turn = 2 * 3.141592653589793 * static_cast<double>(k * v % dimension);
    return std::polar(1 / std::sqrt(static_cast<double>(dimension)),
                      (inverse ? turn : -turn) / static_cast<double>(dimension));
}
} // namespace peers
