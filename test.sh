#!/usr/bin/env bash
# The tests.
#
#   ./test.sh          host, sanitizers, 32-bit Arm under emulation
#   ./test.sh --all    also the format, clang, the Android compile check, AArch64, the thread sanitizer, bounded fuzzing
#   ./test.sh STEP...  only these: host asan arm format clang android aarch64 tsan fuzz
#
# --fuzz-seconds N, before these, gives each fuzz target N seconds of a core instead of 60.
# The last line says how many tests passed and failed; what a failed one printed is above it and in build/logs.
set -u
. "$(dirname "$0")/tools/setup.sh"

# The sanitizers of these compilers cannot cope with addresses more random than this.
if [ "$(cat /proc/sys/vm/mmap_rnd_bits 2>/dev/null || echo 0)" -gt 28 ] && [ -z "${RAVIK_FIXED_ADDRESSES-}" ]; then
    RAVIK_FIXED_ADDRESSES=1 exec setarch "$(uname -m)" -R "$0" "$@"
fi
cd "$root" || exit 1

fuzzSeconds=60
seeds="1 2 3 4 5"
usual="host asan arm"
extra="format clang android aarch64 tsan fuzz"

passed=0
failed=0
logs=$root/build/logs
mkdir -p "$logs"

report() # NAME PASSED FAILED SECONDS LOG: adds to the totals, and shows the log of a failure
{
    passed=$((passed + $2))
    failed=$((failed + $3))
    printf '%-44s %5d passed %3d failed %5d s\n' "$1" "$2" "$3" "$4"
    if [ "$3" != 0 ]; then
        grep -vE ' +Passed +[0-9.]+ sec$|^ +Start +[0-9]+:' "$5" | tail -n 100
        echo "All of it: $5"
    fi
}

one() # NAME COMMAND...: one test, passed when the command succeeds
{
    local name=$1 log=$logs/${1//[: \/]/-}.log start=$SECONDS
    shift
    if "$@" >"$log" 2>&1; then
        report "$name" 1 0 $((SECONDS - start)) "$log"
    else
        echo "exit status $?" >>"$log"
        report "$name" 0 1 $((SECONDS - start)) "$log"
        return 1
    fi
}

unitTests() # PRESET [CTEST ARGUMENTS...]: counts what ctest counts
{
    local log=$logs/$1-tests.log start=$SECONDS counts
    ctest --preset "$@" -j "$jobs" >"$log" 2>&1
    counts=$(sed -n 's/.* tests passed, \([0-9]*\) tests failed out of \([0-9]*\).*/\1 \2/p' "$log")
    if [ -z "$counts" ]; then # not one test ran
        report "$1: unit tests" 0 1 $((SECONDS - start)) "$log"
    else
        set -- "$1" $counts
        report "$1: unit tests" $(($3 - $2)) "$2" $((SECONDS - start)) "$log"
    fi
}

instructionSets() # the names of those that this host has, as ravikTest knows them
{
    case $(uname -m) in
    x86_64)
        grep -qw sse4_2 /proc/cpuinfo && echo sse42
        grep -qw avx2 /proc/cpuinfo && echo avx2
        grep -qw avx512_bitalg /proc/cpuinfo && echo avx512
        ;;
    *) echo neon ;;
    esac
}

testData=build/gcc/testdata # every machine makes the same bytes, so one making serves all builds

ravikTests() # PRESET "INSTRUCTION SETS" "SEEDS" [EMULATOR...]: all groups, on every target and in every mode
{
    local preset=$1 sets=$2 runSeeds=$3 set seed
    shift 3
    for set in $sets; do
        for seed in $runSeeds; do
            VENDOR_RUNTIME_RAVIK_VECTA=$set one "$preset: ravikTest $set seed $seed" \
                "$@" "build/$preset/tst/ravikTest" "$testData" -U -M 15 -s "$seed"
        done
    done
}

sameTestData() # EMULATOR...: the 32-bit build makes the bytes that the host made
{
    local made=build/arm/testdata status
    rm -rf "$made" && mkdir "$made" && "$@" build/arm/data/ravikTestData "$made" --resolutions 1 && diff -rq "$testData" "$made"
    status=$?
    rm -rf "$made"
    return $status
}

