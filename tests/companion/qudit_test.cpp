// What owns, what fails and what is returned.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <type_traits>
#include <vantel.hpp>
#include <vector>

namespace {
using vantel::Qudit;

static_assert(!std::is_copy_constructible_v<Qudit> && std::is_nothrow_move_constructible_v<Qudit> &&
              std::is_nothrow_move_assignable_v<Qudit> && std::is_nothrow_swappable_v<Qudit>);

template <class Body> vantel_status status_of_failure(Body body) {
    try {
        body();
    } catch (const vantel::Error& failure) {
        return failure.status();
    }
    return vantel_ok;
}

TEST(QuditObject, TakesItsQuditAlongWhenMoved) {
    Qudit control(3);
    Qudit target(4);
    vantel::cycle(control);
    const auto when = control == 1;
    Qudit moved(std::move(control));
    control = Qudit(2);
    vantel::cycle(target, when);
    EXPECT_EQ(moved.dimension(), 3);
    EXPECT_EQ(vantel::measure(moved, target, control), (std::array{1, 1, 0}));
    Qudit& same = moved;
    moved = std::move(same);
    EXPECT_EQ(vantel::reset(moved), 1);
    EXPECT_EQ(vantel::measure(moved), 0);
}

TEST(QuditObject, IsReorderedByAlgorithmsWithoutAGate) {
    auto qudits = vantel::make_register(3, 3);
    vantel::cycle(qudits[0]);
    const QuantumProperty* const first = qudits[0].handle();
    std::ranges::reverse(qudits);
    EXPECT_EQ(qudits[2].handle(), first);
    EXPECT_EQ(vantel::measure(qudits), (std::vector{0, 0, 1}));
}

TEST(QuditObject, HandsOverItsHandle) {
    Qudit qudit(2);
    QuantumProperty* const handle = qudit.release();
    EXPECT_EQ(qudit.handle(), nullptr);
    EXPECT_EQ(vantel_free_quantum_property(handle), vantel_ok);
}

// In a child, since the bystander, whose measurement makes nothing smaller, is kept until the process ends.
TEST(QuditObject, CanLeaveAStateOverTheLimit) {
    const auto leave = [] {
        auto q = vantel::make_register({10, 10, 10, 10, 10, 2, 3});
        vantel::join(q[0], q[6]);
        vantel::sum(q[0], q[5]);
        for (std::size_t i = 0; i < 6; ++i)
            if (status_of_failure([&] { vantel::hadamard(q[i], q[6] == 0); }) != (i < 5 ? 0 : 9)) std::_Exit(1);
        q.pop_back();
        q.pop_back(); // measured, and of one level from now on
        std::_Exit(status_of_failure([&] {
                       vantel::clock(q[0]);
                       vantel::hadamard(q[0]);
                   }) == 0
                       ? 3
                       : 2);
    };
    EXPECT_EXIT(leave(), testing::ExitedWithCode(3), "");
}

TEST(ConditionList, CanBeWrittenInEachForm) {
    Qudit a(3), b(3);
    vantel::cycle(a);
    const std::vector<vantel::Condition> collected{a == 1, b != 1};
    for (int form = 0; form < 4; ++form) {
        Qudit target(5);
        vantel::join(a, target);
        switch (form) {
        case 0: vantel::cycle(target, a == 1 && b != 1); break;
        case 1: vantel::cycle(target, {a == 1, b != 1}); break;
        case 2: vantel::cycle(target, collected); break;
        default: vantel::cycle(target, {a == 1, b != 0}); break;
        }
        EXPECT_EQ(vantel::measure(target), form < 3 ? 1 : 0) << form;
    }
}

TEST(Gate, TakesANamedListOfConditionsAndAnIntegerPower) {
    auto q = vantel::make_register({2, 3, 5, 5});
    const vantel::Conditions when{q[0] == 0, q[1] != 1, q[0] != 1, q[1] != 2, q[1] == 0};
    vantel::cycle(q[2], 3, when);
    vantel::hadamard(q[2]);
    vantel::clock(q[2], -1);
    vantel::inverse_hadamard(q[2]);
    vantel::i_swap(q[2], q[3], q[1] == 0);
    EXPECT_EQ(vantel::measure(q), (std::vector{0, 0, 0, 4}));
}

TEST(Failure, ArrivesAsOneClassWhicheverWayItCame) {
    Qudit two(2), three(3);
    EXPECT_EQ(status_of_failure([] { Qudit{11}; }), vantel_bad_dimension);
    EXPECT_EQ(status_of_failure([&] { vantel::hadamard(two, two == 0); }), vantel_target_control_overlap);
    EXPECT_EQ(status_of_failure([&] { vantel::swap_levels(two, three); }), vantel_different_dimensions);
    EXPECT_EQ(status_of_failure([&] { vantel::swap_by_sums(two, three); }), vantel_different_dimensions);

    auto many = vantel::make_register(11, 2);
    EXPECT_EQ(status_of_failure([&] { (void)vantel::probabilities(many); }), vantel_bad_qudit_number);
    EXPECT_EQ(status_of_failure([&] {
                  for (auto& qudit : many) vantel::hadamard(two, qudit == 0);
              }),
              vantel_bad_qudit_number);

    auto large = vantel::make_register(6, 10);
    for (auto& qudit : large) vantel::hadamard(qudit);
    EXPECT_EQ(status_of_failure([&] { (void)vantel::measure(large); }), vantel_state_size_exceeded);
}

TEST(Readout, KeepsItsTableWhenMoved) {
    Qudit two(2), three(3);
    vantel::cycle(three);
    auto table = vantel::probabilities(two, three);
    ASSERT_EQ(table.size(), 6U);
    EXPECT_EQ(table(0, 1), 1.0F);
    EXPECT_EQ(table[2].probability, 1.0F);
    EXPECT_EQ(testing::PrintToString(table), "0 1  1.000000\n");
    EXPECT_EQ(testing::PrintToString(vantel::reduced_density_matrix(two)),
              "(1.000000, 0.000000) (0.000000, 0.000000)\n(0.000000, 0.000000) (0.000000, 0.000000)\n");
    const auto moved = std::move(table);
    EXPECT_EQ(moved[3].qudit_values[0], 1);
    EXPECT_EQ(moved[3].qudit_values[1], 1);
}

TEST(Readout, RefusesWhatIsNotInItsTable) {
    auto q = vantel::make_register({2, 3});
    EXPECT_THROW((void)vantel::probabilities(q)(0), std::out_of_range);
    EXPECT_THROW((void)vantel::probabilities(q)(2, 0), std::out_of_range);
    EXPECT_THROW((void)vantel::reduced_density_matrix(q)(0, 6), std::out_of_range);
}

TEST(Readout, ProjectsOntoTheAnswer) {
    Qudit a(3), b(3);
    vantel::prepare_bell(a, b);
    const bool is_two = vantel::stochastic_projection(a == 2);
    EXPECT_EQ(vantel::probabilities(b)(2), is_two ? 1.0F : 0.0F);
}

TEST(JointState, StaysSoundWhenTheLastComerLeaves) {
    auto trio = vantel::make_register(3, 3);
    vantel::prepare_ghz(trio);
    for (int round = 0; round < 3; ++round) {
        Qudit copy(3);
        vantel::join(trio[0], copy);
        vantel::sum(trio[1], copy);
        (void)vantel::measure(copy);
    }
    const bool first = vantel::project(trio[0] == 1);
    EXPECT_EQ(vantel::project(trio[2] == 1), first);
    EXPECT_EQ(vantel::project(trio[1] == 1 && trio[2] == 1), first);
    Qudit judge(4);
    vantel::sum(trio[2], judge);
    const int level = vantel::reset(trio[1]);
    EXPECT_EQ(vantel::measure(trio[0], trio[1], trio[2], judge), (std::array{level, 0, level, level}));

    auto pair = vantel::make_register(2, 3); // nobody has left it yet
    vantel::cycle(pair[0]);
    vantel::shift(pair[1]);
    for (int round = 0; round < 3; ++round) EXPECT_TRUE(vantel::project(pair[0] == 1 && pair[1] == 2)) << round;
}

TEST(Readout, OfAnEmptyJointStateHasNoRows) {
    Qudit qudit(3);
    vantel::phase_rotate(qudit == 0, std::nanf(""));
    vantel::hadamard(qudit);
    EXPECT_EQ(vantel::probabilities(qudit).size(), 0U);
    EXPECT_EQ(vantel::measure(qudit), 0);
}

TEST(Readout, TakesReferencesInAnyOrder) {
    Qudit a(2), b(3);
    vantel::cycle(b);
    const std::vector<std::reference_wrapper<Qudit>> list{b, a};
    EXPECT_EQ(vantel::measure(list), (std::vector{1, 0}));
    EXPECT_EQ(vantel::reduced_density_matrix(list)(1, 1), 1.0);
}
} // namespace
