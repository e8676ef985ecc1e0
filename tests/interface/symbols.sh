#!/bin/sh
# Shows the library's dynamic symbols that differ from the kept list, and libraries it should not need.
# Arguments: the library, the kept list.
set -eu
export LC_ALL=C
nm -D --defined-only "$1" | awk '$2 != "A" { sub(/@.*/, "", $3); print $3 }' | sort | diff "$2" -
needed=$(readelf -d "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' |
    grep -Ev '^(libstdc\+\+|libm|libgcc_s|libc|ld-linux-x86-64|libasan|libubsan)\.so') || exit 0
echo "needs $needed"
exit 1
