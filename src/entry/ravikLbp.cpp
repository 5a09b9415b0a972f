// Local binary patterns: the public functions.
#include "dispatch.h"

#include <algorithm>

using namespace rvk;

rvkStatus rvkGLBPu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t radius,
                    uint32_t neighbors, uint8_t* dst, uint32_t dstStride)
{
    const uint64_t border = radius;
    const bool hasCodes = std::min(srcWidth, srcHeight) > 2 * border;
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, hasCodes ? srcWidth - 2 * radius : 1);
    const RVK_IMPL target = chooseTarget(Slot::rvkGLBPu8, [&] {
        return hasCodes && aligned(8, src, srcStride, dst) && enoughWork(srcWidth, srcHeight);
    });
    RVK_CHECK_STATUS(src && dst && hasCodes && srcStride >= srcWidth && neighbors >= 1 && neighbors <= 8 &&
                     dstStride >= srcWidth - 2 * radius);
    return implementation<Slot::rvkGLBPu8>(target)(src, srcWidth, srcHeight, srcStride, radius, neighbors, dst,
                                                   dstStride);
}
