/// How one basis state is written down: unpacked (Dit) and packed into two machine words (DitArray).
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <iosfwd>
#include <span>
#include <stdexcept>
#include <vector>

namespace vantel::qudit {
/// One qudit's level, counted from 0, and its number of levels. Nothing here is enforced.
struct Dit {
    std::uint64_t value;
    std::uint64_t dimension;

    friend bool operator==(const Dit&, const Dit&) = default;
};

/// Prints "[v:1,d:3]".
__attribute__((visibility("default"))) std::ostream& operator<<(std::ostream& stream, const Dit& dit);

/// Prints "|[v:1,d:3][v:0,d:2]>", without a line end.
__attribute__((visibility("default"))) std::ostream& operator<<(std::ostream& stream, const std::vector<Dit>& dits);

/// The label diagnostics: a text on standard output, then the end of the process. They guard the packing against the
/// library's own mistakes and are, on purpose, nothing that a caller could catch.
[[noreturn]] void die_of_value(std::uint64_t value, std::uint64_t max_dimension);
[[noreturn]] void die_of_dimension();
[[noreturn]] void die_of_addend();

/// (level + addend) mod dimension. An addend that is not below the dimension ends the process.
inline std::uint64_t raised(std::uint64_t level, std::uint64_t addend, std::uint64_t dimension) {
    if (addend >= dimension) die_of_addend();
    return (level + addend) % dimension;
}

/// @throws std::out_of_range "qudit index out of range" for an index at or beyond the count. The comparison is signed
/// and one-sided: a negative index passes. That is deliberate; callers hand in none.
inline void refuse_index(int qudit, int qudit_count) {
    if (qudit >= qudit_count) throw std::out_of_range("qudit index out of range");
}

/// The packing of all labels whose largest dimension is D: how wide a field is and where it stands.
struct SlotLayout {
    unsigned bits;  ///< width of one field, the smallest b with 2^b >= D
    unsigned slots; ///< fields in one word; none straddles two words

    static constexpr SlotLayout of(std::uint64_t max_dimension) noexcept {
        // Looked up, since a division takes as long as an entry or two; no state has a dimension above 10.
        constexpr std::array<unsigned, 5> slots{0, 64 / 1, 64 / 2, 64 / 3, 64 / 4};
        const auto bits = static_cast<unsigned>(std::bit_width(max_dimension - 1));
        return {bits, slots[bits]};
    }

    [[nodiscard]] constexpr std::uint64_t mask() const noexcept { return (std::uint64_t{1} << bits) - 1; }

    /// Bit position of a qudit's field. An index out of range, a negative one too, has the last field of the word,
    /// which is no qudit's: there every label has level 0 of one level.
    [[nodiscard]] constexpr unsigned position(int qudit) const noexcept {
        const auto slot = static_cast<unsigned>(qudit);
        return (slot < slots ? slot : slots - 1) * bits;
    }

    /// The bits of a word in which a qudit's field stands.
    [[nodiscard]] constexpr std::uint64_t field(int qudit) const noexcept { return mask() << position(qudit); }
    [[nodiscard]] constexpr std::uint64_t fields(std::span<const int> qudits) const noexcept {
        std::uint64_t all = 0;
        for (const int qudit : qudits) all |= field(qudit);
        return all;
    }
    /// Those of the first `count` qudits.
    [[nodiscard]] constexpr std::uint64_t fields_below(int count) const noexcept {
        return (std::uint64_t{1} << static_cast<unsigned>(count) * bits) - 1;
    }

