#!/bin/sh
# Shows the library's dynamic symbols that differ from the kept list, and libraries it should not need.
# Arguments: the library, the kept list.
set -eu
export LC_ALL=C
symbols=$(nm -D --defined-only "$1")
echo "$symbols" | awk '$2 != "A" { sub(/@.*/, "", $3); print $3 }' | sort | diff "$2" -
dynamic=$(readelf -d "$1")
needed=$(echo "$dynamic" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
# Without any, the table was not read.
[ -n "$needed" ] || { echo "nothing is told that $1 needs"; exit 1; }
echo "$needed" | grep -Ev '^(libstdc\+\+|libm|libgcc_s|libc|ld-linux-x86-64|libasan|libubsan)\.so' &&
    { echo "should not be needed by $1"; exit 1; } || [ $? = 1 ]
