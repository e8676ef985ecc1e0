/// Where the amplitudes stand that a gate is about, in a dense list.
#pragma once

#include "contender.hpp"
#include <vector>

namespace peers {
/// Calls kernel(first, count) for all stretches of amplitudes that meet the conditions, with the targets in level 0.
template <class Kernel>
void walk_stretches(const Register& of, const std::vector<std::size_t>& strides, const Step& step, Kernel kernel) {
    std::vector<int> fixed(of.qudits, -1);
    for (const std::size_t target : step.qudits) fixed[target] = 0;
    for (const auto& [qudit, level] : step.when) fixed[qudit] = level;
    std::size_t lowest = 0;
    while (lowest < of.qudits && fixed[lowest] < 0) ++lowest;
    const auto descend = [&](const auto& self, std::size_t qudit, std::size_t at) -> void {
        if (qudit == lowest) return kernel(at, strides[lowest]);
        --qudit;
        if (fixed[qudit] >= 0) return self(self, qudit, at + static_cast<std::size_t>(fixed[qudit]) * strides[qudit]);
        for (std::size_t level = 0; level < of.dimension; ++level) self(self, qudit, at + level * strides[qudit]);
    };
    descend(descend, of.qudits, 0);
}
} // namespace peers
