// Image derivatives: the public functions. The names without a version call the cell of their first version.
#include "dispatch.h"

using namespace rvk;

namespace {

// What the DSP takes: sources by words, outputs by double words, and pairs of rows.
template <class... Outputs>
bool suitsDsp(uint32_t width, uint32_t height, const void* src, uint32_t srcStride, Outputs... outputs)
{
    return aligned(4, src, srcStride) && aligned(8, outputs...) && enoughWork(width, height) && height % 2 == 0 &&
           height >= 4;
}

// The conditions between "clang-format off" and "on" are logged as they stand there.

// Bodies of entries that differ in their names and cells alone, of a first form and its _v2 form for instance.
// `function` is the name for the log.

template <Slot slot>
void interleaved(const char* function, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                 int16_t* gradients, uint32_t gradStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    gradStride = packedIfZero(gradStride, srcWidth - 2, 2 * sizeof(int16_t));
    const RVK_IMPL target =
        chooseTarget(slot, [&] { return suitsDsp(srcWidth, srcHeight, src, srcStride, gradients); });
    // clang-format off
    RVK_CHECK_SIZED_ARGS_OF(function, rowFits(srcWidth - 2, 2 * sizeof(int16_t)),
                            src && srcWidth && srcHeight && (srcStride >= srcWidth) && gradients &&
                            (gradStride >= ((srcWidth-2)*2*sizeof(int16_t))));
    // clang-format on
    implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, gradients, gradStride);
}

template <Slot slot>
void interleaved(const char* function, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                 float32_t* gradients, uint32_t gradStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    gradStride = packedIfZero(gradStride, srcWidth - 2, 2 * sizeof(float32_t));
    const RVK_IMPL target =
        chooseTarget(slot, [&] { return suitsDsp(srcWidth, srcHeight, src, srcStride, gradients); });
    // clang-format off
    RVK_CHECK_SIZED_ARGS_OF(function, rowFits(srcWidth - 2, 2 * sizeof(float32_t)),
                            src && srcWidth && srcHeight && (srcStride >= srcWidth) && gradients &&
                            (gradStride >= ((srcWidth-2)*2*sizeof(float))));
    // clang-format on
    implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, gradients, gradStride);
}

template <Slot slot>
void planar(const char* function, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
            int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dxyStride = packedIfZero(dxyStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(slot, [&] { return suitsDsp(srcWidth, srcHeight, src, srcStride, dx, dy); });
    // clang-format off
    RVK_CHECK_SIZED_ARGS_OF(function, rowFits(srcWidth, sizeof(int16_t)),
                            src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx && dy &&
                            (dxyStride >= (srcWidth*sizeof(int16_t))));
    // clang-format on
    RVK_CHECK_ARGS_OF(function, dx != dy);
    implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride);
}

template <Slot slot>
void planar(const char* function, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
            float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dxyStride = packedIfZero(dxyStride, srcWidth, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(slot, [&] { return suitsDsp(srcWidth, srcHeight, src, srcStride, dx, dy); });
    // clang-format off
    RVK_CHECK_SIZED_ARGS_OF(function, rowFits(srcWidth, sizeof(float32_t)),
                            src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx && dy &&
                            (dxyStride >= (srcWidth*sizeof(float))));
    // clang-format on
    RVK_CHECK_ARGS_OF(function, dx != dy);
    implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride);
}

template <Slot slot>
void planar(const char* function, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
            int8_t* dx, int8_t* dy, uint32_t dxyStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dxyStride = packedIfZero(dxyStride, srcWidth);
    const RVK_IMPL target = chooseTarget(slot, [&] { return suitsDsp(srcWidth, srcHeight, src, srcStride, dx, dy); });
    // clang-format off
    RVK_CHECK_ARGS_OF(function, src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx && dy &&
                      (dxyStride >= srcWidth));
    // clang-format on
    RVK_CHECK_ARGS_OF(function, dx != dy);
    implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride);
}

template <Slot slot>
void planar(const char* function, const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
            float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(float32_t));
    dxyStride = packedIfZero(dxyStride, srcWidth, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(slot, [&] { return suitsDsp(srcWidth, srcHeight, src, srcStride, dx, dy); });
    // clang-format off
    RVK_CHECK_SIZED_ARGS_OF(function, rowFits(srcWidth, sizeof(float32_t)),
                            src && srcWidth && srcHeight && (srcStride >= (srcWidth*sizeof(float))) && dx && dy &&
                            (dxyStride >= (srcWidth*sizeof(float))));
    // clang-format on
    RVK_CHECK_ARGS_OF(function, src != dx && src != dy && dx != dy);
    implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride);
}

