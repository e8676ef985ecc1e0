#include "register.hpp"
#include <benchmark/benchmark.h>

namespace {
using benchmarks::Description;
using benchmarks::Shape;

Description dense(int dimension, std::size_t qudits, std::vector<std::size_t> conditions) {
    return {std::to_string(dimension) + "^" + std::to_string(qudits), Shape::dense, std::vector<int>(qudits, dimension),
            std::move(conditions)};
}

/// The dimensions that no other state has.
Description transformed(int dimension, std::size_t qudits) {
    Description description = dense(dimension, qudits, {0});
    description.transforms_only = true;
    return description;
}

/// A condition that holds nowhere, as on a control that nothing has touched.
Description never_met() {
    Description description{"3^9_condition_never_met", Shape::idle, std::vector<int>(10, 3), {1}};
    description.never_met = true;
    return description;
}

std::vector<Description> states() {
    return {
        dense(2, 1, {0}),
        dense(10, 1, {0}),
        dense(3, 3, {1}),
        {"diagonal", Shape::diagonal, std::vector<int>(10, 2), {0, 1}},
        dense(2, 10, {0, 1, 2}),
        dense(10, 4, {0, 1, 2}),
        dense(3, 10, {0, 1, 2}),
        {"3^9_and_one_idle", Shape::idle, std::vector<int>(10, 3), {0, 1}},
        never_met(),
        {"3^9_one_just_measured", Shape::measured, std::vector<int>(10, 3), {0, 1}},
        {"ghz", Shape::ghz, std::vector<int>(10, 10), {0, 1}},
        {"w", Shape::w, std::vector<int>(9, 2), {0, 1}},
        {"3^9_lacking", Shape::lacking, std::vector<int>(9, 3), {0, 1}},
        dense(10, 5, {0, 1, 2}),
        transformed(4, 8),
        transformed(5, 7),
        transformed(6, 6),
        transformed(7, 5),
        transformed(8, 5),
        transformed(9, 5),
        {"scattered", Shape::scattered, std::vector<int>(10, 10), {0, 1, 2}},
    };
}
} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmarks::register_lifetimes();
    benchmarks::register_programs();
    // A state's limits run beside its cases, so that a machine that is slow for a while is so for both.
    for (const Description& state : states()) {
        benchmarks::register_limits(state);
        benchmarks::register_repeatable(state);
        benchmarks::register_consuming(state);
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
