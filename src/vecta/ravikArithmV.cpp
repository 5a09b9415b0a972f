// Vector implementations of the element-wise arithmetic.
#include "cpu/arithm.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

constexpr auto plus = [](auto a, auto b) RVK_INLINE_LAMBDA { return a + b; };
constexpr auto minus = [](auto a, auto b) RVK_INLINE_LAMBDA { return a - b; };
constexpr auto times = [](auto a, auto b) RVK_INLINE_LAMBDA { return a * b; };
constexpr auto plusSaturating = [](auto a, auto b) RVK_INLINE_LAMBDA { return addSat(a, b); };
constexpr auto minusSaturating = [](auto a, auto b) RVK_INLINE_LAMBDA { return subSat(a, b); };

// mapImage with the formula that the policy asks for.
template <class D, class Wrapped, class Saturated, class... S>
RVK_INLINE rvkStatus mapByPolicy(uint32_t width, uint32_t height, uint32_t policy, Plane<D> dst, Wrapped wrapped,
                                 Saturated saturated, Plane<const S>... sources)
{
    if (policy == RAVIK_POLICY_WRAP)
        mapImage(width, height, dst, wrapped, sources...);
    else if (policy == RAVIK_POLICY_SATURATE)
        mapImage(width, height, dst, saturated, sources...);
    else
        return RAVIK_EBADPARAM;
    return RAVIK_SUCCESS;
}

// f on both halves of widened vectors.
template <class T, class F>
RVK_INLINE auto both(Vecs<T, 2> v, F f)
{
    return Vecs<typename decltype(f(v[0]))::Element, 2>{f(v[0]), f(v[1])};
}

template <class T, class F>
RVK_INLINE auto both(Vecs<T, 2> a, Vecs<T, 2> b, F f)
{
    return Vecs<typename decltype(f(a[0], b[0]))::Element, 2>{f(a[0], b[0]), f(a[1], b[1])};
}

// Exact sums and differences of bytes.
RVK_INLINE Vecs<uint16_t, 2> addWide(Vec<uint8_t> a, Vec<uint8_t> b)
{
#if defined(__ARM_NEON)
    return {vec(vaddl_u8(lowHalf(a), lowHalf(b))), vec(vaddl_u8(highHalf(a), highHalf(b)))};
#else
    return both(widen(a), widen(b), plus);
#endif
}

RVK_INLINE Vecs<uint16_t, 2> subtractWide(Vec<uint8_t> a, Vec<uint8_t> b)
{
#if defined(__ARM_NEON)
    return {vec(vsubl_u8(lowHalf(a), lowHalf(b))), vec(vsubl_u8(highHalf(a), highHalf(b)))};
#else
    return both(widen(a), widen(b), minus);
#endif
}

RVK_INLINE Vecs<int16_t, 2> asSigned(Vecs<uint16_t, 2> v)
{
    return {bitCast<int16_t>(v[0]), bitCast<int16_t>(v[1])};
}

// ---- scales --------------------------------------------------------------------------------------------------------

// Whether the vector code has the shift for a scale: below 16 to the left, below `limit` to the right. What lies beyond
// makes no sense for the type; the reference does it.
RVK_INLINE bool isShift(int32_t scale, int32_t limit)
{
    return -16 < scale && scale < limit;
}

// (v + 2^(count - 1)) >> count, without overflow of the sum. The count is at least 1.
RVK_INLINE Vec<uint16_t> shiftRightRounded(Vec<uint16_t> v, int32_t count)
{
#if defined(__ARM_NEON)
    return vec(vrshlq_u16(reg(v), vdupq_n_s16(static_cast<int16_t>(-count))));
#else
    return average(shiftRight(v, static_cast<unsigned>(count - 1)), zero<uint16_t>());
#endif
}

// The same for products of 16-bit integers and counts of 30 at most.
RVK_INLINE Vec<int32_t> shiftRightRounded(Vec<int32_t> v, int32_t count)
{
#if defined(__ARM_NEON)
    return vec(vrshlq_s32(reg(v), vdupq_n_s32(-count)));
#else
    return shiftRight(v + splat(1 << (count - 1)), static_cast<unsigned>(count));
#endif
}

