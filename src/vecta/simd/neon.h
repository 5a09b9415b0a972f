// The NEON back end: 32-bit Arm and AArch64.
//
// On 32-bit Arm, NEON flushes subnormal floats to zero, in operands and in results, and so do the float operations
// here, except divide and squareRoot, which NEON lacks there and the scalar unit does, lane by lane.
#pragma once

// Operations stand in columns here, a line each.
// clang-format off

#include "vecta/simd/core.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// The intrinsics' own type of a vector.
RVK_INLINE uint8x16_t reg(Vec<uint8_t> v) { return (uint8x16_t)v.raw; }
RVK_INLINE int8x16_t reg(Vec<int8_t> v) { return (int8x16_t)v.raw; }
RVK_INLINE uint16x8_t reg(Vec<uint16_t> v) { return (uint16x8_t)v.raw; }
RVK_INLINE int16x8_t reg(Vec<int16_t> v) { return (int16x8_t)v.raw; }
RVK_INLINE uint32x4_t reg(Vec<uint32_t> v) { return (uint32x4_t)v.raw; }
RVK_INLINE int32x4_t reg(Vec<int32_t> v) { return (int32x4_t)v.raw; }
RVK_INLINE uint64x2_t reg(Vec<uint64_t> v) { return (uint64x2_t)v.raw; }
RVK_INLINE int64x2_t reg(Vec<int64_t> v) { return (int64x2_t)v.raw; }
RVK_INLINE float32x4_t reg(Vec<float> v) { return (float32x4_t)v.raw; }

RVK_INLINE Vec<uint8_t> vec(uint8x16_t r) { return {(Vec<uint8_t>::Raw)r}; }
RVK_INLINE Vec<int8_t> vec(int8x16_t r) { return {(Vec<int8_t>::Raw)r}; }
RVK_INLINE Vec<uint16_t> vec(uint16x8_t r) { return {(Vec<uint16_t>::Raw)r}; }
RVK_INLINE Vec<int16_t> vec(int16x8_t r) { return {(Vec<int16_t>::Raw)r}; }
RVK_INLINE Vec<uint32_t> vec(uint32x4_t r) { return {(Vec<uint32_t>::Raw)r}; }
RVK_INLINE Vec<int32_t> vec(int32x4_t r) { return {(Vec<int32_t>::Raw)r}; }
RVK_INLINE Vec<uint64_t> vec(uint64x2_t r) { return {(Vec<uint64_t>::Raw)r}; }
RVK_INLINE Vec<int64_t> vec(int64x2_t r) { return {(Vec<int64_t>::Raw)r}; }
RVK_INLINE Vec<float> vec(float32x4_t r) { return {(Vec<float>::Raw)r}; }

// ---- element-wise operations ----------------------------------------------------------------------------------------

RVK_INLINE Vec<uint8_t> min(Vec<uint8_t> a, Vec<uint8_t> b) { return vec(vminq_u8(reg(a), reg(b))); }
RVK_INLINE Vec<int8_t> min(Vec<int8_t> a, Vec<int8_t> b) { return vec(vminq_s8(reg(a), reg(b))); }
RVK_INLINE Vec<uint16_t> min(Vec<uint16_t> a, Vec<uint16_t> b) { return vec(vminq_u16(reg(a), reg(b))); }
RVK_INLINE Vec<int16_t> min(Vec<int16_t> a, Vec<int16_t> b) { return vec(vminq_s16(reg(a), reg(b))); }
RVK_INLINE Vec<uint32_t> min(Vec<uint32_t> a, Vec<uint32_t> b) { return vec(vminq_u32(reg(a), reg(b))); }
RVK_INLINE Vec<int32_t> min(Vec<int32_t> a, Vec<int32_t> b) { return vec(vminq_s32(reg(a), reg(b))); }

RVK_INLINE Vec<uint8_t> max(Vec<uint8_t> a, Vec<uint8_t> b) { return vec(vmaxq_u8(reg(a), reg(b))); }
RVK_INLINE Vec<int8_t> max(Vec<int8_t> a, Vec<int8_t> b) { return vec(vmaxq_s8(reg(a), reg(b))); }
RVK_INLINE Vec<uint16_t> max(Vec<uint16_t> a, Vec<uint16_t> b) { return vec(vmaxq_u16(reg(a), reg(b))); }
RVK_INLINE Vec<int16_t> max(Vec<int16_t> a, Vec<int16_t> b) { return vec(vmaxq_s16(reg(a), reg(b))); }
RVK_INLINE Vec<uint32_t> max(Vec<uint32_t> a, Vec<uint32_t> b) { return vec(vmaxq_u32(reg(a), reg(b))); }
RVK_INLINE Vec<int32_t> max(Vec<int32_t> a, Vec<int32_t> b) { return vec(vmaxq_s32(reg(a), reg(b))); }

RVK_INLINE Vec<uint8_t> addSat(Vec<uint8_t> a, Vec<uint8_t> b) { return vec(vqaddq_u8(reg(a), reg(b))); }
RVK_INLINE Vec<int8_t> addSat(Vec<int8_t> a, Vec<int8_t> b) { return vec(vqaddq_s8(reg(a), reg(b))); }
RVK_INLINE Vec<uint16_t> addSat(Vec<uint16_t> a, Vec<uint16_t> b) { return vec(vqaddq_u16(reg(a), reg(b))); }
RVK_INLINE Vec<int16_t> addSat(Vec<int16_t> a, Vec<int16_t> b) { return vec(vqaddq_s16(reg(a), reg(b))); }

RVK_INLINE Vec<uint8_t> subSat(Vec<uint8_t> a, Vec<uint8_t> b) { return vec(vqsubq_u8(reg(a), reg(b))); }
RVK_INLINE Vec<int8_t> subSat(Vec<int8_t> a, Vec<int8_t> b) { return vec(vqsubq_s8(reg(a), reg(b))); }
RVK_INLINE Vec<uint16_t> subSat(Vec<uint16_t> a, Vec<uint16_t> b) { return vec(vqsubq_u16(reg(a), reg(b))); }
RVK_INLINE Vec<int16_t> subSat(Vec<int16_t> a, Vec<int16_t> b) { return vec(vqsubq_s16(reg(a), reg(b))); }

RVK_INLINE Vec<uint8_t> average(Vec<uint8_t> a, Vec<uint8_t> b) { return vec(vrhaddq_u8(reg(a), reg(b))); }
RVK_INLINE Vec<uint16_t> average(Vec<uint16_t> a, Vec<uint16_t> b) { return vec(vrhaddq_u16(reg(a), reg(b))); }

// (a - b) >> 1.
RVK_INLINE Vec<int8_t> halfDifference(Vec<uint8_t> a, Vec<uint8_t> b)
{
    return bitCast<int8_t>(vec(vhsubq_u8(reg(a), reg(b))));
}

// (a + b) >> 1, where the sum may have a bit more.
RVK_INLINE Vec<int16_t> halfSum(Vec<int16_t> a, Vec<int16_t> b) { return vec(vhaddq_s16(reg(a), reg(b))); }

RVK_INLINE Vec<uint8_t> absDiff(Vec<uint8_t> a, Vec<uint8_t> b) { return vec(vabdq_u8(reg(a), reg(b))); }
RVK_INLINE Vec<int8_t> absDiff(Vec<int8_t> a, Vec<int8_t> b) { return vec(vabdq_s8(reg(a), reg(b))); }
RVK_INLINE Vec<uint16_t> absDiff(Vec<uint16_t> a, Vec<uint16_t> b) { return vec(vabdq_u16(reg(a), reg(b))); }
RVK_INLINE Vec<int16_t> absDiff(Vec<int16_t> a, Vec<int16_t> b) { return vec(vabdq_s16(reg(a), reg(b))); }
RVK_INLINE Vec<uint32_t> absDiff(Vec<uint32_t> a, Vec<uint32_t> b) { return vec(vabdq_u32(reg(a), reg(b))); }

RVK_INLINE Vec<int8_t> abs(Vec<int8_t> a) { return vec(vabsq_s8(reg(a))); }
RVK_INLINE Vec<int16_t> abs(Vec<int16_t> a) { return vec(vabsq_s16(reg(a))); }
RVK_INLINE Vec<int32_t> abs(Vec<int32_t> a) { return vec(vabsq_s32(reg(a))); }
RVK_INLINE Vec<uint8_t> countBits(Vec<uint8_t> a) { return vec(vcntq_u8(reg(a))); }

// |a - b| where a - b fits 16 bits.
RVK_INLINE Vec<int16_t> distance(Vec<int16_t> a, Vec<int16_t> b) { return absDiff(a, b); }

