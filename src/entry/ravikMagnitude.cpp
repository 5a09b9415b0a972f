// Magnitude and direction of gradients, weights of edges: the public functions.
#include "dispatch.h"

using namespace rvk;

namespace {

// The destination is another image, or takes the place of the source.
template <class S, class D>
bool mayReplace(const S* src, uint32_t srcStride, const D* dst, uint32_t dstStride)
{
    return static_cast<const void*>(src) != dst || (sizeof(S) == sizeof(D) && srcStride == dstStride);
}

} // namespace

rvkStatus rvkMagnitudes16(const int16_t* dx, uint32_t width, uint32_t height, uint32_t dxStride, const int16_t* dy,
                          uint32_t dyStride, int16_t* dst, uint32_t dstStride)
{
    dxStride = packedIfZero(dxStride, width, sizeof(int16_t));
    dyStride = packedIfZero(dyStride, width, sizeof(int16_t));
    dstStride = packedIfZero(dstStride, width, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkMagnitudes16, [&] {
        return aligned(8, dx, dy, dst, dxStride, dyStride, dstStride) && enoughWork(width, height);
    });
    RVK_CHECK_STATUS(dx && dy && dst && width && height && dxStride >= rowSize(width, sizeof(int16_t)) &&
                     dyStride >= rowSize(width, sizeof(int16_t)) && dstStride >= rowSize(width, sizeof(int16_t)));
    RVK_CHECK_STATUS(mayReplace(dx, dxStride, dst, dstStride) && mayReplace(dy, dyStride, dst, dstStride));
    return implementation<Slot::rvkMagnitudes16>(target)(dx, width, height, dxStride, dy, dyStride, dst, dstStride);
}

rvkStatus rvkPhases16(const int16_t* dx, uint32_t width, uint32_t height, uint32_t dxStride, const int16_t* dy,
                      uint32_t dyStride, uint8_t* dst, uint32_t dstStride)
{
    dxStride = packedIfZero(dxStride, width, sizeof(int16_t));
    dyStride = packedIfZero(dyStride, width, sizeof(int16_t));
    dstStride = packedIfZero(dstStride, width);
    const RVK_IMPL target = chooseTarget(Slot::rvkPhases16, [&] {
        return aligned(8, dx, dy, dst, dxStride, dyStride, dstStride) && enoughWork(width, height);
    });
    RVK_CHECK_STATUS(dx && dy && dst && width && height && dxStride >= rowSize(width, sizeof(int16_t)) &&
                     dyStride >= rowSize(width, sizeof(int16_t)) && dstStride >= width);
    RVK_CHECK_STATUS(mayReplace(dx, dxStride, dst, dstStride) && mayReplace(dy, dyStride, dst, dstStride));
    return implementation<Slot::rvkPhases16>(target)(dx, width, height, dxStride, dy, dyStride, dst, dstStride);
}

rvkStatus rvkEdgeWeightings16(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                              uint16_t threshold, uint16_t weight, uint16_t limit, int16_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, width, sizeof(int16_t));
    dstStride = packedIfZero(dstStride, width, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkEdgeWeightings16, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(width, height);
    });
    RVK_CHECK_STATUS(src && dst && width && height && srcStride >= rowSize(width, sizeof(int16_t)) &&
                     dstStride >= rowSize(width, sizeof(int16_t)));
    RVK_CHECK_STATUS(mayReplace(src, srcStride, dst, dstStride));
    return implementation<Slot::rvkEdgeWeightings16>(target)(src, width, height, srcStride, threshold, weight, limit,
                                                             dst, dstStride);
}
