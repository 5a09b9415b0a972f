// C references of the integral images.
#include "cpu/image.h"
#include "functions.h"

namespace rvk {
namespace {

uint32_t square(uint8_t pixel)
{
    return uint32_t{pixel} * pixel;
}

// dst(x, y) = the sum over what `valueAt` gives for the columns 0 to x and the rows 0 to y.
template <class Sum, class ValueAt>
void integrate(size_t width, size_t height, Plane<Sum> dst, ValueAt valueAt)
{
    for (size_t y = 0; y < height; ++y) {
        Sum row = 0;
        for (size_t x = 0; x < width; ++x) {
            row += valueAt(x, y);
            dst.row(y)[x] = y ? row + dst.row(y - 1)[x] : row;
        }
    }
}

// The same behind a row and a column of 0.
template <class ValueAt>
void integrateExclusive(size_t width, size_t height, Plane<uint32_t> dst, ValueAt valueAt)
{
    std::fill_n(dst.data, width + 1, 0u);
    for (size_t y = 0; y < height; ++y)
        dst.row(y + 1)[0] = 0;
    integrate(width, height, Plane<uint32_t>{dst.row(1) + 1, dst.stride}, valueAt);
}

void integrateImage(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint32_t> dst)
{
    integrateExclusive(width, height, dst, [=](size_t x, size_t y) { return src.row(y)[x]; });
}

void integrateBoth(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint32_t> sums, Plane<uint64_t> squares)
{
    integrate(width, height, sums, [=](size_t x, size_t y) { return src.row(y)[x]; });
    integrate(width, height, squares, [=](size_t x, size_t y) { return square(src.row(y)[x]); });
}

void integratePatch(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint32_t> sums,
                    Plane<uint32_t> squares)
{
    integrateExclusive(width, height, sums, [=](size_t x, size_t y) { return src.row(y)[x]; });
    integrateExclusive(width, height, squares, [=](size_t x, size_t y) { return square(src.row(y)[x]); });
}

template <uint32_t size>
void integrateSquarePatch(Plane<const uint8_t> src, uint32_t* sums, uint32_t* squares)
{
    constexpr uint32_t packed = (size + 1) * sizeof(uint32_t);
    integratePatch(size, size, src, {sums, packed}, {squares, packed});
}

void integrateInclusive(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint32_t> dst)
{
    integrate(width, height, dst, [=](size_t x, size_t y) { return src.row(y)[x]; });
}

// Of both components of pairs.
void integratePairs(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint32_t> first,
                    Plane<uint32_t> second)
{
    integrate(width, height, first, [=](size_t x, size_t y) { return src.row(y)[2 * x]; });
    integrate(width, height, second, [=](size_t x, size_t y) { return src.row(y)[2 * x + 1]; });
}

void integrateLine(const uint8_t* src, size_t width, const uint32_t* above, uint32_t* dst)
{
    uint32_t sum = 0;
    for (size_t x = 0; x < width; ++x) {
        sum += src[x];
        dst[x] = above ? above[x] + sum : sum;
    }
}

uint32_t distance(uint8_t a, uint8_t b)
{
    return a < b ? uint32_t{b} - a : uint32_t{a} - b;
}

} // namespace

// An entry is that of the row above on either side, less what the two have in common, and the two pixels between them.
// Outside of the picture a triangle is cut, so that it is that of a pixel at the edge.
void rvkTiltedIntegralu8s32C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             int32_t* dst, uint32_t dstStride)
{
    const Plane<const uint8_t> source{src, srcStride};
    const Plane<uint32_t> sums{reinterpret_cast<uint32_t*>(dst), dstStride};
    const size_t right = srcWidth;
    std::fill_n(sums.data, right + 1, 0u);
    for (size_t y = 1; y <= srcHeight; ++y) {
        const auto pixels = [&](size_t x) {
            return source.row(y - 1)[x - 1] + (y > 1 ? uint32_t{source.row(y - 2)[x - 1]} : 0);
        };
        const auto twoAbove = [&](size_t x) { return y > 1 ? sums.row(y - 2)[x] : 0; };
        const uint32_t* above = sums.row(y - 1);
        uint32_t* row = sums.row(y);
        row[0] = above[1];
        for (size_t x = 1; x < right; ++x)
            row[x] = above[x - 1] + above[x + 1] - twoAbove(x) + pixels(x);
        row[right] = above[right - 1] + pixels(right);
    }
}

void rvkFindForegroundIntegrateImageYCbCr420u32C(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                                 uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                                 uint8_t backgroundY, uint8_t backgroundCb, uint8_t backgroundCr,
                                                 uint32_t threshold, uint32_t* dst, uint32_t dstStride)
{
    const Plane<const uint8_t> luma{srcY, srcYStride}, chroma{srcC, srcCStride};
    integrate(srcWidth, srcHeight, Plane<uint32_t>{dst, dstStride}, [=](size_t x, size_t y) {
        const uint8_t* pair = chroma.row(y / 2) + x / 2 * 2;
        return distance(luma.row(y)[x], backgroundY) + distance(pair[0], backgroundCb) +
                           distance(pair[1], backgroundCr) >
                       threshold
                   ? 1u
                   : 0u;
    });
}

} // namespace rvk

#include "forms/ravikIntegralForms.h"
