/// Numbers keys in the order in which they are first seen.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vantel::qudit {

/// A number for each distinct key, counted from 0 in first-seen order: the position at which a linear
/// search through the keys seen so far would find it, or append it. For a key space small enough for one
/// slot a key.
class DirectKeyIndex {
public:
    explicit DirectKeyIndex(std::size_t key_space) : slots_(key_space, 0) {}

    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    /// The key's number; equal to the former size() if it is new.
    std::size_t find_or_add(std::uint64_t key) noexcept {
        std::uint32_t& slot = slots_[key];
        if (slot == 0)
            slot = ++size_;
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
    explicit HashedKeyIndex(std::size_t expected) { resize(std::bit_ceil(2 * expected + 2)); }

    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    std::size_t find_or_add(std::uint64_t key) {
        for (std::size_t slot = home(key);; slot = (slot + 1) & (slots_.size() - 1)) {
            if (slots_[slot].number == 0) {
                if (2 * size_ >= slots_.size()) {
                    grow();
                    return find_or_add(key);
                }
                slots_[slot] = {key, ++size_};
                return size_ - 1;
            }
            if (slots_[slot].key == key)
                return slots_[slot].number - 1;
        }
    }

private:
    struct Slot {
        std::uint64_t key;
        std::uint64_t number; ///< plus one; 0 for a free slot
    };

    [[nodiscard]] std::size_t home(std::uint64_t key) const noexcept {
        return key * 0x9E3779B97F4A7C15U >> shift_; // 2^64 over the golden ratio
    }

    void resize(std::size_t size) {
        slots_.assign(size, {0, 0});
        shift_ = 64 - static_cast<unsigned>(std::countr_zero(size));
    }

    void grow() {
        HashedKeyIndex larger(slots_.size());
        for (const Slot& slot : slots_)
            if (slot.number != 0) {
                std::size_t place = larger.home(slot.key);
                while (larger.slots_[place].number != 0)
                    place = (place + 1) & (larger.slots_.size() - 1);
                larger.slots_[place] = slot;
            }
        slots_.swap(larger.slots_);
        shift_ = larger.shift_;
    }

    std::vector<Slot> slots_;
    std::size_t size_ = 0;
    unsigned shift_ = 0;
};

/// Calls `use` with an index for keys below 2^bits, about `expected` of them distinct: the direct one where
/// its slots are few.
template <class Use> auto with_key_index(unsigned bits, std::size_t expected, Use use) {
    constexpr std::size_t always_few = 256;
    if (bits < 32 && std::size_t{1} << bits <= always_few + 4 * expected) {
        DirectKeyIndex index(std::size_t{1} << bits);
        return use(index);
    }
    HashedKeyIndex index(expected);
    return use(index);
}

} // namespace vantel::qudit
