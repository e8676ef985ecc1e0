#include "tests/fuzz/calls.hpp"
#include <cstdlib>
#include <iostream>

// NOLINTNEXTLINE(readability-identifier-naming): the name that libFuzzer calls
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr double budget = 20'000;
    const std::span bytes(data, size);
    const std::string mismatch = vantel::testing::run_calls(bytes, budget, nullptr).mismatch;
    if (!mismatch.empty()) {
        vantel::testing::run_calls(bytes, budget, &std::cout);
        std::cout << mismatch << '\n';
        std::abort();
    }
    return 0;
}
