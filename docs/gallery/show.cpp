#include "show.h"

#include "colours.h"
#include "scene.h"

#include <ravik/canny.h>
#include <ravik/color.h>
#include <ravik/fast.h>
#include <ravik/region.h>

#include <cstdlib>

namespace {

constexpr uint32_t kWidth = 220, kHeight = 165, kPixels = kWidth * kHeight;

void require(rvkStatus status)
{
    if (status != RAVIK_SUCCESS)
        abort();
}

template <class ColourOf>
Picture painted(ColourOf colourOf)
{
    Picture picture(kWidth, kHeight);
    for (uint32_t y = 0; y < kHeight; y++)
        for (uint32_t x = 0; x < kWidth; x++)
            picture.at(x, y) = colourOf(y * kWidth + x);
    return picture;
}

Picture edgesOf(const std::vector<uint8_t>& grey)
{
    std::vector<uint8_t> edges(kPixels);
    std::vector<int16_t> dx(kPixels), dy(kPixels);
    require(rvkFilterCannyu8(grey.data(), kWidth, kHeight, 0, 3, 40, 100, RAVIK_CANNY_NORM_L2, edges.data(), 0,
                             dx.data(), dy.data(), 0));
    return painted([&](uint32_t i) { return Colour{edges[i], edges[i], edges[i]}; });
}

Picture cornersOf(const std::vector<uint8_t>& grey)
{
    constexpr uint32_t kMost = 5000;
    std::vector<uint32_t> xy(2 * kMost), scratch(3 * kMost + kHeight + 1);
    std::vector<uint32_t> scores(kMost);
    uint32_t count = 0;
    rvkCornerFast9Scoreu8_v2(grey.data(), kWidth, kHeight, 0, 18, 4, xy.data(), scores.data(), kMost, &count, 1,
                             scratch.data());
    Picture picture = painted([&](uint32_t i) { return Colour{grey[i], grey[i], grey[i]}; });
    for (uint32_t k = 0; k < count; k++)
        for (int32_t d = -3; d <= 3; d++) {
            picture.at(xy[2 * k] + static_cast<uint32_t>(d), xy[2 * k + 1]) = {255, 70, 40};
            picture.at(xy[2 * k], xy[2 * k + 1] + static_cast<uint32_t>(d)) = {255, 70, 40};
        }
    return picture;
}

Picture regionsOf(const Picture& scene)
{
    std::vector<uint32_t> labels(kPixels);
    uint32_t count = 0;
    require(rvkImageSegmentationRegionGrow(&scene.data()->red, kWidth, kHeight, 0, 14, 30, 4, labels.data(), 0, nullptr,
                                           0, &count));
    return painted([&](uint32_t i) { return colourOfLabel(labels[i]); });
}

} // namespace

Picture drawShow()
{
    const Picture scene = drawScene(kWidth, kHeight);
    std::vector<uint8_t> grey(kPixels);
    rvkColorRGB888ToGrayu8(&scene.data()->red, kWidth, kHeight, 0, grey.data(), 0);
    return rowOf({}, {scene, edgesOf(grey), cornersOf(grey), regionsOf(scene)});
}
