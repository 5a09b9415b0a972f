// C references of the conversions between colour spaces and layouts of RGB, a pixel at a time.
#include "cpu/conversions.h"
#include "functions.h"
#include "log.h"

#include <cstring>

namespace rvk {
namespace {

// ---- pixels ---------------------------------------------------------------------------------------------------------

struct Rgb
{
    uint8_t red, green, blue, alpha;
};

uint8_t widened5(uint32_t bits)
{
    return static_cast<uint8_t>(bits << 3 | bits >> 2);
}

uint8_t widened6(uint32_t bits)
{
    return static_cast<uint8_t>(bits << 2 | bits >> 4);
}

template <class F>
Rgb unpack(const uint8_t* pixel)
{
    if constexpr (F::isBytes) {
        Rgb rgb = {pixel[F::redByte], pixel[F::greenByte], pixel[F::blueByte], 255};
        if constexpr (F::hasAlpha)
            rgb.alpha = pixel[F::alphaByte];
        return rgb;
    } else {
        uint16_t word;
        memcpy(&word, pixel, sizeof word);
        return {widened5(word >> F::redShift & 31u), widened6(word >> F::greenShift & 63u),
                widened5(word >> F::blueShift & 31u), 255};
    }
}

template <class F>
void pack(Rgb rgb, uint8_t* pixel)
{
    if constexpr (F::isBytes) {
        pixel[F::redByte] = rgb.red;
        pixel[F::greenByte] = rgb.green;
        pixel[F::blueByte] = rgb.blue;
        if constexpr (F::hasAlpha)
            pixel[F::alphaByte] = rgb.alpha;
    } else {
        const int word = rgb.red >> 3 << F::redShift | rgb.green >> 2 << F::greenShift | rgb.blue >> 3 << F::blueShift;
        const uint16_t bits = static_cast<uint16_t>(word);
        memcpy(pixel, &bits, sizeof bits);
    }
}

// ---- luma and chroma of a pixel -------------------------------------------------------------------------------------

struct Chroma
{
    uint8_t cb, cr;
};

uint8_t lumaOf(Rgb p)
{
    return static_cast<uint8_t>((29 * p.blue + 150 * p.green + 77 * p.red + 128) >> 8);
}

Chroma chromaOf(Rgb p)
{
    return {saturate<uint8_t>(128 + ((128 * p.blue - 85 * p.green - 43 * p.red + 128) >> 8)),
            saturate<uint8_t>(128 + ((128 * p.red - 107 * p.green - 21 * p.blue + 128) >> 8))};
}

Rgb rgbOf(int luma, Chroma chroma)
{
    const int d = chroma.cb - 128, e = chroma.cr - 128;
    return {saturate<uint8_t>((256 * luma + 359 * e + 128) >> 8),
            saturate<uint8_t>((256 * luma - 88 * d - 183 * e + 128) >> 8),
            saturate<uint8_t>((256 * luma + 454 * d + 128) >> 8), 255};
}

// ---- rows of chroma -------------------------------------------------------------------------------------------------

template <class Byte>
struct ChromaRow
{
    Byte *cb, *cr;
    size_t step; // between samples of one component

