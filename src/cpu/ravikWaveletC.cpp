// C references of the 5/3 and Haar wavelets.
#include "cpu/image.h"
#include "functions.h"
#include "scratch.h"

namespace rvk {

// ---- 5/3 ------------------------------------------------------------------------------------------------------------

namespace {

// Elements one after the other: a row or a column of a picture.
template <class T>
struct Line
{
    T* data;
    size_t step;

    T& operator[](size_t i) const { return data[i * step]; }
};

template <class T>
Line<T> rowOf(T* data, uint32_t stride, size_t y)
{
    return {Plane<T>{data, stride}.row(y), 1};
}
template <class T>
Line<T> columnOf(T* data, uint32_t stride, size_t x)
{
    return {data + x, stride / sizeof(T)};
}

int16_t wrapped(int32_t value)
{
    return static_cast<int16_t>(value);
}

// Half of two neighbours of the same kind, of which one exists at least: beyond the ends lies the mirror image.
int32_t halfOfEvens(const int16_t* x, size_t n, size_t i)
{
    const size_t last = (n - 1) / 2;
    return (x[2 * i] + x[2 * std::min(i + 1, last)]) >> 1;
}
int32_t quarterOfHighs(const int16_t* high, size_t n, size_t i)
{
    const size_t last = n / 2 - 1;
    return (high[i == 0 ? 0 : i - 1] + high[std::min(i, last)] + 2) >> 2;
}

// x: n samples; out: the low values, then the high ones.
void analyse(const int16_t* x, size_t n, int16_t* out)
{
    const size_t highs = n / 2, lows = n - highs;
    int16_t* const high = out + lows;
    for (size_t i = 0; i < highs; ++i)
        high[i] = wrapped(x[2 * i + 1] - halfOfEvens(x, n, i));
    for (size_t i = 0; i < lows; ++i)
        out[i] = wrapped(x[2 * i] + (n > 1 ? quarterOfHighs(high, n, i) : 0));
}

void synthesise(const int16_t* in, size_t n, int16_t* x)
{
    const size_t highs = n / 2, lows = n - highs;
    const int16_t* const high = in + lows;
    for (size_t i = 0; i < lows; ++i)
        x[2 * i] = wrapped(in[i] - (n > 1 ? quarterOfHighs(high, n, i) : 0));
    for (size_t i = 0; i < highs; ++i)
        x[2 * i + 1] = wrapped(high[i] + halfOfEvens(x, n, i));
}

// `count` lines of n elements each; lines of the source may be those of the destination.
template <class Source, class Target>
void mapLines(size_t count, size_t n, int16_t* buffer, void (*transform)(const int16_t*, size_t, int16_t*),
              Source source, Target target)
{
    int16_t *const in = buffer, *const out = buffer + n;
    for (size_t i = 0; i < count; ++i) {
        for (size_t k = 0; k < n; ++k)
            in[k] = source(i)[k];
        transform(in, n, out);
        for (size_t k = 0; k < n; ++k)
            target(i)[k] = out[k];
    }
}

} // namespace

rvkStatus rvkDWT53Tabs16C(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int16_t* dst,
                          uint32_t dstStride)
{
    const Scratch<int16_t> lines(2, std::max(srcWidth, srcHeight));
    if (!lines)
        return RAVIK_ENORES;
    mapLines(
        srcWidth, srcHeight, lines.get(), analyse, [=](size_t x) { return columnOf(src, srcStride, x); },
        [=](size_t x) { return columnOf(dst, dstStride, x); });
    const auto row = [=](size_t y) { return rowOf(dst, dstStride, y); };
    mapLines(srcHeight, srcWidth, lines.get(), analyse, row, row);
    return RAVIK_SUCCESS;
}

rvkStatus rvkIDWT53Tabs16C(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int16_t* dst,
                           uint32_t dstStride)
{
    const Scratch<int16_t> lines(2, std::max(srcWidth, srcHeight));
    if (!lines)
        return RAVIK_ENORES;
    mapLines(
        srcHeight, srcWidth, lines.get(), synthesise, [=](size_t y) { return rowOf(src, srcStride, y); },
        [=](size_t y) { return rowOf(dst, dstStride, y); });
    const auto column = [=](size_t x) { return columnOf(dst, dstStride, x); };
    mapLines(srcWidth, srcHeight, lines.get(), synthesise, column, column);
    return RAVIK_SUCCESS;
}

// A column of the picture is a row of the transpose.
rvkStatus rvkDWT53TabTransposes16C(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   int16_t* dst, uint32_t dstStride)
{
    const Scratch<int16_t> lines(2, std::max(srcWidth, srcHeight));
    if (!lines)
        return RAVIK_ENORES;
    mapLines(
        srcWidth, srcHeight, lines.get(), analyse, [=](size_t x) { return columnOf(src, srcStride, x); },
        [=](size_t x) { return rowOf(dst, dstStride, x); });
    const auto row = [=](size_t y) { return columnOf(dst, dstStride, y); };
    mapLines(srcHeight, srcWidth, lines.get(), analyse, row, row);
    return RAVIK_SUCCESS;
}

// A row of the picture is a column of the transpose.
rvkStatus rvkIDWT53TabTransposes16C(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    int16_t* dst, uint32_t dstStride)
{
    const Scratch<int16_t> lines(2, std::max(srcWidth, srcHeight));
    if (!lines)
        return RAVIK_ENORES;
    mapLines(
        srcWidth, srcHeight, lines.get(), synthesise, [=](size_t y) { return columnOf(src, srcStride, y); },
        [=](size_t y) { return rowOf(dst, dstStride, y); });
    const auto column = [=](size_t x) { return columnOf(dst, dstStride, x); };
    mapLines(srcHeight, srcWidth, lines.get(), synthesise, column, column);
    return RAVIK_SUCCESS;
}

// ---- Haar -----------------------------------------------------------------------------------------------------------

namespace {

// A picture as its transpose shows it, or as it is.
template <class T, bool transposed>
struct View
{
    Plane<T> plane;

