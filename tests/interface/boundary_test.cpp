#include "interface/quantum_property.hpp"
#include "tests/support/handles.hpp"
#include "tests/support/states.hpp"
#include <array>
#include <chrono>
#include <gtest/gtest.h>
#include <locale>
#include <new>
#include <stdexcept>
#include <vantel_exceptions.hpp>

// What passes out of the shared library and what does not, as any C++ host sees it.
namespace vantel::testing {
namespace {
using Records = const PredicateRecord*;
using List = std::vector<QuantumProperty*>;
constexpr int untouched = -7;

/// The caller's own, for three qudits that have a dozen combinations of levels at the most.
struct Buffers {
    std::array<int, 36> levels;
    std::array<float, 144> real, imaginary;
    std::array<ProbabilityRecord, 12> rows;

    Buffers() {
        levels.fill(untouched);
        real.fill(untouched);
        imaginary.fill(untouched);
        for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = {untouched, &levels[3 * i]};
    }
    [[nodiscard]] bool are_untouched() const {
        const Buffers fresh;
        return levels == fresh.levels && real == fresh.real && imaginary == fresh.imaginary &&
               std::all_of(rows.begin(), rows.end(), [](auto& r) { return r.probability == untouched; });
    }
};

/// Handles of which a call relates the first `n`. A gate's targets come first, then its conditions.
struct Relation {
    std::vector<Handle> owned;
    List l;
    std::vector<PredicateRecord> r;
    std::size_t n = 3;

