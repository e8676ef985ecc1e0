/// Numbers keys in the order in which they are first seen.
#pragma once

#include "algorithms/crossovers.hpp"
#include <bit>
#include <limits>
#include <stdexcept>
#include <vector>

namespace vantel {
/// A number for each distinct key, counted from 0 in first-seen order: the position at which a linear search through
/// the keys seen so far would find it, or append it. For a key space small enough for one slot a key.
class DirectKeyIndex {
public:
    explicit DirectKeyIndex(std::size_t key_space) : slots_(key_space, 0) {}
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    /// The key's number; equal to the former size() if it is new.
    std::size_t find_or_add(std::uint64_t key) noexcept {
        std::uint32_t& slot = slots_[key];
        if (slot == 0) slot = ++size_;
        return slot - 1;
    }

private:
    std::vector<std::uint32_t> slots_; ///< the key's number plus one; 0 if it has none
    std::uint32_t size_ = 0;
};

/// The same for any keys, in expected constant time each: open addressing with linear probing.
class HashedKeyIndex {
public:
    /// @param expected  about as many distinct keys as will come; more are welcome
    explicit HashedKeyIndex(std::size_t expected) {
        keys_.reserve(expected);
        spread(std::bit_ceil(2 * expected + 2));
    }

    [[nodiscard]] std::size_t size() const noexcept { return keys_.size(); }

    /// @throws std::bad_alloc; std::length_error for the 2^32nd distinct key
    std::size_t find_or_add(std::uint64_t key) {
        std::size_t slot = home(key);
        for (; slots_[slot] != 0; slot = (slot + 1) & (slots_.size() - 1))
            if (keys_[slots_[slot] - 1] == key) return slots_[slot] - 1;
        if (keys_.size() == std::numeric_limits<std::uint32_t>::max())
            throw std::length_error("too many distinct basis states");
        keys_.push_back(key);
        slots_[slot] = static_cast<std::uint32_t>(keys_.size());
        if (2 * keys_.size() > slots_.size()) spread(2 * slots_.size());
        return keys_.size() - 1;
    }

private:
    [[nodiscard]] std::size_t home(std::uint64_t key) const noexcept {
        return key * 0x9E3779B97F4A7C15U >> shift_; // 2^64 over the golden ratio
    }

    /// Gives the keys a new table. @param size  a power of two, at least twice their number
    void spread(std::size_t size) {
        std::vector<std::uint32_t>(size, 0).swap(slots_);
        shift_ = 64 - static_cast<unsigned>(std::countr_zero(size));
        for (std::size_t i = 0; i < keys_.size(); ++i) {
            std::size_t slot = home(keys_[i]);
            while (slots_[slot] != 0) slot = (slot + 1) & (size - 1);
            slots_[slot] = static_cast<std::uint32_t>(i + 1);
        }
    }

    std::vector<std::uint64_t> keys_;  ///< by number
    std::vector<std::uint32_t> slots_; ///< the number plus one of the key that hashed there; 0 if free
    unsigned shift_ = 0;
};

/// Calls `use` with an index for keys below 2^bits, about `expected` of them distinct: the direct one if it is small.
template <class Use> auto with_key_index(unsigned bits, std::size_t expected, Use use) {
    if (bits < 32 && std::size_t{1} << bits <= crossover::direct_keys + crossover::direct_keys_each * expected) {
        DirectKeyIndex index(std::size_t{1} << bits);
        return use(index);
    }
    HashedKeyIndex index(expected);
    return use(index);
}
} // namespace vantel
