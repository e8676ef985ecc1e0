/// Numbers keys in the order in which they are first seen.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vantel::qudit {

/// Gives each distinct key the position at which a linear search through the keys seen so far would find
/// it, or at which it would be appended. Expected constant time a key.
class KeyIndex {
public:
    /// @param bits      no key has a bit set at or above this one
    /// @param expected  about as many distinct keys as will come; more are welcome
    KeyIndex(unsigned bits, std::size_t expected) : bits_(bits), expected_(expected) {
        keys_.reserve(expected);
    }

    [[nodiscard]] std::size_t size() const noexcept { return keys_.size(); }

    /// The key's position; equal to the former size() if it is new.
    std::size_t find_or_add(std::uint64_t key) {
        if (table_.empty()) {
            const auto found = std::find(keys_.begin(), keys_.end(), key);
            const auto position = static_cast<std::size_t>(found - keys_.begin());
            if (found == keys_.end())
                add(key);
            return position;
        }
        for (std::size_t slot = home(key);; slot = (slot + 1) & (table_.size() - 1)) {
            if (table_[slot] == 0) {
                add(key, slot);
                return keys_.size() - 1;
            }
            if (keys_[table_[slot] - 1] == key)
                return table_[slot] - 1;
        }
    }

private:
    /// Up to here a search through the keys beats the table.
    static constexpr std::size_t few = 8;

    [[nodiscard]] std::size_t home(std::uint64_t key) const noexcept {
        return static_cast<std::size_t>(key * multiplier_ >> shift_) & (table_.size() - 1);
    }

    void add(std::uint64_t key) {
        keys_.push_back(key);
        if (keys_.size() > few)
            rebuild(std::max(expected_, 2 * keys_.size()));
    }

    void add(std::uint64_t key, std::size_t slot) {
        keys_.push_back(key);
        table_[slot] = keys_.size();
        if (shift_ != 0 && 2 * keys_.size() > table_.size())
            rebuild(2 * keys_.size());
    }

    /// A table that covers the whole key space needs no hash: each key is its own slot.
    void rebuild(std::size_t expected) {
        const std::size_t hashed = std::bit_ceil(2 * expected);
        const bool direct = bits_ < 32 && std::size_t{1} << bits_ <= 8 * hashed;
        const std::size_t size = direct ? std::size_t{1} << bits_ : hashed;
        multiplier_ = direct ? 1 : 0x9E3779B97F4A7C15U; // 2^64 over the golden ratio
        shift_ = direct ? 0 : 64 - static_cast<unsigned>(std::countr_zero(size));
        table_.assign(size, 0);
        for (std::size_t position = 0; position < keys_.size(); ++position) {
            std::size_t slot = home(keys_[position]);
            while (table_[slot] != 0)
                slot = (slot + 1) & (size - 1);
            table_[slot] = position + 1;
        }
    }

    std::vector<std::uint64_t> keys_;
    std::vector<std::size_t> table_; ///< position plus one, 0 for a free slot; empty while keys are few
    unsigned bits_;
    std::size_t expected_;
    unsigned shift_ = 0;
    std::uint64_t multiplier_ = 1;
};

} // namespace vantel::qudit
