/// One group of the Fourier transform: its entries, and the sums that come of them.
#pragma once

#include "algorithms/constant_count.hpp"
#include "gates/fourier_factors.hpp"
#include "state/limits.hpp"
#include "state/reduction.hpp"

namespace vantel::qudit {
/// The d sums of a group in registers.
template <std::size_t d, class Vectors> class LevelSums {
    using In = Numbers<Vectors>;
    using Register = typename In::Register;

public:
    [[gnu::always_inline]] void start(const FourierFactors::Row& row, Parts amplitude) {
        each_child(row, amplitude, [this](auto i, Register child) VANTEL_INLINED { sums_[i] = child; });
    }
    [[gnu::always_inline]] void add(const FourierFactors::Row& row, Parts amplitude) {
        each_child(row, amplitude, [this](auto i, Register child) VANTEL_INLINED { sums_[i] += child; });
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
        return !In::any(~exceed);
    }

private:
    static constexpr std::size_t registers = (d + In::count - 1) / In::count;

    template <class Use>
    [[gnu::always_inline]] static void each_child(const FourierFactors::Row& row, Parts amplitude, Use use) {
        const Register all = In::all(amplitude);
        const Register crossed = exchanged(all);
        unrolled<registers>([&](auto i) VANTEL_INLINED {
            using Stored = typename In::Stored;
            use(i, all * *reinterpret_cast<const Stored*>(&row.real[In::count * i]) +
                       crossed * *reinterpret_cast<const Stored*>(&row.crossed[In::count * i]));
        });
    }

    Register sums_[registers];
};

/// The entries of a group, in stored order. Where it is `full`, it has one of each level.
template <std::size_t d, bool full> class Members {
public:
    /// @param row  by level, positions counted from 1; 0 where there is no entry
    [[gnu::always_inline]] explicit Members(const std::uint32_t* row) {
        unrolled<d>([&](auto level) VANTEL_INLINED {
            members_[full ? decltype(level)() : count_] =
                (row[level] - 1) << level_bits | static_cast<std::uint32_t>(level);
            if constexpr (!full) count_ += row[level] != 0 ? 1 : 0;
        });
        // Two summands have one sum in either order.
        if constexpr (!full)
            sort_some();
        else if constexpr (d > 2)
            sort_all();
    }

    [[nodiscard]] std::uint32_t size() const { return full ? d : count_; }
    [[nodiscard]] std::uint32_t position(std::size_t i) const { return members_[i] >> level_bits; }
    [[nodiscard]] std::uint32_t level(std::size_t i) const { return members_[i] & ((1U << level_bits) - 1); }

private:
    static constexpr unsigned level_bits = 4;

    /// Insertion, without a branch on an order that no processor could foresee.
    [[gnu::always_inline]] void sort_all() {
        unrolled<d - 1>([this](auto sorted) VANTEL_INLINED {
            unrolled<sorted + 1>([this](auto passed) VANTEL_INLINED {
                constexpr std::size_t i = decltype(sorted)() + 1 - decltype(passed)();
                const std::uint32_t first = std::min(members_[i - 1], members_[i]);
                members_[i] = std::max(members_[i - 1], members_[i]);
                members_[i - 1] = first;
            });
        });
    }

    void sort_some() {
        for (std::uint32_t end = 1; end < count_; ++end)
            for (std::uint32_t i = end; i > 0 && members_[i] < members_[i - 1]; --i)
                std::swap(members_[i], members_[i - 1]);
    }

    std::array<std::uint32_t, MAX_QUDIT_DIMENSION + 1> members_;
    std::uint32_t count_ = 0;
};
} // namespace vantel::qudit
