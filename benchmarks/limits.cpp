/// What no implementation can go below on this machine: the parts of the work alone.
#include "register.hpp"
#include <array>
#include <benchmark/benchmark.h>
#include <cmath>
#include <complex>
#include <cstdint>
#include <memory>
#include <random>
#include <set>
#include <vector>

namespace benchmarks {
namespace {
/// The size and content of a stored entry.
struct Entry {
    std::uint64_t values = 0;
    std::uint64_t dimensions = 0;
    double real = 0.5;
    double imaginary = 0.25;
};

struct Complex {
    double real = 0.5;
    double imaginary = 0.25;
};

void pass(benchmark::State& run, std::size_t entries) {
    std::vector<Entry> list(entries);
    for (auto _ : run) {
        for (Entry& entry : list) {
            entry.values ^= 1;
            entry.dimensions ^= 1;
            entry.real = -entry.real;
            entry.imaginary = -entry.imaginary;
        }
        benchmark::DoNotOptimize(list.data());
        benchmark::ClobberMemory();
    }
}

/// Each entry adds its multiples of one row of factors to the d sums of its group.
void multiply_add(benchmark::State& run, std::size_t entries, std::size_t d) {
    const std::vector<Entry> list(entries);
    const std::vector<Complex> factors(d * d, Complex{0.1, 0.2});
    std::vector<Complex> sums(entries + d);
    for (auto _ : run) {
        for (std::size_t i = 0; i < entries; i += d)
            for (std::size_t v = 0; v < d && i + v < entries; ++v) {
                const Entry& a = list[i + v];
                const Complex* const x = &factors[v * d];
                Complex* const y = &sums[i];
                for (std::size_t k = 0; k < d; ++k) {
                    y[k].real += a.real * x[k].real - a.imaginary * x[k].imaginary;
                    y[k].imaginary += a.real * x[k].imaginary + a.imaginary * x[k].real;
                }
            }
        benchmark::DoNotOptimize(sums.data());
        benchmark::ClobberMemory();
    }
}

void product(benchmark::State& run, std::size_t count) {
    const Complex x{0.6, 0.8};
    std::vector<Complex> list(count);
    for (auto _ : run) {
        for (Complex& y : list)
            y = {y.real * x.real - y.imaginary * x.imaginary, y.real * x.imaginary + y.imaginary * x.real};
        benchmark::DoNotOptimize(list.data());
        benchmark::ClobberMemory();
    }
}

/// Sine and cosine of each angle that differs in the transform of a d-level qudit.
void sine_cosine(benchmark::State& run, std::size_t d) {
    std::set<double> differing;
    for (std::size_t k = 0; k < d; ++k)
        for (std::size_t v = 0; v < d; ++v)
            differing.insert(2 * 3.141592653589793 * static_cast<double>(d - k) * static_cast<double>(v) /
                             static_cast<double>(d));
    const std::vector<double> angles(differing.begin(), differing.end());
    for (auto _ : run)
        for (const double angle : angles) {
            benchmark::DoNotOptimize(std::sin(angle));
            benchmark::DoNotOptimize(std::cos(angle));
        }
    run.counters["angles"] = static_cast<double>(angles.size());
}

void allocation(benchmark::State& run) {
    for (auto _ : run) benchmark::DoNotOptimize(std::make_unique<std::array<char, 48>>());
}

void device_word(benchmark::State& run) {
    for (auto _ : run) {
        std::random_device device("/dev/urandom");
        std::mt19937 generator(device());
        benchmark::DoNotOptimize(generator());
        benchmark::DoNotOptimize(generator());
    }
}

/// Writes a caller's records as a table of probabilities must.
void records(benchmark::State& run, std::size_t rows, std::size_t columns) {
    OutcomeRecords table(rows, columns);
    for (auto _ : run) {
        for (ProbabilityRecord& record : table.rows) {
            record.probability = 0.5F;
            for (std::size_t i = 0; i < columns; ++i) record.qudit_values[i] = static_cast<int>(i);
        }
        benchmark::ClobberMemory();
    }
}

/// Registers a limit under its sizes unless another state has the same ones.
template <class Run, class... Sizes> void add(std::string name, Run run, Sizes... sizes) {
    static std::set<std::string> known;
    name = "limit/" + name;
    ((name += "/" + std::to_string(sizes)), ...);
    if (known.insert(name).second)
        benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) { run(state, sizes...); });
}
} // namespace

void register_limits(const Description& description) {
    const std::size_t entries = description.entries();
    const auto d = static_cast<std::size_t>(description.target_dimension());
    add("allocation", allocation);
    add("device_word", device_word);
    add("pass", pass, entries);
    add("multiply_add", multiply_add, entries, d);
    add("product", product, 2 * entries);
    add("sine_cosine", sine_cosine, d);
    add("records", records, d * d, std::size_t{2});
    if (description.shape == Shape::dense) add("records", records, entries, description.dimensions.size());
}
} // namespace benchmarks