// The upper n bits of a, then the upper bits of b.
template <unsigned n>
RVK_INLINE Vec<uint8_t> joinBits(Vec<uint8_t> a, Vec<uint8_t> b)
{
    return vec(vsriq_n_u8(reg(a), reg(b), n));
}

// The lower bytes of the elements.
RVK_INLINE void storeLowBytes(uint8_t* p, Vec<uint16_t> v)
{
    vst1_u8(p, vmovn_u16(reg(v)));
}

// ---- comparison and selection ---------------------------------------------------------------------------------------

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

#if defined(__aarch64__) || defined(__clang__)
RVK_INLINE Mask<float> equal(Vec<float> a, Vec<float> b) { return {vec(vceqq_f32(reg(a), reg(b)))}; }
RVK_INLINE Mask<float> greater(Vec<float> a, Vec<float> b) { return {vec(vcgtq_f32(reg(a), reg(b)))}; }
#else // g++ takes these intrinsics for plain comparisons, and does those lane by lane to keep subnormals
RVK_INLINE Mask<float> equal(Vec<float> a, Vec<float> b)
{
    uint32x4_t r;
    __asm__("vceq.f32 %q0, %q1, %q2" : "=w"(r) : "w"(a.raw), "w"(b.raw));
    return {vec(r)};
}

RVK_INLINE Mask<float> greater(Vec<float> a, Vec<float> b)
{
    uint32x4_t r;
    __asm__("vcgt.f32 %q0, %q1, %q2" : "=w"(r) : "w"(a.raw), "w"(b.raw));
    return {vec(r)};
}
#endif

template <class T>
RVK_INLINE Mask<T> less(Vec<T> a, Vec<T> b)
{
    return greater(b, a);
}

template <class T>
RVK_INLINE Vec<T> select(Mask<T> m, Vec<T> a, Vec<T> b)
{
    return bitCast<T>(vec(vbslq_u8(reg(bitCast<uint8_t>(m.bits)), reg(bitCast<uint8_t>(a)), reg(bitCast<uint8_t>(b)))));
}

// Four bits per byte of the register.
template <class T>
RVK_INLINE uint64_t nibbles(Mask<T> m)
{
    return vget_lane_u64(vreinterpret_u64_u8(vshrn_n_u16(reg(bitCast<uint16_t>(m.bits)), 4)), 0);
}

template <class T> RVK_INLINE bool any(Mask<T> m) { return nibbles(m) != 0; }
template <class T> RVK_INLINE bool all(Mask<T> m) { return nibbles(m) == UINT64_MAX; }
template <class T> RVK_INLINE size_t firstTrue(Mask<T> m)
{
    return static_cast<size_t>(__builtin_ctzll(nibbles(m))) / (4 * sizeof(T));
}

RVK_INLINE uint32_t laneBits(Mask<uint8_t> m)
{
    static constexpr uint8_t kBits[16] = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
    const uint8x16_t bits = vandq_u8(reg(m.bits), vld1q_u8(kBits));
    uint8x8_t sums = vpadd_u8(vget_low_u8(bits), vget_high_u8(bits));
    sums = vpadd_u8(sums, sums);
    sums = vpadd_u8(sums, sums);
    return vget_lane_u16(vreinterpret_u16_u8(sums), 0);
}

// b < a ? b : a, and a < b ? b : a: the first operand when the two are equal or one is not a number.
RVK_INLINE Vec<float> min(Vec<float> a, Vec<float> b) { return select(less(b, a), b, a); }
RVK_INLINE Vec<float> max(Vec<float> a, Vec<float> b) { return select(less(a, b), b, a); }

// ---- floats ---------------------------------------------------------------------------------------------------------

RVK_INLINE Vec<float> toFloat(Vec<int32_t> v) { return vec(vcvtq_f32_s32(reg(v))); }
RVK_INLINE Vec<float> toFloat(Vec<uint32_t> v) { return toFloat(bitCast<int32_t>(v)); }
RVK_INLINE Vec<int32_t> truncateToInt(Vec<float> v) { return vec(vcvtq_s32_f32(reg(v))); }
template <unsigned bits> RVK_INLINE Vec<int32_t> toFixed(Vec<float> v) { return vec(vcvtq_n_s32_f32(reg(v), bits)); }

// a * b + c, rounded once or twice.
RVK_INLINE Vec<float> multiplyAdd(Vec<float> a, Vec<float> b, Vec<float> c)
{
#if defined(__aarch64__)
    return vec(vfmaq_f32(reg(c), reg(a), reg(b)));
#else
    return vec(vmlaq_f32(reg(c), reg(a), reg(b)));
#endif
}

// 1 / v of a positive number with a relative error below 2^-7, and its root with one below 2^-19: each instruction set
// gives bits of its own.
RVK_INLINE Vec<float> guessReciprocal(Vec<float> v) { return vec(vrecpeq_f32(reg(v))); }

// The same within 2^-20, by two of Newton's steps.
RVK_INLINE Vec<float> closeReciprocal(Vec<float> v)
{
    float32x4_t r = vrecpeq_f32(reg(v));
    r = vmulq_f32(r, vrecpsq_f32(reg(v), r));
    return vec(vmulq_f32(r, vrecpsq_f32(reg(v), r)));
}

#if defined(__aarch64__)

RVK_INLINE Vec<float> guessSquareRoot(Vec<float> v) { return vec(vsqrtq_f32(reg(v))); }
RVK_INLINE Vec<float> divide(Vec<float> a, Vec<float> b) { return vec(vdivq_f32(reg(a), reg(b))); }
RVK_INLINE Vec<float> squareRoot(Vec<float> a) { return vec(vsqrtq_f32(reg(a))); }
RVK_INLINE Vec<int32_t> roundToInt(Vec<float> v) { return vec(vcvtnq_s32_f32(reg(v))); }

#else

// An instruction's guess of the reciprocal root, good to 7 bits, and two of Newton's steps.
RVK_INLINE Vec<float> guessSquareRoot(Vec<float> v)
{
    float32x4_t r = vrsqrteq_f32(reg(v));
    r = vmulq_f32(r, vrsqrtsq_f32(vmulq_f32(reg(v), r), r));
    r = vmulq_f32(r, vrsqrtsq_f32(vmulq_f32(reg(v), r), r));
    return vec(vmulq_f32(reg(v), r));
}

RVK_INLINE Vec<float> divide(Vec<float> a, Vec<float> b)
{
    Vec<float> r;
    for (size_t i = 0; i < 4; ++i)
        r.raw[i] = a.raw[i] / b.raw[i];
    return r;
}

RVK_INLINE Vec<float> squareRoot(Vec<float> a)
{
    Vec<float> r;
    for (size_t i = 0; i < 4; ++i) {
        float lane; // sqrtf would set errno
        __asm__("vsqrt.f32 %0, %1" : "=t"(lane) : "t"(static_cast<float>(a.raw[i])));
        r.raw[i] = lane;
    }
    return r;
}

// Adding 2^23 to a smaller number leaves no bits for a fraction: the sum is rounded to the nearest even integer.
RVK_INLINE Vec<int32_t> roundToInt(Vec<float> v)
{
    const Vec<float> big = splat(8388608.0f);
    const Vec<uint32_t> sign = bitCast<uint32_t>(v) & splat(0x80000000u);
    const Vec<float> magnitude = bitCast<float>(bitCast<uint32_t>(v) ^ sign);
    const Vec<float> rounded = (magnitude + big) - big;
    const Vec<float> whole = select(less(magnitude, big), rounded, magnitude);
    return truncateToInt(bitCast<float>(bitCast<uint32_t>(whole) | sign));
}

#endif

// ---- wider and narrower elements ------------------------------------------------------------------------------------

RVK_INLINE uint8x8_t lowHalf(Vec<uint8_t> v) { return vget_low_u8(reg(v)); }
RVK_INLINE int8x8_t lowHalf(Vec<int8_t> v) { return vget_low_s8(reg(v)); }
RVK_INLINE uint16x4_t lowHalf(Vec<uint16_t> v) { return vget_low_u16(reg(v)); }
RVK_INLINE int16x4_t lowHalf(Vec<int16_t> v) { return vget_low_s16(reg(v)); }
RVK_INLINE uint32x2_t lowHalf(Vec<uint32_t> v) { return vget_low_u32(reg(v)); }
RVK_INLINE int32x2_t lowHalf(Vec<int32_t> v) { return vget_low_s32(reg(v)); }
RVK_INLINE float32x2_t lowHalf(Vec<float> v) { return vget_low_f32(reg(v)); }

