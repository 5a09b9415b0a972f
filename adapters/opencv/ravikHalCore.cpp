// The hooks of OpenCV's module core.
#include "hal.h"

#include <ravik/arithm.h>
#include <ravik/bitcount.h>
#include <ravik/channel.h>
#include <ravik/diff.h>
#include <ravik/linearalgebra.h>
#include <ravik/minmax.h>
#include <ravik/statistics.h>
#include <ravik/transform.h>

#include <memory>
#include <new>
#include <utility>

using namespace rvk::hal;

// ---- element by element ------------------------------------------------------------------------------------------

namespace {

struct Strides
{
    uint32_t src1, src2, dst;
};

// Calls `call` with the strides of pictures that the library can take, where it may write `dst`.
template <typename T, typename D, typename Call>
int onPictures(const T* src1, size_t src1Step, const T* src2, size_t src2Step, const D* dst, size_t dstStep, int width,
               int height, Call call)
{
    if (!areStrides(width, height, sizeof(T), {src1Step, src2Step}) || !areStrides(width, height, sizeof(D), {dstStep}))
        return kNotImplemented;
    const size_t srcRow = width * sizeof(T), dstRow = width * sizeof(D);
    if (!mayWrite(src1, src1Step, srcRow, dst, dstStep, dstRow, height) ||
        !mayWrite(src2, src2Step, srcRow, dst, dstStep, dstRow, height))
        return kNotImplemented;
    call(Strides{strideOf(src1Step, height), strideOf(src2Step, height), strideOf(dstStep, height)});
    return kOk;
}

// For functions of the library whose sources have one stride: row by row where the steps differ.
template <typename T, typename D, typename Function>
int oneStride(Function function, const T* src1, size_t src1Step, const T* src2, size_t src2Step, D* dst, size_t dstStep,
              int width, int height)
{
    return onPictures(src1, src1Step, src2, src2Step, dst, dstStep, width, height, [=](Strides strides) {
        if (strides.src1 == strides.src2) {
            function(src1, src2, uint32_t(width), uint32_t(height), strides.src1, dst, strides.dst);
            return;
        }
        for (int y = 0; y < height; y++)
            function(src1 + y * (src1Step / sizeof(T)), src2 + y * (src2Step / sizeof(T)), uint32_t(width), 1u, 0u,
                     dst + y * (dstStep / sizeof(D)), 0u);
    });
}

} // namespace

int ravik_hal_absdiff8u(const uint8_t* src1, size_t src1Step, const uint8_t* src2, size_t src2Step, uint8_t* dst,
                        size_t dstStep, int width, int height)
{
    return oneStride(rvkAbsDiffu8, src1, src1Step, src2, src2Step, dst, dstStep, width, height);
}

int ravik_hal_mul8u(const uint8_t* src1, size_t src1Step, const uint8_t* src2, size_t src2Step, uint8_t* dst,
                    size_t dstStep, int width, int height, double scale)
{
    if (scale != 1)
        return kNotImplemented;
    return onPictures(src1, src1Step, src2, src2Step, dst, dstStep, width, height, [=](Strides strides) {
        rvkElementMultiplyu8(src1, width, height, strides.src1, src2, strides.src2, RAVIK_POLICY_SATURATE, 0, dst,
                             strides.dst);
    });
}

int ravik_hal_sub8u32f(const uint8_t* src1, size_t src1Step, const uint8_t* src2, size_t src2Step, float* dst,
                       size_t dstStep, int width, int height)
{
    return oneStride(rvkImageDiffu8f32, src1, src1Step, src2, src2Step, dst, dstStep, width, height);
}

int ravik_hal_mul8u16u(const uint8_t* src1, size_t src1Step, const uint8_t* src2, size_t src2Step, uint16_t* dst,
                       size_t dstStep, int width, int height, double scale)
{
    if (scale != 1)
        return kNotImplemented;
    return onPictures(src1, src1Step, src2, src2Step, dst, dstStep, width, height, [=](Strides strides) {
        rvkElementMultiplyu8u16(src1, width, height, strides.src1, src2, strides.src2, dst, strides.dst);
    });
}

// ---- channels ----------------------------------------------------------------------------------------------------

namespace {

// OpenCV writes past the caches, which is faster for what does not fit into them. Four channels gain nothing.
bool areChannelsInCaches(int length, int channels)
{
    return length > 0 && (channels == 2 || channels == 3) && length <= (1 << 20) / channels;
}

} // namespace