RVK_INLINE Vecs<int32_t, 2> shiftRightRounded(Vecs<int32_t, 2> v, int32_t count)
{
    return both(v, [=](auto half) RVK_INLINE_LAMBDA { return shiftRightRounded(half, count); });
}

// v << count, or the largest D where D cannot hold that. (NEON leaves it to the conversion to bytes to clamp to them.)
template <class D>
RVK_INLINE Vec<uint16_t> shiftLeftSaturated(Vec<uint16_t> v, int32_t count)
{
    constexpr uint16_t top = isSame<D, uint8_t> ? UINT8_MAX : isSame<D, int16_t> ? INT16_MAX : UINT16_MAX;
#if defined(__ARM_NEON)
    const Vec<uint16_t> shifted = vec(vqshlq_u16(reg(v), vdupq_n_s16(static_cast<int16_t>(count))));
    return isSame<D, int16_t> ? min(shifted, splat(top)) : shifted;
#else
    const Vec<uint16_t> largest = splat(static_cast<uint16_t>(top >> count));
    return select(greater(v, largest), splat(top), shiftLeft(v, static_cast<unsigned>(count)));
#endif
}

// Clamped to bytes. On x86 all values that come here are below 2^15, and the signed instruction does.
RVK_INLINE Vec<uint8_t> toBytes(Vecs<uint16_t, 2> v)
{
#if defined(__ARM_NEON)
    return narrowSat<uint8_t>(v);
#else
    return narrowSatInLanes<uint8_t>(asSigned(v));
#endif
}

// dst = a product of bytes * 2^-scale. The products come as halves of 16 bits; the conversions put their low bits or
// their clamped values together again.
template <class D, class Products, class Wrap, class Saturate>
RVK_INLINE rvkStatus scaleByteProducts(uint32_t width, uint32_t height, uint32_t policy, int32_t scale, Plane<D> dst,
                                       Products products, Wrap toWrapped, Saturate toSaturated,
                                       Plane<const uint8_t> src1, Plane<const uint8_t> src2)
{
    const auto shifted = [=](auto shift, auto convert) RVK_INLINE_LAMBDA {
        return [=](auto a, auto b) RVK_INLINE_LAMBDA { return convert(both(products(a, b), shift)); };
    };
    if (scale >= 1) {
        const auto right = [=](auto p) RVK_INLINE_LAMBDA { return shiftRightRounded(p, scale); };
        return mapByPolicy(width, height, policy, dst, shifted(right, toWrapped), shifted(right, toSaturated), src1,
                           src2);
    }
    const auto left = [=](auto p) RVK_INLINE_LAMBDA { return shiftLeft(p, static_cast<unsigned>(-scale)); };
    const auto leftSaturated = [=](auto p) RVK_INLINE_LAMBDA { return shiftLeftSaturated<D>(p, -scale); };
    return mapByPolicy(width, height, policy, dst, shifted(left, toWrapped), shifted(leftSaturated, toSaturated), src1,
                       src2);
}

// v << count, clamped to 16 bits. Clamping v first changes nothing and leaves room for the shift.
RVK_INLINE Vec<int16_t> shiftLeftSaturated(Vecs<int32_t, 2> v, int32_t count)
{
#if defined(__ARM_NEON)
    return vec(vqshlq_s16(reg(narrowSat<int16_t>(v)), vdupq_n_s16(static_cast<int16_t>(count))));
#else
    return narrowSatInLanes<int16_t>(both(v, [=](auto half) RVK_INLINE_LAMBDA {
        const auto clamped = max(min(half, splat<int32_t>(INT16_MAX)), splat<int32_t>(INT16_MIN));
        return shiftLeft(clamped, static_cast<unsigned>(count));
    }));
#endif
}

