/// How much memory a joint state has before, during and after each operation: all that is asked for in this process
/// while nothing but the library asks.
#include "joint_state.hpp"
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <new>
#include <span>

namespace {
std::size_t held = 0;
std::size_t most_held = 0;

void* counted(void* memory) {
    if (memory == nullptr) throw std::bad_alloc();
    held += malloc_usable_size(memory);
    most_held = std::max(most_held, held);
    return memory;
}
} // namespace

// The array forms and those with a size lead to these. A library that is linked in finds them first, too.
void* operator new(std::size_t size) { return counted(std::malloc(std::max<std::size_t>(size, 1))); }
void* operator new(std::size_t size, std::align_val_t alignment) {
    const auto unit = static_cast<std::size_t>(alignment);
    return counted(std::aligned_alloc(unit, (size + unit - 1) / unit * unit));
}
void operator delete(void* memory) noexcept {
    held -= malloc_usable_size(memory);
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept { operator delete(memory); }
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { operator delete(memory); }

namespace {
using benchmarks::Description;
using benchmarks::expect_ok;
using benchmarks::JointState;
using benchmarks::Shape;

/// What readouts write to, taken before anything is counted.
struct Buffers {
    benchmarks::OutcomeRecords outcomes{100000, 10};
    std::vector<float> parts = std::vector<float>(2 * 100 * 100);
    int level = 0;
};

void renew(JointState& state) {
    QuantumProperty* const guest = benchmarks::made(2);
    const PredicateRecord never[] = {{state.target, -1, 1}, {guest, -1, 1}};
    expect_ok(vantel_phase_rotate(never, 2, 0));
    expect_ok(vantel_free_quantum_property(guest));
}

int read_matrix(JointState& state, Buffers& buffers, std::size_t qudits, std::size_t elements) {
    QuantumProperty* few[] = {state.target, state.other};
    return vantel_reduced_density_matrix(few, qudits, buffers.parts.data(), buffers.parts.data() + elements, elements);
}

struct Operation {
    const char* name;
    int (*run)(JointState&, Buffers&);
};

// The status is of no interest where a list gets over the limit.
int fourier(JointState& s, Buffers&) { return vantel_hadamard(s.target, nullptr, 0); }
int twice(JointState& s, Buffers&) {
    vantel_hadamard(s.target, nullptr, 0);
    return vantel_inverse_hadamard(s.target, nullptr, 0);
}
int exchange(JointState& s, Buffers&) { return vantel_i_swap(s.target, s.other, 0.3F, nullptr, 0); }

const Operation repeatable[] = {
    {"a Fourier gate", fourier},
    {"and back", twice},
    {"cycle, fraction 0.3", [](JointState& s, Buffers&) { return vantel_cycle(s.target, 0.3F, nullptr, 0); }},
    {"i-swap, fraction 0.3", exchange},
    {"cycle", [](JointState& s, Buffers&) { return vantel_cycle(s.target, 1, nullptr, 0); }},
    {"swap", [](JointState& s, Buffers&) { return vantel_swap(s.target, s.other, nullptr, 0); }},
    {"clock", [](JointState& s, Buffers&) { return vantel_clock(s.target, 0.3F, nullptr, 0); }},
    {"probabilities of one",
     [](JointState& s, Buffers& b) { return vantel_probabilities(&s.target, 1, b.outcomes.rows.data()); }},
    {"probabilities of all",
     [](JointState& s, Buffers& b) {
         return vantel_probabilities(s.qudits.data(), s.qudits.size(), b.outcomes.rows.data());
     }},
    {"matrix of one", [](JointState& s, Buffers& b) { return read_matrix(s, b, 1, 10 * 10); }},
    {"matrix of two", [](JointState& s, Buffers& b) { return read_matrix(s, b, 2, 100 * 100); }},
    {"measure one", [](JointState& s, Buffers& b) { return vantel_measure(&s.target, 1, &b.level); }},
    {"merge with a qubit and release it",
     [](JointState& s, Buffers&) {
         renew(s);
         return 0;
     }},
};

const Operation to_superposition[] = {
    {"to superposition",
     [](JointState& s, Buffers&) { return vantel_hadamard(s.qudits[s.qudits.size() - 2], nullptr, 0); }},
    {"and back to one level",
     [](JointState& s, Buffers&) {
         QuantumProperty* const idle = s.qudits[s.qudits.size() - 2];
         vantel_hadamard(idle, nullptr, 0);
         return vantel_inverse_hadamard(idle, nullptr, 0);
     }},
};

const Operation scattered[] = {
    {"a Fourier gate", fourier},
    {"i-swap, fraction 0.3", exchange},
    {"matrix of one", [](JointState& s, Buffers& b) { return read_matrix(s, b, 1, 10 * 10); }},
    {"measure one", [](JointState& s, Buffers& b) { return vantel_measure(&s.target, 1, &b.level); }},
};

/// Prints a row: bytes by the entries of the longest list that the operation has, or makes.
void account(const Description& description, const Operation& operation, std::size_t longest) {
    Buffers buffers;
    const std::size_t elsewhere = held;
    {
        JointState state(description);
        if (description.dimensions.size() < 10) renew(state); // without what gates have left behind the list
        const std::size_t before = held - elsewhere;
        most_held = held;
        operation.run(state, buffers);
        const auto each = static_cast<double>(longest);
        const double peak = static_cast<double>(most_held - elsewhere) / each;
        std::printf("| %s | %s | %zu | %.1f | %.1f | %.1f | %.2f |\n", description.name.c_str(), operation.name,
                    longest, static_cast<double>(before) / each, peak, static_cast<double>(held - elsewhere) / each,
                    peak / 32);
    }
}
} // namespace

int main() {
    std::puts("| state | operation | longest list | before | peak | kept | peak in lists |\n"
              "|---|---|---:|---:|---:|---:|---:|");
    const Description complete{"10^5", Shape::dense, std::vector<int>(5, 10), {0}};
    for (const Operation& operation : repeatable) account(complete, operation, 100000);
    const Description few{"10^4 and a qudit in level 0", Shape::idle, std::vector<int>(5, 10), {0}};
    for (const Operation& operation : to_superposition) account(few, operation, 100000);
    Description far{"scattered", Shape::scattered, std::vector<int>(10, 10), {0}};
    far.scattered_count = 10000;
    account(far, scattered[0], 100000);
    account(far, scattered[1], 19000);
    for (const Operation& operation : std::span(scattered).subspan(2)) account(far, operation, 10000);
}