RVK_INLINE uint8x8_t highHalf(Vec<uint8_t> v) { return vget_high_u8(reg(v)); }
RVK_INLINE int8x8_t highHalf(Vec<int8_t> v) { return vget_high_s8(reg(v)); }
RVK_INLINE uint16x4_t highHalf(Vec<uint16_t> v) { return vget_high_u16(reg(v)); }
RVK_INLINE int16x4_t highHalf(Vec<int16_t> v) { return vget_high_s16(reg(v)); }
RVK_INLINE uint32x2_t highHalf(Vec<uint32_t> v) { return vget_high_u32(reg(v)); }
RVK_INLINE int32x2_t highHalf(Vec<int32_t> v) { return vget_high_s32(reg(v)); }
RVK_INLINE float32x2_t highHalf(Vec<float> v) { return vget_high_f32(reg(v)); }

RVK_INLINE Vec<uint8_t> join(uint8x8_t low, uint8x8_t high) { return vec(vcombine_u8(low, high)); }
RVK_INLINE Vec<int8_t> join(int8x8_t low, int8x8_t high) { return vec(vcombine_s8(low, high)); }
RVK_INLINE Vec<uint16_t> join(uint16x4_t low, uint16x4_t high) { return vec(vcombine_u16(low, high)); }
RVK_INLINE Vec<int16_t> join(int16x4_t low, int16x4_t high) { return vec(vcombine_s16(low, high)); }
RVK_INLINE Vec<uint32_t> join(uint32x2_t low, uint32x2_t high) { return vec(vcombine_u32(low, high)); }
RVK_INLINE Vec<int32_t> join(int32x2_t low, int32x2_t high) { return vec(vcombine_s32(low, high)); }
RVK_INLINE Vec<float> join(float32x2_t low, float32x2_t high) { return vec(vcombine_f32(low, high)); }

RVK_INLINE uint16x8_t widenHalf(uint8x8_t v) { return vmovl_u8(v); }
RVK_INLINE int16x8_t widenHalf(int8x8_t v) { return vmovl_s8(v); }
RVK_INLINE uint32x4_t widenHalf(uint16x4_t v) { return vmovl_u16(v); }
RVK_INLINE int32x4_t widenHalf(int16x4_t v) { return vmovl_s16(v); }
RVK_INLINE uint64x2_t widenHalf(uint32x2_t v) { return vmovl_u32(v); }
RVK_INLINE int64x2_t widenHalf(int32x2_t v) { return vmovl_s32(v); }

template <class T>
RVK_INLINE Vecs<Wider<T>, 2> widen(Vec<T> v)
{
    return {vec(widenHalf(lowHalf(v))), vec(widenHalf(highHalf(v)))};
}

// Half a register's worth of elements. (clang 14 moves 8 bytes of memory that may be unaligned through the stack.)
#if defined(__clang__) && !defined(__aarch64__)
template <class T>
RVK_INLINE auto loadHalf(const T* p)
{
    decltype(lowHalf(Vec<T>{})) half;
    __asm__("vld1.8 {%P0}, %1" : "=w"(half) : "Q"(*reinterpret_cast<const char(*)[8]>(p)));
    return half;
}
#else
RVK_INLINE uint8x8_t loadHalf(const uint8_t* p) { return vld1_u8(p); }
RVK_INLINE int8x8_t loadHalf(const int8_t* p) { return vld1_s8(p); }
RVK_INLINE uint16x4_t loadHalf(const uint16_t* p) { return vld1_u16(p); }
RVK_INLINE int16x4_t loadHalf(const int16_t* p) { return vld1_s16(p); }
RVK_INLINE uint32x2_t loadHalf(const uint32_t* p) { return vld1_u32(p); }
RVK_INLINE int32x2_t loadHalf(const int32_t* p) { return vld1_s32(p); }
#endif

template <class T>
RVK_INLINE void prefetch(const T*, size_t)
{
}

// As many elements from p as a vector of To has lanes, each made two or four times as wide.
template <class To, class T>
    requires(isSame<To, Wider<T>>)
RVK_INLINE Vec<To> loadWiden(const T* p)
{
    return vec(widenHalf(loadHalf(p)));
}

template <class To, class T>
    requires(sizeof(To) == 4 && sizeof(T) == 1 && isSigned<To> == isSigned<T>)
RVK_INLINE Vec<To> loadWiden(const T* p)
{
    uint32_t four;
    __builtin_memcpy(&four, p, sizeof four);
    const auto bytes = bitCast<T>(vec(vdupq_n_u32(four)));
    return widen(widen(bytes)[0])[0];
}

template <class T>
RVK_INLINE Vecs<Wider<T>, 2> widenInLanes(Vec<T> v)
{
    return widen(v);
}

RVK_INLINE uint16x8_t addHalves(uint8x8_t a, uint8x8_t b) { return vaddl_u8(a, b); }
RVK_INLINE int16x8_t addHalves(int8x8_t a, int8x8_t b) { return vaddl_s8(a, b); }
RVK_INLINE uint32x4_t addHalves(uint16x4_t a, uint16x4_t b) { return vaddl_u16(a, b); }
RVK_INLINE int32x4_t addHalves(int16x4_t a, int16x4_t b) { return vaddl_s16(a, b); }

RVK_INLINE uint16x8_t subtractHalves(uint8x8_t a, uint8x8_t b) { return vsubl_u8(a, b); }
RVK_INLINE int16x8_t subtractHalves(int8x8_t a, int8x8_t b) { return vsubl_s8(a, b); }
RVK_INLINE uint32x4_t subtractHalves(uint16x4_t a, uint16x4_t b) { return vsubl_u16(a, b); }
RVK_INLINE int32x4_t subtractHalves(int16x4_t a, int16x4_t b) { return vsubl_s16(a, b); }

// Exact sums and differences, twice as wide; differences have a sign.
template <class T>
RVK_INLINE Vecs<Wider<T>, 2> addWide(Vec<T> a, Vec<T> b)
{
    return {vec(addHalves(lowHalf(a), lowHalf(b))), vec(addHalves(highHalf(a), highHalf(b)))};
}

template <class T>
RVK_INLINE Vecs<Signed<Wider<T>>, 2> subtractWide(Vec<T> a, Vec<T> b)
{
    using S = Signed<Wider<T>>;
    return {bitCast<S>(vec(subtractHalves(lowHalf(a), lowHalf(b)))),
            bitCast<S>(vec(subtractHalves(highHalf(a), highHalf(b))))};
}

// narrow keeps the low bits of the lanes of two vectors; narrowSat saturates them: s16 -> u8 and s8, u16 -> u8,
// s32 -> s16 and u16, u32 -> u16.
#if defined(__arm__) && !defined(__clang__)
// g++ for 32-bit Arm narrows into other registers and moves them, unless it is told both instructions.
template <class T>
RVK_INLINE Vec<Narrower<T>> narrow(Vecs<T, 2> v)
{
    uint8x16_t both;
    __asm__("vmovn.i%c3 %e0, %q1\n\tvmovn.i%c3 %f0, %q2"
            : "=&w"(both) : "w"(reg(v[0])), "w"(reg(v[1])), "i"(8 * sizeof(T)));
    return bitCast<Narrower<T>>(vec(both));
}

template <class To, class T>
RVK_INLINE Vec<To> narrowSat(Vecs<T, 2> v)
{
    static_assert(isSame<To, Narrower<T>> || isSame<To, Unsigned<Narrower<T>>>);
    uint8x16_t both;
    if constexpr (isSigned<To>)
        __asm__("vqmovn.s%c3 %e0, %q1\n\tvqmovn.s%c3 %f0, %q2"
                : "=&w"(both) : "w"(reg(v[0])), "w"(reg(v[1])), "i"(8 * sizeof(T)));
    else if constexpr (isSigned<T>)
        __asm__("vqmovun.s%c3 %e0, %q1\n\tvqmovun.s%c3 %f0, %q2"
                : "=&w"(both) : "w"(reg(v[0])), "w"(reg(v[1])), "i"(8 * sizeof(T)));
    else
        __asm__("vqmovn.u%c3 %e0, %q1\n\tvqmovn.u%c3 %f0, %q2"
                : "=&w"(both) : "w"(reg(v[0])), "w"(reg(v[1])), "i"(8 * sizeof(T)));
    return bitCast<To>(vec(both));
}
#else
RVK_INLINE uint8x8_t narrowHalf(uint16x8_t v) { return vmovn_u16(v); }
RVK_INLINE int8x8_t narrowHalf(int16x8_t v) { return vmovn_s16(v); }
RVK_INLINE uint16x4_t narrowHalf(uint32x4_t v) { return vmovn_u32(v); }
RVK_INLINE int16x4_t narrowHalf(int32x4_t v) { return vmovn_s32(v); }

