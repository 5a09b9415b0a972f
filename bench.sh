#!/usr/bin/env bash
# Speed beside the other libraries.
#
#   ./bench.sh [FILTER]        every function whose name contains FILTER, in times of a memcpy of the same bytes
#   ./bench.sh --arm [FILTER]  executed instructions per pixel on 32-bit Arm, counted under emulation
#
# VENDOR_RUNTIME_RAVIK_VECTA=sse42|avx2|avx512 caps the instruction set.
set -u
. "$(dirname "$0")/tools/setup.sh"

needBuildTools
if [ "${1-}" = --arm ]; then
    shift
    needArm
    build arm-bench ravikBench || exit 1
    plugin=$root/build/countInstructions.so
    gcc -shared -fPIC -fvisibility=hidden -O2 -Wall -Wextra -o "$plugin" "$root/tools/countInstructions.c" || exit 1
    count=$(mktemp) || exit 1
    trap 'rm -f "$count"' EXIT
    qemu-arm -L /usr/arm-linux-gnueabihf -plugin "$plugin,count=$count" \
        "$root/build/arm-bench/bench/ravikBench" --arm "$count" "$@"
else
    needOpenCv
    need /usr/include/libyuv.h:libyuv-dev
    build release ravikBench || exit 1
    "$root/build/release/bench/ravikBench" "$@"
fi
