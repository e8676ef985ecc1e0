#include "algorithms/wide_loop.hpp"

namespace vantel {
// In a file of its own, so that a test can answer instead and try both forms on one processor.
bool has_wide_vectors() noexcept {
#ifdef __x86_64__
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2");
#else
    return false;
#endif
}
} // namespace vantel
