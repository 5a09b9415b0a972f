// Masked or and fills, by the drivers orImage and fillSelected of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

void RVK_FORM(rvkBitwiseOrs32)(const int32_t* src1, const int32_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                               uint32_t srcStride, int32_t* dst, uint32_t dstStride, const uint8_t* mask,
                               uint32_t maskStride)
{
    orImage(srcWidth, srcHeight, Plane{src1, srcStride}, Plane{src2, srcStride}, Plane{dst, dstStride},
            Plane{mask, maskStride});
}

void RVK_FORM(rvkBitwiseOru8)(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                              const uint8_t* src2, uint32_t src2Stride, uint8_t* dst, uint32_t dstStride,
                              const uint8_t* mask, uint32_t maskStride)
{
    orImage(srcWidth, srcHeight, Plane{src1, src1Stride}, Plane{src2, src2Stride}, Plane{dst, dstStride},
            Plane{mask, maskStride});
}

void RVK_FORM(rvkSetElementsu8)(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint8_t value,
                                const uint8_t* mask, uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value}, Plane{mask, maskStride});
}

void RVK_FORM(rvkSetElementss32)(int32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, int32_t value,
                                 const uint8_t* mask, uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value}, Plane{mask, maskStride});
}

void RVK_FORM(rvkSetElementsf32)(float32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                 float32_t value, const uint8_t* mask, uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value}, Plane{mask, maskStride});
}

void RVK_FORM(rvkSetElementsc3u8)(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                  uint8_t value1, uint8_t value2, uint8_t value3, const uint8_t* mask,
                                  uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value1, value2, value3}, Plane{mask, maskStride});
}

void RVK_FORM(rvkSetElementsc3s32)(int32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                   int32_t value1, int32_t value2, int32_t value3, const uint8_t* mask,
                                   uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value1, value2, value3}, Plane{mask, maskStride});
}

void RVK_FORM(rvkSetElementsc3f32)(float32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                   float32_t value1, float32_t value2, float32_t value3, const uint8_t* mask,
                                   uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value1, value2, value3}, Plane{mask, maskStride});
}

void RVK_FORM(rvkSetElementsc4u8)(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                  uint8_t value1, uint8_t value2, uint8_t value3, uint8_t value4, const uint8_t* mask,
                                  uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value1, value2, value3, value4}, Plane{mask, maskStride});
}

void RVK_FORM(rvkSetElementsc4s32)(int32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                   int32_t value1, int32_t value2, int32_t value3, int32_t value4, const uint8_t* mask,
                                   uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value1, value2, value3, value4}, Plane{mask, maskStride});
}

void RVK_FORM(rvkSetElementsc4f32)(float32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                   float32_t value1, float32_t value2, float32_t value3, float32_t value4,
                                   const uint8_t* mask, uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value1, value2, value3, value4}, Plane{mask, maskStride});
}

} // namespace RVK_ROOM
