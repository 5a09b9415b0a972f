// C references of image derivatives.
#include "cpu/ravikGradientC.h"
#include "functions.h"

#include <cstdlib>

namespace rvk {
namespace {

// ---- 3x3 ----------------------------------------------------------------------------------------

// An operator is a function of the rows above, at and below a pixel, and of its column.
Derivatives centralDifferences(const uint8_t* above, const uint8_t* row, const uint8_t* below, size_t x)
{
    return {row[x + 1] - row[x - 1], below[x] - above[x]};
}

Derivatives sobelDividedBy8(const uint8_t* above, const uint8_t* row, const uint8_t* below, size_t x)
{
    const Derivatives d = sobel3x3(above, row, below, x);
    return {d.dx >> 3, d.dy >> 3};
}

// put(x, y, operation's result) for every pixel that has eight neighbours.
template <class S, class Operation, class Put>
void forInterior(size_t width, size_t height, Plane<const S> src, Operation operation, Put put)
{
    for (size_t y = 1; y + 1 < height; ++y)
        for (size_t x = 1; x + 1 < width; ++x)
            put(x, y, operation(src.row(y - 1), src.row(y), src.row(y + 1), x));
}

template <class D, class Operation>
void interleaved(uint32_t width, uint32_t height, Plane<const uint8_t> src, Plane<D> gradients, Operation operation)
{
    forInterior(width, height, src, operation, [&](size_t x, size_t y, Derivatives d) {
        D* pair = gradients.row(y - 1) + 2 * (x - 1);
        pair[0] = static_cast<D>(d.dx);
        pair[1] = static_cast<D>(d.dy);
    });
}

template <class D, class Operation>
void planar(uint32_t width, uint32_t height, Plane<const uint8_t> src, Plane<D> dx, Plane<D> dy, Operation operation)
{
    forInterior(width, height, src, operation, [&](size_t x, size_t y, Derivatives d) {
        if (dx.data)
            dx.row(y)[x] = static_cast<D>(d.dx);
        if (dy.data)
            dy.row(y)[x] = static_cast<D>(d.dy);
    });
}

} // namespace

void rvkImageGradientInterleaveds16_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        int16_t* gradients, uint32_t gradStride)
{
    interleaved<int16_t>(srcWidth, srcHeight, {src, srcStride}, {gradients, gradStride}, centralDifferences);
}

void rvkImageGradientInterleavedf32_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        float32_t* gradients, uint32_t gradStride)
{
    interleaved<float>(srcWidth, srcHeight, {src, srcStride}, {gradients, gradStride}, centralDifferences);
}

void rvkImageGradientPlanars16_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    planar<int16_t>(srcWidth, srcHeight, {src, srcStride}, {dx, dxyStride}, {dy, dxyStride}, centralDifferences);
}

void rvkImageGradientPlanarf32_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    planar<float>(srcWidth, srcHeight, {src, srcStride}, {dx, dxyStride}, {dy, dxyStride}, centralDifferences);
}

void rvkImageGradientSobelInterleaveds16_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t srcStride, int16_t* gradients, uint32_t gradStride)
{
    interleaved<int16_t>(srcWidth, srcHeight, {src, srcStride}, {gradients, gradStride}, sobelDividedBy8);
}

void rvkImageGradientSobelPlanars16_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    planar<int16_t>(srcWidth, srcHeight, {src, srcStride}, {dx, dxyStride}, {dy, dxyStride}, sobelDividedBy8);
}

void rvkImageGradientSobelPlanars8_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       int8_t* dx, int8_t* dy, uint32_t dxyStride)
{
    planar<int8_t>(srcWidth, srcHeight, {src, srcStride}, {dx, dxyStride}, {dy, dxyStride}, sobelDividedBy8);
}

rvkStatus rvkImageGradientSobelInterleaveds16_v3C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                  uint32_t srcStride, int16_t* gradients, uint32_t gradStride)
{
    interleaved<int16_t>(srcWidth, srcHeight, {src, srcStride}, {gradients, gradStride}, sobel3x3);
    return RAVIK_SUCCESS;
}

void rvkImageGradientSobelInterleavedf32_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t srcStride, float32_t* gradients, uint32_t gradStride)
{
    interleaved<float>(srcWidth, srcHeight, {src, srcStride}, {gradients, gradStride}, sobel3x3);
}

void rvkImageGradientSobelPlanarf32_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    planar<float>(srcWidth, srcHeight, {src, srcStride}, {dx, dxyStride}, {dy, dxyStride}, sobel3x3);
}

rvkStatus rvkImageGradientSobelPlanars16_v3C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t srcStride, int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    if (!dx && !dy)
        return RAVIK_EBADPARAM;
    planar<int16_t>(srcWidth, srcHeight, {src, srcStride}, {dx, dxyStride}, {dy, dxyStride}, sobel3x3);
    return RAVIK_SUCCESS;
}

void rvkImageGradientSobelPlanarf32f32_v2C(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    struct FloatDerivatives
    {
        float dx, dy;
    };
    const auto sobel = [](const float* above, const float* row, const float* below, size_t x) -> FloatDerivatives {
        return {(above[x + 1] - above[x - 1]) + 2 * (row[x + 1] - row[x - 1]) + (below[x + 1] - below[x - 1]),
                (below[x - 1] - above[x - 1]) + 2 * (below[x] - above[x]) + (below[x + 1] - above[x + 1])};
    };
    const Plane planeDx = {dx, dxyStride}, planeDy = {dy, dxyStride};
    forInterior(srcWidth, srcHeight, Plane{src, srcStride}, sobel, [&](size_t x, size_t y, FloatDerivatives d) {
        planeDx.row(y)[x] = d.dx;
        planeDy.row(y)[x] = d.dy;
    });
}

