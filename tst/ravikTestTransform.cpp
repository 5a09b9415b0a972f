// TRNS and IPP: transposes, flips and rotations; tables and moments.
#include "groups.h"

#include <ravik/moments.h>
#include <ravik/statistics.h>
#include <ravik/transform.h>

using namespace arguments;

const FunctionGroup& transposeFunctions()
{
    static const FunctionGroup group{
        "raviktrns",
        "rvk",
        false,
        {
            RVK_TEST(rvkTransposeu8, src, width, height, stride, dst.transposed(), stride),
            RVK_TEST(rvkTransposeu16, src, width, height, stride, dst.transposed(), stride),
            RVK_TEST(rvkTransposef32, src, width, height, stride, dst.transposed(), stride),
            RVK_TEST(rvkTransposeRGB888u8, src.ofChannels(3), width, height, stride, dst.ofChannels(3).transposed(),
                     stride),
        }};
    return group;
}

namespace {

template <class T>
rvkStatus takeMoments(rvkStatus (*function)(const T*, uint32_t, uint32_t, uint32_t, uint32_t, rvkMoments*),
                      const T* picture, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t binary,
                      float32_t* moments)
{
    return function(picture, srcWidth, srcHeight, srcStride, binary, reinterpret_cast<rvkMoments*>(moments));
}

} // namespace

const FunctionGroup& flipFunctions()
{
    const Argument direction = oneOf({RAVIK_FLIP_HORIZONTAL, RAVIK_FLIP_VERTICAL, RAVIK_FLIP_BOTH}).refusing({0, 4});
    const Argument pairs = src.ofChannels(2), turnedDst = dst.ofChannels(2).transposed();
    const Argument quarter = oneOf({RAVIK_ROTATE_90}), half = oneOf({RAVIK_ROTATE_180}),
                   threeQuarters = oneOf({RAVIK_ROTATE_270});

    const Argument binary = oneOf({0, 1, 7}), moments = dst.ofSize(24);

    const Contract turned = Contract().refusingInPlace().onDsp({.alignment = 8, .widthMultiple = 8});
    const Contract turnedPairs = Contract().refusingInPlace().onDsp({.alignment = 8, .elementsPerPixel = 2});
    const Contract flippedBytes = turned.inPlace(), flippedPairs = turnedPairs.inPlace();
    const Contract flippedShorts = Contract().inPlace().onDsp({.alignment = 8});
    const Contract flippedColours = Contract().inPlace().onDsp({.alignment = 8, .elementsPerPixel = 3});

    static const FunctionGroup group{
        "ravikipp",
        "rvk",
        false,
        {
            RVK_TEST(rvkFlipu8, src, width, height, stride, dst, stride, direction).keeps(flippedBytes),
            RVK_TEST_AS("rvkFlipu8_in_place", "rvkFlipu8", rvkFlipu8, sameAs(4), width, height, stride, updated, stride,
                        direction)
                .keeps(flippedBytes),
            RVK_TEST(rvkFlipu16, src, width, height, stride, dst, stride, direction).keeps(flippedShorts),
            RVK_TEST_AS("rvkFlipu16_in_place", "rvkFlipu16", rvkFlipu16, sameAs(4), width, height, stride, updated,
                        stride, direction)
                .keeps(flippedShorts),
            RVK_TEST(rvkFlipRGB888u8, src.ofChannels(3), width, height, stride, dst.ofChannels(3), stride, direction)
                .keeps(flippedColours),
            RVK_TEST_AS("rvkFlipRGB888u8_in_place", "rvkFlipRGB888u8", rvkFlipRGB888u8, sameAs(4), width, height,
                        stride, updated.ofChannels(3), stride, direction)
                .keeps(flippedColours),
            RVK_TEST(rvkRotateImageu8, src, width, height, stride, dst.transposed(), stride, quarter).keeps(turned),
            RVK_TEST_AS("rvkRotateImageu8_180", "rvkRotateImageu8", rvkRotateImageu8, src, width, height, stride, dst,
                        stride, half)
                .keeps(flippedBytes),
            RVK_TEST_AS("rvkRotateImageu8_270", "rvkRotateImageu8", rvkRotateImageu8, src, width, height, stride,
                        dst.transposed(), stride, threeQuarters)
                .keeps(turned),
            RVK_TEST(rvkRotateImageInterleavedu8, pairs, width, height, stride, turnedDst, stride, quarter)
                .keeps(turnedPairs),
            RVK_TEST_AS("rvkRotateImageInterleavedu8_180", "rvkRotateImageInterleavedu8", rvkRotateImageInterleavedu8,
                        pairs, width, height, stride, dst.ofChannels(2), stride, half)
                .keeps(flippedPairs),
            RVK_TEST_AS("rvkRotateImageInterleavedu8_270", "rvkRotateImageInterleavedu8", rvkRotateImageInterleavedu8,
                        pairs, width, height, stride, turnedDst, stride, threeQuarters)
                .keeps(turnedPairs),
            RVK_TEST(rvkImageHistogramEqualizeu8, src, width, height, stride, dst, stride)
                .keeps(Contract().inPlace().upToPixels(UINT32_MAX).onDsp({.alignment = 8, .widthMultiple = 8})),
            RVK_TEST(rvkTableLookupu8, src, width, height, stride, src.ofSize(256), dst, stride).keeps(flippedBytes),
            RVK_TEST_ADAPTED("rvkImageMomentsu8", rvkImageMomentsu8, takeMoments<uint8_t>, src, width, height, stride,
                             binary, moments),
            RVK_TEST_ADAPTED("rvkImageMomentss32", rvkImageMomentss32, takeMoments<int32_t>, src, width, height, stride,
                             binary, moments),
            RVK_TEST_ADAPTED("rvkImageMomentsf32", rvkImageMomentsf32, takeMoments<float32_t>, src, width, height,
                             stride, binary, moments),
        }};
    return group;
}
