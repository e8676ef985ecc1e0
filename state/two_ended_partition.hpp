/// The division of a list that both the drop of `reduce` and the projection of `measure` are told by.
#pragma once

#include <cstddef>
#include <span>
#include <utility>

namespace vantel::qudit {

/// Moves the entries that `keep` accepts to the front. Each hole, from the front, is filled with the kept
/// entry nearest the tail, so order is not kept. That order is part of the behaviour: a stable removal
/// will not do.
/// @return how many are kept; what lies behind them is to be erased
template <class Entry, class Keep>
std::size_t partition_two_ended(std::span<Entry> list, Keep keep) noexcept {
    std::size_t front = 0;
    std::size_t back = list.size();
    while (true) {
        while (front != back && keep(list[front]))
            ++front;
        if (front == back)
            return front;
        do
            --back;
        while (front != back && !keep(list[back]));
        if (front == back)
            return front;
        std::swap(list[front], list[back]);
        ++front;
    }
}

} // namespace vantel::qudit
