#!/usr/bin/env bash
# Usage: reportTest.sh RAVIKTEST TESTDATA DIRECTORY
#
# The pages of tools/report, opened in a browser without a window: each tests itself there, and what it says of its rows,
# its filter, its order and the console counts. Pages and a picture of one stay in DIRECTORY.
set -u
program=$1 data=$2 directory=$3
report=$(dirname "$0")/../tools/report
failures=0
mkdir -p "$directory" && directory=$(cd "$directory" && pwd) || exit 1

browser() # ARGUMENTS...
{
    timeout 120 chromium --headless --no-sandbox --disable-gpu --virtual-time-budget=5000 "$@" 2>/dev/null
}

fail() { echo "FAILED: $*"; failures=1; }

# A page made with these arguments passes its own test; what is left of its text is in `text`.
expectPage() # NAME ARGUMENTS...
{
    local page=$directory/$1.html dom
    shift
    "$report" -o "$page" "$@" || { fail "no page of $*"; return; }
    dom=$(browser --dump-dom "file://$page#test")
    [[ $dom == *'data-test="passed"'* ]] || fail "$page: $(grep -o 'NOT OK: .*' <<<"$dom")"
    text=$(sed '/<script>/,/<\/script>/d' <<<"$dom")
}
expectText() { [[ $text == *"$1"* ]] || fail "the page does not say: $1"; }

expectRefusal() # MESSAGE ARGUMENTS...
{
    local message=$1 said
    shift
    if said=$("$report" -o "$directory/refused.html" "$@" 2>&1); then
        fail "accepted: $*"
    fi
    [[ $said == *"$message"* ]] || fail "said of $*: $said"
}

"$program" "$data" -m ABSDIFF -l 2 -M 15 >"$directory/run.out" 2>"$directory/run.log"
expectPage run --log "$directory/run.log" --loops 2 --machine --options "-m ABSDIFF" "$directory/run.out"
expectText 'all passed'
expectText '>ABSDIFF</span>'
browser --screenshot="$directory/run.png" --window-size=1200,1600 "file://$directory/run.html"
[ -s "$directory/run.png" ] || fail "no picture of the page"

# One function fails, its name is markup; a second run twice as slow.
evil='rvk<b>Markup</b></script><script>document.title="caught"</script>'
{
    sed -E 's/(rvkAbsDiffu8 :: )PASS/\1FAIL/; s/Overall=>PASS/Overall=>FAIL/; s/, ([0-9]+), ([0-9]+),/, \19, \29,/' "$directory/run.out"
    echo "RAVIK_PROFILE, $evil :: FAIL, 1, 2, 3, 0, 1, 1, 1, 1, 1"
} >"$directory/failed.out"
{
    sed 's/ABSDIFF=>PASS/ABSDIFF=>FAIL/' "$directory/run.log"
    echo "D/ravik_test: RAVIK_TEST, ${evil}_V =>FAIL"
} >"$directory/failed.log"
expectPage failed --log "$directory/failed.log" "$directory/failed.out"
expectText '>failed</span>'
expectText '&lt;b&gt;Markup&lt;/b&gt;'
[[ $text != *'<b>Markup'* ]] || fail "a function's name became markup"
expectPage compared "$directory/run.out" "$directory/failed.out"
expectText 'slower'

# A run that crashed half way: the last line is cut.
head -c 900 "$directory/run.out" >"$directory/cut.out"
expectPage cut "$directory/cut.out"
expectText 'no verdict'

# Many rows; those of the benchmark.
{
    for row in {1..1000}; do
        echo "RAVIK_PROFILE, rvkFunction$row :: PASS, $((row * 7 % 1000 + 500)), $((row % 90 + 10)), 0, 0, 0, 0, 0, 0, 0"
    done
    echo "RAVIK_PROFILE, FIT:(FeatureName=>RAVIK, Overall=>PASS)"
} >"$directory/many.out"
expectPage many "$directory/many.out"
cat >"$directory/bench.out" <<'END'
Times of a memcpy of the same bytes
function                                     size              C    VECTA   OpenCV   libyuv     best  ns/pixel
rvkAbsDiffu8                                 1920x1080      9.57     0.98     0.99        -     0.97     0.070
rvkFilterGaussian3x3u8_v2, with a border     640x480       15.57     2.98     9.99        -     2.61     0.071  > best
2 rows, 1 marked
END
expectPage bench "$directory/bench.out"
expectText '&gt; best'

echo "no run of anything" >"$directory/foreign.out"
expectRefusal 'neither ravikTest nor ravikBench' "$directory/foreign.out"
expectRefusal 'not of the same program' "$directory/run.out" "$directory/bench.out"
expectRefusal 'No such file' "$directory/absent.out"

[ "$failures" = 0 ] && echo "all pages are as they should be"
exit "$failures"
