#pragma once

#include <cstdint>
#include <iosfwd>
#include <span>
#include <string>

namespace vantel::testing {
struct Run {
    int calls = 0;        ///< how many were made
    std::string mismatch; ///< empty where the library and the model agreed
};

/// Makes the calls that the bytes stand for, in the library and in the literal model, and holds the two
/// together after each.
/// @param budget  how much work the model may have, in entries visited; the run ends before the call that
///                would take more
/// @param trace   receives each call in readable form before it is made; may be null
Run run_calls(std::span<const std::uint8_t> bytes, double budget, std::ostream* trace);
} // namespace vantel::testing