    Chroma operator[](size_t i) const { return {cb[i * step], cr[i * step]}; }
    void set(size_t i, Chroma chroma) const
    {
        cb[i * step] = chroma.cb;
        cr[i * step] = chroma.cr;
    }
};

template <class Byte>
ChromaRow(Byte*, Byte*, int) -> ChromaRow<Byte>;

template <class S, class AnyPlane>
auto chromaRow(Planar<S>, const AnyPlane (&planes)[3], size_t y)
{
    return ChromaRow{rowOf(planes[1], y), rowOf(planes[2], y), 1};
}
template <class S, bool crFirst, class AnyPlane>
auto chromaRow(PseudoPlanar<S, crFirst>, const AnyPlane (&planes)[2], size_t y)
{
    auto* const pairs = rowOf(planes[1], y);
    return ChromaRow{pairs + crFirst, pairs + !crFirst, 2};
}

// ---- rows -----------------------------------------------------------------------------------------------------------

template <class From>
void toLuma(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    for (size_t x = 0; x < width; ++x)
        dst[x] = lumaOf(unpack<From>(src + x * From::pixelSize));
}

// The chroma of every 2^xShift-th pixel.
template <class From, uint32_t xShift>
void toChroma(const uint8_t* src, uint32_t width, ChromaRow<uint8_t> dst)
{
    for (size_t i = 0; i < sampled(width, xShift); ++i)
        dst.set(i, chromaOf(unpack<From>(src + (i << xShift) * From::pixelSize)));
}

template <class To, uint32_t xShift>
void toRgb(const uint8_t* srcY, ChromaRow<const uint8_t> chroma, uint32_t length, uint8_t* dst)
{
    if (xShift && !(length > 1))
        failInternalAssertion("src/cpu/ravikColorC", __LINE__, "length > 1");
    for (size_t x = 0; x < length; ++x)
        pack<To>(rgbOf(srcY[x], chroma[x >> xShift]), dst + x * To::pixelSize);
}

template <class From, class To>
void reorder(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    for (size_t x = 0; x < width; ++x)
        pack<To>(unpack<From>(src + x * From::pixelSize), dst + x * To::pixelSize);
}

template <size_t pixelSize>
void turnRow(uint8_t* row, uint32_t width)
{
    for (size_t left = 0, right = width; left + 1 < right; ++left)
        std::swap_ranges(row + left * pixelSize, row + (left + 1) * pixelSize, row + --right * pixelSize);
}

uint8_t greyOf(Rgb p)
{
    return static_cast<uint8_t>((19595 * p.red + 38469 * p.green + 7471 * p.blue + 32768) >> 16);
}

void toGrey(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    for (size_t x = 0; x < width; ++x)
        dst[x] = greyOf(unpack<Rgb888>(src + x * 3));
}

void toYCrCb(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    for (size_t x = 0; x < width; ++x) {
        const Rgb rgb = unpack<Bgr888>(src + x * 3);
        const Chroma chroma = chromaOf(rgb);
        dst[x * 3] = lumaOf(rgb);
        dst[x * 3 + 1] = chroma.cr;
        dst[x * 3 + 2] = chroma.cb;
    }
}

// ---- pictures -------------------------------------------------------------------------------------------------------

template <class From, class To>
requires IsToYCbCr<From, To>
void convert(const Conversion<From, To>& c)
{
    for (size_t y = 0; y < c.height; ++y) {
        const uint8_t* const src = rowOf(c.src[0], y);
        toLuma<From>(src, c.width, rowOf(c.dst[0], y));
        if (y % (1u << To::yShift) == 0)
            toChroma<From, To::xShift>(src, c.width, chromaRow(To(), c.dst, y >> To::yShift));
    }
}

template <class From, class To>
requires IsToRgb<From, To>
void convert(const Conversion<From, To>& c)
{
    for (size_t y = 0; y < c.height; ++y)
        toRgb<To, From::xShift>(rowOf(c.src[0], y), chromaRow(From(), c.src, y >> From::yShift), c.width,
                                rowOf(c.dst[0], y));
}

template <class From, class To>
requires IsReordering<From, To>
void convert(const Conversion<From, To>& c)
{
    forEachRow(c, reorder<From, To>);
}

void convert(const Conversion<Rgb888, Grey>& c)
{
    forEachRow(c, toGrey);
}

void convert(const Conversion<Bgr888, YCrCb888>& c)
{
    forEachRow(c, toYCrCb);
}

// Rows are converted to where they go when the picture is turned, and turned there.
template <class From, class To>
void convert(Conversion<From, Rotated180<To>> c)
{
    for (size_t y = 0; y < c.height; ++y) {
        uint8_t* const row = rowOf(c.dst[0], c.height - 1 - y);
        if constexpr (IsToRgb<From, To>)
            toRgb<To, From::xShift>(rowOf(c.src[0], y), chromaRow(From(), c.src, y >> From::yShift), c.width, row);
        else
            reorder<From, To>(rowOf(c.src[0], y), c.width, row);
        turnRow<To::pixelSize>(row, c.width);
    }
}

} // namespace
} // namespace rvk

#include "forms/ravikColorForms.h"
