#include <complex>
#include <numeric>
#include <span>
#include <vector>

#include "readout/levels.hpp"
#include "state/builds.hpp"
#include "state/key_index.hpp"
#include "state/packed_view.hpp"
#include "state/state.hpp"
#include "state/subkey.hpp"

namespace vantel::qudit {

namespace {

/// The entries sorted by their traced levels into groups, each in stored order; only the pairs within a
/// group contribute.
struct TracedGroups {
    struct Member {
        std::complex<double> amplitude;
        std::size_t kept; ///< number of the entry's combination of kept levels
        std::size_t entry;
    };

    std::vector<Member> members;    ///< group by group
    std::vector<std::size_t> begin; ///< of each group in `members`, and the end
    std::vector<std::size_t> own;   ///< the group of each entry
    std::size_t combinations = 0;   ///< of kept levels

    TracedGroups(std::span<const PackedAmplitude> entries, std::uint64_t kept_fields,
                 std::uint64_t traced_fields) {
        const Subkey traced_levels(traced_fields);
        KeyIndex groups(traced_levels.bits(), entries.size());
        own.reserve(entries.size());
        for (const PackedAmplitude& entry : entries)
            own.push_back(groups.find_or_add(traced_levels(entry.values)));

        begin.assign(groups.size() + 1, 0);
        for (const std::size_t group : own)
            ++begin[group + 1];
        std::partial_sum(begin.begin(), begin.end(), begin.begin());

        const Subkey kept_levels(kept_fields);
        KeyIndex kept(kept_levels.bits(), entries.size());
        std::vector<std::size_t> place(begin.begin(), begin.end() - 1);
        members.resize(entries.size());
        for (std::size_t i = 0; i < entries.size(); ++i)
            members[place[own[i]]++] = {entries[i].amplitude,
                                        kept.find_or_add(kept_levels(entries[i].values)), i};
        combinations = kept.size();
    }

    /// The entries that pair with `entry`, itself included.
    [[nodiscard]] std::span<const Member> partners(std::size_t entry) const {
        const std::size_t group = own[entry];
        return std::span(members).subspan(begin[group], begin[group + 1] - begin[group]);
    }
};

std::vector<PackedElement> elements_of(std::span<const PackedAmplitude> entries, std::uint64_t kept_fields,
                                       std::uint64_t traced_fields) {
    const TracedGroups groups(entries, kept_fields, traced_fields);
    std::vector<std::size_t> row_of(entries.size());
    for (const TracedGroups::Member& member : groups.members)
        row_of[member.entry] = member.kept;

    std::vector<PackedElement> elements;
    const std::size_t width = groups.combinations;
    KeyIndex seen(static_cast<unsigned>(std::bit_width(width * width)), width);
    for (std::size_t a = 0; a < entries.size(); ++a)
        for (const TracedGroups::Member& b : groups.partners(a)) {
            const std::complex<double> product = entries[a].amplitude * std::conj(b.amplitude);
            const std::size_t position = seen.find_or_add(row_of[a] * width + b.kept);
            if (position == elements.size())
                elements.push_back({entries[a].values, entries[b.entry].values, product});
            else
                elements[position].element += product;
        }
    return elements;
}

} // namespace

template <class Label>
std::vector<PackedElement> State<Label>::packed_density_matrix(const std::vector<int>& qudits) const {
    const std::uint64_t kept = fields_of(Label::layout, qudits);
    return elements_of(packed_view(amplitudes), kept, all_fields(Label::layout, Label::qudit_count) & ~kept);
}

template <class Label>
std::vector<DensityMatrixEntry> State<Label>::reduced_density_matrix(std::vector<int> qudits) const {
    std::vector<DensityMatrixEntry> matrix;
    for (const PackedElement& element : packed_density_matrix(qudits))
        matrix.push_back({levels_of(Label::layout, element.row_values, qudits),
                          levels_of(Label::layout, element.column_values, qudits), element.element});
    return matrix;
}

VANTEL_INSTANTIATE(std::vector<PackedElement>, packed_density_matrix, (const std::vector<int>&) const)
VANTEL_INSTANTIATE(std::vector<DensityMatrixEntry>, reduced_density_matrix, (std::vector<int>) const)

} // namespace vantel::qudit
