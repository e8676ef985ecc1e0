/// Hot loops in the instructions of the processor at hand.
#pragma once

#include <type_traits>

/// Stands on the lambdas of hot loops, so that all of a loop is compiled for the vectors of the place that calls it.
#define VANTEL_INLINED __attribute__((always_inline))

namespace vantel {
/// What a loop's vectors are compiled for, as a tag: all that every processor of the target has, or wide ones.
struct PlainVectors {};
struct WideVectors {};

#if defined(__AVX2__)
using OwnVectors = WideVectors;
#else
using OwnVectors = PlainVectors;
#endif

/// Calls a copy of the loop, with the tag if it wants that. No store that the copy makes can be thought to change what
/// it reads.
template <class Vectors, class Loop> [[gnu::always_inline]] inline auto run_loop(const Loop& given) {
    const Loop loop = given;
    if constexpr (std::is_invocable_v<const Loop&>)
        return loop();
    else
        return loop(Vectors{});
}

/// Whether the processor has what the wide form of a loop takes. It is asked each time, so that the library needs
/// nothing at its start.
bool has_wide_vectors() noexcept;

#if defined(__x86_64__) && !defined(__AVX2__)

/// Keeps a function as its type says. g++ would take a loop apart and hand the vectors in it over in registers that the
/// caller, which is compiled for less, does not have.
#ifdef __clang__
#define VANTEL_APART gnu::noinline
#else
#define VANTEL_APART gnu::noinline, gnu::noipa
#endif

/// What a loop is compiled for once more. Fused operations are not among it, so the bits stay the same.
template <class Loop> [[gnu::target("avx2,bmi2"), gnu::flatten, VANTEL_APART]] auto in_wide_vectors(const Loop& loop) {
    return run_loop<WideVectors>(loop);
}

/// Apart from its caller, so that this one does not prepare for both forms.
template <class Loop> [[gnu::noinline]] auto in_plain_vectors(const Loop& loop) { return run_loop<OwnVectors>(loop); }

#undef VANTEL_APART

#endif

/// Calls `loop`, in vectors wider than those of the target that the library is built for where the processor turns out
/// to have them. What is written differently for wide vectors is chosen by the tag that a loop may take. A loop is a
/// VANTEL_INLINED lambda that captures by value, so that every compiler puts all of it into both forms.
/// @return what the loop returns
template <class Loop> auto wide_loop(const Loop& loop) {
#if defined(__x86_64__) && !defined(__AVX2__)
    if (has_wide_vectors()) return in_wide_vectors(loop);
    return in_plain_vectors(loop);
#else
    return run_loop<OwnVectors>(loop);
#endif
}
} // namespace vantel
