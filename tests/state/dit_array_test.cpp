#include "state/dit_array.hpp"

#include <csignal>
#include <functional>
#include <iostream>
#include <unistd.h>

#include <gtest/gtest.h>

namespace vantel::qudit {
namespace {

template <int D, int N> void check_packing(unsigned bits) {
    SCOPED_TRACE("D " + std::to_string(D) + ", N " + std::to_string(N));
    DitArray<D, N> label;
    EXPECT_EQ(sizeof label, 16U);
    EXPECT_EQ(label.dits(), std::vector<Dit>(N, {0, 1}));
    for (int i = 0; i < N; ++i)
        label[i] = Dit{D - 1, D};
    const auto full = label;
    for (int i = 0; i < N; ++i) {
        const std::uint64_t top = std::uint64_t{D - 1} << (bits * static_cast<unsigned>(i));
        label[i] = Dit{0, 2};
        EXPECT_EQ(label.values[0], full.values[0] - top);
        EXPECT_EQ(label.dimensions[0], full.dimensions[0] - top + (top / (D - 1)));
        label[i] = Dit{D - 1, 2}; // held against the build, not against the slot's own dimension
        EXPECT_EQ(label.values[0], full.values[0]);
        label[i] = Dit{D - 1, D};
        const Dit raised = label[i] + 1;
        EXPECT_EQ(raised, (Dit{0, D}));
        EXPECT_EQ(label.dimensions[0], full.dimensions[0]);
    }
    EXPECT_EQ(full.values[0] >> (bits * N - 1) >> 1, 0U);
    EXPECT_THROW(static_cast<void>(full.at(N)), std::out_of_range);
}

TEST(Label, KeepsEachSlotInAFieldOfItsOwn) {
    check_packing<2, 1>(1);
    check_packing<2, 10>(1);
    check_packing<3, 10>(2);
    check_packing<4, 10>(2);
    check_packing<5, 10>(3);
    check_packing<8, 10>(3);
    check_packing<9, 10>(4);
    check_packing<10, 1>(4);
    check_packing<10, 10>(4);
}

/// The text goes to standard output, and no handler gets a chance.
void expect_end(const std::function<void()>& act, const char* text) {
    EXPECT_EXIT(
        {
            dup2(STDERR_FILENO, STDOUT_FILENO);
            std::cerr.rdbuf(nullptr);
            try {
                act();
            } catch (...) {
            }
            _exit(0);
        },
        ::testing::KilledBySignal(SIGABRT), text);
}

TEST(LabelDiagnostics, PrintAndEndTheProcessPastAnyHandler) {
    DitArray<5, 3> label;
    expect_end(
        [&] {
            label[1] = Dit{5, 5};
        },
        "DitArray::operator=: v\\.value \\(5\\) >= MAX_DIMENSION \\(5\\)\n");
    expect_end(
        [&] {
            label[1] = Dit{7, 9};
        },
        "^DitArray::operator=: v\\.value \\(7\\) >= MAX_DIMENSION \\(5\\)\n");
    expect_end([&] { label[1] = Dit{0, 6}; }, "^DitArray::operator=: v\\.dimension > MAX_DIMENSION\n");
    expect_end([&] { static_cast<void>(label[1] + 1); }, "^DitArray::operator\\+: v >= dimension\\(\\)\n");
}

} // namespace
} // namespace vantel::qudit
