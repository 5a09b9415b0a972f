// HOUGHLINE and HOUGHCIRCLE: Hough transforms. Lists of structures are words.
#include "groups.h"

#include <ravik/hough.h>

namespace {

rvkStatus findLines(decltype(&rvkHoughLineu8) find, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                    uint32_t srcStride, uint32_t nAngles, float rhoStep, uint32_t threshold, uint32_t* lines,
                    uint32_t nLinesMax, uint32_t* nLines)
{
    return find(src, srcWidth, srcHeight, srcStride, nAngles, rhoStep, threshold, reinterpret_cast<rvkLine*>(lines),
                nLinesMax, nLines);
}

rvkStatus findCircles(decltype(&rvkHoughCircleu8) find, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                      uint32_t srcStride, uint32_t edgeThreshold, uint32_t minRadius, uint32_t maxRadius,
                      uint32_t centerThreshold, uint32_t minDistance, uint32_t* circles, uint32_t nCirclesMax,
                      uint32_t* nCircles)
{
    return find(src, srcWidth, srcHeight, srcStride, edgeThreshold, minRadius, maxRadius, centerThreshold, minDistance,
                reinterpret_cast<rvkCircle*>(circles), nCirclesMax, nCircles);
}

constexpr uint32_t kMostFound = 50;

} // namespace

using namespace arguments;

const FunctionGroup& houghLineFunctions()
{
    const Argument nAngles = oneOf({180, 1, 2, 3, 37}).refusing({0}).limited();
    const Argument rhoStep = oneOf({1, 0.5, 0.7, 3}).refusing({0, -1, 0.49});
    const Argument threshold = oneOf({20, 1, 2, 5, UINT32_MAX}).refusing({0});
    const Argument lines = list(kMostFound * sizeof(rvkLine) / sizeof(uint32_t));

    static const FunctionGroup group{
        "ravikhoughline",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkHoughLine", rvkHoughLineu8, findLines, mask, width, height, stride, nAngles, rhoStep,
                             threshold, lines, capacity(0, kMostFound), value)
                .keeps(Contract().upToPixels(16384 * 16384)),
        }};
    return group;
}

const FunctionGroup& houghCircleFunctions()
{
    const Argument edgeThreshold = oneOf({100, 1, 40, 500}).refusing({0, 32768, UINT32_MAX});
    const Argument minRadius = oneOf({8, 1, 3}).refusing({0});
    const Argument maxRadius = oneOf({50, 8, 20, UINT32_MAX}).refusing({0});
    const Argument centerThreshold = oneOf({30, 1, 4, UINT32_MAX}).refusing({0});
    const Argument minDistance = oneOf({20, 0, 3, UINT32_MAX});
    const Argument circles = list(kMostFound * sizeof(rvkCircle) / sizeof(uint32_t));

    static const FunctionGroup group{
        "ravikhoughcircle",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkHoughCircle", rvkHoughCircleu8, findCircles, src.natural(), width, height, stride,
                             edgeThreshold, minRadius, maxRadius, centerThreshold, minDistance, circles,
                             capacity(0, kMostFound), value)
                .keeps(Contract().upToPixels(UINT32_MAX / 4)),
        }};
    return group;
}
