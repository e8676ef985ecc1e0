/// The library's own exceptions. They pass out of those C functions that list no status code for them, so a C++ caller
/// catches them by these declarations.
#ifndef VANTEL_EXCEPTIONS_HPP
#define VANTEL_EXCEPTIONS_HPP

#include <stdexcept>

#if defined(__GNUC__)
#define VANTEL_EXCEPTION __attribute__((visibility("default")))
#else
#define VANTEL_EXCEPTION
#endif

namespace vantel::qudit {
/// A dimension is not in 2 .. 10.
class VANTEL_EXCEPTION BadDimension : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~BadDimension() override;
};

/// A joint state would hold more than ten qudits.
class VANTEL_EXCEPTION BadQuditNumber : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~BadQuditNumber() override;
};

/// A state holds, or would be built with, more than 100000 entries.
class VANTEL_EXCEPTION StateSizeExceeded : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~StateSizeExceeded() override;
};

/// A target of a gate stands among its controls.
class VANTEL_EXCEPTION TargetControlOverlap : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~TargetControlOverlap() override;
};

/// The two targets of an exchange have different dimensions.
class VANTEL_EXCEPTION DifferentDimensions : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~DifferentDimensions() override;
};
} // namespace vantel::qudit

#endif
