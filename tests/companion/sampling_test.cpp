// Shots: what a generator that counts gives by hand, and how often many give what.
#include <gtest/gtest.h>
#include <vantel_sampling.hpp>

namespace {
std::string refusal_of(auto body) try {
    body();
    return {};
} catch (const std::logic_error& failure) {
    return failure.what();
}

std::string refusal(auto qudits) {
    return refusal_of([&] { vantel::OutcomeSampler{std::move(qudits)}; });
}

TEST(Sampling, OfAnEntangledPairByItsRuleAndWhatIsRefused) {
    vantel::Qudit a(3), b(2);
    vantel::cycle(a, 0.5);
    vantel::cycle(b, a == 1); // 4/9 of (0, 0), 1/9 of (2, 0) and 4/9 of (1, 1), in the rows 0, 2 and 4 of 6
    // 0, 3/16, 6/16 ...: columns 0, 2, 4, 0 and 3. Column 2 keeps 2/3, as does 4; 3 is filled up by 4
    // and the others by 0.
    using Counter = std::linear_congruential_engine<std::uint64_t, 1, 3ULL << 60, 0>;
    const std::vector<std::vector<int>> shots{{0, 0}, {2, 0}, {0, 0}, {0, 0}, {1, 1}};
    EXPECT_EQ(vantel::sample({a, b}, 5, Counter(13ULL << 60)), shots);
    EXPECT_EQ(testing::PrintToString(vantel::counts({a, b}, 3, Counter(13ULL << 60))),
              "0 0  2  " + std::string(40, '#') + "\n2 0  1  " + std::string(20, '#') + '\n');
    const auto found = vantel::counts({b, a}, 100000, std::mt19937(1));
    EXPECT_EQ(found.size(), 3U); // and none of the impossible three
    // Hoeffding: off by t or more at most 2 exp(-2 shots t^2) of the time; six rows together 1e-9. The table
    // is asked for again, so that a state that was measured shows.
    for (const auto& row : vantel::probabilities(b, a))
        EXPECT_NEAR(double(found(row.qudit_values[0], row.qudit_values[1])), 1e5 * row.probability, 1080);

    // 3, 2, 6, 4, 5 and 1 in turn: above 1 they are 2, 1, 5, 3, 4 and 0, and 5 and 4, of more than two bits,
    // are dropped.
    std::linear_congruential_engine<std::uint64_t, 3, 0, 7> narrow(1);
    EXPECT_EQ(vantel::uniform_number(narrow), (0x9C9C9C9C9C9C9C9C >> 11) * 0x1p-53);

    auto list = vantel::make_register(10, 10); // no machine has the memory for their table
    EXPECT_TRUE(refusal(vantel::QuditList(list)).ends_with("ask for fewer qudits at a time"));
    EXPECT_TRUE(refusal(vantel::probabilities(std::vector<vantel::Qudit>())).ends_with("is empty"));
    vantel::phase_rotate(list[0] == 0, NAN);
    EXPECT_TRUE(refusal(vantel::probabilities(list[0])).ends_with("add up to nan"));
}

TEST(Sampling, OfMoreQuditsThanOneTableHasRowsFor) {
    auto q = vantel::make_register(9, 10);
    vantel::prepare_ghz(q);
    vantel::clock(q[4], 0.3);
    vantel::hadamard(q[8], q[0] != 3); // so that only a 3 is followed by a 3 for sure
    const auto before = vantel::reduced_density_matrix(q[8], q[0]);
    std::mt19937_64 generator(5), same(5);
    const auto shots = vantel::sample(q, 3000, generator);
    std::array<double, 10> last{};
    for (const auto& levels : shots) {
        EXPECT_EQ(std::ranges::count(levels, levels[0]), levels[8] == levels[0] ? 9 : 8);
        EXPECT_TRUE(levels[0] != 3 || levels[8] == 3);
        ++last.at(static_cast<std::size_t>(levels[8]));
    }
    // Hoeffding: off by t or more at most 2 exp(-2 t^2 / 3000) of the time; ten levels together 1e-9.
    for (std::size_t level = 0; level < 10; ++level) EXPECT_NEAR(last[level], 270 + (level == 3 ? 300 : 0), 189);
    const auto found = vantel::counts(q, 3000, same);
    std::size_t all_three = 0;
    for (const auto& levels : shots) all_three += levels == std::vector<int>(9, 3);
    EXPECT_EQ(found(3, 3, 3, 3, 3, 3, 3, 3, 3), all_three);

    const auto after = vantel::reduced_density_matrix(q[8], q[0]);
    EXPECT_TRUE(std::equal(before.real(), before.real() + 10000, after.real()));
    EXPECT_TRUE(std::equal(before.imaginary(), before.imaginary() + 10000, after.imaginary()));
    vantel::Qudit tenth(2); // takes the place that was the helper's
    vantel::join(q[0], tenth);
    EXPECT_NE(refusal_of([&] { (void)vantel::sample(q, 1, generator); }).find("helper"), std::string::npos);
}
} // namespace
