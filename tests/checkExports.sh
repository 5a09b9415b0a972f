#!/bin/sh
# Usage: checkExports.sh NM LIBRAVIK.SO INCLUDE_DIRECTORY
#
# The shared library exports exactly what the public headers mark with RVK_API.
nm=$1
library=$2
include=$3
work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT

"$nm" -D --defined-only "$library" | awk '$2 != "A" { print $3 }' | sort -u >"$work/exported"
grep -v '^_ZT\?[NVIS]*K\?9rvkBuffer' "$work/exported" >"$work/functions"
cat "$include"/ravik/*.h | sed 's/class RVK_API/class/' | tr '\n' ' ' | grep -o 'RVK_API [^;(]*(' | grep -o 'rvk[A-Za-z0-9_]* *($' | tr -d ' (' |
    sort -u >"$work/declared"

if ! cmp -s "$work/declared" "$work/functions"; then
    echo "declared (<) and exported (>) differ:"
    diff "$work/declared" "$work/functions"
    exit 1
fi
echo "$(wc -l <"$work/declared") functions declared and exported"
