/// What every state has: its construction, its shape and its entries read out.
#include "state/state.hpp"

#include <algorithm>
#include <cstddef>
#include <span>

#include "state/builds.hpp"
#include "state/distinct_labels.hpp"
#include "state/packed_view.hpp"

namespace vantel::qudit {

namespace {

bool is_zero(const PackedAmplitude& entry) {
    return entry.amplitude.real() == 0.0 && entry.amplitude.imag() == 0.0;
}

template <class Label>
constexpr unsigned key_bits = static_cast<unsigned>(Label::qudit_count) * Label::layout.bits;

/// The constructors' two rules. Repeats are told apart before zeros go.
template <class Label> void keep_first_nonzero(std::vector<BasisAmplitude<Label>>& entries, bool distinct) {
    std::span<PackedAmplitude> kept = packed_view(entries);
    if (!distinct)
        kept = kept.first(keep_first_of_label(kept, key_bits<Label>));
    const auto end = std::remove_if(kept.begin(), kept.end(), is_zero);
    entries.resize(static_cast<std::size_t>(end - kept.begin()));
}

} // namespace

template <class Label> State<Label>::State(const std::vector<BasisAmplitudeData>& entries) {
    amplitudes.reserve(entries.size());
    for (const BasisAmplitudeData& entry : entries)
        amplitudes.push_back(
            make_basis_amplitude<Label::max_dimension, Label::qudit_count>(entry.dits, entry.amplitude));
    keep_first_nonzero(amplitudes, false);
}

template <class Label> State<Label>::State(PackedEntries entries) : amplitudes(entries.size()) {
    std::copy(entries.begin(), entries.end(), packed_view(amplitudes).begin());
    keep_first_nonzero(amplitudes, entries.known_distinct());
}

template <class Label> std::uint64_t State<Label>::dimension() const {
    return Label::max_dimension;
}

template <class Label> std::uint64_t State<Label>::num_qudits() const {
    return Label::qudit_count;
}

template <class Label> std::uint64_t State<Label>::qudit_dimension(int qudit) const {
    if (amplitudes.empty())
        return 0;
    const Label& first = amplitudes.front().label;
    return first[qudit].dimension;
}

template <class Label> std::vector<BasisAmplitudeData> State<Label>::basis_amplitudes() const {
    std::vector<BasisAmplitudeData> entries;
    entries.reserve(amplitudes.size());
    for (const Entry& entry : amplitudes)
        entries.push_back({entry.label.dits(), entry.amplitude});
    return entries;
}

template <class Label> PackedEntries State<Label>::packed_amplitudes() const {
    return PackedEntries(packed_view(amplitudes));
}

#define VANTEL_CONSTRUCTORS(D, N, ...)                                                                       \
    template State<DitArray<D, N>>::State(const std::vector<BasisAmplitudeData>&);                           \
    template State<DitArray<D, N>>::State(PackedEntries);
VANTEL_FOR_EACH_BUILD(VANTEL_CONSTRUCTORS, )
VANTEL_INSTANTIATE(std::uint64_t, dimension, () const)
VANTEL_INSTANTIATE(std::uint64_t, num_qudits, () const)
VANTEL_INSTANTIATE(std::uint64_t, qudit_dimension, (int) const)
VANTEL_INSTANTIATE(std::vector<BasisAmplitudeData>, basis_amplitudes, () const)
VANTEL_INSTANTIATE(PackedEntries, packed_amplitudes, () const)

} // namespace vantel::qudit
