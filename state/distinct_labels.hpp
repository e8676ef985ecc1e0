/// Repeated labels.
#pragma once

#include "state/entries.hpp"
#include <cstddef>
#include <span>

namespace vantel::qudit {
/// Moves the entries whose labels are new to the front, in their order; the first of a label stands.
/// @param key_bits  no label has a bit at or above this one
/// @return how many there are
/// @throws std::bad_alloc
std::size_t keep_first_of_label(std::span<PackedAmplitude> entries, unsigned key_bits);

/// Whether no label stands twice. @throws std::bad_alloc
bool has_distinct_labels(std::span<const PackedAmplitude> entries, unsigned key_bits);
} // namespace vantel::qudit