buildAndTest() # PRESET
{
    one "$1: build" build "$1" && unitTests "$1"
}

host() { buildAndTest gcc && ravikTests gcc "$(instructionSets)" "$seeds"; }
asan() { buildAndTest asan && ravikTests asan "$(instructionSets)" 1; }
arm()
{
    local emulator="qemu-arm -L /usr/arm-linux-gnueabihf"
    buildAndTest arm || return
    one "arm: test data" sameTestData $emulator
    ravikTests arm neon "$seeds" $emulator
}
wellFormatted()
{
    find bench data examples include src tests tst -name '*.h' -o -name '*.cpp' | xargs clang-format-14 --dry-run -Werror
}
format() { one "format" wellFormatted; }
clang() { buildAndTest clang && ravikTests clang "$(instructionSets)" 1; }
android() { one "android: compile check" build android-check androidCheck; }
aarch64() { buildAndTest aarch64 && ravikTests aarch64 neon 1 qemu-aarch64 -L /usr/aarch64-linux-gnu; }
tsan() { one "tsan: build" build tsan threadTests && unitTests tsan -L threads; }

fuzzTarget() # NAME SECONDS
{
    local found=build/fuzz/found/$1
    mkdir -p "$found"
    "build/fuzz/tests/$1" -max_total_time="$2" -timeout=10 -rss_limit_mb=2048 -artifact_prefix="$found-" "$found" \
        $(ls -d "tests/fuzz/$1" 2>/dev/null)
}

finished() # PROCESS LOG: waits for a process of this shell, shows its log, has its status
{
    local status
    wait "$1"
    status=$?
    cat "$2"
    return $status
}

fuzz() # all targets at once, so long that each has had its share of the cores
{
    one "fuzz: build" build fuzz fuzzers || return
    local names name seconds processes=()
    names=($(basename -s .cpp tests/fuzz/*.cpp))
    seconds=$((fuzzSeconds * (${#names[@]} + jobs - 1) / jobs))
    for name in "${names[@]}"; do
        fuzzTarget "$name" $seconds >"$logs/$name.log" 2>&1 &
        processes+=($!)
    done
    for name in "${names[@]}"; do
        one "fuzz: $name" finished "${processes[0]}" "$logs/$name.log"
        processes=("${processes[@]:1}")
    done
}

needs() # STEP
{
    case $1 in
    host) needBuildTools pkg-config:pkg-config /usr/src/googletest/CMakeLists.txt:googletest && needOpenCv ;;
    asan | tsan) needBuildTools pkg-config:pkg-config /usr/src/googletest/CMakeLists.txt:googletest ;;
    format) need clang-format-14:clang-format-14 ;;
    arm) needBuildTools /usr/src/googletest/CMakeLists.txt:googletest && needArm ;;
    clang | fuzz)
        needBuildTools pkg-config:pkg-config /usr/src/googletest/CMakeLists.txt:googletest clang++-14:clang-14 \
            '/usr/lib/llvm-14/lib/clang/14*/lib/linux/libclang_rt.fuzzer-*.a:libclang-rt-14-dev'
        ;;
    android) needBuildTools clang++-14:clang-14 && needArm ;;
    aarch64) needBuildTools /usr/src/googletest/CMakeLists.txt:googletest && needAarch64 ;;
    esac
}

if [ "${1-}" = --fuzz-seconds ]; then
    fuzzSeconds=${2-}
    shift 2
fi
case ${1-} in
"") steps=$usual ;;
--all) steps="$usual $extra" ;;
*) steps=$* ;;
esac
for step in $steps; do
    if ! [[ " $usual $extra " == *" $step "* ]]; then
        sed -n '2,/^set -u/s/^# \{0,1\}//p' "$0" >&2
        exit 1
    fi
done
for step in $steps; do
    needs "$step"
done
case $steps in
*host* | *asan* | *arm* | *clang* | *aarch64*) one "test data" build gcc testData ;;
esac
for step in $steps; do
    "$step"
done

echo "$passed passed, $failed failed"
[ "$failed" = 0 ]
