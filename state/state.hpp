/// The one implementation of IState, built once for each pair of largest dimension and qudit count.
#pragma once

#include "state/entries.hpp"
#include "state/istate.hpp"
#include <complex>
#include <cstdint>
#include <vector>

namespace vantel::qudit {
/// A joint state whose labels are `Label`, a DitArray<D, N>. What it does stands in kernels that are compiled once; its
/// members hand them a packed view.
template <class Label> class State final : public IState {
public:
    using Entry = BasisAmplitude<Label>;

    /// The entries in the given order, less repeated labels, of which the first stands, and then less exact zeros. So a
    /// zero that comes first shadows a later amplitude of its label, deliberately.
    explicit State(const std::vector<BasisAmplitudeData>& entries);
    /// The same for entries that come packed for this build.
    explicit State(const EntrySource& entries);

    [[nodiscard]] std::uint64_t dimension() const override;
    [[nodiscard]] std::uint64_t qudit_dimension(int qudit) const override;
    [[nodiscard]] std::uint64_t num_qudits() const override;
    [[nodiscard]] std::vector<BasisAmplitudeData> basis_amplitudes() const override;

    [[nodiscard]] std::vector<QuditsProbability> probabilities(std::vector<int> qudits) const override;
    [[nodiscard]] std::vector<DensityMatrixEntry> reduced_density_matrix(std::vector<int> qudits) const override;
    std::vector<int> measure(std::vector<int> qudits) override;

    void act(const Gate& gate) override;

    [[nodiscard]] PackedEntries packed_amplitudes() const override;

    /// reduce_entries(), and the list ends behind what stays.
    static void reduce(std::vector<Entry>& list) noexcept;

    /// One pass of the transform over `input` for one target, without reduction: each selected entry becomes one child
    /// for each level k, ascending, in its place. `sign` is +1.0 or -1.0.
    static std::vector<Entry> hadamard_no_reduce(const std::vector<Entry>& input, int target,
                                                 const std::vector<Predicate>& controls, double sign);

    std::vector<Entry> amplitudes; ///< in the order that the last operation left
};
} // namespace vantel::qudit
