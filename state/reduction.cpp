/// The step that keeps a list sparse.
#include "state/reduction.hpp"
#include "algorithms/crossovers.hpp"
#include "algorithms/radix_sort.hpp"
#include "algorithms/two_ended_partition.hpp"
#include <new>

namespace vantel::qudit {
namespace {
/// Sorts words that hold key and position together, and then gathers the entries once.
void radix_sort_entries(std::span<PackedAmplitude> list, unsigned index_bits) {
    std::vector<std::uint64_t> items(2 * list.size());
    const std::span<std::uint64_t> order(items.data(), list.size());
    for (std::size_t i = 0; i < list.size(); ++i) order[i] = list[i].values << index_bits | i;
    radix_sort(order, {items.data() + list.size(), list.size()}, index_bits);
    std::vector<PackedAmplitude> sorted;
    sorted.reserve(list.size());
    for (const std::uint64_t item : order) sorted.push_back(list[item & ((std::uint64_t{1} << index_bits) - 1)]);
    std::copy(sorted.begin(), sorted.end(), list.begin());
}

/// Stable, so that the sums of the merge have one settled order.
void sort_by_key(std::span<PackedAmplitude> list) noexcept {
    constexpr unsigned index_bits = 24; // a key has at most 40 bits
    if (list.size() <= crossover::items_inserted)
        return insertion_sort(list, [](const PackedAmplitude& entry) { return entry.values; });
    try {
        if (list.size() >= crossover::items_for_radix && list.size() < std::size_t{1} << index_bits)
            return radix_sort_entries(list, index_bits);
    } catch (const std::bad_alloc&) {
        // The reduction must not fail for want of scratch memory: it goes on without, more slowly.
    }
    std::ranges::stable_sort(list, {}, &PackedAmplitude::values);
}

/// Sums each run of equal labels forward into its last entry and leaves zeros before it.
void merge_runs(std::span<PackedAmplitude> list) noexcept {
    for (std::size_t i = 0; i + 1 < list.size(); ++i) {
        if (list[i].values != list[i + 1].values) continue;
        store(parts_of(list[i].amplitude) + parts_of(list[i + 1].amplitude), list[i + 1].amplitude);
        store(Parts{}, list[i].amplitude);
    }
}
} // namespace

std::size_t reduce_entries(std::span<PackedAmplitude> list) noexcept {
    sort_by_key(list);
    merge_runs(list);
    return partition_two_ended(list, judged_by(list, [](const PackedAmplitude& entry) {
                                   return exceeds_threshold(parts_of(entry.amplitude));
                               }));
}
} // namespace vantel::qudit