RVK_INLINE uint8x8_t narrowSatHalf(uint16x8_t v) { return vqmovn_u16(v); }
RVK_INLINE int8x8_t narrowSatHalf(int16x8_t v) { return vqmovn_s16(v); }
RVK_INLINE uint16x4_t narrowSatHalf(uint32x4_t v) { return vqmovn_u32(v); }
RVK_INLINE int16x4_t narrowSatHalf(int32x4_t v) { return vqmovn_s32(v); }

RVK_INLINE uint8x8_t narrowSatHalfUnsigned(int16x8_t v) { return vqmovun_s16(v); }
RVK_INLINE uint16x4_t narrowSatHalfUnsigned(int32x4_t v) { return vqmovun_s32(v); }

template <class T>
RVK_INLINE Vec<Narrower<T>> narrow(Vecs<T, 2> v)
{
    return join(narrowHalf(reg(v[0])), narrowHalf(reg(v[1])));
}

template <class To, class T>
RVK_INLINE Vec<To> narrowSat(Vecs<T, 2> v)
{
    if constexpr (isSame<To, Narrower<T>>) {
        return join(narrowSatHalf(reg(v[0])), narrowSatHalf(reg(v[1])));
    } else {
        static_assert(isSame<To, Unsigned<Narrower<T>>>);
        return join(narrowSatHalfUnsigned(reg(v[0])), narrowSatHalfUnsigned(reg(v[1])));
    }
}
#endif

template <class T>
RVK_INLINE Vec<Narrower<T>> narrowInLanes(Vecs<T, 2> v)
{
    return narrow(v);
}

template <class To, class T>
RVK_INLINE Vec<To> narrowSatInLanes(Vecs<T, 2> v)
{
    return narrowSat<To>(v);
}

// The elements shifted right, which bytes then hold.
template <unsigned count>
RVK_INLINE Vec<uint8_t> narrowShifted(const Vecs<uint16_t, 2>& v)
{
    return join(vshrn_n_u16(reg(v[0]), count), vshrn_n_u16(reg(v[1]), count));
}
template <unsigned count>
RVK_INLINE Vec<uint8_t> narrowShiftedInLanes(const Vecs<uint16_t, 2>& v)
{
    return narrowShifted<count>(v);
}

// ---- products -------------------------------------------------------------------------------------------------------

RVK_INLINE uint16x8_t multiplyHalves(uint8x8_t a, uint8x8_t b) { return vmull_u8(a, b); }
RVK_INLINE int16x8_t multiplyHalves(int8x8_t a, int8x8_t b) { return vmull_s8(a, b); }
RVK_INLINE uint32x4_t multiplyHalves(uint16x4_t a, uint16x4_t b) { return vmull_u16(a, b); }
RVK_INLINE int32x4_t multiplyHalves(int16x4_t a, int16x4_t b) { return vmull_s16(a, b); }

template <class T>
RVK_INLINE Vecs<Wider<T>, 2> multiplyWide(Vec<T> a, Vec<T> b)
{
    return {vec(multiplyHalves(lowHalf(a), lowHalf(b))), vec(multiplyHalves(highHalf(a), highHalf(b)))};
}

template <class T>
RVK_INLINE Vecs<Wider<T>, 2> multiplyWideInLanes(Vec<T> a, Vec<T> b)
{
    return multiplyWide(a, b);
}

RVK_INLINE Vec<int16_t> multiplyHigh(Vec<int16_t> a, Vec<int16_t> b)
{
    const Vecs<int32_t, 2> p = multiplyWide(a, b);
    return join(vshrn_n_s32(reg(p[0]), 16), vshrn_n_s32(reg(p[1]), 16));
}

RVK_INLINE Vec<uint16_t> multiplyHigh(Vec<uint16_t> a, Vec<uint16_t> b)
{
    const Vecs<uint32_t, 2> p = multiplyWide(a, b);
    return join(vshrn_n_u32(reg(p[0]), 16), vshrn_n_u32(reg(p[1]), 16));
}

// (a * b + 2^15) >> 16; b is below 2^15.
RVK_INLINE Vec<uint16_t> multiplyHighRounded(Vec<uint16_t> a, Vec<uint16_t> b)
{
    const Vecs<uint32_t, 2> p = multiplyWide(a, b);
    return join(vrshrn_n_u32(reg(p[0]), 16), vrshrn_n_u32(reg(p[1]), 16));
}

// Products of neighbours, added: lane i is a[2i] * b[2i] + a[2i + 1] * b[2i + 1]; four times -32768 wraps.
RVK_INLINE Vec<int32_t> dotPairs(Vec<int16_t> a, Vec<int16_t> b)
{
    const Vecs<int32_t, 2> p = multiplyWide(a, b);
#if defined(__aarch64__)
    return vec(vpaddq_s32(reg(p[0]), reg(p[1])));
#else
    return join(vpadd_s32(lowHalf(p[0]), highHalf(p[0])), vpadd_s32(lowHalf(p[1]), highHalf(p[1])));
#endif
}

// Sums of the lower and the upper 16 bits of each element, below 2^14, by weights of at most 2^16 without their sign.
struct HalfWeights {
    Vec<int32_t> low, high;

    RVK_INLINE HalfWeights(int32_t ofLow, int32_t ofHigh) : low(splat(ofLow)), high(splat(ofHigh)) {}
};
RVK_INLINE Vec<int32_t> addWeightedHalves(Vec<int32_t> acc, Vec<uint32_t> v, const HalfWeights& weights)
{
    const Vec<int32_t> low = bitCast<int32_t>(v & splat(0xffffu)), high = bitCast<int32_t>(shiftRight(v, 16));
    return acc + low * weights.low + high * weights.high;
}

// acc + p[2i] * q[2i] + p[2i + 1] * q[2i + 1] of 8 bytes.
RVK_INLINE Vec<int32_t> addDotOfPairs(Vec<int32_t> acc, const int8_t* p, const int8_t* q)
{
    return vec(vpadalq_s16(reg(acc), vmull_s8(vld1_s8(p), vld1_s8(q))));
}

// a[0] * b[0] + a[1] * b[1], element by element, and that added to acc; sums wrap.
RVK_INLINE Vecs<int32_t, 2> addDotInLanes(Vecs<int32_t, 2> acc, const Vecs<int16_t, 2>& a, const Vecs<int16_t, 2>& b)
{
    unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
        acc = {vec(vmlal_s16(reg(acc[0]), lowHalf(a[i]), lowHalf(b[i]))),
               vec(vmlal_s16(reg(acc[1]), highHalf(a[i]), highHalf(b[i])))};
    });
    return acc;
}
RVK_INLINE Vecs<int32_t, 2> dot(const Vecs<int16_t, 2>& a, const Vecs<int16_t, 2>& b)
{
    const Vecs<int32_t, 2> p = multiplyWide(a[0], b[0]);
    return {vec(vmlal_s16(reg(p[0]), lowHalf(a[1]), lowHalf(b[1]))),
            vec(vmlal_s16(reg(p[1]), highHalf(a[1]), highHalf(b[1])))};
}

RVK_INLINE Vecs<int32_t, 2> dotInLanes(const Vecs<int16_t, 2>& a, const Vecs<int16_t, 2>& b) { return dot(a, b); }

// acc + v[0] + v[1], element by element, of elements that are not negative.
RVK_INLINE Vecs<int32_t, 2> addBothInLanes(const Vecs<int32_t, 2>& acc, const Vecs<int16_t, 2>& v)
{
    const Vec<uint16_t> sum = bitCast<uint16_t>(v[0] + v[1]);
    const Vecs<uint32_t, 2> a = bitCast<uint32_t>(acc);
    return bitCast<int32_t>(Vecs<uint32_t, 2>{vec(vaddw_u16(reg(a[0]), lowHalf(sum))),
                                              vec(vaddw_u16(reg(a[1]), highHalf(sum)))});
}

// v * factor / 2^15, rounded down; the factor is below 2^14 without its sign.
template <int16_t factor>
RVK_INLINE Vec<int16_t> multiplyQ15(Vec<int16_t> v)
{
    static_assert(-(1 << 14) < factor && factor < 1 << 14);
    return vec(vqdmulhq_n_s16(reg(v), factor));
}

