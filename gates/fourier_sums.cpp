#include "gates/fourier_sums.hpp"
#include "algorithms/wide_loop.hpp"
#include "state/reduction.hpp"
#include <array>

namespace vantel::qudit {
FourierSums::FourierSums(std::size_t most, SlotLayout layout, int target, const PackedAmplitude& first,
                         Scratch& scratch)
    : dimension_(layout.dimension(first.dimensions, target)), position_(layout.position(target)),
      dimensions_(first.dimensions), groups_(scratch.take<Group>(most)), sums_(scratch.take<Parts>(most * dimension_)) {
}

/// Calls `visit(begin, end)` for neighbouring groups whose k-th sums are neighbours too, as labels are ordered: by the
/// levels above the target's first, then by the target's, then by those below.
template <class Visit> [[gnu::always_inline]] inline void FourierSums::for_each_stretch(Visit visit) const noexcept {
    for (std::size_t begin = 0, end = 0; begin < count_; begin = end) {
        const std::uint64_t above = groups_[begin].others >> position_;
        while (end < count_ && groups_[end].others >> position_ == above) ++end;
        visit(begin, end);
    }
}

[[gnu::always_inline]] inline void FourierSums::write_uniform(std::span<PackedAmplitude> list) const noexcept {
    constexpr std::size_t tile = 64; // groups, whose sums stay at hand while they are written level by level
    const std::size_t run = groups_[0].run;
    UniformOrder order(kept_, run);
    std::size_t first = 0; // the number of a stretch's first sum
    for_each_stretch([&, own = *this](std::size_t begin, std::size_t end) VANTEL_INLINED {
        const auto write_tile = [&](UniformOrder& places, std::uint64_t k, std::size_t from, std::size_t count)
                                    VANTEL_INLINED {
                                        const Group* const group = own.groups_ + from;
                                        const Parts* const sum = own.sums_ + from * own.dimension_ + k;
                                        places.take(count, [&](std::size_t i, std::size_t place) VANTEL_INLINED {
                                            PackedAmplitude& entry = list[place];
                                            entry.values = group[i].others | k << own.position_;
                                            entry.dimensions = own.dimensions_;
                                            store(sum[i * own.dimension_], entry.amplitude);
                                        });
                                    };
        const std::size_t count = end - begin;
        if (count <= tile) {
            for (std::uint64_t k = 0; k < own.dimension_; ++k) write_tile(order, k, begin, count);
        } else {
            std::array<UniformOrder, 16> of_level;
            for (std::uint64_t k = 0; k < own.dimension_; ++k)
                of_level[k] = UniformOrder(own.kept_, run, first + k * count);
            for (std::size_t from = begin; from < end; from += tile)
                for (std::uint64_t k = 0; k < own.dimension_; ++k)
                    write_tile(of_level[k], k, from, std::min(tile, end - from));
            order = UniformOrder(own.kept_, run, first + own.dimension_ * count);
        }
        first += own.dimension_ * count;
    });
}

template <bool all_stay> [[gnu::always_inline]] inline void
FourierSums::write_each(std::span<PackedAmplitude> list, std::uint32_t* holes) const noexcept {
    ReducedOrder order(list, dimensions_, holes);
    for_each_stretch([&, own = *this](std::size_t begin, std::size_t end) VANTEL_INLINED {
        for (std::uint64_t k = 0; k < own.dimension_; ++k)
            for (std::size_t i = begin; i < end; ++i) {
                const Group& group = own.groups_[i];
                const Parts sum = own.sums_[i * own.dimension_ + k];
                if constexpr (all_stay)
                    order.keep(group.others | k << own.position_, sum, group.run);
                else if (group.run != 0)
                    order.add(group.others | k << own.position_, sum, group.run);
                else if ((group.present >> k & 1) != 0)
                    order.add(group.others | k << own.position_, sum, 1);
            }
    });
}

void FourierSums::write(std::span<PackedAmplitude> list, std::uint32_t* holes) const noexcept {
    if (kept_ != count_ * dimension_)
        wide_loop([list, holes, own = *this]() VANTEL_INLINED { own.write_each<false>(list, holes); });
    else if (same_run_)
        wide_loop([list, own = *this]() VANTEL_INLINED { own.write_uniform(list); });
    else
        wide_loop([list, holes, own = *this]() VANTEL_INLINED { own.write_each<true>(list, holes); });
}
} // namespace vantel::qudit