void strength(const char* function, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
              uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterSobel3x3u8_v2, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 3;
    });
    RVK_CHECK_ARGS_OF(function,
                      src && srcWidth && srcHeight && (srcStride >= srcWidth) && dst && (dstStride >= srcWidth));
    RVK_CHECK_ARGS_OF(function, src != dst);
    implementation<Slot::rvkFilterSobel3x3u8_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

} // namespace

// ---- central differences -------------------------------------------------------------------------

void rvkImageGradientInterleaveds16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    int16_t* gradients, uint32_t gradStride)
{
    interleaved<Slot::rvkImageGradientInterleaveds16_v2>(__func__, src, srcWidth, srcHeight, srcStride, gradients,
                                                         gradStride);
}

void rvkImageGradientInterleaveds16_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       int16_t* gradients, uint32_t gradStride)
{
    interleaved<Slot::rvkImageGradientInterleaveds16_v2>(__func__, src, srcWidth, srcHeight, srcStride, gradients,
                                                         gradStride);
}

void rvkImageGradientInterleavedf32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    float32_t* gradients, uint32_t gradStride)
{
    interleaved<Slot::rvkImageGradientInterleavedf32_v2>(__func__, src, srcWidth, srcHeight, srcStride, gradients,
                                                         gradStride);
}

void rvkImageGradientInterleavedf32_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       float32_t* gradients, uint32_t gradStride)
{
    interleaved<Slot::rvkImageGradientInterleavedf32_v2>(__func__, src, srcWidth, srcHeight, srcStride, gradients,
                                                         gradStride);
}

void rvkImageGradientPlanars16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientPlanars16_v2>(__func__, src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride);
}

void rvkImageGradientPlanars16_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientPlanars16_v2>(__func__, src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride);
}

void rvkImageGradientPlanarf32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientPlanarf32_v2>(__func__, src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride);
}

void rvkImageGradientPlanarf32_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientPlanarf32_v2>(__func__, src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride);
}

// ---- Sobel and Scharr, 3x3 -----------------------------------------------------------------------

void rvkImageGradientSobelInterleaveds16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         int16_t* gradients, uint32_t gradStride)
{
    interleaved<Slot::rvkImageGradientSobelInterleaveds16_v2>(__func__, src, srcWidth, srcHeight, srcStride, gradients,
                                                              gradStride);
}

void rvkImageGradientSobelInterleaveds16_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, int16_t* gradients, uint32_t gradStride)
{
    interleaved<Slot::rvkImageGradientSobelInterleaveds16_v2>(__func__, src, srcWidth, srcHeight, srcStride, gradients,
                                                              gradStride);
}

void rvkImageGradientSobelPlanars16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientSobelPlanars16_v2>(__func__, src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride);
}

void rvkImageGradientSobelPlanars16_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientSobelPlanars16_v2>(__func__, src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride);
}

void rvkImageGradientSobelPlanars8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   int8_t* dx, int8_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientSobelPlanars8_v2>(__func__, src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride);
}

void rvkImageGradientSobelPlanars8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      int8_t* dx, int8_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientSobelPlanars8_v2>(__func__, src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride);
}

rvkStatus rvkImageGradientSobelInterleaveds16_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                 uint32_t srcStride, int16_t* gradients, uint32_t gradStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    gradStride = packedIfZero(gradStride, srcWidth - 2, 2 * sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkImageGradientSobelInterleaveds16_v3,
                                         [&] { return suitsDsp(srcWidth, srcHeight, src, srcStride, gradients); });
    RVK_CHECK_STATUS(rowFits(srcWidth - 2, 2 * sizeof(int16_t)) && src && srcWidth && srcHeight &&
                     srcStride >= srcWidth && gradients && gradStride >= (srcWidth - 2) * 2 * sizeof(int16_t));
    return implementation<Slot::rvkImageGradientSobelInterleaveds16_v3>(target)(src, srcWidth, srcHeight, srcStride,
                                                                                gradients, gradStride);
}

void rvkImageGradientSobelInterleavedf32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         float32_t* gradients, uint32_t gradStride)
{
    interleaved<Slot::rvkImageGradientSobelInterleavedf32_v2>(__func__, src, srcWidth, srcHeight, srcStride, gradients,
                                                              gradStride);
}

void rvkImageGradientSobelInterleavedf32_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, float32_t* gradients, uint32_t gradStride)
{
    interleaved<Slot::rvkImageGradientSobelInterleavedf32_v2>(__func__, src, srcWidth, srcHeight, srcStride, gradients,
                                                              gradStride);
}

