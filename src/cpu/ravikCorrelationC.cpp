// C references of the correlation and convolution filters.
#include "functions.h"
#include "image.h"
#include "scratch.h"

#include <algorithm>

namespace rvk {
namespace {

// Weights row by row, read from the first to the last for a correlation and from the last to the first for a
// convolution.
template <class Weight>
struct Taps
{
    const Weight* first; // that is read
    size_t M, N;         // columns and rows
    ptrdiff_t step;

    Taps(const Weight* weights, size_t columns, size_t rows, bool turned)
        : first(turned ? weights + columns * rows - 1 : weights), M(columns), N(rows), step(turned ? -1 : 1)
    {
    }

    const Weight* row(size_t j) const { return first + static_cast<ptrdiff_t>(j * M) * step; }
};

// Where position i lies when positions begin `before` ahead of the picture: on the nearest pixel inside.
size_t nearest(size_t i, size_t before, size_t size)
{
    return i < before ? 0 : std::min(i - before, size - 1);
}

// The sum of value(i) times the i-th of `count` weights, `step` apart, modulo 2^32.
template <class Value, class Weight>
int32_t wrappingSum(size_t count, Value value, const Weight* weights, ptrdiff_t step)
{
    uint32_t sum = 0;
    ptrdiff_t place = 0;
    for (size_t i = 0; i < count; ++i) {
        sum += static_cast<uint32_t>(int32_t{value(i)} * int32_t{weights[place]});
        place += step;
    }
    return static_cast<int32_t>(sum);
}

// Row j of the kernel on the pixels of `row` from position x on. Only at the ends of the row can they lie outside.
template <class S, class Weight>
int32_t sumAlong(const S* row, size_t width, size_t x, size_t before, const Taps<Weight>& kernel, size_t j)
{
    const bool isInside = x >= before && x - before + kernel.M <= width;
    if (isInside) {
        const S* const pixels = row + (x - before);
        return wrappingSum(
            kernel.M, [=](size_t i) { return pixels[i]; }, kernel.row(j), kernel.step);
    }
    return wrappingSum(
        kernel.M, [=](size_t i) { return row[nearest(x + i, before, width)]; }, kernel.row(j), kernel.step);
}

// `width` x `height` outputs; the window of the first begins beforeX columns and beforeY rows outside the picture.
template <class S, class Weight, class D>
rvkStatus correlate(uint32_t srcWidth, uint32_t srcHeight, Plane<const S> src, Taps<Weight> kernel, uint32_t shift,
                    size_t beforeX, size_t beforeY, size_t width, size_t height, Plane<D> dst)
{
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x) {
            uint32_t sum = 0;
            for (size_t j = 0; j < kernel.N; ++j) {
                const S* row = src.row(nearest(y + j, beforeY, srcHeight));
                sum += static_cast<uint32_t>(sumAlong(row, srcWidth, x, beforeX, kernel, j));
            }
            dst.row(y)[x] = saturate<D>(static_cast<int32_t>(sum) >> shift);
        }
    return RAVIK_SUCCESS;
}

// The whole picture.
template <class S, class Weight, class D>
rvkStatus correlate(uint32_t width, uint32_t height, Plane<const S> src, Taps<Weight> kernel, uint32_t shift,
                    Plane<D> dst)
{
    return correlate(width, height, src, kernel, shift, kernel.M / 2, kernel.N / 2, width, height, dst);
}

template <class S, class D>
rvkStatus correlateSeparably(uint32_t width, uint32_t height, Plane<const S> src, Taps<int16_t> kernelX,
                             Taps<int16_t> kernelY, uint32_t shiftX, uint32_t shiftY, Plane<D> dst)
{
    const size_t M = kernelX.M, N = kernelY.N;
    const Scratch<int16_t> rowSums(N, width); // of the rows of a window; row k of the window's rows lies at k modulo N
    if (!rowSums)
        return RAVIK_ENORES;
    for (size_t y = 0; y < height + N - 1; ++y) {
        const S* row = src.row(nearest(y, N / 2, height));
        for (size_t x = 0; x < width; ++x)
            rowSums[y % N * width + x] = saturate<int16_t>(sumAlong(row, width, x, M / 2, kernelX, 0) >> shiftX);
        if (y + 1 < N)
            continue;
        const size_t top = y + 1 - N, oldest = top % N;
        const auto rowOf = [=](size_t j) { return oldest + j < N ? oldest + j : oldest + j - N; };
        for (size_t x = 0; x < width; ++x)
            dst.row(top)[x] = saturate<D>(
                wrappingSum(
                    N, [&](size_t j) { return rowSums[rowOf(j) * width + x]; }, kernelY.first, kernelY.step) >>
                shiftY);
    }
    return RAVIK_SUCCESS;
}

} // namespace

// ---- kernels of two dimensions ------------------------------------------------------------------

rvkStatus rvkFilterCorrNxNu8f32C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 const float32_t* kernel, uint32_t N, float32_t* dst, uint32_t dstStride)
{
    for (size_t y = 0; y < srcHeight; ++y)
        for (size_t x = 0; x < srcWidth; ++x) {
            float sum = 0;
            for (size_t j = 0; j < N; ++j) {
                const uint8_t* row = Plane{src, srcStride}.row(nearest(y + j, N / 2, srcHeight));
                for (size_t i = 0; i < N; ++i)
                    sum += kernel[j * N + i] * static_cast<float>(row[nearest(x + i, N / 2, srcWidth)]);
            }
            Plane{dst, dstStride}.row(y)[x] = sum;
        }
    return RAVIK_SUCCESS;
}

rvkStatus rvkConvValids16C(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                           const int16_t* kernel, uint32_t M, uint32_t N, uint32_t shift, int16_t* dst,
                           uint32_t dstStride)
{
    return correlate(srcWidth, srcHeight, Plane{src, srcStride}, Taps<int16_t>{kernel, M, N, true}, shift, 0, 0,
                     srcWidth - M + 1, srcHeight - N + 1, Plane{dst, dstStride});
}

} // namespace rvk

#include "forms/ravikCorrelationForms.h"
