// Vector implementations of the conversions to HSV and Lab.
#include "color.h"
#include "cpu/lab.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// ---- pixels ---------------------------------------------------------------------------------------------------------

constexpr size_t kPixels = Vec<uint8_t>::lanes;

template <size_t channels>
RVK_INLINE Vecs<uint8_t, 3> loadRgb(const uint8_t* p)
{
    if constexpr (channels == 3) {
        return load3(p);
    } else {
        const Vecs<uint8_t, 4> rgba = load4(p);
        return {rgba[0], rgba[1], rgba[2]};
    }
}

// A formula takes vectors of red, green and blue.
template <size_t channels, class Formula>
RVK_NOINLINE void mapVectors(const uint8_t* src, size_t vectors, uint8_t* dst, Formula formula)
{
    for (; vectors; --vectors, src += channels * kPixels, dst += 3 * kPixels)
        store3(dst, formula(loadRgb<channels>(src)));
}

// Source and destination may be the same: no pixel is read after it was written.
template <size_t channels, class Formula>
RVK_INLINE void mapPixels(const uint8_t* src, size_t width, uint8_t* dst, Formula formula)
{
    const size_t rest = width % kPixels, whole = width - rest;
    mapVectors<channels>(src, width / kPixels, dst, formula);
    if (rest) {
        uint8_t in[channels * kPixels] = {}, out[3 * kPixels];
        __builtin_memcpy(in, src + whole * channels, rest * channels);
        mapVectors<channels>(in, 1, out, formula);
        __builtin_memcpy(dst + whole * 3, out, rest * 3);
    }
}

// Pictures without gaps between their rows are one long row.
template <size_t channels, class From, class To>
RVK_INLINE void forEachRow(const Conversion<From, To>& c, void (*convertRow)(const uint8_t*, size_t, uint8_t*))
{
    size_t width = c.width, height = c.height;
    if (c.src[0].stride == channels * width && c.dst[0].stride == 3 * width) {
        width *= height;
        height = 1;
    }
    for (size_t y = 0; y < height; ++y)
        convertRow(Plane{c.src[0].data, c.src[0].stride}.row(y), width, Plane{c.dst[0].data, c.dst[0].stride}.row(y));
}

// ---- HSV ------------------------------------------------------------------------------------------------------------

struct Quotients
{
    Vec<int32_t> hue, saturation;
};

// 256/6 * sixths / range and 255 * range / value, rounded. Exact quotients of numbers this small that are no halves are
// further from a half than 2^-11; what is added to the half lifts saturations that are halves over the error.
RVK_INLINE Quotients quotients(Vec<uint32_t> sixths, Vec<uint32_t> range, Vec<uint32_t> value)
{
    const Vec<float> d = toFloat(range), v = toFloat(value);
    const Vec<float> r = closeReciprocal(d * v);
    return {truncateToInt(toFloat(sixths) * (v * r * splat(256.0f / 6)) + splat(0.5f)),
            truncateToInt(d * (d * r * splat(255.0f)) + splat(0.5f + 0x1p-10f))};
}

RVK_INLINE Vecs<uint32_t, 4> quarters(const Vecs<uint16_t, 2>& halves)
{
    const Vecs<uint32_t, 2> low = widenInLanes(halves[0]), high = widenInLanes(halves[1]);
    return {low[0], low[1], high[0], high[1]};
}

RVK_INLINE Vecs<int16_t, 2> halves(const Vecs<int32_t, 4>& v)
{
    return {narrowSatInLanes<int16_t>(Vecs<int32_t, 2>{v[0], v[1]}),
            narrowSatInLanes<int16_t>(Vecs<int32_t, 2>{v[2], v[3]})};
}

RVK_INLINE Vecs<uint8_t, 3> hsvOf(const Vecs<uint8_t, 3>& rgb)
{
    const Vec<uint8_t> red = rgb[0], green = rgb[1], blue = rgb[2];
    const Vec<uint8_t> value = max(max(red, green), blue), range = value - min(min(red, green), blue);
    const Mask<uint8_t> isRed = equal(value, red), isGreen = equal(value, green);

    // The sixths of the circle, in units of 1/range.
    const Vec<uint8_t> whole = select(isRed, toVec(greater(blue, green)) & splat<uint8_t>(6),
                                      select(isGreen, splat<uint8_t>(2), splat<uint8_t>(4)));
    const Vec<uint8_t> minuend = select(isRed, green, select(isGreen, blue, red));
    const Vec<uint8_t> subtrahend = select(isRed, blue, select(isGreen, red, green));
    const auto difference =
        both(widenInLanes(minuend), widenInLanes(subtrahend), [](auto a, auto b) RVK_INLINE_LAMBDA { return a - b; });
    const auto sixths =
        both(multiplyWideInLanes(range, whole), difference, [](auto a, auto b) RVK_INLINE_LAMBDA { return a + b; });

    // Greys divide by 1.
    const Vec<uint8_t> one = splat<uint8_t>(1);
    const Vecs<uint32_t, 4> n = quarters(sixths), d = quarters(widenInLanes(max(range, one))),
                            v = quarters(widenInLanes(max(value, one)));
    Vecs<int32_t, 4> hue, saturation;
    unrolled<4>([&](auto i) RVK_INLINE_LAMBDA {
        const Quotients q = quotients(n[i], d[i], v[i]);
        hue[i] = q.hue;
        saturation[i] = q.saturation;
    });
    const Vec<uint8_t> saturated = narrowSatInLanes<uint8_t>(halves(saturation));
    const Mask<uint8_t> isGrey = equal(range, zero<uint8_t>());
    return {bitCast<uint8_t>(narrowInLanes(halves(hue))), select(isGrey, zero<uint8_t>(), saturated), value};
}

