// Contours and foreground masks: the public functions. Those that allocate and free are not dispatched.
#include "cpu/ravikContourC.h"
#include "dispatch.h"

#include <ravik/frame.h>

#include <cmath>

using namespace rvk;

namespace {

constexpr uint32_t kAlignment = 64; // of the working memory, which follows the workspace's own fields

template <Slot slot>
rvkStatus find(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t approximation,
               uint32_t* contourSizes, uint32_t nContoursMax, uint32_t* nContours, int32_t* points, uint32_t nPointsMax,
               int32_t* hierarchy, rvkContourWorkspace* workspace)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(slot);
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && srcStride >= srcWidth && rowFits(srcStride, srcHeight) &&
                     approximation <= RAVIK_CONTOUR_CORNERS && contourSizes && nContours && points &&
                     (!workspace || (srcWidth <= workspace->maxWidth && srcHeight <= workspace->maxHeight)));
    return implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, approximation, contourSizes, nContoursMax,
                                        nContours, points, nPointsMax, hierarchy, workspace);
}

} // namespace

rvkContourWorkspace* rvkFindContoursAllocate(uint32_t maxWidth, uint32_t maxHeight)
{
    static_assert(sizeof(rvkContourWorkspace) <= kAlignment);
    if (!maxWidth || !maxHeight || !rowFits(maxWidth, maxHeight))
        return nullptr;
    const uint64_t bytes = kAlignment + contourMemory(maxWidth, maxHeight);
    if (bytes > UINT32_MAX)
        return nullptr;
    auto* const block = static_cast<uint8_t*>(rvkMemAlloc(static_cast<uint32_t>(bytes), kAlignment));
    return block ? new (block) rvkContourWorkspace{maxWidth, maxHeight, block + kAlignment} : nullptr;
}

void rvkFindContoursDelete(rvkContourWorkspace* workspace)
{
    rvkMemFree(workspace);
}

rvkStatus rvkFindContoursExternalu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint32_t approximation, uint32_t* contourSizes, uint32_t nContoursMax,
                                    uint32_t* nContours, int32_t* points, uint32_t nPointsMax, int32_t* hierarchy,
                                    rvkContourWorkspace* workspace)
{
    return find<Slot::rvkFindContoursExternalu8>(src, srcWidth, srcHeight, srcStride, approximation, contourSizes,
                                                 nContoursMax, nContours, points, nPointsMax, hierarchy, workspace);
}

rvkStatus rvkFindContoursListu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint32_t approximation, uint32_t* contourSizes, uint32_t nContoursMax,
                                uint32_t* nContours, int32_t* points, uint32_t nPointsMax, int32_t* hierarchy,
                                rvkContourWorkspace* workspace)
{
    return find<Slot::rvkFindContoursListu8>(src, srcWidth, srcHeight, srcStride, approximation, contourSizes,
                                             nContoursMax, nContours, points, nPointsMax, hierarchy, workspace);
}

rvkStatus rvkFindContoursCcompu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint32_t approximation, uint32_t* contourSizes, uint32_t nContoursMax,
                                 uint32_t* nContours, int32_t* points, uint32_t nPointsMax, int32_t* hierarchy,
                                 rvkContourWorkspace* workspace)
{
    return find<Slot::rvkFindContoursCcompu8>(src, srcWidth, srcHeight, srcStride, approximation, contourSizes,
                                              nContoursMax, nContours, points, nPointsMax, hierarchy, workspace);
}

rvkStatus rvkFindContoursTreeu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint32_t approximation, uint32_t* contourSizes, uint32_t nContoursMax,
                                uint32_t* nContours, int32_t* points, uint32_t nPointsMax, int32_t* hierarchy,
                                rvkContourWorkspace* workspace)
{
    return find<Slot::rvkFindContoursTreeu8>(src, srcWidth, srcHeight, srcStride, approximation, contourSizes,
                                             nContoursMax, nContours, points, nPointsMax, hierarchy, workspace);
}

rvkStatus rvkSegmentFGMasku8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint32_t shape,
                             float32_t perimeterScale)
{
    dstStride = packedIfZero(dstStride, dstWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkSegmentFGMasku8,
                                         [&] { return aligned(8, dst, dstStride) && enoughWork(dstWidth, dstHeight); });
    RVK_CHECK_STATUS(dst && dstWidth && dstHeight && dstStride >= dstWidth && rowFits(dstStride, dstHeight) &&
                     shape <= RAVIK_MASK_HULLS && std::isfinite(perimeterScale) && perimeterScale > 0);
    return implementation<Slot::rvkSegmentFGMasku8>(target)(dst, dstWidth, dstHeight, dstStride, shape, perimeterScale);
}
