// DOT: dot and cross products.
#include "groups.h"

#include <ravik/dotproduct.h>
#include <ravik/linearalgebra.h>

#include <algorithm>
#include <cstring>

using namespace arguments;

namespace {

uint32_t bitsOfDotProduct(decltype(rvkDotProductf32)* function, const float* a, const float* b, uint32_t length)
{
    const float product = function(a, b, length);
    uint32_t bits;
    memcpy(&bits, &product, sizeof bits);
    return bits;
}

// The same with each picture before its stride.
template <class T, class D>
rvkStatus multiplyBlocks(rvkStatus (*function)(const T*, const T*, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t,
                                               uint32_t, D*, uint32_t),
                         const T* src1, uint32_t src1Stride, const T* src2, uint32_t src2Stride, uint32_t srcWidth,
                         uint32_t srcHeight, uint32_t blockWidth, uint32_t blockHeight, D* dst, uint32_t dstStride)
{
    return function(src1, src2, srcWidth, srcHeight, src1Stride, src2Stride, blockWidth, blockHeight, dst, dstStride);
}

} // namespace

const FunctionGroup& dotProductFunctions()
{
    const Argument v36 = src.ofSize(36), v64 = src.ofSize(64), v128 = src.ofSize(128);
    const Argument factor = between(-2, 2), factors = src.ofSize(4), dots = dst.ofSize(4);
    constexpr uint32_t shortCalls = 1000; // a descriptor takes nanoseconds
    const Argument blockWidth = windowWidth({8, 3, 1, 40}).refusing({0}),
                   blockHeight = windowHeight({8, 2, 1, 5}).refusing({0});
    const Argument perBlock = dst.measuring(
        {[](const CaseSizes& s) {
             const auto blocks = [](uint64_t pixels, uint32_t ofBlock) {
                 return (pixels + ofBlock - 1) / std::max(ofBlock, 1u);
             };
             return ImageSize{blocks(s.picture.columns, s.window.width), blocks(s.picture.rows, s.window.height)};
         },
         "per block"});
    const Argument whole = src.within({{-8, 8}}).whole(); // the same sum in any order
    const Contract ofBlocks = Contract().ofSmallPictures();

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
            RVK_TEST_ADAPTED("rvkDotProductf32", rvkDotProductf32, bitsOfDotProduct, whole, whole, area),
            RVK_TEST(rvkCrossProduct3x1f32, src.ofSize(3), src.ofSize(3), dst.ofSize(3)).repeated(shortCalls),
            RVK_TEST_ADAPTED("rvkBlockDotProductu8", rvkBlockDotProductu8, (multiplyBlocks<uint8_t, uint32_t>), src,
                             stride, src, stride, width, height, blockWidth, blockHeight, perBlock, stride)
                .keeps(ofBlocks),
            RVK_TEST_ADAPTED("rvkBlockDotProductf32", rvkBlockDotProductf32, (multiplyBlocks<float, float>), src,
                             stride, src, stride, width, height, blockWidth, blockHeight, perBlock, stride)
                .keeps(ofBlocks),
        }};
    return group;
}
