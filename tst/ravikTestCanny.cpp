// EDGE: Canny edges, edge pixels, line segments.
#include "groups.h"

#include <ravik/canny.h>
#include <ravik/hough.h>

// Segments are words.
static rvkStatus findSegments(decltype(&rvkImageDetectLineSegmentsu8) find, const uint8_t* src, uint32_t srcWidth,
                              uint32_t srcHeight, uint32_t srcStride, uint32_t threshold, float minLength,
                              float maxError, uint32_t* segments, uint32_t nSegmentsMax, uint32_t* nSegments)
{
    return find(src, srcWidth, srcHeight, srcStride, threshold, minLength, maxError,
                reinterpret_cast<rvkLineSegment*>(segments), nSegmentsMax, nSegments);
}

using namespace arguments;

const FunctionGroup& edgeFunctions()
{
    const Argument lowThreshold = oneOf({100, 0, 400, -250, 1000});
    const Argument highThreshold = oneOf({200, 0, 800, 700, INT32_MIN});
    const Argument apertureSize = windowSize({3, 5, 7}).refusing({4, 1, 9});
    const Argument normType = oneOf({RAVIK_CANNY_NORM_L1, RAVIK_CANNY_NORM_L2, 2});
    const Contract canny = Contract()
                               .windows(3)
                               .border(Border::replicated)
                               .refusingInPlace()
                               .upToPixels(UINT32_MAX / 4)
                               .onDsp({.alignment = 8, .leastHeight = 5});
    const Argument threshold = oneOf({100, 0, 40, 10, UINT32_MAX});
    const Argument minLength = oneOf({10, 0, 3.5, 2}).refusing({-1});
    const Argument maxError = oneOf({1, 0, 0.4, 1e6}).refusing({-0.5});
    const Contract detection = Contract().windows(3).border(Border::replicated).upToPixels(UINT32_MAX / 4);
    constexpr uint32_t mostPixels = 300, mostSegments = 60, wordsOfSegment = sizeof(rvkLineSegment) / sizeof(uint32_t);

    static const FunctionGroup group{
        "ravikedge",
        "rvk",
        false,
        {
            RVK_TEST(rvkFilterCanny3x3u8, src, width, height, dst, lowThreshold, highThreshold).keeps(canny),
            RVK_TEST_AS("rvkFilterCanny3x3u8_v2", "rvkFilterCanny3x3u8", rvkFilterCanny3x3u8_v2, src, width, height,
                        stride, dst, stride, lowThreshold, highThreshold)
                .keeps(canny),
            RVK_TEST(rvkFilterCanny3x3u8_v3, src, width, height, stride, dst, stride, lowThreshold, highThreshold)
                .keeps(canny),
            RVK_TEST(rvkFilterCannyu8, src, width, height, stride, apertureSize, lowThreshold, highThreshold, normType,
                     dst, stride, dst.orNull(), dst.orNull(), stride)
                .keeps(canny.ofSmallPictures()),
            RVK_TEST(rvkImageDetectEdgePixelsu8, src.natural(), width, height, stride, threshold, list(2 * mostPixels),
                     capacity(0, mostPixels), value, list(2 * mostPixels).orNull())
                .keeps(detection),
            RVK_TEST_ADAPTED("rvkImageDetectLineSegmentsu8", rvkImageDetectLineSegmentsu8, findSegments, src.natural(),
                             width, height, stride, threshold, minLength, maxError, list(mostSegments * wordsOfSegment),
                             capacity(0, mostSegments), value)
                .keeps(detection),
        }};
    return group;
}
