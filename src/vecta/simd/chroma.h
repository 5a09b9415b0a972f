// Between red, green, blue and luma, chroma: full-range BT.601 in fixed point, a vector of pixels at a time.
//
// Of luma and grey, all pixels of a vector are summed in 16 bits. x86 multiplies neighbouring bytes by two weights and
// adds the products in one instruction, so there the sums of even and of odd pixels lie apart, and nothing is shuffled.
//
// What chroma adds to a channel lies between -255 and 255. For pixels that share it, it is made once and kept as two
// bytes, of which one is zero: the channel of a pixel is luma + more - less, each saturated.
#pragma once

#include "vecta/simd/simd.h"

namespace rvk::vecta::RVK_ISA {
namespace {

struct Rgb
{
    Vec<uint8_t> red, green, blue;
};

struct Chroma
{
    Vec<uint8_t> cb, cr;
};

struct Offset
{
    Vec<uint8_t> more, less;

    RVK_INLINE Vec<uint8_t> of(Vec<uint8_t> luma) const { return subSat(addSat(luma, more), less); }
};

struct Offsets
{
    Offset red, green, blue;

    RVK_INLINE Rgb of(Vec<uint8_t> luma) const { return {red.of(luma), green.of(luma), blue.of(luma)}; }
};

#if defined(__x86_64__)

// ---- sums of even and of odd pixels ---------------------------------------------------------------------------------

// Blue and red of the even and of the odd pixels, beside each other.
template <bool odd>
RVK_INLINE Vec<uint8_t> blueAndRed(const Rgb& p)
{
    const Vec<uint16_t> blue = bitCast<uint16_t>(p.blue), red = bitCast<uint16_t>(p.red);
    if constexpr (odd)
        return bitCast<uint8_t>(shiftRight(blue, 8) | (red & splat<uint16_t>(0xff00)));
    else
        return bitCast<uint8_t>((blue & splat<uint16_t>(0x00ff)) | shiftLeft(red, 8));
}

// Products of every second byte.
template <bool odd>
RVK_INLINE Vec<int16_t> products(Vec<uint8_t> v, int32_t weight)
{
    return dotPairs(v, bitCast<int8_t>(odd ? splatPair(0, weight) : splatPair(weight, 0)));
}

template <bool odd>
RVK_INLINE Vec<int16_t> weigh(const Rgb& p, int32_t blue, int32_t green, int32_t red)
{
    return dotPairs(blueAndRed<odd>(p), bitCast<int8_t>(splatPair(blue, red))) + products<odd>(p.green, green);
}

template <bool odd>
RVK_INLINE Vec<int16_t> weighLuma(const Rgb& p)
{
    const Vec<int16_t> halfOfGreen = products<odd>(p.green, 75);
    return dotPairs(blueAndRed<odd>(p), bitCast<int8_t>(splatPair(29, 77))) + splat<int16_t>(128) +
           (halfOfGreen + halfOfGreen);
}

RVK_INLINE Vec<uint8_t> lumaOf(const Rgb& p)
{
    return joinUpperHalves(weighLuma<false>(p), weighLuma<true>(p));
}

// 256 times grey is 256 times as much as luma has, without its rounding, and the fractions of the weights beyond that.
template <bool odd>
RVK_INLINE Vec<int16_t> weighGrey(const Rgb& p)
{
    return weighLuma<odd>(p) + shiftRight(weigh<odd>(p, 47, 69, -117), 8);
}

RVK_INLINE Vec<uint8_t> greyOf(const Rgb& p)
{
    return joinUpperHalves(weighGrey<false>(p), weighGrey<true>(p));
}

// The upper bytes hold Cb and Cr - 128. Negated, all weights fit signed bytes.
template <bool odd>
RVK_INLINE Vec<int16_t> weighCb(const Rgb& p)
{
    return subSat(splat<int16_t>(128), weigh<odd>(p, -128, 85, 43));
}

template <bool odd>
RVK_INLINE Vec<int16_t> weighCr(const Rgb& p)
{
    return subSat(splat<int16_t>(128), weigh<odd>(p, 21, 107, -128));
}

RVK_INLINE Chroma chromaOf(const Rgb& p)
{
    const Vec<uint8_t> offset = splat<uint8_t>(128);
    return {joinUpperHalves(weighCb<false>(p), weighCb<true>(p)) ^ offset,
            joinUpperHalves(weighCr<false>(p), weighCr<true>(p)) ^ offset};
}

// ---- chroma that two pixels share -----------------------------------------------------------------------------------

// Vectors of pixels that belong to a whole vector of chroma.
constexpr size_t kSharing = 1;

// The chroma of even pixels, beside each other.
RVK_INLINE Vec<uint8_t> chromaPairsOf(const Rgb& p)
{
    return joinUpperHalves(weighCb<false>(p), weighCr<false>(p)) ^ splat<uint8_t>(128);
}

RVK_INLINE void storeEvenChroma(const Rgb (&p)[kSharing], uint8_t* pairs)
{
    store(pairs, chromaPairsOf(p[0]));
}

RVK_INLINE void storeEvenChroma(const Rgb (&p)[kSharing], uint8_t* cb, uint8_t* cr)
{
    const Vec<uint16_t> pairs = bitCast<uint16_t>(chromaPairsOf(p[0]));
    storeLowBytes(cb, pairs);
    storeLowBytes(cr, shiftRight(pairs, 8));
}

// ---- what chroma adds -----------------------------------------------------------------------------------------------

struct WideOffsets
{
    Vec<int16_t> red, green, blue;
};

// With weights that are not negative, of bytes with a sign.
template <bool crFirst>
RVK_INLINE Vec<int16_t> weighSigned(Vec<int8_t> pairs, int32_t cb, int32_t cr)
{
    return dotPairs(crFirst ? splatPair(cr, cb) : splatPair(cb, cr), pairs);
}

// d = Cb - 128 and e = Cr - 128 are doubled so that a rounded product of 16 bits does the rest. Of green, -183e is
// 73e - 256e.
template <bool crFirst>
RVK_INLINE WideOffsets offsetsOf(Vec<uint8_t> pairs)
{
    const Vec<int8_t> centred = bitCast<int8_t>(pairs ^ splat<uint8_t>(128));
    const Vec<int16_t> d2 = weighSigned<crFirst>(centred, 2, 0), e2 = weighSigned<crFirst>(centred, 0, 2);
    const Vec<uint8_t> weights = crFirst ? splatPair(73, -88) : splatPair(-88, 73);
    const Vec<int16_t> green = dotPairs(pairs, bitCast<int8_t>(weights)) + splat<int16_t>((88 - 73) * 128 + 128);
    return {multiplyRounded(e2, splat<int16_t>(359 * 64)), shiftRight(green, 8) - shiftRight(e2, 1),
            multiplyRounded(d2, splat<int16_t>(454 * 64))};
}

RVK_INLINE Vec<int16_t> positive(Vec<int16_t> v)
{
    return max(v, zero<int16_t>());
}

// The lower byte of each element, twice.
RVK_INLINE Vec<uint8_t> lowByteTwice(Vec<int16_t> v)
{
    const Vec<uint8_t> bytes = bitCast<uint8_t>(v);
    return shuffle(bytes, bytes, [](size_t i) { return i / 2 * 2; });
}

// For both pixels of each pair.
RVK_INLINE Offset forBoth(Vec<int16_t> offset)
{
    const Vec<int16_t> more = positive(offset);
    return {lowByteTwice(more), lowByteTwice(more - offset)};
}

// Of kSharing vectors of pixels, two of which share a sample.
template <bool crFirst>
RVK_INLINE void loadSharedOffsets(const uint8_t* pairs, Offsets (&offsets)[kSharing])
{
    const WideOffsets wide = offsetsOf<crFirst>(load(pairs));
    offsets[0] = {forBoth(wide.red), forBoth(wide.green), forBoth(wide.blue)};
}

RVK_INLINE void loadSharedOffsets(const uint8_t* cb, const uint8_t* cr, Offsets (&offsets)[kSharing])
{
    const Vec<uint16_t> pairs = loadWiden<uint16_t>(cb) | shiftLeft(loadWiden<uint16_t>(cr), 8);
    const WideOffsets wide = offsetsOf<false>(bitCast<uint8_t>(pairs));
    offsets[0] = {forBoth(wide.red), forBoth(wide.green), forBoth(wide.blue)};
}

// Of a vector of pixels with a sample each, in their order or in that of ...InLanes.
template <bool ordered>
struct OwnOffsets
{
    WideOffsets first, second;

