/// A list that allocates nothing while it is short.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <type_traits>
#include <vector>

namespace vantel {
/// Up to `few` elements stand in the list itself, more of them on the heap. It only ever grows.
template <class T, std::size_t few> class ShortList {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_default_constructible_v<T>);

public:
    ShortList() = default;
    /// A list of elements that are still to be written.
    /// @throws std::length_error for a size beyond all memory; std::bad_alloc
    explicit ShortList(std::size_t size) : size_(size), many_(size > few ? size : 0) {}

    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] T* data() noexcept { return size_ > few ? many_.data() : few_.data(); }
    [[nodiscard]] const T* data() const noexcept { return size_ > few ? many_.data() : few_.data(); }

    T* begin() noexcept { return data(); }
    T* end() noexcept { return data() + size_; }
    [[nodiscard]] const T* begin() const noexcept { return data(); }
    [[nodiscard]] const T* end() const noexcept { return data() + size_; }
    T& operator[](std::size_t i) noexcept { return data()[i]; }
    const T& operator[](std::size_t i) const noexcept { return data()[i]; }

    /// Makes sure that growing to `size` elements cannot fail.
    /// @throws std::bad_alloc, and nothing has changed then
    void reserve(std::size_t size) {
        if (size > few) many_.reserve(size);
    }

    /// Grows to `size` elements, the new ones equal to `value`. @throws as reserve
    void grow(std::size_t size, T value) {
        if (size <= few) {
            std::fill(end(), begin() + size, value);
        } else {
            many_.resize(size, value);
            if (size_ <= few) std::copy(begin(), end(), many_.begin());
        }
        size_ = size;
    }

    void push_back(T value) { grow(size_ + 1, value); }

private:
    std::size_t size_ = 0;
    std::array<T, few> few_; ///< not cleared, which would cost as much as writing it
    std::vector<T> many_;    ///< all elements where they are more than `few`
};
} // namespace vantel