int ravik_hal_split8u(const uint8_t* src, uint8_t** dst, int length, int channels)
{
    if (!areChannelsInCaches(length, channels))
        return kNotImplemented;
    const Extent from = extentOf(src, 0, size_t(length) * channels, 1);
    for (int i = 0; i < channels; i++) {
        const Extent to = extentOf(dst[i], 0, length, 1);
        if (!areApart(from, to) || (i > 0 && !areApart(extentOf(dst[i - 1], 0, length, 1), to)))
            return kNotImplemented;
    }
    if (channels == 2) {
        rvkDeinterleaveu8(src, length, 1, 0, dst[0], 0, dst[1], 0);
        return kOk;
    }
    for (const uint32_t channel : {RAVIK_CHANNEL_R, RAVIK_CHANNEL_G, RAVIK_CHANNEL_B})
        rvkChannelExtractu8(src, length, 1, 0, nullptr, 0, RAVIK_FORMAT_RGB, channel, *dst++, 0);
    return kOk;
}

int ravik_hal_merge8u(const uint8_t** src, uint8_t* dst, int length, int channels)
{
    if (!areChannelsInCaches(length, channels))
        return kNotImplemented;
    if (channels == 2)
        return done(rvkChannelCombine2Planesu8(src[0], length, 1, 0, src[1], 0, dst, 0));
    return done(rvkChannelCombine3Planesu8(src[0], length, 1, 0, src[1], 0, src[2], 0, dst, 0));
}

// ---- pixels moved ------------------------------------------------------------------------------------------------

namespace {

// The size of a pixel of one of OpenCV's types.
size_t pixelSize(size_t type)
{
    constexpr uint8_t sizes[] = {1, 1, 2, 2, 4, 4, 8, 2};
    return sizes[type & 7] * ((type >> 3) + 1);
}

// Whether the library can take pictures whose rows it sees as bytes, and write `dst`.
bool areRowsOfBytes(const void* src, size_t srcStep, const void* dst, size_t dstStep, int width, int height,
                    size_t pixel)
{
    return areStrides(width, height, pixel, {srcStep, dstStep}) && width <= INT32_MAX / int(pixel) &&
           mayWrite(src, srcStep, width * pixel, dst, dstStep, width * pixel, height);
}

// The library's pixels of 16 and 32 bits are aligned, as OpenCV's of several bytes need not be.
template <typename T>
bool areAligned(const void* src, size_t srcStep, const void* dst, size_t dstStep)
{
    return (reinterpret_cast<uintptr_t>(src) | reinterpret_cast<uintptr_t>(dst) | srcStep | dstStep) % alignof(T) == 0;
}

template <typename T>
using Transpose = void (*)(const T* src, uint32_t width, uint32_t height, uint32_t srcStride, T* dst,
                           uint32_t dstStride);

template <typename T>
int transpose(Transpose<T> function, const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width,
              int height)
{
    if (!areAligned<T>(src, srcStep, dst, dstStep))
        return kNotImplemented;
    function(reinterpret_cast<const T*>(src), width, height, strideOf(srcStep, height), reinterpret_cast<T*>(dst),
             strideOf(dstStep, width));
    return kOk;
}

} // namespace

int ravik_hal_transpose2d(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width, int height,
                          int pixel)
{
    if (pixel < 1 || pixel > 4 || !areStrides(width, height, pixel, {srcStep}) ||
        !areStrides(height, width, pixel, {dstStep}) ||
        !areApart(extentOf(src, srcStep, size_t(width) * pixel, height),
                  extentOf(dst, dstStep, size_t(height) * pixel, width)))
        return kNotImplemented;
    switch (pixel) {
    case 1:
        return transpose<uint8_t>(rvkTransposeu8, src, srcStep, dst, dstStep, width, height);
    case 2:
        return transpose<uint16_t>(rvkTransposeu16, src, srcStep, dst, dstStep, width, height);
    case 3:
        return transpose<uint8_t>(rvkTransposeRGB888u8, src, srcStep, dst, dstStep, width, height);
    default:
        return transpose<float>(rvkTransposef32, src, srcStep, dst, dstStep, width, height);
    }
}

int ravik_hal_flip(int type, const uint8_t* src, size_t srcStep, int width, int height, uint8_t* dst, size_t dstStep,
                   int mode)
{
    const size_t pixel = pixelSize(type), row = width * pixel;
    if (!areRowsOfBytes(src, srcStep, dst, dstStep, width, height, pixel))
        return kNotImplemented;
    const uint32_t stride = strideOf(srcStep, height), dstStride = strideOf(dstStep, height);
    const uint32_t direction = mode == 0 ? RAVIK_FLIP_VERTICAL : mode > 0 ? RAVIK_FLIP_HORIZONTAL : RAVIK_FLIP_BOTH;
    if (pixel == 1 || mode == 0) { // rows change places, whatever they consist of
        rvkFlipu8(src, uint32_t(row), height, stride, dst, dstStride, direction);
        return kOk;
    }
    if (pixel == 2 && areAligned<uint16_t>(src, srcStep, dst, dstStep)) {
        rvkFlipu16(reinterpret_cast<const uint16_t*>(src), width, height, stride, reinterpret_cast<uint16_t*>(dst),
                   dstStride, direction);
        return kOk;
    }
    if (pixel == 3) {
        rvkFlipRGB888u8(src, width, height, stride, dst, dstStride, direction);
        return kOk;
    }
    return kNotImplemented;
}

