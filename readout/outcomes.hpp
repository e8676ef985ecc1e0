/// The outcomes of a list of entries, and which of them each entry shows.
#pragma once

#include "algorithms/lanes.hpp"
#include "state/entries.hpp"
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace vantel::qudit {
/// QuditsProbability with its levels still packed: `values` is the level word of the first entry that shows the
/// outcome, of which only the listed qudits' fields mean anything.
struct PackedOutcome {
    std::uint64_t values;
    double probability;
};

/// A byte for each entry, so that whoever looks for the entries of one outcome need not read them all again.
class OutcomeNumbers {
public:
    static constexpr unsigned bits = 8; ///< of a number

    OutcomeNumbers() = default;
    explicit OutcomeNumbers(std::size_t entries)
        : numbers_(std::make_unique_for_overwrite<unsigned char[]>(entries + ahead)) {}

    [[nodiscard]] explicit operator bool() const noexcept { return numbers_ != nullptr; }

    /// Is given the numbers of the entries, one after another.
    [[nodiscard]] auto noting() const noexcept {
        return [next = numbers_.get()](std::size_t number) mutable {
            __builtin_prefetch(next + ahead, 1); // memory that nobody has used lately
            *next++ = static_cast<unsigned char>(number);
        };
    }

    /// A bit for each of `count` entries, at most 64, from place `first` on: whether they show the outcome. What stands
    /// above these bits means nothing.
    [[nodiscard, gnu::always_inline]] std::uint64_t showing(std::uint64_t number, std::size_t first,
                                                            std::size_t count) const noexcept {
        using Bytes [[gnu::vector_size(32), gnu::aligned(1), gnu::may_alias]] = unsigned char;
        constexpr auto own_bit_of_each_byte =
            std::bit_cast<std::uint64_t>(std::array<unsigned char, 8>{1, 2, 4, 8, 16, 32, 64, 128});
        std::uint64_t showing = 0;
        for (std::size_t i = 0; i < count; i += sizeof(FourWords)) {
            const Bytes some = *reinterpret_cast<const Bytes*>(&numbers_[first + i]);
            FourWords eights =
                reinterpret_cast<FourWords>(some == static_cast<unsigned char>(number)) & own_bit_of_each_byte;
            eights |= eights >> 32;
            eights |= eights >> 16;
            eights |= eights >> 8;
            eights &= 0xFF;
            showing |= (eights[0] | eights[1] << 8 | eights[2] << 16 | eights[3] << 24) << i;
        }
        return showing;
    }

private:
    static constexpr std::size_t ahead = 256; ///< places behind the last entry that are touched like others

    std::unique_ptr<unsigned char[]> numbers_;
};

/// What IState::probabilities reports of the listed fields, its levels still packed.
std::vector<PackedOutcome> outcomes_of(PackedEntries entries, std::uint64_t listed);

struct NumberedOutcomes {
    std::vector<PackedOutcome> outcomes;
    OutcomeNumbers numbers; ///< GatheredBits of the listed fields; none where these have too many bits
};

/// The same, with the outcomes' numbers where they have so few kinds.
NumberedOutcomes numbered_outcomes_of(PackedEntries entries, std::uint64_t listed);

/// The fields of listed qudits, each of which is one of `qudit_count`. @throws what refuse_index raises
inline std::uint64_t known_fields(SlotLayout layout, std::span<const int> qudits, int qudit_count) {
    for (const int qudit : qudits) refuse_index(qudit, qudit_count);
    return layout.fields(qudits);
}

/// One level per listed qudit, in list order.
inline std::vector<int> levels_of(SlotLayout layout, std::uint64_t values, std::span<const int> qudits) {
    std::vector<int> levels;
    levels.reserve(qudits.size());
    for (const int qudit : qudits) levels.push_back(static_cast<int>(layout.level(values, qudit)));
    return levels;
}
} // namespace vantel::qudit