// (a * b + 128) / 2^8, saturated.
RVK_INLINE Vec<uint16_t> multiplyQ8(Vec<uint16_t> a, Vec<uint16_t> b)
{
    const Vecs<uint32_t, 2> product = multiplyWide(a, b);
    return join(vqrshrn_n_u32(reg(product[0]), 8), vqrshrn_n_u32(reg(product[1]), 8));
}

// ---- rounding -------------------------------------------------------------------------------------------------------

// (a * b + 2^14) >> 15; not of -32768 twice.
RVK_INLINE Vec<int16_t> multiplyRounded(Vec<int16_t> a, Vec<int16_t> b) { return vec(vqrdmulhq_s16(reg(a), reg(b))); }

// (a * b + 2^7) >> 8.
RVK_INLINE Vec<uint8_t> multiplyRounded(Vec<uint8_t> a, Vec<uint8_t> b)
{
    const Vecs<uint16_t, 2> p = multiplyWide(a, b);
    return join(vrshrn_n_u16(reg(p[0]), 8), vrshrn_n_u16(reg(p[1]), 8));
}

// A shift count for each lane: one to the right is negative.
RVK_INLINE int16x8_t left16(unsigned n) { return vdupq_n_s16(static_cast<int16_t>(n)); }
RVK_INLINE int16x8_t right16(unsigned n) { return vdupq_n_s16(static_cast<int16_t>(-static_cast<int>(n))); }
RVK_INLINE int32x4_t right32(unsigned n) { return vdupq_n_s32(-static_cast<int>(n)); }

// (v + 2^(n - 1)) >> n, without overflow; n is at least 1.
RVK_INLINE Vec<uint16_t> shiftRightRounded(Vec<uint16_t> v, unsigned n) { return vec(vrshlq_u16(reg(v), right16(n))); }
RVK_INLINE Vec<int16_t> shiftRightRounded(Vec<int16_t> v, unsigned n) { return vec(vrshlq_s16(reg(v), right16(n))); }
RVK_INLINE Vec<int32_t> shiftRightRounded(Vec<int32_t> v, unsigned n) { return vec(vrshlq_s32(reg(v), right32(n))); }

// v << n, or the end of the range beyond which that lies.
RVK_INLINE Vec<uint16_t> shiftLeftSat(Vec<uint16_t> v, unsigned n) { return vec(vqshlq_u16(reg(v), left16(n))); }
RVK_INLINE Vec<int16_t> shiftLeftSat(Vec<int16_t> v, unsigned n) { return vec(vqshlq_s16(reg(v), left16(n))); }

// narrowSatInLanes of shiftRightRounded.
template <class To, unsigned count, class T>
RVK_INLINE Vec<To> narrowRoundedInLanes(const Vecs<T, 2>& v)
{
    static_assert(sizeof(To) * 2 == sizeof(T));
    if constexpr (isSame<T, uint16_t>)
        return join(vqrshrn_n_u16(reg(v[0]), count), vqrshrn_n_u16(reg(v[1]), count));
    else if constexpr (isSame<T, int16_t>)
        return join(vqrshrun_n_s16(reg(v[0]), count), vqrshrun_n_s16(reg(v[1]), count));
    else if constexpr (isSame<To, int16_t>)
        return join(vqrshrn_n_s32(reg(v[0]), count), vqrshrn_n_s32(reg(v[1]), count));
    else
        return join(vqrshrun_n_s32(reg(v[0]), count), vqrshrun_n_s32(reg(v[1]), count));
}

template <class To, unsigned count, class T>
RVK_INLINE Vec<To> narrowRounded(const Vecs<T, 2>& v)
{
    return narrowRoundedInLanes<To, count>(v);
}

// shiftRightRounded of the products with a number, for counts from 1 to 29.
RVK_INLINE Vecs<int32_t, 2> multiplyAndShiftInLanes(Vec<int16_t> v, int16_t factor, unsigned count)
{
    return both(multiplyWideInLanes(v, splat(factor)),
                [=](auto half) RVK_INLINE_LAMBDA { return shiftRightRounded(half, count); });
}

// ---- weights: two numbers for all elements --------------------------------------------------------------------------

// (a * weight1 + b * weight2 + 128) >> 8 for weights from 0 to 255 that make 256 at most.
RVK_INLINE Vec<uint8_t> weightedMean(Vec<uint8_t> a, Vec<uint8_t> b, int32_t weight1, int32_t weight2)
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

// The same, clamped, for weights of 16 bits.
RVK_INLINE bool isWeightOfSums(int32_t)
{
    return true;
}

RVK_INLINE Vec<uint8_t> weightedSum(Vec<uint8_t> a, Vec<uint8_t> b, int32_t weight1, int32_t weight2)
{
    const int16x4_t factor1 = vdup_n_s16(static_cast<int16_t>(weight1));
    const int16x4_t factor2 = vdup_n_s16(static_cast<int16_t>(weight2));
    const auto quarter = [=](int16x4_t v, int16x4_t w) RVK_INLINE_LAMBDA {
        return vqrshrun_n_s32(vmlal_s16(vmull_s16(v, factor1), w, factor2), 8);
    };
    const auto half = [=](Vec<int16_t> v, Vec<int16_t> w) RVK_INLINE_LAMBDA {
        return join(quarter(lowHalf(v), lowHalf(w)), quarter(highHalf(v), highHalf(w)));
    };
    return narrowSat<uint8_t>(both(bitCast<int16_t>(widen(a)), bitCast<int16_t>(widen(b)), half));
}

// ---- tables ---------------------------------------------------------------------------------------------------------

// A table of 16 bytes, repeated in every block of the register.
RVK_INLINE Vec<uint8_t> loadTable16(const uint8_t* table)
{
    return load(table);
}

// table[index]; every index is below 16.
RVK_INLINE Vec<uint8_t> lookup16(Vec<uint8_t> table, Vec<uint8_t> index)
{
#if defined(__aarch64__)
    return vec(vqtbl1q_u8(reg(table), reg(index)));
#else
    const uint8x8x2_t t = {{lowHalf(table), highHalf(table)}};
    return join(vtbl2_u8(t, lowHalf(index)), vtbl2_u8(t, highHalf(index)));
#endif
}

#if defined(__aarch64__)

using Table32 = uint8x16x2_t;

RVK_INLINE Table32 loadTable32(const uint8_t* table)
{
    return {{vld1q_u8(table), vld1q_u8(table + 16)}};
}

// table[index]; every index is below 32.
RVK_INLINE Vec<uint8_t> lookup32(const Table32& table, Vec<uint8_t> index)
{
    return vec(vqtbl2q_u8(table, reg(index)));
}

struct Table256 {
    uint8x16x4_t quarter[4];
};

RVK_INLINE Table256 prepare(const uint8_t table[256])
{
    Table256 t;
    for (size_t i = 0; i < 4; ++i)
        t.quarter[i] = vld1q_u8_x4(table + 64 * i);
    return t;
}

// An index outside the quarter leaves the lane alone.
RVK_INLINE Vec<uint8_t> lookup(const Table256& table, Vec<uint8_t> index)
{
    uint8x16_t i = reg(index);
    uint8x16_t r = vqtbl4q_u8(table.quarter[0], i);
    for (size_t quarter = 1; quarter < 4; ++quarter) {
        i = vsubq_u8(i, vdupq_n_u8(64));
        r = vqtbx4q_u8(r, table.quarter[quarter], i);
    }
    return vec(r);
}

#else

using Table32 = uint8x8x4_t;

RVK_INLINE Table32 loadTable32(const uint8_t* table)
{
    return {{vld1_u8(table), vld1_u8(table + 8), vld1_u8(table + 16), vld1_u8(table + 24)}};
}

// table[index]; every index is below 32.
RVK_INLINE Vec<uint8_t> lookup32(const Table32& table, Vec<uint8_t> index)
{
    return join(vtbl4_u8(table, lowHalf(index)), vtbl4_u8(table, highHalf(index)));
}

struct Table256 {
    const uint8_t* table; // 256 bytes are all registers there are, so each look-up loads them again
};

RVK_INLINE Table256 prepare(const uint8_t table[256])
{
    return {table};
}

// The 32 bytes at p; p moves on to the next. (The intrinsic for it is missing in g++, and makes clang believe that p is
// aligned.)
RVK_INLINE uint8x8x4_t loadEighth(const uint8_t*& p)
{
#if defined(__clang__)
    const uint8x16_t a = vld1q_u8(p), b = vld1q_u8(p + 16);
    const uint8x8x4_t t = {{vget_low_u8(a), vget_high_u8(a), vget_low_u8(b), vget_high_u8(b)}};
    p += 32;
    __asm__ volatile("" : "+r"(p)); // or it would keep a pointer for each load
#else
    uint8x8x4_t t;
    __asm__("vld1.8 %h0, [%1]!" : "=w"(t), "+r"(p) : : "memory");
#endif
    return t;
}

// An index outside the eighth leaves the lane alone.
RVK_INLINE Vec<uint8_t> lookup(const Table256& table, Vec<uint8_t> index)
{
    const uint8_t* p = table.table;
    const uint8x8x4_t first = loadEighth(p);
    uint8x8_t low = vtbl4_u8(first, lowHalf(index)), high = vtbl4_u8(first, highHalf(index));
    unrolled<7>([&](auto) RVK_INLINE_LAMBDA {
        const uint8x8x4_t next = loadEighth(p);
        index = index - splat<uint8_t>(32);
        low = vtbx4_u8(low, next, lowHalf(index));
        high = vtbx4_u8(high, next, highHalf(index));
    });
    return join(low, high);
}

#endif

// A register of blocks of 16 bytes, each from an address of its own.
RVK_INLINE Vec<uint8_t> loadEach16(const uint8_t* const* p, ptrdiff_t offset) { return load(p[0] + offset); }

// Bytes of a row, chosen from a window of it of n * kWindow bytes, which begins at the offset.
constexpr size_t kWindow = 16;
constexpr size_t kEighthsOfWideWindow = 9; // of one of kWindow: what their pixels cost, and the loop around them
template <size_t n>
RVK_INLINE Vec<uint8_t> lookupWindows(const uint8_t* row, const uint32_t* offsets, Vec<uint8_t> indices)
{
    static_assert(n == 1 || n == 2);
    if constexpr (n == 1)
        return lookup16(load(row + offsets[0]), indices);
    else
        return lookup32(loadTable32(row + offsets[0]), indices);
}
RVK_INLINE void storeWindows(uint8_t* p, size_t, Vec<uint8_t> v) { store(p, v); }

// Set bits of a machine word, for which 32-bit Arm has no instruction outside the vector unit, and from how many bytes
// on those of vectors are counted faster.
RVK_INLINE uint32_t countBits(uint64_t word)
{
#if defined(__aarch64__)
    return static_cast<uint32_t>(__builtin_popcountll(word));
#else
    return static_cast<uint32_t>(vget_lane_u64(vpaddl_u32(vpaddl_u16(vpaddl_u8(vcnt_u8(vcreate_u8(word))))), 0));
#endif
}
constexpr size_t kCountBitsInVectorsFrom = kBytes;

// ---- sums -----------------------------------------------------------------------------------------------------------

// Adds all elements of v to the lanes of acc, whichever is convenient; sums wrap.
RVK_INLINE Vec<uint32_t> addBytesTo(Vec<uint32_t> acc, Vec<uint8_t> v)
{
    return vec(vpadalq_u16(reg(acc), vpaddlq_u8(reg(v))));
}

RVK_INLINE Vec<uint32_t> addTo(Vec<uint32_t> acc, Vec<uint16_t> v) { return vec(vpadalq_u16(reg(acc), reg(v))); }
RVK_INLINE Vec<int32_t> addNeighboursTo(Vec<int32_t> acc, Vec<int16_t> v)
{
    return vec(vpadalq_s16(reg(acc), reg(v)));
}
RVK_INLINE Vec<int32_t> addTo(Vec<int32_t> acc, Vec<int16_t> v) { return addNeighboursTo(acc, v); }
RVK_INLINE Vec<uint64_t> addTo(Vec<uint64_t> acc, Vec<uint32_t> v) { return vec(vpadalq_u32(reg(acc), reg(v))); }
RVK_INLINE Vec<int64_t> addTo(Vec<int64_t> acc, Vec<int32_t> v) { return vec(vpadalq_s32(reg(acc), reg(v))); }

// The least, the largest and the sum of all lanes; sums of 32-bit elements wrap.
#if defined(__aarch64__)
RVK_INLINE uint8_t reduceMin(Vec<uint8_t> v) { return vminvq_u8(reg(v)); }
RVK_INLINE int8_t reduceMin(Vec<int8_t> v) { return vminvq_s8(reg(v)); }
RVK_INLINE uint16_t reduceMin(Vec<uint16_t> v) { return vminvq_u16(reg(v)); }
RVK_INLINE int16_t reduceMin(Vec<int16_t> v) { return vminvq_s16(reg(v)); }
RVK_INLINE uint32_t reduceMin(Vec<uint32_t> v) { return vminvq_u32(reg(v)); }
RVK_INLINE int32_t reduceMin(Vec<int32_t> v) { return vminvq_s32(reg(v)); }

RVK_INLINE uint8_t reduceMax(Vec<uint8_t> v) { return vmaxvq_u8(reg(v)); }
RVK_INLINE int8_t reduceMax(Vec<int8_t> v) { return vmaxvq_s8(reg(v)); }
RVK_INLINE uint16_t reduceMax(Vec<uint16_t> v) { return vmaxvq_u16(reg(v)); }
RVK_INLINE int16_t reduceMax(Vec<int16_t> v) { return vmaxvq_s16(reg(v)); }
RVK_INLINE uint32_t reduceMax(Vec<uint32_t> v) { return vmaxvq_u32(reg(v)); }
RVK_INLINE int32_t reduceMax(Vec<int32_t> v) { return vmaxvq_s32(reg(v)); }
#else
RVK_INLINE uint8x8_t minPairs(uint8x8_t a, uint8x8_t b) { return vpmin_u8(a, b); }
RVK_INLINE int8x8_t minPairs(int8x8_t a, int8x8_t b) { return vpmin_s8(a, b); }
RVK_INLINE uint16x4_t minPairs(uint16x4_t a, uint16x4_t b) { return vpmin_u16(a, b); }
RVK_INLINE int16x4_t minPairs(int16x4_t a, int16x4_t b) { return vpmin_s16(a, b); }
RVK_INLINE uint32x2_t minPairs(uint32x2_t a, uint32x2_t b) { return vpmin_u32(a, b); }
RVK_INLINE int32x2_t minPairs(int32x2_t a, int32x2_t b) { return vpmin_s32(a, b); }

RVK_INLINE uint8x8_t maxPairs(uint8x8_t a, uint8x8_t b) { return vpmax_u8(a, b); }
RVK_INLINE int8x8_t maxPairs(int8x8_t a, int8x8_t b) { return vpmax_s8(a, b); }
RVK_INLINE uint16x4_t maxPairs(uint16x4_t a, uint16x4_t b) { return vpmax_u16(a, b); }
RVK_INLINE int16x4_t maxPairs(int16x4_t a, int16x4_t b) { return vpmax_s16(a, b); }
RVK_INLINE uint32x2_t maxPairs(uint32x2_t a, uint32x2_t b) { return vpmax_u32(a, b); }
RVK_INLINE int32x2_t maxPairs(int32x2_t a, int32x2_t b) { return vpmax_s32(a, b); }

RVK_INLINE uint8_t firstLane(uint8x8_t v) { return vget_lane_u8(v, 0); }
RVK_INLINE int8_t firstLane(int8x8_t v) { return vget_lane_s8(v, 0); }
RVK_INLINE uint16_t firstLane(uint16x4_t v) { return vget_lane_u16(v, 0); }
RVK_INLINE int16_t firstLane(int16x4_t v) { return vget_lane_s16(v, 0); }
RVK_INLINE uint32_t firstLane(uint32x2_t v) { return vget_lane_u32(v, 0); }
RVK_INLINE int32_t firstLane(int32x2_t v) { return vget_lane_s32(v, 0); }

// A pairwise operation halves the number of different lanes: so many more are needed after that of the two halves.
template <class T> constexpr size_t kHalvings = static_cast<size_t>(__builtin_ctz(Vec<T>::lanes)) - 1;

template <class T>
    requires(sizeof(T) <= 4 && !isSame<T, float>)
RVK_INLINE T reduceMin(Vec<T> v)
{
    auto r = minPairs(lowHalf(v), highHalf(v));
    unrolled<kHalvings<T>>([&](auto) RVK_INLINE_LAMBDA { r = minPairs(r, r); });
    return firstLane(r);
}

template <class T>
    requires(sizeof(T) <= 4 && !isSame<T, float>)
RVK_INLINE T reduceMax(Vec<T> v)
{
    auto r = maxPairs(lowHalf(v), highHalf(v));
    unrolled<kHalvings<T>>([&](auto) RVK_INLINE_LAMBDA { r = maxPairs(r, r); });
    return firstLane(r);
}
#endif

