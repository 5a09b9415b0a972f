// The hooks of OpenCV's module core.
#include "hal.h"

#include <ravik/diff.h>

using namespace rvk::hal;

namespace {

// For functions of the library whose sources have one stride: `call(src1, src2, height, srcStride, dst, dstStride)` on
// the whole pictures, or row by row where the steps differ.
template <typename T, typename D, typename Call>
int withOneStride(const T* src1, size_t src1Step, const T* src2, size_t src2Step, D* dst, size_t dstStep, int width,
                  int height, Call call)
{
    if (!areStrides(width, height, sizeof(T), {src1Step, src2Step}) || !areStrides(width, height, sizeof(D), {dstStep}))
        return kNotImplemented;
    if (src1Step == src2Step || height == 1) {
        call(src1, src2, uint32_t(height), strideOf(src1Step, height), dst, strideOf(dstStep, height));
        return kOk;
    }
    for (int y = 0; y < height; y++)
        call(src1 + y * (src1Step / sizeof(T)), src2 + y * (src2Step / sizeof(T)), 1u, 0u,
             dst + y * (dstStep / sizeof(D)), 0u);
    return kOk;
}

} // namespace

int ravik_hal_absdiff8u(const uint8_t* src1, size_t src1Step, const uint8_t* src2, size_t src2Step, uint8_t* dst,
                        size_t dstStep, int width, int height)
{
    return withOneStride(src1, src1Step, src2, src2Step, dst, dstStep, width, height,
                         [width](const uint8_t* a, const uint8_t* b, uint32_t rows, uint32_t stride, uint8_t* to,
                                 uint32_t toStride) { rvkAbsDiffu8(a, b, width, rows, stride, to, toStride); });
}
