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
RVK_INLINE Vecs<T, 2> both(Vecs<T, 2> a, Vecs<T, 2> b, F f)
{
    return {f(a[0], b[0]), f(a[1], b[1])};
}

RVK_INLINE Vecs<int16_t, 2> asSigned(Vecs<uint16_t, 2> v)
{
    return {bitCast<int16_t>(v[0]), bitCast<int16_t>(v[1])};
}

// ---- scales --------------------------------------------------------------------------------------------------------

// Whether the vector code has the shift for a scale. The others make no sense for the type; the reference does them.
RVK_INLINE bool isShift(int32_t scale, int32_t productBits)
{
    return -16 < scale && scale < productBits;
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

RVK_INLINE Vec<int32_t> shiftRightRounded(Vec<int32_t> v, int32_t count)
{
#if defined(__ARM_NEON)
    return vec(vrshlq_s32(reg(v), vdupq_n_s32(-count)));
#else
    return shiftRight(shiftRight(v, static_cast<unsigned>(count - 1)) + splat<int32_t>(1), 1);
#endif
}

// min(v << count, top).
RVK_INLINE Vec<uint16_t> shiftLeftClamped(Vec<uint16_t> v, int32_t count, uint16_t top)
{
    const Vec<uint16_t> largest = splat(static_cast<uint16_t>(top >> count));
    return select(greater(v, largest), splat(top), shiftLeft(v, static_cast<unsigned>(count)));
}

// dst = products * 2^-scale, where products gives the exact products of vectors from the sources.
template <class Products, class... S>
RVK_INLINE rvkStatus scaleProducts(uint32_t width, uint32_t height, uint32_t policy, int32_t scale, Plane<int16_t> dst,
                                   Products products, Plane<const S>... sources)
{
    if (scale >= 1) {
        const auto rounded = [=](auto... v) RVK_INLINE_LAMBDA {
            return both(products(v...), [=](auto p) RVK_INLINE_LAMBDA { return shiftRightRounded(p, scale); });
        };
        const auto wrapped = [=](auto... v) RVK_INLINE_LAMBDA { return narrowInLanes(rounded(v...)); };
        const auto saturated = [=](auto... v) RVK_INLINE_LAMBDA { return narrowSatInLanes<int16_t>(rounded(v...)); };
        return mapByPolicy(width, height, policy, dst, wrapped, saturated, sources...);
    }
    const unsigned count = static_cast<unsigned>(-scale);
    const auto wrapped = [=](auto... v) RVK_INLINE_LAMBDA { return shiftLeft(narrowInLanes(products(v...)), count); };
    // Clamping the products first changes nothing and leaves room for the shift.
    const auto saturated = [=](auto... v) RVK_INLINE_LAMBDA {
        return narrowSatInLanes<int16_t>(both(products(v...), [=](auto p) RVK_INLINE_LAMBDA {
            return shiftLeft(max(min(p, splat<int32_t>(INT16_MAX)), splat<int32_t>(INT16_MIN)), count);
        }));
    };
    return mapByPolicy(width, height, policy, dst, wrapped, saturated, sources...);
}

// ---- weights -------------------------------------------------------------------------------------------------------

// (a * weight1 + b * weight2 + 128) >> 8, clamped, for all 16-bit weights.
RVK_INLINE Vec<uint8_t> addWeighted(Vec<uint8_t> a, Vec<uint8_t> b, int32_t weight1, int32_t weight2)
{
#if defined(__ARM_NEON)
    const Vecs<int16_t, 2> wideA = asSigned(widen(a)), wideB = asSigned(widen(b));
    const int16x4_t factor1 = vdup_n_s16(static_cast<int16_t>(weight1));
    const int16x4_t factor2 = vdup_n_s16(static_cast<int16_t>(weight2));
    const auto quarter = [=](int16x4_t v, int16x4_t w) RVK_INLINE_LAMBDA {
        return vqrshrun_n_s32(vmlal_s16(vmull_s16(v, factor1), w, factor2), 8);
    };
    const auto half = [=](Vec<int16_t> v, Vec<int16_t> w) RVK_INLINE_LAMBDA {
        return vqmovn_u16(vcombine_u16(quarter(lowHalf(v), lowHalf(w)), quarter(highHalf(v), highHalf(w))));
    };
    return join(half(wideA[0], wideB[0]), half(wideA[1], wideB[1]));
#else
    const uint32_t weights = static_cast<uint16_t>(weight1) | static_cast<uint32_t>(weight2) << 16;
    const auto weighted = [=](Vec<uint16_t> pairs) RVK_INLINE_LAMBDA {
        const Vec<int32_t> sums = dotPairs(bitCast<int16_t>(pairs), bitCast<int16_t>(splat(weights)));
        return shiftRight(sums + splat<int32_t>(128), 8);
    };
    const Vecs<uint8_t, 2> pairs = zipInLanes(a, b);
    return narrowSatInLanes<uint8_t>(
        Vecs<int16_t, 2>{narrowSatInLanes<int16_t>(both(widenInLanes(pairs[0]), weighted)),
                         narrowSatInLanes<int16_t>(both(widenInLanes(pairs[1]), weighted))});
#endif
}

// Weights that blend: neither negative, no sum of products above 255.
RVK_INLINE bool areBlend(int32_t weight1, int32_t weight2)
{
    return 0 <= weight1 && weight1 <= 255 && 0 <= weight2 && weight2 <= 255 && weight1 + weight2 <= 256;
}

// addWeighted for such weights, in unsigned 16-bit integers.
RVK_INLINE Vec<uint8_t> blend(Vec<uint8_t> a, Vec<uint8_t> b, int32_t weight1, int32_t weight2)
{
#if defined(__ARM_NEON)
    const uint8x8_t factor1 = vdup_n_u8(static_cast<uint8_t>(weight1));
    const uint8x8_t factor2 = vdup_n_u8(static_cast<uint8_t>(weight2));
    const auto half = [=](uint8x8_t v, uint8x8_t w)
                          RVK_INLINE_LAMBDA { return vrshrn_n_u16(vmlal_u8(vmull_u8(v, factor1), w, factor2), 8); };
    return join(half(lowHalf(a), lowHalf(b)), half(highHalf(a), highHalf(b)));
#else
    // One instruction adds products of neighbours, unsigned by signed. So the pixels are moved to -128..127, and what
    // the sum lacks for that comes with the rounding term.
    const Vec<uint8_t> weights = bitCast<uint8_t>(splat(static_cast<uint16_t>(weight1 | weight2 << 8)));
    const Vec<uint16_t> correction = splat(static_cast<uint16_t>(128 * (weight1 + weight2) + 128));
    const Vecs<uint8_t, 2> pairs = zipInLanes(a ^ splat<uint8_t>(128), b ^ splat<uint8_t>(128));
    const auto blended = [=](Vec<uint8_t> p) RVK_INLINE_LAMBDA {
        const Vec<uint16_t> sums = vec<uint16_t>(RVK_MM(maddubs_epi16)(reg(weights), reg(p)));
        return bitCast<int16_t>(shiftRight(sums + correction, 8));
    };
    return narrowSatInLanes<uint8_t>(both(pairs, blended));
#endif
}

// ---- averages
// -----------------------------------------------------------------------------------------------------------

// The sum of all elements, modulo the width of Sum; add(sums, v) adds the elements of v to any lanes.
template <class Sum, class T, class Add>
RVK_INLINE Sum sumOf(size_t width, size_t height, Plane<const T> src, Add add)
{
    constexpr size_t lanes = Vec<T>::lanes;
    if (src.packed(width)) {
        width *= height;
        height = 1;
    }
    // The last vector of a row ends with it; its lanes that have been added already are cleared.
    const size_t rest = width % lanes;
    const auto isRest = greater(iota<Unsigned<T>>(), splat(static_cast<Unsigned<T>>(lanes - 1 - rest)));
    const Vec<T> restOnly = bitCast<T>(toVec(isRest));

    Vec<Sum> sums[4] = {};
    for (size_t y = 0; y < height; ++y) {
        const T* row = src.row(y);
        size_t x = 0;
        for (; x + 4 * lanes <= width; x += 4 * lanes)
            for (size_t i = 0; i < 4; ++i)
                sums[i] = add(sums[i], load(row + x + i * lanes));
        for (; x + lanes <= width; x += lanes)
            sums[0] = add(sums[0], load(row + x));
        if (x > 0)
            sums[1] = add(sums[1], load(row + width - lanes) & restOnly);
        else
            sums[1] = add(sums[1], loadPartial(row, width));
    }
    return reduceAdd((sums[0] + sums[1]) + (sums[2] + sums[3]));
}

} // namespace

