/// The Fourier transform of one qudit without its list of children.
#pragma once

#include <optional>
#include <span>

#include "gates/frame.hpp"
#include "state/direct_reduction.hpp"

namespace vantel::qudit {

/// One pass of the transform for one target together with the reduction that follows it. The children that
/// come to share a label are those of the entries that differ in the target alone, so their sums are formed
/// group by group, in stored order, and no child is ever sorted.
/// @return nothing where the list is so short that the literal form is quicker, or so unlike what the gates
///         leave (labels of unequal dimensions, levels beyond them) that only the literal form serves
/// @throws std::bad_alloc
std::optional<DirectReduction> fourier_sums(std::span<const PackedAmplitude> entries, SlotLayout layout,
                                            int target, const ControlTest& controls_hold, double sign);

} // namespace vantel::qudit
