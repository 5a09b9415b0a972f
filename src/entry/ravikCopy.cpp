// Copies: the public functions, and the internal operation.
#include "bodies.h"

using namespace rvk;

void rvkCopy(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
             uint32_t dstStride)
{
    mapBytes<Slot::rvkCopy>(
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth)"}, src,
        srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkCopyRotated17x17u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint32_t x, uint32_t y, uint32_t orientation, uint8_t* patch)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkCopyRotated17x17u8);
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && srcStride >= srcWidth && orientation < 36 && patch);
    return implementation<Slot::rvkCopyRotated17x17u8>(target)(src, srcWidth, srcHeight, srcStride, x, y, orientation,
                                                               patch);
}

void rvk::irvkCopy(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                   uint32_t dstStride)
{
    internalImplementation<InternalSlot::irvkCopy>()(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}
