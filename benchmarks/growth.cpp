/// Time against the number of entries, beside the plainest form of the same algorithms.
#include "reference/literal_state.hpp"
#include "register.hpp"
#include <benchmark/benchmark.h>
#include <cmath>
#include <complex>
#include <string>
#include <vector>

namespace {
using benchmarks::Description;
using benchmarks::Shape;
using vantel::reference::Entries;
using vantel::reference::LiteralState;

/// Two qubits among larger qudits: the one in the middle, which gates act on, and the last.
Description grown(std::vector<int> others) {
    const auto middle = static_cast<std::ptrdiff_t>(others.size() / 2 + 1);
    others.push_back(2);
    others.insert(others.begin() + middle, 2);
    Description description{"", Shape::dense, std::move(others), {0}};
    description.name = std::to_string(description.entries());
    return description;
}

std::vector<Description> complete_states() {
    std::vector<Description> all{{"1", Shape::single, {2, 2}, {0}}, grown({}), grown({2}), grown({5}), grown({10})};
    for (std::vector<int> rest; rest.size() < 4; rest.push_back(10))
        for (std::vector<int> others : {std::vector{5, 5}, {5, 10}, {10, 10}}) {
            others.insert(others.end(), rest.begin(), rest.end());
            if (grown(others).entries() <= 100000) all.push_back(grown(others));
        }
    return all;
}

/// The same sizes, less the labels with the highest levels of the first qudits.
std::vector<Description> lacking_states() {
    std::vector<Description> all;
    for (Description description : complete_states())
        if (description.dimensions.size() > 2) {
            description.shape = Shape::lacking;
            description.name = "lacking-" + std::to_string(description.entries());
            all.push_back(description);
        }
    return all;
}

/// Labels of ten ten-level qudits without a pattern.
std::vector<Description> scattered_states() {
    std::vector<Description> all;
    for (std::size_t power = 10; power <= 100000; power *= 10)
        for (const std::size_t count : {power / 2, power})
            if (count >= 10)
                all.push_back({"scattered-" + std::to_string(count),
                               Shape::scattered,
                               std::vector<int>(10, 10),
                               {0},
                               false,
                               false,
                               count});
    return all;
}

/// Every combination of levels, or level 0 alone, with one phase each.
LiteralState literal(const Description& description) {
    const auto count = static_cast<double>(description.entries());
    Entries entries(description.entries());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        std::size_t rest = i;
        for (const int dimension : description.dimensions) {
            const auto d = static_cast<std::uint64_t>(dimension);
            entries[i].dits.push_back({rest % d, d});
            rest /= d;
        }
        entries[i].amplitude = std::polar(1 / std::sqrt(count), static_cast<double>(i));
    }
    return {{10, description.dimensions.size()}, entries};
}

struct Operation {
    const char* name;
    void (*apply)(LiteralState& state, int target, int last);
};

const Operation operations[] = {
    {"hadamard", [](LiteralState& s, int target, int) { s.hadamard({target}, {}); }},
    {"i_swap", [](LiteralState& s, int target, int last) { s.i_swap(target, last, 0.3F, {}); }},
    {"cycle", [](LiteralState& s, int target, int) { s.cycle({target}, {}); }},
    {"clock", [](LiteralState& s, int target, int) { s.clock({target}, {}); }},
    {"probabilities_two",
     [](LiteralState& s, int t, int last) {
         benchmark::DoNotOptimize(s.probabilities({t, last}));
     }},
    {"probabilities_all",
     [](LiteralState& s, int, int last) {
         std::vector<int> all;
         for (int i = 0; i <= last; ++i) all.push_back(i);
         benchmark::DoNotOptimize(s.probabilities(all));
     }},
    {"density_matrix_one",
     [](LiteralState& s, int target, int) { benchmark::DoNotOptimize(s.reduced_density_matrix({target})); }},
    {"measure", [](LiteralState& s, int target, int) { LiteralState(s).measure({target}, 1); }},
    {"release", [](LiteralState& s, int target, int) { LiteralState(s).free_qudit(target); }},
};

void add(const std::string& operation, const Description& description, auto apply) {
    benchmark::RegisterBenchmark(("literal/" + operation + "/" + description.name).c_str(), [=](benchmark::State& run) {
        LiteralState state = literal(description);
        for (auto _ : run) apply(state);
    });
}

void register_literal(const Description& description) {
    const int last = static_cast<int>(description.dimensions.size()) - 1;
    for (const Operation& operation : operations)
        add(operation.name, description, [=](LiteralState& state) { operation.apply(state, (last + 1) / 2, last); });
    Description joining = description;
    joining.dimensions.pop_back();
    Description guest = description;
    guest.dimensions = {2};
    add("merge", joining,
        [guest = literal(guest)](LiteralState& host) { benchmark::DoNotOptimize(tensor_product(host, guest)); });
}
} // namespace

int main(int argc, char** argv) {
    constexpr std::size_t patience = 2000; // entries, beyond which quadratic forms take too long
    benchmark::Initialize(&argc, argv);
    for (const auto& states : {complete_states(), lacking_states(), scattered_states()})
        for (const Description& state : states) {
            benchmarks::register_repeatable(state);
            benchmarks::register_consuming(state);
            if (state.shape == Shape::dense && state.entries() <= patience) register_literal(state);
        }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
