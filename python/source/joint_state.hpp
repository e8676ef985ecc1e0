// Who shares a joint state with whom. The C library leaves three rules to its caller: a qudit that is freed
// must be the last comer of its joint state or go with all of it, what it was entangled with must be measured
// before, and a state over the limit cannot be freed. A Python program drops its qudits in any order, so they
// are kept here: a dropped qudit leaves its joint state when that changes nothing that can be seen, and stays
// in it until then.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <span>
#include <vantel.hpp>
#include <vector>

namespace vantel::python {
struct JointState;

inline constexpr const char* closed_text = "this qudit was closed";

/// A qudit inside its joint state. Its handle changes when it takes another place there.
struct Member {
    explicit Member(int dimension) : qudit(dimension) {}

    vantel::Qudit qudit;
    std::shared_ptr<JointState> joint;
    bool dropped = false; ///< no one can name it any more
};

using Members = std::span<const std::shared_ptr<Member>>;

/// The members of one joint state in the order in which they joined. All of it is read and written by the
/// thread that holds the interpreter's lock; `busy` says that a thread computes on the state without the
/// lock.
struct JointState {
    std::vector<std::shared_ptr<Member>> members;
    bool busy = false;
    bool over_limit = false; ///< a gate has reported more entries than the limit, and none may be freed
    double combinations = 1; ///< of all levels, which bounds the number of entries

    /// Lets dropped members go: all of them with the last one that is not, and before that such as stand in a
    /// definite level and can be brought to the last place.
    void let_go() noexcept;

private:
    void let_go_or_throw();
};

/// Makes a qudit in a joint state of its own.
std::shared_ptr<Member> make_member(int dimension);

/// What one call works on: waits until no other thread computes on the members, and brings them into one
/// joint state. While it lives, and if the state is large, the interpreter's lock is released and the state
/// is marked as busy.
/// @throws vantel::Error  if there would be too many qudits or too many entries; nothing is joined for too
/// many qudits.
class Work {
public:
    explicit Work(Members members) : Work(members, {}) {}
    /// @param more_places  how many more qudits the call takes in for its own time.
    /// @param entries      how much other work there is, which can be a reason to release the lock.
    Work(Members members, Members others, int more_places = 0, double entries = 0);
    ~Work();
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

    /// Does `call`, and notes if it meets the limit of entries.
    template <class Call> decltype(auto) operator()(Call call) {
        try {
            return call();
        } catch (const vantel::Error& failure) {
            over_limit_ = failure.status() == vantel_state_size_exceeded;
            throw;
        }
    }

private:
    JointState& joined(Members members, Members others, int more_places);

    std::shared_ptr<JointState> joint_;
    void* released_ = nullptr; // the thread's state, as long as the lock is released
    bool over_limit_ = false;
};
} // namespace vantel::python