rvkStatus rvkAddScalarf32V(const float32_t* src, uint32_t width, uint32_t height, uint32_t srcStride, float32_t scalar,
                           float32_t* dst, uint32_t dstStride)
{
    mapImageWithValues(width, height, Plane{dst, dstStride}, Plane{src, srcStride}, {scalar}, plus);
    return RAVIK_SUCCESS;
}

rvkStatus rvkAddScalars16V(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int16_t scalar,
                           int16_t* dst, uint32_t dstStride)
{
    mapImageWithValues(width, height, Plane{dst, dstStride}, Plane{src, srcStride}, {scalar}, plusSaturating);
    return RAVIK_SUCCESS;
}

rvkStatus rvkAddSquaredu8u16V(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                              const uint16_t* src2, uint32_t src2Stride, int32_t scale, uint16_t* dst,
                              uint32_t dstStride)
{
    if (!isShift(scale, 16))
        return rvkAddSquaredu8u16C(src1, width, height, src1Stride, src2, src2Stride, scale, dst, dstStride);
    const auto addSquares = [=](auto shift) RVK_INLINE_LAMBDA {
        const auto formula = [=](Vec<uint8_t> a, Vecs<uint16_t, 2> b)
                                 RVK_INLINE_LAMBDA { return both(b, both(multiplyWide(a, a), shift), plusSaturating); };
        mapImage(width, height, Plane{dst, dstStride}, formula, Plane{src1, src1Stride}, Plane{src2, src2Stride});
        return RAVIK_SUCCESS;
    };
    if (scale <= 0)
        return addSquares([=](auto square) RVK_INLINE_LAMBDA { return shiftLeftClamped(square, -scale, UINT16_MAX); });
    return addSquares([=](auto square) RVK_INLINE_LAMBDA {
        return shiftRight(square + splat(static_cast<uint16_t>(1 << (scale - 1))), static_cast<unsigned>(scale));
    });
}