void rvkImageGradientScharrInterleaveds16C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, int16_t* gradients, uint32_t gradStride)
{
    interleaved<int16_t>(srcWidth, srcHeight, {src, srcStride}, {gradients, gradStride}, derivatives3x3<3, 10>);
}

void rvkFilterSobel3x3u8_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride)
{
    const Plane out = {dst, dstStride};
    forInterior(srcWidth, srcHeight, Plane{src, srcStride}, sobel3x3, [&](size_t x, size_t y, Derivatives d) {
        out.row(y)[x] = saturate<uint8_t>(std::abs(d.dx) + std::abs(d.dy));
    });
}

// ---- any size, with a border --------------------------------------------------------------------

namespace {

constexpr int kSmooth3[] = {1, 2, 1}, kDifference3[] = {-1, 0, 1};
constexpr int kSmooth5[] = {1, 4, 6, 4, 1}, kDifference5[] = {-1, -2, 0, 2, 1};
constexpr int kSmooth7[] = {1, 6, 15, 20, 15, 6, 1}, kDifference7[] = {-1, -4, -5, 0, 5, 4, 1};

// The sum of the window's pixels, each times the weight of its column and that of its row.
template <size_t size, class Pixel>
int windowSum(const int (&columns)[size], const int (&rows)[size], Pixel pixel)
{
    int sum = 0;
    for (size_t j = 0; j < size; ++j) {
        int rowSum = 0;
        for (size_t i = 0; i < size; ++i)
            rowSum += columns[i] * pixel(i, j);
        sum += rows[j] * rowSum;
    }
    return sum;
}

// What store() makes of the sums of all pixels, or, without a border, of those whose window lies in the picture.
template <size_t size, class Store>
void separable(const int (&columns)[size], const int (&rows)[size], uint32_t width, uint32_t height,
               Plane<const uint8_t> src, Plane<int16_t> dst, uint32_t borderType, uint8_t borderValue, Store store)
{
    constexpr int64_t radius = size / 2;
    const bool replicate = borderType == RAVIK_BORDER_REPLICATE;
    const bool isBordered = replicate || borderType == RAVIK_BORDER_CONSTANT;
    const BorderedImage<uint8_t> bordered(src, width, height, replicate, borderValue);
    const int64_t margin = isBordered ? 0 : radius, right = bordered.right, bottom = bordered.bottom;
    for (int64_t y = margin; y <= bottom - margin; ++y)
        for (int64_t x = margin; x <= right - margin; ++x) {
            const auto inside = [&](size_t i, size_t j) {
                return src.row(static_cast<size_t>(y - radius) + j)[static_cast<size_t>(x - radius) + i];
            };
            const auto inOrOutside = [&](size_t i, size_t j) {
                return bordered.at(x - radius + static_cast<int64_t>(i), y - radius + static_cast<int64_t>(j));
            };
            const bool isInterior = x >= radius && x <= right - radius && y >= radius && y <= bottom - radius;
            dst.row(static_cast<size_t>(y))[x] =
                store(isInterior ? windowSum(columns, rows, inside) : windowSum(columns, rows, inOrOutside));
        }
}

template <size_t size>
rvkStatus sobel(const int (&smooth)[size], const int (&difference)[size], uint32_t width, uint32_t height,
                Plane<const uint8_t> src, Plane<int16_t> dx, Plane<int16_t> dy, uint32_t borderType,
                uint8_t borderValue)
{
    if (dx.data)
        separable(difference, smooth, width, height, src, dx, borderType, borderValue, saturate<int16_t, int>);
    if (dy.data)
        separable(smooth, difference, width, height, src, dy, borderType, borderValue, saturate<int16_t, int>);
    return dx.data || dy.data ? RAVIK_SUCCESS : RAVIK_EFAIL;
}

} // namespace

rvkStatus rvkFilterSobel3x3u8s16C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  int16_t* dx, int16_t* dy, uint32_t dxyStride, uint32_t borderType,
                                  uint8_t borderValue)
{
    return sobel(kSmooth3, kDifference3, srcWidth, srcHeight, {src, srcStride}, {dx, dxyStride}, {dy, dxyStride},
                 borderType, borderValue);
}

rvkStatus rvkFilterSobel5x5u8s16C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  int16_t* dx, int16_t* dy, uint32_t dxyStride, uint32_t borderType,
                                  uint8_t borderValue)
{
    return sobel(kSmooth5, kDifference5, srcWidth, srcHeight, {src, srcStride}, {dx, dxyStride}, {dy, dxyStride},
                 borderType, borderValue);
}

rvkStatus rvkFilterSobel7x7u8s16C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  int16_t* dx, int16_t* dy, uint32_t dxyStride, uint32_t borderType,
                                  uint8_t borderValue)
{
    return sobel(kSmooth7, kDifference7, srcWidth, srcHeight, {src, srcStride}, {dx, dxyStride}, {dy, dxyStride},
                 borderType, borderValue);
}

void sobel7x7Sixteenths(uint32_t width, uint32_t height, Plane<const uint8_t> src, Plane<int16_t> dx, Plane<int16_t> dy)
{
    // 7 or 8 sixteenths more, rounded down: a half goes up from an odd number alone.
    const auto sixteenth = [](int sum) { return static_cast<int16_t>((sum + 7 + (sum >> 4 & 1)) >> 4); };
    separable(kDifference7, kSmooth7, width, height, src, dx, RAVIK_BORDER_REPLICATE, 0, sixteenth);
    separable(kSmooth7, kDifference7, width, height, src, dy, RAVIK_BORDER_REPLICATE, 0, sixteenth);
}

} // namespace rvk
