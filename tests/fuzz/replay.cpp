// fuzz_replay FILE...             makes the calls of each file and says where library and model part
// fuzz_replay --trace FILE...     and each call before it is made
// fuzz_replay --random FROM TO    does so for random bytes, one sequence for each number
// fuzz_replay --series FROM TO    does so for projections, releases and merges in series and, after them,
// every
//                                 function on every handle
//
// Files are gone through with the library's loops in both their forms where the processor has both, and
// numbered sequences in one form or the other by turns.
#include "algorithms/wide_loop.hpp"
#include "tests/fuzz/calls.hpp"
#include <fstream>
#include <initializer_list>
#include <iostream>
#include <iterator>
#include <random>
#include <vector>

namespace {
using Bytes = std::vector<std::uint8_t>;

Bytes contents(const char* file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) throw std::runtime_error(std::string("cannot read ") + file);
    return {std::istreambuf_iterator<char>(in), {}};
}

Bytes random_bytes(unsigned number) {
    std::mt19937 dice(number);
    Bytes bytes(500 + dice() % 500);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(dice());
    return bytes;
}

/// Handles that stand twice in their joint state's list, or name none of its slots, come of these; and then
/// each call relates a new qudit in superposition to some of them, in front.
Bytes series_bytes(unsigned number) {
    std::mt19937 dice(number);
    const auto roll = [&](unsigned sides) { return static_cast<std::uint8_t>(dice() % sides); };
    Bytes bytes;
    const auto add = [&](std::initializer_list<int> more) {
        for (const int byte : more) bytes.push_back(static_cast<std::uint8_t>(byte));
    };
    constexpr int none = 0, two = 6; // conditions
    constexpr int never = 121;       // a condition that does not hold
    int handles = 0;
    const auto one = [&] { return static_cast<int>(roll(static_cast<unsigned>(handles))); };
    // As a second handle, one of any joint state.
    const auto another = [&] { return 256 - handles - 256 % handles + one(); };
    const auto make = [&] {
        add({1, roll(8) == 0 ? roll(9) : roll(2)});
        if (++handles, roll(8) != 0) add({3, handles - 1, none});
    };
    const auto level = [&] { return roll(4) == 0 ? 64 + roll(2) : never; };
    const auto relate = [&] { add({8, two, one(), never, another(), never, roll(14)}); };
    const auto project = [&] { add({12, two, one(), level(), another(), level(), roll(200)}); };
    for (int i = 2 + roll(2); i > 0; --i) make();
    for (int i = 1 + roll(3); i > 0; --i) {
        relate();
        project();
    }
    for (int round = 0; round < 10; ++round) {
        make();
        if (roll(3) == 0) add({7, one(), 197, none});
        if (roll(3) == 0) roll(2) == 0 ? relate() : project();
        if (roll(4) == 0 && handles-- > 2) add({2, one()});
        // A list of up to three with the new handle first, or arguments of any kind.
        const int which = roll(2) == 0 ? 14 : 3 + roll(12);
        if (which > 12)
            add({which, 2 + roll(3), handles - 1, another(), another(), 8});
        else
            add({which, which == 8 || which == 12 ? two : handles - 1, another(), another(), another(), another()});
    }
    return bytes;
}

bool wide = false; // the answer below

int calls = 0;

bool agrees(const std::string& name, const Bytes& bytes, double budget, bool trace) {
    const vantel::testing::Run run = vantel::testing::run_calls(bytes, budget, trace ? &std::cout : nullptr);
    calls += run.calls;
    if (run.mismatch.empty()) return true;
    if (!trace) vantel::testing::run_calls(bytes, budget, &std::cout);
    std::cout << name << (wide ? ", wide" : ", plain") << " loops: " << run.mismatch << '\n';
    return false;
}

bool processor_is_wide() {
#ifdef __x86_64__
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2");
#else
    return false;
#endif
}
} // namespace

// Instead of the library's own.
bool vantel::has_wide_vectors() noexcept { return wide; }

int main(int count, char** arguments) {
    const std::vector<std::string> words(arguments + 1, arguments + count);
    bool all_agree = true;
    const bool series = !words.empty() && words[0] == "--series";
    if (words.size() == 3 && (series || words[0] == "--random")) {
        for (unsigned i = static_cast<unsigned>(std::stoul(words[1])); i < std::stoul(words[2]); ++i) {
            wide = processor_is_wide() && i % 2 != 0;
            all_agree &=
                agrees("sequence " + std::to_string(i), series ? series_bytes(i) : random_bytes(i), 5e5, false);
        }
    } else {
        const bool trace = !words.empty() && words[0] == "--trace";
        for (std::size_t i = trace ? 1 : 0; i < words.size(); ++i)
            for (wide = processor_is_wide();; wide = false) {
                all_agree &= agrees(words[i], contents(words[i].c_str()), 1e9, trace);
                if (!wide) break;
            }
    }
    std::cout << calls << " calls\n";
    return all_agree && calls > 0 ? 0 : 1;
}