    explicit Relation(const std::vector<int>& dimensions = {2, 2, 2}) {
        for (const int dimension : dimensions) l.push_back(owned.emplace_back(qudit_of(dimension)).get());
        r = any_level(l);
    }
    /// Gives one of them company in its joint state, in all levels or in one. @return the last comer
    QuantumProperty* join(std::size_t i, int count, int dimension, bool spread) {
        for (; count > 0; --count) {
            owned.push_back(qudit_of(dimension));
            merge({l[i], owned.back().get()});
            if (spread) vantel_hadamard(owned.back().get(), nullptr, 0);
        }
        return owned.back().get();
    }
    [[nodiscard]] bool are_together(std::size_t i, std::size_t j) const {
        return l[i]->shared_state == l[j]->shared_state;
    }
};

using Make = int (*)(Relation& q, Buffers& b);

struct Function {
    const char* name;
    Make call;
    std::vector<int> codes;      ///< of the failures that it handles
    std::string overlap = "";    ///< its words for a condition on a target,
    std::string dimensions = ""; ///< for two targets of different dimensions,
    std::string size = "";       ///< and for a state over the limit
    bool joins_one = false;      ///< takes one more place in the joint state
};

void PrintTo(const Function& function, std::ostream* out) { *out << function.name; }

const std::string over = "State size exceeded maximum allowed size";
const std::vector<int> gate{vantel_target_control_overlap, vantel_state_size_exceeded};
const std::vector<int> readout{vantel_bad_dimension, vantel_bad_qudit_number};
const std::vector<int> exchange{vantel_target_control_overlap, vantel_different_dimensions, vantel_bad_qudit_number,
                                vantel_state_size_exceeded};

template <auto form> constexpr Make plain = [](auto& q, auto&) { return form(q.l[0], &q.r[1], q.n - 1); };
template <auto form> constexpr Make whole = [](auto& q, auto&) { return form(q.l[0], 1.0F, &q.r[1], q.n - 1); };
template <auto form> constexpr Make part = [](auto& q, auto&) { return form(q.l[0], 0.5F, &q.r[1], q.n - 1); };
constexpr Make rotate = [](auto& q, auto&) { return vantel_phase_rotate(q.r.data(), q.n, 1.0F); };
constexpr Make swap = [](auto& q, auto&) { return vantel_swap(q.l[0], q.l[1], &q.r[2], q.n - 2); };
constexpr Make i_swap = [](auto& q, auto&) { return vantel_i_swap(q.l[0], q.l[1], 1.0F, &q.r[2], q.n - 2); };
constexpr Make measure = [](auto& q, auto& b) { return vantel_measure(q.l.data(), q.n, b.levels.data()); };
constexpr Make projection = [](auto& q, auto& b) {
    return vantel_stochastic_projection(q.r.data(), q.n, b.levels.data());
};
constexpr Make probabilities = [](auto& q, auto& b) { return vantel_probabilities(q.l.data(), q.n, b.rows.data()); };
constexpr Make density_matrix = [](auto& q, auto& b) {
    return vantel_reduced_density_matrix(q.l.data(), q.n, b.real.data(), b.imaginary.data(), 64);
};

const Function functions[] = {
    {"hadamard", plain<vantel_hadamard>, gate, "Hadamard operation has overlapping", "", over},
    {"inverse", plain<vantel_inverse_hadamard>, gate, "inverse-Hadamard operation has overlapping", "", over},
    {"cycle", whole<vantel_cycle>, gate, "Cycle operation has overlapping", "", over},
    {"cycle_in_part", part<vantel_cycle>, gate, "Fractional cycle operation has overlapping", "", over},
    {"shift", whole<vantel_shift>, gate, "Shift operation has overlapping", "", over},
    {"shift_in_part", part<vantel_shift>, gate, "Fractional shift operation has overlap", "", over},
    {"clock", whole<vantel_clock>, gate, "Clock operation has overlapping"},
    {"clock_in_part", part<vantel_clock>, gate, "Fractional Clock operation has overlapped"},
    {"phase_rotate", rotate, gate, "", "", over},
    {"swap", swap, exchange, "Swap operation has overlapping", "Targets of swap", over},
    {"i_swap", i_swap, exchange, "Fractional i-swap operation has overlapping", "Targets of fractional-i-swap",
     "State size exceeds maximum allowed size"},
    {"measure", measure, readout},
    {"projection", projection, readout, "", "", over, true},
    {"probabilities", probabilities, readout},
    {"matrix", density_matrix, {}},
};

/// A failure of a call that relates three qudits. The second has joined the first by then or, where the
/// failure comes before all merges, has not, and the third is alone.
struct Failing {
    const char* name;
    int code;
    Passed passing; ///< of any text where that is empty
    bool stands;
    void (*prepare)(Relation& q, const Function& function);
    std::string Function::*words = nullptr; ///< of the function's own; it cannot fail so if it has none
    const char* rest = "";                  ///< that follows them
};

const Failing failures[] = {
    {"overlap", vantel_target_control_overlap, failure<qudit::TargetControlOverlap>(""), true,
     [](Relation& q, auto&) { q.r[2].property = q.l[0]; }, &Function::overlap, " targets and controls"},
    {"different dimensions", vantel_different_dimensions, failure<qudit::DifferentDimensions>(""), true,
     [](Relation& q, auto&) {
         q = Relation({2, 3, 2});
         q.n = 2;
     },
     &Function::dimensions, " operation have different dimensions"},
    {"too many qudits", vantel_bad_qudit_number,
     failure<qudit::BadQuditNumber>("num_qudits must be <= MAX_QUDIT_NUM: 10"), true,
     [](Relation& q, auto& function) { q.join(0, function.joins_one ? 7 : 8, 2, false); }},
    {"too large, and of too many qudits", vantel_state_size_exceeded, failure<qudit::StateSizeExceeded>(over.c_str()),
     true,
     [](Relation& q, auto&) {
         q.join(0, 3, 10, true);
         q.join(2, 7, 2, true);
     }},
    {"a count with its top bit set", -1, failure<std::length_error>(""), false,
     [](Relation& q, auto&) { q.n = (std::size_t{1} << 63) + 2; }},
    {"a count for which there is no memory", -1, failure<std::bad_alloc>(""), false,
     [](Relation& q, auto&) { q.n = (std::size_t{1} << 60) + 2; }},
};

class Boundary : public ::testing::TestWithParam<Function> {
protected:
    /// Makes the call, which fails.
    void expect(int code, Passed passing) {
        const auto& codes = GetParam().codes;
        const bool is_handled = std::count(codes.begin(), codes.end(), code) != 0;
        const Diagnostics diagnostics;
        int status = -1;
        Passed passed = thrown_by([&] { status = GetParam().call(q, buffers); });
        if (passing.second.empty()) passed.second.clear();
        EXPECT_EQ(status, is_handled ? code : -1);
        EXPECT_EQ(diagnostics.text(), is_handled ? passing.second + "\n" : "");
        EXPECT_EQ(passed, is_handled ? Passed() : passing);
        EXPECT_TRUE(buffers.are_untouched());
    }