rvkStatus rvkAddWeightedu8V(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                            const uint8_t* src2, uint32_t src2Stride, float32_t alpha, float32_t beta, uint8_t* dst,
                            uint32_t dstStride)
{
    const int32_t weight1 = fixedPointWeight(alpha), weight2 = fixedPointWeight(beta);
    if (areBlend(weight1, weight2))
        mapImage(
            width, height, Plane{dst, dstStride},
            [=](auto a, auto b) RVK_INLINE_LAMBDA { return blend(a, b, weight1, weight2); }, Plane{src1, src1Stride},
            Plane{src2, src2Stride});
    else
        mapImage(
            width, height, Plane{dst, dstStride},
            [=](auto a, auto b) RVK_INLINE_LAMBDA { return addWeighted(a, b, weight1, weight2); },
            Plane{src1, src1Stride}, Plane{src2, src2Stride});
    return RAVIK_SUCCESS;
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
        width, height, Plane{dst, dstStride},
        [](auto a, auto b) RVK_INLINE_LAMBDA { return both(widen(a), widen(b), plus); }, Plane{src1, src1Stride},
        Plane{src2, src2Stride});
    return RAVIK_SUCCESS;
}

void rvkAverages32V(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t* average)
{
    const int64_t sum = sumOf<int64_t>(srcWidth, srcHeight, Plane{src, srcStride},
                                       [](auto sums, auto v) RVK_INLINE_LAMBDA { return addTo(sums, v); });
    *average = averageOf(sum, srcWidth, srcHeight);
}

void rvkAverageu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t* average)
{
    const uint32_t sum = sumOf<uint32_t>(srcWidth, srcHeight, Plane{src, srcStride},
                                         [](auto sums, auto v) RVK_INLINE_LAMBDA { return addBytesTo(sums, v); });
    *average = averageOf(sum, srcWidth, srcHeight);
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
    if (!isShift(scale, 32))
        return rvkElementMultiplys16C(src1, width, height, src1Stride, src2, src2Stride, policy, scale, dst, dstStride);
    const auto products = [](auto a, auto b) RVK_INLINE_LAMBDA { return multiplyWideInLanes(a, b); };
    return scaleProducts(width, height, policy, scale, Plane{dst, dstStride}, products, Plane{src1, src1Stride},
                         Plane{src2, src2Stride});
}

