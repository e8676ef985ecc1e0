#include "register.hpp"
#include <algorithm>
#include <benchmark/benchmark.h>
#include <memory>
#include <span>

namespace benchmarks {
namespace {
struct Gate {
    const char* name;
    std::size_t targets; ///< 0 where the conditions alone say what the gate acts on
    bool branches;       ///< may leave more entries than there were
    int (*apply)(const JointState&);
};

template <auto gate, int... tenths> int on_target(const JointState& state) {
    return gate(state.target, (static_cast<float>(tenths) / 10)..., state.conditions.data(), state.conditions.size());
}

template <auto gate, int... tenths> int on_two(const JointState& state) {
    return gate(state.target, state.other, (static_cast<float>(tenths) / 10)..., state.conditions.data(),
                state.conditions.size());
}

int on_conditions(const JointState& state) {
    return vantel_phase_rotate(state.conditions.data(), state.conditions.size(), 0.3F);
}

const Gate gates[] = {
    {"hadamard", 1, true, on_target<vantel_hadamard>},
    {"inverse_hadamard", 1, true, on_target<vantel_inverse_hadamard>},
    {"cycle", 1, false, on_target<vantel_cycle, 10>},
    {"shift", 1, false, on_target<vantel_shift, 10>},
    {"clock", 1, false, on_target<vantel_clock, 10>},
    {"fractional_cycle", 1, true, on_target<vantel_cycle, 3>},
    {"fractional_shift", 1, true, on_target<vantel_shift, 3>},
    {"fractional_clock", 1, false, on_target<vantel_clock, 3>},
    {"phase_rotate", 0, false, on_conditions},
    {"swap", 2, false, on_two<vantel_swap>},
    {"i_swap", 2, true, on_two<vantel_i_swap, 3>},
};

struct Readout {
    const char* name;
    std::size_t qudits; ///< 0 for all
    bool matrix;
};

const Readout readouts[] = {
    {"probabilities_one", 1, false}, {"probabilities_two", 2, false}, {"probabilities_all", 0, false},
    {"density_matrix_one", 1, true}, {"density_matrix_two", 2, true},
};

/// What `scripts/bench profile` counts: the calls, and not what makes their states.
template <class Call> [[gnu::noinline]] void quiet_loop(benchmark::State& run, Call call) {
    for (auto _ : run) call();
}

/// The state that consecutive runs of one benchmark share: making it takes longer than most runs.
JointState& shared_state(const std::string& benchmark, const Description& description, std::size_t conditions) {
    static std::string made_for;
    static std::unique_ptr<JointState> state;
    if (made_for != benchmark) {
        state = std::make_unique<JointState>(description, conditions);
        made_for = benchmark;
    }
    return *state;
}

/// Whether a dense state still holds every combination of levels, so that the figures mean what they say.
bool still_complete(JointState& state, const Description& description) {
    if (description.shape != Shape::dense) return true;
    OutcomeRecords all(description.entries(), state.qudits.size());
    expect_ok(vantel_probabilities(state.qudits.data(), state.qudits.size(), all.rows.data()));
    return std::none_of(all.rows.begin(), all.rows.end(), [](auto& row) { return row.probability == 0; });
}

template <class Apply>
void add(const std::string& operation, const Description& description, std::size_t conditions, Apply apply) {
    const std::string name = operation + "/" + description.name + "/" + std::to_string(conditions);
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& run) {
        JointState& state = shared_state(name, description, conditions);
        apply(run, state);
        if (!still_complete(state, description)) run.SkipWithError("entries were lost");
    });
}

void add_gate(const Gate& gate, const Description& description) {
    for (const std::size_t conditions : description.conditions) {
        const std::size_t needed = gate.targets == 0 ? conditions : gate.targets + conditions;
        if (needed == 0 || needed > description.dimensions.size()) continue;
        add(gate.name, description, conditions,
            [gate](benchmark::State& run, JointState& state) { quiet_loop(run, [&] { gate.apply(state); }); });
    }
}

void add_readout(const Readout& readout, const Description& description) {
    const std::size_t all = description.dimensions.size();
    const std::size_t count = readout.qudits == 0 ? all : readout.qudits;
    if (count > all || (readout.qudits == 0 && description.combinations() > 100000)) return;
    add(readout.name, description, 0, [=](benchmark::State& run, JointState& state) {
        QuantumProperty* few[] = {state.target, state.other};
        QuantumProperty** const listed = readout.qudits == 0 ? state.qudits.data() : few;
        const auto d = static_cast<std::size_t>(description.target_dimension());
        const std::size_t rows = readout.qudits == 0 ? description.combinations() : count == 1 ? d : d * d;
        const std::size_t elements = readout.matrix ? rows * rows : 0;
        OutcomeRecords records(rows, count);
        std::vector<float> parts(2 * elements);
        quiet_loop(run, [&] {
            if (readout.matrix)
                vantel_reduced_density_matrix(listed, count, parts.data(), parts.data() + elements, elements);
            else
                vantel_probabilities(listed, count, records.rows.data());
        });
    });
}
} // namespace

void register_repeatable(const Description& description) {
    for (const Gate& gate : description.transforms_only ? std::span(gates).first(2) : std::span(gates))
        if (!gate.branches || description.shape != Shape::scattered) add_gate(gate, description);
    if (description.transforms_only) return;
    for (const Readout& readout : readouts) add_readout(readout, description);
}
} // namespace benchmarks
