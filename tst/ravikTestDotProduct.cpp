// DOT: dot products.
#include "groups.h"

#include <ravik/dotproduct.h>

using namespace arguments;

const FunctionGroup& dotProductFunctions()
{
    const Argument v36 = src.ofSize(36), v64 = src.ofSize(64), v128 = src.ofSize(128);
    const Argument factor = between(-2, 2), factors = src.ofSize(4), dots = dst.ofSize(4);
    constexpr uint32_t shortCalls = 1000; // a descriptor takes nanoseconds

    static const FunctionGroup group{
        "ravikdot",
        "rvk",
        false,
        {
            RVK_TEST(rvkDotProduct36x1s8, v36, v36).returningNumber().repeated(shortCalls),
            RVK_TEST(rvkDotProduct36x4s8, v36, v36, v36, v36, v36, dots).repeated(shortCalls),
            RVK_TEST(rvkDotProductNorm36x4s8, v36, factor, v36, v36, v36, v36, factors, dots).repeated(shortCalls),
            RVK_TEST(rvkDotProduct36x1u8, v36, v36).repeated(shortCalls),
            RVK_TEST(rvkDotProduct36x4u8, v36, v36, v36, v36, v36, dots).repeated(shortCalls),
            RVK_TEST(rvkDotProductNorm36x4u8, v36, factor, v36, v36, v36, v36, factors, dots).repeated(shortCalls),
            RVK_TEST(rvkDotProduct64x1s8, v64, v64).returningNumber().repeated(shortCalls),
            RVK_TEST(rvkDotProduct64x4s8, v64, v64, v64, v64, v64, dots).repeated(shortCalls),
            RVK_TEST(rvkDotProductNorm64x4s8, v64, factor, v64, v64, v64, v64, factors, dots).repeated(shortCalls),
            RVK_TEST(rvkDotProduct64x1u8, v64, v64).repeated(shortCalls),
            RVK_TEST(rvkDotProduct64x4u8, v64, v64, v64, v64, v64, dots).repeated(shortCalls),
            RVK_TEST(rvkDotProductNorm64x4u8, v64, factor, v64, v64, v64, v64, factors, dots).repeated(shortCalls),
            RVK_TEST(rvkDotProduct128x1s8, v128, v128).returningNumber().repeated(shortCalls),
            RVK_TEST(rvkDotProduct128x4s8, v128, v128, v128, v128, v128, dots).repeated(shortCalls),
            RVK_TEST(rvkDotProductNorm128x4s8, v128, factor, v128, v128, v128, v128, factors, dots)
                .repeated(shortCalls),
            RVK_TEST(rvkDotProduct128x1u8, v128, v128).repeated(shortCalls),
            RVK_TEST(rvkDotProduct128x4u8, v128, v128, v128, v128, v128, dots).repeated(shortCalls),
            RVK_TEST(rvkDotProductNorm128x4u8, v128, factor, v128, v128, v128, v128, factors, dots)
                .repeated(shortCalls),
            RVK_TEST(rvkDotProduct8x8u8, v64, v64).repeated(shortCalls),
            RVK_TEST(rvkDotProduct11x12u8, src.ofSize(132), src.ofSize(132)).repeated(shortCalls),
            RVK_TEST(rvkDotProducts8, src, src, area).returningNumber(),
            RVK_TEST(rvkDotProductu8, src, src, area),
        }};
    return group;
}
