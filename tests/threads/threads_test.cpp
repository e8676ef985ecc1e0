#include "tests/support/handles.hpp"
#include "tests/support/random_source.hpp"
#include "tests/support/states.hpp"
#include <barrier>
#include <random>
#include <thread>

// Separate joint states on separate threads. It says most when it is built with the thread sanitizer.
namespace vantel::testing {
namespace {
/// All that a random run of calls reports, bit for bit.
std::vector<int> results_of(unsigned seed) {
    std::mt19937 dice(seed);
    const auto roll = [&](unsigned sides) { return static_cast<int>(dice() % sides); };
    std::vector<int> results;
    for (int round = 0; round < 12; ++round) {
        const int dimension = 2 + roll(4);
        std::vector<Handle> handles;
        std::vector<QuantumProperty*> q;
        for (int i = 0; i < 4; ++i) q.push_back(handles.emplace_back(qudit_of(i < 2 ? dimension : 2 + roll(9))).get());
        for (int call = 0; call < 30; ++call) {
            const PredicateRecord when{q[2 + dice() % 2], roll(3), static_cast<unsigned char>(roll(2))};
            const float fraction = static_cast<float>(roll(5)) / 4;
            QuantumProperty* const target = q[dice() % 3]; // at times it is the condition's own
            const int operation = roll(8);
            results.push_back(operation == 0   ? vantel_hadamard(target, &when, 1)
                              : operation == 1 ? vantel_inverse_hadamard(target, &when, 1)
                              : operation == 2 ? vantel_cycle(target, fraction, &when, 1)
                              : operation == 3 ? vantel_shift(target, fraction, &when, 1)
                              : operation == 4 ? vantel_clock(target, fraction, &when, 1)
                              : operation == 5 ? vantel_phase_rotate(&when, 1, fraction)
                              : operation == 6 ? vantel_swap(q[0], q[1], &when, 1)
                                               : vantel_i_swap(q[0], q[1], fraction, &when, 1));
        }
        std::vector<int> levels(2);
        const auto side = static_cast<std::size_t>(dimension * dimension);
        std::vector<ProbabilityRecord> table(side, {0.0F, levels.data()});
        std::vector<float> real(side * side), imaginary(side * side);
        results.push_back(vantel_probabilities(q.data(), 2, table.data()));
        results.push_back(vantel_reduced_density_matrix(q.data(), 2, real.data(), imaginary.data(), side * side));
        for (const ProbabilityRecord& record : table) real.push_back(record.probability);
        real.insert(real.end(), imaginary.begin(), imaginary.end());
        for (const float number : real) results.push_back(std::bit_cast<int>(number));
        const RandomSource source(static_cast<std::uint32_t>(dice()));
        results.push_back(vantel_measure(&q[1], 2, levels.data()));
        results.insert(results.end(), levels.begin(), levels.end());
    }
    return results;
}

TEST(Threads, GetWhatOneThreadGetsFromSeparateJointStates) {
    constexpr unsigned count = 4;
    std::vector<int> results[count];
    {
        // All start at once and before anything has been called, so that what is set up on first use is too.
        std::barrier start(count);
        std::vector<std::jthread> threads;
        for (unsigned i = 0; i < count; ++i)
            threads.emplace_back([&, i] {
                start.arrive_and_wait();
                results[i] = results_of(i);
            });
    }
    for (unsigned i = 0; i < count; ++i) EXPECT_EQ(results[i], results_of(i));
}
} // namespace
} // namespace vantel::testing
