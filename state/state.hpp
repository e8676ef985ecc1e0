/// The one implementation of IState, built once for each pair of largest dimension and qudit count.
#pragma once

#include <complex>
#include <cstdint>
#include <vector>

#include "state/basis_amplitude.hpp"
#include "state/istate.hpp"

namespace vantel::qudit {

/// A joint state whose labels are `Label`, a DitArray<D, N>. Bodies stand in one file a gate or readout,
/// each of which instantiates its members for all builds.
template <class Label> class State final : public IState {
public:
    using Entry = BasisAmplitude<Label>;

    /// The entries in the given order, less repeated labels, of which the first stands, and then less
    /// exact zeros. So a zero that comes first shadows a later amplitude of its label; that is meant.
    explicit State(const std::vector<BasisAmplitudeData>& entries);
    /// The same for entries that are packed for this build already.
    explicit State(PackedEntries entries);

    [[nodiscard]] std::uint64_t dimension() const override;
    [[nodiscard]] std::uint64_t qudit_dimension(int qudit) const override;
    [[nodiscard]] std::uint64_t num_qudits() const override;
    [[nodiscard]] std::vector<BasisAmplitudeData> basis_amplitudes() const override;

    [[nodiscard]] std::vector<QuditsProbability> probabilities(std::vector<int> qudits) const override;
    [[nodiscard]] std::vector<DensityMatrixEntry>
    reduced_density_matrix(std::vector<int> qudits) const override;
    std::vector<int> measure(std::vector<int> qudits) override;

    void phase_rotate(std::vector<Predicate> controls, float angle) override;
    void shift(std::vector<int> targets, std::vector<Predicate> controls) override;
    void shift(std::vector<int> targets, float fraction, std::vector<Predicate> controls) override;
    void cycle(std::vector<int> targets, float fraction, std::vector<Predicate> controls) override;
    void cycle(std::vector<int> targets, std::vector<Predicate> controls) override;
    void clock(std::vector<int> targets, std::vector<Predicate> controls) override;
    void clock(std::vector<int> targets, float fraction, std::vector<Predicate> controls) override;
    void hadamard(std::vector<int> targets, std::vector<Predicate> controls) override;
    void inverse_hadamard(std::vector<int> targets, std::vector<Predicate> controls) override;
    void swap(int first, int second, std::vector<Predicate> controls) override;
    void i_swap(int first, int second, float fraction, std::vector<Predicate> controls) override;

    [[nodiscard]] PackedEntries packed_amplitudes() const override;
    [[nodiscard]] std::vector<PackedOutcome>
    packed_probabilities(const std::vector<int>& qudits) const override;
    [[nodiscard]] std::vector<PackedElement>
    packed_density_matrix(const std::vector<int>& qudits) const override;

    /// Makes a list sparse again, in place: sorts it by label, sums the amplitudes of equal labels, and
    /// drops each entry neither part of whose amplitude exceeds 2^-23 in size. The drop fills each hole
    /// with the kept entry nearest the tail, so the list is not sorted afterwards; that is meant, as the
    /// stored order decides the order of every result. Raises nothing.
    static void reduce(std::vector<Entry>& list) noexcept;

    /// One pass of the transform over `input` for one target, without reduction: each selected entry
    /// becomes one child for each level k, ascending, in its place. `sign` is +1.0 or -1.0.
    static std::vector<Entry> hadamard_no_reduce(const std::vector<Entry>& input, int target,
                                                 const std::vector<Predicate>& controls, double sign);

    std::vector<Entry> amplitudes; ///< in the order that the last operation left

private:
    void transform(const std::vector<int>& targets, const std::vector<Predicate>& controls, double sign);
};

} // namespace vantel::qudit
