/// What stands behind a caller's handle.
#pragma once

#include "algorithms/short_list.hpp"
#include "state/istate.hpp"
#include "state/limits.hpp"
#include <cstddef>
#include <memory>
#include <utility>

namespace vantel {
/// A handle to one qudit. `SharedState::properties` stores its address, so it never moves: it is built in the storage
/// where it will live.
struct QuantumProperty {
    struct SharedState;

    /// A control condition by handle; qudit::Predicate is the same by index.
    struct Predicate {
        QuantumProperty* property; ///< not owned
        int value;
        bool is_equal;
    };

    /// Takes over a state, of which the new handle names qudit `index`.
    QuantumProperty(std::unique_ptr<qudit::IState> state, int index);
    QuantumProperty(const QuantumProperty&) = delete;
    QuantumProperty& operator=(const QuantumProperty&) = delete;

    /// Takes the qudit out of its joint state if other qudits remain there. A failure ends the process.
    ~QuantumProperty();

    std::shared_ptr<SharedState> shared_state; ///< one for all handles of a joint state
    int index;                                 ///< this qudit's position there
};

/// One joint state and the handles of its qudits.
struct QuantumProperty::SharedState {
    SharedState(std::unique_ptr<qudit::IState> of_all, QuantumProperty* only)
        : state(std::move(of_all)), properties(1) {
        properties[0] = only;
    }

    std::unique_ptr<qudit::IState> state;

    /// The handles, not owned. A release compacts the list and does not shorten it, so that a handle can stand in it
    /// twice, and the pointer of a handle that is gone can remain. That is deliberate: a merge moves the qudit index of
    /// a handle once for each time it stands here.
    ShortList<QuantumProperty*, qudit::MAX_QUDIT_NUM> properties;

    /// For each position of `properties`, not 0 if its handle is gone; positions beyond the end of this list are live.
    /// A stale position is never read or written through, and is no handle that lives at the same address later.
    ShortList<unsigned char, qudit::MAX_QUDIT_NUM> stale;

    [[nodiscard]] bool is_stale(std::size_t position) const { return position < stale.size() && stale[position] != 0; }
};

/// A new qudit of `dimension` levels in level 0, alone in its joint state, built in the caller's storage.
/// @throws qudit::BadDimension, std::bad_alloc
QuantumProperty make_quantum_property(unsigned long dimension);
} // namespace vantel
