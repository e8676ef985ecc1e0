/// The division of a list that both the drop of `reduce` and the projection of `measure` are told by.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace vantel::qudit {

/// Moves the entries that `keep` accepts to the front; there are `kept` of them. Each hole, from the front,
/// is filled with the kept entry nearest the tail, so order is not kept. That order is part of the behaviour:
/// a stable removal will not do. Holes and fillings are noted in small batches, without a branch on what no
/// processor could predict; nothing is allocated. What lies behind the kept entries is to be erased.
template <class Entry, class Keep>
void partition_two_ended(std::span<Entry> list, std::size_t kept, Keep keep) noexcept {
    // As many entries are kept behind place `kept` as are missing before it.
    constexpr std::size_t batch = 64;
    std::array<std::size_t, batch> holes;
    std::array<std::size_t, batch> fillings;
    std::size_t front = 0;
    std::size_t back = list.size();
    while (front < kept) {
        std::size_t hole_count = 0;
        for (; front < kept && hole_count < batch; ++front) {
            holes[hole_count] = front;
            hole_count += keep(list[front]) ? 0 : 1;
        }
        std::size_t filling_count = 0;
        while (filling_count < hole_count) {
            fillings[filling_count] = --back;
            filling_count += keep(list[back]) ? 1 : 0;
        }
        for (std::size_t i = 0; i < hole_count; ++i)
            list[holes[i]] = list[fillings[i]];
    }
}

/// The same where the kept entries have not been counted yet. @return how many there are
template <class Entry, class Keep>
std::size_t partition_two_ended(std::span<Entry> list, Keep keep) noexcept {
    std::size_t kept = 0;
    for (const Entry& entry : list)
        kept += keep(entry) ? 1 : 0;
    partition_two_ended(list, kept, keep);
    return kept;
}

} // namespace vantel::qudit
