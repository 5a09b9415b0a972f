// BITCNT: bit counts and Hamming distances.
#include "groups.h"

#include <ravik/bitcount.h>

using namespace arguments;

const FunctionGroup& bitCountFunctions()
{
    const Argument v32 = src.ofSize(32), v64 = src.ofSize(64);
    const Argument v32a4 = v32.alignedTo(4), v64a4 = v64.alignedTo(4);
    const Argument counts = dst.ofSize(4);
    constexpr uint32_t shortCalls = 1000; // a vector takes nanoseconds

    static const FunctionGroup group{
        "ravikbitcnt",
        "rvk",
        false,
        {
            RVK_TEST(rvkBitCountu8, src, area),
            RVK_TEST(rvkBitCount32x1u8, v32).repeated(shortCalls),
            RVK_TEST(rvkBitCount32x4u8, v32, v32, v32, v32, counts).repeated(shortCalls),
            RVK_TEST(rvkBitCount64x1u8, v64).repeated(shortCalls),
            RVK_TEST(rvkBitCount64x4u8, v64, v64, v64, v64, counts).repeated(shortCalls),
            RVK_TEST(rvkBitCountu32, src, area),
            RVK_TEST(rvkHammingDistanceu8, src, src, area),
            RVK_TEST(rvkHammingDistance32x1u8a4, v32a4, v32a4).repeated(shortCalls),
            RVK_TEST(rvkHammingDistance64x1u8a4, v64a4, v64a4).repeated(shortCalls),
            RVK_TEST(rvkHammingDistance32x1u8, v32, v32).repeated(shortCalls),
            RVK_TEST(rvkHammingDistance64x1u8, v64, v64).repeated(shortCalls),
            RVK_TEST(rvkHammingDistance32x4u8a4, v32a4, v32a4, v32a4, v32a4, v32a4, counts).repeated(shortCalls),
            RVK_TEST(rvkHammingDistance64x4u8a4, v64a4, v64a4, v64a4, v64a4, v64a4, counts).repeated(shortCalls),
            RVK_TEST(rvkHammingDistance64x4u8, v64, v64, v64, v64, v64, counts).repeated(shortCalls),
        }};
    return group;
}
