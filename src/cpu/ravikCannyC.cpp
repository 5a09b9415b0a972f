// C reference of the Canny edge detector.
#include "cpu/ravikCannyC.h"

#include "cpu/ravikGradientC.h"
#include "cpu/thinning.h"
#include "functions.h"
#include "scratch.h"

#include <algorithm>
#include <cstdlib>

namespace rvk {

CannyThresholds cannyThresholds(int32_t low, int32_t high, uint32_t apertureSize, bool squared)
{
    constexpr int64_t largest = 32767;
    const uint32_t scale = apertureSize == 7 ? kScaleOf7x7 : 1;
    const auto capped = [=](int64_t threshold) {
        const auto size = static_cast<uint32_t>(std::min(std::abs(threshold), largest));
        return squared ? size * size / (scale * scale) : size / scale;
    };
    const auto [least, most] = std::minmax({capped(low), capped(high)});
    return {least, most};
}

namespace {

// ---- hysteresis ----------------------------------------------------------------------------------------------------

// What the map says of a pixel. It has a ring of kNothing around the picture.
enum : uint8_t { kNothing, kCandidate, kEdge };

// Edges by their places in the map, whose neighbours have not been looked at yet. No pixel comes twice.
struct Stack
{
    uint32_t* places;
    size_t count = 0;

    void markEdge(uint8_t* map, size_t place)
    {
        map[place] = kEdge;
        places[count++] = static_cast<uint32_t>(place);
    }
};

void track(uint8_t* map, size_t pitch, Stack& stack)
{
    while (stack.count > 0) {
        const size_t place = stack.places[--stack.count];
        for (const size_t row : {place - pitch, place, place + pitch})
            for (size_t neighbour = row - 1; neighbour <= row + 1; ++neighbour)
                if (map[neighbour] == kCandidate)
                    stack.markEdge(map, neighbour);
    }
}

// `fillGradient` fills dx and dy, once there is memory for the rest.
template <class FillGradient>
rvkStatus canny(uint32_t width, uint32_t height, CannyThresholds thresholds, bool squared, Plane<uint8_t> dst,
                Plane<int16_t> dx, Plane<int16_t> dy, FillGradient fillGradient)
{
    const size_t pitch = size_t{width} + 2; // of the map: the pixels of a row between two that are nothing
    const Scratch<uint32_t> magnitudes(kRowsOfThinning, pitch), places(height, width);
    const Scratch<uint8_t> map(uint64_t{height} + 2, pitch);
    if (!magnitudes || !places || !map)
        return RAVIK_ENORES;

    fillGradient();
    std::fill_n(map.get(), pitch * (size_t{height} + 2), uint8_t{kNothing});
    Stack stack{places.get()};
    forEachRidge(width, height, Plane<const int16_t>{dx.data, dx.stride}, Plane<const int16_t>{dy.data, dy.stride},
                 squared, thresholds.low, magnitudes.get(), [&](size_t x, size_t y, uint32_t magnitude) {
                     const size_t place = (y + 1) * pitch + x + 1;
                     if (magnitude > thresholds.high)
                         stack.markEdge(map.get(), place);
                     else
                         map[place] = kCandidate;
                 });
    track(map.get(), pitch, stack);
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            dst.row(y)[x] = map[(y + 1) * pitch + x + 1] == kEdge ? 255 : 0;
    return RAVIK_SUCCESS;
}

} // namespace

rvkStatus rvkFilterCanny3x3u8_v3C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride, int32_t lowThreshold, int32_t highThreshold)
{
    return rvkFilterCannyu8C(src, srcWidth, srcHeight, srcStride, 3, lowThreshold, highThreshold, RAVIK_CANNY_NORM_L1,
                             dst, dstStride, nullptr, nullptr, srcWidth * 2);
}

rvkStatus rvkFilterCannyu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            uint32_t apertureSize, int32_t lowThreshold, int32_t highThreshold, uint32_t normType,
                            uint8_t* dst, uint32_t dstStride, int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    if (apertureSize != 3 && apertureSize != 5 && apertureSize != 7)
        return RAVIK_EBADPARAM;
    const bool squared = normType == RAVIK_CANNY_NORM_L2;
    const CannyThresholds thresholds = cannyThresholds(lowThreshold, highThreshold, apertureSize, squared);
    const Scratch<int16_t> ownDx(srcHeight, srcWidth), ownDy(srcHeight, srcWidth);
    if (!ownDx || !ownDy)
        return RAVIK_ENORES;
    const Plane out = {dst, dstStride};
    const Plane scratchDx = {ownDx.get(), srcWidth * 2}, scratchDy = {ownDy.get(), srcWidth * 2};
    const auto fill = [=](auto sobel, Plane<int16_t> h, Plane<int16_t> v) {
        sobel(src, srcWidth, srcHeight, srcStride, h.data, nullptr, h.stride, RAVIK_BORDER_REPLICATE, 0);
        sobel(src, srcWidth, srcHeight, srcStride, nullptr, v.data, v.stride, RAVIK_BORDER_REPLICATE, 0);
    };
    if (apertureSize == 7)
        return canny(srcWidth, srcHeight, thresholds, squared, out, scratchDx, scratchDy, [=] {
            fill(rvkFilterSobel7x7u8s16C, {dx, dxyStride}, {dy, dxyStride});
            sobel7x7Sixteenths(srcWidth, srcHeight, {src, srcStride}, scratchDx, scratchDy);
        });
    const Plane h = dx ? Plane{dx, dxyStride} : scratchDx, v = dy ? Plane{dy, dxyStride} : scratchDy;
    return canny(srcWidth, srcHeight, thresholds, squared, out, h, v,
                 [=] { fill(apertureSize == 3 ? rvkFilterSobel3x3u8s16C : rvkFilterSobel5x5u8s16C, h, v); });
}

} // namespace rvk

#include "forms/ravikCannyForms.h"
