#include "gates/fourier_sums.hpp"
#include "state/reduction.hpp"

namespace vantel::qudit {
namespace {
/// Calls `visit(k, begin, end)` for the k-th sums of neighbouring groups that are neighbours too, as labels are
/// ordered: by the levels above the target's first, then by the target's, then by those below.
template <class Visit> [[gnu::always_inline]] inline void for_each_stretch(const FourierSums& sums, Visit visit) {
    for (std::size_t begin = 0, end = 0; begin < sums.count; begin = end) {
        const std::uint64_t above = sums.groups[begin].others >> sums.position;
        while (end < sums.count && sums.groups[end].others >> sums.position == above) ++end;
        for (std::uint64_t k = 0; k < sums.dimension; ++k) visit(k, begin, end);
    }
}

/// All sums of a list of which none is dropped and each is of as many children.
void write_uniform(const FourierSums& sums, std::span<PackedAmplitude> list) {
    wide_loop([list, sums]() VANTEL_INLINED {
        UniformOrder order(sums.kept, sums.groups[0].run);
        for_each_stretch(sums, [&](std::uint64_t k, std::size_t begin, std::size_t end) VANTEL_INLINED {
            const Parts* const sum = sums.sum(begin, k);
            order.take(end - begin, [&](std::size_t i, std::size_t place) VANTEL_INLINED {
                PackedAmplitude& entry = list[place];
                entry.values = sums.groups[begin + i].others | k << sums.position;
                entry.dimensions = sums.dimensions;
                store(sum[i * sums.group_stride], entry.amplitude);
            });
        });
    });
}

template <bool all_stay>
void write_each(const FourierSums& sums, std::span<PackedAmplitude> list, std::uint32_t* holes) {
    wide_loop([list, holes, sums]() VANTEL_INLINED {
        ReducedOrder order(list, sums.dimensions, holes);
        for_each_stretch(sums, [&](std::uint64_t k, std::size_t begin, std::size_t end) VANTEL_INLINED {
            const Parts* sum = sums.sum(begin, k);
            for (const FourierSums::Group& group : std::span(sums.groups + begin, sums.groups + end)) {
                const std::uint64_t values = group.others | k << sums.position;
                if constexpr (all_stay)
                    order.keep(values, *sum, group.run);
                else if (group.run != 0 || (group.present >> k & 1) != 0)
                    order.add(values, *sum, std::max(group.run, 1U));
                sum += sums.group_stride;
            }
        });
    });
}
} // namespace

void FourierSums::write(std::span<PackedAmplitude> list, std::uint32_t* holes) const noexcept {
    if (kept != count * dimension)
        write_each<false>(*this, list, holes);
    else if (same_run)
        write_uniform(*this, list);
    else
        write_each<true>(*this, list, holes);
}
} // namespace vantel::qudit
