#include "readout/density_matrix.hpp"
#include "algorithms/complex_product.hpp"
#include "algorithms/crossovers.hpp"
#include "algorithms/key_index.hpp"
#include "readout/outcomes.hpp"
#include "state/builds.hpp"
#include "state/label_groups.hpp"
#include "state/level_rank.hpp"
#include "state/state.hpp"

namespace vantel::qudit {
namespace {
/// The positions of the entries that share their levels in some fields with others, and of a few that are alone there
/// but have the hash of another.
std::vector<std::uint32_t> crowded_positions(PackedEntries entries, std::uint64_t fields) {
    constexpr std::uint64_t spacious = 8; // places an entry at the least
    const auto shift = 63 - static_cast<unsigned>(std::bit_width(spacious * std::max<std::size_t>(entries.size(), 8)));
    // Two bits for each hash: whether any entry has it, and whether more than one.
    const auto place_of = [=](std::uint64_t values) VANTEL_INLINED {
        constexpr std::uint64_t golden = 0x9E3779B97F4A7C15U; // 2^64 over the golden ratio
        return (values & fields) * golden >> shift & ~std::uint64_t{1};
    };
    std::vector<std::uint64_t> all_bits((std::uint64_t{1} << (64 - shift)) / 64);
    wide_loop([=, bits = all_bits.data()]() VANTEL_INLINED {
        for (const PackedAmplitude& entry : entries) {
            const std::uint64_t place = place_of(entry.values);
            std::uint64_t& word = bits[place / 64];
            const std::uint64_t once = std::uint64_t{1} << place % 64;
            word |= (word & once) + once; // which carries into the bit above if there was one before
        }
    });
    std::vector<std::uint32_t> positions(entries.size());
    positions.resize(wide_loop([=, bits = all_bits.data(), begin = positions.data()]() VANTEL_INLINED {
        std::uint32_t* end = begin;
        std::uint32_t position = 0;
        for (const PackedAmplitude& entry : entries) {
            const std::uint64_t place = place_of(entry.values);
            *end = position++; // no branch depends on the hash: what is not crowded is overwritten
            end += bits[place / 64] >> place % 64 >> 1 & 1;
        }
        return static_cast<std::size_t>(end - begin);
    }));
    return positions;
}

/// The entries that pair with each: those with the same levels in the traced fields, itself included, in stored order.
/// Only such pairs contribute.
struct Partners {
    std::vector<std::uint32_t> group_of; ///< of each entry, counted from 1; 0 of one that is alone
    std::vector<std::uint32_t> begins;   ///< of each group's members, and where the last group ends
    std::vector<std::uint32_t> members;  ///< of all groups of more than one

    /// @param entries  fewer than 2^32
    Partners(PackedEntries entries, std::uint64_t traced) : group_of(entries.size(), 0), begins{0} {
        const std::vector<std::uint32_t> positions = crowded_positions(entries, traced);
        std::vector<PackedAmplitude> crowded(positions.size());
        for (std::size_t i = 0; i < crowded.size(); ++i) crowded[i] = entries[positions[i]];
        members.reserve(crowded.size());
        Scratch scratch;
        LabelGroups(crowded, traced, scratch).for_each([&](std::span<const std::uint32_t> group) {
            if (group.size() == 1) return;
            for (const std::uint32_t member : group) {
                members.push_back(positions[member]);
                group_of[positions[member]] = static_cast<std::uint32_t>(begins.size());
            }
            begins.push_back(static_cast<std::uint32_t>(members.size()));
        });
    }
};

/// A number for each entry's levels in some fields.
struct Numbering {
    std::vector<std::uint32_t> of; ///< of each entry
    std::size_t size;              ///< above all of them