    RVK_INLINE Rgb of(Vec<uint8_t> luma) const
    {
        const Vecs<int16_t, 2> wide = bitCast<int16_t>(ordered ? widen(luma) : widenInLanes(luma));
        const auto channel = [&](Vec<int16_t> a, Vec<int16_t> b) RVK_INLINE_LAMBDA {
            const Vecs<int16_t, 2> sums = {wide[0] + a, wide[1] + b};
            return ordered ? narrowSat<uint8_t>(sums) : narrowSatInLanes<uint8_t>(sums);
        };
        return {channel(first.red, second.red), channel(first.green, second.green), channel(first.blue, second.blue)};
    }
};

template <bool crFirst>
RVK_INLINE OwnOffsets<true> loadOwnOffsets(const uint8_t* pairs)
{
    return {offsetsOf<crFirst>(load(pairs)), offsetsOf<crFirst>(load(pairs + kBytes))};
}

RVK_INLINE OwnOffsets<false> loadOwnOffsets(const uint8_t* cb, const uint8_t* cr)
{
    const Vecs<uint8_t, 2> pairs = zipInLanes(load(cb), load(cr));
    return {offsetsOf<false>(pairs[0]), offsetsOf<false>(pairs[1])};
}

#else

// ---- sums of the lower and of the upper pixels ----------------------------------------------------------------------

struct HalfRgb
{
    uint8x8_t red, green, blue;
};

RVK_INLINE HalfRgb lowHalf(const Rgb& p)
{
    return {lowHalf(p.red), lowHalf(p.green), lowHalf(p.blue)};
}
RVK_INLINE HalfRgb highHalf(const Rgb& p)
{
    return {highHalf(p.red), highHalf(p.green), highHalf(p.blue)};
}

template <class Weigh>
RVK_INLINE auto joinHalves(const Rgb& p, Weigh weigh)
{
    return join(weigh(lowHalf(p)), weigh(highHalf(p)));
}

// sum + or - v * weight, by the sign of the weight.
template <int32_t weight>
RVK_INLINE uint16x8_t addProducts(uint16x8_t sum, uint8x8_t v)
{
    if constexpr (weight < 0)
        return vmlsl_u8(sum, v, vdup_n_u8(-weight));
    else
        return vmlal_u8(sum, v, vdup_n_u8(weight));
}

// The first weight is positive.
template <int32_t first, int32_t second, int32_t third>
RVK_INLINE uint16x8_t weigh(uint8x8_t a, uint8x8_t b, uint8x8_t c)
{
    return addProducts<third>(addProducts<second>(vmull_u8(a, vdup_n_u8(first)), b), c);
}

RVK_INLINE uint16x8_t weighLuma(const HalfRgb& p)
{
    return weigh<29, 150, 77>(p.blue, p.green, p.red);
}

RVK_INLINE Vec<uint8_t> lumaOf(const Rgb& p)
{
    return joinHalves(p, [](const HalfRgb& half) RVK_INLINE_LAMBDA { return vrshrn_n_u16(weighLuma(half), 8); });
}

// 256 times grey is 256 times as much as luma has, without its rounding, and the fractions of the weights beyond that.
RVK_INLINE Vec<uint8_t> greyOf(const Rgb& p)
{
    return joinHalves(p, [](const HalfRgb& half) RVK_INLINE_LAMBDA {
        const int16x8_t fractions = vreinterpretq_s16_u16(weigh<47, 69, -117>(half.blue, half.green, half.red));
        const int16x8_t whole = vreinterpretq_s16_u16(weighLuma(half));
        return vrshrn_n_u16(vreinterpretq_u16_s16(vsraq_n_s16(whole, fractions, 8)), 8);
    });
}

// Sums of chroma have a sign, and saturate as one byte with a sign.
RVK_INLINE int8x8_t roundedUpperBytes(uint16x8_t sum)
{
    return vqrshrn_n_s16(vreinterpretq_s16_u16(sum), 8);
}

RVK_INLINE Chroma chromaOf(const Rgb& p)
{
    const auto cb = joinHalves(p, [](const HalfRgb& half) RVK_INLINE_LAMBDA {
        return roundedUpperBytes(weigh<128, -85, -43>(half.blue, half.green, half.red));
    });
    const auto cr = joinHalves(p, [](const HalfRgb& half) RVK_INLINE_LAMBDA {
        return roundedUpperBytes(weigh<128, -107, -21>(half.red, half.green, half.blue));
    });
    const Vec<uint8_t> offset = splat<uint8_t>(128);
    return {bitCast<uint8_t>(cb) ^ offset, bitCast<uint8_t>(cr) ^ offset};
}

// ---- chroma that two pixels share -----------------------------------------------------------------------------------

// Vectors of pixels that belong to a whole vector of chroma.
constexpr size_t kSharing = 2;

RVK_INLINE Chroma evenChromaOf(const Rgb (&p)[kSharing])
{
    return chromaOf(
        {unzipEven(p[0].red, p[1].red), unzipEven(p[0].green, p[1].green), unzipEven(p[0].blue, p[1].blue)});
}

RVK_INLINE void storeEvenChroma(const Rgb (&p)[kSharing], uint8_t* pairs)
{
    const Chroma c = evenChromaOf(p);
    store2(pairs, Vecs<uint8_t, 2>{c.cb, c.cr});
}

RVK_INLINE void storeEvenChroma(const Rgb (&p)[kSharing], uint8_t* cb, uint8_t* cr)
{
    const Chroma c = evenChromaOf(p);
    store(cb, c.cb);
    store(cr, c.cr);
}

// ---- what chroma adds -----------------------------------------------------------------------------------------------

// Of a vector of pixels with a sample each.
struct OwnOffsets
{
    Vecs<int16_t, 2> red, green, blue;

