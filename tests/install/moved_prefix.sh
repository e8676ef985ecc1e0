#!/bin/sh
# Installs a build, moves the prefix, and builds and runs separate projects against it, found by CMake, by
# pkg-config and by Meson, and the installed examples.
# Usage: moved_prefix.sh BUILD_DIRECTORY SCRATCH_DIRECTORY C_COMPILER CXX_COMPILER [FLAGS]
set -eu
sources=$(dirname "$(realpath "$0")")
build=$1 scratch=$2 flags=${5-}
export CC="$3" CXX="$4" CFLAGS="$flags" CXXFLAGS="$flags"

rm -rf "$scratch"
mkdir -p "$scratch"
cmake --install "$build" --prefix "$scratch/first" >"$scratch/install.log"
prefix=$scratch/moved
mv "$scratch/first" "$prefix"

for language in c cpp; do
    cmake -S "$sources/$language" -B "$scratch/$language" -DCMAKE_PREFIX_PATH="$prefix" >"$scratch/cmake.log"
    cmake --build "$scratch/$language" >>"$scratch/cmake.log"
    "$scratch/$language/user"
done
"$scratch/c/guarded" >"$scratch/text"
grep -q 'overlapp' "$scratch/text"

# The examples as installed, with their build file, and the pages, from which every link leads somewhere.
documents=$prefix/share/doc/vantel
cmake -S "$documents/examples" -B "$scratch/examples" -DCMAKE_PREFIX_PATH="$prefix" >"$scratch/cmake.log"
cmake --build "$scratch/examples" --parallel 2 >>"$scratch/cmake.log"
ctest --test-dir "$scratch/examples" --no-tests=error >"$scratch/examples.log" || { cat "$scratch/examples.log"; exit 1; }
"$sources/../guide/check_links.py" "$documents"

library=$(dirname "$(find "$prefix" -name 'libvantel.so.1')")
case $flags in
*-fsanitize*) ;; # brings a library of its own
*)  needed=$(readelf -d "$library/libvantel.so.1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
    [ -z "$(echo "$needed" | grep -vE '^(libstdc\+\+|libm|libgcc_s|libc|ld-linux.*)\.so\.[0-9]+$')" ] ;;
esac
command -v pkg-config >/dev/null || { echo "no pkg-config here: that half is left out"; exit 0; }
PKG_CONFIG_PATH=$library/pkgconfig
export PKG_CONFIG_PATH
[ "$(pkg-config --modversion vantel)" = 1.0.0 ]
# shellcheck disable=SC2046,SC2086 # flags are lists
$CC -std=c99 $flags "$sources/c/main.c" $(pkg-config --cflags --libs vantel) -o "$scratch/c_user"
# shellcheck disable=SC2046,SC2086
$CXX -std=c++20 $flags "$sources/cpp/main.cpp" $(pkg-config --cflags --libs vantel) -o "$scratch/cpp_user"
# shellcheck disable=SC2046,SC2086
$CC -std=c99 $flags "$sources/c/guarded.c" $(pkg-config --cflags --libs vantel-guarded) -o "$scratch/guarded"
# shellcheck disable=SC2046,SC2086
$CC -std=c11 $flags "$prefix/share/doc/vantel/examples/entangled_pair.c" $(pkg-config --cflags --libs vantel vantel-draw) -lm \
    -o "$scratch/entangled_pair"
LD_LIBRARY_PATH=$library "$scratch/entangled_pair" --svg "$scratch/pair" >"$scratch/pair.txt"
[ -s "$scratch/pair-outcomes.svg" ]
LD_LIBRARY_PATH=$library "$scratch/c_user"
LD_LIBRARY_PATH=$library "$scratch/guarded"
LD_LIBRARY_PATH=$library "$scratch/cpp_user"
command -v meson >/dev/null || { echo "no meson here: that part is left out"; exit 0; }
cp -r "$sources/meson" "$scratch/meson_sources"
cp "$sources"/c/*.c "$sources/cpp/main.cpp" "$scratch/meson_sources"
meson setup "$scratch/meson" "$scratch/meson_sources" >"$scratch/meson.log"
LD_LIBRARY_PATH=$library meson test -C "$scratch/meson" >>"$scratch/meson.log" || { cat "$scratch/meson.log"; exit 1; }
