#!/usr/bin/env bash
# What docs/headerFilter.py makes of a header is what the header says, whatever characters it has, and it finds parameters
# that nothing explains. Prints what is wrong; status 1 then.
set -u
filter=$(cd "$(dirname "$0")/../docs" && pwd)/headerFilter.py
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAILED: $*"; failures=1; }

cat >"$work/sample.h" <<'EOF'
/* Ravik: samples. They end here.
 *
 *   Shapes     are in pixels,
 *              and <b>not</b> @brief.
 *   Errors     none; see `other`. */
#define RAVIK_SAMPLE 1u /* 100% #hash "quoted" */

/* ---- a section --------------------------------------------------------------------------------------------------- */

/* For each:
 *   a = b * c    \end
 *   2   3        4
 * - and so on. `speed` is in *pixels*. */
RVK_API void rvkFirst(const uint8_t* src, uint32_t srcWidth, float speed);
RVK_API void rvkSecond(const uint8_t* src, uint32_t srcWidth, float speed, float mystery);

/* All of it. */
typedef struct rvkSample
{
    int32_t x, y; /* its place */
} rvkSample;
EOF
python3 "$filter" "$work/sample.h" >"$work/sample.txt" || fail "the filter ends with $?"
expect() { grep -qF -- "$1" "$work/sample.txt" || fail "nothing reads: $1"; }
expect '\defgroup sample sample.h: samples'
expect '<dt>Shapes</dt><dd>are in pixels, and \<b\>not\</b\> \@brief.</dd>'
expect '/** 100\% \#hash \"quoted\". */'
expect '\name A section'
expect 'a = b * c    \end'
expect '<code>speed</code> is in \*pixels\*.'
expect 'int32_t y;'
[ "$(grep -c 'For each' "$work/sample.txt")" = 2 ] || fail "a comment holds for the declarations that follow it"

unexplained=$(python3 "$filter" --check "$work/sample.h") && fail "a parameter without a word passes"
[ "$unexplained" = "sample.h: rvkSecond: nothing explains mystery" ] || fail "found: $unexplained"
exit $failures
