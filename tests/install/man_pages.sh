#!/bin/sh
# Each function of the list has a manual page that renders without a warning and shows its declaration, word for word.
# Usage: man_pages.sh MAN_DIRECTORY HEADER LIST_OF_SYMBOLS
set -eu
directory=$1 header=$2 pages=0
words() { tr -s ' \n' ' ' | sed 's/\\&//g'; }
for function in $(grep '^vantel_' "$3") "$(basename "$header" .h)"; do
    page=$directory/$function.3.gz
    text=$(gzip -dc "$page")
    echo "$text" | grep -q "^$function \\\\- ." || { echo "$page does not name itself"; exit 1; }
    echo "$text" | grep -qx "#include <$(basename "$header")>"
    declaration=$(words <"$header" | grep -oE "VANTEL_API [a-zA-Z* ]*\b$function\([^;]*;" | cut -d ' ' -f 2-) || true
    echo "$text" | words | grep -qF "$declaration" || { echo "$page does not declare $function"; exit 1; }
    [ -n "$declaration" ] || [ "$function.h" = "$(basename "$header")" ]
    if command -v man >/dev/null && command -v groff >/dev/null; then
        warnings=$(MANROFFOPT=-ww LC_ALL=C.UTF-8 MANWIDTH=100 man --warnings -l "$page" 2>&1 >/dev/null)
        [ -z "$warnings" ] || { echo "$page: $warnings"; exit 1; }
    fi
    pages=$((pages + 1))
done
echo "$pages pages"
