#pragma once

#include "reference/literal_state.hpp"
#include <map>

namespace vantel::reference {
// Never given out twice, unlike an address.
using HandleId = int;
using HandleList = std::vector<HandleId>;

struct HandleControl {
    HandleId property;
    int value;
    bool is_equal;
};
using HandleControls = std::vector<HandleControl>;

// One place in a joint state's list of handles. A stale one names a handle that is gone: it is
// moved and copied with the list, but never looked through, and no live handle equals it.
struct Position {
    HandleId handle;
    bool stale;
};

// Handles and joint states. It is a value: a copy is a world of its own, in which a call can be
// tried first. Lists of handles hold live ones, at least one.
class HandleTable {
public:
    int index(HandleId handle) const { return handles_.at(handle).index; }
    const LiteralState& state(HandleId handle) const { return joint(handle).state; }
    const std::vector<Position>& properties(HandleId handle) const { return joint(handle).properties; }
    bool same_joint_state(HandleId a, HandleId b) const { return handles_.at(a).joint == handles_.at(b).joint; }

    HandleId make(std::uint64_t dimension) {
        const LiteralState fresh({dimension, 1}, {Entry{{Dit{0, dimension}}, 1.0}});
        const HandleId made = next_++;
        // A joint state goes by the number of its first handle, which no other can come to carry.
        joints_.emplace(made, Joint{fresh, {{made, false}}});
        handles_.emplace(made, Handle{made, 0});
        return made;
    }

    // Handles to all qudits of a state, numbered on from the one that is returned.
    HandleId adopt(const LiteralState& state) {
        const HandleId first = next_;
        std::vector<Position> positions;
        for (int i = 0; i < static_cast<int>(state.num_qudits()); ++i, ++next_) {
            handles_.emplace(next_, Handle{first, i});
            positions.push_back({next_, false});
        }
        joints_.emplace(first, Joint{state, positions});
        return first;
    }

    void merge(HandleId a, HandleId b) {
        if (same_joint_state(a, b)) return;
        const int kept = handles_.at(a).joint;
        const int gone = handles_.at(b).joint;
        Joint& anchor = joints_.at(kept);
        const int offset = static_cast<int>(anchor.state.num_qudits());
        anchor.state = tensor_product(anchor.state, state(b));
        for (const Position& position : joints_.at(gone).properties) {
            if (!position.stale) {
                handles_.at(position.handle).index += offset; // twice if it stands twice
                handles_.at(position.handle).joint = kept;
            }
            anchor.properties.push_back(position);
        }
        joints_.erase(gone);
    }

    LiteralState& merge(const HandleList& list) {
        for (std::size_t i = 1; i < list.size(); ++i) merge(list[0], list[i]);
        return joints_.at(handles_.at(list.at(0)).joint).state;
    }

    void release(HandleId handle) {
        const int number = handles_.at(handle).joint;
        std::vector<Position>& list = joints_.at(number).properties;
        if (leaves_a_rest(handle)) {
            const auto moved = joints_.at(number).state.free_qudit(index(handle));
            const auto renumbered = std::find_if(list.begin(), list.end(), [&](const Position& p) {
                return !p.stale && index(p.handle) == moved.first;
            });
            if (renumbered != list.end()) handles_.at(renumbered->handle).index = moved.second;
            // Compacts and does not shorten: the tail keeps its old content.
            std::size_t place = 0;
            for (std::size_t next = 0; next < list.size(); ++next)
                if (list[next].handle != handle) list[place++] = list[next];
        }
        for (Position& position : list) position.stale = position.stale || position.handle == handle;
        handles_.erase(handle);
        if (std::none_of(handles_.begin(), handles_.end(),
                         [&](const auto& other) { return other.second.joint == number; }))
            joints_.erase(number);
    }

    // A state left over the limit cannot be rebuilt without one of its qudits.
    bool release_ends_process(HandleId handle) const {
        return leaves_a_rest(handle) && state(handle).basis_amplitudes().size() > max_entries;
    }

protected:
    std::uint64_t dimension(HandleId handle) const { return state(handle).qudit_dimension(index(handle)); }

private:
    struct Handle {
        int joint;
        int index;
    };
    struct Joint {
        LiteralState state;
        std::vector<Position> properties;
    };

    const Joint& joint(HandleId handle) const { return joints_.at(handles_.at(handle).joint); }
    bool leaves_a_rest(HandleId handle) const {
        return state(handle).num_qudits() >= 2 && properties(handle).size() >= 2;
    }

    HandleId next_ = 0;
    std::map<HandleId, Handle> handles_;
    std::map<int, Joint> joints_;
};
} // namespace vantel::reference
