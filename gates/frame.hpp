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

    /// The same as a mask, for one word of levels or for two: all bits set where every control holds.
    template <class Word> [[nodiscard]] Word mask(Word values) const noexcept {
        Word holds = equal(values & fields_, wanted_);
        for (unsigned i = 0; i < refusals_; ++i)
            holds &= ~equal(values & refused_[i].field, refused_[i].level);
        return holds;
    }

    /// Calls `loop(entries, holds)` as a wide_loop, where holds(values) is the cheapest form of mask() that
    /// has the same answers.
    template <class Entry, class Loop> void walk(std::span<Entry> entries, Loop loop) const {
        const auto run = [&](const auto& holds) { wide_loop([&] { loop(entries, holds); }); };
        if (refusals_ > 1)
            run([&all = *this](auto values) { return all.mask(values); });
        else if (refusals_ == 1)
            run([fields = fields_, wanted = wanted_, refused = refused_[0]](auto values) {
                return equal(values & fields, wanted) & ~equal(values & refused.field, refused.level);
            });
        else if (is_empty())
            run([](auto values) { return ~(values ^ values); });
        else
            run([fields = fields_, wanted = wanted_](auto values) { return equal(values & fields, wanted); });
    }

private:
    /// A level that a qudit must not have, in place, and the mask of its field.
    struct Refusal {
        std::uint64_t field;
        std::uint64_t level;
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
    controls_hold.walk(entries, [&gate](std::span<PackedAmplitude> walked, const auto& test) {
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

/// Multiplies the amplitudes of all selected entries, likewise by twos; a pair of which none is selected is
/// passed over, which saves more than a branch that was foreseen wrongly costs.
/// @param gate  gate.factor(values) is the factor of a label, where gate.is_odd(dimensions) has no bits set
///              for the two labels of a pair; gate.odd_factor(entry) is that of an entry of any kind
template <class Gate>
void rephase_selected(std::span<PackedAmplitude> entries, const ControlTest& controls_hold,
                      const Gate& gate) {
    controls_hold.walk(entries, [&gate](std::span<PackedAmplitude> walked, const auto& test) {
        const auto holds = test; // as above
        const Gate own = gate;
        const auto one = [&](PackedAmplitude& entry) {
            if (holds(entry.values) != 0)
                store(own.odd_factor(entry)(parts_of(entry.amplitude)), entry.amplitude);
        };
        PackedAmplitude* entry = walked.data();
        PackedAmplitude* const end = entry + walked.size();
        for (; end - entry >= 2; entry += 2) {
            const LabelPair labels(entry);
            const Words selected = holds(labels.values);
            if (!any(selected))
                continue;
            const Parts first = parts_of(entry[0].amplitude);
            const Parts second = parts_of(entry[1].amplitude);
            const Parts first_turned = own.factor(entry[0].values).unrecovered(first);
            const Parts second_turned = own.factor(entry[1].values).unrecovered(second);
            // A sum with NaN says that some product may have an infinity to recover.
            const Parts sum = first_turned + second_turned;
            if (any(own.is_odd(labels.dimensions) | reinterpret_cast<Words>(sum != sum))) [[unlikely]] {
                one(entry[0]);
                one(entry[1]);
                continue;
            }
            store(select(Words{selected[0], selected[0]}, first_turned, first), entry[0].amplitude);
            store(select(Words{selected[1], selected[1]}, second_turned, second), entry[1].amplitude);
        }
        if (entry != end)
            one(*entry);
    });
}

} // namespace vantel::qudit
