/// The frame that all gates share: which entries a gate acts on, what it refuses, and its closing guard.
#pragma once

#include "algorithms/crossovers.hpp"
#include "algorithms/lanes.hpp"
#include "algorithms/wide_loop.hpp"
#include "state/istate.hpp"
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace vantel::qudit {
/// The test of an entry's levels against all controls of a call, made ready once a call: the levels that must be equal
/// are one masked comparison, and each level that a qudit must not have is one more.
class ControlTest {
public:
    ControlTest(std::span<const Predicate> controls, SlotLayout layout) noexcept;

    /// Whether there are no controls, so that they hold for every label.
    [[nodiscard]] bool is_empty() const noexcept { return fields_ == 0 && wanted_ == 0 && refusals_ == 0; }

    /// Whether every control holds for a label of these levels.
    [[nodiscard]] bool operator()(std::uint64_t values) const noexcept { return mask(values) != 0; }

    /// The same as a mask, for one word of levels or for several.
    template <class Word> [[nodiscard, gnu::always_inline]] Word mask(Word values) const noexcept {
        Word holds = equal(values & fields_, wanted_);
        for (unsigned i = 0; i < refusals_; ++i) holds &= ~equal(values & refused_[i].field, refused_[i].level);
        return holds;
    }

    /// Calls `loop(entries, holds, vectors)` as a wide_loop, where holds(values) is the cheapest form of mask() that
    /// has the same answers and `vectors` is the loop's tag.
    template <class Loop> void walk(std::span<PackedAmplitude> entries, Loop loop) const {
        // A few entries cost less than the way into a wide loop.
        if (entries.size() < crossover::entries_walked_wide) return loop(entries, All{*this}, PlainVectors{});
        const auto run = [&](auto holds) {
            wide_loop([=](auto vectors) VANTEL_INLINED { loop(entries, holds, vectors); });
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
void refuse_overlap(const Gate& gate, const char* text);

/// The closing guard. It reports a list over the limit and rolls nothing back, deliberately.
inline constexpr const char* STATE_SIZE_EXCEEDED = "State size exceeded maximum allowed size";
void guard_size(std::size_t entries, const char* text = STATE_SIZE_EXCEEDED);
} // namespace vantel::qudit
