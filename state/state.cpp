/// What every state has: its construction, its shape and its entries read out.
#include "state/state.hpp"
#include "state/builds.hpp"
#include "state/distinct_labels.hpp"
#include <algorithm>

namespace vantel::qudit {
namespace {
constexpr auto is_zero = [](const PackedAmplitude& entry) { return entry.amplitude == 0.0; };

/// The constructors' two rules. Repeats are told apart before zeros go.
/// @return how many entries stay, at the front
std::size_t keep_first_nonzero(std::span<PackedAmplitude> entries, bool distinct, unsigned key_bits) {
    if (!distinct && entries.size() > 1) entries = entries.first(keep_first_of_label(entries, key_bits));
    return static_cast<std::size_t>(std::remove_if(entries.begin(), entries.end(), is_zero) - entries.begin());
}
} // namespace

template <class Label> State<Label>::State(const std::vector<BasisAmplitudeData>& entries) {
    amplitudes.reserve(entries.size());
    for (const BasisAmplitudeData& entry : entries)
        amplitudes.push_back(
            make_basis_amplitude<Label::max_dimension, Label::qudit_count>(entry.dits, entry.amplitude));
    amplitudes.resize(keep_first_nonzero(packed_view(amplitudes), false, Label::key_bits));
}

template <class Label> State<Label>::State(const EntrySource& entries) : amplitudes(entries.size) {
    entries.write(packed_view(amplitudes));
    amplitudes.resize(keep_first_nonzero(packed_view(amplitudes), entries.distinct, Label::key_bits));
}

template <class Label> std::uint64_t State<Label>::dimension() const { return Label::max_dimension; }

template <class Label> std::uint64_t State<Label>::num_qudits() const { return Label::qudit_count; }

template <class Label> std::uint64_t State<Label>::qudit_dimension(int qudit) const {
    if (amplitudes.empty()) return 0;
    const Label& first = amplitudes.front().label;
    return first[qudit].dimension;
}

template <class Label> std::vector<BasisAmplitudeData> State<Label>::basis_amplitudes() const {
    std::vector<BasisAmplitudeData> entries;
    entries.reserve(amplitudes.size());
    for (const Entry& entry : amplitudes) entries.push_back({entry.label.dits(), entry.amplitude});
    return entries;
}

template <class Label> PackedEntries State<Label>::packed_amplitudes() const { return packed_view(amplitudes); }

#define VANTEL_CONSTRUCTORS(D, N, ...)                                                                                 \
    template State<DitArray<D, N>>::State(const std::vector<BasisAmplitudeData>&);                                     \
    template State<DitArray<D, N>>::State(const EntrySource&);
VANTEL_FOR_EACH_BUILD(VANTEL_CONSTRUCTORS, )
VANTEL_INSTANTIATE(std::uint64_t, dimension, () const)
VANTEL_INSTANTIATE(std::uint64_t, num_qudits, () const)
VANTEL_INSTANTIATE(std::uint64_t, qudit_dimension, (int) const)
VANTEL_INSTANTIATE(std::vector<BasisAmplitudeData>, basis_amplitudes, () const)
VANTEL_INSTANTIATE(PackedEntries, packed_amplitudes, () const)
} // namespace vantel::qudit
