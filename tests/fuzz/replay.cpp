// fuzz_replay FILE...             makes the calls of each file and says where library and model part
// fuzz_replay --trace FILE...     and each call before it is made
// fuzz_replay --random FROM TO    does so for random bytes, one sequence for each number
#include <chrono>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <vector>

#include "tests/fuzz/calls.hpp"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes contents(const char* file) {
    std::ifstream in(file, std::ios::binary);
    if (!in)
        throw std::runtime_error(std::string("cannot read ") + file);
    return {std::istreambuf_iterator<char>(in), {}};
}

Bytes random_bytes(unsigned number) {
    std::mt19937 dice(number);
    Bytes bytes(500 + dice() % 500);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(dice());
    return bytes;
}

int calls = 0;

bool agrees(const std::string& name, const Bytes& bytes, double budget, bool trace) {
    const vantel::testing::Run run = vantel::testing::run_calls(bytes, budget, trace ? &std::cout : nullptr);
    calls += run.calls;
    if (run.mismatch.empty())
        return true;
    if (!trace)
        vantel::testing::run_calls(bytes, budget, &std::cout);
    std::cout << name << ": " << run.mismatch << '\n';
    return false;
}

} // namespace

int main(int count, char** arguments) {
    const std::vector<std::string> words(arguments + 1, arguments + count);
    bool all_agree = true;
    if (words.size() == 3 && words[0] == "--random") {
        for (unsigned i = static_cast<unsigned>(std::stoul(words[1])); i < std::stoul(words[2]); ++i)
            all_agree &= agrees("sequence " + std::to_string(i), random_bytes(i), 5e5, false);
    } else {
        const bool trace = !words.empty() && words[0] == "--trace";
        for (std::size_t i = trace ? 1 : 0; i < words.size(); ++i)
            all_agree &= agrees(words[i], contents(words[i].c_str()), 1e9, trace);
    }
    std::cout << calls << " calls\n";
    return all_agree && calls > 0 ? 0 : 1;
}
