#include <limits>

#include "state/state.hpp"
#include "tests/support/states.hpp"

namespace vantel::qudit {
namespace {

using Label = DitArray<10, 1>;

struct Reduction {
    const char* name;
    std::vector<std::pair<std::uint64_t, std::complex<double>>> before, after;
};

class Reduce : public ::testing::TestWithParam<Reduction> {};

TEST_P(Reduce, LeavesTheToldEntriesInTheToldOrder) {
    std::vector<BasisAmplitude<Label>> list;
    for (const auto& [level, amplitude] : GetParam().before)
        list.push_back(make_basis_amplitude<10, 1>({{level, 10}}, amplitude));
    State<Label>::reduce(list);
    ASSERT_EQ(list.size(), GetParam().after.size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        EXPECT_EQ(list[i].label.key(), GetParam().after[i].first) << i;
        EXPECT_TRUE(vantel::testing::same_bits(list[i].amplitude, GetParam().after[i].second)) << i;
    }
}

constexpr double threshold = 0x1p-23;
const double above = std::nextafter(threshold, 1.0);
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

// The holes of dropped entries are filled from the tail; a stable removal would be a fault.
INSTANTIATE_TEST_SUITE_P(
    Lists, Reduce,
    ::testing::Values(
        Reduction{"sorts", {{3, 1.}, {1, 2.}, {2, 3.}}, {{1, 2.}, {2, 3.}, {3, 1.}}},
        Reduction{
            "fills_holes", {{1, 1.}, {2, threshold}, {3, 3.}, {4, 0.}, {5, 5.}}, {{1, 1.}, {5, 5.}, {3, 3.}}},
        Reduction{"fills_the_first", {{1, threshold}, {2, 2.}, {3, 3.}}, {{3, 3.}, {2, 2.}}},
        Reduction{"sums_forward", {{4, 1.}, {2, .5}, {4, .25}, {4, .125}}, {{2, .5}, {4, 1.375}}},
        Reduction{"cancels", {{4, .5}, {4, -.5}}, {}},
        Reduction{"drops_a_lone_entry", {{4, {threshold, -threshold}}}, {}},
        Reduction{"holds_parts_to_the_threshold",
                  {{1, {threshold, 0.}},
                   {2, {1e-7, 1e-7}},
                   {3, {0., -threshold}},
                   {4, {above, 0.}},
                   {5, {0., -above}}},
                  {{5, {0., -above}}, {4, {above, 0.}}}},
        Reduction{"keeps_nan_beside_a_number",
                  {{1, {nan, 1.}}, {2, {nan, nan}}, {3, {infinity, nan}}},
                  {{1, {nan, 1.}}, {3, {infinity, nan}}}}),
    [](const auto& tested) { return tested.param.name; });

} // namespace
} // namespace vantel::qudit
