/// Many bytes of which few are set.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace vantel::qudit {

/// Zeroed bytes whose set ones are found eight at a time.
class SparseBytes {
public:
    SparseBytes() = default;
    explicit SparseBytes(std::size_t size) : bytes_((size + stride - 1) / stride * stride, 0) {}

    std::uint8_t& operator[](std::size_t place) noexcept { return bytes_[place]; }

    /// Calls `visit(place, byte)` for each byte that is not 0, ascending.
    template <class Visit> void for_each_set(Visit visit) const {
        for (std::size_t first = 0; first < bytes_.size(); first += stride) {
            std::uint64_t any;
            std::memcpy(&any, &bytes_[first], stride);
            if (any == 0)
                continue;
            for (std::size_t place = first; place < first + stride; ++place)
                if (bytes_[place] != 0)
                    visit(place, bytes_[place]);
        }
    }

private:
    static constexpr std::size_t stride = sizeof(std::uint64_t);

    std::vector<std::uint8_t> bytes_;
};

} // namespace vantel::qudit
