// Maximally stable extremal regions: the public functions, and the internal operation.
#include "cpu/ravikMserC.h"
#include "dispatch.h"

#include <ravik/frame.h>

using namespace rvk;

namespace {

// Places and areas in the working memory have 32 bits, and so have the sizes of its parts.
bool pixelsFit(uint32_t width, uint32_t height)
{
    return uint64_t{width} * height <= UINT32_MAX / 4;
}

// False for what is not a number, too.
bool areValid(const MserParameters& p)
{
    return p.delta >= 1 && p.delta <= 255 && p.minArea >= 1 && p.minArea <= p.maxArea && p.maxVariation >= 0 &&
           p.minDiversity >= 0 && p.minDiversity <= 1;
}

bool isPicture(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride)
{
    return src && width && height && stride >= width && pixelsFit(width, height);
}

bool fitsHandle(const void* handle, uint32_t width, uint32_t height)
{
    const auto* const header = static_cast<const MserHandle*>(handle);
    return header && width <= header->maxWidth && height <= header->maxHeight;
}

} // namespace

// ---- packed rows ---------------------------------------------------------------------------------

uint32_t rvkMseru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t delta, uint32_t minArea,
                   uint32_t maxArea, float32_t maxVariation, float32_t minDiversity, rvkRectangle* bounds,
                   uint32_t* areas, uint32_t nRegionsMax, uint32_t* nRegions, uint32_t* pixels, uint32_t nPixelsMax)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkMseru8);
    if (!(isPicture(src, srcWidth, srcHeight, srcWidth) &&
          areValid({delta, minArea, maxArea, maxVariation, minDiversity}) && bounds && areas && nRegions))
        return 0;
    return implementation<Slot::rvkMseru8>(target)(src, srcWidth, srcHeight, delta, minArea, maxArea, maxVariation,
                                                   minDiversity, bounds, areas, nRegionsMax, nRegions, pixels,
                                                   nPixelsMax);
}

uint32_t rvkMserExtu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t delta, uint32_t minArea,
                      uint32_t maxArea, float32_t maxVariation, float32_t minDiversity, rvkMserRegion* regions,
                      uint32_t nRegionsMax, uint32_t* nRegions, uint32_t* pixels, uint32_t nPixelsMax)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkMserExtu8);
    if (!(isPicture(src, srcWidth, srcHeight, srcWidth) &&
          areValid({delta, minArea, maxArea, maxVariation, minDiversity}) && regions && nRegions))
        return 0;
    return implementation<Slot::rvkMserExtu8>(target)(src, srcWidth, srcHeight, delta, minArea, maxArea, maxVariation,
                                                      minDiversity, regions, nRegionsMax, nRegions, pixels, nPixelsMax);
}

// ---- with a stride -------------------------------------------------------------------------------

uint32_t rvkMseru8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t delta,
                      uint32_t minArea, uint32_t maxArea, float32_t maxVariation, float32_t minDiversity,
                      rvkRectangle* bounds, uint32_t* areas, uint32_t nRegionsMax, uint32_t* nRegions, uint32_t* pixels,
                      uint32_t nPixelsMax)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkMseru8_v2);
    if (!(isPicture(src, srcWidth, srcHeight, srcStride) &&
          areValid({delta, minArea, maxArea, maxVariation, minDiversity}) && bounds && areas && nRegions))
        return 0;
    return implementation<Slot::rvkMseru8_v2>(target)(src, srcWidth, srcHeight, srcStride, delta, minArea, maxArea,
                                                      maxVariation, minDiversity, bounds, areas, nRegionsMax, nRegions,
                                                      pixels, nPixelsMax);
}

uint32_t rvkMserExtu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t delta,
                         uint32_t minArea, uint32_t maxArea, float32_t maxVariation, float32_t minDiversity,
                         rvkMserRegion* regions, uint32_t nRegionsMax, uint32_t* nRegions, uint32_t* pixels,
                         uint32_t nPixelsMax)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkMserExtu8_v2);
    if (!(isPicture(src, srcWidth, srcHeight, srcStride) &&
          areValid({delta, minArea, maxArea, maxVariation, minDiversity}) && regions && nRegions))
        return 0;
    return implementation<Slot::rvkMserExtu8_v2>(target)(src, srcWidth, srcHeight, srcStride, delta, minArea, maxArea,
                                                         maxVariation, minDiversity, regions, nRegionsMax, nRegions,
                                                         pixels, nPixelsMax);
}

uint32_t rvkMserExtu8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t delta,
                         uint32_t minArea, uint32_t maxArea, float32_t maxVariation, float32_t minDiversity,
                         uint32_t connectivity, uint32_t polarities, rvkMserRegion* regions, uint32_t nRegionsMax,
                         uint32_t* nRegions, uint32_t* pixels, uint32_t nPixelsMax)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkMserExtu8_v3);
    if (!(isPicture(src, srcWidth, srcHeight, srcStride) &&
          areValid({delta, minArea, maxArea, maxVariation, minDiversity}) && (connectivity == 4 || connectivity == 8) &&
          polarities >= 1 && polarities <= 3 && regions && nRegions))
        return 0;
    return implementation<Slot::rvkMserExtu8_v3>(target)(src, srcWidth, srcHeight, srcStride, delta, minArea, maxArea,
                                                         maxVariation, minDiversity, connectivity, polarities, regions,
                                                         nRegionsMax, nRegions, pixels, nPixelsMax);
}