rvkStatus rvkElementMultiplyu8V(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                const uint8_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale, uint8_t* dst,
                                uint32_t dstStride)
{
    if (!isShift(scale, 16))
        return rvkElementMultiplyu8C(src1, width, height, src1Stride, src2, src2Stride, policy, scale, dst, dstStride);
    const auto multiply = [=](auto shiftToWrap, auto shiftToSaturate) RVK_INLINE_LAMBDA {
        const auto wrapped = [=](Vec<uint8_t> a, Vec<uint8_t> b) RVK_INLINE_LAMBDA {
            return narrowInLanes(both(multiplyWideInLanes(a, b), shiftToWrap));
        };
        // Below 2^15 after the shift, so that the signed conversion, which is faster, does.
        const auto saturated = [=](Vec<uint8_t> a, Vec<uint8_t> b) RVK_INLINE_LAMBDA {
            return narrowSatInLanes<uint8_t>(asSigned(both(multiplyWideInLanes(a, b), shiftToSaturate)));
        };
        return mapByPolicy(width, height, policy, Plane{dst, dstStride}, wrapped, saturated, Plane{src1, src1Stride},
                           Plane{src2, src2Stride});
    };
    if (scale <= 0)
        return multiply([=](auto p) RVK_INLINE_LAMBDA { return shiftLeft(p, static_cast<unsigned>(-scale)); },
                        [=](auto p) RVK_INLINE_LAMBDA { return shiftLeftClamped(p, -scale, UINT8_MAX); });
    const auto rounded = [=](auto p) RVK_INLINE_LAMBDA { return shiftRightRounded(p, scale); };
    return multiply(rounded, rounded);
}

rvkStatus rvkElementMultiplyu8s16V(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                   const uint8_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale,
                                   int16_t* dst, uint32_t dstStride)
{
    if (!isShift(scale, 16))
        return rvkElementMultiplyu8s16C(src1, width, height, src1Stride, src2, src2Stride, policy, scale, dst,
                                        dstStride);
    const auto multiply = [=](auto shiftToWrap, auto shiftToSaturate) RVK_INLINE_LAMBDA {
        const auto wrapped = [=](Vec<uint8_t> a, Vec<uint8_t> b)
                                 RVK_INLINE_LAMBDA { return asSigned(both(multiplyWide(a, b), shiftToWrap)); };
        const auto saturated = [=](Vec<uint8_t> a, Vec<uint8_t> b)
                                   RVK_INLINE_LAMBDA { return asSigned(both(multiplyWide(a, b), shiftToSaturate)); };
        return mapByPolicy(width, height, policy, Plane{dst, dstStride}, wrapped, saturated, Plane{src1, src1Stride},
                           Plane{src2, src2Stride});
    };
    if (scale <= 0)
        return multiply([=](auto p) RVK_INLINE_LAMBDA { return shiftLeft(p, static_cast<unsigned>(-scale)); },
                        [=](auto p) RVK_INLINE_LAMBDA { return shiftLeftClamped(p, -scale, INT16_MAX); });
    const auto rounded = [=](auto p) RVK_INLINE_LAMBDA { return shiftRightRounded(p, scale); };
    return multiply(rounded, rounded);
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
    mapImageWithValues(width, height, Plane{dst, dstStride}, Plane{src, srcStride}, {scalar}, times);
    return RAVIK_SUCCESS;
}

rvkStatus rvkMultiplyScalars16V(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int16_t scalar,
                                int32_t scale, int16_t* dst, uint32_t dstStride)
{
    if (!isShift(scale, 32))
        return rvkMultiplyScalars16C(src, width, height, srcStride, scalar, scale, dst, dstStride);
    const auto products = [=](auto v) RVK_INLINE_LAMBDA { return multiplyWideInLanes(v, splat(scalar)); };
    return scaleProducts(width, height, RAVIK_POLICY_SATURATE, scale, Plane{dst, dstStride}, products,
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
        [](auto a, auto b) RVK_INLINE_LAMBDA { return asSigned(both(widen(a), widen(b), minus)); },
        Plane{src1, src1Stride}, Plane{src2, src2Stride});
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA
