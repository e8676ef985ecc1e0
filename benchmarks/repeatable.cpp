#include <algorithm>
#include <memory>
#include <span>

#include <benchmark/benchmark.h>

#include "register.hpp"

namespace benchmarks {

namespace {

struct Call {
    JointState& state;
    OutcomeRecords* records;
    std::vector<float>* matrix;

    [[nodiscard]] const PredicateRecord* conditions() const { return state.conditions.data(); }
    [[nodiscard]] std::size_t count() const { return state.conditions.size(); }
};

struct Gate {
    const char* name;
    std::size_t targets; ///< 0 where the conditions alone say what the gate acts on
    bool branches;       ///< may leave more entries than there were
    int (*apply)(const Call&);
};

const Gate gates[] = {
    {"hadamard", 1, true,
     [](const Call& c) { return vantel_hadamard(c.state.target, c.conditions(), c.count()); }},
    {"inverse_hadamard", 1, true,
     [](const Call& c) { return vantel_inverse_hadamard(c.state.target, c.conditions(), c.count()); }},
    {"cycle", 1, false,
     [](const Call& c) { return vantel_cycle(c.state.target, 1, c.conditions(), c.count()); }},
    {"shift", 1, false,
     [](const Call& c) { return vantel_shift(c.state.target, 1, c.conditions(), c.count()); }},
    {"clock", 1, false,
     [](const Call& c) { return vantel_clock(c.state.target, 1, c.conditions(), c.count()); }},
    {"fractional_cycle", 1, true,
     [](const Call& c) { return vantel_cycle(c.state.target, 0.3F, c.conditions(), c.count()); }},
    {"fractional_shift", 1, true,
     [](const Call& c) { return vantel_shift(c.state.target, 0.3F, c.conditions(), c.count()); }},
    {"fractional_clock", 1, false,
     [](const Call& c) { return vantel_clock(c.state.target, 0.3F, c.conditions(), c.count()); }},
    {"phase_rotate", 0, false,
     [](const Call& c) { return vantel_phase_rotate(c.conditions(), c.count(), 0.3F); }},
    {"swap", 2, false,
     [](const Call& c) { return vantel_swap(c.state.target, c.state.other, c.conditions(), c.count()); }},
    {"i_swap", 2, true,
     [](const Call& c) {
         return vantel_i_swap(c.state.target, c.state.other, 0.3F, c.conditions(), c.count());
     }},
};

struct Readout {
    const char* name;
    std::size_t qudits; ///< 0 for all
    int (*apply)(const Call&, QuantumProperty** listed, std::size_t count);
};

int probabilities(const Call& call, QuantumProperty** listed, std::size_t count) {
    return vantel_probabilities(listed, count, call.records->rows.data());
}

int density_matrix(const Call& call, QuantumProperty** listed, std::size_t count) {
    float* const parts = call.matrix->data();
    const std::size_t size = call.matrix->size() / 2;
    return vantel_reduced_density_matrix(listed, count, parts, parts + size, size);
}

const Readout readouts[] = {
    {"probabilities_one", 1, probabilities},   {"probabilities_two", 2, probabilities},
    {"probabilities_all", 0, probabilities},   {"density_matrix_one", 1, density_matrix},
    {"density_matrix_two", 2, density_matrix},
};

/// The state that consecutive runs of one benchmark share: making it takes longer than most runs.
JointState& shared_state(const std::string& benchmark, const Description& description,
                         std::size_t conditions) {
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
    if (description.shape != Shape::dense)
        return true;
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
        if (!still_complete(state, description))
            run.SkipWithError("entries were lost");
    });
}

void add_gate(const Gate& gate, const Description& description) {
    for (const std::size_t conditions : description.conditions) {
        const std::size_t needed = gate.targets == 0 ? conditions : gate.targets + conditions;
        if (needed == 0 || needed > description.dimensions.size())
            continue;
        add(gate.name, description, conditions, [gate](benchmark::State& run, JointState& state) {
            for (auto _ : run)
                gate.apply({state, nullptr, nullptr});
        });
    }
}

void add_readout(const Readout& readout, const Description& description) {
    const std::size_t all = description.dimensions.size();
    const std::size_t count = readout.qudits == 0 ? all : readout.qudits;
    if (count > all || (readout.qudits == 0 && description.shape == Shape::scattered))
        return;
    add(readout.name, description, 0, [=](benchmark::State& run, JointState& state) {
        QuantumProperty* few[] = {state.target, state.other};
        const auto d = static_cast<std::size_t>(description.target_dimension());
        const std::size_t rows = readout.qudits == 0 ? description.combinations() : count == 1 ? d : d * d;
        OutcomeRecords records(rows, count);
        std::vector<float> matrix(readout.apply == density_matrix ? 2 * rows * rows : 0);
        for (auto _ : run)
            readout.apply({state, &records, &matrix}, readout.qudits == 0 ? state.qudits.data() : few, count);
    });
}

} // namespace

void register_repeatable(const Description& description) {
    for (const Gate& gate : description.transforms_only ? std::span(gates).first(2) : std::span(gates))
        if (!gate.branches || description.shape != Shape::scattered)
            add_gate(gate, description);
    if (description.transforms_only)
        return;
    for (const Readout& readout : readouts)
        add_readout(readout, description);
}

} // namespace benchmarks