    /// One level of a qudit, in its field.
    [[nodiscard]] constexpr std::uint64_t one_level(int qudit) const noexcept {
        return std::uint64_t{1} << position(qudit);
    }
    /// A qudit's level from the word of levels, or its number of levels from the word of dimensions.
    [[nodiscard]] constexpr std::uint64_t level(std::uint64_t values, int qudit) const noexcept {
        return values >> position(qudit) & mask();
    }
    [[nodiscard]] constexpr std::uint64_t dimension(std::uint64_t dimensions, int qudit) const noexcept {
        return level(dimensions, qudit) + 1;
    }
};

/// Writable reference to one slot of a label; short-lived.
template <int D> class DitProxy {
public:
    static constexpr SlotLayout layout = SlotLayout::of(D);

    DitProxy(std::uint64_t& values_word, std::uint64_t& dimensions_word, std::uint64_t position)
        : values_(&values_word), dimensions_(&dimensions_word), position_(position) {}

    DitProxy(const DitProxy&) = default;

    [[nodiscard]] std::uint64_t value() const { return *values_ >> position_ & layout.mask(); }
    [[nodiscard]] std::uint64_t dimension() const { return (*dimensions_ >> position_ & layout.mask()) + 1; }
    operator Dit() const { return {value(), dimension()}; }

    /// Writes level and dimension of the slot together. Both are held against the build's D only, so a three-level slot
    /// of a five-level build takes a level of 4; that is deliberate.
    DitProxy& operator=(Dit dit) {
        if (dit.value >= D) die_of_value(dit.value, D);
        if (dit.dimension > D) die_of_dimension();
        *values_ = (*values_ & ~(layout.mask() << position_)) | dit.value << position_;
        *dimensions_ = (*dimensions_ & ~(layout.mask() << position_)) | (dit.dimension - 1) << position_;
        return *this;
    }
    /// Writes what the other slot holds; the reference itself stays where it is.
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): a slot that is written with what it holds
    DitProxy& operator=(const DitProxy& other) { return *this = static_cast<Dit>(other); }

    /// The slot's dit raised by `addend` levels, with wrap-around by its own dimension.
    Dit operator+(std::uint64_t addend) const { return {raised(value(), addend, dimension()), dimension()}; }

private:
    std::uint64_t* values_;
    std::uint64_t* dimensions_;
    std::uint64_t position_;
};

/// The packed label of a basis state of N qudits with at most D levels each. Qudit 0 has the lowest bits. Labels are
/// ordered, and told apart, by the word of levels alone: the highest qudit is the most significant digit, and
/// dimensions play no part.
template <int D, int N> struct DitArray {
    static_assert(2 <= D && 1 <= N);

    static constexpr int max_dimension = D;
    static constexpr int qudit_count = N;
    static constexpr SlotLayout layout = SlotLayout::of(D);
    static constexpr unsigned key_bits = static_cast<unsigned>(N) * layout.bits;
    static constexpr int words = (N + static_cast<int>(layout.slots) - 1) / static_cast<int>(layout.slots);
    static_assert(words == 1, "ten qudits of ten levels fit one word, and the order of labels uses one");

    std::array<std::uint64_t, words> values{};
    std::array<std::uint64_t, words> dimensions{}; ///< each dimension less one, so that it fits its field

    /// Unchecked; an index that is no qudit's reaches some other field of the same label.
    DitProxy<D> operator[](int qudit) { return {values[0], dimensions[0], layout.position(qudit)}; }
    Dit operator[](int qudit) const { return {layout.level(values[0], qudit), layout.dimension(dimensions[0], qudit)}; }

    /// The same for an index that a caller supplied. @throws what refuse_index raises
    [[nodiscard]] Dit at(int qudit) const {
        refuse_index(qudit, N);
        return (*this)[qudit];
    }

    /// What orders labels and tells them apart.
    [[nodiscard]] std::uint64_t key() const noexcept { return values[0]; }

    /// All N dits, in qudit order.
    [[nodiscard]] std::vector<Dit> dits() const {
        std::vector<Dit> all;
        all.reserve(N);
        for (int qudit = 0; qudit < N; ++qudit) all.push_back((*this)[qudit]);
        return all;
    }
};
} // namespace vantel::qudit
