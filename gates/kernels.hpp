/// The gates that leave a list as long as it is, each compiled once for all builds. Each refuses what it must
/// before any change.
#pragma once

#include <span>

#include "state/istate.hpp"

namespace vantel::qudit {

void raise_levels(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& cycle);
void lower_levels(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& shift);
void turn_levels(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& clock);
void turn_levels_in_part(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& fractional_clock);
void rotate(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& phase_rotate);
void exchange(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& swap);

} // namespace vantel::qudit
