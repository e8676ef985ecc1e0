#pragma once

#include <cstdint>

namespace vantel::testing {
/// Stands before /dev/urandom while it lives, so that the drawn word is chosen. One at a time in each thread.
class RandomSource {
public:
    enum class Fault { none, cannot_open, cannot_read };

    explicit RandomSource(std::uint32_t word, Fault fault = Fault::none);
    ~RandomSource();
    RandomSource(const RandomSource&) = delete;
    RandomSource& operator=(const RandomSource&) = delete;

    [[nodiscard]] int opened() const; ///< how often the device was opened
    [[nodiscard]] int left_open() const;
    [[nodiscard]] int words_taken() const;
};
} // namespace vantel::testing