int ravik_hal_rotate90(int type, const uint8_t* src, size_t srcStep, int width, int height, uint8_t* dst,
                       size_t dstStep, int angle)
{
    if (angle == 180)
        return ravik_hal_flip(type, src, srcStep, width, height, dst, dstStep, -1);
    const size_t pixel = pixelSize(type);
    if ((angle != 90 && angle != 270) || pixel > 3)
        return kNotImplemented;
    if (pixel == 3) { // in two steps
        const int status = ravik_hal_transpose2d(src, srcStep, dst, dstStep, width, height, int(pixel));
        return status == kOk ? ravik_hal_flip(type, dst, dstStep, height, width, dst, dstStep, angle == 90) : status;
    }
    if (!areStrides(width, height, pixel, {srcStep}) || !areStrides(height, width, pixel, {dstStep}) ||
        !areApart(extentOf(src, srcStep, width * pixel, height), extentOf(dst, dstStep, height * pixel, width)))
        return kNotImplemented;
    const auto function = pixel == 1 ? rvkRotateImageu8 : rvkRotateImageInterleavedu8;
    return done(function(src, width, height, strideOf(srcStep, height), dst, strideOf(dstStep, width),
                         angle == 90 ? RAVIK_ROTATE_90 : RAVIK_ROTATE_270));
}

int ravik_hal_lut(const uint8_t* src, size_t srcStep, size_t srcType, const uint8_t* table, size_t entrySize,
                  size_t tableChannels, uint8_t* dst, size_t dstStep, int width, int height)
{
    if ((srcType & 7) != k8U || entrySize != 1 || tableChannels != 1)
        return kNotImplemented;
    const size_t pixel = pixelSize(srcType), row = width * pixel;
    if (!areRowsOfBytes(src, srcStep, dst, dstStep, width, height, pixel))
        return kNotImplemented;
    return done(
        rvkTableLookupu8(src, uint32_t(row), height, strideOf(srcStep, height), table, dst, strideOf(dstStep, height)));
}

// ---- distances ---------------------------------------------------------------------------------------------------

int ravik_hal_normHamming8u(const uint8_t* a, int length, int cellSize, int* result)
{
    if (cellSize != 1 || length < 0)
        return kNotImplemented;
    *result = int(rvkBitCountu8(a, uint32_t(length)));
    return kOk;
}

int ravik_hal_normHammingDiff8u(const uint8_t* a, const uint8_t* b, int length, int cellSize, int* result)
{
    if (cellSize != 1 || length < 0)
        return kNotImplemented;
    *result = int(rvkHammingDistanceu8(a, b, uint32_t(length)));
    return kOk;
}

// ---- matrices ----------------------------------------------------------------------------------------------------

namespace {

// A factor of a product as the library takes it: as it is stored, or its transpose in memory of its own.
struct Factor
{
    const float* data; // null where there is no memory
    uint32_t stride;
    std::unique_ptr<float[]> transpose;
};

Factor factorOf(const float* data, size_t step, int width, int height, bool isTransposed)
{
    if (!isTransposed)
        return {data, strideOf(step, height), nullptr};
    std::unique_ptr<float[]> transpose(new (std::nothrow) float[size_t(width) * height]);
    if (transpose)
        rvkTransposef32(data, width, height, strideOf(step, height), transpose.get(), 0);
    const float* transposed = transpose.get();
    return {transposed, 0, std::move(transpose)};
}

} // namespace

