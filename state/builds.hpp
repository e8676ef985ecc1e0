/// The ninety builds of State, in their one list.
#pragma once

#include "state/dit_array.hpp"

// The macro takes a comma apart wherever it stands, so a result or parameter list with commas of its own goes in
// parentheses or under a name.
// NOLINTBEGIN(bugprone-macro-parentheses): a type or a parameter list cannot stand in parentheses.

/// Applies `apply(D, N, ...)` to every N of one D.
#define VANTEL_BUILDS_OF(apply, D, ...)                                                                                \
    apply(D, 1, __VA_ARGS__) apply(D, 2, __VA_ARGS__) apply(D, 3, __VA_ARGS__) apply(D, 4, __VA_ARGS__)                \
        apply(D, 5, __VA_ARGS__) apply(D, 6, __VA_ARGS__) apply(D, 7, __VA_ARGS__) apply(D, 8, __VA_ARGS__)            \
            apply(D, 9, __VA_ARGS__) apply(D, 10, __VA_ARGS__)

/// Applies `apply(D, N, ...)` to every build.
#define VANTEL_FOR_EACH_BUILD(apply, ...)                                                                              \
    VANTEL_BUILDS_OF(apply, 2, __VA_ARGS__)                                                                            \
    VANTEL_BUILDS_OF(apply, 3, __VA_ARGS__)                                                                            \
    VANTEL_BUILDS_OF(apply, 4, __VA_ARGS__)                                                                            \
    VANTEL_BUILDS_OF(apply, 5, __VA_ARGS__)                                                                            \
    VANTEL_BUILDS_OF(apply, 6, __VA_ARGS__)                                                                            \
    VANTEL_BUILDS_OF(apply, 7, __VA_ARGS__)                                                                            \
    VANTEL_BUILDS_OF(apply, 8, __VA_ARGS__)                                                                            \
    VANTEL_BUILDS_OF(apply, 9, __VA_ARGS__)                                                                            \
    VANTEL_BUILDS_OF(apply, 10, __VA_ARGS__)

#define VANTEL_MEMBER_OF_BUILD(D, N, result, member, ...) template result State<DitArray<D, N>>::member __VA_ARGS__;

/// Instantiates one member of State in every build: its result, its name, its parameter list with whatever follows it.
#define VANTEL_INSTANTIATE(result, member, ...)                                                                        \
    VANTEL_FOR_EACH_BUILD(VANTEL_MEMBER_OF_BUILD, result, member, __VA_ARGS__)
// NOLINTEND(bugprone-macro-parentheses)