// dst = a product of 16-bit integers * 2^-scale; scaledDown gives the products after a shift to the right.
template <class Products, class ScaledDown, class... S>
RVK_INLINE rvkStatus scaleShortProducts(uint32_t width, uint32_t height, uint32_t policy, int32_t scale,
                                        Plane<int16_t> dst, Products products, ScaledDown scaledDown,
                                        Plane<const S>... sources)
{
    if (scale >= 1) {
        const auto wrapped = [=](auto... v) RVK_INLINE_LAMBDA { return narrowInLanes(scaledDown(v...)); };
        const auto saturated = [=](auto... v) RVK_INLINE_LAMBDA { return narrowSatInLanes<int16_t>(scaledDown(v...)); };
        return mapByPolicy(width, height, policy, dst, wrapped, saturated, sources...);
    }
    const auto wrapped = [=](auto... v) RVK_INLINE_LAMBDA {
        return shiftLeft(narrowInLanes(products(v...)), static_cast<unsigned>(-scale));
    };
    const auto saturated = [=](auto... v) RVK_INLINE_LAMBDA { return shiftLeftSaturated(products(v...), -scale); };
    return mapByPolicy(width, height, policy, dst, wrapped, saturated, sources...);
}

// shiftRightRounded of the products with a number; the count is 1 to 29.
RVK_INLINE Vecs<int32_t, 2> multiplyAndShift(Vec<int16_t> v, int16_t factor, int32_t count)
{
#if defined(__ARM_NEON)
    return shiftRightRounded(multiplyWideInLanes(v, splat(factor)), count);
#else
    // The rounding term is a product as well, so that one instruction forms the sum of both.
    const int32_t half = count < 15 ? count - 1 : 14;
    const auto rounded = [=](Vec<int16_t> pairs) RVK_INLINE_LAMBDA {
        const uint32_t factors = static_cast<uint16_t>(factor) | (1u << (count - 1 - half)) << 16;
        return shiftRight(dotPairs(pairs, bitCast<int16_t>(splat(factors))), static_cast<unsigned>(count));
    };
    const Vecs<int16_t, 2> pairs = zipInLanes(v, splat(static_cast<int16_t>(1 << half)));
    return {rounded(pairs[0]), rounded(pairs[1])};
#endif
}

// ---- weights -------------------------------------------------------------------------------------------------------

// (a * weight1 + b * weight2 + 128) >> 8, clamped, twice: blends, whose weights are not negative and together at most
// 256, need only 16 bits.
RVK_INLINE bool areBlend(int32_t weight1, int32_t weight2)
{
    return 0 <= weight1 && weight1 <= 255 && 0 <= weight2 && weight2 <= 255 && weight1 + weight2 <= 256;
}

#if defined(__ARM_NEON)

RVK_INLINE Vec<uint8_t> blend(Vec<uint8_t> a, Vec<uint8_t> b, int32_t weight1, int32_t weight2)
{
    const uint8x8_t factor1 = vdup_n_u8(static_cast<uint8_t>(weight1));
    const uint8x8_t factor2 = vdup_n_u8(static_cast<uint8_t>(weight2));
#if defined(__arm__) && !defined(__clang__)
    uint16x8_t low, high; // the same as below; g++ adds a move to every second instruction
    __asm__("vmull.u8 %q0, %e2, %P4\n\tvmull.u8 %q1, %f2, %P4\n\t"
            "vmlal.u8 %q0, %e3, %P5\n\tvmlal.u8 %q1, %f3, %P5\n\t"
            "vrshrn.i16 %e0, %q0, #8\n\tvrshrn.i16 %f0, %q1, #8"
            : "=&w"(low), "=&w"(high)
            : "w"(reg(a)), "w"(reg(b)), "w"(factor1), "w"(factor2));
    return bitCast<uint8_t>(vec(low));
#else
    const auto half = [=](uint8x8_t v, uint8x8_t w)
                          RVK_INLINE_LAMBDA { return vrshrn_n_u16(vmlal_u8(vmull_u8(v, factor1), w, factor2), 8); };
    return join(half(lowHalf(a), lowHalf(b)), half(highHalf(a), highHalf(b)));
#endif
}

RVK_INLINE bool canAddWeighted(int32_t)
{
    return true;
}

RVK_INLINE Vec<uint8_t> addWeighted(Vec<uint8_t> a, Vec<uint8_t> b, int32_t weight1, int32_t weight2)
{
    const int16x4_t factor1 = vdup_n_s16(static_cast<int16_t>(weight1));
    const int16x4_t factor2 = vdup_n_s16(static_cast<int16_t>(weight2));
    const auto quarter = [=](int16x4_t v, int16x4_t w) RVK_INLINE_LAMBDA {
        return vqrshrun_n_s32(vmlal_s16(vmull_s16(v, factor1), w, factor2), 8);
    };
    const auto half = [=](Vec<int16_t> v, Vec<int16_t> w) RVK_INLINE_LAMBDA {
        return join(quarter(lowHalf(v), lowHalf(w)), quarter(highHalf(v), highHalf(w)));
    };
    return narrowSat<uint8_t>(both(asSigned(widen(a)), asSigned(widen(b)), half));
}