void toHsv(const uint8_t* src, size_t width, uint8_t* dst)
{
    mapPixels<3>(src, width, dst, [](const auto& rgb) RVK_INLINE_LAMBDA { return hsvOf(rgb); });
}

// ---- Lab ------------------------------------------------------------------------------------------------------------

using namespace lab;

template <int degree>
RVK_INLINE Vec<int16_t> valueOf(const Polynomial<degree>& polynomial, Vec<int16_t> x)
{
    Vec<int16_t> value = splat(polynomial.coefficients[degree]);
    unrolled<degree>([&](auto i) RVK_INLINE_LAMBDA {
        value = multiplyRounded(value, x) + splat(polynomial.coefficients[degree - 1 - i]);
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

RVK_INLINE Vec<uint16_t> labFunction(Vec<uint16_t> t)
{
    const Vec<uint16_t> below = subSat(splat(kCubeStart), t);
    const Vec<int16_t> line = multiplyRounded(bitCast<int16_t>(shiftLeft(below, kLineShift)), splat(kLineSlope));
    t = t + below;
    const Mask<uint16_t> isBelowEighth = less(t, splat(kEighth));
    t = select(isBelowEighth, shiftLeft(t, 3), t);
    const Mask<uint16_t> isStillBelow = less(t, splat(kEighth));
    t = select(isStillBelow, shiftLeft(t, 3), t);
    Vec<uint16_t> root = bitCast<uint16_t>(valueOf(kRoot, bitCast<int16_t>(t - splat(kRootCentre))));
    root = select(isStillBelow, shiftRight(root, 1), root);
    root = select(isBelowEighth, shiftRight(root, 1), root);
    return root - bitCast<uint16_t>(line);
}

// factor * (a - b), rounded, and kNeutral.
RVK_INLINE Vec<uint8_t> chroma(const Vecs<int16_t, 2>& a, const Vecs<int16_t, 2>& b, int16_t factor)
{
    return narrowSatInLanes<uint8_t>(both(a, b, [=](auto x, auto y) RVK_INLINE_LAMBDA {
        return multiplyRounded(x - y, splat(factor)) + splat(kNeutral);
    }));
}

RVK_INLINE Vecs<uint8_t, 3> labOf(const Vecs<uint8_t, 3>& rgb)
{
    const Vecs<int16_t, 2> red = linearLight(rgb[0]), green = linearLight(rgb[1]), blue = linearLight(rgb[2]);
    const auto functionOf = [&](auto row) RVK_INLINE_LAMBDA {
        Vecs<int16_t, 2> f;
        unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
            const Vecs<int16_t, 3> light = {red[i], green[i], blue[i]};
            f[i] = bitCast<int16_t>(labFunction(weightedSum<kShareShift>(light, kShares[row])));
        });
        return f;
    };
    const Vecs<int16_t, 2> x = functionOf(Constant<0>{}), y = functionOf(Constant<1>{}), z = functionOf(Constant<2>{});
    const auto lightness =
        both(y, [](auto f) RVK_INLINE_LAMBDA { return multiplyRounded(f, splat(kLightness)) + splat(kLightnessBase); });
    return {narrowRoundedInLanes<uint8_t, kLightnessShift>(lightness), chroma(x, y, kA), chroma(y, z, kB)};
}

void toLab(const uint8_t* src, size_t width, uint8_t* dst)
{
    mapPixels<4>(src, width, dst, [](const auto& rgb) RVK_INLINE_LAMBDA { return labOf(rgb); });
}

// ---- pictures -------------------------------------------------------------------------------------------------------

void convert(const Conversion<Rgb888, Hsv888>& c)
{
    forEachRow<3>(c, toHsv);
}

void convert(const Conversion<Rgba8888, Lab888>& c)
{
    forEachRow<4>(c, toLab);
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikColorSpaceForms.h"