    RVK_INLINE Rgb of(Vec<uint8_t> luma) const
    {
        const auto channel = [=](const Vecs<int16_t, 2>& offset) RVK_INLINE_LAMBDA {
            const Vecs<uint16_t, 2> o = bitCast<uint16_t>(offset);
            return narrowSat<uint8_t>(bitCast<int16_t>(
                Vecs<uint16_t, 2>{vec(vaddw_u8(reg(o[0]), lowHalf(luma))), vec(vaddw_u8(reg(o[1]), highHalf(luma)))}));
        };
        return {channel(red), channel(green), channel(blue)};
    }
};

// d = Cb - 128 and e = Cr - 128. Of red, 359e is 256e + 103e; of green, -183e is 73e - 256e; of blue, 454d is 512d -
// 58d.
RVK_INLINE OwnOffsets offsetsOf(Chroma c)
{
    const Vec<uint8_t> offset = splat<uint8_t>(128);
    const Vec<int8_t> d = bitCast<int8_t>(c.cb ^ offset), e = bitCast<int8_t>(c.cr ^ offset);
    const auto red = [](int8x8_t v)
                         RVK_INLINE_LAMBDA { return vec(vaddw_s8(vrshrq_n_s16(vmull_s8(v, vdup_n_s8(103)), 8), v)); };
    const auto green = [](int8x8_t v, int8x8_t w) RVK_INLINE_LAMBDA {
        return vec(vsubw_s8(vrshrq_n_s16(vmlal_s8(vmull_s8(v, vdup_n_s8(-88)), w, vdup_n_s8(73)), 8), w));
    };
    const auto blue = [](int8x8_t v) RVK_INLINE_LAMBDA {
        return vec(vrsraq_n_s16(vshll_n_s8(v, 1), vmull_s8(v, vdup_n_s8(-58)), 8));
    };
    return {{red(lowHalf(e)), red(highHalf(e))},
            {green(lowHalf(d), lowHalf(e)), green(highHalf(d), highHalf(e))},
            {blue(lowHalf(d)), blue(highHalf(d))}};
}

template <bool crFirst>
RVK_INLINE OwnOffsets loadOwnOffsets(const uint8_t* pairs)
{
    const Vecs<uint8_t, 2> two = load2(pairs);
    return offsetsOf({two[crFirst], two[!crFirst]});
}

RVK_INLINE OwnOffsets loadOwnOffsets(const uint8_t* cb, const uint8_t* cr)
{
    return offsetsOf({load(cb), load(cr)});
}

// For both pixels of each sample.
RVK_INLINE void spread(const Vecs<int16_t, 2>& o, Offset& left, Offset& right)
{
    const Vec<uint8_t> positive = narrowSat<uint8_t>(o);
    const Vec<uint8_t> negative = narrowSat<uint8_t>(Vecs<int16_t, 2>{zero<int16_t>() - o[0], zero<int16_t>() - o[1]});
    const Vecs<uint8_t, 2> more = zip(positive, positive), less = zip(negative, negative);
    left = {more[0], less[0]};
    right = {more[1], less[1]};
}

RVK_INLINE void shareOffsets(const OwnOffsets& o, Offsets (&offsets)[kSharing])
{
    spread(o.red, offsets[0].red, offsets[1].red);
    spread(o.green, offsets[0].green, offsets[1].green);
    spread(o.blue, offsets[0].blue, offsets[1].blue);
}

// Of kSharing vectors of pixels, two of which share a sample.
template <bool crFirst>
RVK_INLINE void loadSharedOffsets(const uint8_t* pairs, Offsets (&offsets)[kSharing])
{
    shareOffsets(loadOwnOffsets<crFirst>(pairs), offsets);
}

RVK_INLINE void loadSharedOffsets(const uint8_t* cb, const uint8_t* cr, Offsets (&offsets)[kSharing])
{
    shareOffsets(loadOwnOffsets(cb, cr), offsets);
}

#endif

// ---- grey of pixels in memory, red first ----------------------------------------------------------------------------

#if RVK_AVX512

// The products of four bytes are summed at once: red, green, blue, and green again, since its weight is too large for
// one signed byte.
RVK_INLINE Vec<int32_t> scaledGreyOf(Vec<uint8_t> pixels)
{
    const auto weights = [](uint32_t red, uint32_t green, uint32_t blue, uint32_t greenAgain) RVK_INLINE_LAMBDA {
        return bitCast<int8_t>(splat(red | green << 8 | blue << 16 | greenAgain << 24));
    };
    const Vec<int32_t> upper = addDotQuads(splat<int32_t>(128), pixels, weights(77, 75, 29, 75));
    return addDotQuads(shiftLeft(upper, 8), pixels, weights(uint8_t(-117), 69, 47, 0));
}

// From byte `offset` of the vector on.
template <size_t offset>
RVK_INLINE Vec<int32_t> loadScaledGrey(const uint8_t* p)
{
    const Vec<uint8_t> bytes = load(p);
    return scaledGreyOf(shuffle(bytes, bytes, [](size_t i) { return offset + i / 4 * 3 + (i % 4 == 3 ? 1 : i % 4); }));
}

// The third bytes are grey.
RVK_INLINE Vec<uint8_t> thirdBytes(Vec<int32_t> a, Vec<int32_t> b)
{
    return shuffle(bitCast<uint8_t>(a), bitCast<uint8_t>(b), [](size_t i) { return i % 32 * 4 + 2; });
}

RVK_INLINE Vec<uint8_t> loadGrey(const uint8_t* p)
{
    constexpr size_t quarter = Vec<uint8_t>::lanes / 4 * 3; // of the bytes of the pixels
    const Vec<uint8_t> low = thirdBytes(loadScaledGrey<0>(p), loadScaledGrey<0>(p + quarter));
    const Vec<uint8_t> high =
        thirdBytes(loadScaledGrey<0>(p + 2 * quarter), loadScaledGrey<kBytes - quarter>(p + 4 * quarter - kBytes));
    return blend(UINT64_MAX << 32, low, high);
}

#else

RVK_INLINE Vec<uint8_t> loadGrey(const uint8_t* p)
{
    const Vecs<uint8_t, 3> v = load3(p);
    return greyOf({v[0], v[1], v[2]});
}

#endif

} // namespace
} // namespace rvk::vecta::RVK_ISA