    T& at(size_t x, size_t y) const { return transposed ? plane.row(x)[y] : plane.row(y)[x]; }
};

// `src` is upright.
template <bool transposed>
rvkStatus analyseHaar(Plane<const uint8_t> src, size_t width, size_t height, View<int16_t, transposed> dst)
{
    const size_t right = width / 2, bottom = height / 2;
    for (size_t y = 0; y < bottom; ++y)
        for (size_t x = 0; x < right; ++x) {
            const int a = src.row(2 * y)[2 * x], b = src.row(2 * y)[2 * x + 1];
            const int c = src.row(2 * y + 1)[2 * x], d = src.row(2 * y + 1)[2 * x + 1];
            dst.at(x, y) = static_cast<int16_t>(a + b + c + d);
            dst.at(right + x, y) = static_cast<int16_t>(a - b + c - d);
            dst.at(x, bottom + y) = static_cast<int16_t>(a + b - c - d);
            dst.at(right + x, bottom + y) = static_cast<int16_t>(a - b - c + d);
        }
    return RAVIK_SUCCESS;
}

// `dst` is upright, and `width` x `height`.
template <bool transposed>
rvkStatus synthesiseHaar(View<const int16_t, transposed> src, size_t width, size_t height, Plane<uint8_t> dst)
{
    const size_t right = width / 2, bottom = height / 2;
    const auto pixel = [](int32_t sum) { return saturate<uint8_t>((sum + 2) >> 2); };
    for (size_t y = 0; y < bottom; ++y)
        for (size_t x = 0; x < right; ++x) {
            const int32_t ll = src.at(x, y), hl = src.at(right + x, y);
            const int32_t lh = src.at(x, bottom + y), hh = src.at(right + x, bottom + y);
            dst.row(2 * y)[2 * x] = pixel(ll + hl + lh + hh);
            dst.row(2 * y)[2 * x + 1] = pixel(ll - hl + lh - hh);
            dst.row(2 * y + 1)[2 * x] = pixel(ll + hl - lh - hh);
            dst.row(2 * y + 1)[2 * x + 1] = pixel(ll - hl - lh + hh);
        }
    return RAVIK_SUCCESS;
}

} // namespace

rvkStatus rvkDWTHaaru8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int16_t* dst,
                        uint32_t dstStride)
{
    return analyseHaar<false>({src, srcStride}, srcWidth, srcHeight, {{dst, dstStride}});
}

rvkStatus rvkDWTHaarTransposeu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 int16_t* dst, uint32_t dstStride)
{
    return analyseHaar<true>({src, srcStride}, srcWidth, srcHeight, {{dst, dstStride}});
}

rvkStatus rvkIDWTHaars16C(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                          uint32_t dstStride)
{
    return synthesiseHaar<false>({{src, srcStride}}, srcWidth, srcHeight, {dst, dstStride});
}

rvkStatus rvkIDWTHaarTransposes16C(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint8_t* dst, uint32_t dstStride)
{
    return synthesiseHaar<true>({{src, srcStride}}, srcHeight, srcWidth, {dst, dstStride});
}

} // namespace rvk
