#!/usr/bin/env bash
# The tests.
#
#   ./test.sh          host, sanitizers, 32-bit Arm as clang builds it, under emulation
#   ./test.sh --all    also the format, clang on the host, the Android compile check, 32-bit Arm as g++ builds it, AArch64,
#                      the thread sanitizer, bounded fuzzing, the report page in a browser, the reference, Python
#   ./test.sh STEP...  only these: host asan arm-clang format clang android arm aarch64 tsan fuzz report docs
#                      python
#   ./test.sh opencv   OpenCV built twice, with the adapter and without, and its own tests on both: takes long
#
# --fuzz-seconds N, before these, gives each fuzz target N seconds instead of 60.
# The last line says how many tests passed and failed; what a failed one printed is above it and in build/logs.
set -u
. "$(dirname "$0")/tools/setup.sh"

# The sanitizers of these compilers cannot cope with addresses more random than this.
if [ "$(cat /proc/sys/vm/mmap_rnd_bits 2>/dev/null || echo 0)" -gt 28 ] && [ -z "${RAVIK_FIXED_ADDRESSES-}" ]; then
    RAVIK_FIXED_ADDRESSES=1 exec setarch "$(uname -m)" -R "$0" "$@"
fi
cd "$root" || exit 1

fuzzSeconds=60
usual="host asan arm-clang"
extra="format clang android arm aarch64 tsan fuzz report docs python"
alone="opencv" # not part of --all

passed=0
failed=0
logs=$root/build/logs
parts=() # "SECONDS NAME" of everything that was reported
mkdir -p "$logs"

logOf() { echo "$logs/${1//[: \/]/-}.log"; }

record() # NAME PASSED FAILED SECONDS LOG: adds to the totals, and shows the log of a failure
{
    passed=$((passed + $2))
    failed=$((failed + $3))
    parts+=("$4 $1")
    printf '%-44s %5d passed %3d failed %5d s\n' "$1" "$2" "$3" "$4"
    if [ "$3" != 0 ]; then
        grep -vE ' +Passed +[0-9.]+ sec$|^ +Start +[0-9]+:' "$5" | tail -n 100
        echo "All of it: $5"
    fi
}

# Tests that run side by side, as many as there are processors: begin NAME COMMAND... for each, then finish. A test has
# passed when its command succeeds.
begun=()
begin()
{
    local name=$1 log
    log=$(logOf "$name")
    shift
    while [ "$(jobs -rp | wc -l)" -ge "$jobs" ]; do
        wait -n
    done
    {
        SECONDS=0
        "$@" >"$log" 2>&1
        echo "$? $SECONDS" >"$log.status"
    } &
    begun+=("$name")
}
finish()
{
    local name log status seconds failures=0
    wait
    for name in "${begun[@]}"; do
        log=$(logOf "$name")
        read -r status seconds <"$log.status"
        rm "$log.status"
        if [ "$status" = 0 ]; then
            record "$name" 1 0 "$seconds" "$log"
        else
            echo "exit status $status" >>"$log"
            record "$name" 0 1 "$seconds" "$log"
            failures=1
        fi
    done
    begun=()
    return $failures
}

one() # NAME COMMAND...: one test
{
    begin "$@" && finish
}

