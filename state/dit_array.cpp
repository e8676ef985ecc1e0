#include "state/dit_array.hpp"
#include <iostream>

namespace vantel::qudit {
namespace {
/// A rethrow with no exception in flight ends the process. It is kept, and not made an exception, so that no handler
/// between here and the host can carry on with a damaged label.
[[noreturn]] void rethrow_nothing() { throw; }
} // namespace

std::ostream& operator<<(std::ostream& stream, const Dit& dit) {
    return stream << "[v:" << dit.value << ",d:" << dit.dimension << "]";
}

std::ostream& operator<<(std::ostream& stream, const std::vector<Dit>& dits) {
    stream << "|";
    for (const Dit& dit : dits) stream << dit;
    return stream << ">";
}

void die_of_value(std::uint64_t value, std::uint64_t max_dimension) {
    std::cout << "DitArray::operator=: v.value (" << value << ") >= MAX_DIMENSION (" << max_dimension << ")"
              << std::endl;
    rethrow_nothing();
}

void die_of_dimension() {
    std::cout << "DitArray::operator=: v.dimension > MAX_DIMENSION" << std::endl;
    rethrow_nothing();
}

void die_of_addend() {
    std::cout << "DitArray::operator+: v >= dimension()" << std::endl;
    rethrow_nothing();
}
} // namespace vantel::qudit
