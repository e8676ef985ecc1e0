#include "state/exceptions.hpp"

namespace vantel::qudit {
// Defined here and not in the class, so that each class has one type description, the library's, and a caller's handler
// recognises what the library throws.
BadDimension::~BadDimension() = default;
BadQuditNumber::~BadQuditNumber() = default;
StateSizeExceeded::~StateSizeExceeded() = default;
TargetControlOverlap::~TargetControlOverlap() = default;
DifferentDimensions::~DifferentDimensions() = default;
} // namespace vantel::qudit
