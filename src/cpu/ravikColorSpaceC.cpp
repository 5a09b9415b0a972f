// C references of the conversions to HSV and Lab, a pixel at a time.
#include "cpu/conversions.h"
#include "cpu/lab.h"
#include "functions.h"

namespace rvk {
namespace {

// ---- HSV ------------------------------------------------------------------------------------------------------------

// numerator / denominator, rounded, halves up.
uint8_t roundedQuotient(int numerator, int denominator)
{
    return static_cast<uint8_t>((2 * numerator + denominator) / (2 * denominator));
}

// The hue of a colour whose largest component lies `range` above its least one: the sixths of the circle, counted from
// red, in units of 1/range.
uint8_t hueOf(int red, int green, int blue, int value, int range)
{
    if (range == 0)
        return 0;
    const int sixths = value == red ? green - blue : value == green ? 2 * range + blue - red : 4 * range + red - green;
    return roundedQuotient(256 * (sixths < 0 ? sixths + 6 * range : sixths), 6 * range);
}

void toHsv(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    for (size_t x = 0; x < width; ++x) {
        const int red = src[x * 3], green = src[x * 3 + 1], blue = src[x * 3 + 2];
        const int value = std::max({red, green, blue});
        const int range = value - std::min({red, green, blue});
        dst[x * 3] = hueOf(red, green, blue, value, range);
        dst[x * 3 + 1] = value ? roundedQuotient(255 * range, value) : 0;
        dst[x * 3 + 2] = static_cast<uint8_t>(value);
    }
}

// ---- Lab ------------------------------------------------------------------------------------------------------------

using namespace lab;

int multiplyQ15(int a, int b)
{
    return (a * b + (1 << 14)) >> 15;
}

template <int degree>
int valueOf(const Polynomial<degree>& polynomial, int x)
{
    int value = polynomial.coefficients[degree];
    for (int i = degree - 1; i >= 0; --i)
        value = multiplyQ15(value, x) + polynomial.coefficients[i];
    return value;
}

int linearLight(int byte)
{
    const int x = (byte - 128) * kByteScale;
    return x < kPowerStart ? multiplyQ15(byte * kByteScale, kDarkSlope) : valueOf(kPower, x);
}

int cubeRoot(int t)
{
    if (t < kSixteenth)
        return multiplyQ15(cubeRoot(16 * t), kRootOfSixteenth);
    if (t < kQuarter)
        return multiplyQ15(cubeRoot(4 * t), kRootOfQuarter);
    return std::min<int>(valueOf(kRoot, t - kRootCentre), INT16_MAX);
}

int labFunction(int t)
{
    const int below = std::max(kCubeStart - t, 0);
    return cubeRoot(t + below) - multiplyQ15(below << kLineShift, kLineSlope);
}

void toLab(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    for (size_t x = 0; x < width; ++x) {
        const uint8_t* const pixel = src + x * 4;
        const int red = linearLight(pixel[0]), green = linearLight(pixel[1]), blue = linearLight(pixel[2]);
        int f[3];
        for (size_t i = 0; i < 3; ++i) {
            const uint16_t* const share = kShares[i];
            f[i] = labFunction(multiplyQ15(red, share[0]) + multiplyQ15(green, share[1]) + multiplyQ15(blue, share[2]));
        }
        const int lightness = multiplyQ15(f[1], kLightness) + kLightnessBase;
        dst[x * 3] = saturate<uint8_t>((lightness + (1 << (kLightnessShift - 1))) >> kLightnessShift);
        dst[x * 3 + 1] = saturate<uint8_t>(multiplyQ15(f[0] - f[1], kA) + kNeutral);
        dst[x * 3 + 2] = saturate<uint8_t>(multiplyQ15(f[1] - f[2], kB) + kNeutral);
    }
}

// ---- pictures -------------------------------------------------------------------------------------------------------

void convert(const Conversion<Rgb888, Hsv888>& c)
{
    forEachRow(c, toHsv);
}

void convert(const Conversion<Rgba8888, Lab888>& c)
{
    forEachRow(c, toLab);
}

} // namespace
} // namespace rvk

#include "forms/ravikColorSpaceForms.h"
