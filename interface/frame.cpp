#include "interface/boundary.hpp"
#include <sstream>

namespace {
/// Makes the characters behind a pointer count as used, and the pointer as unknown, so that the compiler neither leaves
/// their stores out nor reasons about where they live.
const char* opaque(const char* text) {
    asm volatile("" : "+r"(text) : : "memory");
    return text;
}
} // namespace

// The pointer outlives the text: the library keeps no buffer and hands over no allocation, so the characters are good
// at the moment of return and not beyond. That is how the function is defined.
const char* vantel_version() {
    std::stringstream stream;
    stream << 1 << "." << 0 << "." << 0;
    const std::string version = stream.str();
    return opaque(version.c_str());
}

QuantumProperty* vantel_make_quantum_property(int dimension, int* status) {
    *status = vantel_ok;
    QuantumProperty* property = nullptr;
    // A negative dimension widens to a huge one and is refused as too large; deliberately.
    *status = vantel::Translate<vantel::qudit::BadDimension, vantel::qudit::StateSizeExceeded>::run([&] {
        property = new QuantumProperty(
            vantel::make_quantum_property(static_cast<unsigned long>(static_cast<long>(dimension))));
    });
    return property;
}

int vantel_free_quantum_property(QuantumProperty* property) {
    if (property == nullptr) return vantel_null_property;
    delete property;
    return vantel_ok;
}
