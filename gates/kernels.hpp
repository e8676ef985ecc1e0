/// One kernel for each gate, compiled once for all builds. Each refuses what it must before any change.
#pragma once

#include "state/entries.hpp"
#include "state/istate.hpp"
#include <span>
#include <vector>

namespace vantel::qudit {
// These leave a list as long as it is.
void phase_rotate(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate);
void shift(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate);
void cycle(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate);
void clock(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate);
void fractional_clock(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate);
void swap(std::span<PackedAmplitude> entries, SlotLayout layout, const Gate& gate);

// These need not. Where they fail for want of memory, the list stands.
void fractional_step(EntryList& list, SlotLayout layout, const Gate& gate);
/// @param sign  +1.0, or -1.0 for the inverse
void hadamard(EntryList& list, SlotLayout layout, const Gate& gate, double sign);
void i_swap(EntryList& list, SlotLayout layout, const Gate& gate);

/// State::hadamard_no_reduce, into an empty list.
void hadamard_no_reduce(PackedEntries input, SlotLayout layout, int target, std::span<const Predicate> controls,
                        double sign, EntryList& output);
} // namespace vantel::qudit
