// Formats of colour pictures, and what a conversion between two of them is given. The units of colour conversions are
// overloads of convert() for these types, in the entries, in the references and in the vector implementations.
#pragma once

#include <ravik/types.h>

#include <cstdint>

namespace rvk {

// ---- packed pixels: one plane ---------------------------------------------------------------------------------------

template <uint32_t size>
struct Packed
{
    static constexpr uint32_t planes = 1, pixelSize = size;

    static constexpr uint64_t rowSize(uint32_t, uint32_t width) { return uint64_t{width} * size; }
    static constexpr uint32_t rows(uint32_t, uint32_t height) { return height; }
};

// Bytes of red, green and blue; a fourth byte is alpha.
template <uint32_t size, uint32_t red, uint32_t blue>
struct RgbBytes : Packed<size>
{
    static constexpr bool isBytes = true, hasAlpha = size == 4;
    static constexpr uint32_t redByte = red, greenByte = 1, blueByte = blue, alphaByte = 3;
};
using Rgb888 = RgbBytes<3, 0, 2>;
using Bgr888 = RgbBytes<3, 2, 0>;
using Rgba8888 = RgbBytes<4, 0, 2>;
using Bgra8888 = RgbBytes<4, 2, 0>;

// Words of 16 bits in native byte order, with 5 bits of red, 6 of green and 5 of blue.
template <uint32_t red, uint32_t blue>
struct RgbWord : Packed<2>
{
    static constexpr bool isBytes = false, hasAlpha = false;
    static constexpr uint32_t redShift = red, greenShift = 5, blueShift = blue;
};
using Rgb565 = RgbWord<11, 0>;
using Bgr565 = RgbWord<0, 11>;

struct Grey : Packed<1>
{
};
struct Hsv888 : Packed<3> // hue, saturation, value
{
};
struct Lab888 : Packed<3> // L, a, b
{
};
struct YCrCb888 : Packed<3> // Y, Cr, Cb of each pixel
{
};
template <uint32_t channels>
struct Interleaved : Packed<channels>
{
};
struct SwappedPairs : Packed<2> // pairs, the second byte first
{
};
// The picture turned by half a circle.
template <class F>
struct Rotated180 : F
{
};

// ---- planes ---------------------------------------------------------------------------------------------------------

template <uint32_t channels>
struct Channels
{
    static constexpr uint32_t planes = channels;

    static constexpr uint64_t rowSize(uint32_t, uint32_t width) { return width; }
    static constexpr uint32_t rows(uint32_t, uint32_t height) { return height; }
};

// Samples for `size` pixels, 2^shift of which share one; the last one may be of fewer.
constexpr uint32_t sampled(uint32_t size, uint32_t shift)
{
    return size / (1u << shift) + (size % (1u << shift) != 0);
}

// YCbCr: a plane of luma, then chroma, a sample of which belongs to 2^horizontal x 2^vertical pixels.
template <uint32_t horizontal, uint32_t vertical>
struct Sampling
{
    static constexpr uint32_t xShift = horizontal, yShift = vertical;
};
using S444 = Sampling<0, 0>;
using S422 = Sampling<1, 0>;
using S420 = Sampling<1, 1>;
using S440 = Sampling<0, 1>;

// Planes Cb and Cr.
template <class S>
struct Planar : S
{
    static constexpr uint32_t planes = 3;

    static constexpr uint64_t rowSize(uint32_t plane, uint32_t width)
    {
        return plane ? sampled(width, S::xShift) : width;
    }
    static constexpr uint32_t rows(uint32_t plane, uint32_t height)
    {
        return plane ? sampled(height, S::yShift) : height;
    }
};

// One plane of pairs: Cb and Cr, or Cr and Cb.
template <class S, bool crIsFirst = false>
struct PseudoPlanar : S
{
    static constexpr uint32_t planes = 2;
    static constexpr bool crFirst = crIsFirst;

    static constexpr uint64_t rowSize(uint32_t plane, uint32_t width)
    {
        return plane ? uint64_t{2} * sampled(width, S::xShift) : width;
    }
    static constexpr uint32_t rows(uint32_t plane, uint32_t height)
    {
        return plane ? sampled(height, S::yShift) : height;
    }
};
template <class S>
using CrCb = PseudoPlanar<S, true>;

// ---- channels of a picture ------------------------------------------------------------------------------------------

// Where the samples of a channel lie: every `step` bytes, from byte `offset` of a row on.
struct Samples
{
    uint32_t plane, offset, step; // step 0: the format has no such channel
    uint32_t xShift = 0, yShift = 0;
};

constexpr Samples samplesOf(uint32_t format, uint32_t channel)
{
    const bool isColour = channel <= RAVIK_CHANNEL_B, isLuma = channel == RAVIK_CHANNEL_Y;
    const bool isChroma = channel == RAVIK_CHANNEL_U || channel == RAVIK_CHANNEL_V;
    const uint32_t second = channel == RAVIK_CHANNEL_V;
    switch (format) {
    case RAVIK_FORMAT_RGB:
        return {0, channel, isColour ? 3u : 0u};
    case RAVIK_FORMAT_RGBA:
        return {0, channel, isColour || channel == RAVIK_CHANNEL_A ? 4u : 0u};
    case RAVIK_FORMAT_NV12:
        return isLuma ? Samples{0, 0, 1} : Samples{1, second, isChroma ? 2u : 0u, 1, 1};
    case RAVIK_FORMAT_NV21:
        return isLuma ? Samples{0, 0, 1} : Samples{1, 1 - second, isChroma ? 2u : 0u, 1, 1};
    case RAVIK_FORMAT_UYVY:
        return isLuma ? Samples{0, 1, 2} : Samples{0, 2 * second, isChroma ? 4u : 0u, 1, 0};
    case RAVIK_FORMAT_YUYV:
        return isLuma ? Samples{0, 0, 2} : Samples{0, 1 + 2 * second, isChroma ? 4u : 0u, 1, 0};
    default:
        return {0, 0, 0};
    }
}

constexpr bool hasChromaPlane(uint32_t format)
{
    return format == RAVIK_FORMAT_NV12 || format == RAVIK_FORMAT_NV21;
}

// The bytes of a row of plane `src1`.
constexpr uint64_t rowSizeOf(uint32_t format, uint32_t width)
{
    switch (format) {
    case RAVIK_FORMAT_RGB:
        return uint64_t{3} * width;
    case RAVIK_FORMAT_RGBA:
        return uint64_t{4} * width;
    case RAVIK_FORMAT_UYVY:
    case RAVIK_FORMAT_YUYV:
        return uint64_t{4} * sampled(width, 1);
    default:
        return width;
    }
}

// ---- conversions ----------------------------------------------------------------------------------------------------

struct SourcePlane
{
    const uint8_t* data;
    uint32_t stride;
};
struct TargetPlane
{
    uint8_t* data;
    uint32_t stride;
};

template <class From, class To>
struct Conversion
{
    uint32_t width, height;
    SourcePlane src[From::planes];
    TargetPlane dst[To::planes];
};

template <class Format>
concept IsRgb = requires
{
    Format::isBytes;
};
template <class Format>
concept IsYCbCr = requires
{
    Format::xShift;
};

// Kinds of conversions, each of which has a driver.
template <class From, class To>
concept IsToYCbCr = IsRgb<From> && IsYCbCr<To>;
template <class From, class To>
concept IsToRgb = IsYCbCr<From> && IsRgb<To>;
template <class From, class To>
concept IsReordering = IsRgb<From> && IsRgb<To>;
template <class From, class To>
concept IsResampling = IsYCbCr<From> && IsYCbCr<To>;

} // namespace rvk

// clang-format off

// The parameters of a conversion, those of the source first, and what a Conversion is made of:
//
//     void rvkX(RVK_FROM_PACKED, RVK_TO_PLANAR)
//     {
//         convert(Conversion<Rgb888, Planar<S420>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
//     }
#define RVK_FROM_PACKED const uint8_t *src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride
#define RVK_FROM_PSEUDO \
    const uint8_t *srcY, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcYStride, \
    const uint8_t *srcC, uint32_t srcCStride
#define RVK_FROM_PLANAR \
    const uint8_t *srcY, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcYStride, \
    const uint8_t *srcCb, uint32_t srcCbStride, const uint8_t *srcCr, uint32_t srcCrStride
#define RVK_FROM_TWO \
    const uint8_t *src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride, \
    const uint8_t *src2, uint32_t src2Stride
#define RVK_FROM_THREE RVK_FROM_TWO, const uint8_t *src3, uint32_t src3Stride
#define RVK_FROM_FOUR RVK_FROM_THREE, const uint8_t *src4, uint32_t src4Stride
#define RVK_TO_PACKED uint8_t *dst, uint32_t dstStride
#define RVK_TO_PSEUDO uint8_t *dstY, uint32_t dstYStride, uint8_t *dstC, uint32_t dstCStride
#define RVK_TO_PLANAR \
    uint8_t *dstY, uint32_t dstYStride, uint8_t *dstCb, uint32_t dstCbStride, uint8_t *dstCr, uint32_t dstCrStride
#define RVK_TO_TWO uint8_t *dst1, uint32_t dst1Stride, uint8_t *dst2, uint32_t dst2Stride

#define RVK_PACKED_SRC srcWidth, srcHeight, {{src, srcStride}}
#define RVK_PSEUDO_SRC srcWidth, srcHeight, {{srcY, srcYStride}, {srcC, srcCStride}}
#define RVK_PLANAR_SRC srcWidth, srcHeight, {{srcY, srcYStride}, {srcCb, srcCbStride}, {srcCr, srcCrStride}}
#define RVK_TWO_SRC srcWidth, srcHeight, {{src1, src1Stride}, {src2, src2Stride}}
#define RVK_THREE_SRC srcWidth, srcHeight, {{src1, src1Stride}, {src2, src2Stride}, {src3, src3Stride}}
#define RVK_FOUR_SRC \
    srcWidth, srcHeight, {{src1, src1Stride}, {src2, src2Stride}, {src3, src3Stride}, {src4, src4Stride}}
#define RVK_PACKED_DST {{dst, dstStride}}
#define RVK_PSEUDO_DST {{dstY, dstYStride}, {dstC, dstCStride}}
#define RVK_PLANAR_DST {{dstY, dstYStride}, {dstCb, dstCbStride}, {dstCr, dstCrStride}}
#define RVK_TWO_DST {{dst1, dst1Stride}, {dst2, dst2Stride}}
