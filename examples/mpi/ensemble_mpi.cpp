// Runs of a noisy circuit on many machines, with MPI: the same counts for the same seed on any number of
// ranks.
//     mpirun -n 4 ensemble_mpi circuit.txt 100000 1
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <mpi.h>
#include <sstream>
#include <string>
#include <vantel_circuit_text.hpp>
#include <vantel_ensemble.hpp>
#include <vector>

namespace {
using Counts = std::map<std::vector<int>, std::size_t>;

/// The counts of all ranks together, on rank 0. Each is sent as rows of the numbers that were read and how
/// often.
Counts together(const Counts& counts, std::size_t values) {
    int rank = 0, ranks = 0;
    MPI_Comm_rank(MPI_COMM_WORLD, &rank);
    MPI_Comm_size(MPI_COMM_WORLD, &ranks);
    std::vector<long long> rows;
    for (const auto& [numbers, shots] : counts) {
        rows.insert(rows.end(), numbers.begin(), numbers.end());
        rows.push_back(static_cast<long long>(shots));
    }
    const int length = static_cast<int>(rows.size());
    std::vector<int> lengths(static_cast<std::size_t>(ranks)), places(lengths.size());
    MPI_Gather(&length, 1, MPI_INT, lengths.data(), 1, MPI_INT, 0, MPI_COMM_WORLD);
    for (std::size_t i = 1; i < places.size(); ++i) places[i] = places[i - 1] + lengths[i - 1];
    std::vector<long long> all(static_cast<std::size_t>(places.back() + lengths.back()));
    MPI_Gatherv(rows.data(), length, MPI_LONG_LONG, all.data(), lengths.data(), places.data(), MPI_LONG_LONG, 0,
                MPI_COMM_WORLD);
    Counts sum;
    for (auto row = all.begin(); row != all.end(); row += static_cast<std::ptrdiff_t>(values + 1)) {
        const auto end = row + static_cast<std::ptrdiff_t>(values);
        sum[{row, end}] += static_cast<std::size_t>(*end);
    }
    return sum;
}

int run(const char* file, std::size_t shots, std::uint64_t seed) {
    int rank = 0, ranks = 0;
    MPI_Comm_rank(MPI_COMM_WORLD, &rank);
    MPI_Comm_size(MPI_COMM_WORLD, &ranks);
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    const vantel::Circuit circuit = vantel::read_circuit(text.str());
    const vantel::Trials trials(circuit, seed);
    const auto k = static_cast<std::size_t>(rank), n = static_cast<std::size_t>(ranks);
    const vantel::Ensemble part = trials.run(shots * k / n, shots * (k + 1) / n, 1);
    const Counts counts = together(part.counts(), circuit.values().size());
    if (rank == 0) std::cout << vantel::Ensemble(circuit.values(), counts, trials.repeatable());
    return EXIT_SUCCESS;
}
} // namespace

int main(int argc, char** argv) {
    MPI_Init(&argc, &argv);
    if (argc != 4) {
        std::cerr << "usage: " << argv[0] << " CIRCUIT SHOTS SEED\n";
        MPI_Abort(MPI_COMM_WORLD, 2);
    }
    int status = EXIT_FAILURE;
    try {
        status = run(argv[1], std::stoull(argv[2]), std::stoull(argv[3]));
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        MPI_Abort(MPI_COMM_WORLD, 1); // the other ranks would wait for this one
    }
    MPI_Finalize();
    return status;
}
