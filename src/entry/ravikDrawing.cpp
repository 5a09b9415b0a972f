// Polygons drawn into pictures: the public functions.
#include "cpu/ravikPolygonC.h"
#include "dispatch.h"

using namespace rvk;

namespace {

// The lists, and the thickness.
bool canDraw(const int32_t* points, const uint32_t* contourSizes, uint32_t nContours, uint32_t thickness)
{
    constexpr uint32_t mostThickness = 255;
    if (!points || !contourSizes || thickness > mostThickness)
        return false;
    uint64_t nPoints = 0;
    for (size_t i = 0; i < nContours; ++i)
        nPoints += contourSizes[i];
    return nPoints <= UINT32_MAX / (2 * sizeof(int32_t)) && pointsAreInRange(points, nPoints);
}

} // namespace

rvkStatus rvkDrawContouru8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                           const int32_t* points, const uint32_t* contourSizes, uint32_t nContours, uint32_t thickness,
                           uint8_t value)
{
    dstStride = packedIfZero(dstStride, dstWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkDrawContouru8);
    RVK_CHECK_STATUS(dst && dstWidth && dstHeight && dstStride >= dstWidth && rowFits(dstStride, dstHeight) &&
                     canDraw(points, contourSizes, nContours, thickness));
    return implementation<Slot::rvkDrawContouru8>(target)(dst, dstWidth, dstHeight, dstStride, points, contourSizes,
                                                          nContours, thickness, value);
}

rvkStatus rvkDrawContourInterleavedu8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                      const int32_t* points, const uint32_t* contourSizes, uint32_t nContours,
                                      uint32_t thickness, uint8_t value1, uint8_t value2, uint8_t value3)
{
    dstStride = packedIfZero(dstStride, dstWidth, 3);
    const RVK_IMPL target = chooseTarget(Slot::rvkDrawContourInterleavedu8);
    RVK_CHECK_STATUS(dst && dstWidth && dstHeight && dstStride >= rowSize(dstWidth, 3) &&
                     rowFits(dstStride, dstHeight) && canDraw(points, contourSizes, nContours, thickness));
    return implementation<Slot::rvkDrawContourInterleavedu8>(target)(
        dst, dstWidth, dstHeight, dstStride, points, contourSizes, nContours, thickness, value1, value2, value3);
}

rvkStatus rvkDrawContourPlanaru8(uint8_t* dst1, uint8_t* dst2, uint8_t* dst3, uint32_t dstWidth, uint32_t dstHeight,
                                 uint32_t dstStride, const int32_t* points, const uint32_t* contourSizes,
                                 uint32_t nContours, uint32_t thickness, uint8_t value1, uint8_t value2, uint8_t value3)
{
    dstStride = packedIfZero(dstStride, dstWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkDrawContourPlanaru8);
    RVK_CHECK_STATUS(dst1 && dst2 && dst3 && dst1 != dst2 && dst1 != dst3 && dst2 != dst3 && dstWidth && dstHeight &&
                     dstStride >= dstWidth && rowFits(dstStride, dstHeight) &&
                     canDraw(points, contourSizes, nContours, thickness));
    return implementation<Slot::rvkDrawContourPlanaru8>(target)(dst1, dst2, dst3, dstWidth, dstHeight, dstStride,
                                                                points, contourSizes, nContours, thickness, value1,
                                                                value2, value3);
}

rvkStatus rvkFillConvexPolyu8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                              const int32_t* points, uint32_t nPoints, uint8_t value)
{
    dstStride = packedIfZero(dstStride, dstWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFillConvexPolyu8);
    RVK_CHECK_STATUS(dst && dstWidth && dstHeight && dstStride >= dstWidth && rowFits(dstStride, dstHeight) && points &&
                     nPoints && pointsAreInRange(points, nPoints));
    return implementation<Slot::rvkFillConvexPolyu8>(target)(dst, dstWidth, dstHeight, dstStride, points, nPoints,
                                                             value);
}