int ravik_hal_gemm32f(const float* src1, size_t src1Step, const float* src2, size_t src2Step, float alpha,
                      const float* src3, size_t, float beta, float* dst, size_t dstStep, int height1, int width1,
                      int dstWidth, int flags)
{
    // OpenCV sums in double precision. A sum of 512 products in single precision is within 2^-15 of the sum of their
    // magnitudes, and OpenCV's tests allow 5e-5.
    constexpr int kLongestSum = 512, kTransposed1 = 1, kTransposed2 = 2;
    // The library computes several columns at once; OpenCV is faster with a few long rows that only have to be summed.
    constexpr int kLongRow = 32, kFewRows = 4;
    if ((flags & ~(kTransposed1 | kTransposed2)) || (src3 && beta != 0))
        return kNotImplemented;
    const bool transposed1 = flags & kTransposed1, transposed2 = flags & kTransposed2;
    const int length = transposed1 ? height1 : width1, dstHeight = transposed1 ? width1 : height1;
    const int width2 = transposed2 ? length : dstWidth, height2 = transposed2 ? dstWidth : length;
    const bool areSummed = dstWidth == 1 || (transposed2 && (dstWidth < kFewRows || dstHeight < kFewRows));
    if (length > kLongestSum || (areSummed && length > kLongRow))
        return kNotImplemented;
    if (!areStrides(width1, height1, sizeof(float), {src1Step}) ||
        !areStrides(width2, height2, sizeof(float), {src2Step}) ||
        !areStrides(dstWidth, dstHeight, sizeof(float), {dstStep}))
        return kNotImplemented;
    const Extent to = extentOf(dst, dstStep, dstWidth * sizeof(float), dstHeight);
    if (!areApart(to, extentOf(src1, src1Step, width1 * sizeof(float), height1)) ||
        !areApart(to, extentOf(src2, src2Step, width2 * sizeof(float), height2)))
        return kNotImplemented;
    const Factor a = factorOf(src1, src1Step, width1, height1, transposed1);
    const Factor b = factorOf(src2, src2Step, width2, height2, transposed2);
    if (!a.data || !b.data)
        return kNotImplemented;
    const uint32_t stride = strideOf(dstStep, dstHeight);
    const rvkStatus status =
        rvkMatrixMultiplyf32(a.data, length, dstHeight, a.stride, b.data, dstWidth, b.stride, dst, stride);
    if (status == RAVIK_SUCCESS && alpha != 1)
        return done(rvkMultiplyScalarf32(dst, dstWidth, dstHeight, stride, alpha, dst, stride));
    return done(status);
}

int ravik_hal_SVD32f(float* src, size_t srcStep, float* w, float*, size_t, float*, size_t, int m, int n, int flags)
{
    // Without vectors: OpenCV's are less exact, but their errors cancel when equations are solved by them.
    constexpr int kNoVectors = 1, kSmallest = 6; // OpenCV is as fast below
    if (flags != kNoVectors || m < n || n < kSmallest || !areStrides(m, n, sizeof(float), {srcStep}))
        return kNotImplemented;
    return done(rvkSVDf32(src, m, n, strideOf(srcStep, n), w, nullptr, 0, nullptr, 0));
}

// ---- extremes ----------------------------------------------------------------------------------------------------

namespace {

template <typename T>
using MinMaxLoc = rvkStatus (*)(const T* src, uint32_t width, uint32_t height, uint32_t stride, T* minVal, T* maxVal,
                                uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY);

template <typename T>
int minMaxIdx(MinMaxLoc<T> function, const uint8_t* src, size_t step, int width, int height, double* minVal,
              double* maxVal, int* minIdx, int* maxIdx)
{
    if (!areStrides(width, height, sizeof(T), {step}))
        return kNotImplemented;
    T low, high;
    uint32_t lowX, lowY, highX, highY;
    const rvkStatus status = function(reinterpret_cast<const T*>(src), width, height, strideOf(step, height), &low,
                                      &high, &lowX, &lowY, &highX, &highY);
    if (status != RAVIK_SUCCESS || low != low) // a NaN that comes first is passed over by OpenCV
        return kNotImplemented;
    if (minVal)
        *minVal = low;
    if (maxVal)
        *maxVal = high;
    if (minIdx) {
        minIdx[0] = int(lowY);
        minIdx[1] = int(lowX);
    }
    if (maxIdx) {
        maxIdx[0] = int(highY);
        maxIdx[1] = int(highX);
    }
    return kOk;
}

} // namespace

int ravik_hal_minMaxIdx(const uint8_t* src, size_t step, int width, int height, int depth, double* minVal,
                        double* maxVal, int* minIdx, int* maxIdx, uint8_t* mask)
{
    // Of pictures with several channels OpenCV 4.6 tells the width in pixels; where places are asked for there is one.
    if (mask || (!minIdx && !maxIdx))
        return kNotImplemented;
    switch (depth) {
    case k8U:
        return minMaxIdx<uint8_t>(rvkMinMaxLocu8_v2, src, step, width, height, minVal, maxVal, minIdx, maxIdx);
    case k16U:
        return minMaxIdx<uint16_t>(rvkMinMaxLocu16_v2, src, step, width, height, minVal, maxVal, minIdx, maxIdx);
    case k16S:
        return minMaxIdx<int16_t>(rvkMinMaxLocs16_v2, src, step, width, height, minVal, maxVal, minIdx, maxIdx);
    case k32S:
        return minMaxIdx<int32_t>(rvkMinMaxLocs32_v2, src, step, width, height, minVal, maxVal, minIdx, maxIdx);
    case k32F:
        return minMaxIdx<float>(rvkMinMaxLocf32_v2, src, step, width, height, minVal, maxVal, minIdx, maxIdx);
    default:
        return kNotImplemented;
    }
}
