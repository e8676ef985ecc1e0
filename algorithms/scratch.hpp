/// Memory for the time of one operation.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>

namespace vantel {
/// Hands out uncleared memory, from a spare stretch that somebody keeps as long as that suffices: memory that the
/// process has just been given costs more than most of what is done in it.
class Scratch {
public:
    explicit Scratch(std::span<std::byte> spare = {}) noexcept : spare_(spare) {}

    /// Room for `count` elements, good as long as this object and the spare stretch are. At most eight times.
    /// @throws std::bad_alloc
    template <class T> T* take(std::size_t count) {
        static_assert(alignof(T) <= alignment);
        const std::size_t bytes = (count * sizeof(T) + alignment - 1) / alignment * alignment;
        if (bytes > spare_.size())
            return reinterpret_cast<T*>((fresh_[taken_++] = std::unique_ptr<std::byte[]>(new std::byte[bytes])).get());
        std::byte* const begin = spare_.data();
        spare_ = spare_.subspan(bytes);
        return reinterpret_cast<T*>(begin);
    }

private:
    static constexpr std::size_t alignment = 16;

    std::span<std::byte> spare_;
    std::array<std::unique_ptr<std::byte[]>, 8> fresh_;
    std::size_t taken_ = 0;
};
} // namespace vantel
