// MSER: maximally stable extremal regions. Adapters make structures of lists of words, statuses of what the functions
// return, and handles.
#include "groups.h"

#include <ravik/frame.h>
#include <ravik/mser.h>

#include <cmath>

using namespace arguments;

namespace {

constexpr uint32_t kMostRegions = 12, kMostPixels = 400;
constexpr uint32_t kRegionWords = sizeof(rvkMserRegion) / 4, kBoundsWords = sizeof(rvkRectangle) / 4;

int32_t statusOf(uint32_t result)
{
    return result == 1 ? 0 : -1;
}

int32_t extract(decltype(&rvkMseru8) function, const uint8_t* src, uint32_t width, uint32_t height, uint32_t delta,
                uint32_t minArea, uint32_t maxArea, float32_t maxVariation, float32_t minDiversity, uint32_t* bounds,
                uint32_t* areas, uint32_t nRegionsMax, uint32_t* nRegions, uint32_t* pixels, uint32_t nPixelsMax)
{
    return statusOf(function(src, width, height, delta, minArea, maxArea, maxVariation, minDiversity,
                             reinterpret_cast<rvkRectangle*>(bounds), areas, nRegionsMax, nRegions, pixels,
                             nPixelsMax));
}

int32_t extractStrided(decltype(&rvkMseru8_v2) function, const uint8_t* src, uint32_t width, uint32_t height,
                       uint32_t stride, uint32_t delta, uint32_t minArea, uint32_t maxArea, float32_t maxVariation,
                       float32_t minDiversity, uint32_t* bounds, uint32_t* areas, uint32_t nRegionsMax,
                       uint32_t* nRegions, uint32_t* pixels, uint32_t nPixelsMax)
{
    return statusOf(function(src, width, height, stride, delta, minArea, maxArea, maxVariation, minDiversity,
                             reinterpret_cast<rvkRectangle*>(bounds), areas, nRegionsMax, nRegions, pixels,
                             nPixelsMax));
}

int32_t extractAll(decltype(&rvkMserExtu8) function, const uint8_t* src, uint32_t width, uint32_t height,
                   uint32_t delta, uint32_t minArea, uint32_t maxArea, float32_t maxVariation, float32_t minDiversity,
                   uint32_t* regions, uint32_t nRegionsMax, uint32_t* nRegions, uint32_t* pixels, uint32_t nPixelsMax)
{
    return statusOf(function(src, width, height, delta, minArea, maxArea, maxVariation, minDiversity,
                             reinterpret_cast<rvkMserRegion*>(regions), nRegionsMax, nRegions, pixels, nPixelsMax));
}

int32_t extractAllStrided(decltype(&rvkMserExtu8_v2) function, const uint8_t* src, uint32_t width, uint32_t height,
                          uint32_t stride, uint32_t delta, uint32_t minArea, uint32_t maxArea, float32_t maxVariation,
                          float32_t minDiversity, uint32_t* regions, uint32_t nRegionsMax, uint32_t* nRegions,
                          uint32_t* pixels, uint32_t nPixelsMax)
{
    return statusOf(function(src, width, height, stride, delta, minArea, maxArea, maxVariation, minDiversity,
                             reinterpret_cast<rvkMserRegion*>(regions), nRegionsMax, nRegions, pixels, nPixelsMax));
}

int32_t extractChosen(decltype(&rvkMserExtu8_v3) function, const uint8_t* src, uint32_t width, uint32_t height,
                      uint32_t stride, uint32_t delta, uint32_t minArea, uint32_t maxArea, float32_t maxVariation,
                      float32_t minDiversity, uint32_t connectivity, uint32_t polarities, uint32_t* regions,
                      uint32_t nRegionsMax, uint32_t* nRegions, uint32_t* pixels, uint32_t nPixelsMax)
{
    return statusOf(function(src, width, height, stride, delta, minArea, maxArea, maxVariation, minDiversity,
                             connectivity, polarities, reinterpret_cast<rvkMserRegion*>(regions), nRegionsMax, nRegions,
                             pixels, nPixelsMax));
}

int32_t extractSplit(decltype(&rvkMserSplitExtu8) function, const uint8_t* src, uint32_t width, uint32_t height,
                     uint32_t stride, uint32_t delta, uint32_t minArea, uint32_t maxArea, float32_t maxVariation,
                     float32_t minDiversity, uint32_t* bright, uint32_t nBrightMax, uint32_t* nBright,
                     uint32_t* brightPixels, uint32_t nBrightPixelsMax, uint32_t* dark, uint32_t nDarkMax,
                     uint32_t* nDark, uint32_t* darkPixels, uint32_t nDarkPixelsMax)
{
    return statusOf(function(src, width, height, stride, delta, minArea, maxArea, maxVariation, minDiversity,
                             reinterpret_cast<rvkMserRegion*>(bright), nBrightMax, nBright, brightPixels,
                             nBrightPixelsMax, reinterpret_cast<rvkMserRegion*>(dark), nDarkMax, nDark, darkPixels,
                             nDarkPixelsMax));
}

// A handle for the picture and, where such a picture can have none, for a pixel.
class Handle
{
public:
    Handle(uint32_t width, uint32_t height)
    {
        constexpr uint32_t most = 1 << 22;
        const bool isUsual = width && height && uint64_t{width} * height <= most;
        m_isMade = rvkMserNN8Init(isUsual ? width : 1, isUsual ? height : 1, 5, 4, 300, 0.5f, 0.2f, &m_handle) == 1;
    }
    ~Handle() { rvkMemFree(m_handle); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    explicit operator bool() const { return m_isMade; }
    void* get() const { return m_handle; }

private:
    void* m_handle = nullptr;
    bool m_isMade;
};

int32_t extractByHandle(decltype(&rvkMserNN8u8) function, const uint8_t* src, uint32_t width, uint32_t height,
                        uint32_t stride, uint32_t* bounds, uint32_t* areas, uint32_t nRegionsMax, uint32_t* nRegions,
                        uint32_t* pixels, uint32_t nPixelsMax)
{
    const Handle handle(width, height);
    return handle ? statusOf(function(handle.get(), src, width, height, stride, reinterpret_cast<rvkRectangle*>(bounds),
                                      areas, nRegionsMax, nRegions, pixels, nPixelsMax))
                  : -1;
}

int32_t extractAllByHandle(decltype(&rvkMserExtNN8u8) function, const uint8_t* src, uint32_t width, uint32_t height,
                           uint32_t stride, uint32_t* regions, uint32_t nRegionsMax, uint32_t* nRegions,
                           uint32_t* pixels, uint32_t nPixelsMax)
{
    const Handle handle(width, height);
    return handle
               ? statusOf(function(handle.get(), src, width, height, stride, reinterpret_cast<rvkMserRegion*>(regions),
                                   nRegionsMax, nRegions, pixels, nPixelsMax))
               : -1;
}

} // namespace

const FunctionGroup& mserFunctions()
{
    const Argument picture = src.natural(), delta = oneOf({5, 1, 20, 255}).refusing({0, 256, UINT32_MAX});
    const Argument minArea = oneOf({4, 1, 60}).refusing({0}), maxArea = oneOf({300, 60, UINT32_MAX}).refusing({0});
    const Argument maxVariation = oneOf({0.5, 0, 1e30}).refusing({-0.5, NAN});
    const Argument minDiversity = oneOf({0.25, 0, 1}).refusing({-0.25, 1.5, NAN});
    const Argument bounds = list(kMostRegions * kBoundsWords), areas = list(kMostRegions);
    const Argument regions = list(kMostRegions * kRegionWords), pixels = list(2 * kMostPixels).orNull();
    const Argument room = capacity(0, kMostRegions), pixelRoom = capacity(0, kMostPixels);
    const Argument connectivity = oneOf({4, 8}).refusing({0, 6}), polarities = oneOf({3, 1, 2}).refusing({0, 4});
    const Contract ofLimitedSize = Contract().upToPixels(UINT32_MAX / 4);

    static const FunctionGroup group{
        "ravikmser",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkMseru8", rvkMseru8, extract, picture, width, height, delta, minArea, maxArea,
                             maxVariation, minDiversity, bounds, areas, room, value, pixels, pixelRoom)
                .keeps(ofLimitedSize),
            RVK_TEST_ADAPTED("rvkMserExtu8", rvkMserExtu8, extractAll, picture, width, height, delta, minArea, maxArea,
                             maxVariation, minDiversity, regions, room, value, pixels, pixelRoom)
                .keeps(ofLimitedSize),
            RVK_TEST_ADAPTED("rvkMserNN8u8", rvkMserNN8u8, extractByHandle, picture, width, height, stride, bounds,
                             areas, room, value, pixels, pixelRoom)
                .keeps(ofLimitedSize),
            RVK_TEST_ADAPTED("rvkMserExtNN8u8", rvkMserExtNN8u8, extractAllByHandle, picture, width, height, stride,
                             regions, room, value, pixels, pixelRoom)
                .keeps(ofLimitedSize),
            RVK_TEST_ADAPTED("rvkMseru8_v2", rvkMseru8_v2, extractStrided, picture, width, height, stride, delta,
                             minArea, maxArea, maxVariation, minDiversity, bounds, areas, room, value, pixels,
                             pixelRoom)
                .keeps(ofLimitedSize),
            RVK_TEST_ADAPTED("rvkMserExtu8_v2", rvkMserExtu8_v2, extractAllStrided, picture, width, height, stride,
                             delta, minArea, maxArea, maxVariation, minDiversity, regions, room, value, pixels,
                             pixelRoom)
                .keeps(ofLimitedSize),
            RVK_TEST_ADAPTED("rvkMserSplitExtu8", rvkMserSplitExtu8, extractSplit, picture, width, height, stride,
                             delta, minArea, maxArea, maxVariation, minDiversity, regions, room, value, pixels,
                             pixelRoom, regions, room, value, pixels, pixelRoom)
                .keeps(ofLimitedSize),
            RVK_TEST_ADAPTED("rvkMserExtu8_v3", rvkMserExtu8_v3, extractChosen, picture, width, height, stride, delta,
                             minArea, maxArea, maxVariation, minDiversity, connectivity, polarities, regions, room,
                             value, pixels, pixelRoom)
                .keeps(ofLimitedSize),
        }};
    return group;
}