#else

// Products of bytes with signed bytes, neighbours added, saturated.
RVK_INLINE Vec<int16_t> dotPairs(Vec<uint8_t> a, Vec<int8_t> b)
{
    return vec<int16_t>(RVK_MM(maddubs_epi16)(reg(a), reg(b)));
}

// Pairs of bytes in memory order.
RVK_INLINE Vec<uint8_t> splatPair(int32_t first, int32_t second)
{
    return bitCast<uint8_t>(splat(static_cast<uint16_t>((first & 255) | (second & 255) << 8)));
}

// The pixels are the signed bytes here, moved by -128. What the sum lacks for that comes with the rounding term.
RVK_INLINE Vec<uint8_t> blend(Vec<uint8_t> a, Vec<uint8_t> b, int32_t weight1, int32_t weight2)
{
    const Vec<uint8_t> offset = splat<uint8_t>(128);
    const Vec<uint16_t> correction = splat(static_cast<uint16_t>(128 * (weight1 + weight2) + 128));
    const auto blended = [=](auto pairs) RVK_INLINE_LAMBDA {
        const Vec<int16_t> sum = dotPairs(splatPair(weight1, weight2), bitCast<int8_t>(pairs));
        return shiftRight(bitCast<uint16_t>(sum) + correction, 8);
    };
    return toBytes(both(zipInLanes(a ^ offset, b ^ offset), blended));
}

// The weights are the signed bytes here, two each: weight = 128 * high + low with low in -64..63. Then
//     (a * weight1 + b * weight2 + 128) >> 8  =  (H + (L >> 7) + 1) >> 1
// for the sums H and L of either part. L fits 16 bits. Where H does not, the result is far outside 0..255, and so is
// what saturated sums make of it.
RVK_INLINE int32_t highPart(int32_t weight)
{
    return (weight + 64) >> 7;
}

// As a real number, the weight lies between -64.25 and 63.75.
RVK_INLINE bool canAddWeighted(int32_t weight)
{
    return highPart(weight) == static_cast<int8_t>(highPart(weight));
}

RVK_INLINE Vec<uint8_t> addWeighted(Vec<uint8_t> a, Vec<uint8_t> b, int32_t weight1, int32_t weight2)
{
    const int32_t high1 = highPart(weight1), high2 = highPart(weight2);
    const Vec<int8_t> high = bitCast<int8_t>(splatPair(high1, high2));
    const Vec<int8_t> low = bitCast<int8_t>(splatPair(weight1 - 128 * high1, weight2 - 128 * high2));
    const auto weighted = [=](auto pairs) RVK_INLINE_LAMBDA {
        const Vec<int16_t> sum = addSat(dotPairs(pairs, high), shiftRight(dotPairs(pairs, low), 7));
        return vec<int16_t>(RVK_MM(mulhrs_epi16)(reg(sum), reg(splat<int16_t>(1 << 14)))); // (sum + 1) >> 1
    };
    return narrowSatInLanes<uint8_t>(both(zipInLanes(a, b), weighted));
}

#endif

// ---- averages ------------------------------------------------------------------------------------------------------

// The sum of bytes modulo 2^32.
struct ByteSum
{
    Vec<uint32_t> sums = {};

    RVK_INLINE void add(Vec<uint8_t> v) { sums = addBytesTo(sums, v); }
    RVK_INLINE uint32_t total() const { return reduceAdd(sums); }
};

// The sum of 32-bit integers modulo 2^64.
struct IntSum
{
#if defined(__ARM_NEON)
    Vec<int64_t> sums = {};

    RVK_INLINE void add(Vec<int32_t> v)
    {
        sums = addTo(sums, v);
    }
    RVK_INLINE int64_t total() const
    {
        return reduceAdd(sums);
    }
#else
    // Cheaper than to widen: neighbours are summed as one number, high * 2^32 + low, and the high ones alone as well.
    // The sign bits are flipped, which adds 2^31 to each and makes all of them positive.
    Vec<uint64_t> pairs = {}, highs = {};
    uint64_t vectors = 0;

