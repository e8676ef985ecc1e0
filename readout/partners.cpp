#include "readout/partners.hpp"
#include "algorithms/scratch.hpp"
#include "algorithms/wide_loop.hpp"
#include "state/label_groups.hpp"
#include <algorithm>
#include <bit>

namespace vantel::qudit {
namespace {
/// Tells, by a hash, which entries are alone with their levels in some fields.
class Hashed {
public:
    Hashed(PackedEntries entries, std::uint64_t fields)
        : place_of_(fields, entries.size()), words_(place_of_.end() / 64) {
        wide_loop([entries, place_of = place_of_, words = words_.data()]() VANTEL_INLINED {
            for (const PackedAmplitude& entry : entries) {
                const std::uint64_t place = place_of(entry.values);
                std::uint64_t& word = words[place / 64];
                const std::uint64_t once = std::uint64_t{1} << place % 64;
                word |= (word & once) + once; // which carries into the bit above if there was one before
            }
        });
    }

    /// The positions of the others, and of a few that are alone but have the hash of another.
    [[nodiscard]] std::vector<std::uint32_t> crowded(PackedEntries entries) const {
        std::vector<std::uint32_t> positions(entries.size());
        positions.resize(wide_loop(
            [entries, place_of = place_of_, words = words_.data(), begin = positions.data()]() VANTEL_INLINED {
                std::uint32_t* end = begin;
                std::uint32_t position = 0;
                for (const PackedAmplitude& entry : entries) {
                    const std::uint64_t place = place_of(entry.values);
                    *end = position++; // no branch depends on the hash: what is not crowded is overwritten
                    end += words[place / 64] >> place % 64 >> 1 & 1;
                }
                return static_cast<std::size_t>(end - begin);
            }));
        return positions;
    }

private:
    static constexpr std::uint64_t spacious = 8; ///< places an entry at the least

    /// Where two bits stand for some levels: whether any entry has their hash, and whether more than one.
    class Place {
    public:
        Place(std::uint64_t fields, std::size_t entries) noexcept
            : fields_(fields),
              shift_(63 - static_cast<unsigned>(std::bit_width(spacious * std::max<std::size_t>(entries, 8)))) {}

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
} // namespace

Partners::Partners(PackedEntries entries, std::uint64_t traced) : group_of_(entries.size(), alone) {
    const std::vector<std::uint32_t> positions = Hashed(entries, traced).crowded(entries);
    std::vector<PackedAmplitude> crowded(positions.size());
    std::transform(positions.begin(), positions.end(), crowded.begin(),
                   [entries](std::uint32_t position) { return entries[position]; });
    begins_ = {0};
    members_.reserve(crowded.size());
    Scratch scratch;
    LabelGroups(crowded, traced, scratch).for_each([&](std::span<const std::uint32_t> group) {
        if (group.size() == 1) return;
        for (const std::uint32_t member : group) {
            members_.push_back(positions[member]);
            group_of_[positions[member]] = static_cast<std::uint32_t>(begins_.size());
        }
        begins_.push_back(static_cast<std::uint32_t>(members_.size()));
    });
}
} // namespace vantel::qudit
