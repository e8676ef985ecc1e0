#include "readout/partners.hpp"

#include <algorithm>
#include <bit>

#include "state/wide_loop.hpp"

namespace vantel::qudit {

namespace {

/// Tells, by a hash, which entries are alone with their levels in some fields.
class Hashed {
public:
    Hashed(std::span<const PackedAmplitude> entries, std::uint64_t fields)
        : place_of_(fields, entries.size()), words_(place_of_.end() / 64) {
        wide_loop([entries, place_of = place_of_, words = words_.data()] {
            for (const PackedAmplitude& entry : entries) {
                const std::uint64_t place = place_of(entry.values);
                std::uint64_t& word = words[place / 64];
                const std::uint64_t once = std::uint64_t{1} << place % 64;
                word |= (word & once) + once; // which carries into the bit above if there was one before
            }
        });
    }

    /// The positions of the others, and of a few that are alone but have the hash of another.
    [[nodiscard]] std::vector<std::uint32_t> crowded(std::span<const PackedAmplitude> entries) const {
        std::vector<std::uint32_t> positions(entries.size());
        std::size_t count = 0;
        wide_loop([entries, place_of = place_of_, words = words_.data(), begin = positions.data(), &count] {
            std::uint32_t* end = begin;
            std::uint32_t position = 0;
            for (const PackedAmplitude& entry : entries) {
                const std::uint64_t place = place_of(entry.values);
                *end = position++; // no branch hangs on the hash: what is not crowded is overwritten
                end += words[place / 64] >> place % 64 >> 1 & 1;
            }
            count = static_cast<std::size_t>(end - begin);
        });
        positions.resize(count);
        return positions;
    }

private:
    static constexpr std::uint64_t spacious = 8; ///< places an entry at the least

    /// Where two bits stand for some levels: whether any entry has their hash, and whether more than one.
    class Place {
    public:
        Place(std::uint64_t fields, std::size_t entries) noexcept
            : fields_(fields), shift_(63 - static_cast<unsigned>(std::bit_width(spacious * entries))) {}

        std::uint64_t operator()(std::uint64_t values) const noexcept {
            constexpr std::uint64_t golden = 0x9E3779B97F4A7C15U; // 2^64 over the golden ratio
            return (values & fields_) * golden >> shift_ & ~std::uint64_t{1};
        }
        [[nodiscard]] std::uint64_t end() const noexcept { return std::uint64_t{1} << (64 - shift_); }

    private:
        std::uint64_t fields_;
        unsigned shift_;
    };

    Place place_of_;
    std::vector<std::uint64_t> words_;
};

std::uint64_t any_bits(std::span<const PackedAmplitude> entries) {
    std::uint64_t any = 0;
    for (const PackedAmplitude& entry : entries)
        any |= entry.values;
    return any;
}

} // namespace

Partners::Partners(std::span<const PackedAmplitude> entries, std::uint64_t traced, std::uint64_t most)
    : group_of_(entries.size(), alone) {
    constexpr std::size_t few = 64; // are sorted as quickly
    const std::uint64_t any = any_bits(entries);
    if (entries.size() <= few || FieldGroups::are_close(entries.size(), traced, any, most)) {
        of_all_.emplace(entries, traced, any, most);
        groups_.reset(new Members[of_all_->bound()]);
        number(*of_all_, [](Members members) { return members; });
        return;
    }
    const std::vector<std::uint32_t> positions = Hashed(entries, traced).crowded(entries);
    std::vector<PackedAmplitude> crowded(positions.size());
    std::transform(positions.begin(), positions.end(), crowded.begin(),
                   [entries](std::uint32_t position) { return entries[position]; });
    const FieldGroups groups(crowded, traced, any, most);
    groups_.reset(new Members[groups.bound()]);
    members_.reset(new std::uint32_t[positions.size()]);
    number(groups, [end = members_.get(), &positions](Members members) mutable {
        std::uint32_t* const begin = end;
        for (const std::uint32_t member : members)
            *end++ = positions[member];
        return Members(begin, end);
    });
}

/// @param own  own(members) is the same group in terms of the whole list
template <class Own> void Partners::number(const FieldGroups& groups, Own own) {
    groups.for_each([of = group_of_.data(), next = groups_.get(), count = std::uint32_t{0},
                     own](Members members) mutable {
        if (members.size() == 1)
            return;
        const Members group = own(members);
        *next++ = group;
        ++count;
        for (const std::uint32_t member : group)
            of[member] = count;
    });
}

} // namespace vantel::qudit
