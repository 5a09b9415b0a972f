// Vector implementations of the conversions to HSV and Lab.
#include "color.h"
#include "cpu/lab.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include <ravik/color.h>

namespace rvk::vecta::RVK_ISA {
namespace {

// ---- pixels ---------------------------------------------------------------------------------------------------------

constexpr size_t kPixels = Vec<uint8_t>::lanes;

// Converts `count` times kPixels pixels. Source and destination may be the same.
using ConvertVectors = void (*)(const uint8_t* src, size_t count, uint8_t* dst);

template <size_t channels>
RVK_NOINLINE void convertRow(const uint8_t* src, size_t width, uint8_t* dst, ConvertVectors convertVectors)
{
    const size_t rest = width % kPixels, whole = width - rest;
    convertVectors(src, width / kPixels, dst);
    if (rest) {
        uint8_t in[channels * kPixels] = {}, out[3 * kPixels];
        __builtin_memcpy(in, src + whole * channels, rest * channels);
        convertVectors(in, 1, out);
        __builtin_memcpy(dst + whole * 3, out, rest * 3);
    }
}

// Pictures without gaps between their rows are one long row.
template <size_t channels, class From, class To>
RVK_INLINE void convertRows(const Conversion<From, To>& c, ConvertVectors convertVectors)
{
    const Plane src{c.src[0].data, c.src[0].stride};
    const Plane dst{c.dst[0].data, c.dst[0].stride};
    size_t width = c.width, height = c.height;
    if (src.packed(channels * width) && dst.packed(3 * width)) {
        width *= height;
        height = 1;
    }
    for (size_t y = 0; y < height; ++y)
        convertRow<channels>(src.row(y), width, dst.row(y), convertVectors);
}

// ---- HSV ------------------------------------------------------------------------------------------------------------

struct Quotients
{
    Vec<int32_t> hue, saturation;
};

// 256/6 * sixths / range and 255 * range / value, rounded, of 255 * range. Exact quotients of numbers this small that
// are no halves are further from a half than 2^-11; what is added to the half lifts saturations that are halves over
// the error.
RVK_INLINE Quotients quotients(Vec<uint32_t> sixths, Vec<uint32_t> range255, Vec<uint32_t> value)
{
    const Vec<float> d = toFloat(range255), v = toFloat(value);
    const Vec<float> r = closeReciprocal(d * v);
    return {truncateToInt(multiplyAdd(toFloat(sixths), v * r * splat(255 * 256.0f / 6), splat(0.5f))),
            truncateToInt(multiplyAdd(d, d * r, splat(0.5f + 0x1p-10f)))};
}

// The even and the odd elements of two vectors, and back: shifts where widenInLanes has x86 shuffle, which has more to
// do here.
RVK_INLINE Vecs<uint32_t, 4> quarters(const Vecs<uint16_t, 2>& v)
{
    const Vecs<uint32_t, 2> pairs = bitCast<uint32_t>(v);
    const Vec<uint32_t> even = splat<uint32_t>(65535);
    return {pairs[0] & even, shiftRight(pairs[0], 16), pairs[1] & even, shiftRight(pairs[1], 16)};
}

RVK_INLINE Vecs<int16_t, 2> halves(const Vecs<int32_t, 4>& v)
{
    return bitCast<int16_t>(Vecs<int32_t, 2>{v[0] | shiftLeft(v[1], 16), v[2] | shiftLeft(v[3], 16)});
}

RVK_INLINE Vecs<uint8_t, 3> hsvOf(const Vecs<uint8_t, 3>& rgb)
{
    const Vec<uint8_t> red = rgb[0], green = rgb[1], blue = rgb[2], one = splat<uint8_t>(1);
    const Vec<uint8_t> value = max(max(red, green), blue), least = min(min(red, green), blue);
    const Vec<uint8_t> range = max(value - least, one); // greys divide by 1
    const Mask<uint8_t> isRed = equal(value, red), isGreen = equal(value, green);

    // The sixths of the circle, in units of 1/range, and a whole turn more where red is the largest: none is negative,
    // and greys have hue 0.
    const Vec<uint8_t> whole = select(isRed, splat<uint8_t>(6), select(isGreen, splat<uint8_t>(2), splat<uint8_t>(4)));
    const Vec<uint8_t> minuend = select(isRed, green, select(isGreen, blue, red));
    const Vec<uint8_t> subtrahend = select(isRed, blue, select(isGreen, red, green));
    const auto plus = [](auto a, auto b) RVK_INLINE_LAMBDA { return a + b; };
    const auto minus = [](auto a, auto b) RVK_INLINE_LAMBDA { return a - b; };
    const auto sixths =
        both(both(multiplyWideInLanes(range, whole), widenInLanes(minuend), plus), widenInLanes(subtrahend), minus);

    const Vecs<uint32_t, 4> n = quarters(sixths), v = quarters(widenInLanes(max(value, one))),
                            d = quarters(multiplyWideInLanes(range, splat<uint8_t>(255)));
    Vecs<int32_t, 4> hue, saturation;
    unrolled<4>([&](auto i) RVK_INLINE_LAMBDA {
        const Quotients q = quotients(n[i], d[i], v[i]);
        hue[i] = q.hue;
        saturation[i] = q.saturation;
    });
    const Vec<uint8_t> saturated = narrowSatInLanes<uint8_t>(halves(saturation));
    const Mask<uint8_t> isGrey = equal(value, least);
    return {bitCast<uint8_t>(narrowInLanes(halves(hue))), select(isGrey, zero<uint8_t>(), saturated), value};
}

void toHsv(const uint8_t* src, size_t count, uint8_t* dst)
{
    for (; count; --count, src += 3 * kPixels, dst += 3 * kPixels)
        store3(dst, hsvOf(load3(src)));
}

// ---- Lab ------------------------------------------------------------------------------------------------------------

using namespace lab;

template <int degree>
RVK_INLINE Vec<int16_t> valueOf(const Polynomial<degree>& polynomial, Vec<int16_t> x)
{
    Vec<int16_t> value = splat(polynomial.coefficients[degree]);
    unrolled<degree>([&](auto i) RVK_INLINE_LAMBDA {
        value = addSat(multiplyRounded(value, x), splat(polynomial.coefficients[degree - 1 - i]));
    });
    return value;
}

RVK_INLINE Vecs<int16_t, 2> linearLight(Vec<uint8_t> bytes)
{
    static_assert(kByteScale == 256);
    const auto variable = bitCast<int16_t>(zipInLanes(zero<uint8_t>(), bytes ^ splat<uint8_t>(128)));
    return both(variable, [](auto x) RVK_INLINE_LAMBDA {
        const Vec<int16_t> slope = splat(kDarkSlope);
        return select(less(x, splat(kPowerStart)), multiplyRounded(x, slope) + slope, valueOf(kPower, x));
    });
}

// v * scale, rounded, in the lanes of the mask.
RVK_INLINE Vec<int16_t> scaledWhere(Mask<uint16_t> mask, Vec<int16_t> v, int16_t scale)
{
    return bitCast<int16_t>(select(mask, bitCast<uint16_t>(multiplyRounded(v, splat(scale))), bitCast<uint16_t>(v)));
}

// Q16, as kShares says. A share above 1 is taken in two parts.
template <uint16_t share>
RVK_INLINE Vec<int16_t> shareOf(Vec<int16_t> light)
{
    if constexpr (share > INT16_MAX)
        return light + multiplyRounded(light, splat(static_cast<int16_t>(share - 32768)));
    else
        return multiplyRounded(light, splat(static_cast<int16_t>(share)));
}

RVK_INLINE Vec<int16_t> labFunction(Vec<int16_t> q16)
{
    Vec<uint16_t> t = bitCast<uint16_t>(q16);
    const Vec<uint16_t> below = subSat(splat(kCubeStart), t);
    const Vec<int16_t> line = multiplyRounded(bitCast<int16_t>(shiftLeft(below, kLineShift)), splat(kLineSlope));
    t = t + below;
    const Mask<uint16_t> isBelowSixteenth = less(t, splat(kSixteenth));
    t = select(isBelowSixteenth, shiftLeft(t, 4), t);
    const Mask<uint16_t> isBelowQuarter = less(t, splat(kQuarter));
    t = select(isBelowQuarter, shiftLeft(t, 2), t);
    Vec<int16_t> root = valueOf(kRoot, bitCast<int16_t>(t - splat(kRootCentre)));
    root = scaledWhere(isBelowQuarter, root, kRootOfQuarter);
    root = scaledWhere(isBelowSixteenth, root, kRootOfSixteenth);
    return root - line;
}

// factor * (a - b), rounded, and kNeutral.
RVK_INLINE Vec<uint8_t> chroma(const Vecs<int16_t, 2>& a, const Vecs<int16_t, 2>& b, int16_t factor)
{
    return narrowSatInLanes<uint8_t>(both(a, b, [=](auto x, auto y) RVK_INLINE_LAMBDA {
        return multiplyRounded(x - y, splat(factor)) + splat(kNeutral);
    }));
}

// X, Y and Z of kPixels pixels, or f of them.
struct Triple
{
    Vecs<int16_t, 2> x, y, z;
};

template <size_t row>
RVK_INLINE Vecs<int16_t, 2> sumOfShares(const Vecs<int16_t, 2>& red, const Vecs<int16_t, 2>& green,
                                        const Vecs<int16_t, 2>& blue)
{
    Vecs<int16_t, 2> sum;
    unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
        sum[i] =
            shareOf<kShares[row][0]>(red[i]) + shareOf<kShares[row][1]>(green[i]) + shareOf<kShares[row][2]>(blue[i]);
    });
    return sum;
}

