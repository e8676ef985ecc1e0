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
    bool knows_bad_qudit_number, knows_state_size_exceeded;
};

std::array<int, 16> levels;
std::array<ProbabilityRecord, 1> row{{{0.0F, levels.data()}}};

// The columns are uneven on purpose.
const Call calls[] = {
    {"hadamard", [](List l, Records r, std::size_t n) { return vantel_hadamard(l[0], r + 1, n - 1); }, false,
     true},
    {"inverse_hadamard",
     [](List l, Records r, std::size_t n) { return vantel_inverse_hadamard(l[0], r + 1, n - 1); }, false,
     true},
    {"cycle", [](List l, Records r, std::size_t n) { return vantel_cycle(l[0], 1.0F, r + 1, n - 1); }, false,
     true},
    {"shift", [](List l, Records r, std::size_t n) { return vantel_shift(l[0], 0.5F, r + 1, n - 1); }, false,
     true},
    {"clock", [](List l, Records r, std::size_t n) { return vantel_clock(l[0], 1.0F, r + 1, n - 1); }, false,
     true},
    {"phase_rotate", [](List, Records r, std::size_t n) { return vantel_phase_rotate(r, n, 1.0F); }, false,
     true},
    {"swap", [](List l, Records r, std::size_t n) { return vantel_swap(l[0], l[0], r + 1, n - 1); }, true,
     true},
    {"i_swap", [](List l, Records r, std::size_t n) { return vantel_i_swap(l[0], l[0], 1.0F, r + 1, n - 1); },
     true, true},
    {"measure", [](List l, Records, std::size_t n) { return vantel_measure(l, n, levels.data()); }, true,
     false},
    {"projection",
     [](List, Records r, std::size_t n) { return vantel_stochastic_projection(r, n, levels.data()); }, true,
     false},
    {"probabilities", [](List l, Records, std::size_t n) { return vantel_probabilities(l, n, row.data()); },
     true, false},
    {"density_matrix",
     [](List l, Records, std::size_t n) {
         std::vector<float> parts(n == 2 ? 49 * 49 : 2048 * 2048);
         return vantel_reduced_density_matrix(l, n, parts.data(), parts.data(), parts.size());
     },
     false, false},
};

class Boundary : public ::testing::TestWithParam<Call> {
protected:
    QuantumProperty* add(int dimension) { return handles.emplace_back(qudit_of(dimension)).get(); }

    /// The code with its text, or the exception and no text.
    template <class Failure>
    void expect(std::vector<QuantumProperty*> list, bool known, int status, const std::string& text) {
        const Diagnostics diagnostics;
        const auto records = any_level(list);
        try {
            EXPECT_EQ(GetParam().make(list.data(), records.data(), list.size()), status);
            EXPECT_TRUE(known);
            EXPECT_EQ(diagnostics.text(), text + "\n");
        } catch (const Failure& passed) {
            EXPECT_FALSE(known);
            EXPECT_EQ(passed.what(), text);
            EXPECT_EQ(diagnostics.text(), "");
        }
    }

    std::vector<Handle> handles;
};

TEST_P(Boundary, ReportsElevenQuditsOrLetsTheExceptionPass) {
    std::vector<QuantumProperty*> list;
    for (int i = 0; i < 11; ++i)
        list.push_back(add(2));
    expect<qudit::BadQuditNumber>(list, GetParam().knows_bad_qudit_number, vantel_bad_qudit_number,
                                  "num_qudits must be <= MAX_QUDIT_NUM: 10");
}

TEST_P(Boundary, ReportsAMergeThatIsTooLargeOrLetsTheExceptionPass) {
    std::vector<QuantumProperty*> list;
    for (int i = 0; i < 2; ++i) {
        std::vector<QuantumProperty*> half{add(7), add(7), add(7)};
        for (QuantumProperty* const property : half)
            vantel_hadamard(property, nullptr, 0);
        merge(half);
        list.push_back(half[0]);
    }
    expect<qudit::StateSizeExceeded>(list, GetParam().knows_state_size_exceeded, vantel_state_size_exceeded,
                                     "State size exceeded maximum allowed size");
}

TEST_P(Boundary, LetsALengthErrorPassForACountWithItsTopBitSet) {
    QuantumProperty* const list[]{add(2), add(2)};
    const auto records = any_level({list[0], list[1]});
    std::vector<QuantumProperty*> copy(list, list + 2);
    EXPECT_THROW(GetParam().make(copy.data(), records.data(), (std::size_t{1} << 63) + 1), std::length_error);
}

INSTANTIATE_TEST_SUITE_P(Functions, Boundary, ::testing::ValuesIn(calls),
                         [](const auto& tested) { return tested.param.name; });

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
