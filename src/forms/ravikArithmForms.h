// Sums and differences whose overflow a policy rules, and averages, by the drivers mapByPolicy and totalOf of either
// room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

decltype(::rvkAdds16_v2) RVK_FORM(rvkAdds16_v2);

rvkStatus RVK_FORM(rvkAdds16)(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                              const int16_t* src2, uint32_t src2Stride, int16_t* dst, uint32_t dstStride)
{
    return RVK_FORM(rvkAdds16_v2)(src1, width, height, src1Stride, src2, src2Stride, RAVIK_POLICY_SATURATE, dst,
                                  dstStride);
}

rvkStatus RVK_FORM(rvkAdds16_v2)(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                 const int16_t* src2, uint32_t src2Stride, uint32_t policy, int16_t* dst,
                                 uint32_t dstStride)
{
    return mapByPolicy(width, height, policy, Plane{dst, dstStride}, plus, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

rvkStatus RVK_FORM(rvkAddu8)(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                             const uint8_t* src2, uint32_t src2Stride, uint32_t policy, uint8_t* dst,
                             uint32_t dstStride)
{
    return mapByPolicy(width, height, policy, Plane{dst, dstStride}, plus, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

void RVK_FORM(rvkAverages32)(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             float32_t* average)
{
    *average = averageOf(totalOf(srcWidth, srcHeight, Plane{src, srcStride}), srcWidth, srcHeight);
}

void RVK_FORM(rvkAverageu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            float32_t* average)
{
    *average = averageOf(totalOf(srcWidth, srcHeight, Plane{src, srcStride}), srcWidth, srcHeight);
}

rvkStatus RVK_FORM(rvkSubtracts16)(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                   const int16_t* src2, uint32_t src2Stride, uint32_t policy, int16_t* dst,
                                   uint32_t dstStride)
{
    return mapByPolicy(width, height, policy, Plane{dst, dstStride}, minus, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

rvkStatus RVK_FORM(rvkSubtractu8)(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                  const uint8_t* src2, uint32_t src2Stride, uint32_t policy, uint8_t* dst,
                                  uint32_t dstStride)
{
    return mapByPolicy(width, height, policy, Plane{dst, dstStride}, minus, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

} // namespace RVK_ROOM
