#include "interface/quantum_property.hpp"
#include "tests/support/handles.hpp"
#include "tests/support/random_source.hpp"
#include "tests/support/states.hpp"
#include <optional>

namespace vantel::testing {
namespace {
using List = std::vector<QuantumProperty*>;

List handles_beside(const Handle& handle) {
    const auto& list = handle->shared_state->properties;
    return {list.begin(), list.end()};
}

Entries entries_behind(const Handle& handle) { return handle->shared_state->state->basis_amplitudes(); }

TEST(Release, OfManyGuestsLeavesALongListThatMergesInFrontAndBehind) {
    const Handle host = qudit_of(2), front = qudit_of(3);
    for (int i = 0; i < 12; ++i) {
        const Handle guest = qudit_of(2);
        merge({host.get(), guest.get()});
    }
    ASSERT_EQ(host->shared_state->properties.size(), 13U);
    merge({front.get(), host.get()});
    EXPECT_EQ(handles_beside(host)[1], host.get());
    EXPECT_EQ(host->index, 1);
    Handle last = qudit_of(2);
    merge({host.get(), last.get()});
    EXPECT_EQ(host->shared_state->properties.size(), 15U);
    for (std::size_t i = 0; i < 15; ++i) EXPECT_EQ(host->shared_state->is_stale(i), 2 <= i && i < 14) << i;
    last.reset();
    EXPECT_TRUE(host->shared_state->is_stale(14));
}

TEST(Gate, HoldsMoreConditionsThanAJointStateHasQudits) {
    const Handle target = qudit_of(3), control = qudit_of(2);
    std::vector<PredicateRecord> records(12, PredicateRecord{control.get(), 1, 0});
    records.back() = {control.get(), 0, 0};
    ASSERT_EQ(vantel_cycle(target.get(), 1.0F, records.data(), records.size()), 0);
    EXPECT_TRUE(same_entries(entries_behind(target), entries_of({3, 2}, {{{0, 0}, 1.0}})));
    records.back() = {control.get(), 0, 1};
    ASSERT_EQ(vantel_cycle(target.get(), 1.0F, records.data(), records.size()), 0);
    EXPECT_TRUE(same_entries(entries_behind(target), entries_of({3, 2}, {{{1, 0}, 1.0}})));
}

TEST(Release, OfTheOnlyHandleTakesNothingOutOfItsState) {
    std::optional<QuantumProperty> only(std::in_place, state_of({2, 3}, {{{0, 2}, 1.0}}), 0);
    const auto shared = only->shared_state;
    only.reset();
    EXPECT_EQ(shared->state->num_qudits(), 2U);
}

TEST(Projection, CanLeaveAnIndexBeyondTheQuditsWhichIsNeverWrittenThrough) {
    Handle p = qudit_of(2), q = qudit_of(3);
    merge({p.get(), q.get()});
    const PredicateRecord zero{p.get(), 0, 1};
    int result = -1;
    for (int i = 0; i < 2; ++i) ASSERT_EQ(vantel_stochastic_projection(&zero, 1, &result), 0);
    EXPECT_EQ((std::vector<int>{p->index, q->index}), (std::vector<int>{0, 2}));
    List list{q.get()};
    EXPECT_EQ(thrown_by([&] { vantel_measure(list.data(), 1, &result); }),
              failure<std::out_of_range>("qudit index out of range"));
    expect_end([&] { vantel_cycle(q.get(), 1.0F, nullptr, 0); }, "^DitArray::operator\\+: v >= dimension\\(\\)\n");
    vantel_hadamard(q.get(), nullptr, 0);
    q.reset();
    EXPECT_EQ(p->shared_state->state->num_qudits(), 1U);
}

/// A handle in storage of one's own, so that another can be built at the same address.
struct Place {
    alignas(QuantumProperty) unsigned char storage[sizeof(QuantumProperty)];
    QuantumProperty* build() { return new (storage) QuantumProperty(make_quantum_property(2)); }
};

TEST(StalePosition, IsNoHandleThatLivesAtItsAddressLater) {
    Place place;
    QuantumProperty* gone = place.build();
    Handle a = qudit_of(2), b = qudit_of(2), d = qudit_of(2), x = qudit_of(2), y = qudit_of(2), z = qudit_of(2);
    merge({a.get(), b.get(), gone});
    gone->~QuantumProperty();
    QuantumProperty* const later = place.build();
    merge({y.get(), z.get(), later});
    const auto own = later->shared_state;
    ASSERT_EQ(later->index, 2);

    merge({a.get(), d.get()}); // d stands behind the stale position, with the index that `later` has too
    ASSERT_EQ(d->index, 2);
    a.reset();
    EXPECT_EQ(d->index, 0);
    EXPECT_EQ(later->index, 2);
    merge({x.get(), b.get()});
    EXPECT_EQ(later->index, 2);
    EXPECT_EQ(later->shared_state, own);

    merge({x.get(), y.get()}); // now it stands in one list with its stale twin
    const List before = handles_beside(x);
    const auto twins = std::count(before.begin(), before.end(), later);
    ASSERT_EQ(twins, 2);
    ASSERT_EQ(before.back(), later);
    later->~QuantumProperty();
    EXPECT_EQ(handles_beside(x), before);
    EXPECT_EQ(std::count(x->shared_state->stale.begin(), x->shared_state->stale.end(), 1), twins);
}
} // namespace
} // namespace vantel::testing
