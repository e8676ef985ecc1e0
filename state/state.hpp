/// The one implementation of IState, built once for each pair of largest dimension and qudit count.
#pragma once

#include <complex>
#include <cstdint>
#include <vector>

#include "state/basis_amplitude.hpp"
#include "state/entry_source.hpp"
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
    /// The same for entries that come packed for this build.
    explicit State(const EntrySource& entries);

    [[nodiscard]] std::uint64_t dimension() const override;
    [[nodiscard]] std::uint64_t qudit_dimension(int qudit) const override;
    [[nodiscard]] std::uint64_t num_qudits() const override;
    [[nodiscard]] std::vector<BasisAmplitudeData> basis_amplitudes() const override;

    [[nodiscard]] std::vector<QuditsProbability> probabilities(std::vector<int> qudits) const override;
    [[nodiscard]] std::vector<DensityMatrixEntry>
    reduced_density_matrix(std::vector<int> qudits) const override;
    std::vector<int> measure(std::vector<int> qudits) override;

    void act(const Gate& gate) override;

    [[nodiscard]] PackedEntries packed_amplitudes() const override;

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
    // The gates that can change the length of the list; gates/kernels.hpp has the others.

    /// `hadamard` for a sign of +1.0, its inverse for -1.0.
    void transform(const Gate& gate, double sign);
    /// A power of `cycle` or `shift`.
    void step_in_part(const Gate& gate);
    /// `i_swap`.
    void exchange_in_part(const Gate& gate);
};

} // namespace vantel::qudit
