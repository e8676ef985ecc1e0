#!/bin/sh
# The library must not contain a fused multiply-add, whatever machine it was compiled for: its bits would
# be that machine's own. Arguments: the library, and an objdump that knows its machine if objdump does not.
set -eu
listing=$(mktemp)
trap 'rm -f "$listing"' EXIT
"${2:-objdump}" --disassemble "$1" >"$listing"
# The library multiplies, so a listing without any multiplication is not one of it.
grep -qE '\bv?mul[ps][ds]\b|\bfmul\b' "$listing" || { echo "no floating point was found in $1"; exit 1; }
fused=$(grep -cE '\bvfn?m(add|sub)|\bfn?m(add|sub)\b|\bfn?m(ad|sb|l[as]l?)\b|\bfcmla\b' "$listing") || [ $? = 1 ]
[ "$fused" = 0 ] || { echo "$fused fused operations in $1"; exit 1; }
