// The x86 back end: SSE4.2, AVX2 and AVX-512 (F, BW, VL, DQ, VBMI, VBMI2, BITALG, GFNI). The three have the same instructions
// under names that differ by prefix, so RVK_MM(name) pastes the prefix of the instruction set that is compiled; AVX-512
// differs where comparisons give mask registers and where bytes move freely across the register.
#pragma once

// Operations stand in columns here, a line each.
// clang-format off

#include "vecta/simd/core.h"

#if defined(__AVX512BW__)
#define RVK_AVX512 1
#define RVK_MM(name) _mm512_##name
#elif defined(__AVX2__)
#define RVK_AVX512 0
#define RVK_MM(name) _mm256_##name
#else
#define RVK_AVX512 0
#define RVK_MM(name) _mm_##name
#endif

namespace rvk::vecta::RVK_ISA {
namespace {

#if RVK_AVX512
using Register = __m512i;
using FloatRegister = __m512;
using HalfRegister = __m256i;
#elif defined(__AVX2__)
using Register = __m256i;
using FloatRegister = __m256;
using HalfRegister = __m128i;
#else
using Register = __m128i;
using FloatRegister = __m128;
using HalfRegister = __m128i; // its low half
#endif

template <class T>
RVK_INLINE Register reg(Vec<T> v)
{
    return (Register)v.raw;
}

RVK_INLINE FloatRegister floatReg(Vec<float> v)
{
    return (FloatRegister)v.raw;
}

template <class T>
RVK_INLINE Vec<T> vec(Register r)
{
    return {(typename Vec<T>::Raw)r};
}

RVK_INLINE Vec<float> vec(FloatRegister r)
{
    return {(Vec<float>::Raw)r};
}

#if RVK_AVX512
RVK_INLINE HalfRegister lowHalf(Register r) { return _mm512_castsi512_si256(r); }
RVK_INLINE HalfRegister highHalf(Register r) { return _mm512_extracti64x4_epi64(r, 1); }
#elif defined(__AVX2__)
RVK_INLINE HalfRegister lowHalf(Register r) { return _mm256_castsi256_si128(r); }
RVK_INLINE HalfRegister highHalf(Register r) { return _mm256_extracti128_si256(r, 1); }
#else
RVK_INLINE HalfRegister lowHalf(Register r) { return r; }
RVK_INLINE HalfRegister highHalf(Register r) { return _mm_unpackhi_epi64(r, r); }
#endif

// ---- partial memory -------------------------------------------------------------------------------------------------

#if RVK_AVX512

RVK_INLINE uint64_t firstBits(size_t n)
{
    return n < 64 ? (uint64_t(1) << n) - 1 : ~uint64_t(0);
}

// Loads and stores of the lanes with a bit; the memory of the others may be missing.
template <class T>
RVK_INLINE Vec<T> loadLanes(const T* p, uint64_t lanes)
{
    if constexpr (sizeof(T) == 1)
        return vec<T>(_mm512_maskz_loadu_epi8(lanes, p));
    else if constexpr (sizeof(T) == 2)
        return vec<T>(_mm512_maskz_loadu_epi16(static_cast<__mmask32>(lanes), p));
    else if constexpr (sizeof(T) == 4)
        return vec<T>(_mm512_maskz_loadu_epi32(static_cast<__mmask16>(lanes), p));
    else
        return vec<T>(_mm512_maskz_loadu_epi64(static_cast<__mmask8>(lanes), p));
}

template <class T>
RVK_INLINE void storeLanes(T* p, Vec<T> v, uint64_t lanes)
{
    if constexpr (sizeof(T) == 1)
        _mm512_mask_storeu_epi8(p, lanes, reg(v));
    else if constexpr (sizeof(T) == 2)
        _mm512_mask_storeu_epi16(p, static_cast<__mmask32>(lanes), reg(v));
    else if constexpr (sizeof(T) == 4)
        _mm512_mask_storeu_epi32(p, static_cast<__mmask16>(lanes), reg(v));
    else
        _mm512_mask_storeu_epi64(p, static_cast<__mmask8>(lanes), reg(v));
}

template <class T>
RVK_INLINE Vec<T> loadPartial(const T* p, size_t n)
{
    return loadLanes(p, firstBits(n));
}

template <class T>
RVK_INLINE void storePartial(T* p, Vec<T> v, size_t n)
{
    storeLanes(p, v, firstBits(n));
}

// Lanes of vector i among the first n.
template <class T>
RVK_INLINE uint64_t lanesOfVector(size_t i, size_t n)
{
    const size_t before = i * Vec<T>::lanes;
    return n > before ? firstBits(n - before) : 0;
}

template <class T, size_t... i>
RVK_INLINE Vecs<T, sizeof...(i)> loadVecsPartialAt(const T* p, size_t n, Indices<i...>)
{
    return {{loadLanes(p + i * Vec<T>::lanes, lanesOfVector<T>(i, n))...}};
}

template <size_t count, class T>
RVK_INLINE Vecs<T, count> loadVecsPartial(const T* p, size_t n)
{
    return loadVecsPartialAt(p, n, typename CountTo<count>::Type{});
}

template <class T, size_t count>
RVK_INLINE void storePartial(T* p, const Vecs<T, count>& v, size_t n)
{
    unrolled<count>([&](auto i) RVK_INLINE_LAMBDA { storeLanes(p + i * Vec<T>::lanes, v[i], lanesOfVector<T>(i, n)); });
}

#endif

// ---- element-wise operations ----------------------------------------------------------------------------------------

RVK_INLINE auto min(Vec<uint8_t> a, Vec<uint8_t> b) { return vec<uint8_t>(RVK_MM(min_epu8)(reg(a), reg(b))); }
RVK_INLINE auto min(Vec<int8_t> a, Vec<int8_t> b) { return vec<int8_t>(RVK_MM(min_epi8)(reg(a), reg(b))); }
RVK_INLINE auto min(Vec<uint16_t> a, Vec<uint16_t> b) { return vec<uint16_t>(RVK_MM(min_epu16)(reg(a), reg(b))); }
RVK_INLINE auto min(Vec<int16_t> a, Vec<int16_t> b) { return vec<int16_t>(RVK_MM(min_epi16)(reg(a), reg(b))); }
RVK_INLINE auto min(Vec<uint32_t> a, Vec<uint32_t> b) { return vec<uint32_t>(RVK_MM(min_epu32)(reg(a), reg(b))); }
RVK_INLINE auto min(Vec<int32_t> a, Vec<int32_t> b) { return vec<int32_t>(RVK_MM(min_epi32)(reg(a), reg(b))); }
RVK_INLINE auto max(Vec<uint8_t> a, Vec<uint8_t> b) { return vec<uint8_t>(RVK_MM(max_epu8)(reg(a), reg(b))); }
RVK_INLINE auto max(Vec<int8_t> a, Vec<int8_t> b) { return vec<int8_t>(RVK_MM(max_epi8)(reg(a), reg(b))); }
RVK_INLINE auto max(Vec<uint16_t> a, Vec<uint16_t> b) { return vec<uint16_t>(RVK_MM(max_epu16)(reg(a), reg(b))); }
RVK_INLINE auto max(Vec<int16_t> a, Vec<int16_t> b) { return vec<int16_t>(RVK_MM(max_epi16)(reg(a), reg(b))); }
RVK_INLINE auto max(Vec<uint32_t> a, Vec<uint32_t> b) { return vec<uint32_t>(RVK_MM(max_epu32)(reg(a), reg(b))); }
RVK_INLINE auto max(Vec<int32_t> a, Vec<int32_t> b) { return vec<int32_t>(RVK_MM(max_epi32)(reg(a), reg(b))); }

// b < a ? b : a, and a < b ? b : a: the first operand when the two are equal or one is not a number.
RVK_INLINE Vec<float> min(Vec<float> a, Vec<float> b) { return vec(RVK_MM(min_ps)(floatReg(b), floatReg(a))); }
RVK_INLINE Vec<float> max(Vec<float> a, Vec<float> b) { return vec(RVK_MM(max_ps)(floatReg(b), floatReg(a))); }

RVK_INLINE auto addSat(Vec<uint8_t> a, Vec<uint8_t> b) { return vec<uint8_t>(RVK_MM(adds_epu8)(reg(a), reg(b))); }
RVK_INLINE auto addSat(Vec<int8_t> a, Vec<int8_t> b) { return vec<int8_t>(RVK_MM(adds_epi8)(reg(a), reg(b))); }
RVK_INLINE auto addSat(Vec<uint16_t> a, Vec<uint16_t> b) { return vec<uint16_t>(RVK_MM(adds_epu16)(reg(a), reg(b))); }
RVK_INLINE auto addSat(Vec<int16_t> a, Vec<int16_t> b) { return vec<int16_t>(RVK_MM(adds_epi16)(reg(a), reg(b))); }
RVK_INLINE auto subSat(Vec<uint8_t> a, Vec<uint8_t> b) { return vec<uint8_t>(RVK_MM(subs_epu8)(reg(a), reg(b))); }
RVK_INLINE auto subSat(Vec<int8_t> a, Vec<int8_t> b) { return vec<int8_t>(RVK_MM(subs_epi8)(reg(a), reg(b))); }
RVK_INLINE auto subSat(Vec<uint16_t> a, Vec<uint16_t> b) { return vec<uint16_t>(RVK_MM(subs_epu16)(reg(a), reg(b))); }
RVK_INLINE auto subSat(Vec<int16_t> a, Vec<int16_t> b) { return vec<int16_t>(RVK_MM(subs_epi16)(reg(a), reg(b))); }

RVK_INLINE auto average(Vec<uint8_t> a, Vec<uint8_t> b) { return vec<uint8_t>(RVK_MM(avg_epu8)(reg(a), reg(b))); }
RVK_INLINE auto average(Vec<uint16_t> a, Vec<uint16_t> b) { return vec<uint16_t>(RVK_MM(avg_epu16)(reg(a), reg(b))); }

// (a - b) >> 1: the average of a and 255 - b is 128 more.
RVK_INLINE Vec<int8_t> halfDifference(Vec<uint8_t> a, Vec<uint8_t> b)
{
    return bitCast<int8_t>(average(a, ~b) ^ splat<uint8_t>(128));
}

// (a + b) >> 1, where the sum may have a bit more.
RVK_INLINE Vec<int16_t> halfSum(Vec<int16_t> a, Vec<int16_t> b) { return (a & b) + shiftRight(a ^ b, 1); }

RVK_INLINE Vec<int16_t> multiplyHigh(Vec<int16_t> a, Vec<int16_t> b)
{
    return vec<int16_t>(RVK_MM(mulhi_epi16)(reg(a), reg(b)));
}
RVK_INLINE Vec<uint16_t> multiplyHigh(Vec<uint16_t> a, Vec<uint16_t> b)
{
    return vec<uint16_t>(RVK_MM(mulhi_epu16)(reg(a), reg(b)));
}

RVK_INLINE Vec<int8_t> abs(Vec<int8_t> a) { return vec<int8_t>(RVK_MM(abs_epi8)(reg(a))); }
RVK_INLINE Vec<int16_t> abs(Vec<int16_t> a) { return vec<int16_t>(RVK_MM(abs_epi16)(reg(a))); }
RVK_INLINE Vec<int32_t> abs(Vec<int32_t> a) { return vec<int32_t>(RVK_MM(abs_epi32)(reg(a))); }

RVK_INLINE Vec<uint8_t> absDiff(Vec<uint8_t> a, Vec<uint8_t> b) { return subSat(a, b) | subSat(b, a); }
RVK_INLINE Vec<uint16_t> absDiff(Vec<uint16_t> a, Vec<uint16_t> b) { return subSat(a, b) | subSat(b, a); }

// Products of neighbours, added: lane i is a[2i] * b[2i] + a[2i + 1] * b[2i + 1]; four times -32768 wraps.
RVK_INLINE Vec<int32_t> dotPairs(Vec<int16_t> a, Vec<int16_t> b)
{
    return vec<int32_t>(RVK_MM(madd_epi16)(reg(a), reg(b)));
}

// Sums of the lower and the upper 16 bits of each element, below 2^14, by weights of at most 2^16 without their sign:
// the halves twice by one weight of 16 bits, and once by another one.
struct HalfWeights {
    Vec<int16_t> twice, once;

    RVK_INLINE HalfWeights(int32_t low, int32_t high)
        : twice(bitCast<int16_t>(splat(pair(low / 3, high / 3)))),
          once(bitCast<int16_t>(splat(pair(low - low / 3 * 2, high - high / 3 * 2))))
    {
    }
    static RVK_INLINE uint32_t pair(int32_t low, int32_t high)
    {
        return (static_cast<uint32_t>(low) & 0xffff) | static_cast<uint32_t>(high) << 16;
    }
};
RVK_INLINE Vec<int32_t> addWeightedHalves(Vec<int32_t> acc, Vec<uint32_t> v, const HalfWeights& weights)
{
#if RVK_AVX512
    const __m512i once = _mm512_dpwssd_epi32(reg(acc), reg(v), reg(weights.once));
    return vec<int32_t>(_mm512_dpwssd_epi32(once, reg(v + v), reg(weights.twice)));
#else
    return acc + dotPairs(bitCast<int16_t>(v), weights.once) + dotPairs(bitCast<int16_t>(v + v), weights.twice);
#endif
}

// |a - b| where a - b fits 16 bits.
RVK_INLINE Vec<int16_t> distance(Vec<int16_t> a, Vec<int16_t> b) { return abs(a - b); }

RVK_INLINE Vec<float> divide(Vec<float> a, Vec<float> b) { return {a.raw / b.raw}; }
RVK_INLINE Vec<float> squareRoot(Vec<float> a) { return vec(RVK_MM(sqrt_ps)(floatReg(a))); }

// a * b + c, rounded once or twice.
RVK_INLINE Vec<float> multiplyAdd(Vec<float> a, Vec<float> b, Vec<float> c)
{
#if RVK_AVX512
    return vec(_mm512_fmadd_ps(floatReg(a), floatReg(b), floatReg(c)));
#else
    return a * b + c;
#endif
}

// 1 / v of a positive number with a relative error below 2^-7, and its root with one below 2^-19: each instruction set
// gives bits of its own.
RVK_INLINE Vec<float> guessReciprocal(Vec<float> v)
{
#if RVK_AVX512
    return vec(_mm512_rcp14_ps(floatReg(v)));
#else
    return vec(RVK_MM(rcp_ps)(floatReg(v)));
#endif
}
// The same within 2^-20, by one of Newton's steps.
RVK_INLINE Vec<float> closeReciprocal(Vec<float> v)
{
    const Vec<float> r = guessReciprocal(v);
#if RVK_AVX512
    return r * vec(_mm512_fnmadd_ps(floatReg(v), floatReg(r), floatReg(splat(2.0f))));
#else
    return r * (splat(2.0f) - v * r);
#endif
}
RVK_INLINE Vec<float> guessSquareRoot(Vec<float> v)
{
#if RVK_AVX512 // whose roots take four times as long as those of 128 bits
    const Vec<float> r = vec(_mm512_rsqrt14_ps(floatReg(v))), root = v * r;
    return root * vec(_mm512_fnmadd_ps(floatReg(root * splat(0.5f)), floatReg(r), floatReg(splat(1.5f))));
#else
    return squareRoot(v);
#endif
}

RVK_INLINE Vec<float> toFloat(Vec<int32_t> v) { return vec(RVK_MM(cvtepi32_ps)(reg(v))); }
RVK_INLINE Vec<float> toFloat(Vec<uint32_t> v) { return toFloat(bitCast<int32_t>(v)); }
RVK_INLINE Vec<int32_t> truncateToInt(Vec<float> v) { return vec<int32_t>(RVK_MM(cvttps_epi32)(floatReg(v))); }
RVK_INLINE Vec<int32_t> roundToInt(Vec<float> v) { return vec<int32_t>(RVK_MM(cvtps_epi32)(floatReg(v))); }

template <unsigned bits>
RVK_INLINE Vec<int32_t> toFixed(Vec<float> v)
{
    return truncateToInt(v * splat(static_cast<float>(1u << bits)));
}

// The upper n bits of a, then the upper bits of b.
template <unsigned n>
RVK_INLINE Vec<uint8_t> joinBits(Vec<uint8_t> a, Vec<uint8_t> b)
{
    constexpr uint8_t lower = 255 >> n;
    const Vec<uint8_t> shifted = bitCast<uint8_t>(shiftRight(bitCast<uint16_t>(b), n));
    return (a & splat<uint8_t>(static_cast<uint8_t>(~lower))) | (shifted & splat<uint8_t>(lower));
}

// ---- comparison and selection ---------------------------------------------------------------------------------------

#if RVK_AVX512

template <size_t lanes> struct MaskBits;
template <> struct MaskBits<64> { using Type = __mmask64; };
template <> struct MaskBits<32> { using Type = __mmask32; };
template <> struct MaskBits<16> { using Type = __mmask16; };
template <> struct MaskBits<8> { using Type = __mmask8; };
template <class T> using BitsOf = typename MaskBits<Vec<T>::lanes>::Type;

// The result of a comparison: a truth value per lane. Masks combine with & | ^ ~.
template <class T>
struct Mask {
    using Bits = BitsOf<T>;
    Bits bits;
};

template <class T> RVK_INLINE Mask<T> operator&(Mask<T> a, Mask<T> b) { return {BitsOf<T>(a.bits & b.bits)}; }
template <class T> RVK_INLINE Mask<T> operator|(Mask<T> a, Mask<T> b) { return {BitsOf<T>(a.bits | b.bits)}; }
template <class T> RVK_INLINE Mask<T> operator^(Mask<T> a, Mask<T> b) { return {BitsOf<T>(a.bits ^ b.bits)}; }
template <class T> RVK_INLINE Mask<T> operator~(Mask<T> a) { return {BitsOf<T>(~a.bits)}; }

RVK_INLINE Mask<uint8_t> equal(Vec<uint8_t> a, Vec<uint8_t> b) { return {_mm512_cmpeq_epu8_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<int8_t> equal(Vec<int8_t> a, Vec<int8_t> b) { return {_mm512_cmpeq_epi8_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<uint16_t> equal(Vec<uint16_t> a, Vec<uint16_t> b) { return {_mm512_cmpeq_epu16_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<int16_t> equal(Vec<int16_t> a, Vec<int16_t> b) { return {_mm512_cmpeq_epi16_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<uint32_t> equal(Vec<uint32_t> a, Vec<uint32_t> b) { return {_mm512_cmpeq_epu32_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<int32_t> equal(Vec<int32_t> a, Vec<int32_t> b) { return {_mm512_cmpeq_epi32_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<uint64_t> equal(Vec<uint64_t> a, Vec<uint64_t> b) { return {_mm512_cmpeq_epu64_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<int64_t> equal(Vec<int64_t> a, Vec<int64_t> b) { return {_mm512_cmpeq_epi64_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<float> equal(Vec<float> a, Vec<float> b)
{
    return {_mm512_cmp_ps_mask(floatReg(a), floatReg(b), _CMP_EQ_OQ)};
}

RVK_INLINE Mask<uint8_t> greater(Vec<uint8_t> a, Vec<uint8_t> b) { return {_mm512_cmpgt_epu8_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<int8_t> greater(Vec<int8_t> a, Vec<int8_t> b) { return {_mm512_cmpgt_epi8_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<uint16_t> greater(Vec<uint16_t> a, Vec<uint16_t> b)
{
    return {_mm512_cmpgt_epu16_mask(reg(a), reg(b))};
}
RVK_INLINE Mask<int16_t> greater(Vec<int16_t> a, Vec<int16_t> b) { return {_mm512_cmpgt_epi16_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<uint32_t> greater(Vec<uint32_t> a, Vec<uint32_t> b)
{
    return {_mm512_cmpgt_epu32_mask(reg(a), reg(b))};
}
RVK_INLINE Mask<int32_t> greater(Vec<int32_t> a, Vec<int32_t> b) { return {_mm512_cmpgt_epi32_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<uint64_t> greater(Vec<uint64_t> a, Vec<uint64_t> b)
{
    return {_mm512_cmpgt_epu64_mask(reg(a), reg(b))};
}
RVK_INLINE Mask<int64_t> greater(Vec<int64_t> a, Vec<int64_t> b) { return {_mm512_cmpgt_epi64_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<float> greater(Vec<float> a, Vec<float> b)
{
    return {_mm512_cmp_ps_mask(floatReg(a), floatReg(b), _CMP_GT_OQ)};
}

RVK_INLINE Mask<uint8_t> less(Vec<uint8_t> a, Vec<uint8_t> b) { return {_mm512_cmplt_epu8_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<int8_t> less(Vec<int8_t> a, Vec<int8_t> b) { return {_mm512_cmplt_epi8_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<uint16_t> less(Vec<uint16_t> a, Vec<uint16_t> b) { return {_mm512_cmplt_epu16_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<int16_t> less(Vec<int16_t> a, Vec<int16_t> b) { return {_mm512_cmplt_epi16_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<uint32_t> less(Vec<uint32_t> a, Vec<uint32_t> b) { return {_mm512_cmplt_epu32_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<int32_t> less(Vec<int32_t> a, Vec<int32_t> b) { return {_mm512_cmplt_epi32_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<uint64_t> less(Vec<uint64_t> a, Vec<uint64_t> b) { return {_mm512_cmplt_epu64_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<int64_t> less(Vec<int64_t> a, Vec<int64_t> b) { return {_mm512_cmplt_epi64_mask(reg(a), reg(b))}; }
RVK_INLINE Mask<float> less(Vec<float> a, Vec<float> b)
{
    return {_mm512_cmp_ps_mask(floatReg(a), floatReg(b), _CMP_LT_OQ)};
}

RVK_INLINE Register selectLanes(__mmask64 m, Register a, Register b) { return _mm512_mask_blend_epi8(m, b, a); }
RVK_INLINE Register selectLanes(__mmask32 m, Register a, Register b) { return _mm512_mask_blend_epi16(m, b, a); }
RVK_INLINE Register selectLanes(__mmask16 m, Register a, Register b) { return _mm512_mask_blend_epi32(m, b, a); }
RVK_INLINE Register selectLanes(__mmask8 m, Register a, Register b) { return _mm512_mask_blend_epi64(m, b, a); }

template <class T>
RVK_INLINE Vec<T> select(Mask<T> m, Vec<T> a, Vec<T> b)
{
    return vec<T>(selectLanes(m.bits, reg(a), reg(b)));
}

RVK_INLINE Vec<float> select(Mask<float> m, Vec<float> a, Vec<float> b)
{
    return vec(_mm512_mask_blend_ps(m.bits, floatReg(b), floatReg(a)));
}

RVK_INLINE Register fillLanes(__mmask64 m) { return _mm512_movm_epi8(m); }
RVK_INLINE Register fillLanes(__mmask32 m) { return _mm512_movm_epi16(m); }
RVK_INLINE Register fillLanes(__mmask16 m) { return _mm512_movm_epi32(m); }
RVK_INLINE Register fillLanes(__mmask8 m) { return _mm512_movm_epi64(m); }

// All bits of the true lanes set, the others zero.
template <class T>
RVK_INLINE Vec<T> toVec(Mask<T> m)
{
    return vec<T>(fillLanes(m.bits));
}

template <class T> RVK_INLINE bool any(Mask<T> m) { return m.bits != 0; }
template <class T> RVK_INLINE bool all(Mask<T> m) { return static_cast<typename Mask<T>::Bits>(~m.bits) == 0; }
template <class T> RVK_INLINE size_t firstTrue(Mask<T> m) { return static_cast<size_t>(__builtin_ctzll(m.bits)); }
RVK_INLINE uint64_t laneBits(Mask<uint8_t> m) { return m.bits; }

// Masks of elements twice and half as wide; the narrow one has the lanes of `low` followed by those of `high`.
template <class T>
    requires(isSigned<T>)
RVK_INLINE Masks<Wider<T>, 2> widen(Mask<T> m)
{
    using Bits = typename Mask<Wider<T>>::Bits;
    return {{{static_cast<Bits>(m.bits)}, {static_cast<Bits>(m.bits >> Vec<Wider<T>>::lanes)}}};
}

template <class T>
    requires(isSigned<T>)
RVK_INLINE Mask<Narrower<T>> narrow(Mask<T> low, Mask<T> high)
{
    using Bits = typename Mask<Narrower<T>>::Bits;
    return {static_cast<Bits>(static_cast<Bits>(high.bits) << Vec<T>::lanes | low.bits)};
}

#else

template <class T>
RVK_INLINE Mask<T> equal(Vec<T> a, Vec<T> b)
{
    return {{(typename Vec<Unsigned<T>>::Raw)(a.raw == b.raw)}};
}

template <class T>
RVK_INLINE Mask<T> greater(Vec<T> a, Vec<T> b)
{
    return {{(typename Vec<Unsigned<T>>::Raw)(a.raw > b.raw)}};
}

template <class T>
RVK_INLINE Mask<T> less(Vec<T> a, Vec<T> b)
{
    return greater(b, a);
}

template <class T>
RVK_INLINE Vec<T> select(Mask<T> m, Vec<T> a, Vec<T> b)
{
    return bitCast<T>(vec<uint8_t>(RVK_MM(blendv_epi8)(reg(b), reg(a), reg(m.bits))));
}

// One bit per byte of the register.
template <class T>
RVK_INLINE uint32_t byteBits(Mask<T> m)
{
    return static_cast<uint32_t>(RVK_MM(movemask_epi8)(reg(m.bits)));
}

template <class T> RVK_INLINE bool any(Mask<T> m) { return byteBits(m) != 0; }
template <class T> RVK_INLINE bool all(Mask<T> m) { return byteBits(m) == (kBytes == 32 ? 0xffffffffu : 0xffffu); }
template <class T> RVK_INLINE size_t firstTrue(Mask<T> m)
{
    return static_cast<size_t>(__builtin_ctz(byteBits(m))) / sizeof(T);
}
RVK_INLINE uint32_t laneBits(Mask<uint8_t> m) { return byteBits(m); }

#endif

// ---- wider and narrower elements ------------------------------------------------------------------------------------

template <class T> Register widenHalf(HalfRegister) = delete;
template <> RVK_INLINE Register widenHalf<uint8_t>(HalfRegister v) { return RVK_MM(cvtepu8_epi16)(v); }
template <> RVK_INLINE Register widenHalf<int8_t>(HalfRegister v) { return RVK_MM(cvtepi8_epi16)(v); }
template <> RVK_INLINE Register widenHalf<uint16_t>(HalfRegister v) { return RVK_MM(cvtepu16_epi32)(v); }
template <> RVK_INLINE Register widenHalf<int16_t>(HalfRegister v) { return RVK_MM(cvtepi16_epi32)(v); }
template <> RVK_INLINE Register widenHalf<uint32_t>(HalfRegister v) { return RVK_MM(cvtepu32_epi64)(v); }
template <> RVK_INLINE Register widenHalf<int32_t>(HalfRegister v) { return RVK_MM(cvtepi32_epi64)(v); }

template <class T>
RVK_INLINE Vecs<Wider<T>, 2> widen(Vec<T> v)
{
    return {vec<Wider<T>>(widenHalf<T>(lowHalf(reg(v)))), vec<Wider<T>>(widenHalf<T>(highHalf(reg(v))))};
}

RVK_INLINE __m128i loadBlock(const void* p)
{
    return _mm_loadu_si128(static_cast<const __m128i*>(p));
}

// A register of blocks of 16 bytes, each from an address of its own.
RVK_INLINE Vec<uint8_t> loadEach16(const uint8_t* const* p, ptrdiff_t offset)
{
#if RVK_AVX512
    // Halves take two insertions from memory less that work on whole registers.
    const auto loadTwo = [=](const uint8_t* low, const uint8_t* high) RVK_INLINE_LAMBDA {
        return _mm256_inserti128_si256(_mm256_castsi128_si256(loadBlock(low + offset)), loadBlock(high + offset), 1);
    };
    return vec<uint8_t>(_mm512_inserti64x4(_mm512_castsi256_si512(loadTwo(p[0], p[1])), loadTwo(p[2], p[3]), 1));
#elif defined(__AVX2__)
    return vec<uint8_t>(
        _mm256_inserti128_si256(_mm256_castsi128_si256(loadBlock(p[0] + offset)), loadBlock(p[1] + offset), 1));
#else
    return vec<uint8_t>(loadBlock(p[0] + offset));
#endif
}

// The first kBytes / ratio bytes from p, in the low end of a register.
template <size_t ratio>
RVK_INLINE auto loadFraction(const void* p)
{
    if constexpr (kBytes / ratio == 32) {
        return _mm256_loadu_si256(static_cast<const __m256i*>(p));
    } else if constexpr (kBytes / ratio == 16) {
        return loadBlock(p);
    } else if constexpr (kBytes / ratio == 8) {
        return _mm_loadl_epi64(static_cast<const __m128i*>(p));
    } else {
        int bits;
        __builtin_memcpy(&bits, p, sizeof bits);
        return _mm_cvtsi32_si128(bits);
    }
}

template <class T>
RVK_INLINE void prefetch(const T* p, size_t n)
{
    constexpr size_t cacheLine = 64;
    for (size_t i = 0; i < n; i += cacheLine / sizeof *p)
        __builtin_prefetch(p + i);
}

// As many elements from p as a vector of To has lanes, each made two or four times as wide.
template <class To, class T>
    requires(isSame<To, Wider<T>>)
RVK_INLINE Vec<To> loadWiden(const T* p)
{
    return vec<To>(widenHalf<T>(loadFraction<2>(p)));
}

template <class To, class T>
    requires(sizeof(To) == 4 && sizeof(T) == 1 && isSigned<To> == isSigned<T>)
RVK_INLINE Vec<To> loadWiden(const T* p)
{
    if constexpr (isSigned<T>)
        return vec<To>(RVK_MM(cvtepi8_epi32)(loadFraction<4>(p)));
    else
        return vec<To>(RVK_MM(cvtepu8_epi32)(loadFraction<4>(p)));
}

template <class T>
RVK_INLINE Vecs<Wider<T>, 2> widenInLanes(Vec<T> v)
{
    // The upper half of a wide element is its sign: all bits of it or none.
    Vec<T> sign = zero<T>();
    if constexpr (isSigned<T>)
        sign = shiftRight(v, sizeof(T) * 8 - 1);
    const Vecs<T, 2> z = zipInLanes(v, sign);
    return {bitCast<Wider<T>>(z[0]), bitCast<Wider<T>>(z[1])};
}

// The 16-byte blocks of two packed vectors in memory order: a pack instruction fills half a block from either operand.
template <class T>
RVK_INLINE Vec<T> orderPacked(Vec<T> v)
{
#if RVK_AVX512
    return vec<T>(_mm512_permutexvar_epi64(_mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), reg(v)));
#elif defined(__AVX2__)
    return vec<T>(_mm256_permute4x64_epi64(reg(v), 0xd8));
#else
    return v;
#endif
}

// Saturates the lanes of two vectors in lane order: s16 -> u8 and s8, u16 -> u8, s32 -> s16 and u16, u32 -> u16.
template <class To>
RVK_INLINE Vec<To> narrowSatInLanes(Vecs<int16_t, 2> v)
{
    static_assert(sizeof(To) == 1);
    if constexpr (isSigned<To>)
        return vec<To>(RVK_MM(packs_epi16)(reg(v[0]), reg(v[1])));
    else
        return vec<To>(RVK_MM(packus_epi16)(reg(v[0]), reg(v[1])));
}

template <class To>
RVK_INLINE Vec<To> narrowSatInLanes(Vecs<int32_t, 2> v)
{
    static_assert(sizeof(To) == 2);
    if constexpr (isSigned<To>)
        return vec<To>(RVK_MM(packs_epi32)(reg(v[0]), reg(v[1])));
    else
        return vec<To>(RVK_MM(packus_epi32)(reg(v[0]), reg(v[1])));
}

// The pack instructions take their operands as signed.
template <class To>
RVK_INLINE Vec<To> narrowSatInLanes(Vecs<uint16_t, 2> v)
{
    static_assert(isSame<To, uint8_t>);
    const Vec<uint16_t> top = splat<uint16_t>(255);
    return narrowSatInLanes<uint8_t>(
        Vecs<int16_t, 2>{bitCast<int16_t>(min(v[0], top)), bitCast<int16_t>(min(v[1], top))});
}

template <class To>
RVK_INLINE Vec<To> narrowSatInLanes(Vecs<uint32_t, 2> v)
{
    static_assert(isSame<To, uint16_t>);
    const Vec<uint32_t> top = splat<uint32_t>(65535);
    return narrowSatInLanes<uint16_t>(
        Vecs<int32_t, 2>{bitCast<int32_t>(min(v[0], top)), bitCast<int32_t>(min(v[1], top))});
}

template <class To, class T>
RVK_INLINE Vec<To> narrowSat(Vecs<T, 2> v)
{
    return orderPacked(narrowSatInLanes<To>(v));
}

RVK_INLINE Register narrowBits(Vecs<uint16_t, 2> v)
{
    const Vec<uint16_t> low = splat<uint16_t>(255);
    return RVK_MM(packus_epi16)(reg(v[0] & low), reg(v[1] & low));
}

RVK_INLINE Register narrowBits(Vecs<uint32_t, 2> v)
{
    const Vec<uint32_t> low = splat<uint32_t>(65535);
    return RVK_MM(packus_epi32)(reg(v[0] & low), reg(v[1] & low));
}

template <class T>
RVK_INLINE Vec<Narrower<T>> narrowInLanes(Vecs<T, 2> v)
{
    using U = Unsigned<T>;
    return vec<Narrower<T>>(narrowBits(Vecs<U, 2>{bitCast<U>(v[0]), bitCast<U>(v[1])}));
}

template <class T>
RVK_INLINE Vec<Narrower<T>> narrow(Vecs<T, 2> v)
{
#if RVK_AVX512
    using N = Narrower<T>;
    return unzipEven(bitCast<N>(v[0]), bitCast<N>(v[1]));
#else
    return orderPacked(narrowInLanes(v));
#endif
}

// The elements shifted right, which bytes then hold.
template <unsigned count>
RVK_INLINE Vec<uint8_t> narrowShiftedInLanes(const Vecs<uint16_t, 2>& v)
{
    return narrowSatInLanes<uint8_t>(
        bitCast<int16_t>(both(v, [](auto half) RVK_INLINE_LAMBDA { return shiftRight(half, count); })));
}
template <unsigned count>
RVK_INLINE Vec<uint8_t> narrowShifted(const Vecs<uint16_t, 2>& v)
{
    return orderPacked(narrowShiftedInLanes<count>(v));
}

// The lower bytes of the elements.
RVK_INLINE void storeLowBytes(uint8_t* p, Vec<uint16_t> v)
{
#if RVK_AVX512
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_cvtepi16_epi8(reg(v)));
#else
    const Vec<uint8_t> bytes = narrow(Vecs<uint16_t, 2>{v, v});
#if defined(__AVX2__)
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), lowHalf(reg(bytes)));
#else
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), reg(bytes));
#endif
#endif
}

// ---- products -------------------------------------------------------------------------------------------------------

// All products of two vectors, twice as wide.
template <class T>
    requires(sizeof(T) == 1)
RVK_INLINE Vecs<Wider<T>, 2> multiplyWide(Vec<T> a, Vec<T> b)
{
    const Vecs<Wider<T>, 2> x = widen(a), y = widen(b);
    return {x[0] * y[0], x[1] * y[1]};
}

template <class T>
    requires(sizeof(T) == 1)
RVK_INLINE Vecs<Wider<T>, 2> multiplyWideInLanes(Vec<T> a, Vec<T> b)
{
    const Vecs<Wider<T>, 2> x = widenInLanes(a), y = widenInLanes(b);
    return {x[0] * y[0], x[1] * y[1]};
}

template <class T>
    requires(sizeof(T) == 2)
RVK_INLINE Vecs<Wider<T>, 2> multiplyWide(Vec<T> a, Vec<T> b)
{
    return bitCast<Wider<T>>(zip(a * b, multiplyHigh(a, b)));
}

template <class T>
    requires(sizeof(T) == 2)
RVK_INLINE Vecs<Wider<T>, 2> multiplyWideInLanes(Vec<T> a, Vec<T> b)
{
    return bitCast<Wider<T>>(zipInLanes(a * b, multiplyHigh(a, b)));
}

// Exact sums and differences, twice as wide; differences have a sign.
template <class T> RVK_INLINE Vecs<Wider<T>, 2> addWide(Vec<T> a, Vec<T> b)
{
    return both(widen(a), widen(b), [](auto x, auto y) RVK_INLINE_LAMBDA { return x + y; });
}
template <class T> RVK_INLINE Vecs<Signed<Wider<T>>, 2> subtractWide(Vec<T> a, Vec<T> b)
{
    return bitCast<Signed<Wider<T>>>(both(widen(a), widen(b), [](auto x, auto y) RVK_INLINE_LAMBDA { return x - y; }));
}

// a[0] * b[0] + a[1] * b[1], element by element, and that added to acc; sums wrap.
RVK_INLINE Vecs<int32_t, 2> dot(const Vecs<int16_t, 2>& a, const Vecs<int16_t, 2>& b)
{
    return both(zip(a[0], a[1]), zip(b[0], b[1]), [](auto x, auto y) RVK_INLINE_LAMBDA { return dotPairs(x, y); });
}
RVK_INLINE Vecs<int32_t, 2> dotInLanes(const Vecs<int16_t, 2>& a, const Vecs<int16_t, 2>& b)
{
    return both(zipInLanes(a[0], a[1]), zipInLanes(b[0], b[1]),
                [](auto x, auto y) RVK_INLINE_LAMBDA { return dotPairs(x, y); });
}
RVK_INLINE Vecs<int32_t, 2> addDotInLanes(const Vecs<int32_t, 2>& acc, const Vecs<int16_t, 2>& a,
                                          const Vecs<int16_t, 2>& b)
{
    return both(acc, dotInLanes(a, b), [](auto x, auto y) RVK_INLINE_LAMBDA { return x + y; });
}

// acc + v[0] + v[1], element by element, of elements that are not negative.
RVK_INLINE Vecs<int32_t, 2> addBothInLanes(const Vecs<int32_t, 2>& acc, const Vecs<int16_t, 2>& v)
{
    const Vec<int16_t> one = splat<int16_t>(1);
    return addDotInLanes(acc, v, {one, one});
}

// v * factor / 2^15, rounded down; the factor is below 2^14 without its sign.
template <int16_t factor>
RVK_INLINE Vec<int16_t> multiplyQ15(Vec<int16_t> v)
{
    static_assert(-(1 << 14) < factor && factor < 1 << 14);
    return multiplyHigh(v, splat<int16_t>(2 * factor));
}

// ---- rounding -------------------------------------------------------------------------------------------------------

// (a * b + 2^14) >> 15; not of -32768 twice.
RVK_INLINE Vec<int16_t> multiplyRounded(Vec<int16_t> a, Vec<int16_t> b)
{
    return vec<int16_t>(RVK_MM(mulhrs_epi16)(reg(a), reg(b)));
}

// (a * b + 2^7) >> 8: the even bytes in the low halves of 16 bits, the odd ones in the high halves, so that nothing
// need be shuffled, for which 512-bit registers have one port.
RVK_INLINE Vec<uint8_t> multiplyRounded(Vec<uint8_t> a, Vec<uint8_t> b)
{
    const Vec<uint16_t> x = bitCast<uint16_t>(a), y = bitCast<uint16_t>(b);
    const Vec<uint16_t> low = splat<uint16_t>(0x00ff), high = splat<uint16_t>(0xff00);
    const Vec<int16_t> evenTimes128 = bitCast<int16_t>(shiftLeft(y, 7) & splat<uint16_t>(0x7f80));
    const Vec<uint16_t> even = bitCast<uint16_t>(multiplyRounded(bitCast<int16_t>(x & low), evenTimes128));
    const Vec<uint16_t> odd = multiplyHigh(x & high, y & high) + splat<uint16_t>(128);
    return bitCast<uint8_t>((odd & high) | even);
}

// (a * b + 2^15) >> 16; b is below 2^15.
RVK_INLINE Vec<uint16_t> multiplyHighRounded(Vec<uint16_t> a, Vec<uint16_t> b)
{
    return average(multiplyHigh(a, b + b), zero<uint16_t>());
}

// (v + 2^(count - 1)) >> count, without overflow but of int32_t; the count is at least 1.
RVK_INLINE Vec<uint16_t> shiftRightRounded(Vec<uint16_t> v, unsigned count)
{
    return average(shiftRight(v, count - 1), zero<uint16_t>());
}
RVK_INLINE Vec<int16_t> shiftRightRounded(Vec<int16_t> v, unsigned count)
{
    return multiplyRounded(v, splat(static_cast<int16_t>(1 << (15 - count))));
}
RVK_INLINE Vec<int32_t> shiftRightRounded(Vec<int32_t> v, unsigned count)
{
    return shiftRight(v + splat(1 << (count - 1)), count);
}

// narrowSatInLanes of shiftRightRounded, and in order. (What was shifted by two bits or more has no sign bit to
// mistake.)
template <class To, unsigned count, class T> RVK_INLINE Vec<To> narrowRoundedInLanes(const Vecs<T, 2>& v)
{
    const auto rounded = both(v, [](auto half) RVK_INLINE_LAMBDA { return shiftRightRounded(half, count); });
    if constexpr (isSame<T, uint16_t> && count >= 2)
        return narrowSatInLanes<To>(bitCast<int16_t>(rounded));
    else
        return narrowSatInLanes<To>(rounded);
}
template <class To, unsigned count, class T> RVK_INLINE Vec<To> narrowRounded(const Vecs<T, 2>& v)
{
    return orderPacked(narrowRoundedInLanes<To, count>(v));
}

// shiftRightRounded of the products with a number, for counts from 1 to 29. The rounding term is a product as well, so
// that one instruction forms the sum of both.
RVK_INLINE Vecs<int32_t, 2> multiplyAndShiftInLanes(Vec<int16_t> v, int16_t factor, unsigned count)
{
    const unsigned half = count < 15 ? count - 1 : 14;
    const uint32_t factors = static_cast<uint16_t>(factor) | (1u << (count - 1 - half)) << 16;
    return both(zipInLanes(v, splat(static_cast<int16_t>(1 << half))), [=](auto pairs) RVK_INLINE_LAMBDA {
        return shiftRight(dotPairs(pairs, bitCast<int16_t>(splat(factors))), count);
    });
}

// v << count, or the end of the range beyond which that lies.
RVK_INLINE Vec<uint16_t> shiftLeftSat(Vec<uint16_t> v, unsigned count)
{
    const Vec<uint16_t> largest = splat(static_cast<uint16_t>(UINT16_MAX >> count));
    return select(greater(v, largest), splat<uint16_t>(UINT16_MAX), shiftLeft(v, count));
}
RVK_INLINE Vec<int16_t> shiftLeftSat(Vec<int16_t> v, unsigned count)
{
    const Vec<int16_t> shifted = shiftLeft(v, count), end = shiftRight(v, 15) ^ splat<int16_t>(INT16_MAX);
    return select(equal(shiftRight(shifted, count), v), shifted, end);
}

// (a * b + 128) / 2^8, saturated.
RVK_INLINE Vec<uint16_t> multiplyQ8(Vec<uint16_t> a, Vec<uint16_t> b)
{
    return addSat(shiftLeftSat(multiplyHigh(a, b), 8), shiftRightRounded(a * b, 8));
}

// ---- weights: two numbers for all elements --------------------------------------------------------------------------

// Products of bytes with signed bytes, neighbours added, saturated.
RVK_INLINE Vec<int16_t> dotPairs(Vec<uint8_t> a, Vec<int8_t> b)
{
    return vec<int16_t>(RVK_MM(maddubs_epi16)(reg(a), reg(b)));
}

#if RVK_AVX512
// acc and the four products in each element of bytes with signed bytes.
RVK_INLINE Vec<int32_t> addDotQuads(Vec<int32_t> acc, Vec<uint8_t> a, Vec<int8_t> b)
{
    return vec<int32_t>(_mm512_dpbusd_epi32(reg(acc), reg(a), reg(b)));
}

// acc and the two products in each element.
RVK_INLINE Vec<int32_t> addDotPairs(Vec<int32_t> acc, Vec<int16_t> a, Vec<int16_t> b)
{
    return vec<int32_t>(_mm512_dpwssd_epi32(reg(acc), reg(a), reg(b)));
}
#endif

// Pairs of bytes in memory order.
RVK_INLINE Vec<uint8_t> splatPair(int32_t first, int32_t second)
{
    return bitCast<uint8_t>(splat(static_cast<uint16_t>((first & 255) | (second & 255) << 8)));
}

// (a * weight1 + b * weight2 + 128) >> 8 for weights from 0 to 255 that make 256 at most. The pixels are the signed
// bytes here, moved by -128. What the sum lacks for that comes with the rounding term.
RVK_INLINE Vec<uint8_t> weightedMean(Vec<uint8_t> a, Vec<uint8_t> b, int32_t weight1, int32_t weight2)
{
    const Vec<uint8_t> offset = splat<uint8_t>(128);
    const Vec<uint16_t> correction = splat(static_cast<uint16_t>(128 * (weight1 + weight2) + 128));
    return narrowSatInLanes<uint8_t>(both(zipInLanes(a ^ offset, b ^ offset), [=](auto pairs) RVK_INLINE_LAMBDA {
        const Vec<int16_t> sum = dotPairs(splatPair(weight1, weight2), bitCast<int8_t>(pairs));
        return bitCast<int16_t>(shiftRight(bitCast<uint16_t>(sum) + correction, 8));
    }));
}

// The same, clamped, for any weights of which isWeightOfSums is true: as real numbers, those between -64.25 and 63.75.
//
// The weights are the signed bytes here, two each: weight = 128 * high + low with low in -64..63. Then
//     (a * weight1 + b * weight2 + 128) >> 8  =  (H + (L >> 7) + 1) >> 1
// for the sums H and L of either part. L fits 16 bits. Where H does not, the result is far outside 0..255, and so is
// what saturated sums make of it.
RVK_INLINE int32_t highPart(int32_t weight)
{
    return (weight + 64) >> 7;
}

RVK_INLINE bool isWeightOfSums(int32_t weight)
{
    return highPart(weight) == static_cast<int8_t>(highPart(weight));
}

RVK_INLINE Vec<uint8_t> weightedSum(Vec<uint8_t> a, Vec<uint8_t> b, int32_t weight1, int32_t weight2)
{
    const int32_t high1 = highPart(weight1), high2 = highPart(weight2);
    const Vec<int8_t> high = bitCast<int8_t>(splatPair(high1, high2));
    const Vec<int8_t> low = bitCast<int8_t>(splatPair(weight1 - 128 * high1, weight2 - 128 * high2));
    return narrowSatInLanes<uint8_t>(both(zipInLanes(a, b), [=](auto pairs) RVK_INLINE_LAMBDA {
        return shiftRightRounded(addSat(dotPairs(pairs, high), shiftRight(dotPairs(pairs, low), 7)), 1);
    }));
}

// ---- tables ---------------------------------------------------------------------------------------------------------

// A table of 16 bytes, repeated in every block of the register.
RVK_INLINE Vec<uint8_t> loadTable16(const uint8_t* table)
{
#if RVK_AVX512
    return vec<uint8_t>(_mm512_broadcast_i32x4(loadBlock(table)));
#elif defined(__AVX2__)
    return vec<uint8_t>(_mm256_broadcastsi128_si256(loadBlock(table)));
#else
    return vec<uint8_t>(loadBlock(table));
#endif
}

// table[index]; every index is below 16.
RVK_INLINE Vec<uint8_t> lookup16(Vec<uint8_t> table, Vec<uint8_t> index)
{
    return vec<uint8_t>(RVK_MM(shuffle_epi8)(reg(table), reg(index)));
}

struct Table32 {
    Vec<uint8_t> first, second;
};

RVK_INLINE Table32 loadTable32(const uint8_t* table)
{
    return {loadTable16(table), loadTable16(table + 16)};
}

// table[index]; every index is below 32.
RVK_INLINE Vec<uint8_t> lookup32(const Table32& table, Vec<uint8_t> index)
{
    const Vec<uint8_t> inHalf = index & splat<uint8_t>(15);
    const Mask<int8_t> isSecond = greater(bitCast<int8_t>(index), splat<int8_t>(15));
    return bitCast<uint8_t>(select(isSecond, bitCast<int8_t>(lookup16(table.second, inHalf)),
                                   bitCast<int8_t>(lookup16(table.first, inHalf))));
}

// Bytes of a row, chosen from windows of it: windows of n * kWindow bytes begin at each of the offsets, and each is
// where the next kWindow lanes of the result have their indices.
#if RVK_AVX512
constexpr size_t kWindow = 64;
#else
constexpr size_t kWindow = 16;
RVK_INLINE Vec<uint8_t> loadWindows(const uint8_t* row, const uint32_t* offsets)
{
#if defined(__AVX2__)
    const __m256i first = _mm256_castsi128_si256(loadBlock(row + offsets[0]));
    return vec<uint8_t>(_mm256_inserti128_si256(first, loadBlock(row + offsets[1]), 1));
#else
    return vec<uint8_t>(loadBlock(row + offsets[0]));
#endif
}
#endif

// What lookupWindows<2> and the loop around it cost, in eighths of lookupWindows<1>.
constexpr size_t kEighthsOfWideWindow = RVK_AVX512 ? 12 : 10;

template <size_t n>
RVK_INLINE Vec<uint8_t> lookupWindows(const uint8_t* row, const uint32_t* offsets, Vec<uint8_t> indices)
{
    static_assert(n == 1 || n == 2);
#if RVK_AVX512
    const Register first = reg(load(row + offsets[0]));
    if constexpr (n == 1)
        return vec<uint8_t>(_mm512_permutexvar_epi8(reg(indices), first));
    else
        return vec<uint8_t>(_mm512_permutex2var_epi8(first, reg(indices), reg(load(row + offsets[0] + kWindow))));
#else
    const Vec<uint8_t> low = lookup16(loadWindows(row, offsets), indices);
    if constexpr (n == 1)
        return low;
    const Vec<uint8_t> high = lookup16(loadWindows(row + kWindow, offsets), indices);
    const Vec<uint16_t> isHigh = shiftLeft(bitCast<uint16_t>(indices), 3); // the upper bits of bytes
    return vec<uint8_t>(RVK_MM(blendv_epi8)(reg(low), reg(high), reg(isHigh)));
#endif
}

RVK_INLINE void storeWindows(uint8_t* p, [[maybe_unused]] size_t apart, Vec<uint8_t> v)
{
#if defined(__AVX2__) && !RVK_AVX512
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm256_castsi256_si128(reg(v)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p + apart), _mm256_extracti128_si256(reg(v), 1));
#else
    store(p, v);
#endif
}

#if RVK_AVX512

struct Table256 {
    Vec<uint8_t> quarter[4];
};

RVK_INLINE Table256 prepare(const uint8_t table[256])
{
    return {{load(table), load(table + 64), load(table + 128), load(table + 192)}};
}

RVK_INLINE Vec<uint8_t> lookup(const Table256& table, Vec<uint8_t> index)
{
    const Register i = reg(index);
    const Register low = _mm512_permutex2var_epi8(reg(table.quarter[0]), i, reg(table.quarter[1]));
    const Register high = _mm512_permutex2var_epi8(reg(table.quarter[2]), i, reg(table.quarter[3]));
    return vec<uint8_t>(_mm512_mask_blend_epi8(_mm512_movepi8_mask(i), low, high));
}

#else

// Byte shuffles look up 16 entries at a time and give 0 for an index with the top bit set. So each 16 entries are kept
// as their difference to the 16 before: an index that is reduced by 16 per step meets all rows up to its own before it
// turns negative, and the differences add up to the entry. The upper half of the table is a second one of that kind.
struct Table256 {
    alignas(16) uint8_t row[16][16];
};

RVK_INLINE Table256 prepare(const uint8_t table[256])
{
    Table256 t;
    for (size_t i = 0; i < 16; ++i)
        for (size_t k = 0; k < 16; ++k)
            t.row[i][k] = static_cast<uint8_t>(table[16 * i + k] ^ (i % 8 ? table[16 * i + k - 16] : 0));
    return t;
}

RVK_INLINE Vec<uint8_t> lookup(const Table256& table, Vec<uint8_t> index)
{
    const Vec<int8_t> step = splat<int8_t>(16);
    Vec<int8_t> low = bitCast<int8_t>(index);
    Vec<int8_t> high = bitCast<int8_t>(index ^ splat<uint8_t>(0x80));
    Vec<uint8_t> result = lookup16(loadTable16(table.row[0]), bitCast<uint8_t>(low)) ^
                          lookup16(loadTable16(table.row[8]), bitCast<uint8_t>(high));
    unrolled<7>([&](auto i) RVK_INLINE_LAMBDA {
        low = subSat(low, step);
        high = subSat(high, step);
        result = result ^ lookup16(loadTable16(table.row[1 + i]), bitCast<uint8_t>(low)) ^
                 lookup16(loadTable16(table.row[9 + i]), bitCast<uint8_t>(high));
    });
    return result;
}

#endif

RVK_INLINE Vec<uint8_t> countBits(Vec<uint8_t> v)
{
#if RVK_AVX512
    return vec<uint8_t>(_mm512_popcnt_epi8(reg(v)));
#else
    static constexpr uint8_t kBits[16] = {0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4};
    const Vec<uint8_t> bits = loadTable16(kBits);
    const Vec<uint8_t> nibble = splat<uint8_t>(15);
    const Vec<uint8_t> high = bitCast<uint8_t>(shiftRight(bitCast<uint16_t>(v), 4)) & nibble;
    return lookup16(bits, v & nibble) + lookup16(bits, high);
#endif
}

// Set bits of a machine word, and from how many bytes on those of vectors are counted faster: without AVX never.
RVK_INLINE uint32_t countBits(uint64_t word) { return static_cast<uint32_t>(__builtin_popcountll(word)); }
constexpr size_t kCountBitsInVectorsFrom = kBytes > 16 ? 64 : SIZE_MAX;

// ---- sums -----------------------------------------------------------------------------------------------------------

// Adds all elements of v to the lanes of acc, whichever is convenient; sums wrap.
RVK_INLINE Vec<uint32_t> addBytesTo(Vec<uint32_t> acc, Vec<uint8_t> v)
{
    return acc + vec<uint32_t>(RVK_MM(sad_epu8)(reg(v), reg(zero<uint8_t>())));
}

RVK_INLINE Vec<uint32_t> addTo(Vec<uint32_t> acc, Vec<uint16_t> v)
{
    const Vec<uint32_t> pairs = bitCast<uint32_t>(v);
    return acc + (pairs & splat<uint32_t>(0xffff)) + shiftRight(pairs, 16);
}

RVK_INLINE Vec<int32_t> addNeighboursTo(Vec<int32_t> acc, Vec<int16_t> v)
{
    return acc + dotPairs(v, splat<int16_t>(1));
}
RVK_INLINE Vec<int32_t> addTo(Vec<int32_t> acc, Vec<int16_t> v) { return addNeighboursTo(acc, v); }

RVK_INLINE Vec<uint64_t> addTo(Vec<uint64_t> acc, Vec<uint32_t> v)
{
    const Vec<uint64_t> pairs = bitCast<uint64_t>(v);
    return acc + (pairs & splat<uint64_t>(0xffffffff)) + shiftRight(pairs, 32);
}

RVK_INLINE Vec<int64_t> addTo(Vec<int64_t> acc, Vec<int32_t> v)
{
    const Vecs<int64_t, 2> wide = widenInLanes(v);
    return acc + wide[0] + wide[1];
}

// Products of bytes, each added to some lane of acc, in two parts; sums wrap. The sum of addPartOfDot(acc, a, b) lacks
// what restOfDot() gives of a sum that addToRestOfDot(acc, a) made: a part that is the same for all b.
#if RVK_AVX512
// The instruction multiplies bytes with signed bytes, so b is moved by 128.
RVK_INLINE Vec<uint32_t> addPartOfDot(Vec<uint32_t> acc, Vec<uint8_t> a, Vec<uint8_t> b)
{
    const Vec<int8_t> moved = bitCast<int8_t>(b ^ splat<uint8_t>(128));
    return bitCast<uint32_t>(addDotQuads(bitCast<int32_t>(acc), a, moved));
}
RVK_INLINE Vec<int32_t> addPartOfDot(Vec<int32_t> acc, Vec<int8_t> a, Vec<int8_t> b)
{
    return addDotQuads(acc, bitCast<uint8_t>(b) ^ splat<uint8_t>(128), a);
}
RVK_INLINE Vec<uint32_t> addToRestOfDot(Vec<uint32_t> acc, Vec<uint8_t> a)
{
    return bitCast<uint32_t>(addDotQuads(bitCast<int32_t>(acc), a, splat<int8_t>(1)));
}
RVK_INLINE Vec<int32_t> addToRestOfDot(Vec<int32_t> acc, Vec<int8_t> a)
{
    return addDotQuads(acc, splat<uint8_t>(1), a);
}
RVK_INLINE Vec<uint32_t> restOfDot(Vec<uint32_t> sum) { return shiftLeft(sum, 7); }
RVK_INLINE Vec<int32_t> restOfDot(Vec<int32_t> sum) { return zero<int32_t>() - shiftLeft(sum, 7); }
#else
template <class T>
    requires(sizeof(T) == 1)
RVK_INLINE Vec<Wider<Wider<T>>> addPartOfDot(Vec<Wider<Wider<T>>> acc, Vec<T> a, Vec<T> b)
{
    const Vecs<int32_t, 2> sums = both(bitCast<int16_t>(widenInLanes(a)), bitCast<int16_t>(widenInLanes(b)),
                                       [](auto x, auto y) RVK_INLINE_LAMBDA { return dotPairs(x, y); });
    return acc + bitCast<Wider<Wider<T>>>(sums[0] + sums[1]);
}
#endif

// In block b, of 16 bytes, element i is the sum of the elements of block b of v[i]; sums wrap.
template <class T>
    requires(sizeof(T) == 4 && !isSame<T, float>)
RVK_INLINE Vec<T> sumsOfBlocks(const Vecs<T, 4>& v)
{
    const auto addPairs = [](Vec<uint32_t> a, Vec<uint32_t> b) RVK_INLINE_LAMBDA {
        const Vecs<uint32_t, 2> z = zipInLanes(a, b);
        return bitCast<uint64_t>(z[0] + z[1]);
    };
    const Vecs<uint32_t, 4> w = bitCast<uint32_t>(v);
    const Vecs<uint64_t, 2> z = zipInLanes(addPairs(w[0], w[1]), addPairs(w[2], w[3]));
    return bitCast<T>(bitCast<uint32_t>(z[0]) + bitCast<uint32_t>(z[1]));
}

// p[i] is the sum of the elements of v[i]; sums wrap.
template <class T>
    requires(sizeof(T) == 4 && !isSame<T, float>)
RVK_INLINE void storeSums(T* p, const Vecs<T, 4>& v)
{
    const Register sums = reg(sumsOfBlocks(v));
#if RVK_AVX512
    const HalfRegister half = _mm256_add_epi32(lowHalf(sums), highHalf(sums));
    const __m128i quarter = _mm_add_epi32(_mm256_castsi256_si128(half), _mm256_extracti128_si256(half, 1));
#elif defined(__AVX2__)
    const __m128i quarter = _mm_add_epi32(lowHalf(sums), highHalf(sums));
#else
    const __m128i quarter = sums;
#endif
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), quarter);
}

// The sum of elements modulo 2^64.
template <class T> struct Total;

// Cheaper than to widen: neighbours are summed as one number, high * 2^32 + low, and the high ones alone as well. The
// sign bits are flipped, which adds 2^31 to each and makes all of them positive.
template <>
struct Total<int32_t> {
    Vec<uint64_t> pairs = {}, highs = {};
    uint64_t vectors = 0;

    RVK_INLINE void add(Vec<int32_t> v)
    {
        const Vec<uint64_t> pair = bitCast<uint64_t>(v ^ splat<int32_t>(INT32_MIN));
        pairs = pairs + pair;
        highs = highs + shiftRight(pair, 32);
        ++vectors;
    }
    RVK_INLINE int64_t value() const;
};

// ---- interleaved memory ---------------------------------------------------------------------------------------------

#if RVK_AVX512

template <size_t count, class T>
RVK_INLINE Vecs<T, count> loadSpread(const T* p)
{
    return loadVecs<count>(p);
}

template <class T, size_t count>
RVK_INLINE Vecs<T, count> inOrder(const Vecs<T, count>& v)
{
    return v;
}

template <class T>
RVK_INLINE Vecs<T, 2> load2(const T* p)
{
    const Vecs<T, 2> m = loadVecs<2>(p);
    return {unzipEven(m[0], m[1]), unzipOdd(m[0], m[1])};
}

template <class T>
RVK_INLINE Vecs<T, 2> zipSpread(Vec<T> a, Vec<T> b)
{
    return zip(a, b);
}

template <class T>
RVK_INLINE Vec<Narrower<T>> narrowSpread(const Vecs<T, 2>& v)
{
    return narrow(v);
}

// b in the lanes where `lanes` has a bit, a elsewhere. The compilers must not know the bits: clang would merge such
// blends with the shuffle next to them into permutations of two registers, which take longer.
template <class T>
RVK_INLINE Vec<T> blend(uint64_t lanes, Vec<T> a, Vec<T> b)
{
    __asm__("" : "+r"(lanes));
    return select(Mask<T>{static_cast<typename Mask<T>::Bits>(lanes)}, b, a);
}

// The same with a bit for each of the four blocks.
template <class T>
RVK_INLINE Vec<T> blendBlocks(unsigned blocks, Vec<T> a, Vec<T> b)
{
    const unsigned pairs = (blocks & 1) * 3 | (blocks & 2) * 6 | (blocks & 4) * 12 | (blocks & 8) * 24;
    return bitCast<T>(blend(pairs, bitCast<uint64_t>(a), bitCast<uint64_t>(b)));
}

// Vector i of the result has block (i + k) % 4 of vector k, in its place, for all k.
template <class T>
RVK_INLINE Vecs<T, 4> diagonals(const Vecs<T, 4>& v)
{
    const Vec<T> a = blendBlocks(0b1010, v[0], v[1]), b = blendBlocks(0b0101, v[0], v[1]);
    const Vec<T> c = blendBlocks(0b1010, v[2], v[3]), d = blendBlocks(0b0101, v[2], v[3]);
    return {blendBlocks(0b1100, a, c), blendBlocks(0b1001, b, d), blendBlocks(0b0011, a, c), blendBlocks(0b0110, b, d)};
}

// Block i of the result is block (i + n) % 4.
template <size_t n, class T>
RVK_INLINE Vec<T> rotateBlocks(Vec<T> v)
{
    return shuffle(v, v, [](size_t i) { return (i + n * kBlock<T>) % Vec<T>::lanes; });
}

// Each channel's elements together in a block; block i has channel (i - k) % 4.
template <size_t k, class T>
RVK_INLINE Vec<T> groupChannels(Vec<T> v)
{
    return shuffle(v, v, [](size_t i) { return i % kBlock<T> * 4 + (i / kBlock<T> + 4 - k) % 4; });
}

template <class T>
RVK_INLINE Vecs<T, 4> load4(const T* p)
{
    const Vecs<T, 4> m = loadVecs<4>(p);
    const Vecs<T, 4> d = diagonals(
        Vecs<T, 4>{groupChannels<0>(m[0]), groupChannels<1>(m[1]), groupChannels<2>(m[2]), groupChannels<3>(m[3])});
    return {d[0], rotateBlocks<1>(d[1]), rotateBlocks<2>(d[2]), rotateBlocks<3>(d[3])};
}

// The reverse of groupChannels.
template <size_t k, class T>
RVK_INLINE Vec<T> ungroupChannels(Vec<T> v)
{
    // clang replaces this shuffle by thirteen narrower ones if it sees the store behind it.
    return anyVector(shuffle(v, v, [](size_t i) { return (i + k) % 4 * kBlock<T> + i / 4; }));
}

template <class T>
RVK_INLINE Vecs<T, 4> interleave(const Vecs<T, 4>& v)
{
    const Vecs<T, 4> d =
        diagonals(Vecs<T, 4>{v[0], rotateBlocks<3>(v[1]), rotateBlocks<2>(v[2]), rotateBlocks<1>(v[3])});
    return {ungroupChannels<0>(d[0]), ungroupChannels<1>(d[1]), ungroupChannels<2>(d[2]), ungroupChannels<3>(d[3])};
}

#else

// The 16-byte block at p and, in registers of two blocks, the one `next` blocks further.
template <size_t next, class T>
RVK_INLINE Vec<T> loadBlocks(const T* p)
{
#if defined(__AVX2__)
    return vec<T>(_mm256_inserti128_si256(_mm256_castsi128_si256(loadBlock(p)), loadBlock(p + next * kBlock<T>), 1));
#else
    return load(p);
#endif
}

template <class T, size_t... i>
RVK_INLINE Vecs<T, sizeof...(i)> loadSpreadAt(const T* p, Indices<i...>)
{
    return {{loadBlocks<sizeof...(i)>(p + i * kBlock<T>)...}};
}

// Vector i holds the 16-byte blocks i, i + count, ... so that each block of the registers can be worked on alone.
template <size_t count, class T>
RVK_INLINE Vecs<T, count> loadSpread(const T* p)
{
    return loadSpreadAt(p, typename CountTo<count>::Type{});
}

#if defined(__AVX2__)
template <class T>
RVK_INLINE Vec<T> lowBlocks(Vec<T> a, Vec<T> b)
{
    return vec<T>(_mm256_permute2x128_si256(reg(a), reg(b), 0x20));
}

template <class T>
RVK_INLINE Vec<T> highBlocks(Vec<T> a, Vec<T> b)
{
    return vec<T>(_mm256_permute2x128_si256(reg(a), reg(b), 0x31));
}
#endif

// The blocks of such vectors in the order in which memory has them.
template <class T, size_t count>
RVK_INLINE Vecs<T, count> inOrder(const Vecs<T, count>& v)
{
#if defined(__AVX2__)
    if constexpr (count == 3) {
        return {lowBlocks(v[0], v[1]), vec<T>(_mm256_blend_epi32(reg(v[2]), reg(v[0]), 0xf0)), highBlocks(v[1], v[2])};
    } else {
        Vecs<T, count> r;
        unrolled<count / 2>([&](auto i) RVK_INLINE_LAMBDA {
            r[i] = lowBlocks(v[2 * i], v[2 * i + 1]);
            r[count / 2 + i] = highBlocks(v[2 * i], v[2 * i + 1]);
        });
        return r;
    }
#else
    return v;
#endif
}

template <class T>
RVK_INLINE Vecs<T, 2> load2(const T* p)
{
    const Vecs<T, 2> m = loadSpread<2>(p);
    if constexpr (sizeof(T) == 4) {
        return {shuffle(m[0], m[1], [](size_t i) { return i / 4 * 4 + i % 2 * 2 + (i & 2 ? Vec<T>::lanes : 0); }),
                shuffle(m[0], m[1], [](size_t i) { return i / 4 * 4 + i % 2 * 2 + 1 + (i & 2 ? Vec<T>::lanes : 0); })};
    } else {
        using W = Wider<Unsigned<T>>;
        const Vecs<W, 2> pairs = {bitCast<W>(m[0]), bitCast<W>(m[1])};
        const Vecs<W, 2> odd = {shiftRight(pairs[0], sizeof(T) * 8), shiftRight(pairs[1], sizeof(T) * 8)};
        return {bitCast<T>(narrowInLanes(pairs)), bitCast<T>(narrowInLanes(odd))};
    }
}

// What inOrder makes a0 b0 a1 b1 ... of.
template <class T>
RVK_INLINE Vecs<T, 2> zipSpread(Vec<T> a, Vec<T> b)
{
    return zipInLanes(a, b);
}

// The lower halves of the elements that loadSpread took from memory, in their order there.
template <class T>
RVK_INLINE Vec<Narrower<T>> narrowSpread(const Vecs<T, 2>& v)
{
    return narrowInLanes(v);
}

// One shuffle brings the elements of a channel together, 4 bytes of each in a block; the rest transposes 4 x 4 such
// groups.
template <class T>
RVK_INLINE Vec<uint32_t> groupChannels(Vec<T> v)
{
    constexpr size_t n = 4 / sizeof(T);
    return bitCast<uint32_t>(shuffle(v, v, [](size_t i) {
        return i / kBlock<T> * kBlock<T> + i % n * 4 + i % kBlock<T> / n; }));
}

template <class T>
RVK_INLINE Vecs<T, 4> load4(const T* p)
{
    const Vecs<T, 4> m = loadSpread<4>(p);
    const Vecs<uint32_t, 2> a = zipInLanes(groupChannels(m[0]), groupChannels(m[1]));
    const Vecs<uint32_t, 2> b = zipInLanes(groupChannels(m[2]), groupChannels(m[3]));
    const Vecs<uint64_t, 2> low = zipInLanes(bitCast<uint64_t>(a[0]), bitCast<uint64_t>(b[0]));
    const Vecs<uint64_t, 2> high = zipInLanes(bitCast<uint64_t>(a[1]), bitCast<uint64_t>(b[1]));
    return {bitCast<T>(low[0]), bitCast<T>(low[1]), bitCast<T>(high[0]), bitCast<T>(high[1])};
}

template <class T>
RVK_INLINE Vecs<T, 4> interleave(const Vecs<T, 4>& v)
{
    using W = Wider<Unsigned<T>>;
    const Vecs<T, 2> a = zipInLanes(v[0], v[1]), b = zipInLanes(v[2], v[3]);
    const Vecs<W, 2> low = zipInLanes(bitCast<W>(a[0]), bitCast<W>(b[0]));
    const Vecs<W, 2> high = zipInLanes(bitCast<W>(a[1]), bitCast<W>(b[1]));
    return inOrder(Vecs<T, 4>{bitCast<T>(low[0]), bitCast<T>(low[1]), bitCast<T>(high[0]), bitCast<T>(high[1])});
}

#endif

template <class T>
RVK_INLINE Vecs<T, 2> interleave(const Vecs<T, 2>& v)
{
    return inOrder(zipSpread(v[0], v[1]));
}

// The lanes among which one shuffle moves elements freely.
template <class T> constexpr size_t kReach = RVK_AVX512 ? Vec<T>::lanes : kBlock<T>;

// a, but b in the lanes i for which (i + offset) % 3 == c, counted among those lanes.
template <size_t offset, size_t c, class T>
RVK_INLINE Vec<T> takeThird(Vec<T> a, Vec<T> b)
{
#if RVK_AVX512
    return blend(0x9249249249249249 << (c + 2 * offset) % 3, a, b);
#else
    return shuffle(a, b, [](size_t i) { return (i % kReach<T> + offset) % 3 == c ? i + Vec<T>::lanes : i; });
#endif
}

// Among those lanes: the positions that hold channel c of interleaved triples differ between the three vectors, so
// blending collects a channel, and one shuffle orders it.
template <size_t c, class T>
RVK_INLINE Vec<T> channelOf(const Vecs<T, 3>& m)
{
    constexpr size_t n = kReach<T>;
    const Vec<T> all = takeThird<2 * n, c>(takeThird<n, c>(m[0], m[1]), m[2]);
    return shuffle(all, all, [](size_t i) { return i / n * n + (i % n * 3 + c) % n; });
}

template <class T>
RVK_INLINE Vecs<T, 3> load3(const T* p)
{
    const Vecs<T, 3> m = loadSpread<3>(p);
    return {channelOf<0>(m), channelOf<1>(m), channelOf<2>(m)};
}

// The reverse: a lane receives the element that channelOf takes from there.
template <size_t c, class T>
RVK_INLINE Vec<T> spreadChannel(Vec<T> v)
{
    constexpr size_t n = kReach<T>;
    return shuffle(v, v, [](size_t i) {
        size_t pixel = 0;
        while ((pixel * 3 + c) % n != i % n)
            ++pixel;
        return i / n * n + pixel; });
}

template <size_t k, class T>
RVK_INLINE Vec<T> pixelsOf(const Vecs<T, 3>& spread)
{
    constexpr size_t first = k * kReach<T>;
    return takeThird<first, 2>(takeThird<first, 1>(spread[0], spread[1]), spread[2]);
}

template <class T>
RVK_INLINE Vecs<T, 3> interleave(const Vecs<T, 3>& v)
{
    const Vecs<T, 3> s = {spreadChannel<0>(v[0]), spreadChannel<1>(v[1]), spreadChannel<2>(v[2])};
    return inOrder(Vecs<T, 3>{pixelsOf<0>(s), pixelsOf<1>(s), pixelsOf<2>(s)});
}

template <class T> RVK_INLINE void store2(T* p, const Vecs<T, 2>& v) { store(p, interleave(v)); }
template <class T> RVK_INLINE void store3(T* p, const Vecs<T, 3>& v) { store(p, interleave(v)); }
template <class T> RVK_INLINE void store4(T* p, const Vecs<T, 4>& v) { store(p, interleave(v)); }

// ---- 32-bit elements in two vectors, which make one of 16-bit elements ----------------------------------------------

// The elements with an even number, and those with an odd one: so joinSplit has nothing to move across lanes.
template <class T> RVK_INLINE Vecs<T, 2> loadSplit(const T* p) { return load2(p); }

template <class T>
RVK_INLINE Vecs<T, 2> iotaSplit()
{
    const Vec<T> i = iota<T>();
    return {i + i, i + i + splat<T>(1)};
}

// The lower halves of the elements, in their order in memory.
RVK_INLINE Vec<uint16_t> joinSplit(const Vecs<uint32_t, 2>& v)
{
    const Register high = reg(shiftLeft(v[1], 16));
#if RVK_AVX512
    return vec<uint16_t>(_mm512_mask_blend_epi16(0xaaaaaaaa, reg(v[0]), high));
#else
    return vec<uint16_t>(RVK_MM(blend_epi16)(reg(v[0]), high, 0xaa));
#endif
}

// Both in the order of memory.
template <class T> RVK_INLINE Vecs<T, 2> orderSplit(const Vecs<T, 2>& v) { return interleave(v); }

// ---- scattered memory -----------------------------------------------------------------------------------------------

#if defined(__AVX2__)

constexpr size_t kGatherReach = 4;

// The 32 bits at p + offset; offsets are below 2^31.
RVK_INLINE Vec<uint32_t> gatherWords(const uint8_t* p, Vec<uint32_t> offset)
{
    // Lanes whose mask is not set stay as they are. All are set, but the processor waits for what the register had
    // before: so it gets zeros, of a mask that compilers do not know, or they would leave them out.
    const Register none = reg(zero<uint32_t>());
#if RVK_AVX512
    __mmask16 all = 0xffff;
    __asm__("" : "+Yk"(all));
    return vec<uint32_t>(_mm512_mask_i32gather_epi32(none, all, reg(offset), p, 1));
#else
    Register all = reg(splat(UINT32_MAX));
    __asm__("" : "+x"(all));
    return vec<uint32_t>(_mm256_mask_i32gather_epi32(none, reinterpret_cast<const int*>(p), reg(offset), all, 1));
#endif
}

// The two bytes at p + offset, as loaded.
RVK_INLINE Vec<uint16_t> gatherPairs(const uint8_t* p, const Vecs<uint32_t, 2>& offsets)
{
    return joinSplit(Vecs<uint32_t, 2>{gatherWords(p, offsets[0]), gatherWords(p, offsets[1])});
}

// The byte at p + offset.
RVK_INLINE Vec<uint16_t> gatherBytes(const uint8_t* p, const Vecs<uint32_t, 2>& offsets)
{
    return gatherPairs(p, offsets) & splat<uint16_t>(255);
}

#else

constexpr size_t kGatherReach = 2;

RVK_INLINE Vec<uint32_t> gatherWords(const uint8_t* p, Vec<uint32_t> offset)
{
    Vec<uint32_t> r;
    unrolled<4>([&](auto i) RVK_INLINE_LAMBDA {
        constexpr size_t lane = i;
        uint32_t word;
        __builtin_memcpy(&word, p + offset.raw[lane], sizeof word);
        r.raw[lane] = word;
    });
    return r;
}

RVK_INLINE Vec<uint16_t> gatherPairs(const uint8_t* p, const Vecs<uint32_t, 2>& offsets)
{
    Vec<uint16_t> r;
    unrolled<8>([&](auto i) RVK_INLINE_LAMBDA {
        constexpr size_t lane = i;
        uint16_t pair;
        __builtin_memcpy(&pair, p + offsets[lane % 2].raw[lane / 2], sizeof pair);
        r.raw[lane] = pair;
    });
    return r;
}

RVK_INLINE Vec<uint16_t> gatherBytes(const uint8_t* p, const Vecs<uint32_t, 2>& offsets)
{
    Vec<uint16_t> r;
    unrolled<8>([&](auto i) RVK_INLINE_LAMBDA {
        constexpr size_t lane = i;
        r.raw[lane] = p[offsets[lane % 2].raw[lane / 2]];
    });
    return r;
}

#endif

// A register of blocks.
RVK_INLINE Register joinBlocks(const __m128i (&blocks)[kBytes / 16])
{
#if RVK_AVX512
    const __m256i low = _mm256_inserti128_si256(_mm256_castsi128_si256(blocks[0]), blocks[1], 1);
    const __m256i high = _mm256_inserti128_si256(_mm256_castsi128_si256(blocks[2]), blocks[3], 1);
    return _mm512_inserti64x4(_mm512_castsi256_si512(low), high, 1);
#elif defined(__AVX2__)
    return _mm256_inserti128_si256(_mm256_castsi128_si256(blocks[0]), blocks[1], 1);
#else
    return blocks[0];
#endif
}

// The place of element i where two split vectors are stored one after the other.
constexpr size_t placeOfSplit(size_t i) { return i % 2 * Vec<uint32_t>::lanes + i / 2; }

// The 32 bits at p + each of the offsets that store() made of split vectors, in the order of memory.
RVK_INLINE Vecs<uint32_t, 2> loadEach4(const uint8_t* p, const uint32_t* splitOffsets)
{
    const auto at = [=](size_t i) RVK_INLINE_LAMBDA {
        int word;
        __builtin_memcpy(&word, p + splitOffsets[placeOfSplit(i)], sizeof word);
        return word;
    };
    const auto block = [=](size_t i) RVK_INLINE_LAMBDA {
        const __m128i two = _mm_insert_epi32(_mm_cvtsi32_si128(at(i)), at(i + 1), 1);
        return _mm_insert_epi32(_mm_insert_epi32(two, at(i + 2), 2), at(i + 3), 3);
    };
    Vecs<uint32_t, 2> r;
    unrolled<2>([&](auto n) RVK_INLINE_LAMBDA {
        __m128i blocks[kBytes / 16];
        for (size_t b = 0; b < kBytes / 16; ++b)
            blocks[b] = block(n * Vec<uint32_t>::lanes + 4 * b);
        r[n] = vec<uint32_t>(joinBlocks(blocks));
    });
    return r;
}

// The 64 bits there: vector n of four, in the order of a vector of as many elements that was widened in lanes twice.
template <size_t n>
RVK_INLINE Vec<uint64_t> loadEach8InLanes(const uint8_t* p, const uint32_t* splitOffsets)
{
    const auto at = [=](size_t i) RVK_INLINE_LAMBDA { return p + splitOffsets[placeOfSplit(i)]; };
    __m128i blocks[kBytes / 16];
    for (size_t b = 0; b < kBytes / 16; ++b) {
        const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(at(8 * b + 2 * n)));
        const auto* const high = reinterpret_cast<const __m64*>(at(8 * b + 2 * n + 1));
        blocks[b] = _mm_castps_si128(_mm_loadh_pi(_mm_castsi128_ps(low), high));
    }
    return anyVector(vec<uint64_t>(joinBlocks(blocks))); // or clang merges the last step with shuffles that follow
}

// ---- neighbours -----------------------------------------------------------------------------------------------------

// The sums of neighbours, and those added to acc.
RVK_INLINE Vec<uint16_t> addNeighbours(Vec<uint8_t> v) { return bitCast<uint16_t>(dotPairs(v, splat<int8_t>(1))); }
RVK_INLINE Vec<uint16_t> addNeighboursTo(Vec<uint16_t> acc, Vec<uint8_t> v) { return acc + addNeighbours(v); }

// The second of each two neighbours taken from the first one.
RVK_INLINE Vec<int16_t> subtractNeighbours(Vec<uint8_t> v)
{
    return dotPairs(v, bitCast<int8_t>(splat<uint16_t>(0xff01))); // 1, -1
}

#if RVK_AVX512
// a, but b, its bytes in this order in each block of 16, where the mask has ones. (With a mask that it knows, clang would
// shuffle both, which takes three operations.)
RVK_INLINE Register replaceBytes(Register a, __mmask64 mask, Register b, __m128i order)
{
    __asm__("" : "+Yk"(mask));
    return _mm512_mask_shuffle_epi8(a, mask, b, _mm512_broadcast_i32x4(order));
}
#endif

// The upper halves of even0 odd0 even1 odd1 ...
RVK_INLINE Vec<uint8_t> joinUpperHalves(Vec<int16_t> even, Vec<int16_t> odd)
{
#if RVK_AVX512
    const __m128i order = _mm_setr_epi8(1, 0, 3, 0, 5, 0, 7, 0, 9, 0, 11, 0, 13, 0, 15, 0);
    return vec<uint8_t>(replaceBytes(reg(odd), 0x5555555555555555, reg(even), order));
#else
    return bitCast<uint8_t>(shiftRight(bitCast<uint16_t>(even), 8) |
                            (bitCast<uint16_t>(odd) & splat<uint16_t>(0xff00)));
#endif
}

RVK_INLINE Vec<int16_t> joinUpperHalves(Vec<int32_t> even, Vec<int32_t> odd)
{
#if RVK_AVX512
    const __m128i order = _mm_setr_epi8(2, 3, 0, 0, 6, 7, 0, 0, 10, 11, 0, 0, 14, 15, 0, 0);
    return vec<int16_t>(replaceBytes(reg(odd), 0x3333333333333333, reg(even), order));
#else
    return bitCast<int16_t>(shiftRight(bitCast<uint32_t>(even), 16) |
                            (bitCast<uint32_t>(odd) & splat<uint32_t>(0xffff0000)));
#endif
}

// Those of a followed by b, elements below 2^15, in the order of narrowSatInLanes.
RVK_INLINE Vec<uint16_t> addNeighboursInLanes(Vec<uint16_t> a, Vec<uint16_t> b)
{
    const Vec<int16_t> one = splat<int16_t>(1);
    return narrowSatInLanes<uint16_t>(
        Vecs<int32_t, 2>{dotPairs(bitCast<int16_t>(a), one), dotPairs(bitCast<int16_t>(b), one)});
}

// The rounded means of the bytes of each even element of T and those of the next, without gaps between them.
template <class T>
RVK_INLINE Vec<uint8_t> meansOfNeighbours(const Vecs<uint8_t, 2>& row)
{
    using W = Wider<T>;
    const auto means = [](Vec<uint8_t> v) RVK_INLINE_LAMBDA {
        return bitCast<W>(average(v, bitCast<uint8_t>(shiftRight(bitCast<W>(v), 8 * sizeof(T)))));
    };
    return bitCast<uint8_t>(narrowSpread(Vecs<W, 2>{means(row[0]), means(row[1])}));
}

// The sums of the same.
template <class T>
RVK_INLINE Vec<int16_t> sumsOfNeighbours(Vec<uint8_t> v)
{
    if constexpr (sizeof(T) == 2)
        v = shuffle(v, v, [](size_t i) { return i / 4 * 4 + i % 2 * 2 + i % 4 / 2; });
    return dotPairs(v, splat<int8_t>(1));
}

// And of two rows.
template <class T>
RVK_INLINE Vec<uint8_t> meansOfNeighbours(const Vecs<uint8_t, 2>& row1, const Vecs<uint8_t, 2>& row2)
{
    const auto means = [](Vec<uint8_t> a, Vec<uint8_t> b) RVK_INLINE_LAMBDA {
        const Vec<int16_t> sums = sumsOfNeighbours<T>(a) + sumsOfNeighbours<T>(b);
        return bitCast<uint16_t>(shiftRight(sums + splat<int16_t>(2), 2));
    };
    return narrowSpread(Vecs<uint16_t, 2>{means(row1[0], row2[0]), means(row1[1], row2[1])});
}

template <class T, class... Byte>
RVK_INLINE Vec<uint8_t> loadMeans(const Byte*... row)
{
    return meansOfNeighbours<T>(loadSpread<2>(row)...);
}

template <size_t first>
RVK_INLINE Vecs<uint8_t, 2> twoFrom(const Vecs<uint8_t, 4>& v)
{
    return {v[first], v[first + 1]};
}

template <class... Byte>
RVK_INLINE Vecs<uint8_t, 2> load2Means(const Byte*... row)
{
    const auto means = [](const auto&... m) RVK_INLINE_LAMBDA {
        return Vecs<uint16_t, 2>{bitCast<uint16_t>(meansOfNeighbours<uint16_t>(twoFrom<0>(m)...)),
                                 bitCast<uint16_t>(meansOfNeighbours<uint16_t>(twoFrom<2>(m)...))};
    };
    const Vecs<uint16_t, 2> pairs = means(loadSpread<4>(row)...);
    return {narrowSpread(pairs), narrowSpread(Vecs<uint16_t, 2>{shiftRight(pairs[0], 8), shiftRight(pairs[1], 8)})};
}

template <class T>
RVK_INLINE void storeTwice(uint8_t* p, Vec<uint8_t> v)
{
    store(p, inOrder(bitCast<uint8_t>(zipSpread(bitCast<T>(v), bitCast<T>(v)))));
}

RVK_INLINE void store2Twice(uint8_t* p, const Vecs<uint8_t, 2>& v)
{
    const Vecs<uint16_t, 2> pairs = bitCast<uint16_t>(zipSpread(v[0], v[1]));
    const Vecs<uint8_t, 2> low = bitCast<uint8_t>(zipSpread(pairs[0], pairs[0]));
    const Vecs<uint8_t, 2> high = bitCast<uint8_t>(zipSpread(pairs[1], pairs[1]));
    store(p, inOrder(Vecs<uint8_t, 4>{low[0], low[1], high[0], high[1]}));
}

// ---- copies of what is too large for the caches ---------------------------------------------------------------------

constexpr bool kWritesPastCaches = true;

// Whether they are better for so many bytes. Other stores have lines read before they are written, from where they are:
// Intel's processors hold few of them near, AMD's a third of what their third-level caches have room for.
RVK_INLINE bool pastCachesIsFaster(uint64_t bytes)
{
    constexpr uint64_t mebibyte = 1 << 20;
    return bytes >= (__builtin_cpu_is("amd") ? 12 : 3) * mebibyte;
}

// To an address of whole registers, without a look at what was there. finishWritesPastCaches comes after the last one.
RVK_INLINE void storePastCaches(uint8_t* p, Vec<uint8_t> v)
{
#if RVK_AVX512
    _mm512_stream_si512(reinterpret_cast<Register*>(p), reg(v));
#elif defined(__AVX2__)
    _mm256_stream_si256(reinterpret_cast<Register*>(p), reg(v));
#else
    _mm_stream_si128(reinterpret_cast<Register*>(p), reg(v));
#endif
}

// As store2, store3, store4, to such an address.
template <size_t count>
RVK_INLINE void storeInterleavedPastCaches(uint8_t* p, const Vecs<uint8_t, count>& channels)
{
    const Vecs<uint8_t, count> v = interleave(channels);
    unrolled<count>([&](auto i) RVK_INLINE_LAMBDA { storePastCaches(p + i * kBytes, v[i]); });
}

RVK_INLINE void finishWritesPastCaches() { _mm_sfence(); }

RVK_INLINE void copyPastCaches(const uint8_t* from, uint8_t* to, size_t n)
{
    constexpr size_t line = 64; // written past the caches as a whole
    const size_t ahead = -reinterpret_cast<uintptr_t>(to) % line, head = ahead < n ? ahead : n;
    const size_t body = (n - head) / line * line;
    __builtin_memcpy(to, from, head);
    for (size_t i = head; i < head + body; i += kBytes)
        storePastCaches(to + i, load(from + i));
    __builtin_memcpy(to + head + body, from + head + body, n - head - body);
}

} // namespace
} // namespace rvk::vecta::RVK_ISA
