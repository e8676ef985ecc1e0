#!/bin/sh
# The library must not contain a fused multiply-add, whatever machine it was compiled for: its bits would
# be that machine's own. Argument: the library.
set -eu
fused=$(objdump --disassemble "$1" | grep -cE '\bvfn?m(add|sub)|\bfn?m(add|sub)\b|\bfml[as]\b') || true
[ "$fused" = 0 ] || { echo "$fused fused operations in $1"; exit 1; }
