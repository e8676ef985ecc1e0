#include "state/dit_array.hpp"
#include "tests/support/states.hpp"
#include <limits>

namespace vantel::qudit {
namespace {
template <int D, int N> void check_packing(unsigned bits) {
    SCOPED_TRACE("D " + std::to_string(D) + ", N " + std::to_string(N));
    DitArray<D, N> label;
    EXPECT_EQ(sizeof label, 16U);
    EXPECT_EQ(label.dits(), std::vector<Dit>(N, {0, 1}));
    for (int i = 0; i < N; ++i) label[i] = Dit{D - 1, D};
    const auto full = label;
    for (int i = 0; i < N; ++i) {
        const std::uint64_t top = std::uint64_t{D - 1} << (bits * static_cast<unsigned>(i));
        label[i] = Dit{0, 2};
        EXPECT_EQ(label.values[0], full.values[0] - top);
        EXPECT_EQ(label.dimensions[0], full.dimensions[0] - top + (top / (D - 1)));
        label[i] = Dit{D - 1, 2}; // held against the build, not against the slot's own dimension
        label[i] = Dit{D - 1, D};
        EXPECT_EQ(label[i] + 1, (Dit{0, D}));
        EXPECT_EQ(label.values[0], full.values[0]);
        EXPECT_EQ(label.dimensions[0], full.dimensions[0]);
    }
    EXPECT_EQ(full.values[0] >> (bits * N - 1) >> 1, 0U);
    EXPECT_THROW(static_cast<void>(full.at(N)), std::out_of_range);
    // An index that is no qudit's reaches some place of the same two words.
    for (const int index : {N, 63, 64, 100, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_LT(full[index].value, D) << index;
        EXPECT_LE(full[index].dimension, D) << index;
        EXPECT_LT(SlotLayout::of(D).position(index) + bits, 65U) << index;
    }
}

TEST(Label, KeepsEachSlotInAFieldOfItsOwn) {
    check_packing<2, 10>(1);
    check_packing<3, 10>(2);
    check_packing<8, 10>(3);
    check_packing<9, 10>(4);
    check_packing<10, 1>(4);
    check_packing<10, 10>(4);
}

TEST(Label, IsWrittenThroughFromASlotOfAnother) {
    DitArray<5, 2> label, other;
    other[0] = Dit{3, 4};
    label[1] = other[0];
    EXPECT_EQ(Dit(label[1]), (Dit{3, 4}));
}

TEST(LabelDiagnostics, PrintAndEndTheProcessPastAnyHandler) {
    using testing::expect_end;
    DitArray<5, 3> label;
    expect_end([&] { label[1] = Dit{5, 5}; }, "DitArray::operator=: v\\.value \\(5\\) >= MAX_DIMENSION \\(5\\)\n");
    expect_end([&] { label[1] = Dit{7, 9}; }, "^DitArray::operator=: v\\.value \\(7\\) >= MAX_DIMENSION \\(5\\)\n");
    expect_end(
        [] {
            make_basis_amplitude<5, 1>({{0, 2}, {5, 5}}, 1.0);
        }, // though it has no place in the label
        "^DitArray::operator=: v\\.value \\(5\\) >= MAX_DIMENSION \\(5\\)\n");
    expect_end([&] { label[1] = Dit{0, 6}; }, "^DitArray::operator=: v\\.dimension > MAX_DIMENSION\n");
    expect_end([&] { static_cast<void>(label[1] + 1); }, "^DitArray::operator\\+: v >= dimension\\(\\)\n");
}
} // namespace
} // namespace vantel::qudit
