#include "guarded/handles.hpp"
#include "state/state_factory.hpp"
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace vantel::guarded {
namespace {
using Factory = qudit::StateFactory<qudit::MAX_QUDIT_DIMENSION, qudit::MAX_QUDIT_NUM>;

/// Ends the handle's share of its joint state. It cannot fail: there are never more handles than the list
/// holds without an allocation.
void leave(QuantumProperty& leaving, int last, int freed) {
    QuantumProperty::SharedState& shared = *leaving.shared_state;
    decltype(shared.properties) remaining(shared.properties.size() - 1);
    std::size_t place = 0;
    for (QuantumProperty* const property : shared.properties) {
        if (property == &leaving) continue;
        remaining[place++] = property;
        if (property->index == last) property->index = freed;
    }
    shared.properties = std::move(remaining);
    // Without a share there is nothing that the handle's destructor would take out.
    leaving.shared_state.reset();
}
} // namespace

void release(QuantumProperty* leaving) {
    std::unique_ptr<qudit::IState>& state = leaving->shared_state->state;
    if (state->num_qudits() > 1) {
        const auto [last, freed] = Factory::free_qudit(state, leaving->index);
        leave(*leaving, last, freed);
    }
    delete leaving;
}

int project(Predicates predicates) {
    if (predicates.empty()) return 1;
    tensor_state({}, predicates);
    std::unique_ptr<qudit::IState>& state = predicates.front().property->shared_state->state;

    // A two-level qudit behind the others is raised where the conditions hold, is measured and goes, all of
    // it in a state of its own that replaces the joint one at the end: no handle is touched, and nothing is
    // half done.
    const QuantumProperty answer = make_quantum_property(2);
    std::unique_ptr<qudit::IState> asked =
        qudit::tensor_product<qudit::MAX_QUDIT_DIMENSION, qudit::MAX_QUDIT_NUM>(*state, *answer.shared_state->state);
    const int place = static_cast<int>(state->num_qudits());
    std::vector<qudit::Predicate> controls;
    controls.reserve(predicates.size());
    for (const QuantumProperty::Predicate& predicate : predicates)
        controls.push_back({predicate.property->index, predicate.value, predicate.is_equal});
    asked->cycle({place}, controls);
    const int level = asked->measure({place}).front();
    Factory::free_qudit(asked, place);
    state = std::move(asked);
    return level;
}
} // namespace vantel::guarded