uint32_t rvkMserSplitExtu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                           uint32_t delta, uint32_t minArea, uint32_t maxArea, float32_t maxVariation,
                           float32_t minDiversity, rvkMserRegion* brightRegions, uint32_t nBrightRegionsMax,
                           uint32_t* nBrightRegions, uint32_t* brightPixels, uint32_t nBrightPixelsMax,
                           rvkMserRegion* darkRegions, uint32_t nDarkRegionsMax, uint32_t* nDarkRegions,
                           uint32_t* darkPixels, uint32_t nDarkPixelsMax)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkMserSplitExtu8);
    if (!(isPicture(src, srcWidth, srcHeight, srcStride) &&
          areValid({delta, minArea, maxArea, maxVariation, minDiversity}) && brightRegions && nBrightRegions &&
          darkRegions && nDarkRegions))
        return 0;
    return implementation<Slot::rvkMserSplitExtu8>(target)(src, srcWidth, srcHeight, srcStride, delta, minArea, maxArea,
                                                           maxVariation, minDiversity, brightRegions, nBrightRegionsMax,
                                                           nBrightRegions, brightPixels, nBrightPixelsMax, darkRegions,
                                                           nDarkRegionsMax, nDarkRegions, darkPixels, nDarkPixelsMax);
}

uint32_t rvk::irvkMserSplitExtu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint32_t delta, uint32_t minArea, uint32_t maxArea, float maxVariation,
                                 float minDiversity, rvkMserRegion* brightRegions, uint32_t nBrightRegionsMax,
                                 uint32_t* nBrightRegions, uint32_t* brightPixels, uint32_t nBrightPixelsMax,
                                 rvkMserRegion* darkRegions, uint32_t nDarkRegionsMax, uint32_t* nDarkRegions,
                                 uint32_t* darkPixels, uint32_t nDarkPixelsMax)
{
    return internalImplementation<InternalSlot::irvkMserSplitExtu8>()(
        src, srcWidth, srcHeight, srcStride, delta, minArea, maxArea, maxVariation, minDiversity, brightRegions,
        nBrightRegionsMax, nBrightRegions, brightPixels, nBrightPixelsMax, darkRegions, nDarkRegionsMax, nDarkRegions,
        darkPixels, nDarkPixelsMax);
}

// ---- 8 neighbours --------------------------------------------------------------------------------

uint32_t rvkMserNN8Init(uint32_t maxWidth, uint32_t maxHeight, uint32_t delta, uint32_t minArea, uint32_t maxArea,
                        float32_t maxVariation, float32_t minDiversity, void** handle)
{
    const MserParameters parameters = {delta, minArea, maxArea, maxVariation, minDiversity};
    if (!(maxWidth && maxHeight && pixelsFit(maxWidth, maxHeight) && areValid(parameters) && handle))
        return 0;
    const uint64_t size = sizeof(MserHandle) + 2 * mserWorkspaceSize(maxWidth, maxHeight);
    void* const memory = size <= UINT32_MAX ? rvkMemAlloc(static_cast<uint32_t>(size), alignof(MserHandle)) : nullptr;
    if (!memory)
        return 0;
    *static_cast<MserHandle*>(memory) = {parameters, maxWidth, maxHeight};
    *handle = memory;
    return 1;
}

uint32_t rvkMserNN8u8(void* handle, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                      rvkRectangle* bounds, uint32_t* areas, uint32_t nRegionsMax, uint32_t* nRegions, uint32_t* pixels,
                      uint32_t nPixelsMax)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkMserNN8u8);
    if (!(fitsHandle(handle, srcWidth, srcHeight) && isPicture(src, srcWidth, srcHeight, srcStride) && bounds &&
          areas && nRegions))
        return 0;
    return implementation<Slot::rvkMserNN8u8>(target)(handle, src, srcWidth, srcHeight, srcStride, bounds, areas,
                                                      nRegionsMax, nRegions, pixels, nPixelsMax);
}

uint32_t rvkMserExtNN8u8(void* handle, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                         rvkMserRegion* regions, uint32_t nRegionsMax, uint32_t* nRegions, uint32_t* pixels,
                         uint32_t nPixelsMax)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkMserExtNN8u8);
    if (!(fitsHandle(handle, srcWidth, srcHeight) && isPicture(src, srcWidth, srcHeight, srcStride) && regions &&
          nRegions))
        return 0;
    return implementation<Slot::rvkMserExtNN8u8>(target)(handle, src, srcWidth, srcHeight, srcStride, regions,
                                                         nRegionsMax, nRegions, pixels, nPixelsMax);
}
