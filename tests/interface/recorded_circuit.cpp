#include "interface/quantum_property.hpp"
#include "interface/vantel.h"
#include <bit>
#include <cstdint>
#include <iostream>
#include <vector>

// Prints every bit of one circuit's results. The kept text is the same for every compiler and flag;
// amplitudes have no symmetry, so that no exchange or change of order goes unseen.
int main() {
    int status = 0;
    std::vector<QuantumProperty*> q;
    for (const int dimension : {2, 3, 5, 3, 2}) q.push_back(vantel_make_quantum_property(dimension, &status));
    std::vector<PredicateRecord> when{{q[1], 1, 1}, {q[0], 0, 0}};
    vantel_hadamard(q[0], nullptr, 0);
    vantel_shift(q[1], 0.3F, nullptr, 0);
    vantel_cycle(q[3], 0.7F, nullptr, 0);
    vantel_hadamard(q[2], when.data(), 1);
    vantel_clock(q[2], 0.37F, when.data(), 2);
    vantel_cycle(q[4], 0.45F, when.data(), 2);
    vantel_i_swap(q[1], q[3], 0.6F, nullptr, 0);
    vantel_inverse_hadamard(q[2], when.data() + 1, 1);
    vantel_phase_rotate(when.data(), 1, 0.9F);
    vantel_swap(q[0], q[4], when.data(), 1);
    std::cout << std::hex;
    for (const auto& entry : q[0]->shared_state->state->basis_amplitudes())
        std::cout << entry.dits << ' ' << std::bit_cast<std::uint64_t>(entry.amplitude.real()) << ' '
                  << std::bit_cast<std::uint64_t>(entry.amplitude.imag()) << '\n';

    std::vector<int> levels(2);
    std::vector<ProbabilityRecord> table(6, {0.0F, levels.data()});
    std::vector<float> real_parts(36), imaginary_parts(36);
    QuantumProperty* listed[]{q[3], q[4]};
    vantel_probabilities(listed, 2, table.data());
    vantel_reduced_density_matrix(listed, 2, real_parts.data(), imaginary_parts.data(), 36);
    for (const ProbabilityRecord& record : table) std::cout << std::bit_cast<std::uint32_t>(record.probability) << '\n';
    for (std::size_t i = 0; i < 36; ++i)
        std::cout << std::bit_cast<std::uint32_t>(real_parts[i]) << ' '
                  << std::bit_cast<std::uint32_t>(imaginary_parts[i]) << '\n';
    for (QuantumProperty* const property : q) vantel_free_quantum_property(property);
}
