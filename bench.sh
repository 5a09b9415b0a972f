#!/usr/bin/env bash
# Speed beside the other libraries.
#
#   ./bench.sh [FILTER]            every function whose name contains FILTER, in times of a memcpy of the same bytes;
#                                  then there is a page to look at, build/bench.html
#   ./bench.sh --arm [FILTER]      executed instructions per pixel on 32-bit Arm, counted under emulation
#   ./bench.sh --aarch64 [FILTER]  the same on AArch64
#
# Instructions are counted of what g++ and clang make; with --gcc or --clang before the filter, of what this one makes.
# VENDOR_RUNTIME_RAVIK_VECTA=sse42|avx2|avx512 caps the instruction set.
set -u
. "$(dirname "$0")/tools/setup.sh"

count() # PRESET [ARGUMENTS...]: runs a preset's program under the emulator, its instructions are counted
{
    local program=$root/build/$1/bench/ravikBench counts=$work/counts
    shift
    $emulator -plugin "$work/plugin.so,count=$counts" "$program" --count "$counts" "$@"
}

countInstructions() # PRESET [--gcc | --clang] [FILTER]
{
    local preset=$1
    shift
    gcc -shared -fPIC -fvisibility=hidden -O2 -Wall -Wextra -o "$work/plugin.so" "$root/tools/countInstructions.c" || return
    case ${1-} in
    --gcc)
        shift
        build "$preset" ravikBench && count "$preset" "$@"
        ;;
    --clang)
        shift
        build "$preset-clang" ravikBench && count "$preset-clang" "$@"
        ;;
    *)
        build "$preset-clang" ravikBench && build "$preset" ravikBench &&
            count "$preset-clang" --save "$work/clang" "$@" && count "$preset" --beside "$work/clang" "$@"
        ;;
    esac
}

main()
{
    needBuildTools
    case ${1-} in
    --arm)
        shift
        needArm
        need clang++-14:clang-14
        emulator="qemu-arm -L /usr/arm-linux-gnueabihf" countInstructions arm-bench "$@"
        ;;
    --aarch64)
        shift
        needAarch64
        need clang++-14:clang-14
        emulator="qemu-aarch64 -L /usr/aarch64-linux-gnu" countInstructions aarch64-bench "$@"
        ;;
    *)
        needOpenCv
        need /usr/include/libyuv.h:libyuv-dev
        needReport
        local rows=$root/build/bench.out status
        build release ravikBench || return
        "$root/build/release/bench/ravikBench" "$@" | tee "$rows"
        status=${PIPESTATUS[0]}
        "$root/tools/report" --machine --options "$*" -o "$root/build/bench.html" "$rows"
        return "$status"
        ;;
    esac
}

work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT
main "$@"
exit
