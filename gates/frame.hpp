/// The frame that all gates share: which entries a gate acts on, what it refuses, and its closing guard.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "state/istate.hpp"
#include "state/product.hpp"

namespace vantel::qudit {

/// The test of an entry's levels against all controls of a call, made ready once a call: the levels that
/// must be equal are one masked comparison, and those that must differ are looked up in a set of levels.
class ControlTest {
public:
    ControlTest(const std::vector<Predicate>& controls, SlotLayout layout) noexcept;

    /// Whether every control holds for a label of these levels.
    [[nodiscard]] bool operator()(std::uint64_t values) const noexcept {
        bool holds = (values & fields_) == wanted_;
        for (unsigned i = 0; i < refusals_; ++i)
            holds &= (refused_[i].levels >> (values >> refused_[i].position & field_) & 1) == 0;
        return holds;
    }

    /// Calls `walk` with the cheapest test that has the same answers.
    template <class Walk> void specialised(Walk walk) const {
        if (refusals_ > 1 || (refusals_ == 1 && !std::has_single_bit(refused_[0].levels)))
            walk(*this);
        else if (refusals_ == 1)
            walk([fields = fields_, wanted = wanted_, refused_field = field_ << refused_[0].position,
                  refused = std::uint64_t(std::countr_zero(refused_[0].levels))
                            << refused_[0].position](std::uint64_t values) {
                return ((values & fields) == wanted) & ((values & refused_field) != refused);
            });
        else if (fields_ == 0 && wanted_ == 0)
            walk([](std::uint64_t) { return true; });
        else
            walk([fields = fields_, wanted = wanted_](std::uint64_t values) {
                return (values & fields) == wanted;
            });
    }

private:
    struct Refusal {
        unsigned position;
        std::uint32_t levels; ///< one bit for each level that the slot must not have
    };

    void require(unsigned position, std::int64_t level) noexcept;
    void refuse(unsigned position, std::int64_t level) noexcept;

    std::uint64_t field_;      ///< mask of one field
    std::uint64_t fields_ = 0; ///< the fields that must be equal to those of wanted_
    std::uint64_t wanted_ = 0; ///< outside fields_ where no label can meet the controls
    unsigned refusals_ = 0;
    std::array<Refusal, 64> refused_; ///< one for each position at the most
};

/// Raises TargetControlOverlap with the gate's own text if a target stands in some control.
void refuse_overlap(std::span<const int> targets, const std::vector<Predicate>& controls, const char* text);

/// The closing guard. It reports a list over the limit and rolls nothing back: that is meant.
inline constexpr const char* STATE_SIZE_EXCEEDED = "State size exceeded maximum allowed size";
void guard_size(std::size_t entries, const char* text = STATE_SIZE_EXCEEDED);

/// Replaces the labels of all selected entries by what `relabelled(entry, selected)` gives. The selection
/// follows no pattern that a processor could predict, so no branch hangs on it: the new label is worked
/// out for every entry, and what it is for an entry that is not selected does not matter.
template <class Relabelled>
void relabel_selected(std::span<PackedAmplitude> entries, const ControlTest& controls_hold,
                      Relabelled relabelled) {
    controls_hold.specialised([&](auto holds) {
        for (PackedAmplitude& entry : entries) {
            const bool selected = holds(entry.values);
            const std::uint64_t values = relabelled(entry, selected);
            entry.values ^= (entry.values ^ values) & -static_cast<std::uint64_t>(selected);
        }
    });
}

/// Multiplies the amplitudes of all selected entries by `factor_of(entry)`, likewise without a branch.
template <class FactorOf>
void rephase_selected(std::span<PackedAmplitude> entries, const ControlTest& controls_hold,
                      FactorOf factor_of) {
    controls_hold.specialised([&](auto holds) {
        std::complex<double> unselected;
        for (PackedAmplitude& entry : entries) {
            const Parts turned = factor_of(entry)(parts_of(entry.amplitude));
            store(turned, holds(entry.values) ? entry.amplitude : unselected);
        }
    });
}

} // namespace vantel::qudit