# PRESET [CTEST ARGUMENTS...]: counts the tests in the programs that ctest runs, by what they write down; a program that
# does not come to its end, and a check that is no such program, count as one.
unitTests()
{
    local preset=$1 log results counts start=$SECONDS
    log=$(logOf "$preset tests")
    results=$root/build/$preset/results
    rm -rf "$results"
    GTEST_OUTPUT=xml:$results/ ctest --preset "$@" -j "$jobs" >"$log" 2>&1
    counts=$(
        { [ ! -d "$results" ] || cat "$results"/*.xml; cat "$log"; } | awk '
            function number(name) { return match($0, " " name "=\"[0-9]+") ? substr($0, RSTART + length(name) + 3, RLENGTH - length(name) - 3) : 0 }
            /^<testsuites / { programs++; bad = number("failures"); failed += bad; badPrograms += bad > 0; passed += number("tests") - bad - number("disabled") }
            / tests passed, [0-9]+ tests? failed out of / { entries = $NF; badEntries = $4 }
            END {
                unwritten = badEntries - badPrograms > 0 ? badEntries - badPrograms : 0
                if (entries) print passed + entries - programs - unwritten, failed + unwritten
            }'
    )
    if [ -z "$counts" ]; then # not one test ran
        counts="0 1"
    fi
    set -- $counts
    record "$preset: unit tests" "$1" "$2" $((SECONDS - start)) "$log"
    grep -ho 'NEON text: .*' "$log" "$root/build/$preset/Testing/Temporary/LastTest.log" 2>/dev/null | sort -u
}

instructionSets() # [SET...]: those that this host has, as ravikTest knows them, of the ones named
{
    local here set
    case $(uname -m) in
    x86_64)
        grep -qw sse4_2 /proc/cpuinfo && here=sse42
        grep -qw avx2 /proc/cpuinfo && here+=" avx2"
        grep -qw avx512_bitalg /proc/cpuinfo && here+=" avx512"
        ;;
    *) here=neon ;;
    esac
    for set in $here; do
        if [ $# = 0 ] || [ "$here" = neon ] || [[ " $* " == *" $set "* ]]; then
            echo "$set"
        fi
    done
}

testData=build/gcc/testdata # every machine makes the same bytes, so one making serves all builds

# Random cases differ from commit to commit; "ravikTest ... -s SEED" repeats them.
seed=$(git rev-parse --short=7 HEAD 2>/dev/null) && seed=$((16#${seed:0:7})) || seed=1

ravikTests() # PRESET "INSTRUCTION SETS" [EMULATOR...]: all groups, on every target and in every mode
{
    local preset=$1 sets=$2 set
    shift 2
    for set in $sets; do
        VENDOR_RUNTIME_RAVIK_VECTA=$set begin "$preset: ravikTest $set seed $seed" \
            "$@" "build/$preset/tst/ravikTest" "$testData" -U -M 15 -s "$seed"
        seed=$((seed + 1))
    done
    finish
}

buildAndTest() # PRESET
{
    one "$1: build" build "$1" || return
    one "$1: test data" diff -rq "$testData" "build/$1/tests/testdata"
    unitTests "$1"
}

host()
{
    buildAndTest gcc || return
    ravikTests gcc "$(instructionSets)"
    one "gcc: ravikTest profiling" build/gcc/tst/ravikTest "$testData" -P -E -l 1 -M 15
}
asan() { buildAndTest asan && ravikTests asan "$(instructionSets avx2 avx512)"; }
emulatedArm() { buildAndTest "$1" && ravikTests "$1" neon qemu-arm -L /usr/arm-linux-gnueabihf; }
arm-clang() { emulatedArm arm-clang; }
arm() { emulatedArm arm; }
wellFormatted()
{
    find adapters bench data docs examples include src tests tst -name '*.h' -o -name '*.cpp' | xargs clang-format-14 --dry-run -Werror
}
format() { one "format" wellFormatted; }
clang() { buildAndTest clang && ravikTests clang "$(instructionSets)"; }
android() { one "android: compile check" build android-check androidCheck; }
aarch64() { buildAndTest aarch64 && ravikTests aarch64 neon qemu-aarch64 -L /usr/aarch64-linux-gnu; }
tsan() { one "tsan: build" build tsan threadTests && unitTests tsan -L threads; }

fuzz()
{
    one "fuzz: build" build fuzz fuzzers || return
    local source name found
    for source in tests/fuzz/*.cpp; do
        name=$(basename "$source" .cpp)
        found=build/fuzz/found/$name
        mkdir -p "$found"
        begin "fuzz: $name" "build/fuzz/tests/$name" -max_total_time="$fuzzSeconds" -timeout=10 -rss_limit_mb=2048 \
            -artifact_prefix="$found-" "$found" $(ls -d "tests/fuzz/$name" 2>/dev/null)
    done
    finish
}

report()
{
    one "report: build" build gcc ravikTest || return
    one "report: pages in a browser" tests/reportTest.sh build/gcc/tst/ravikTest "$testData" build/report
}

docs()
{
    one "docs: headers as they are read" tests/docsTest.sh
    one "docs: the reference, without a warning" ./docs.sh
}

pythonPackage() # installs it into an environment of its own, as users do, next to Debian's packages; with one
                # instruction set, since all of them are tested elsewhere
{
    rm -rf build/pythonEnvironment
    /usr/bin/python3 -m venv --system-site-packages build/pythonEnvironment &&
        RAVIK_CMAKE_ARGS="-DRAVIK_WERROR=ON -DRAVIK_INSTRUCTION_SETS=$(instructionSets | tail -n 1)" \
            build/pythonEnvironment/bin/pip install --quiet --no-index --no-deps --no-build-isolation .
}
pythonTests() { (cd python/tests && "$root/build/pythonEnvironment/bin/python" -m pytest -q -p no:cacheprovider .); }
pythonExamples() # each makes its pictures
{
    local example
    for example in python/examples/*.py; do
        build/pythonEnvironment/bin/python "$example" build/pythonExamples || return
    done
}
pythonTypes()
{
    MYPYPATH=$(echo build/pythonEnvironment/lib/python3*/site-packages) /usr/bin/python3 -m mypy \
        --disallow-untyped-defs --ignore-missing-imports --cache-dir build/mypy python/examples/*.py
}
python()
{
    one "python: pip install ." pythonPackage || return
    one "python: tests" pythonTests
    one "python: examples" pythonExamples
    one "python: types of the examples" pythonTypes
}

opencv()
{
    one "opencv: build" adapters/opencv/opencv.sh build || return
    one "opencv: its own tests" adapters/opencv/opencv.sh test
    one "opencv: random calls" adapters/opencv/opencv.sh check
    one "opencv: times" adapters/opencv/opencv.sh time
    tail -n 6 "$(logOf "opencv: its own tests")" "$(logOf "opencv: times")"
}

needs() # STEP
{
    local googletest=/usr/src/googletest/CMakeLists.txt:googletest
    case $1 in
    host) needBuildTools pkg-config:pkg-config $googletest && needOpenCv ;;
    tsan) needBuildTools $googletest ;;
    report) needBuildTools $googletest chromium:chromium && needReport ;;
    docs) needBuildTools $googletest doxygen:doxygen /usr/include/png.h:libpng-dev python3:python3 ;;
    python)
        needBuildTools python3:python3 /usr/lib/python3/dist-packages/numpy:python3-numpy \
            /usr/lib/python3/dist-packages/cffi:python3-cffi '/usr/include/python3*/Python.h:python3-dev' \
            /usr/lib/python3/dist-packages/setuptools:python3-setuptools \
            /usr/lib/python3/dist-packages/wheel:python3-wheel /usr/lib/python3/dist-packages/pip:python3-pip \
            '/usr/lib/python3.*/ensurepip:python3-venv' /usr/lib/python3/dist-packages/pytest:python3-pytest \
            /usr/lib/python3/dist-packages/distributed:python3-distributed \
            /usr/lib/python3/dist-packages/mypy:mypy
        ;;
    format) need clang-format-14:clang-format-14 ;;
    opencv) adapters/opencv/opencv.sh needs ;;
    arm) needBuildTools $googletest && needArm ;;
    arm-clang) needBuildTools $googletest clang++-14:clang-14 && needArm ;;
    clang) needBuildTools pkg-config:pkg-config $googletest clang++-14:clang-14 ;;
    asan | fuzz)
        needBuildTools $googletest clang++-14:clang-14 \
            '/usr/lib/llvm-14/lib/clang/14*/lib/linux/libclang_rt.fuzzer-*.a:libclang-rt-14-dev'
        ;;
    android) needBuildTools clang++-14:clang-14 && needArm ;;
    aarch64)
        needBuildTools $googletest aarch64-linux-gnu-g++:g++-aarch64-linux-gnu \
            aarch64-linux-gnu-gcc:gcc-aarch64-linux-gnu qemu-aarch64:qemu-user \
            /usr/aarch64-linux-gnu/include/stdio.h:libc6-dev-arm64-cross
        ;;
    esac
}

