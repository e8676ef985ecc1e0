/// Which outcome each entry of a list shows.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace vantel::qudit {

/// A byte for each entry, so that whoever looks for the entries of one outcome need not read them all again.
class OutcomeNumbers {
public:
    static constexpr unsigned bits = 8; ///< of a number

    OutcomeNumbers() = default;
    explicit OutcomeNumbers(std::size_t entries)
        : numbers_(std::make_unique_for_overwrite<unsigned char[]>(entries + ahead)) {}

    [[nodiscard]] explicit operator bool() const noexcept { return numbers_ != nullptr; }

    /// Is told the numbers of the entries, one after another.
    [[nodiscard]] auto noting() const noexcept {
        return [next = numbers_.get()](std::size_t number) mutable {
            __builtin_prefetch(next + ahead, 1); // memory that nobody has used lately
            *next++ = static_cast<unsigned char>(number);
        };
    }

    /// A bit for each of `count` entries, at most 64, from place `first` on: whether they show the outcome.
    /// What stands above these bits means nothing.
    [[nodiscard]] std::uint64_t showing(std::uint64_t number, std::size_t first,
                                        std::size_t count) const noexcept {
        using Bytes [[gnu::vector_size(32), gnu::aligned(1), gnu::may_alias]] = unsigned char;
        using Words [[gnu::vector_size(32)]] = std::uint64_t;
        constexpr auto own_bit_of_each_byte =
            std::bit_cast<std::uint64_t>(std::array<unsigned char, 8>{1, 2, 4, 8, 16, 32, 64, 128});
        std::uint64_t showing = 0;
        for (std::size_t i = 0; i < count; i += sizeof(Words)) {
            const Bytes some = *reinterpret_cast<const Bytes*>(&numbers_[first + i]);
            Words eights =
                reinterpret_cast<Words>(some == static_cast<unsigned char>(number)) & own_bit_of_each_byte;
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

} // namespace vantel::qudit
