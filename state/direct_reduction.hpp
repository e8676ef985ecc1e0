/// The direct form of `reduce`, for whoever knows the sums already.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "state/basis_amplitude.hpp"
#include "state/drop_threshold.hpp"
#include "state/product.hpp"

namespace vantel::qudit {

/// Writes what reduce_entries leaves of a list, order included, from the list's sums alone. In the sorted
/// list a run of equal labels ends with its sum and is a hole before it. The drop lets each kept sum stand
/// that has its place among the first of the list, as many as there are kept sums; the others fill the
/// holes between, the last of them the first hole.
class DirectReduction {
public:
    /// @param list        as many entries as sums that exceed the threshold will be added
    /// @param dimensions  the dimensions of every label
    /// @param holes       scratch for as many places as `list` has
    DirectReduction(std::span<PackedAmplitude> list, std::uint64_t dimensions, std::uint32_t* holes) noexcept
        : list_(list.data()), size_(list.size()), dimensions_(dimensions), holes_(holes) {}

    /// Adds the sum of `run` equal labels. Sums come in ascending order of their labels.
    void add(std::uint64_t values, Parts amplitude, std::size_t run) noexcept {
        length_ += run;
        if (!exceeds_threshold(amplitude))
            return;
        const std::size_t place = length_ - 1;
        if (place < size_) {
            note_holes_before(place);
            covered_ = place + 1;
            write(values, amplitude, place);
        } else {
            note_holes_before(size_);
            write(values, amplitude, holes_[--hole_count_]);
        }
    }

private:
    void note_holes_before(std::size_t end) noexcept {
        for (; covered_ < end; ++covered_)
            holes_[hole_count_++] = static_cast<std::uint32_t>(covered_);
    }

    void write(std::uint64_t values, Parts amplitude, std::size_t place) noexcept {
        PackedAmplitude& entry = list_[place];
        entry.values = values;
        entry.dimensions = dimensions_;
        store(amplitude, entry.amplitude);
    }

    PackedAmplitude* list_;
    std::size_t size_;
    std::uint64_t dimensions_;
    std::uint32_t* holes_; ///< places of the list that no sum has taken yet, ascending
    std::size_t hole_count_ = 0;
    std::size_t covered_ = 0; ///< places before this one are taken or noted as holes
    std::size_t length_ = 0;  ///< of the sorted list up to now
};

/// The places that DirectReduction gives, where every sum is of `run` labels and none is dropped.
class UniformReduction {
public:
    UniformReduction(std::size_t sums, std::size_t run) noexcept
        : run_(run), staying_(sums / run), place_(run - 1), holes_left_(sums % run) {}

    /// Calls `use(i, place)` for the next `count` sums, ascending by label.
    template <class Use> void take(std::size_t count, Use use) noexcept {
        std::size_t i = 0;
        for (const std::size_t staying = std::min(count, staying_); i < staying; ++i, place_ += run_)
            use(i, place_);
        staying_ -= i;
        // Backwards through the holes: the tail that is no whole run, and then one run before another.
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

/// The same where each sum is of one label or of two.
class PairedReduction {
public:
    /// @param holes  scratch for one place more than there are sums
    PairedReduction(std::size_t sums, std::uint32_t* holes) noexcept : sums_(sums), holes_(holes) {}

    /// The place of the next sum, ascending by label.
    /// @param second  1 for a sum of two labels, 0 for that of one
    std::size_t next(std::size_t second) noexcept {
        const std::size_t first = length_;
        length_ += 1 + second;
        // No branch hangs on the number of labels: what is no hole is overwritten by the next.
        if (first < sums_) {
            holes_[hole_count_] = static_cast<std::uint32_t>(first);
            hole_count_ += second;
            if (first + second < sums_)
                return first + second;
        }
        return holes_[--hole_count_];
    }

private:
    std::size_t sums_;
    std::uint32_t* holes_; ///< places of the list that no sum has taken yet, ascending, and one more
    std::size_t hole_count_ = 0;
    std::size_t length_ = 0; ///< of the sorted list up to now
};

} // namespace vantel::qudit
