// IIMG and IIMGYUV: integral images.
#include "groups.h"

#include <ravik/integral.h>

using namespace arguments;

namespace {

// The same with each image before its stride.
void integrateBoth(decltype(rvkIntegrateImageu8u64)* function, const uint8_t* src, uint32_t width, uint32_t height,
                   uint32_t srcStride, uint32_t* sums, uint32_t sumsStride, uint64_t* squares, uint32_t squaresStride)
{
    function(src, width, height, srcStride, sums, squares, sumsStride, squaresStride);
}

void integratePlanes(decltype(rvkIntegrateImageYCbCr420PseudoPlanaru8)* function, const uint8_t* y, uint32_t width,
                     uint32_t height, uint32_t yStride, const uint8_t* c, uint32_t cStride, uint32_t* ofY,
                     uint32_t ofYStride, uint32_t* ofCb, uint32_t ofCbStride, uint32_t* ofCr, uint32_t ofCrStride)
{
    function(y, c, width, height, yStride, cStride, ofY, ofCb, ofCr, ofYStride, ofCbStride, ofCrStride);
}

void integrateForeground(decltype(rvkFindForegroundIntegrateImageYCbCr420u32)* function, const uint8_t* y,
                         uint32_t width, uint32_t height, uint32_t yStride, const uint8_t* c, uint32_t cStride,
                         uint8_t backgroundY, uint8_t backgroundCb, uint8_t backgroundCr, uint32_t threshold,
                         uint32_t* dst, uint32_t dstStride)
{
    function(y, c, width, height, yStride, cStride, backgroundY, backgroundCb, backgroundCr, threshold, dst, dstStride);
}

} // namespace

const FunctionGroup& integralFunctions()
{
    const Contract onDsp = Contract().onDsp({.alignment = 8});
    const Argument entries = dst.withOneMore(), ofPatch = dst.ofRectangleWithOneMore();

    static const FunctionGroup group{
        "ravikiimg",
        "rvk",
        false,
        {
            RVK_TEST(rvkIntegrateImageu8, src, width, height, entries).keeps(onDsp),
            RVK_TEST_AS("rvkIntegrateImageu8_v2", "rvkIntegrateImageu8", rvkIntegrateImageu8_v2, src, width, height,
                        stride, entries, stride)
                .keeps(onDsp),
            RVK_TEST_ADAPTED("rvkIntegrateImageu8u64", rvkIntegrateImageu8u64, integrateBoth, src, width, height,
                             stride, dst, stride, dst, stride),
            RVK_TEST(rvkIntegratePatchu8, src, stride, left, top, rectangleWidth, rectangleHeight, ofPatch, ofPatch),
            RVK_TEST(rvkIntegratePatchu8_v3, src, width, height, stride, left, top, rectangleWidth, rectangleHeight,
                     ofPatch, stride, ofPatch, stride),
            RVK_TEST(rvkIntegratePatch12x12u8, src, width, height, stride, left.spanning(12), top.spanning(12),
                     dst.ofSize(13 * 13), dst.ofSize(13 * 13))
                .keeps(Contract().atLeast(12, 12)),
            RVK_TEST(rvkIntegratePatch18x18u8, src, width, height, stride, left.spanning(18), top.spanning(18),
                     dst.ofSize(19 * 19), dst.ofSize(19 * 19))
                .keeps(Contract().atLeast(18, 18)),
            RVK_TEST(rvkTiltedIntegralu8s32, src, width, height, stride, entries, stride),
            RVK_TEST(rvkIntegrateImageLineu8, src, area, dst),
            RVK_TEST(rvkIntegrateImageLine64u8, src.ofSize(64), dst.ofSize(64)),
        }};
    return group;
}

const FunctionGroup& integralYuvFunctions()
{
    const Argument pairs = src.ofChannels(2).sampled(1, 1);
    const Argument threshold = oneOf({60, 0, 1, 254, 255, 300, 764, 765, UINT32_MAX});

    static const FunctionGroup group{
        "ravikiimgyuv",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkIntegrateImageYCbCr420PseudoPlanaru8", rvkIntegrateImageYCbCr420PseudoPlanaru8,
                             integratePlanes, src, width, height, stride, pairs, stride, dst, stride, dst.halved(),
                             stride, dst.halved(), stride)
                .keeps(Contract().atLeast(2, 2)),
            RVK_TEST_ADAPTED("rvkFindForegroundIntegrateImageYCbCr420u32", rvkFindForegroundIntegrateImageYCbCr420u32,
                             integrateForeground, src, width, height, stride, pairs, stride, any, any, any, threshold,
                             dst, stride),
        }};
    return group;
}
