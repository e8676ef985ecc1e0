#include <algorithm>
#include <complex>
#include <memory>
#include <numeric>
#include <span>
#include <vector>

#include "readout/levels.hpp"
#include "readout/ranked.hpp"
#include "state/builds.hpp"
#include "state/key_index.hpp"
#include "state/packed_view.hpp"
#include "state/product.hpp"
#include "state/state.hpp"
#include "state/subkey.hpp"

namespace vantel::qudit {

namespace {

/// The number of each entry's levels in some fields, in first-seen order.
struct Numbering {
    std::vector<std::uint32_t> of; ///< of each entry
    std::size_t size;              ///< distinct ones

    Numbering(std::span<const PackedAmplitude> entries, std::uint64_t fields) : of(entries.size()) {
        const Subkey levels(fields);
        size = with_key_index(levels.bits(), entries.size(), [&](auto& seen) {
            for (std::size_t i = 0; i < entries.size(); ++i)
                of[i] = static_cast<std::uint32_t>(seen.find_or_add(levels(entries[i].values)));
            return seen.size();
        });
    }
};

/// The entries sorted by their traced levels into groups, each in stored order; only the pairs within a
/// group contribute.
class TracedGroups {
public:
    struct Member {
        Parts conjugate; ///< of the amplitude
        std::uint32_t column;
        std::uint32_t entry;
    };

    /// @param column_of  column_of(i) is the column of the i-th entry
    template <class ColumnOf>
    TracedGroups(std::span<const PackedAmplitude> entries, const Numbering& traced, ColumnOf column_of)
        : traced_(traced), begin_(traced.size + 1, 0), members_(new Member[entries.size()]) {
        for (const std::uint32_t group : traced.of)
            ++begin_[group + 1];
        std::partial_sum(begin_.begin(), begin_.end(), begin_.begin());
        std::vector<std::uint32_t> place(begin_.begin(), begin_.end() - 1);
        for (std::size_t i = 0; i < entries.size(); ++i)
            members_[place[traced.of[i]]++] = {parts_of(std::conj(entries[i].amplitude)), column_of(i),
                                               static_cast<std::uint32_t>(i)};
    }

    /// The entries that pair with `entry`, itself included.
    [[nodiscard]] std::span<const Member> partners(std::size_t entry) const {
        const std::uint32_t group = traced_.of[entry];
        return {&members_[begin_[group]], begin_[group + 1] - begin_[group]};
    }

private:
    const Numbering& traced_;
    std::vector<std::uint32_t> begin_; ///< of each group in members_, and the end
    std::unique_ptr<Member[]> members_;
};

std::vector<PackedElement> elements_of(std::span<const PackedAmplitude> entries, std::uint64_t kept_fields,
                                       std::uint64_t traced_fields) {
    const Numbering kept(entries, kept_fields);
    const Numbering traced(entries, traced_fields);
    const TracedGroups groups(entries, traced, [&kept](std::size_t i) { return kept.of[i]; });
    const auto bits = static_cast<unsigned>(std::bit_width(kept.size * kept.size));
    return with_key_index(bits, entries.size(), [&](auto& seen) {
        std::vector<PackedElement> elements;
        for (std::size_t a = 0; a < entries.size(); ++a) {
            const Factor amplitude(entries[a].amplitude);
            const std::uint64_t row = kept.of[a] * kept.size;
            for (const TracedGroups::Member& b : groups.partners(a)) {
                const Parts product = amplitude(b.conjugate);
                const std::size_t position = seen.find_or_add(row + b.column);
                if (position == elements.size())
                    elements.push_back({entries[a].values, entries[b.entry].values, complex_of(product)});
                else
                    store(parts_of(elements[position].element) + product, elements[position].element);
            }
        }
        return elements;
    });
}

} // namespace

RankedMatrix ranked_density_matrix(std::span<const PackedAmplitude> entries, std::uint64_t traced_fields,
                                   const LevelRank& rank) {
    const std::size_t side = rank.size();
    RankedMatrix matrix{std::vector<std::complex<double>>(side * side),
                        std::vector<std::uint8_t>(side * side, 0)};
    const Numbering traced(entries, traced_fields);
    // A label with a level beyond its dimension has a column behind the last.
    const TracedGroups groups(entries, traced, [&](std::size_t i) {
        return static_cast<std::uint32_t>(std::min<std::uint64_t>(rank(entries[i].values), side));
    });
    for (std::size_t a = 0; a < entries.size(); ++a) {
        const std::uint64_t row = rank(entries[a].values);
        if (row >= side)
            continue;
        const Factor amplitude(entries[a].amplitude);
        for (const TracedGroups::Member& b : groups.partners(a)) {
            if (b.column == side)
                continue;
            const Parts product = amplitude(b.conjugate);
            const std::size_t place = row * side + b.column;
            std::complex<double>& element = matrix.elements[place];
            store(matrix.reached[place] != 0 ? parts_of(element) + product : product, element);
            matrix.reached[place] = 1;
        }
    }
    return matrix;
}

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
