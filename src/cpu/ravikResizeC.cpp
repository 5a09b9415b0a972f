// C references of the scalers of any ratio, a pixel at a time.
#include "cpu/ravikResizeC.h"
#include "cpu/image.h"
#include "functions.h"

#include <numeric>

namespace rvk {

// ---- where pixels lie -----------------------------------------------------------------------------------------------

Axis columnsOf(const Resizing& r)
{
    return {r.srcWidth, r.dstWidth};
}

Axis rowsOf(const Resizing& r)
{
    return {r.srcHeight, r.dstHeight};
}

// The centre is (i + 1/2) * from / to - 1/2 = ((2i + 1) * from - to) / (2 * to), which may be down to -1/2.
Position positionOf(Axis axis, uint32_t i)
{
    const int64_t numerator = (2 * int64_t{i} + 1) * axis.from - axis.to, denominator = 2 * int64_t{axis.to};
    const int64_t pixel = (numerator + denominator) / denominator - 1; // rounded down
    const int64_t rest = numerator - pixel * denominator;
    const int64_t fraction = (rest * kFractions + axis.to) / denominator;
    return {pixel + fraction / kFractions, static_cast<uint32_t>(fraction % kFractions)};
}

uint32_t pixelAtCentre(Axis axis, uint32_t i)
{
    return static_cast<uint32_t>((2 * uint64_t{i} + 1) * axis.from / (2 * uint64_t{axis.to}));
}

Coverage coverageOf(Axis axis, uint32_t i)
{
    const uint64_t begin = uint64_t{i} * axis.from, end = begin + axis.from;
    const uint64_t first = begin / axis.to, last = (end - 1) / axis.to;
    return {static_cast<uint32_t>(first), static_cast<uint32_t>(last),
            static_cast<uint32_t>(std::min((first + 1) * axis.to, end) - begin),
            static_cast<uint32_t>(first == last ? 0 : end - last * axis.to)};
}

uint32_t firstWholePixel(Axis axis, uint32_t i)
{
    return static_cast<uint32_t>(uint64_t{i} * axis.from / axis.to);
}

Axis reduced(Axis axis)
{
    const uint32_t divisor = std::gcd(axis.from, axis.to);
    return {axis.from / divisor, axis.to / divisor};
}

// Keys, "Cubic Convolution Interpolation for Digital Image Processing", 1981, with a = -1/2. Each weight is rounded
// half up; the largest takes what the sum lacks.
void cubicWeights(uint32_t fraction, int16_t (&weights)[4])
{
    constexpr int64_t one = kFractions;
    const int64_t f = fraction, ff = f * f, fff = f * f * f;
    const int64_t twice[4] = {-fff + 2 * ff * one - f * one * one, 3 * fff - 5 * ff * one + 2 * one * one * one,
                              -3 * fff + 4 * ff * one + f * one * one, fff - ff * one};
    constexpr int shift = 3 * kFractionBits + 1 - kCubicBits;
    int32_t sum = 0;
    for (int k = 0; k < 4; ++k) {
        weights[k] = static_cast<int16_t>((twice[k] + (int64_t{1} << (shift - 1))) >> shift);
        sum += weights[k];
    }
    int16_t& largest = weights[fraction <= kFractions / 2 ? 1 : 2];
    largest = static_cast<int16_t>(largest + kCubicUnit - sum);
}

namespace {

struct Range
{
    uint32_t begin, end;
};

// The pixels whose centres lie between those of pixels of the source.
Range interiorOf(Axis axis)
{
    const auto isInside = [=](uint32_t i) {
        const Position p = positionOf(axis, i);
        return p.pixel >= 0 && p.pixel + (p.fraction ? 1 : 0) < int64_t{axis.from};
    };
    Range inside = {0, axis.to};
    while (inside.begin < inside.end && !isInside(inside.begin))
        ++inside.begin;
    while (inside.begin < inside.end && !isInside(inside.end - 1))
        --inside.end;
    return inside;
}

// A row between pixels, with 7 bits of a fraction.
int32_t betweenColumns(const BorderedImage<uint8_t>& image, const Position& x, int64_t y)
{
    const auto weight = static_cast<int32_t>(x.fraction), unit = static_cast<int32_t>(kFractions);
    return (image.at(x.pixel, y) * (unit - weight) + image.at(x.pixel + 1, y) * weight + 32) >> 6;
}

uint8_t bilinear(const BorderedImage<uint8_t>& image, const Position& x, const Position& y)
{
    const int32_t upper = betweenColumns(image, x, y.pixel), lower = betweenColumns(image, x, y.pixel + 1);
    const int32_t weight = static_cast<int32_t>(y.fraction), half = kFractions / 2;
    const int32_t between = upper + (((lower - upper) * weight + half) >> kFractionBits);
    return static_cast<uint8_t>((between + 64) >> 7);
}

BorderedImage<uint8_t> sourceOf(const Resizing& r, Outside outside)
{
    return {{r.src, r.srcStride}, r.srcWidth, r.srcHeight, outside.replicates, outside.value};
}

} // namespace

Rectangle interiorOf(const Resizing& r)
{
    const Range columns = interiorOf(columnsOf(r)), rows = interiorOf(rowsOf(r));
    return {columns.begin, rows.begin, columns.end, rows.end};
}

// ---- pictures -------------------------------------------------------------------------------------------------------

void interpolatePart(const Resizing& r, const Rectangle& part, Outside outside)
{
    const BorderedImage<uint8_t> image = sourceOf(r, outside);
    const Plane<uint8_t> dst{r.dst, r.dstStride};
    for (uint32_t y = part.top; y < part.bottom; ++y) {
        const Position row = positionOf(rowsOf(r), y);
        for (uint32_t x = part.left; x < part.right; ++x)
            dst.row(y)[x] = bilinear(image, positionOf(columnsOf(r), x), row);
    }
}

void averageAreas(const Resizing& r)
{
    const Plane<const uint8_t> src{r.src, r.srcStride};
    const Plane<uint8_t> dst{r.dst, r.dstStride};
    const Axis columns = reduced(columnsOf(r)), rows = reduced(rowsOf(r));
    const auto weightOf = [](const Coverage& c, Axis axis, uint32_t i) {
        return uint64_t{i == c.first ? c.firstWeight : i == c.last ? c.lastWeight : axis.to};
    };
    const uint64_t area = uint64_t{columns.from} * rows.from;
    for (uint32_t y = 0; y < r.dstHeight; ++y) {
        const Coverage v = coverageOf(rows, y);
        for (uint32_t x = 0; x < r.dstWidth; ++x) {
            const Coverage h = coverageOf(columns, x);
            uint64_t sum = 0;
            for (uint32_t j = v.first; j <= v.last; ++j)
                for (uint32_t i = h.first; i <= h.last; ++i)
                    sum += weightOf(v, rows, j) * weightOf(h, columns, i) * src.row(j)[i];
            dst.row(y)[x] = static_cast<uint8_t>((sum + area / 2) / area);
        }
    }
}

void interpolateCubic(const Resizing& r, uint32_t pixelSize)
{
    const Plane<const uint8_t> src{r.src, r.srcStride};
    const Plane<uint8_t> dst{r.dst, r.dstStride};
    const auto inside = [](int64_t i, uint32_t size) {
        return static_cast<size_t>(std::clamp<int64_t>(i, 0, int64_t{size} - 1));
    };
    for (uint32_t y = 0; y < r.dstHeight; ++y) {
        const Position v = positionOf(rowsOf(r), y);
        int16_t rowWeights[4], weights[4];
        cubicWeights(v.fraction, rowWeights);
        for (uint32_t x = 0; x < r.dstWidth; ++x) {
            const Position h = positionOf(columnsOf(r), x);
            cubicWeights(h.fraction, weights);
            for (uint32_t channel = 0; channel < pixelSize; ++channel) {
                int32_t sum = 0;
                for (int j = 0; j < 4; ++j) {
                    const uint8_t* row = src.row(inside(v.pixel - 1 + j, r.srcHeight));
                    int32_t rowSum = 0;
                    for (int i = 0; i < 4; ++i)
                        rowSum += weights[i] * row[inside(h.pixel - 1 + i, r.srcWidth) * pixelSize + channel];
                    sum += rowWeights[j] * ((rowSum + 32) >> 6);
                }
                dst.row(y)[size_t{x} * pixelSize + channel] = saturate<uint8_t>((sum + (1 << 17)) >> 18);
            }
        }
    }
}

namespace {

void scaleNearest(const Resizing& r)
{
    const Plane<const uint8_t> src{r.src, r.srcStride};
    const Plane<uint8_t> dst{r.dst, r.dstStride};
    for (uint32_t y = 0; y < r.dstHeight; ++y) {
        const uint8_t* const row = src.row(pixelAtCentre(rowsOf(r), y));
        for (uint32_t x = 0; x < r.dstWidth; ++x)
            dst.row(y)[x] = row[pixelAtCentre(columnsOf(r), x)];
    }
}

void scaleBilinear(const Resizing& r, uint32_t borderType, uint8_t borderValue)
{
    const Rectangle all = {0, 0, r.dstWidth, r.dstHeight};
    const Rectangle part = borderType == RAVIK_BORDER_NONE ? interiorOf(r) : all;
    interpolatePart(r, part, {borderType != RAVIK_BORDER_CONSTANT, borderValue});
}

void scaleArea(const Resizing& r)
{
    averageAreas(r);
}

void scaleCubic(const Resizing& r, uint32_t pixelSize)
{
    interpolateCubic(r, pixelSize);
}

bool scaleMeansAtOnce(const Resizing&, uint32_t)
{
    return false;
}

} // namespace

void irvkScaleDownMNCoreC(const uint8_t* src, uint32_t srcWidth, uint32_t rows, uint32_t srcStride, uint32_t pixelSize,
                          uint8_t* dst, uint32_t dstWidth)
{
    const Plane<const uint8_t> source{src, srcStride};
    const Axis columns = {srcWidth, dstWidth};
    for (uint32_t x = 0; x < dstWidth; ++x) {
        const uint32_t begin = firstWholePixel(columns, x), end = firstWholePixel(columns, x + 1);
        const uint64_t count = uint64_t{rows} * (end - begin);
        for (uint32_t channel = 0; channel < pixelSize; ++channel) {
            uint64_t sum = 0;
            for (size_t j = 0; j < rows; ++j)
                for (size_t i = begin; i < end; ++i)
                    sum += source.row(j)[i * pixelSize + channel];
            dst[size_t{x} * pixelSize + channel] = static_cast<uint8_t>((sum + count / 2) / count);
        }
    }
}

} // namespace rvk

#include "forms/ravikResizeForms.h"
