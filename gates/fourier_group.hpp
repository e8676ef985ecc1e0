/// One group of the Fourier transform: its entries, and the sums that come of them.
#pragma once

#include "algorithms/constant_count.hpp"
#include "gates/fourier_factors.hpp"
#include "state/limits.hpp"
#include "state/reduction.hpp"
#include <numeric>

namespace vantel::qudit {
/// The d sums of a group in registers.
template <std::size_t d, class Vectors> class LevelSums {
    using In = Numbers<Vectors>;
    using Register = typename In::Register;

public:
    /// Adds the children of an entry, the `First` of the group or another.
    template <class First> [[gnu::always_inline]] void add(const FourierFactors::Row& row, Parts amplitude, First) {
        const Register all = In::all(amplitude);
        const Register crossed = exchanged(all);
        unrolled<registers>([&](auto i) VANTEL_INLINED {
            using Stored = typename In::Stored;
            const Register child = all * *reinterpret_cast<const Stored*>(&row.real[In::count * i]) +
                                   crossed * *reinterpret_cast<const Stored*>(&row.crossed[In::count * i]);
            sums_[i] = First() ? child : sums_[i] + child;
        });
    }

    /// @return whether all of them exceed the threshold, and so none has an infinity to recover
    [[gnu::always_inline]] bool store(Parts* sums, std::size_t stride) const {
        auto exceed = ~typename In::Mask{};
        unrolled<registers>([&](auto i) VANTEL_INLINED {
            auto of_register = exceed_threshold<Vectors>(sums_[i]);
            if constexpr (In::count * (i + 1) > d) // half of the last register
                of_register |= FourWords{0, 0, ~0ULL, ~0ULL};
            exceed &= of_register;
        });
        unrolled<d>([&](auto k)
                        VANTEL_INLINED { sums[k * stride] = In::template at<k % In::count>(sums_[k / In::count]); });
        return In::is_full(exceed);
    }

private:
    static constexpr std::size_t registers = (d + In::count - 1) / In::count;

    Register sums_[registers];
};

/// An entry of a group.
struct Member {
    std::uint32_t position; ///< in the list
    std::uint64_t level;    ///< of the target
};

/// All of them, in stored order.
template <std::size_t d> class Members {
public:
    /// @param row  by level, positions counted from 1; 0 where there is no entry
    [[gnu::always_inline]] explicit Members(const std::uint32_t* row) {
        unrolled<d>([&](auto level) VANTEL_INLINED {
            members_[count_] = (row[level] - 1) << level_bits | static_cast<std::uint32_t>(level);
            count_ += row[level] != 0 ? 1 : 0;
        });
        for (std::uint32_t end = 1; end < count_; ++end)
            for (std::uint32_t i = end; i > 0 && members_[i] < members_[i - 1]; --i)
                std::swap(members_[i], members_[i - 1]);
    }

    [[nodiscard]] std::uint32_t size() const { return count_; }
    [[nodiscard]] Member operator[](std::size_t i) const {
        return {members_[i] >> level_bits, members_[i] & ((1U << level_bits) - 1)};
    }

private:
    static constexpr unsigned level_bits = 4;

    std::array<std::uint32_t, MAX_QUDIT_DIMENSION + 1> members_;
    std::uint32_t count_ = 0;
};

/// The levels of a group that has an entry of each, as these are stored: mostly in the order of the one before.
template <std::size_t d> class StoredOrder {
public:
    StoredOrder() { std::iota(levels_.begin(), levels_.end(), std::uint8_t{0}); }
    /// @param members  one of each level
    explicit StoredOrder(const Members<d>& members) {
        for (std::size_t i = 0; i < d; ++i) levels_[i] = static_cast<std::uint8_t>(members[i].level);
    }
    /// Whether a group has an entry of each level, in this order.
    [[nodiscard, gnu::always_inline]] bool is_that_of(const std::uint32_t* row) const {
        if constexpr (d == 2) return std::min(row[0], row[1]) != 0;
        bool ascending = row[levels_[0]] != 0;
        unrolled<d - 1>([&](auto i) VANTEL_INLINED { ascending &= row[levels_[i]] < row[levels_[i + 1]]; });
        return ascending;
    }
    /// Two summands have one sum in either order.
    [[nodiscard]] std::uint64_t operator[](std::size_t i) const { return d == 2 ? i : levels_[i]; }

private:
    std::array<std::uint8_t, d> levels_;
};
} // namespace vantel::qudit
