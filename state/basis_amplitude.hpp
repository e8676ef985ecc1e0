/// The entries of a sparse state, in the three forms they take.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "state/dit_array.hpp"

namespace vantel::qudit {

/// One entry of a State: a basis state and its amplitude.
template <class Label> struct BasisAmplitude {
    Label label;
    std::complex<double> amplitude;
};

/// The unpacked entry, which needs no build parameters.
struct BasisAmplitudeData {
    std::vector<Dit> dits; ///< one per qudit, in qudit order
    std::complex<double> amplitude;
};

/// The packed entry without its build in the type: the label's two words, packed as
/// SlotLayout::of(dimension of the state) says. Merges, releases, gates and readouts work on this form; see
/// packed_view for why it may alias.
struct [[gnu::may_alias]] PackedAmplitude {
    std::uint64_t values;
    std::uint64_t dimensions;
    std::complex<double> amplitude;
};

/// A list of packed entries. It owns nothing.
using PackedEntries = std::span<const PackedAmplitude>;

/// Writes dits[i] to slot i, under the checks of DitProxy. A shorter list leaves the other slots at level
/// 0 of dimension 1; elements beyond slot N - 1 have no place in the label, but are held to the same checks.
template <int D, int N>
BasisAmplitude<DitArray<D, N>> make_basis_amplitude(const std::vector<Dit>& dits,
                                                    std::complex<double> amplitude) {
    BasisAmplitude<DitArray<D, N>> entry{{}, amplitude};
    DitArray<D, N> beyond;
    for (std::size_t i = 0; i < dits.size(); ++i) {
        if (i < N)
            entry.label[static_cast<int>(i)] = dits[i];
        else
            beyond[0] = dits[i];
    }
    return entry;
}

} // namespace vantel::qudit
