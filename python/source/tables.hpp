#pragma once

#include <cstddef>

namespace vantel::python {
/// The most elements of a table or matrix: about a gigabyte of the library's records and the array together.
inline constexpr std::size_t most_elements = std::size_t{1} << 24;

/// Refuses a table that is larger, before memory is asked for: the system could grant it and end the process
/// later.
void check_table(std::size_t rows, std::size_t columns);
} // namespace vantel::python
