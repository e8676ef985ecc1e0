#pragma once

#include "interface/vantel.h"
#include <iostream>
#include <memory>
#include <sstream>
#include <vector>

namespace vantel::testing {
struct Free {
    void operator()(QuantumProperty* property) const { vantel_free_quantum_property(property); }
};
using Handle = std::unique_ptr<QuantumProperty, Free>;

inline Handle qudit_of(int dimension) {
    int status = -1;
    return Handle(vantel_make_quantum_property(dimension, &status));
}

/// Conditions that hold for any level, so that a call with them merges and selects all.
inline std::vector<PredicateRecord> any_level(const std::vector<QuantumProperty*>& properties) {
    std::vector<PredicateRecord> records(properties.size());
    for (std::size_t i = 0; i < records.size(); ++i) records[i] = {properties[i], -1, 0};
    return records;
}

inline int merge(const std::vector<QuantumProperty*>& properties) {
    const auto records = any_level(properties);
    return vantel_phase_rotate(records.data(), records.size(), 0.0F);
}

/// What stands on std::cerr while it lives.
class Diagnostics {
public:
    Diagnostics() : before_(std::cerr.rdbuf(text_.rdbuf())) {}
    ~Diagnostics() { std::cerr.rdbuf(before_); }
    Diagnostics(const Diagnostics&) = delete;
    Diagnostics& operator=(const Diagnostics&) = delete;
    [[nodiscard]] std::string text() const { return text_.str(); }

private:
    std::ostringstream text_;
    std::streambuf* before_;
};
} // namespace vantel::testing
