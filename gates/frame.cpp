#include "gates/frame.hpp"
#include "state/exceptions.hpp"
#include "state/limits.hpp"

namespace vantel::qudit {
ControlTest::ControlTest(std::span<const Predicate> controls, SlotLayout layout) noexcept : field_(layout.mask()) {
    for (const auto& [qudit, value, is_equal] : controls)
        is_equal ? require(layout.position(qudit), value) : refuse(layout.position(qudit), value);
}

void ControlTest::require(unsigned position, std::int64_t level) noexcept {
    const std::uint64_t field = field_ << position;
    const bool possible = 0 <= level && level <= static_cast<std::int64_t>(field_);
    const std::uint64_t wanted = possible ? static_cast<std::uint64_t>(level) << position : 0;
    const bool contradicts = (fields_ & field) != 0 && (wanted_ & field) != wanted;
    fields_ |= field;
    wanted_ |= wanted;
    if (!possible || contradicts) {
        // No masked label equals a wanted value with bits outside the mask.
        fields_ = 0;
        wanted_ = ~std::uint64_t{0};
    }
}

void ControlTest::refuse(unsigned position, std::int64_t level) noexcept {
    if (level < 0 || level > static_cast<std::int64_t>(field_)) return;
    const Refusal refusal{field_ << position, static_cast<std::uint64_t>(level) << position};
    const auto end = refused_.begin() + refusals_;
    if (std::find(refused_.begin(), end, refusal) == end) refused_[refusals_++] = refusal;
}

void refuse_overlap(const Gate& gate, const char* text) {
    for (const int target : gate.targets)
        for (const Predicate& control : gate.controls)
            if (control.qudit_index == target) throw TargetControlOverlap(text);
}

void guard_size(std::size_t entries, const char* text) {
    if (entries > MAX_STATE_ENTRIES) throw StateSizeExceeded(text);
}
} // namespace vantel::qudit
