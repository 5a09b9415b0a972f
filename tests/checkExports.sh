#!/bin/sh
# Usage: checkExports.sh NM LIBRAVIK.SO INCLUDE_DIRECTORY FUNCTION_LIST
#
# The shared library exports exactly what the public headers mark with RVK_API. Of the rows of the function list those with
# a reference are declared, the others are not.
nm=$1
library=$2
include=$3
list=$4
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

rows='s/^RVK_FUNCTION(\([A-Za-z0-9_]*\), *\([A-Z]*\),.*/\1 \2/p'
sed -n "$rows" "$list" | cut -d' ' -f1 | sort >"$work/rows"
sed -n "$rows" "$list" | sed -n 's/ YES$//p' | sort >"$work/implemented"
comm -12 "$work/rows" "$work/declared" >"$work/declaredRows"
if [ "$(wc -l <"$work/rows")" -ne 506 ] || ! cmp -s "$work/implemented" "$work/declaredRows"; then
    echo "rows with a reference (<) and declared rows (>) differ, or the list has not 506 rows:"
    diff "$work/implemented" "$work/declaredRows"
    exit 1
fi
echo "$(wc -l <"$work/declared") functions declared and exported"