RVK_INLINE uint64_t reduceAdd(Vec<uint64_t> v) { return vgetq_lane_u64(reg(v), 0) + vgetq_lane_u64(reg(v), 1); }
RVK_INLINE int64_t reduceAdd(Vec<int64_t> v) { return static_cast<int64_t>(reduceAdd(bitCast<uint64_t>(v))); }

RVK_INLINE uint32_t reduceAdd(Vec<uint32_t> v)
{
#if defined(__aarch64__)
    return vaddvq_u32(reg(v));
#else
    const uint32x2_t pairs = vadd_u32(lowHalf(v), highHalf(v));
    return vget_lane_u32(vpadd_u32(pairs, pairs), 0);
#endif
}

RVK_INLINE int32_t reduceAdd(Vec<int32_t> v) { return static_cast<int32_t>(reduceAdd(bitCast<uint32_t>(v))); }

// Adds the products of all elements to the lanes of acc, whichever is convenient; sums wrap.
template <class T>
    requires(sizeof(T) == 1)
RVK_INLINE Vec<Wider<Wider<T>>> addPartOfDot(Vec<Wider<Wider<T>>> acc, Vec<T> a, Vec<T> b)
{
    const Vecs<Wider<T>, 2> products = multiplyWide(a, b);
    return addTo(addTo(acc, products[0]), products[1]);
}

// p[i] is the sum of the elements of v[i]; sums wrap.
template <class T>
    requires(sizeof(T) == 4 && !isSame<T, float>)
RVK_INLINE void storeSums(T* p, const Vecs<T, 4>& v)
{
    const auto halves = [&](size_t i) RVK_INLINE_LAMBDA {
        const Vec<uint32_t> w = bitCast<uint32_t>(v[i]);
        return vadd_u32(lowHalf(w), highHalf(w));
    };
    store(p, bitCast<T>(vec(vcombine_u32(vpadd_u32(halves(0), halves(1)), vpadd_u32(halves(2), halves(3))))));
}

// The sum of elements modulo 2^64.
template <class T> struct Total;

template <>
struct Total<int32_t> {
    Vec<int64_t> sums = {};

    RVK_INLINE void add(Vec<int32_t> v) { sums = addTo(sums, v); }
    RVK_INLINE int64_t value() const { return reduceAdd(sums); }
};

// ---- interleaved memory ---------------------------------------------------------------------------------------------

// The intrinsics' own types of several vectors.
template <class Regs>
RVK_INLINE auto vecs(const Regs& m)
{
    constexpr size_t count = sizeof m.val / sizeof m.val[0];
    Vecs<typename decltype(vec(m.val[0]))::Element, count> r;
    unrolled<count>([&](auto i) RVK_INLINE_LAMBDA { r[i] = vec(m.val[i]); });
    return r;
}

template <class Regs, class T, size_t count>
RVK_INLINE Regs regs(const Vecs<T, count>& v)
{
    Regs m;
    unrolled<count>([&](auto i) RVK_INLINE_LAMBDA { m.val[i] = reg(v[i]); });
    return m;
}

RVK_INLINE Vecs<uint8_t, 2> load2(const uint8_t* p) { return vecs(vld2q_u8(p)); }
RVK_INLINE Vecs<int8_t, 2> load2(const int8_t* p) { return vecs(vld2q_s8(p)); }
RVK_INLINE Vecs<uint16_t, 2> load2(const uint16_t* p) { return vecs(vld2q_u16(p)); }
RVK_INLINE Vecs<int16_t, 2> load2(const int16_t* p) { return vecs(vld2q_s16(p)); }
RVK_INLINE Vecs<uint32_t, 2> load2(const uint32_t* p) { return vecs(vld2q_u32(p)); }
RVK_INLINE Vecs<int32_t, 2> load2(const int32_t* p) { return vecs(vld2q_s32(p)); }
RVK_INLINE Vecs<float, 2> load2(const float* p) { return vecs(vld2q_f32(p)); }

RVK_INLINE void store2(uint8_t* p, const Vecs<uint8_t, 2>& v) { vst2q_u8(p, regs<uint8x16x2_t>(v)); }
RVK_INLINE void store2(int8_t* p, const Vecs<int8_t, 2>& v) { vst2q_s8(p, regs<int8x16x2_t>(v)); }
RVK_INLINE void store2(uint16_t* p, const Vecs<uint16_t, 2>& v) { vst2q_u16(p, regs<uint16x8x2_t>(v)); }
RVK_INLINE void store2(int16_t* p, const Vecs<int16_t, 2>& v) { vst2q_s16(p, regs<int16x8x2_t>(v)); }
RVK_INLINE void store2(uint32_t* p, const Vecs<uint32_t, 2>& v) { vst2q_u32(p, regs<uint32x4x2_t>(v)); }
RVK_INLINE void store2(int32_t* p, const Vecs<int32_t, 2>& v) { vst2q_s32(p, regs<int32x4x2_t>(v)); }
RVK_INLINE void store2(float* p, const Vecs<float, 2>& v) { vst2q_f32(p, regs<float32x4x2_t>(v)); }

RVK_INLINE Vecs<uint8_t, 3> load3(const uint8_t* p) { return vecs(vld3q_u8(p)); }
RVK_INLINE Vecs<int8_t, 3> load3(const int8_t* p) { return vecs(vld3q_s8(p)); }
RVK_INLINE Vecs<uint16_t, 3> load3(const uint16_t* p) { return vecs(vld3q_u16(p)); }
RVK_INLINE Vecs<int16_t, 3> load3(const int16_t* p) { return vecs(vld3q_s16(p)); }
RVK_INLINE Vecs<uint32_t, 3> load3(const uint32_t* p) { return vecs(vld3q_u32(p)); }
RVK_INLINE Vecs<int32_t, 3> load3(const int32_t* p) { return vecs(vld3q_s32(p)); }
RVK_INLINE Vecs<float, 3> load3(const float* p) { return vecs(vld3q_f32(p)); }

RVK_INLINE void store3(uint8_t* p, const Vecs<uint8_t, 3>& v) { vst3q_u8(p, regs<uint8x16x3_t>(v)); }
RVK_INLINE void store3(int8_t* p, const Vecs<int8_t, 3>& v) { vst3q_s8(p, regs<int8x16x3_t>(v)); }
RVK_INLINE void store3(uint16_t* p, const Vecs<uint16_t, 3>& v) { vst3q_u16(p, regs<uint16x8x3_t>(v)); }
RVK_INLINE void store3(int16_t* p, const Vecs<int16_t, 3>& v) { vst3q_s16(p, regs<int16x8x3_t>(v)); }
RVK_INLINE void store3(uint32_t* p, const Vecs<uint32_t, 3>& v) { vst3q_u32(p, regs<uint32x4x3_t>(v)); }
RVK_INLINE void store3(int32_t* p, const Vecs<int32_t, 3>& v) { vst3q_s32(p, regs<int32x4x3_t>(v)); }
RVK_INLINE void store3(float* p, const Vecs<float, 3>& v) { vst3q_f32(p, regs<float32x4x3_t>(v)); }

RVK_INLINE Vecs<uint8_t, 4> load4(const uint8_t* p) { return vecs(vld4q_u8(p)); }
RVK_INLINE Vecs<int8_t, 4> load4(const int8_t* p) { return vecs(vld4q_s8(p)); }
RVK_INLINE Vecs<uint16_t, 4> load4(const uint16_t* p) { return vecs(vld4q_u16(p)); }
RVK_INLINE Vecs<int16_t, 4> load4(const int16_t* p) { return vecs(vld4q_s16(p)); }
RVK_INLINE Vecs<uint32_t, 4> load4(const uint32_t* p) { return vecs(vld4q_u32(p)); }
RVK_INLINE Vecs<int32_t, 4> load4(const int32_t* p) { return vecs(vld4q_s32(p)); }
RVK_INLINE Vecs<float, 4> load4(const float* p) { return vecs(vld4q_f32(p)); }

RVK_INLINE void store4(uint8_t* p, const Vecs<uint8_t, 4>& v) { vst4q_u8(p, regs<uint8x16x4_t>(v)); }
RVK_INLINE void store4(int8_t* p, const Vecs<int8_t, 4>& v) { vst4q_s8(p, regs<int8x16x4_t>(v)); }
RVK_INLINE void store4(uint16_t* p, const Vecs<uint16_t, 4>& v) { vst4q_u16(p, regs<uint16x8x4_t>(v)); }
RVK_INLINE void store4(int16_t* p, const Vecs<int16_t, 4>& v) { vst4q_s16(p, regs<int16x8x4_t>(v)); }
RVK_INLINE void store4(uint32_t* p, const Vecs<uint32_t, 4>& v) { vst4q_u32(p, regs<uint32x4x4_t>(v)); }
RVK_INLINE void store4(int32_t* p, const Vecs<int32_t, 4>& v) { vst4q_s32(p, regs<int32x4x4_t>(v)); }
RVK_INLINE void store4(float* p, const Vecs<float, 4>& v) { vst4q_f32(p, regs<float32x4x4_t>(v)); }

