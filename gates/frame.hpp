/// The frame that all gates share: which entries a gate acts on, what it refuses, and its closing guard.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "gates/words.hpp"
#include "state/istate.hpp"
#include "state/product.hpp"
#include "state/wide_loop.hpp"

namespace vantel::qudit {

/// The test of an entry's levels against all controls of a call, made ready once a call: the levels that
/// must be equal are one masked comparison, and each level that a qudit must not have is one more.
class ControlTest {
public:
    ControlTest(std::span<const Predicate> controls, SlotLayout layout) noexcept;

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
    template <class Entry, class Loop> void walk(std::span<Entry> entries, Loop loop) const {
        const auto run = [&](const auto& holds) {
            wide_loop([&](auto vectors) { loop(entries, holds, vectors); });
        };
        if (refusals_ > 1)
            run(All{*this});
        else if (refusals_ == 1)
            run(WantedAndOneRefused{{fields_, wanted_}, refused_[0]});
        else if (is_empty())
            run(Any{});
        else
            run(Wanted{fields_, wanted_});
    }

private:
    /// A level that a qudit must not have, in place, and the mask of its field.
    struct Refusal {
        std::uint64_t field;
        std::uint64_t level;
    };

    struct All {
        const ControlTest& test;

        template <class Word> [[gnu::always_inline]] Word operator()(Word values) const noexcept {
            return test.mask(values);
        }
    };

    struct Any {
        template <class Word> [[gnu::always_inline]] Word operator()(Word values) const noexcept {
            return ~(values ^ values);
        }
    };

    struct Wanted {
        std::uint64_t fields;
        std::uint64_t wanted;

        template <class Word> [[gnu::always_inline]] Word operator()(Word values) const noexcept {
            return equal(values & fields, wanted);
        }
    };

    struct WantedAndOneRefused {
        Wanted others;
        Refusal refused;

        template <class Word> [[gnu::always_inline]] Word operator()(Word values) const noexcept {
            return others(values) & ~equal(values & refused.field, refused.level);
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
[[noreturn]] void raise_overlap(const char* text);
inline void refuse_overlap(const Gate& gate, const char* text) {
    for (const int target : gate.targets)
        for (const Predicate& control : gate.controls)
            if (control.qudit_index == target) [[unlikely]]
                raise_overlap(text);
}

/// The closing guard. It reports a list over the limit and rolls nothing back: that is meant.
inline constexpr const char* STATE_SIZE_EXCEEDED = "State size exceeded maximum allowed size";
void guard_size(std::size_t entries, const char* text = STATE_SIZE_EXCEEDED);

/// Relabels as many entries as can be taken `Labels::count` at a time. @return where the others begin
template <class Labels, class Relabelling, class Holds>
PackedAmplitude* relabel_by(PackedAmplitude* entry, PackedAmplitude* end, const Relabelling& gate,
                            const Holds& holds) {
    for (; end - entry >= Labels::count; entry += Labels::count) {
        const Labels labels(entry);
        if (any_highest(gate.is_odd(labels.values, labels.dimensions))) [[unlikely]] {
            for (PackedAmplitude& odd : std::span(entry, Labels::count))
                if (holds(odd.values) != 0)
                    gate.one(odd);
            continue;
        }
        Labels::write(entry, gate(labels.values, labels.dimensions, holds(labels.values)));
    }
    return entry;
}

/// Gives all selected entries new labels. The selection follows no pattern that a processor could predict,
/// so no branch hangs on it: several entries are taken at once, and the new levels are worked out for all.
/// @param gate  gate(values, dimensions, selected) is the new word of levels, unchanged where the mask is not
///              set, and gate.is_odd(values, dimensions) has the highest bit set where that does not serve;
///              both for one label or for several. gate.one(entry) relabels a selected entry of any kind.
template <class Relabelling>
void relabel_selected(std::span<PackedAmplitude> entries, const ControlTest& controls_hold,
                      const Relabelling& gate) {
    controls_hold.walk(entries, [&gate](std::span<PackedAmplitude> walked, const auto& test, auto) {
        const auto holds = test; // copies that no store to an entry can be thought to change
        const Relabelling own = gate;
        PackedAmplitude* const end = walked.data() + walked.size();
        PackedAmplitude* rest = relabel_by<FourLabels>(walked.data(), end, own, holds);
        rest = relabel_by<LabelPair>(rest, end, own, holds);
        relabel_by<OneLabel>(rest, end, own, holds);
    });
}

} // namespace vantel::qudit