void rvkImageGradientSobelPlanarf32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientSobelPlanarf32_v2>(__func__, src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride);
}

void rvkImageGradientSobelPlanarf32_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientSobelPlanarf32_v2>(__func__, src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride);
}

rvkStatus rvkImageGradientSobelPlanars16_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dxyStride = packedIfZero(dxyStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkImageGradientSobelPlanars16_v3,
                                         [&] { return suitsDsp(srcWidth, srcHeight, src, srcStride, dx, dy); });
    RVK_CHECK_STATUS(rowFits(srcWidth, sizeof(int16_t)) && src && srcWidth && srcHeight && srcStride >= srcWidth &&
                     (dx || dy) && dx != dy && dxyStride >= srcWidth * sizeof(int16_t));
    return implementation<Slot::rvkImageGradientSobelPlanars16_v3>(target)(src, srcWidth, srcHeight, srcStride, dx, dy,
                                                                           dxyStride);
}

void rvkImageGradientSobelPlanarf32f32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientSobelPlanarf32f32_v2>(__func__, src, srcWidth, srcHeight, srcStride, dx, dy,
                                                       dxyStride);
}

void rvkImageGradientSobelPlanarf32f32_v2(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                          uint32_t srcStride, float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientSobelPlanarf32f32_v2>(__func__, src, srcWidth, srcHeight, srcStride, dx, dy,
                                                       dxyStride);
}

void rvkImageGradientScharrInterleaveds16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          int16_t* gradients, uint32_t gradStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    gradStride = packedIfZero(gradStride, srcWidth - 2, 2 * sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkImageGradientScharrInterleaveds16,
                                         [&] { return suitsDsp(srcWidth, srcHeight, src, srcStride, gradients); });
    // clang-format off
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth - 2, 2 * sizeof(int16_t)),
                         src && srcWidth && srcHeight && (srcStride >= srcWidth)&& gradients &&
                         (gradStride >= ((srcWidth-2)*2*sizeof(int16_t))));
    // clang-format on
    implementation<Slot::rvkImageGradientScharrInterleaveds16>(target)(src, srcWidth, srcHeight, srcStride, gradients,
                                                                       gradStride);
}

void rvkFilterSobel3x3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                         uint32_t dstStride)
{
    strength(__func__, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkFilterSobel3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                            uint32_t dstStride)
{
    strength(__func__, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

// ---- Sobel of any size, with a border ------------------------------------------------------------

rvkStatus rvkFilterSobel3x3u8s16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 int16_t* dx, int16_t* dy, uint32_t dxyStride, uint32_t borderType, uint8_t borderValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dxyStride = packedIfZero(dxyStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterSobel3x3u8s16, [&] {
        return aligned(8, src, srcStride, dx, dy, dxyStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 3;
    });
    RVK_CHECK_STATUS(rowFits(srcWidth, sizeof(int16_t)) && src && srcWidth && srcHeight && srcStride >= srcWidth &&
                     (dx != dy || !dx) && dxyStride >= srcWidth * sizeof(int16_t));
    return implementation<Slot::rvkFilterSobel3x3u8s16>(target)(src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride,
                                                                borderType, borderValue);
}

rvkStatus rvkFilterSobel5x5u8s16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 int16_t* dx, int16_t* dy, uint32_t dxyStride, uint32_t borderType, uint8_t borderValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dxyStride = packedIfZero(dxyStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterSobel5x5u8s16, [&] {
        return aligned(8, src, srcStride, dx, dy, dxyStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 5;
    });
    RVK_CHECK_STATUS(rowFits(srcWidth, sizeof(int16_t)) && src && srcWidth && srcHeight && srcStride >= srcWidth &&
                     (dx != dy || !dx) && dxyStride >= srcWidth * sizeof(int16_t));
    return implementation<Slot::rvkFilterSobel5x5u8s16>(target)(src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride,
                                                                borderType, borderValue);
}

rvkStatus rvkFilterSobel7x7u8s16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 int16_t* dx, int16_t* dy, uint32_t dxyStride, uint32_t borderType, uint8_t borderValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dxyStride = packedIfZero(dxyStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterSobel7x7u8s16, [&] {
        return aligned(8, src, srcStride, dx, dy, dxyStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 7;
    });
    RVK_CHECK_STATUS(rowFits(srcWidth, sizeof(int16_t)) && src && srcWidth && srcHeight && srcStride >= srcWidth &&
                     (dx != dy || !dx) && dxyStride >= srcWidth * sizeof(int16_t));
    return implementation<Slot::rvkFilterSobel7x7u8s16>(target)(src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride,
                                                                borderType, borderValue);
}