    RVK_INLINE void add(Vec<int32_t> v)
    {
        const Vec<uint64_t> pair = bitCast<uint64_t>(v ^ splat<int32_t>(INT32_MIN));
        pairs = pairs + pair;
        highs = highs + shiftRight(pair, 32);
        ++vectors;
    }
    RVK_INLINE int64_t total() const
    {
        const uint64_t high = reduceAdd(highs);
        const uint64_t low = reduceAdd(pairs) - (high << 32);
        return static_cast<int64_t>(low + high - (vectors * Vec<int32_t>::lanes << 31));
    }
#endif
};

// Adds all elements of an image to `sum`. The last vector of a row ends with it; there, elements that were added before
// are cleared.
template <class Sum, class T>
RVK_INLINE auto addAll(Sum sum, size_t width, size_t height, Plane<const T> src)
{
    constexpr size_t lanes = Vec<T>::lanes;
    if (src.packed(width)) {
        width *= height;
        height = 1;
    }
    const size_t rest = width % lanes;
    const auto inRest = greater(iota<Unsigned<T>>(), splat(static_cast<Unsigned<T>>(lanes - 1 - rest)));
    const Vec<T> restOnly = bitCast<T>(toVec(inRest));
    for (size_t y = 0; y < height; ++y) {
        const T* const row = src.row(y);
        const T* p = row;
        for (size_t n = width / (4 * lanes); n; --n)
            unrolled<2>([&](auto) RVK_INLINE_LAMBDA {
                const auto two = loadTwo(p);
                sum.add(two.first);
                sum.add(two.second);
            });
        for (size_t n = width / lanes % 4; n; --n, p += lanes)
            sum.add(load(p));
        if (rest)
            sum.add(width > lanes ? load(row + width - lanes) & restOnly : loadPartial(row, rest));
    }
    return sum.total();
}

} // namespace

