// The hooks of OpenCV's module imgproc that change the layout of colours. Its names say BGR where the first byte is
// blue, the library's say RGB where it is red: which one it is does not matter to those that keep or swap the two.
#include "hal.h"

#include <ravik/channel.h>
#include <ravik/color.h>

using namespace rvk::hal;

namespace {

using Conversion = void (*)(const uint8_t*, uint32_t, uint32_t, uint32_t, uint8_t*, uint32_t);

// A picture of `height` rows of `width` pixels on both sides.
struct Pictures
{
    const uint8_t* src;
    size_t srcStep;
    int srcPixel; // bytes
    uint8_t* dst;
    size_t dstStep;
    int dstPixel;
    int width, height;
};

// Whether the library can convert one into the other: it does so in place where pixels stay where they are.
bool areConvertible(const Pictures& p)
{
    if (!areStrides(p.width, p.height, 1, {}) || !areStrides(p.width * p.srcPixel, p.height, 1, {p.srcStep}) ||
        !areStrides(p.width * p.dstPixel, p.height, 1, {p.dstStep}))
        return false;
    return mayWrite(p.src, p.srcStep, size_t(p.width) * p.srcPixel, p.dst, p.dstStep, size_t(p.width) * p.dstPixel,
                    p.height);
}

int convert(Conversion conversion, const Pictures& p)
{
    if (!conversion || !areConvertible(p))
        return kNotImplemented;
    conversion(p.src, p.width, p.height, strideOf(p.srcStep, p.height), p.dst, strideOf(p.dstStep, p.height));
    return kOk;
}

Conversion conversionOf(int srcChannels, int dstChannels, bool swapBlue)
{
    if (srcChannels == 3 && dstChannels == 3)
        return swapBlue ? rvkColorRGB888ToBGR888u8 : nullptr;
    if (srcChannels == 3 && dstChannels == 4)
        return swapBlue ? rvkColorRGB888ToBGRA8888u8 : rvkColorRGB888ToRGBA8888u8;
    if (srcChannels == 4 && dstChannels == 3)
        return swapBlue ? rvkColorRGBA8888ToBGR888u8 : rvkColorRGBA8888ToRGB888u8;
    return nullptr;
}

} // namespace

int ravik_hal_cvtBGRtoBGR(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width, int height,
                          int depth, int srcChannels, int dstChannels, bool swapBlue)
{
    if (depth != k8U)
        return kNotImplemented;
    return convert(conversionOf(srcChannels, dstChannels, swapBlue),
                   {src, srcStep, srcChannels, dst, dstStep, dstChannels, width, height});
}

// Words of 5, 6 and 5 bits whose low ones are blue.
int ravik_hal_cvtBGRtoBGR5x5(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width, int height,
                             int srcChannels, bool swapBlue, int greenBits)
{
    if (greenBits != 6 || (srcChannels != 3 && srcChannels != 4))
        return kNotImplemented;
    const Conversion ofThree = swapBlue ? rvkColorRGB888ToRGB565u8 : rvkColorRGB888ToBGR565u8;
    const Conversion ofFour = swapBlue ? rvkColorRGBA8888ToRGB565u8 : rvkColorRGBA8888ToBGR565u8;
    return convert(srcChannels == 3 ? ofThree : ofFour, {src, srcStep, srcChannels, dst, dstStep, 2, width, height});
}

int ravik_hal_cvtGraytoBGR(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width, int height,
                           int depth, int dstChannels)
{
    const Pictures pictures{src, srcStep, 1, dst, dstStep, dstChannels, width, height};
    if (depth != k8U || dstChannels != 3 || !areConvertible(pictures))
        return kNotImplemented;
    const uint32_t stride = strideOf(srcStep, height);
    return done(rvkChannelCombine3Planesu8(src, width, height, stride, src, stride, src, stride, dst,
                                           strideOf(dstStep, height)));
}
