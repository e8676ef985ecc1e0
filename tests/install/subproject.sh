#!/bin/sh
# Makes the project a part of another one, which must keep its build type, its flags and its install rules, and
# find vantel::vantel.
# Usage: subproject.sh SOURCES SCRATCH_DIRECTORY
set -eu
sources=$1 scratch=$2

rm -rf "$scratch"
mkdir -p "$scratch"
cat >"$scratch/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.25)
project(whole LANGUAGES C CXX)
if(PART)
    add_subdirectory(${PART} part)
    if(NOT TARGET vantel::vantel)
        message(FATAL_ERROR "the part has no vantel::vantel")
    endif()
endif()
END
cmake -S "$scratch" -B "$scratch/alone" >"$scratch/alone.log"
cmake -S "$scratch" -B "$scratch/with" -DPART="$sources" >"$scratch/with.log"
for build in alone with; do
    grep -E '^CMAKE_(BUILD_TYPE|C(XX)?_(FLAGS|STANDARD)|EXPORT|INSTALL|POSITION)' "$scratch/$build/CMakeCache.txt" >"$scratch/$build.cache"
done
[ -s "$scratch/alone.cache" ]
diff "$scratch/alone.cache" "$scratch/with.cache"
cmake --install "$scratch/with" --prefix "$scratch/prefix" >"$scratch/install.log"
[ ! -e "$scratch/prefix" ] || { find "$scratch/prefix"; exit 1; }
