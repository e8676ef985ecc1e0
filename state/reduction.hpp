/// Sort, merge, drop; and the order that this leaves, for whoever knows the sums without it.
#pragma once

#include "algorithms/lanes.hpp"
#include "state/entries.hpp"
#include <algorithm>

namespace vantel::qudit {
/// 2^-23, compared in double.
inline constexpr double DROP_THRESHOLD = 1.1920928955078125e-07;

/// Whether an entry stays in a reduced list: whether |real part| or |imaginary part| is above the threshold. The parts
/// are tested one by one, a box around zero and not a circle; a NaN part does not exceed.
inline bool exceeds_threshold(Parts amplitude) noexcept {
    return std::abs(amplitude[0]) > DROP_THRESHOLD || std::abs(amplitude[1]) > DROP_THRESHOLD;
}

/// The same for a register of amplitudes, as a mask of both words of each.
template <class Vectors>
[[gnu::always_inline]] inline auto exceed_threshold(typename Numbers<Vectors>::Register amplitudes) noexcept {
    using Register = typename Numbers<Vectors>::Register;
    using Mask = typename Numbers<Vectors>::Mask;
    constexpr std::uint64_t unsigned_bits = ~std::uint64_t{0} >> 1;
    const auto sizes = reinterpret_cast<Register>(reinterpret_cast<Mask>(amplitudes) & unsigned_bits);
    const auto exceed = reinterpret_cast<Register>(sizes > DROP_THRESHOLD);
    return reinterpret_cast<Mask>(exceed) | reinterpret_cast<Mask>(exchanged(exceed));
}

/// Makes a list sparse again: sorts it by label, sums the amplitudes of equal labels in the order in which they stood,
/// and drops each sum that does not exceed the threshold. The drop fills each hole with the kept entry nearest the
/// tail, so the list is not sorted afterwards, deliberately: the stored order decides the order of every result.
/// @return how many entries stay, at the front of the list; what lies behind them is to be erased
std::size_t reduce_entries(std::span<PackedAmplitude> list) noexcept;

/// Writes what reduce_entries leaves of a list, order included, from the list's sums alone. In the sorted list a run of
/// equal labels ends with its sum and is a hole before it. The drop lets each kept sum stand that has its place among
/// the first of the list, as many as are kept; the others fill the holes between, the last of them the first hole.
class ReducedOrder {
public:
    /// @param list        as many entries as sums that exceed the threshold will be added
    /// @param dimensions  the dimensions of every label
    /// @param holes       scratch for one place more than `list` has
    ReducedOrder(std::span<PackedAmplitude> list, std::uint64_t dimensions, std::uint32_t* holes) noexcept
        : list_(list.data()), size_(list.size()), dimensions_(dimensions), holes_(holes) {}

    /// Adds the sum of `run` equal labels. Sums come in ascending order of their labels.
    /// @return whether it stays
    [[gnu::always_inline]] bool add(std::uint64_t values, Parts amplitude, std::size_t run) noexcept {
        if (!exceeds_threshold(amplitude)) [[unlikely]] {
            note_holes(length_, length_ + run);
            length_ += run;
            return false;
        }
        keep(values, amplitude, run);
        return true;
    }

    /// The same for a sum that is known to stay.
    [[gnu::always_inline]] void keep(std::uint64_t values, Parts amplitude, std::size_t run) noexcept {
        const std::size_t first = length_;
        length_ += run;
        std::size_t place = length_ - 1;
        // No branch depends on how many labels a sum is of, as long as they are one or two: what is no hole is
        // overwritten by the next.
        if (run <= 2 && first < size_) {
            holes_[hole_count_] = static_cast<std::uint32_t>(first);
            hole_count_ += run - 1;
        } else {
            note_holes(first, place);
        }
        if (place >= size_) place = holes_[--hole_count_];
        PackedAmplitude& entry = list_[place];
        entry.values = values;
        entry.dimensions = dimensions_;
        store(amplitude, entry.amplitude);
    }

private:
    void note_holes(std::size_t place, std::size_t end) noexcept {
        for (; place < std::min(end, size_); ++place) holes_[hole_count_++] = static_cast<std::uint32_t>(place);
    }

    PackedAmplitude* list_;
    std::size_t size_;
    std::uint64_t dimensions_;
    std::uint32_t* holes_; ///< places of the list that no sum has taken yet, ascending, and one more
    std::size_t hole_count_ = 0;
    std::size_t length_ = 0; ///< of the sorted list up to now
};

/// The places that ReducedOrder gives where every sum is of `run` labels and none is dropped, without a list of holes.
class UniformOrder {
public:
    UniformOrder(std::size_t sums, std::size_t run) noexcept
        : run_(run), staying_(sums / run), place_(run - 1), holes_left_(sums % run) {}

    /// Calls `use(i, place)` for the next `count` sums, ascending by label.
    template <class Use> [[gnu::always_inline]] void take(std::size_t count, Use use) noexcept {
        std::size_t i = 0;
        for (const std::size_t staying = std::min(count, staying_); i < staying; ++i, place_ += run_) use(i, place_);
        staying_ -= i;
        for (; i < count; ++i) {
            while (holes_left_ == 0) {
                place_ -= run_;
                holes_left_ = run_ - 1;
            }
            --holes_left_;
            use(i, place_ + 1 - run_ + holes_left_);
        }
    }

private:
    std::size_t run_;
    std::size_t staying_;    ///< sums that are still to come to a place of their own
    std::size_t place_;      ///< where the present run ends
    std::size_t holes_left_; ///< of the present run
};
} // namespace vantel::qudit