    Numbering(PackedEntries entries, std::uint64_t fields) : of(entries.size()) {
        const GatheredBits levels(fields);
        const auto number_all = [&](auto number_of) {
            for (std::size_t i = 0; i < entries.size(); ++i)
                of[i] = static_cast<std::uint32_t>(number_of(entries[i].values));
        };
        if (levels.bits() <= 8) { // levels so few that they are numbers themselves
            levels.cheapest(number_all);
            size = std::size_t{1} << levels.bits();
            return;
        }
        size = with_key_index(levels.bits(), entries.size(), [&](auto& seen) {
            number_all([&](std::uint64_t values) { return seen.find_or_add(levels(values)); });
            return seen.size();
        });
    }
};

/// The sum over all pairs of entries that agree in the fields of the qudits not listed of a times the conjugate of b,
/// one for each pair of levels of those listed, in first-seen order. Rows and columns are the words of levels of the
/// first two entries that reach them.
std::vector<DensityMatrix::Reached> elements_of(PackedEntries entries, SlotLayout layout, std::span<const int> listed,
                                                std::uint64_t qudit_count) {
    if (entries.size() > std::numeric_limits<std::uint32_t>::max()) // positions are noted in 32 bits
        throw std::length_error("too many basis states for a density matrix");
    const std::uint64_t fields = layout.fields(listed);
    const Numbering kept(entries, fields);
    const Partners partners(entries, layout.fields_below(static_cast<int>(qudit_count)) & ~fields);
    const auto bits = static_cast<unsigned>(std::bit_width(kept.size * kept.size));
    return with_key_index(bits, entries.size(), [&](auto& index) {
        return wide_loop([&index, entries, size = kept.size, kept_of = kept.of.data(),
                          group_of = partners.group_of.data(), begins = partners.begins.data(),
                          members = partners.members.data()]() VANTEL_INLINED {
            auto seen = std::move(index); // one that no store to an element can be thought to change
            std::vector<DensityMatrix::Reached> elements;
            for (std::uint32_t a = 0; a < entries.size(); ++a) {
                const Factor amplitude(entries[a].amplitude);
                const auto add = [&](std::uint32_t b) VANTEL_INLINED {
                    const Parts product = amplitude(conjugate(parts_of(entries[b].amplitude)));
                    const std::size_t position = seen.find_or_add(kept_of[a] * size + kept_of[b]);
                    if (position == elements.size()) [[unlikely]]
                        elements.push_back({entries[a].values, entries[b].values, complex_of(product)});
                    else
                        store(parts_of(elements[position].element) + product, elements[position].element);
                };
                if (const std::uint32_t group = group_of[a]; group == 0)
                    add(a);
                else
                    for (std::uint32_t i = begins[group - 1]; i < begins[group]; ++i) add(members[i]);
            }
            return elements;
        });
    });
}
} // namespace

DensityMatrix::DensityMatrix(const IState& state, const std::vector<int>& qudits, const ValuePermutations& permutations)
    : side_(permutations.size()) {
    const PackedEntries entries = state.packed_amplitudes();
    if (entries.empty() || side_ == 0) return;
    const SlotLayout layout = SlotLayout::of(state.dimension());
    if (side_ <= crossover::matrix_rows_by_rank && crossover::is_close_to(entries.size(), side_ * side_)) {
        all_ = by_rank(entries, layout, qudits, permutations);
        if (!all_.empty()) return;
    }
    const LevelRank rank(layout, qudits, permutations.dimensions(), entries.size());
    some_ = elements_of(entries, layout, qudits, state.num_qudits());
    for (Reached& reached : some_) reached = {rank(reached.row), rank(reached.column), reached.element};
    std::erase_if(some_, [this](const Reached& reached) { return std::max(reached.row, reached.column) >= side_; });
}

template <class Label>
std::vector<DensityMatrixEntry> State<Label>::reduced_density_matrix(std::vector<int> qudits) const {
    std::vector<DensityMatrixEntry> matrix;
    for (const auto& [row, column, element] :
         elements_of(packed_view(amplitudes), Label::layout, qudits, Label::qudit_count))
        matrix.push_back({levels_of(Label::layout, row, qudits), levels_of(Label::layout, column, qudits), element});
    return matrix;
}

VANTEL_INSTANTIATE(std::vector<DensityMatrixEntry>, reduced_density_matrix, (std::vector<int>) const)
} // namespace vantel::qudit
