// Absolute and signed differences: the public functions.
#include "bodies.h"

using namespace rvk;

namespace {

// Two images with one stride. The DSP takes bytes by whole double words.
template <Slot slot, class S, class D>
void subtract(Words words, const S* src1, const S* src2, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
              D* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(S));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(D));
    const RVK_IMPL target = chooseTarget(slot, [&] {
        return aligned(sizeof(S) == 4 ? 4 : 8, src1, src2, dst, srcStride, dstStride) &&
               (sizeof(S) != 1 || aligned(8, srcWidth)) && enoughWork(srcWidth, srcHeight, sizeof(S) == 4 ? 8 : 1);
    });
    if (!(src1 && src2 && dst && srcWidth && srcHeight && srcStride >= rowSize(srcWidth, sizeof(S)) &&
          dstStride >= rowSize(srcWidth, sizeof(D))))
        return refuse<slot>(words);
    implementation<slot>(target)(src1, src2, srcWidth, srcHeight, srcStride, dst, dstStride);
}

} // namespace

// Conditions as the log quotes them. The arguments are the factors of the width that make a row's size.
#define RVK_TWO_IMAGES(sourceSize, destinationSize)                                         \
    "src1 && src2 && dst && srcWidth && srcHeight && (srcStride >= srcWidth" sourceSize ")" \
    " && (dstStride >= srcWidth" destinationSize ")"
#define RVK_ONE_IMAGE(size)                                                  \
    "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth" size ")" \
    " && (dstStride >= srcWidth" size ")"

void rvkAbsDiffu8(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                  uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkAbsDiffu8, [&] {
        return aligned(8, src1, src2, dst, srcStride) && enoughWork(srcWidth, srcHeight) && aligned(8, dstStride) &&
               srcWidth >= 32;
    });
    RVK_CHECK_ARGS(src1 && src2 && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride);
    implementation<Slot::rvkAbsDiffu8>(target)(src1, src2, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkAbsDiffs32(const int32_t* src1, const int32_t* src2, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                   int32_t* dst, uint32_t dstStride)
{
    subtract<Slot::rvkAbsDiffs32>({__func__, RVK_TWO_IMAGES(" * sizeof(int32_t)", " * sizeof(int32_t)")}, src1, src2,
                                  srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkAbsDifff32(const float32_t* src1, const float32_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                   uint32_t srcStride, float32_t* dst, uint32_t dstStride)
{
    subtract<Slot::rvkAbsDifff32>({__func__, RVK_TWO_IMAGES(" * sizeof(float32_t)", " * sizeof(float32_t)")}, src1,
                                  src2, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkAbsDiffVu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t value,
                   uint8_t* dst, uint32_t dstStride)
{
    combineWithNumbers<Slot::rvkAbsDiffVu8>({__func__, RVK_ONE_IMAGE("")}, src, srcWidth, srcHeight, srcStride, dst,
                                            dstStride, value);
}

void rvkAbsDiffVs32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int32_t value,
                    int32_t* dst, uint32_t dstStride)
{
    combineWithNumbers<Slot::rvkAbsDiffVs32>({__func__, RVK_ONE_IMAGE(" * sizeof(int32_t)")}, src, srcWidth, srcHeight,
                                             srcStride, dst, dstStride, value);
}

void rvkAbsDiffVf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t value,
                    float32_t* dst, uint32_t dstStride)
{
    combineWithNumbers<Slot::rvkAbsDiffVf32>({__func__, RVK_ONE_IMAGE(" * sizeof(float32_t)")}, src, srcWidth,
                                             srcHeight, srcStride, dst, dstStride, value);
}

void rvkAbsDiffVc3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t value1,
                     uint8_t value2, uint8_t value3, uint8_t* dst, uint32_t dstStride)
{
    combineWithNumbers<Slot::rvkAbsDiffVc3u8, 3>({__func__, RVK_ONE_IMAGE(" * 3")}, src, srcWidth, srcHeight, srcStride,
                                                 dst, dstStride, value1, value2, value3);
}

void rvkAbsDiffVc3s32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int32_t value1,
                      int32_t value2, int32_t value3, int32_t* dst, uint32_t dstStride)
{
    combineWithNumbers<Slot::rvkAbsDiffVc3s32, 3>({__func__, RVK_ONE_IMAGE(" * 3 * sizeof(int32_t)")}, src, srcWidth,
                                                  srcHeight, srcStride, dst, dstStride, value1, value2, value3);
}

