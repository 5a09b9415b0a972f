// Flood fill, which includes making the picture anew for each call, and region growing.
#include "bench.h"

#include <ravik/region.h>

#include <cstring>

namespace {

using namespace bench;

// One value everywhere, from the middle.
u8* blank(const Picture& p)
{
    return static_cast<u8*>(memset(p.out<u8>(), 7, size_t{p.width} * p.height));
}

// What is about as bright as the middle.
u8* copied(const Picture& p)
{
    return static_cast<u8*>(memcpy(p.out<u8>(), p.in<u8>(), size_t{p.width} * p.height));
}
constexpr u8 kDifference = 60;

void fillMerged(const Picture& p)
{
    const u32 seed[] = {p.width / 2, p.height / 2};
    rvkConnectedComponent component;
    rvkFloodfillMergedu8(copied(p), p.width, p.height, 0, seed, 1, kDifference, kDifference, 255, 4, &component);
}

// A grey picture as one of colours: three values in a row make a pixel.
Picture wide(const Picture& p)
{
    return {3 * p.width, p.height, p.content};
}

void growByColor(const Picture& p, u32 connectivity)
{
    u32 count;
    rvkImageSegmentationRegionGrow(wide(p).in<u8>(), p.width, p.height, 0, 6, 20, connectivity, p.out<u32>(), 0,
                                   reinterpret_cast<rvkRegion*>(p.out<s32>(1)), 1000, &count);
}

void growFromSeeds(const Picture& p)
{
    constexpr u32 across = 8, down = 6;
    u32 seeds[2 * across * down], *next = seeds;
    for (u32 y = 0; y < down; ++y)
        for (u32 x = 0; x < across; ++x) {
            *next++ = (2 * x + 1) * p.width / (2 * across);
            *next++ = (2 * y + 1) * p.height / (2 * down);
        }
    rvkImageSegmentationSeedRegionGrows16(p.in<s16>(), p.width, p.height, 0, seeds, across * down, 4000, 4,
                                          p.out<u32>(), 0);
}

constexpr Row kRows[] = {
    {"rvkFloodfillSimpleu8", nullptr, trafficOnNatural(1, 1),
     RAVIK(rvkConnectedComponent c;
           rvkFloodfillSimpleu8(blank(p), p.width, p.height, 0, p.width / 2, p.height / 2, 9, 4, &c)),
     OPENCV(cv::Rect bounds; blank(p); cv::Mat picture = p.matOut<u8>(); cv::floodFill(
                picture, cv::Point(static_cast<int>(p.width / 2), static_cast<int>(p.height / 2)), 9, &bounds))},
    {"rvkFloodfillMergedu8", nullptr, trafficOnNatural(1, 1), RAVIK(fillMerged(p)),
     OPENCV(cv::Rect bounds; copied(p); cv::Mat picture = p.matOut<u8>();
            cv::floodFill(picture, cv::Point(static_cast<int>(p.width / 2), static_cast<int>(p.height / 2)), 255,
                          &bounds, kDifference, kDifference, 4 | cv::FLOODFILL_FIXED_RANGE))},
    // No other library has these.
    {"rvkImageSegmentationRegionGrow, 4", nullptr, trafficOnNatural(3, 4), RAVIK(growByColor(p, 4))},
    {"rvkImageSegmentationRegionGrow, 8", nullptr, trafficOnNatural(3, 4), RAVIK(growByColor(p, 8))},
    {"rvkImageSegmentationSeedRegionGrows16", nullptr, trafficOnNatural(2, 4), RAVIK(growFromSeeds(p))},
};
const Rows registered(kRows);

} // namespace
