/// What every state has: its construction, its shape and its entries read out.
#include "state/state.hpp"

#include <algorithm>
#include <cstddef>
#include <span>

#include "state/builds.hpp"
#include "state/key_index.hpp"
#include "state/packed_view.hpp"

namespace vantel::qudit {

namespace {

/// The constructors' two rules, in place. Repeats are told apart before zeros go.
/// @return how many entries stay, at the front, in their order
std::size_t keep_first_nonzero(std::span<PackedAmplitude> entries, unsigned key_bits) {
    return with_key_index(key_bits, entries.size(), [entries](auto& seen) {
        std::size_t kept = 0;
        for (const PackedAmplitude& entry : entries) {
            const std::size_t known = seen.size();
            const bool repeated = seen.find_or_add(entry.values) != known;
            const bool zero = entry.amplitude.real() == 0.0 && entry.amplitude.imag() == 0.0;
            if (!repeated && !zero)
                entries[kept++] = entry;
        }
        return kept;
    });
}

template <class Label> void keep_first_nonzero(std::vector<BasisAmplitude<Label>>& entries) {
    constexpr unsigned key_bits = static_cast<unsigned>(Label::qudit_count) * Label::layout.bits;
    entries.resize(keep_first_nonzero(packed_view(entries), key_bits));
}

} // namespace

template <class Label> State<Label>::State(const std::vector<BasisAmplitudeData>& entries) {
    amplitudes.reserve(entries.size());
    for (const BasisAmplitudeData& entry : entries)
        amplitudes.push_back(
            make_basis_amplitude<Label::max_dimension, Label::qudit_count>(entry.dits, entry.amplitude));
    keep_first_nonzero(amplitudes);
}

template <class Label>
State<Label>::State(const std::vector<PackedAmplitude>& entries) : amplitudes(entries.size()) {
    std::copy(entries.begin(), entries.end(), packed_view(amplitudes).begin());
    keep_first_nonzero(amplitudes);
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

template <class Label> std::vector<PackedAmplitude> State<Label>::packed_amplitudes() const {
    const std::span<const PackedAmplitude> entries = packed_view(amplitudes);
    return {entries.begin(), entries.end()};
}

#define VANTEL_CONSTRUCTORS(D, N, ...)                                                                       \
    template State<DitArray<D, N>>::State(const std::vector<BasisAmplitudeData>&);                           \
    template State<DitArray<D, N>>::State(const std::vector<PackedAmplitude>&);
VANTEL_FOR_EACH_BUILD(VANTEL_CONSTRUCTORS, )
VANTEL_INSTANTIATE(std::uint64_t, dimension, () const)
VANTEL_INSTANTIATE(std::uint64_t, num_qudits, () const)
VANTEL_INSTANTIATE(std::uint64_t, qudit_dimension, (int) const)
VANTEL_INSTANTIATE(std::vector<BasisAmplitudeData>, basis_amplitudes, () const)
VANTEL_INSTANTIATE(std::vector<PackedAmplitude>, packed_amplitudes, () const)

} // namespace vantel::qudit
