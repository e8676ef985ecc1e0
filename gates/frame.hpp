/// The frame that all gates share: which entries a gate acts on, what it refuses, and its closing guard.
#pragma once

#include "algorithms/lanes.hpp"
#include "state/istate.hpp"
#include <algorithm>

namespace vantel::qudit {
/// What holds where there are no controls.
struct EveryLabel {
    template <class Word> [[gnu::always_inline]] Word operator()(Word values) const noexcept {
        return ~(values ^ values);
    }
};

/// The test of an entry's levels against all controls of a call, made ready once a call: the levels that must be equal
/// are one masked comparison, and each level that a qudit must not have is one more.
class ControlTest {
public:
    ControlTest(std::span<const Predicate> controls, SlotLayout layout) noexcept;
    /// Whether there are no controls, so that they hold for every label.
    [[nodiscard]] bool is_empty() const noexcept { return fields_ == 0 && wanted_ == 0 && refusals_ == 0; }
    /// Whether every control holds for a label of these levels.
    [[nodiscard, gnu::always_inline]] bool operator()(std::uint64_t values) const noexcept {
        const auto refuses = [values](const Refusal& refused) { return (values & refused.field) == refused.level; };
        return (values & fields_) == wanted_ && std::none_of(refused_.begin(), refused_.begin() + refusals_, refuses);
    }

    /// The same as a mask, for one word of levels or for several.
    template <class Word> [[nodiscard, gnu::always_inline]] Word mask(Word values) const noexcept {
        Word holds = equal(values & fields_, wanted_);
        for (unsigned i = 0; i < refusals_; ++i) holds &= ~equal(values & refused_[i].field, refused_[i].level);
        return holds;
    }

    /// Calls `loop(entries, holds, vectors)` as a wide_loop, where holds(values) is the cheapest form of mask() that
    /// has the same answers and `vectors` is the loop's tag.
    template <class Loop> void walk(std::span<PackedAmplitude> entries, Loop loop) const {
        const auto run = [&](auto holds) {
            wide_loop([=](auto vectors) VANTEL_INLINED { loop(entries, holds, vectors); });
        };
        const auto equals = [fields = fields_, wanted = wanted_](auto values)
                                VANTEL_INLINED { return equal(values & fields, wanted); };
        if (refusals_ > 1)
            run([test = this](auto values) VANTEL_INLINED { return test->mask(values); });
        else if (refusals_ == 1)
            run([equals, refused = refused_[0]](auto values)
                    VANTEL_INLINED { return equals(values) & ~equal(values & refused.field, refused.level); });
        else if (is_empty())
            run(EveryLabel{});
        else
            run(equals);
    }

private:
    /// A level that a qudit must not have, in place, and the mask of its field.
    struct Refusal {
        std::uint64_t field;
        std::uint64_t level;
        friend bool operator==(const Refusal&, const Refusal&) = default;
    };

    void require(unsigned position, std::int64_t level) noexcept;
    void refuse(unsigned position, std::int64_t level) noexcept;

    std::uint64_t field_;      ///< mask of one field
    std::uint64_t fields_ = 0; ///< the fields that must be equal to those of wanted_
    std::uint64_t wanted_ = 0; ///< outside fields_ where no label can meet the controls
    unsigned refusals_ = 0;
    std::array<Refusal, 256> refused_; ///< one for each level of each position at the most
};

/// Calls four(entries) for each four entries in a loop of wide vectors, and one(entry) for the others and for those
/// that four() refuses.
template <class Vectors, class Four, class One>
[[gnu::always_inline]] inline void for_each_by_four(std::span<PackedAmplitude> entries, Vectors, Four four, One one) {
    PackedAmplitude* entry = entries.data();
    PackedAmplitude* const end = entry + entries.size();
    if constexpr (std::is_same_v<Vectors, WideVectors>)
        for (PackedAmplitude* const last = end - entries.size() % 4; entry != last; entry += 4)
            if (!four(entry)) [[unlikely]]
                for (PackedAmplitude& each : std::span(entry, 4)) one(each);
    for (; entry != end; ++entry) one(*entry);
}

/// Raises TargetControlOverlap with the gate's own text if a target stands in some control.
void refuse_overlap(const Gate& gate, const char* text);

/// The closing guard. It reports a list over the limit and rolls nothing back, deliberately.
inline constexpr const char* STATE_SIZE_EXCEEDED = "State size exceeded maximum allowed size";
void guard_size(std::size_t entries, const char* text = STATE_SIZE_EXCEEDED);
} // namespace vantel::qudit