// ---- 32-bit elements in two vectors, which make one of 16-bit elements ----------------------------------------------

template <class T> RVK_INLINE Vecs<T, 2> loadSplit(const T* p) { return loadVecs<2>(p); }

template <class T>
RVK_INLINE Vecs<T, 2> iotaSplit()
{
    return {iota<T>(), iota<T>() + splat<T>(Vec<T>::lanes)};
}

// The lower halves of the elements, in their order in memory.
RVK_INLINE Vec<uint16_t> joinSplit(const Vecs<uint32_t, 2>& v)
{
#if defined(__aarch64__)
    return unzipEven(bitCast<uint16_t>(v[0]), bitCast<uint16_t>(v[1]));
#else
    return narrow(v);
#endif
}

// Both in the order of memory.
template <class T> RVK_INLINE Vecs<T, 2> orderSplit(const Vecs<T, 2>& v) { return v; }

// ---- scattered memory -----------------------------------------------------------------------------------------------

constexpr size_t kGatherReach = 2;

// f(first, p + offset 0), f(first + 1, p + offset 1), ... Two offsets leave the vector unit at once.
template <size_t first, class F>
RVK_INLINE void forOffsets(const uint8_t* p, Vec<uint32_t> offset, F f)
{
    unrolled<2>([&](auto half) RVK_INLINE_LAMBDA {
        constexpr size_t i = half;
        const uint64_t two = vgetq_lane_u64(reg(bitCast<uint64_t>(offset)), i);
        f(Constant<first + 2 * i>{}, p + static_cast<uint32_t>(two));
        f(Constant<first + 2 * i + 1>{}, p + static_cast<uint32_t>(two >> 32));
    });
}

template <class F>
RVK_INLINE void forOffsets(const uint8_t* p, const Vecs<uint32_t, 2>& offsets, F f)
{
    forOffsets<0>(p, offsets[0], f);
    forOffsets<4>(p, offsets[1], f);
}

// The 32 bits at p + offset.
RVK_INLINE Vec<uint32_t> gatherWords(const uint8_t* p, Vec<uint32_t> offset)
{
    Vec<uint32_t> r = zero<uint32_t>();
    forOffsets<0>(p, offset, [&](auto i, const uint8_t* at) RVK_INLINE_LAMBDA {
        constexpr size_t lane = i;
        uint32_t word;
        __builtin_memcpy(&word, at, sizeof word);
        r.raw[lane] = word;
    });
    return r;
}

// The two bytes at p + offset, as loaded.
RVK_INLINE Vec<uint16_t> gatherPairs(const uint8_t* p, const Vecs<uint32_t, 2>& offsets)
{
    Vec<uint16_t> r = zero<uint16_t>();
    forOffsets(p, offsets, [&](auto i, const uint8_t* at) RVK_INLINE_LAMBDA {
        constexpr size_t lane = i;
        uint16_t pair;
        __builtin_memcpy(&pair, at, sizeof pair);
        r.raw[lane] = pair;
    });
    return r;
}

// The byte at p + offset.
RVK_INLINE Vec<uint16_t> gatherBytes(const uint8_t* p, const Vecs<uint32_t, 2>& offsets)
{
    Vec<uint8_t> r = zero<uint8_t>();
    forOffsets(p, offsets, [&](auto i, const uint8_t* at) RVK_INLINE_LAMBDA {
        constexpr size_t lane = 2 * i;
        r.raw[lane] = *at;
    });
    return bitCast<uint16_t>(r);
}

// ---- neighbours -----------------------------------------------------------------------------------------------------

// The sums of neighbours, and those added to acc.
RVK_INLINE Vec<uint16_t> addNeighbours(Vec<uint8_t> v) { return vec(vpaddlq_u8(reg(v))); }
RVK_INLINE Vec<uint16_t> addNeighboursTo(Vec<uint16_t> acc, Vec<uint8_t> v) { return vec(vpadalq_u8(reg(acc), reg(v))); }

// The second of each two neighbours taken from the first one: their sum less twice the second.
RVK_INLINE Vec<int16_t> subtractNeighbours(Vec<uint8_t> v)
{
    const Vec<uint16_t> second = shiftRight(bitCast<uint16_t>(v), 8);
    return bitCast<int16_t>(addNeighbours(v) - second * splat<uint16_t>(2));
}

// Those of a followed by b, elements below 2^15.
RVK_INLINE Vec<uint16_t> addNeighboursInLanes(Vec<uint16_t> a, Vec<uint16_t> b)
{
#if defined(__aarch64__)
    return vec(vpaddq_u16(reg(a), reg(b)));
#else
    return join(vpadd_u16(lowHalf(a), highHalf(a)), vpadd_u16(lowHalf(b), highHalf(b)));
#endif
}

template <class T>
RVK_INLINE Vecs<uint8_t, 2> load2Of(const uint8_t* p)
{
    return bitCast<uint8_t>(load2(reinterpret_cast<const T*>(p)));
}

// The rounded means of four bytes.
RVK_INLINE Vec<uint8_t> means(Vec<uint8_t> a, Vec<uint8_t> b, Vec<uint8_t> c, Vec<uint8_t> d)
{
    const Vecs<uint16_t, 2> sums = both(addWide(a, b), addWide(c, d),
                                        [](auto x, auto y) RVK_INLINE_LAMBDA { return x + y; });
    return narrowRoundedInLanes<uint8_t, 2>(sums);
}

template <class T>
RVK_INLINE Vec<uint8_t> loadMeans(const uint8_t* row)
{
    const Vecs<uint8_t, 2> m = load2Of<T>(row);
    return average(m[0], m[1]);
}

template <class T>
RVK_INLINE Vec<uint8_t> loadMeans(const uint8_t* row1, const uint8_t* row2)
{
    if constexpr (sizeof(T) == 1) {
        const auto sums = [=](size_t i) RVK_INLINE_LAMBDA {
            return vec(vpadalq_u8(vpaddlq_u8(reg(load(row1 + i))), reg(load(row2 + i))));
        };
        return narrowRoundedInLanes<uint8_t, 2>(Vecs<uint16_t, 2>{sums(0), sums(kBytes)});
    } else {
        const Vecs<uint8_t, 2> a = load2Of<T>(row1), b = load2Of<T>(row2);
        return means(a[0], a[1], b[0], b[1]);
    }
}

RVK_INLINE Vecs<uint8_t, 2> load2Means(const uint8_t* row)
{
    const Vecs<uint8_t, 4> m = load4(row);
    return {average(m[0], m[2]), average(m[1], m[3])};
}

RVK_INLINE Vecs<uint8_t, 2> load2Means(const uint8_t* row1, const uint8_t* row2)
{
    const Vecs<uint8_t, 4> a = load4(row1), b = load4(row2);
    return {means(a[0], a[2], b[0], b[2]), means(a[1], a[3], b[1], b[3])};
}

template <class T>
RVK_INLINE void storeTwice(uint8_t* p, Vec<uint8_t> v)
{
    store2(reinterpret_cast<T*>(p), Vecs<T, 2>{bitCast<T>(v), bitCast<T>(v)});
}

RVK_INLINE void store2Twice(uint8_t* p, const Vecs<uint8_t, 2>& v)
{
    store4(p, Vecs<uint8_t, 4>{v[0], v[1], v[0], v[1]});
}

// ---- copies of what is too large for the caches: there are no stores past them --------------------------------------

constexpr bool kWritesPastCaches = false;
constexpr bool pastCachesIsFaster(uint64_t) { return false; }

RVK_INLINE void copyPastCaches(const uint8_t* from, uint8_t* to, size_t n) { __builtin_memcpy(to, from, n); }
RVK_INLINE void storeInterleavedPastCaches(uint8_t* p, const Vecs<uint8_t, 2>& v) { store2(p, v); }
RVK_INLINE void storeInterleavedPastCaches(uint8_t* p, const Vecs<uint8_t, 3>& v) { store3(p, v); }
RVK_INLINE void storeInterleavedPastCaches(uint8_t* p, const Vecs<uint8_t, 4>& v) { store4(p, v); }
RVK_INLINE void finishWritesPastCaches() {}

} // namespace
} // namespace rvk::vecta::RVK_ISA