void rvkAbsDiffVc3f32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t value1,
                      float32_t value2, float32_t value3, float32_t* dst, uint32_t dstStride)
{
    combineWithNumbers<Slot::rvkAbsDiffVc3f32, 3>({__func__, RVK_ONE_IMAGE(" * 3 * sizeof(float32_t)")}, src, srcWidth,
                                                  srcHeight, srcStride, dst, dstStride, value1, value2, value3);
}

void rvkAbsDiffVc4u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t value1,
                     uint8_t value2, uint8_t value3, uint8_t value4, uint8_t* dst, uint32_t dstStride)
{
    combineWithNumbers<Slot::rvkAbsDiffVc4u8, 4>({__func__, RVK_ONE_IMAGE(" * 4")}, src, srcWidth, srcHeight, srcStride,
                                                 dst, dstStride, value1, value2, value3, value4);
}

void rvkAbsDiffVc4s32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int32_t value1,
                      int32_t value2, int32_t value3, int32_t value4, int32_t* dst, uint32_t dstStride)
{
    combineWithNumbers<Slot::rvkAbsDiffVc4s32, 4>({__func__, RVK_ONE_IMAGE(" * 4 * sizeof(int32_t)")}, src, srcWidth,
                                                  srcHeight, srcStride, dst, dstStride, value1, value2, value3, value4);
}

void rvkAbsDiffVc4f32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t value1,
                      float32_t value2, float32_t value3, float32_t value4, float32_t* dst, uint32_t dstStride)
{
    combineWithNumbers<Slot::rvkAbsDiffVc4f32, 4>({__func__, RVK_ONE_IMAGE(" * 4 * sizeof(float32_t)")}, src, srcWidth,
                                                  srcHeight, srcStride, dst, dstStride, value1, value2, value3, value4);
}

void rvkImageDiffu8(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight, uint8_t* dst)
{
    subtract<Slot::rvkImageDiffu8_v2>({__func__, "src1 && src2 && dst && srcWidth && srcHeight"}, src1, src2, srcWidth,
                                      srcHeight, srcWidth, dst, srcWidth);
}

void rvkImageDiffu8_v2(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                       uint32_t srcStride, uint8_t* dst, uint32_t dstStride)
{
    subtract<Slot::rvkImageDiffu8_v2>({__func__, RVK_TWO_IMAGES("", "")}, src1, src2, srcWidth, srcHeight, srcStride,
                                      dst, dstStride);
}

void rvkImageDiffs16(const int16_t* src1, const int16_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                     uint32_t srcStride, int16_t* dst, uint32_t dstStride)
{
    subtract<Slot::rvkImageDiffs16>({__func__, RVK_TWO_IMAGES(" * sizeof(int16_t)", " * sizeof(int16_t)")}, src1, src2,
                                    srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkImageDifff32(const float32_t* src1, const float32_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                     uint32_t srcStride, float32_t* dst, uint32_t dstStride)
{
    subtract<Slot::rvkImageDifff32>({__func__, RVK_TWO_IMAGES(" * sizeof(float32_t)", " * sizeof(float32_t)")}, src1,
                                    src2, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkImageDiffu8f32(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                       uint32_t srcStride, float32_t* dst, uint32_t dstStride)
{
    subtract<Slot::rvkImageDiffu8f32>({__func__, RVK_TWO_IMAGES("", " * sizeof(float32_t)")}, src1, src2, srcWidth,
                                      srcHeight, srcStride, dst, dstStride);
}

void rvkImageDiffu8s8(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                      uint32_t srcStride, int8_t* dst, uint32_t dstStride)
{
    subtract<Slot::rvkImageDiffu8s8>({__func__, RVK_TWO_IMAGES("", "")}, src1, src2, srcWidth, srcHeight, srcStride,
                                     dst, dstStride);
}
