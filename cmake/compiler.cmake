# What every target of the project is compiled with.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# These stand behind whatever a packager puts into CMAKE_CXX_FLAGS, and so win over it.
add_library(vantel_compiler INTERFACE)
target_compile_options(vantel_compiler INTERFACE
    -ffp-contract=off
    # g++ 12 makes one fused operation of a product and an alternating sum when it vectorises straight-line
    # code for a machine that has it, whatever is said about contraction.
    $<$<CXX_COMPILER_ID:GNU>:-fno-tree-slp-vectorize>
    -Wno-psabi
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow)

# More than -O2 buys nothing here that benchmarks show, and costs build time ninety times over.
if(PROJECT_IS_TOP_LEVEL AND CMAKE_CXX_FLAGS_RELEASE STREQUAL "-O3 -DNDEBUG")
    set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG" CACHE STRING "Flags of a release build" FORCE)
endif()
