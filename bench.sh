#!/usr/bin/env bash
# Speed beside the other libraries.
#
#   ./bench.sh [FILTER]            every function whose name contains FILTER, in times of a memcpy of the same bytes
#   ./bench.sh --arm [FILTER]      executed instructions per pixel on 32-bit Arm, counted under emulation
#   ./bench.sh --aarch64 [FILTER]  the same on AArch64
#
# VENDOR_RUNTIME_RAVIK_VECTA=sse42|avx2|avx512 caps the instruction set.
set -u
. "$(dirname "$0")/tools/setup.sh"

countInstructions() # PRESET EMULATOR LIBRARIES [FILTER]
{
    local preset=$1 emulator=$2 libraries=$3 plugin=$root/build/countInstructions.so count status
    shift 3
    build "$preset" ravikBench || return
    gcc -shared -fPIC -fvisibility=hidden -O2 -Wall -Wextra -o "$plugin" "$root/tools/countInstructions.c" || return
    count=$(mktemp) || return
    "$emulator" -L "$libraries" -plugin "$plugin,count=$count" \
        "$root/build/$preset/bench/ravikBench" --count "$count" "$@"
    status=$?
    rm -f "$count"
    return $status
}

needBuildTools
case ${1-} in
--arm)
    shift
    needArm
    countInstructions arm-bench qemu-arm /usr/arm-linux-gnueabihf "$@"
    ;;
--aarch64)
    shift
    needAarch64
    countInstructions aarch64-bench qemu-aarch64 /usr/aarch64-linux-gnu "$@"
    ;;
*)
    needOpenCv
    need /usr/include/libyuv.h:libyuv-dev
    build release ravikBench || exit 1
    "$root/build/release/bench/ravikBench" "$@"
    ;;
esac