rvkStatus rvkAddScalarf32V(const float32_t* src, uint32_t width, uint32_t height, uint32_t srcStride, float32_t scalar,
                           float32_t* dst, uint32_t dstStride)
{
    const auto formula = [b = splat(scalar)](auto a) RVK_INLINE_LAMBDA { return plus(a, b); };
    mapImage(width, height, Plane{dst, dstStride}, formula, Plane{src, srcStride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkAddScalars16V(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int16_t scalar,
                           int16_t* dst, uint32_t dstStride)
{
    const auto formula = [b = splat(scalar)](auto a) RVK_INLINE_LAMBDA { return plusSaturating(a, b); };
    mapImage(width, height, Plane{dst, dstStride}, formula, Plane{src, srcStride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkAddSquaredu8u16V(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                              const uint16_t* src2, uint32_t src2Stride, int32_t scale, uint16_t* dst,
                              uint32_t dstStride)
{
    if (!isShift(scale, 16))
        return rvkAddSquaredu8u16C(src1, width, height, src1Stride, src2, src2Stride, scale, dst, dstStride);
    const auto addSquares = [=](auto shift) RVK_INLINE_LAMBDA {
        const auto formula = [=](auto a, auto b)
                                 RVK_INLINE_LAMBDA { return both(b, both(multiplyWide(a, a), shift), plusSaturating); };
        mapImage(width, height, Plane{dst, dstStride}, formula, Plane{src1, src1Stride}, Plane{src2, src2Stride});
        return RAVIK_SUCCESS;
    };
    if (scale <= 0)
        return addSquares([=](auto square) RVK_INLINE_LAMBDA { return shiftLeftSaturated<uint16_t>(square, -scale); });
    return addSquares([=](auto square) RVK_INLINE_LAMBDA {
        return shiftRight(square + splat(static_cast<uint16_t>(1 << (scale - 1))), static_cast<unsigned>(scale));
    });
}

rvkStatus rvkAddWeightedu8V(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                            const uint8_t* src2, uint32_t src2Stride, float32_t alpha, float32_t beta, uint8_t* dst,
                            uint32_t dstStride)
{
    const int32_t weight1 = fixedPointWeight(alpha), weight2 = fixedPointWeight(beta);
    const auto blended = [=](auto a, auto b) RVK_INLINE_LAMBDA { return blend(a, b, weight1, weight2); };
    const auto weighted = [=](auto a, auto b) RVK_INLINE_LAMBDA { return addWeighted(a, b, weight1, weight2); };
    const auto apply = [=](auto formula) RVK_INLINE_LAMBDA {
        mapImage(width, height, Plane{dst, dstStride}, formula, Plane{src1, src1Stride}, Plane{src2, src2Stride});
        return RAVIK_SUCCESS;
    };
    if (areBlend(weight1, weight2))
        return apply(blended);
    if (canAddWeighted(weight1) && canAddWeighted(weight2))
        return apply(weighted);
    return rvkAddWeightedu8C(src1, width, height, src1Stride, src2, src2Stride, alpha, beta, dst, dstStride);
}

rvkStatus rvkAddf32V(const float32_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const float32_t* src2,
                     uint32_t src2Stride, float32_t* dst, uint32_t dstStride)
{
    mapImage(width, height, Plane{dst, dstStride}, plus, Plane{src1, src1Stride}, Plane{src2, src2Stride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkAdds16V(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const int16_t* src2,
                     uint32_t src2Stride, int16_t* dst, uint32_t dstStride)
{
    mapImage(width, height, Plane{dst, dstStride}, plusSaturating, Plane{src1, src1Stride}, Plane{src2, src2Stride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkAdds16_v2V(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const int16_t* src2,
                        uint32_t src2Stride, uint32_t policy, int16_t* dst, uint32_t dstStride)
{
    return mapByPolicy(width, height, policy, Plane{dst, dstStride}, plus, plusSaturating, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

rvkStatus rvkAddu16u8u16V(const uint16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                          const uint8_t* src2, uint32_t src2Stride, uint32_t policy, uint16_t* dst, uint32_t dstStride)
{
    const auto wrapped = [](auto a, auto b) RVK_INLINE_LAMBDA { return both(a, widen(b), plus); };
    const auto saturated = [](auto a, auto b) RVK_INLINE_LAMBDA { return both(a, widen(b), plusSaturating); };
    return mapByPolicy(width, height, policy, Plane{dst, dstStride}, wrapped, saturated, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

rvkStatus rvkAddu8V(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const uint8_t* src2,
                    uint32_t src2Stride, uint32_t policy, uint8_t* dst, uint32_t dstStride)
{
    return mapByPolicy(width, height, policy, Plane{dst, dstStride}, plus, plusSaturating, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

rvkStatus rvkAddu8u16V(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const uint8_t* src2,
                       uint32_t src2Stride, uint16_t* dst, uint32_t dstStride)
{
    mapImage(
        width, height, Plane{dst, dstStride}, [](auto a, auto b) RVK_INLINE_LAMBDA { return addWide(a, b); },
        Plane{src1, src1Stride}, Plane{src2, src2Stride});
    return RAVIK_SUCCESS;
}

void rvkAverages32V(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t* average)
{
    *average = averageOf(addAll(IntSum(), srcWidth, srcHeight, Plane{src, srcStride}), srcWidth, srcHeight);
}

void rvkAverageu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t* average)
{
    *average = averageOf(addAll(ByteSum(), srcWidth, srcHeight, Plane{src, srcStride}), srcWidth, srcHeight);
}

rvkStatus rvkElementMultiplyf32V(const float32_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                 const float32_t* src2, uint32_t src2Stride, float32_t* dst, uint32_t dstStride)
{
    mapImage(width, height, Plane{dst, dstStride}, times, Plane{src1, src1Stride}, Plane{src2, src2Stride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkElementMultiplys16V(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                 const int16_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale, int16_t* dst,
                                 uint32_t dstStride)
{
    if (!isShift(scale, 30))
        return rvkElementMultiplys16C(src1, width, height, src1Stride, src2, src2Stride, policy, scale, dst, dstStride);
    const auto products = [](auto a, auto b) RVK_INLINE_LAMBDA { return multiplyWideInLanes(a, b); };
    const auto scaledDown = [=](auto a, auto b) RVK_INLINE_LAMBDA { return shiftRightRounded(products(a, b), scale); };
    return scaleShortProducts(width, height, policy, scale, Plane{dst, dstStride}, products, scaledDown,
                              Plane{src1, src1Stride}, Plane{src2, src2Stride});
}

rvkStatus rvkElementMultiplyu8V(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                const uint8_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale, uint8_t* dst,
                                uint32_t dstStride)
{
    if (!isShift(scale, 16))
        return rvkElementMultiplyu8C(src1, width, height, src1Stride, src2, src2Stride, policy, scale, dst, dstStride);
    const auto products = [](auto a, auto b) RVK_INLINE_LAMBDA { return multiplyWideInLanes(a, b); };
    const auto toWrapped = [](auto p) RVK_INLINE_LAMBDA { return narrowInLanes(p); };
    const auto toSaturated = [](auto p) RVK_INLINE_LAMBDA { return toBytes(p); };
    return scaleByteProducts(width, height, policy, scale, Plane{dst, dstStride}, products, toWrapped, toSaturated,
                             Plane{src1, src1Stride}, Plane{src2, src2Stride});
}

rvkStatus rvkElementMultiplyu8s16V(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                   const uint8_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale,
                                   int16_t* dst, uint32_t dstStride)
{
    if (!isShift(scale, 16))
        return rvkElementMultiplyu8s16C(src1, width, height, src1Stride, src2, src2Stride, policy, scale, dst,
                                        dstStride);
    const auto products = [](auto a, auto b) RVK_INLINE_LAMBDA { return multiplyWide(a, b); };
    const auto convert = [](auto p) RVK_INLINE_LAMBDA { return asSigned(p); };
    return scaleByteProducts(width, height, policy, scale, Plane{dst, dstStride}, products, convert, convert,
                             Plane{src1, src1Stride}, Plane{src2, src2Stride});
}

rvkStatus rvkElementMultiplyu8u16V(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                   const uint8_t* src2, uint32_t src2Stride, uint16_t* dst, uint32_t dstStride)
{
    mapImage(
        width, height, Plane{dst, dstStride}, [](auto a, auto b) RVK_INLINE_LAMBDA { return multiplyWide(a, b); },
        Plane{src1, src1Stride}, Plane{src2, src2Stride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkMultiplyScalarf32V(const float32_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                float32_t scalar, float32_t* dst, uint32_t dstStride)
{
    const auto formula = [b = splat(scalar)](auto a) RVK_INLINE_LAMBDA { return times(a, b); };
    mapImage(width, height, Plane{dst, dstStride}, formula, Plane{src, srcStride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkMultiplyScalars16V(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int16_t scalar,
                                int32_t scale, int16_t* dst, uint32_t dstStride)
{
    if (!isShift(scale, 30))
        return rvkMultiplyScalars16C(src, width, height, srcStride, scalar, scale, dst, dstStride);
    const auto products = [=](auto v) RVK_INLINE_LAMBDA { return multiplyWideInLanes(v, splat(scalar)); };
    const auto scaledDown = [=](auto v) RVK_INLINE_LAMBDA { return multiplyAndShift(v, scalar, scale); };
    return scaleShortProducts(width, height, RAVIK_POLICY_SATURATE, scale, Plane{dst, dstStride}, products, scaledDown,
                              Plane{src, srcStride});
}

rvkStatus rvkSubtracts16V(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                          const int16_t* src2, uint32_t src2Stride, uint32_t policy, int16_t* dst, uint32_t dstStride)
{
    return mapByPolicy(width, height, policy, Plane{dst, dstStride}, minus, minusSaturating, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

rvkStatus rvkSubtractu8V(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const uint8_t* src2,
                         uint32_t src2Stride, uint32_t policy, uint8_t* dst, uint32_t dstStride)
{
    return mapByPolicy(width, height, policy, Plane{dst, dstStride}, minus, minusSaturating, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

rvkStatus rvkSubtractu8s16V(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                            const uint8_t* src2, uint32_t src2Stride, int16_t* dst, uint32_t dstStride)
{
    mapImage(
        width, height, Plane{dst, dstStride},
        [](auto a, auto b) RVK_INLINE_LAMBDA { return asSigned(subtractWide(a, b)); }, Plane{src1, src1Stride},
        Plane{src2, src2Stride});
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA
