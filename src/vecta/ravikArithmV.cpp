// Vector implementations of the element-wise arithmetic.
#include "cpu/arithm.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include <ravik/arithm.h>

namespace rvk {
decltype(::rvkAddSquaredu8u16) rvkAddSquaredu8u16C;
decltype(::rvkAddWeightedu8) rvkAddWeightedu8C;
decltype(::rvkElementMultiplys16) rvkElementMultiplys16C;
decltype(::rvkElementMultiplyu8) rvkElementMultiplyu8C;
decltype(::rvkElementMultiplyu8s16) rvkElementMultiplyu8s16C;
decltype(::rvkMultiplyScalars16) rvkMultiplyScalars16C;
} // namespace rvk

namespace rvk::vecta::RVK_ISA {
namespace {

constexpr auto plus = [](auto a, auto b) RVK_INLINE_LAMBDA { return a + b; };
constexpr auto minus = [](auto a, auto b) RVK_INLINE_LAMBDA { return a - b; };
constexpr auto times = [](auto a, auto b) RVK_INLINE_LAMBDA { return a * b; };
constexpr auto plusSaturating = [](auto a, auto b) RVK_INLINE_LAMBDA { return addSat(a, b); };
constexpr auto minusSaturating = [](auto a, auto b) RVK_INLINE_LAMBDA { return subSat(a, b); };

constexpr auto saturating(decltype(plus))
{
    return plusSaturating;
}
constexpr auto saturating(decltype(minus))
{
    return minusSaturating;
}

RVK_INLINE bool isPolicy(uint32_t policy)
{
    return policy == RAVIK_POLICY_WRAP || policy == RAVIK_POLICY_SATURATE;
}

// mapImage with the one of two formulas that the policy asks for.
template <class D, class Wrapped, class Saturated, class... S>
RVK_INLINE rvkStatus mapEither(uint32_t width, uint32_t height, uint32_t policy, Plane<D> dst, Wrapped wrapped,
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

template <class D, class Formula, class S>
RVK_INLINE rvkStatus mapByPolicy(uint32_t width, uint32_t height, uint32_t policy, Plane<D> dst, Formula formula,
                                 Plane<const S> src1, Plane<const S> src2)
{
    return mapEither(width, height, policy, dst, formula, saturating(formula), src1, src2);
}

// ---- scales --------------------------------------------------------------------------------------------------------

// Whether the vector code has the shift for a scale: below 16 to the left, below `limit` to the right. What lies beyond
// makes no sense for the type; the reference does it.
RVK_INLINE bool isShift(int32_t scale, int32_t limit)
{
    return -16 < scale && scale < limit;
}

// Clamped to int16_t; those that have a sign already fit it.
RVK_INLINE Vecs<int16_t, 2> clampedToSigned(Vecs<int16_t, 2> v)
{
    return v;
}

RVK_INLINE Vecs<int16_t, 2> clampedToSigned(Vecs<uint16_t, 2> v)
{
    return both(v, [](auto half) RVK_INLINE_LAMBDA { return bitCast<int16_t>(min(half, splat<uint16_t>(INT16_MAX))); });
}

// dst = a product of bytes * 2^-scale. The products come as halves of 16 bits; toWrapped puts their low bits together
// again, toSaturated their clamped values.
template <class D, class Products, class Wrap, class Saturate>
RVK_INLINE rvkStatus scaleByteProducts(uint32_t width, uint32_t height, uint32_t policy, int32_t scale, Plane<D> dst,
                                       Products products, Wrap toWrapped, Saturate toSaturated,
                                       Plane<const uint8_t> src1, Plane<const uint8_t> src2)
{
    const auto shifted = [=](auto shift, auto convert) RVK_INLINE_LAMBDA {
        return [=](auto a, auto b) RVK_INLINE_LAMBDA { return convert(both(products(a, b), shift)); };
    };
    const unsigned count = static_cast<unsigned>(scale < 0 ? -scale : scale);
    if (scale >= 1) { // what is left fits 15 bits: to clamp it, it may have a sign
        const auto right = [=](auto p) RVK_INLINE_LAMBDA { return shiftRightRounded(p, count); };
        const auto clamped = [=](auto p) RVK_INLINE_LAMBDA { return toSaturated(bitCast<int16_t>(p)); };
        return mapEither(width, height, policy, dst, shifted(right, toWrapped), shifted(right, clamped), src1, src2);
    }
    if (scale == 0 && policy == RAVIK_POLICY_SATURATE) { // often, and without the shift for less
        mapImage(
            width, height, dst, [=](auto a, auto b) RVK_INLINE_LAMBDA { return toSaturated(products(a, b)); }, src1,
            src2);
        return RAVIK_SUCCESS;
    }
    const auto left = [=](auto p) RVK_INLINE_LAMBDA { return shiftLeft(p, count); };
    const auto leftSaturated = [=](auto p) RVK_INLINE_LAMBDA { return shiftLeftSat(p, count); };
    return mapEither(width, height, policy, dst, shifted(left, toWrapped), shifted(leftSaturated, toSaturated), src1,
                     src2);
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
        return mapEither(width, height, policy, dst, wrapped, saturated, sources...);
    }
    const unsigned count = static_cast<unsigned>(-scale);
    const auto clamped = [=](auto... v) RVK_INLINE_LAMBDA { return narrowSatInLanes<int16_t>(products(v...)); };
    if (scale == 0 && policy == RAVIK_POLICY_SATURATE) {
        mapImage(width, height, dst, clamped, sources...);
        return RAVIK_SUCCESS;
    }
    const auto wrapped = [=](auto... v) RVK_INLINE_LAMBDA { return shiftLeft(narrowInLanes(products(v...)), count); };
    const auto saturated = [=](auto... v) RVK_INLINE_LAMBDA { return shiftLeftSat(clamped(v...), count); };
    return mapEither(width, height, policy, dst, wrapped, saturated, sources...);
}

// ---- weights -------------------------------------------------------------------------------------------------------

RVK_INLINE bool areOfMean(int32_t weight1, int32_t weight2)
{
    return 0 <= weight1 && weight1 <= 255 && 0 <= weight2 && weight2 <= 255 && weight1 + weight2 <= 256;
}

// ---- averages ------------------------------------------------------------------------------------------------------

// The sum of all elements of an image. The last vector of a row ends with it; there, elements that were added before
// are cleared.
template <class T>
RVK_INLINE auto totalOf(size_t width, size_t height, Plane<const T> src)
{
    Total<T> sum;
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
    return sum.value();
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
        return addSquares([=](auto square)
                              RVK_INLINE_LAMBDA { return shiftLeftSat(square, static_cast<unsigned>(-scale)); });
    return addSquares([=](auto square) RVK_INLINE_LAMBDA {
        return shiftRight(square + splat(static_cast<uint16_t>(1 << (scale - 1))), static_cast<unsigned>(scale));
    });
}

rvkStatus rvkAddWeightedu8V(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                            const uint8_t* src2, uint32_t src2Stride, float32_t alpha, float32_t beta, uint8_t* dst,
                            uint32_t dstStride)
{
    const int32_t weight1 = fixedPointWeight(alpha), weight2 = fixedPointWeight(beta);
    const auto averaged = [](auto a, auto b) RVK_INLINE_LAMBDA { return average(a, b); };
    const auto blended = [=](auto a, auto b) RVK_INLINE_LAMBDA { return weightedMean(a, b, weight1, weight2); };
    const auto weighted = [=](auto a, auto b) RVK_INLINE_LAMBDA { return weightedSum(a, b, weight1, weight2); };
    const auto apply = [=](auto formula) RVK_INLINE_LAMBDA {
        mapImage(width, height, Plane{dst, dstStride}, formula, Plane{src1, src1Stride}, Plane{src2, src2Stride});
        return RAVIK_SUCCESS;
    };
    if (weight1 == 128 && weight2 == 128)
        return apply(averaged);
    if (areOfMean(weight1, weight2))
        return apply(blended);
    if (isWeightOfSums(weight1) && isWeightOfSums(weight2))
        return apply(weighted);
    return rvkAddWeightedu8C(src1, width, height, src1Stride, src2, src2Stride, alpha, beta, dst, dstStride);
}

rvkStatus rvkAddf32V(const float32_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const float32_t* src2,
                     uint32_t src2Stride, float32_t* dst, uint32_t dstStride)
{
    mapImage(width, height, Plane{dst, dstStride}, plus, Plane{src1, src1Stride}, Plane{src2, src2Stride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkAddu16u8u16V(const uint16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                          const uint8_t* src2, uint32_t src2Stride, uint32_t policy, uint16_t* dst, uint32_t dstStride)
{
    const auto wrapped = [](auto a, auto b) RVK_INLINE_LAMBDA { return both(a, widen(b), plus); };
    const auto saturated = [](auto a, auto b) RVK_INLINE_LAMBDA { return both(a, widen(b), plusSaturating); };
    return mapEither(width, height, policy, Plane{dst, dstStride}, wrapped, saturated, Plane{src1, src1Stride},
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
    const auto scaledDown = [=](auto a, auto b) RVK_INLINE_LAMBDA {
        return both(products(a, b),
                    [=](auto p) RVK_INLINE_LAMBDA { return shiftRightRounded(p, static_cast<unsigned>(scale)); });
    };
    return scaleShortProducts(width, height, policy, scale, Plane{dst, dstStride}, products, scaledDown,
                              Plane{src1, src1Stride}, Plane{src2, src2Stride});
}

rvkStatus rvkElementMultiplyu8V(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                const uint8_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale, uint8_t* dst,
                                uint32_t dstStride)
{
    if (!isShift(scale, 16))
        return rvkElementMultiplyu8C(src1, width, height, src1Stride, src2, src2Stride, policy, scale, dst, dstStride);
    if (scale == 8 && isPolicy(policy)) { // of numbers from 0 to 1; the products fit bytes
        mapImage(
            width, height, Plane{dst, dstStride},
            [](auto a, auto b) RVK_INLINE_LAMBDA { return multiplyRounded(a, b); }, Plane{src1, src1Stride},
            Plane{src2, src2Stride});
        return RAVIK_SUCCESS;
    }
    const auto products = [](auto a, auto b) RVK_INLINE_LAMBDA { return multiplyWideInLanes(a, b); };
    const auto toWrapped = [](auto p) RVK_INLINE_LAMBDA { return narrowInLanes(p); };
    const auto toSaturated = [](auto p) RVK_INLINE_LAMBDA { return narrowSatInLanes<uint8_t>(p); };
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
    const auto toWrapped = [](auto p) RVK_INLINE_LAMBDA { return bitCast<int16_t>(p); };
    const auto toSaturated = [](auto p) RVK_INLINE_LAMBDA { return clampedToSigned(p); };
    return scaleByteProducts(width, height, policy, scale, Plane{dst, dstStride}, products, toWrapped, toSaturated,
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
    const auto scaledDown = [=](auto v) RVK_INLINE_LAMBDA {
        return multiplyAndShiftInLanes(v, scalar, static_cast<unsigned>(scale));
    };
    return scaleShortProducts(width, height, RAVIK_POLICY_SATURATE, scale, Plane{dst, dstStride}, products, scaledDown,
                              Plane{src, srcStride});
}

rvkStatus rvkSubtractu8s16V(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                            const uint8_t* src2, uint32_t src2Stride, int16_t* dst, uint32_t dstStride)
{
    mapImage(
        width, height, Plane{dst, dstStride}, [](auto a, auto b) RVK_INLINE_LAMBDA { return subtractWide(a, b); },
        Plane{src1, src1Stride}, Plane{src2, src2Stride});
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikArithmForms.h"