    Relation q;
    Buffers buffers;
};

TEST_P(Boundary, TurnsWhatItHandlesIntoACodeAndLetsTheRestPass) {
    for (const Failing& failing : failures) {
        SCOPED_TRACE(failing.name);
        Passed passing = failing.passing;
        if (failing.words != nullptr) {
            if ((GetParam().*failing.words).empty()) continue;
            passing.second = GetParam().*failing.words + failing.rest;
        }
        q = Relation();
        failing.prepare(q, GetParam());
        expect(failing.code, passing);
        EXPECT_EQ(q.are_together(0, 1), failing.stands);
        EXPECT_FALSE(q.are_together(0, 2));
    }
    if (GetParam().dimensions.empty()) return;
    q = Relation({2, 3, 2});
    q.r[2].property = q.l[1];
    expect(failures[0].code, failure<qudit::TargetControlOverlap>((GetParam().overlap + failures[0].rest).c_str()));
}

TEST_P(Boundary, ReportsAStateOverTheLimitWhereItIsGuarded) {
    merge(q.l);
    List others;
    for (int i = 0; i < 6; ++i) others.push_back(q.join(0, 1, 7, false));
    const Diagnostics diagnostics;
    for (QuantumProperty* const other : others)
        EXPECT_EQ(vantel_hadamard(other, nullptr, 0), other == others.back() ? 9 : 0);
    if (GetParam().size.empty()) {
        EXPECT_EQ(GetParam().call(q, buffers), vantel_ok);
        EXPECT_EQ(diagnostics.text(), over + "\n");
    } else {
        expect(vantel_state_size_exceeded, failure<qudit::StateSizeExceeded>(GetParam().size.c_str()));
    }
    EXPECT_EXIT(q.owned.front().reset(), ::testing::KilledBySignal(SIGABRT), "");
    std::vector<int> levels(6);
    vantel_measure(others.data(), 6, levels.data()); // small again, and can be freed
}

INSTANTIATE_TEST_SUITE_P(Functions, Boundary, ::testing::ValuesIn(functions),
                         [](const auto& tested) { return tested.param.name; });

TEST(Making, RefusesADimensionWithAStatusAndItsWords) {
    const std::pair<int, std::string> refused[] = {{0, "dim must be >= 2\n"},
                                                   {1, "dim must be >= 2\n"},
                                                   {11, "dim must be <= MAX_QUDIT_DIMENSION: 10\n"},
                                                   {-1, "dim must be <= MAX_QUDIT_DIMENSION: 10\n"}};
    for (const auto& [dimension, text] : refused) {
        const Diagnostics diagnostics;
        int status = 77;
        EXPECT_EQ(vantel_make_quantum_property(dimension, &status), nullptr);
        EXPECT_EQ(status, vantel_bad_dimension);
        EXPECT_EQ(diagnostics.text(), text);
    }
    EXPECT_EQ(vantel_free_quantum_property(nullptr), vantel_null_property);
}

TEST(Tables, ThatOverflowAreReportedAtOnceAndWrittenNowhere) {
    const Relation q(std::vector<int>(10, 10)), two({2});
    List list = q.l;
    const auto expect = [&](const char* text) {
        const Diagnostics diagnostics;
        EXPECT_EQ(thrown_by([&] { vantel_probabilities(list.data(), list.size(), nullptr); }),
                  failure<std::runtime_error>(text));
        EXPECT_EQ(diagnostics.text(), std::string(text) + "\n");
    };
    const auto start = std::chrono::steady_clock::now();
    expect("permutations.size(): 10000000000 != output_size: 1410065408");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    list.insert(list.end(), q.l.begin(), q.l.end()); // 10^20 combinations
    EXPECT_THROW(vantel_probabilities(list.data(), list.size(), nullptr), std::length_error);
    list.assign(31, two.l[0]);
    struct Grouped : std::numpunct<char> {
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale own = std::locale::global(std::locale(std::locale(), new Grouped)); // not for these texts
    expect("permutations.size(): 2147483648 != output_size: -2147483648");
    std::locale::global(own);
}

TEST(Matrices, AreHeldAgainstASizeThatWrapsIn32Bits) {
    const Relation even(std::vector<int>(8, 4)); // 65536 squared is 0 in 32 bits
    float parts[]{untouched, untouched};
    List list = even.l;
    EXPECT_EQ(vantel_reduced_density_matrix(list.data(), list.size(), &parts[0], &parts[1], 0), vantel_ok);
    EXPECT_EQ(parts[0], untouched);
    EXPECT_EQ(parts[1], untouched);

    const Relation negative({10, 10, 10, 10, 5});
    list = negative.l;
    const auto matrix = [&](std::size_t size) {
        return vantel_reduced_density_matrix(list.data(), list.size(), nullptr, nullptr, size);
    };
    const Diagnostics diagnostics;
    constexpr std::uint32_t wrapped = 2500000000;
    EXPECT_EQ(matrix(wrapped), vantel_output_too_small);
    EXPECT_EQ(diagnostics.text(), "permutations.size(): 50000 < output_size: 2500000000\n");
    EXPECT_THROW(matrix(static_cast<std::size_t>(static_cast<int>(wrapped))), std::length_error);
    EXPECT_FALSE(negative.are_together(0, 1));
    list.assign(20, negative.l[0]);
    EXPECT_THROW(matrix(0), std::length_error);
}

TEST(Version, StandsBehindItsPointerAtTheMomentOfReturn) {
    for (int i = 0; i < 3; ++i) {
        // The text is gone already, so each byte is read before anything else is called.
        const volatile char* const text = vantel_version();
        char read[6];
        for (int j = 0; j < 6; ++j) read[j] = text[j];
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