processorTime() # into `used`: whole seconds that this script's children have taken so far
{
    times >"$logs/times" # a subshell would ask for its own
    used=$(awk 'NR == 2 { gsub(/[ms]/, " "); print int($1 * 60 + $2 + $3 * 60 + $4) }' "$logs/times")
}

slowest() # where the time went: parts of the run, units of the compilers, test programs
{
    local preset
    echo
    echo "Slowest parts:"
    printf '%s\n' "${parts[@]}" | sort -rn | head -n 5 | sed 's/^/    /; s/ / s  /5'
    echo "Slowest units to build:"
    for preset in build/*/.ninja_log; do
        [ "$preset" -nt "$logs/begin" ] && awk -v preset="$(basename "$(dirname "$preset")")" \
            '$4 ~ /\.o$/ { printf "%.1f %s: %s\n", ($2 - $1) / 1000, preset, $4 }' "$preset"
    done | sort -rn | head -n 5 | sed 's/^/    /; s/ / s  /5'
    echo "Slowest test programs:"
    for preset in "$logs"/*-tests.log; do
        [ "$preset" -nt "$logs/begin" ] && sed -nE \
            "s/.*Test +#[0-9]+: ([^ ]+) .* ([0-9.]+) sec.*/\2 $(basename "$preset" -tests.log): \1/p" "$preset"
    done | sort -rn | head -n 5 | sed 's/^/    /; s/ / s  /5'
    echo
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
    if ! [[ " $usual $extra $alone " == *" $step "* ]]; then
        sed -n '2,/^set -u/s/^# \{0,1\}//p' "$0" >&2
        exit 1
    fi
done
for step in $steps; do
    needs "$step"
done
touch "$logs/begin"
case $steps in
*host* | *asan* | *arm* | *clang* | *aarch64* | *report*) one "test data" build gcc testData ;;
esac
for step in $steps; do
    start=$SECONDS
    processorTime
    before=$used
    "$step"
    processorTime
    printf '%-71s %5d s, %d s of processor time\n' "$step" $((SECONDS - start)) $((used - before))
done
slowest

echo "$passed passed, $failed failed"
[ "$failed" = 0 ]
