#!/usr/bin/env bash
# Builds Ravik and shows what it does.
#
#   ./run.sh        every function proved and timed: unit tests and profiling on all targets, in all modes; then there is
#                   a page to look at, build/report.html
#   ./run.sh ARGS   ravikTest with ARGS, for instance ./run.sh -m ABSDIFF -l 100; the test data directory is put before
#                   them unless they begin with one
set -u
. "$(dirname "$0")/tools/setup.sh"

needBuildTools
[ $# -gt 0 ] || needReport
echo "Building..."
build release ravikTest testData || exit 1
program=$root/build/release/tst/ravikTest
data=$root/build/release/testdata

if [ $# -gt 0 ]; then
    case $1 in
    -*) exec "$program" "$data" "$@" ;;
    *) exec "$program" "$@" ;;
    esac
fi

loops=10 # the slowest references take a tenth of a second
output=$root/build/ravikTest.out
log=$root/build/ravikTest.log
echo "Running ravikTest $data -l $loops -M 15 (its log: $log)"
"$program" "$data" -l $loops -M 15 2>"$log" | tee "$output"
status=${PIPESTATUS[0]}
echo
"$root/tools/summary.sh" "$output" "$log" $loops
"$root/tools/report" --log "$log" --loops $loops --machine --options "-l $loops -M 15" "$output"
exit "$status"
