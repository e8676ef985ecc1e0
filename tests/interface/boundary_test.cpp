#include <array>
#include <chrono>
#include <stdexcept>

#include <gtest/gtest.h>
#include <vantel_exceptions.hpp>

#include "state/dit_array.hpp"
#include "tests/support/handles.hpp"

// What passes out of the shared library and what does not, as any C++ host sees it.
namespace vantel::testing {
namespace {

using Records = const PredicateRecord*;
using List = QuantumProperty**;

/// A call that relates the `n` handles of a list; a gate acts on the first under conditions on the others.
struct Call {
    const char* name;
    int (*make)(List l, Records r, std::size_t n);
};

std::array<int, 16> levels;
std::array<ProbabilityRecord, 1> row{{{0.0F, levels.data()}}};
std::array<float, 16> part;

const Call calls[] = {
    {"hadamard", [](List l, Records r, std::size_t n) { return vantel_hadamard(l[0], r + 1, n - 1); }},
    {"inverse_hadamard",
     [](List l, Records r, std::size_t n) { return vantel_inverse_hadamard(l[0], r + 1, n - 1); }},
    {"cycle", [](List l, Records r, std::size_t n) { return vantel_cycle(l[0], 1.0F, r + 1, n - 1); }},
    {"shift", [](List l, Records r, std::size_t n) { return vantel_shift(l[0], 0.5F, r + 1, n - 1); }},
    {"clock", [](List l, Records r, std::size_t n) { return vantel_clock(l[0], 1.0F, r + 1, n - 1); }},
    {"phase_rotate", [](List, Records r, std::size_t n) { return vantel_phase_rotate(r, n, 1.0F); }},
    {"swap", [](List l, Records r, std::size_t n) { return vantel_swap(l[0], l[0], r + 1, n - 1); }},
    {"i_swap",
     [](List l, Records r, std::size_t n) { return vantel_i_swap(l[0], l[0], 1.0F, r + 1, n - 1); }},
    {"measure", [](List l, Records, std::size_t n) { return vantel_measure(l, n, levels.data()); }},
    {"projection",
     [](List, Records r, std::size_t n) { return vantel_stochastic_projection(r, n, levels.data()); }},
    {"probabilities", [](List l, Records, std::size_t n) { return vantel_probabilities(l, n, row.data()); }},
    {"density_matrix",
     [](List l, Records, std::size_t n) {
         return vantel_reduced_density_matrix(l, n, part.data(), part.data(), part.size());
     }},
};

class Boundary : public ::testing::TestWithParam<Call> {};

TEST_P(Boundary, LetsALengthErrorPassForACountWithItsTopBitSet) {
    const Handle a = qudit_of(2), b = qudit_of(2);
    std::vector<QuantumProperty*> list{a.get(), b.get()};
    const auto records = any_level(list);
    EXPECT_THROW(GetParam().make(list.data(), records.data(), (std::size_t{1} << 63) + 1), std::length_error);
}

INSTANTIATE_TEST_SUITE_P(Functions, Boundary, ::testing::ValuesIn(calls),
                         [](const auto& tested) { return tested.param.name; });

TEST(Exceptions, AreCaughtByTheirClassesOutsideTheLibrary) {
    std::vector<Handle> handles;
    std::vector<QuantumProperty*> list;
    const auto add = [&](int dimension, int count) {
        for (int i = 0; i < count; ++i)
            list.push_back(handles.emplace_back(qudit_of(dimension)).get());
    };
    add(2, 11);
    const auto records = any_level(list);
    EXPECT_THROW(vantel_hadamard(list[0], &records[1], 10), qudit::BadQuditNumber);
    add(7, 6);
    for (std::size_t i = 11; i < 17; ++i)
        vantel_hadamard(list[i], nullptr, 0);
    EXPECT_THROW(vantel_measure(&list[11], 6, levels.data()), qudit::StateSizeExceeded);
}

TEST(Tables, ThatOverflowAreReportedAtOnceAndWrittenNowhere) {
    std::vector<Handle> handles;
    std::vector<QuantumProperty*> list;
    for (int i = 0; i < 10; ++i)
        list.push_back(handles.emplace_back(qudit_of(10)).get());
    const std::string text = "permutations.size(): 10000000000 != output_size: 1410065408";
    const Diagnostics diagnostics;
    const auto start = std::chrono::steady_clock::now();
    try {
        vantel_probabilities(list.data(), list.size(), nullptr);
        ADD_FAILURE() << "nothing has passed";
    } catch (const std::runtime_error& passed) {
        EXPECT_EQ(passed.what(), text);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    EXPECT_EQ(diagnostics.text(), text + "\n");
    list.reserve(2 * list.size());
    list.insert(list.end(), list.begin(), list.begin() + 10); // 10^20 combinations
    EXPECT_THROW(vantel_probabilities(list.data(), list.size(), nullptr), std::length_error);
}

TEST(Matrices, WhoseWrappedSizeAgreesByAccidentAreWrittenNowhereElse) {
    std::vector<Handle> handles;
    std::vector<QuantumProperty*> list;
    for (int i = 0; i < 8; ++i)
        list.push_back(handles.emplace_back(qudit_of(4)).get()); // 65536 squared is 0 in 32 bits
    float parts[]{-7.0F, -7.0F};
    EXPECT_EQ(vantel_reduced_density_matrix(list.data(), list.size(), &parts[0], &parts[1], 0), vantel_ok);
    EXPECT_EQ(parts[0], -7.0F);
    EXPECT_EQ(parts[1], -7.0F);
}

TEST(Matrices, AreHeldAgainstASizeThatIsNegativeIn32BitsAndRefusedWhereNothingCanCountThem) {
    std::vector<Handle> handles;
    std::vector<QuantumProperty*> list;
    for (const int dimension : {10, 10, 10, 10, 5})
        list.push_back(handles.emplace_back(qudit_of(dimension)).get());
    const Diagnostics diagnostics;
    EXPECT_EQ(vantel_reduced_density_matrix(list.data(), 5, nullptr, nullptr, 2500000000),
              vantel_output_too_small);
    EXPECT_EQ(diagnostics.text(), "permutations.size(): 50000 < output_size: 2500000000\n");
    list.assign(20, list[0]);
    EXPECT_THROW(vantel_reduced_density_matrix(list.data(), 20, nullptr, nullptr, 0), std::length_error);
}

TEST(Version, StandsBehindItsPointerAtTheMomentOfReturn) {
    for (int i = 0; i < 3; ++i) {
        // The text is gone already, so each byte is read before anything else is called.
        const volatile char* const text = vantel_version();
        char read[6];
        for (int j = 0; j < 6; ++j)
            read[j] = text[j];
        EXPECT_STREQ(read, "1.0.0");
    }
}

TEST(StreamOperators, ArePartOfTheLibrary) {
    std::ostringstream stream;
    stream << qudit::Dit{7, 9} << std::vector<qudit::Dit>{{1, 3}, {0, 2}} << std::vector<qudit::Dit>{};
    EXPECT_EQ(stream.str(), "[v:7,d:9]|[v:1,d:3][v:0,d:2]>|>");
}

} // namespace
} // namespace vantel::testing