RVK_INLINE Triple xyzOf(const uint8_t* rgba)
{
    const Vecs<uint8_t, 4> bytes = load4(rgba);
    const auto red = linearLight(bytes[0]), green = linearLight(bytes[1]), blue = linearLight(bytes[2]);
    return {sumOfShares<0>(red, green, blue), sumOfShares<1>(red, green, blue), sumOfShares<2>(red, green, blue)};
}

RVK_INLINE Vecs<uint8_t, 3> labOf(const Triple& f)
{
    const auto lightness = both(
        f.y, [](auto y) RVK_INLINE_LAMBDA { return multiplyRounded(y, splat(kLightness)) + splat(kLightnessBase); });
    return {narrowRoundedInLanes<uint8_t, kLightnessShift>(lightness), chroma(f.x, f.y, kA), chroma(f.y, f.z, kB)};
}

// In three loops: one would have more constants than there are registers.
RVK_INLINE void toLabThrough(Triple* triples, const uint8_t* src, size_t count, uint8_t* dst)
{
    for (size_t i = 0; i < count; ++i)
        triples[i] = xyzOf(src + i * 4 * kPixels);
    for (size_t i = 0; i < count; ++i) {
        Triple& t = triples[i];
        const auto f = [](auto v) RVK_INLINE_LAMBDA { return labFunction(v); };
        t = {both(t.x, f), both(t.y, f), both(t.z, f)};
    }
    for (size_t i = 0; i < count; ++i)
        store3(dst + i * 3 * kPixels, labOf(triples[i]));
}

void toLab(const uint8_t* src, size_t count, uint8_t* dst)
{
    constexpr size_t most = 8;
    Triple triples[most];
    for (size_t n; count; count -= n, src += n * 4 * kPixels, dst += n * 3 * kPixels) {
        n = least(count, most);
        toLabThrough(triples, src, n, dst);
    }
}

// ---- pictures -------------------------------------------------------------------------------------------------------

void convert(const Conversion<Rgb888, Hsv888>& c)
{
    convertRows<3>(c, toHsv);
}

void convert(const Conversion<Rgba8888, Lab888>& c)
{
    convertRows<4>(c, toLab);
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikColorSpaceForms.h"
