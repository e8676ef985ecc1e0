#include "joint_state.hpp"
#include <Python.h>
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

namespace vantel::python {
namespace {
constexpr std::size_t most_qudits = 10;

// Below this the call is over before another thread has the lock.
constexpr double long_work = 4000;

std::mutex idle_mutex;
std::condition_variable idle;

/// Whether every basis state of the joint state has the same level of this qudit, exactly: then it can be
/// taken out, and no sum or phase between basis states changes.
bool is_definite(Member& member) {
    const vantel::Outcomes table = vantel::probabilities(member.qudit);
    return std::ranges::count_if(table, [](const auto& row) { return row.probability != 0; }) <= 1;
}

/// Frees the qudit while it is the last one, and not when Python forgets the object.
void free_now(Member& member) {
    const vantel::Qudit freed(std::move(member.qudit));
    member.joint.reset();
}

/// Brings a dropped qudit to the last place, in exchange with a live one of the same dimension, whose name
/// follows.
bool exchange_with_last(std::vector<std::shared_ptr<Member>>& members, std::shared_ptr<Member>& leaving) {
    std::shared_ptr<Member>& last = members.back();
    if (last->qudit.dimension() != leaving->qudit.dimension()) return false;
    vantel::swap_levels(leaving->qudit, last->qudit);
    swap(leaving->qudit, last->qudit);
    std::swap(leaving, last);
    return true;
}

/// Waits without the interpreter's lock until some thread has finished its work.
void wait_for_idle() {
    PyThreadState* const thread = PyEval_SaveThread();
    {
        std::unique_lock lock(idle_mutex);
        idle.wait_for(lock, std::chrono::milliseconds(2));
    }
    PyEval_RestoreThread(thread);
}

std::string too_many(std::size_t live, std::size_t all) {
    std::string text = "a joint state would need " + std::to_string(all) + " qudits, and can have 10";
    if (live < all)
        text += "; " + std::to_string(all - live) +
                " of them were closed or dropped and keep their places: measure a qudit before it goes, and "
                "let the "
                "one that joined last go first";
    return text;
}
} // namespace

std::shared_ptr<Member> make_member(int dimension) {
    auto member = std::make_shared<Member>(dimension);
    member->joint = std::make_shared<JointState>();
    member->joint->members.push_back(member);
    member->joint->combinations = dimension;
    return member;
}

void JointState::let_go() noexcept {
    if (busy) return; // the thread that computes will
    try {
        let_go_or_throw();
    } catch (const std::exception&) {
        // Nothing was changed that can be seen, and there will be another occasion.
    }
}

void JointState::let_go_or_throw() {
    if (std::ranges::all_of(members, [](const auto& member) { return member->dropped; })) {
        if (over_limit) {
            std::vector<std::reference_wrapper<vantel::Qudit>> all;
            for (const auto& member : members) all.push_back(member->qudit);
            try {
                (void)vantel::measure(all);
            } catch (const std::exception&) {
                // Without randomness or memory the state cannot be made small enough to go. It stays,
                // unnamed.
                for (const auto& member : members) (void)member->qudit.release();
            }
        }
        const auto last_breath = std::move(members);
        for (auto member = last_breath.rbegin(); member != last_breath.rend(); ++member) free_now(**member);
        return;
    }
    if (over_limit) return;
    for (bool went = true; went;) {
        went = false;
        for (std::size_t i = members.size(); i-- > 0 && !went;) {
            if (!members[i]->dropped || !is_definite(*members[i])) continue;
            if (i + 1 < members.size() && !exchange_with_last(members, members[i])) continue;
            combinations /= members.back()->qudit.dimension();
            free_now(*members.back());
            members.pop_back();
            went = true;
        }
    }
}

JointState& Work::joined(Members members, Members others, int more_places) {
    const auto each = [&](auto visit) {
        std::ranges::for_each(members, visit);
        std::ranges::for_each(others, visit);
    };
    std::vector<std::shared_ptr<JointState>> states;
    const auto collect = [&] {
        states.clear();
        bool busy = false;
        each([&](const std::shared_ptr<Member>& member) {
            if (member->dropped) // by another thread, while this one waited
                throw std::invalid_argument(closed_text);
            busy |= member->joint->busy;
            if (std::ranges::find(states, member->joint) == states.end()) states.push_back(member->joint);
        });
        return !busy;
    };
    while (!collect()) wait_for_idle();

    const auto places = [&] {
        std::size_t all = static_cast<std::size_t>(more_places);
        for (const auto& state : states) all += state->members.size();
        return all;
    };
    if (places() > most_qudits)
        for (const auto& state : states) state->let_go();
    if (const std::size_t all = places(); all > most_qudits) {
        std::size_t live = static_cast<std::size_t>(more_places);
        for (const auto& state : states)
            live += static_cast<std::size_t>(
                std::ranges::count(state->members, false, [](const auto& member) { return member->dropped; }));
        throw vantel::Error(vantel_bad_qudit_number, too_many(live, all).c_str());
    }
    // The smaller ones stand behind, so that a helper that was made for a while is last and can go first.
    std::ranges::stable_sort(states, std::ranges::greater{}, [](const auto& state) { return state->members.size(); });
    JointState& into = *states.front();
    for (std::size_t i = 1; i < states.size(); ++i) {
        JointState& from = *states[i];
        vantel::join(into.members.back()->qudit, from.members.front()->qudit);
        for (const auto& member : from.members) into.members.push_back(member);
        into.combinations *= from.combinations;
        into.over_limit |= from.over_limit;
        // The list goes with its state, after the members have their new one.
        const auto moved = std::exchange(from.members, {});
        for (const auto& member : moved) member->joint = states.front();
    }
    return into;
}

Work::Work(Members members, Members others, int more_places, double entries) {
    // What nearly every call is: one state, that of the first member, and nobody else computes on it.
    joint_ = members.empty() ? others.front()->joint : members.front()->joint;
    const auto is_here = [&](const std::shared_ptr<Member>& member) { return member->joint == joint_; };
    if (joint_->busy || more_places > 0 || !std::ranges::all_of(members, is_here) ||
        !std::ranges::all_of(others, is_here)) {
        joined(members, others, more_places);
        joint_ = members.empty() ? others.front()->joint : members.front()->joint;
    }
    if (joint_->combinations + entries > long_work) {
        joint_->busy = true;
        released_ = PyEval_SaveThread();
    }
}

Work::~Work() {
    if (released_ != nullptr) {
        PyEval_RestoreThread(static_cast<PyThreadState*>(released_));
        {
            std::lock_guard lock(idle_mutex);
            joint_->busy = false;
        }
        idle.notify_all();
    }
    joint_->over_limit |= over_limit_;
    if (released_ != nullptr &&
        std::ranges::any_of(joint_->members, [](const auto& member) { return member->dropped; }))
        joint_->let_go();
}
} // namespace vantel::python
