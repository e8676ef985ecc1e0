/// The interface of a joint state: what the rest of the library sees of it, without its build parameters.
#pragma once

#include "state/entries.hpp"

namespace vantel::qudit {
/// One control condition, by qudit index. A list of them is joined by AND; an empty list always holds.
struct Predicate {
    int qudit_index;
    int value;     ///< the level to compare with; a level that the qudit cannot have is never equal
    bool is_equal; ///< true: the levels must be equal; false: they must differ
};

/// A gate with its arguments. It does not own its lists: two allocations cost more than a gate on a few entries.
struct Gate {
    enum Kind {
        phase_rotate,
        shift,
        fractional_shift,
        cycle,
        fractional_cycle,
        clock,
        fractional_clock,
        hadamard,
        inverse_hadamard,
        swap,
        i_swap
    };

    Kind kind;
    float number = 0;               ///< the fraction, or the angle of `phase_rotate`
    std::span<const int> targets{}; ///< two for an exchange, none for `phase_rotate`
    std::span<const Predicate> controls{};
};

/// One joint outcome: a level per listed qudit, in list order, and its probability.
struct QuditsProbability {
    std::vector<int> qudit_values;
    double probability;
};

/// One element of a reduced density matrix, keyed by the levels of the kept qudits.
struct DensityMatrixEntry {
    std::vector<int> row_values;    ///< ket side
    std::vector<int> column_values; ///< bra side
    std::complex<double> element;
};

/// A joint state of num_qudits() qudits: a sparse list of basis states with complex amplitudes.
///
/// Results stand in first-seen order of the stored entries. Indices are trusted; one out of range reads as a qudit that
/// has one level only, and only `probabilities` and `measure` test theirs. A state whose entries have all been dropped
/// stays usable: it has empty tables, and its qudits report dimension 0.
///
/// Every gate takes `controls`, the conditions under which it acts on an entry, and refuses a target that is also a
/// control with TargetControlOverlap before any change. Gates with a target list act for each target in turn, a
/// repeated one repeatedly.
class IState {
public:
    using Targets = std::vector<int>;
    using Controls = std::vector<Predicate>;

    virtual ~IState() = default;
    /// The largest dimension D that the build holds, whatever qudits the state has now.
    [[nodiscard]] virtual std::uint64_t dimension() const = 0;
    /// The number of levels of one qudit; 0 in an empty state.
    [[nodiscard]] virtual std::uint64_t qudit_dimension(int qudit) const = 0;
    [[nodiscard]] virtual std::uint64_t num_qudits() const = 0;
    /// The entries, unpacked, in stored order.
    [[nodiscard]] virtual std::vector<BasisAmplitudeData> basis_amplitudes() const = 0;
    /// The joint outcomes of the listed qudits with their summed squared moduli; never normalised.
    /// @throws std::out_of_range "qudit index out of range" for an index at or beyond num_qudits()
    [[nodiscard]] virtual std::vector<QuditsProbability> probabilities(std::vector<int> qudits) const = 0;
    /// The elements of the reduced density matrix of the listed qudits that some pair of entries reaches.
    [[nodiscard]] virtual std::vector<DensityMatrixEntry> reduced_density_matrix(std::vector<int> qudits) const = 0;
    /// Draws one joint outcome of the listed qudits, projects onto it and renormalises.
    /// @return the drawn levels, in list order; zeros from an empty state
    /// @throws as `probabilities`, and what the system's random source raises; the state stands then
    virtual std::vector<int> measure(std::vector<int> qudits) = 0;
    /// Multiplies selected amplitudes by exp(i angle), with single-precision sine and cosine.
    virtual void phase_rotate(Controls controls, float angle) { act({Gate::phase_rotate, angle, {}, controls}); }
    /// Level v goes to (v + d - 1) mod d.
    virtual void shift(Targets targets, Controls controls) { act({Gate::shift, 0, targets, controls}); }
    /// A power of `shift`, by way of the Fourier basis.
    virtual void shift(Targets targets, float fraction, Controls controls) {
        act({Gate::fractional_shift, fraction, targets, controls});
    }
    /// A power of `cycle`, by way of the Fourier basis.
    virtual void cycle(Targets targets, float fraction, Controls controls) {
        act({Gate::fractional_cycle, fraction, targets, controls});
    }
    /// Level v goes to (v + 1) mod d.
    virtual void cycle(Targets targets, Controls controls) { act({Gate::cycle, 0, targets, controls}); }
    /// Multiplies by exp(2 pi i v / d).
    virtual void clock(Targets targets, Controls controls) { act({Gate::clock, 0, targets, controls}); }
    /// Multiplies by exp(2 pi i (v fraction) / d), with v fraction in single precision.
    virtual void clock(Targets targets, float fraction, Controls controls) {
        act({Gate::fractional_clock, fraction, targets, controls});
    }
    /// Level v goes to the sum over k of exp(2 pi i (d - k) v / d) / sqrt(d) times level k.
    virtual void hadamard(Targets targets, Controls controls) { act({Gate::hadamard, 0, targets, controls}); }
    /// `hadamard` with the opposite sign of the exponent.
    virtual void inverse_hadamard(Targets targets, Controls controls) {
        act({Gate::inverse_hadamard, 0, targets, controls});
    }
    /// Exchanges the dits of two qudits. @throws DifferentDimensions before any change
    virtual void swap(int first, int second, Controls controls) {
        const std::array targets{first, second};
        act({Gate::swap, 0, targets, controls});
    }
    /// Levels (p, q), p != q, go to cos t (p, q) + i sin t (q, p) with t = fraction pi / 2.
    /// @throws DifferentDimensions before any change
    virtual void i_swap(int first, int second, float fraction, Controls controls) {
        const std::array targets{first, second};
        act({Gate::i_swap, fraction, targets, controls});
    }

    // Behind those operations, whose order is fixed, stand the doors that the layers above use: lists by value and an
    // allocation for the levels of each entry would cost more than all the rest.

    /// The gates above as one operation, which they all go through.
    virtual void act(const Gate& gate) = 0;
    /// basis_amplitudes(), still packed and still the state's own: good until the state changes.
    [[nodiscard]] virtual PackedEntries packed_amplitudes() const = 0;

protected:
    IState() = default;
    IState(const IState&) = default;
    IState& operator=(const IState&) = default;
};
} // namespace vantel::qudit
