/// The frame that all gates share: which entries a gate acts on, what it refuses, and its closing guard.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "gates/words.hpp"
#include "state/istate.hpp"
#include "state/product.hpp"
#include "state/wide_loop.hpp"

namespace vantel::qudit {

/// The test of an entry's levels against all controls of a call, made ready once a call: the levels that
/// must be equal are one masked comparison, and each level that a qudit must not have is one more.
class ControlTest {
public:
    ControlTest(const std::vector<Predicate>& controls, SlotLayout layout) noexcept;

    /// Whether there are no controls, so that they hold for every label.
    [[nodiscard]] bool is_empty() const noexcept { return fields_ == 0 && wanted_ == 0 && refusals_ == 0; }

    /// Whether every control holds for a label of these levels.
    [[nodiscard]] bool operator()(std::uint64_t values) const noexcept { return mask(values) != 0; }

    /// The same as a mask, for one word of levels or for several: all bits set where every control holds.
    template <class Word> [[nodiscard, gnu::always_inline]] Word mask(Word values) const noexcept {
        Word holds = equal(values & fields_, wanted_);
        for (unsigned i = 0; i < refusals_; ++i)
            holds &= ~equal(values & refused_[i].field, refused_[i].level);
        return holds;
    }

    /// Calls `loop(entries, holds, vectors)` as a wide_loop, where holds(values) is the cheapest form of
    /// mask() that has the same answers and `vectors` is the loop's tag.
    template <class Loop> void walk(std::span<PackedAmplitude> entries, Loop loop) const {
        const auto run = [&](const auto& holds) {
            wide_loop([&](auto vectors) { loop(entries, holds, vectors); });
        };
        const Required required{fields_, wanted_};
        if (refusals_ > 1)
            run(All{*this});
        else if (refusals_ == 1)
            run(RequiredBesideOne{required, refused_[0]});
        else if (is_empty())
            run(None{});
        else
            run(required);
    }

private:
    /// A level that a qudit must not have, in place, and the mask of its field.
    struct Refusal {
        std::uint64_t field;
        std::uint64_t level;
    };

    // The forms of mask().
    struct None {
        template <class Word> [[gnu::always_inline]] Word operator()(Word values) const {
            return ~(values ^ values);
        }
    };
    struct Required {
        std::uint64_t fields;
        std::uint64_t wanted;

        template <class Word> [[gnu::always_inline]] Word operator()(Word values) const {
            return equal(values & fields, wanted);
        }
    };
    struct RequiredBesideOne {
        Required required;
        Refusal refused;

        template <class Word> [[gnu::always_inline]] Word operator()(Word values) const {
            return required(values) & ~equal(values & refused.field, refused.level);
        }
    };
    struct All {
        const ControlTest& controls;

        template <class Word> [[gnu::always_inline]] Word operator()(Word values) const {
            return controls.mask(values);
        }
    };

    void require(unsigned position, std::int64_t level) noexcept;
    void refuse(unsigned position, std::int64_t level) noexcept;

    std::uint64_t field_;      ///< mask of one field
    std::uint64_t fields_ = 0; ///< the fields that must be equal to those of wanted_
    std::uint64_t wanted_ = 0; ///< outside fields_ where no label can meet the controls
    unsigned refusals_ = 0;
    std::array<Refusal, 256> refused_; ///< one for each level of each position at the most
};

/// Raises TargetControlOverlap with the gate's own text if a target stands in some control.
void refuse_overlap(std::span<const int> targets, const std::vector<Predicate>& controls, const char* text);

/// The closing guard. It reports a list over the limit and rolls nothing back: that is meant.
inline constexpr const char* STATE_SIZE_EXCEEDED = "State size exceeded maximum allowed size";
void guard_size(std::size_t entries, const char* text = STATE_SIZE_EXCEEDED);

/// Gives all selected entries new labels. The selection follows no pattern that a processor could predict,
/// so no branch hangs on it: entries go by twos, and the new levels are worked out for both.
/// @param gate  gate(values, dimensions, selected) is the new word of levels, unchanged where the mask is not
///              set, and gate.is_odd(values, dimensions) has bits set where that does not serve; both for two
///              labels at once. gate.one(entry, selected) relabels one entry of any kind.
template <class Gate>
void relabel_selected(std::span<PackedAmplitude> entries, const ControlTest& controls_hold,
                      const Gate& gate) {
    controls_hold.walk(entries, [&gate](std::span<PackedAmplitude> walked, const auto& test, auto) {
        const auto holds = test; // copies that no store to an entry can be thought to change
        const Gate own = gate;
        const auto one = [&](PackedAmplitude& entry) { own.one(entry, holds(entry.values) != 0); };
        PackedAmplitude* entry = walked.data();
        PackedAmplitude* const end = entry + walked.size();
        for (; end - entry >= 2; entry += 2) {
            const LabelPair labels(entry);
            if (any(own.is_odd(labels.values, labels.dimensions))) [[unlikely]] {
                one(entry[0]);
                one(entry[1]);
                continue;
            }
            const Words values = own(labels.values, labels.dimensions, holds(labels.values));
            entry[0].values = values[0];
            entry[1].values = values[1];
        }
        if (entry != end)
            one(*entry);
    });
}

} // namespace vantel::qudit
