/// The first words of std::mt19937 without the rest of them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>

namespace vantel {
/// The words that the first `count` calls of std::mt19937(seed) return. The engine itself fills all its 624 words of
/// state and turns them over before the first call, which takes longer than opening the device that the seed comes
/// from.
template <std::size_t count> std::array<std::uint32_t, count> first_words(std::uint32_t seed) noexcept {
    using Engine = std::mt19937;
    static_assert(Engine::shift_size + count <= Engine::state_size, "later words depend on earlier ones");
    constexpr auto low_bits = (std::uint32_t{1} << Engine::mask_bits) - 1;
    constexpr auto multiplier = static_cast<std::uint32_t>(Engine::initialization_multiplier);
    constexpr auto xor_mask = static_cast<std::uint32_t>(Engine::xor_mask);

    std::array<std::uint32_t, Engine::shift_size + count> state;
    state[0] = seed;
    for (std::uint32_t i = 1; i < state.size(); ++i)
        state[i] = multiplier * (state[i - 1] ^ state[i - 1] >> (Engine::word_size - 2)) + i;

    std::array<std::uint32_t, count> words;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t joined = (state[i] & ~low_bits) | (state[i + 1] & low_bits);
        std::uint32_t word = state[i + Engine::shift_size] ^ joined >> 1 ^ (joined & 1) * xor_mask;
        word ^= word >> Engine::tempering_u & static_cast<std::uint32_t>(Engine::tempering_d);
        word ^= word << Engine::tempering_s & static_cast<std::uint32_t>(Engine::tempering_b);
        word ^= word << Engine::tempering_t & static_cast<std::uint32_t>(Engine::tempering_c);
        words[i] = word ^ word >> Engine::tempering_l;
    }
    return words;
}
} // namespace vantel
