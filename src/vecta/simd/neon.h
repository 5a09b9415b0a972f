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

// The intrinsics' own type of a vector, and of half of one.
template <class T> struct Neon;
#define RVK_NEON_TYPE(T, full, half)                                                                                   \
    template <> struct Neon<T> { using Full = full; using Half = half; };                                              \
    RVK_INLINE full reg(Vec<T> v) { return (full)v.raw; }                                                              \
    RVK_INLINE Vec<T> vec(full r) { return {(Vec<T>::Raw)r}; }
RVK_NEON_TYPE(uint8_t, uint8x16_t, uint8x8_t)
RVK_NEON_TYPE(int8_t, int8x16_t, int8x8_t)
RVK_NEON_TYPE(uint16_t, uint16x8_t, uint16x4_t)
RVK_NEON_TYPE(int16_t, int16x8_t, int16x4_t)
RVK_NEON_TYPE(uint32_t, uint32x4_t, uint32x2_t)
RVK_NEON_TYPE(int32_t, int32x4_t, int32x2_t)
RVK_NEON_TYPE(uint64_t, uint64x2_t, uint64x1_t)
RVK_NEON_TYPE(int64_t, int64x2_t, int64x1_t)
RVK_NEON_TYPE(float, float32x4_t, float32x2_t)
#undef RVK_NEON_TYPE

// ---- element-wise operations ----------------------------------------------------------------------------------------

#define RVK_UNARY(name, T, intrinsic)                                                                                  \
    RVK_INLINE Vec<T> name(Vec<T> a) { return vec(intrinsic(reg(a))); }
#define RVK_BINARY(name, T, intrinsic)                                                                                 \
    RVK_INLINE Vec<T> name(Vec<T> a, Vec<T> b) { return vec(intrinsic(reg(a), reg(b))); }
#define RVK_BINARY_8_16(name, intrinsic)                                                                               \
    RVK_BINARY(name, uint8_t, intrinsic##_u8)                                                                          \
    RVK_BINARY(name, int8_t, intrinsic##_s8)                                                                           \
    RVK_BINARY(name, uint16_t, intrinsic##_u16)                                                                        \
    RVK_BINARY(name, int16_t, intrinsic##_s16)
#define RVK_BINARY_8_16_32(name, intrinsic)                                                                            \
    RVK_BINARY_8_16(name, intrinsic)                                                                                   \
    RVK_BINARY(name, uint32_t, intrinsic##_u32)                                                                        \
    RVK_BINARY(name, int32_t, intrinsic##_s32)

RVK_BINARY_8_16_32(min, vminq)
RVK_BINARY_8_16_32(max, vmaxq)
RVK_BINARY_8_16(addSat, vqaddq)
RVK_BINARY_8_16(subSat, vqsubq)
RVK_BINARY(average, uint8_t, vrhaddq_u8)
RVK_BINARY(average, uint16_t, vrhaddq_u16)
RVK_BINARY(absDiff, uint8_t, vabdq_u8)
RVK_BINARY(absDiff, int8_t, vabdq_s8)
RVK_BINARY(absDiff, uint16_t, vabdq_u16)
RVK_BINARY(absDiff, int16_t, vabdq_s16)
RVK_BINARY(absDiff, uint32_t, vabdq_u32)
RVK_UNARY(abs, int8_t, vabsq_s8)
RVK_UNARY(abs, int16_t, vabsq_s16)
RVK_UNARY(abs, int32_t, vabsq_s32)
RVK_UNARY(countBits, uint8_t, vcntq_u8)

// |a - b| where a - b fits 16 bits.
RVK_INLINE Vec<int16_t> distance(Vec<int16_t> a, Vec<int16_t> b) { return absDiff(a, b); }

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

// 1 / v of a positive number with a relative error below 2^-7, and its root with one below 2^-19: each instruction set
// gives bits of its own.
RVK_INLINE Vec<float> guessReciprocal(Vec<float> v) { return vec(vrecpeq_f32(reg(v))); }

#if defined(__aarch64__)

RVK_INLINE Vec<float> guessSquareRoot(Vec<float> v) { return vec(vsqrtq_f32(reg(v))); }
RVK_BINARY(divide, float, vdivq_f32)
RVK_UNARY(squareRoot, float, vsqrtq_f32)
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

#define RVK_HALVES(T, suffix)                                                                                          \
    RVK_INLINE Neon<T>::Half lowHalf(Vec<T> v) { return vget_low_##suffix(reg(v)); }                                   \
    RVK_INLINE Neon<T>::Half highHalf(Vec<T> v) { return vget_high_##suffix(reg(v)); }                                 \
    RVK_INLINE Vec<T> join(Neon<T>::Half low, Neon<T>::Half high) { return vec(vcombine_##suffix(low, high)); }
RVK_HALVES(uint8_t, u8)
RVK_HALVES(int8_t, s8)
RVK_HALVES(uint16_t, u16)
RVK_HALVES(int16_t, s16)
RVK_HALVES(uint32_t, u32)
RVK_HALVES(int32_t, s32)
RVK_HALVES(float, f32)
#undef RVK_HALVES

#define RVK_WIDEN(T, suffix)                                                                                           \
    RVK_INLINE Vecs<Wider<T>, 2> widen(Vec<T> v)                                                                       \
    {                                                                                                                  \
        return {vec(vmovl_##suffix(lowHalf(v))), vec(vmovl_##suffix(highHalf(v)))};                                    \
    }
RVK_WIDEN(uint8_t, u8)
RVK_WIDEN(int8_t, s8)
RVK_WIDEN(uint16_t, u16)
RVK_WIDEN(int16_t, s16)
RVK_WIDEN(uint32_t, u32)
RVK_WIDEN(int32_t, s32)
#undef RVK_WIDEN

// Half a register's worth of elements. (clang 14 moves 8 bytes of memory that may be unaligned through the stack.)
#if defined(__clang__) && !defined(__aarch64__)
#define RVK_LOAD_HALF(T, suffix)                                                                                       \
    RVK_INLINE Neon<T>::Half loadHalf(const T* p)                                                                      \
    {                                                                                                                  \
        Neon<T>::Half half;                                                                                            \
        __asm__("vld1.8 {%P0}, %1" : "=w"(half) : "Q"(*reinterpret_cast<const char(*)[8]>(p)));                        \
        return half;                                                                                                   \
    }
#else
#define RVK_LOAD_HALF(T, suffix)                                                                                       \
    RVK_INLINE Neon<T>::Half loadHalf(const T* p) { return vld1_##suffix(p); }
#endif
RVK_LOAD_HALF(uint8_t, u8)
RVK_LOAD_HALF(int8_t, s8)
RVK_LOAD_HALF(uint16_t, u16)
RVK_LOAD_HALF(int16_t, s16)
RVK_LOAD_HALF(uint32_t, u32)
RVK_LOAD_HALF(int32_t, s32)
#undef RVK_LOAD_HALF

// As many elements from p as a vector of To has lanes, each made two or four times as wide.
#define RVK_LOAD_WIDEN(T, suffix)                                                                                      \
    template <class To>                                                                                                \
        requires(isSame<To, Wider<T>>)                                                                                 \
    RVK_INLINE Vec<To> loadWiden(const T* p)                                                                           \
    {                                                                                                                  \
        return vec(vmovl_##suffix(loadHalf(p)));                                                                       \
    }
RVK_LOAD_WIDEN(uint8_t, u8)
RVK_LOAD_WIDEN(int8_t, s8)
RVK_LOAD_WIDEN(uint16_t, u16)
RVK_LOAD_WIDEN(int16_t, s16)
RVK_LOAD_WIDEN(uint32_t, u32)
RVK_LOAD_WIDEN(int32_t, s32)
#undef RVK_LOAD_WIDEN

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

// Exact sums and differences, twice as wide; differences have a sign.
#define RVK_ADD_WIDE(T, suffix)                                                                                        \
    RVK_INLINE Vecs<Wider<T>, 2> addWide(Vec<T> a, Vec<T> b)                                                           \
    {                                                                                                                  \
        return {vec(vaddl_##suffix(lowHalf(a), lowHalf(b))), vec(vaddl_##suffix(highHalf(a), highHalf(b)))};           \
    }                                                                                                                  \
    RVK_INLINE Vecs<Signed<Wider<T>>, 2> subtractWide(Vec<T> a, Vec<T> b)                                              \
    {                                                                                                                  \
        return {bitCast<Signed<Wider<T>>>(vec(vsubl_##suffix(lowHalf(a), lowHalf(b)))),                                \
                bitCast<Signed<Wider<T>>>(vec(vsubl_##suffix(highHalf(a), highHalf(b))))};                             \
    }
RVK_ADD_WIDE(uint8_t, u8)
RVK_ADD_WIDE(int8_t, s8)
RVK_ADD_WIDE(uint16_t, u16)
RVK_ADD_WIDE(int16_t, s16)
#undef RVK_ADD_WIDE

// Two vectors narrowed into the halves of one. g++ for 32-bit Arm narrows into other registers and moves them, unless
// it is told both instructions.
#if defined(__arm__) && !defined(__clang__)
#define RVK_NARROW_BOTH(To, operation, suffix, v)                                                                      \
    uint8x16_t both;                                                                                                   \
    __asm__(#operation "." #suffix " %e0, %q1\n\t" #operation "." #suffix " %f0, %q2"                                  \
            : "=&w"(both)                                                                                              \
            : "w"(reg(v[0])), "w"(reg(v[1])));                                                                         \
    return bitCast<To>(vec(both));
#else
#define RVK_NARROW_BOTH(To, operation, suffix, v)                                                                      \
    return join(operation##_##suffix(reg(v[0])), operation##_##suffix(reg(v[1])));
#endif

#define RVK_NARROW(T, suffix)                                                                                          \
    RVK_INLINE Vec<Narrower<T>> narrow(Vecs<T, 2> v)                                                                   \
    {                                                                                                                  \
        RVK_NARROW_BOTH(Narrower<T>, vmovn, suffix, v)                                                                 \
    }
RVK_NARROW(uint16_t, u16)
RVK_NARROW(int16_t, s16)
RVK_NARROW(uint32_t, u32)
RVK_NARROW(int32_t, s32)
#undef RVK_NARROW

template <class T>
RVK_INLINE Vec<Narrower<T>> narrowInLanes(Vecs<T, 2> v)
{
    return narrow(v);
}

// Saturates the lanes of two vectors: s16 -> u8 and s8, u16 -> u8, s32 -> s16 and u16, u32 -> u16.
#define RVK_NARROW_SIGNED(T, suffix)                                                                                   \
    template <class To>                                                                                                \
    RVK_INLINE Vec<To> narrowSat(Vecs<T, 2> v)                                                                         \
    {                                                                                                                  \
        static_assert(sizeof(To) * 2 == sizeof(T));                                                                    \
        if constexpr (isSigned<To>) {                                                                                  \
            RVK_NARROW_BOTH(To, vqmovn, suffix, v)                                                                     \
        } else {                                                                                                       \
            RVK_NARROW_BOTH(To, vqmovun, suffix, v)                                                                    \
        }                                                                                                              \
    }
#define RVK_NARROW_UNSIGNED(T, suffix)                                                                                 \
    template <class To>                                                                                                \
    RVK_INLINE Vec<To> narrowSat(Vecs<T, 2> v)                                                                         \
    {                                                                                                                  \
        static_assert(isSame<To, Narrower<T>>);                                                                        \
        RVK_NARROW_BOTH(To, vqmovn, suffix, v)                                                                         \
    }
RVK_NARROW_SIGNED(int16_t, s16)
RVK_NARROW_SIGNED(int32_t, s32)
RVK_NARROW_UNSIGNED(uint16_t, u16)
RVK_NARROW_UNSIGNED(uint32_t, u32)
#undef RVK_NARROW_SIGNED
#undef RVK_NARROW_UNSIGNED
#undef RVK_NARROW_BOTH

template <class To, class T>
RVK_INLINE Vec<To> narrowSatInLanes(Vecs<T, 2> v)
{
    return narrowSat<To>(v);
}

// ---- products -------------------------------------------------------------------------------------------------------

#define RVK_MULTIPLY_WIDE(T, suffix)                                                                                   \
    RVK_INLINE Vecs<Wider<T>, 2> multiplyWide(Vec<T> a, Vec<T> b)                                                      \
    {                                                                                                                  \
        return {vec(vmull_##suffix(lowHalf(a), lowHalf(b))), vec(vmull_##suffix(highHalf(a), highHalf(b)))};           \
    }                                                                                                                  \
    RVK_INLINE Vecs<Wider<T>, 2> multiplyWideInLanes(Vec<T> a, Vec<T> b) { return multiplyWide(a, b); }
RVK_MULTIPLY_WIDE(uint8_t, u8)
RVK_MULTIPLY_WIDE(int8_t, s8)
RVK_MULTIPLY_WIDE(uint16_t, u16)
RVK_MULTIPLY_WIDE(int16_t, s16)
#undef RVK_MULTIPLY_WIDE

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
RVK_BINARY(multiplyRounded, int16_t, vqrdmulhq_s16)

// (a * b + 2^7) >> 8.
RVK_INLINE Vec<uint8_t> multiplyRounded(Vec<uint8_t> a, Vec<uint8_t> b)
{
    const Vecs<uint16_t, 2> p = multiplyWide(a, b);
    return join(vrshrn_n_u16(reg(p[0]), 8), vrshrn_n_u16(reg(p[1]), 8));
}

// (v + 2^(count - 1)) >> count, without overflow; the count is at least 1.
// v << count, or the end of the range beyond which that lies.
#define RVK_SHIFT_BY(name, T, intrinsic, splatCount, sign)                                                             \
    RVK_INLINE Vec<T> name(Vec<T> v, unsigned count)                                                                   \
    {                                                                                                                  \
        return vec(intrinsic(reg(v), splatCount(static_cast<Signed<T>>(sign static_cast<int>(count)))));               \
    }
RVK_SHIFT_BY(shiftRightRounded, uint16_t, vrshlq_u16, vdupq_n_s16, -)
RVK_SHIFT_BY(shiftRightRounded, int16_t, vrshlq_s16, vdupq_n_s16, -)
RVK_SHIFT_BY(shiftRightRounded, int32_t, vrshlq_s32, vdupq_n_s32, -)
RVK_SHIFT_BY(shiftLeftSat, uint16_t, vqshlq_u16, vdupq_n_s16, +)
RVK_SHIFT_BY(shiftLeftSat, int16_t, vqshlq_s16, vdupq_n_s16, +)
#undef RVK_SHIFT_BY

// narrowSatInLanes of shiftRightRounded.
#define RVK_NARROW_ROUNDED(To, T, intrinsic)                                                                           \
    template <class Result, unsigned count>                                                                            \
        requires(isSame<Result, To>)                                                                                   \
    RVK_INLINE Vec<To> narrowRoundedInLanes(const Vecs<T, 2>& v)                                                       \
    {                                                                                                                  \
        return join(intrinsic(reg(v[0]), count), intrinsic(reg(v[1]), count));                                         \
    }
RVK_NARROW_ROUNDED(uint8_t, uint16_t, vqrshrn_n_u16)
RVK_NARROW_ROUNDED(uint8_t, int16_t, vqrshrun_n_s16)
RVK_NARROW_ROUNDED(int16_t, int32_t, vqrshrn_n_s32)
RVK_NARROW_ROUNDED(uint16_t, int32_t, vqrshrun_n_s32)
#undef RVK_NARROW_ROUNDED

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
RVK_INLINE Vec<int32_t> addTo(Vec<int32_t> acc, Vec<int16_t> v) { return vec(vpadalq_s16(reg(acc), reg(v))); }
RVK_INLINE Vec<uint64_t> addTo(Vec<uint64_t> acc, Vec<uint32_t> v) { return vec(vpadalq_u32(reg(acc), reg(v))); }
RVK_INLINE Vec<int64_t> addTo(Vec<int64_t> acc, Vec<int32_t> v) { return vec(vpadalq_s32(reg(acc), reg(v))); }

// The least, the largest and the sum of all lanes; sums of 32-bit elements wrap.
#if defined(__aarch64__)
#define RVK_REDUCE(T, suffix, steps)                                                                                   \
    RVK_INLINE T reduceMin(Vec<T> v) { return vminvq_##suffix(reg(v)); }                                               \
    RVK_INLINE T reduceMax(Vec<T> v) { return vmaxvq_##suffix(reg(v)); }
#else
// A pairwise operation halves the number of different lanes.
#define RVK_REDUCE(T, suffix, steps)                                                                                   \
    RVK_INLINE T reduceMin(Vec<T> v)                                                                                   \
    {                                                                                                                  \
        auto r = vmin_##suffix(lowHalf(v), highHalf(v));                                                               \
        unrolled<steps>([&](auto) RVK_INLINE_LAMBDA { r = vpmin_##suffix(r, r); });                                    \
        return vget_lane_##suffix(r, 0);                                                                               \
    }                                                                                                                  \
    RVK_INLINE T reduceMax(Vec<T> v)                                                                                   \
    {                                                                                                                  \
        auto r = vmax_##suffix(lowHalf(v), highHalf(v));                                                               \
        unrolled<steps>([&](auto) RVK_INLINE_LAMBDA { r = vpmax_##suffix(r, r); });                                    \
        return vget_lane_##suffix(r, 0);                                                                               \
    }
#endif
RVK_REDUCE(uint8_t, u8, 3)
RVK_REDUCE(int8_t, s8, 3)
RVK_REDUCE(uint16_t, u16, 2)
RVK_REDUCE(int16_t, s16, 2)
RVK_REDUCE(uint32_t, u32, 1)
RVK_REDUCE(int32_t, s32, 1)
#undef RVK_REDUCE

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

// The sum of elements modulo 2^64.
template <class T> struct Total;

template <>
struct Total<int32_t> {
    Vec<int64_t> sums = {};

    RVK_INLINE void add(Vec<int32_t> v) { sums = addTo(sums, v); }
    RVK_INLINE int64_t value() const { return reduceAdd(sums); }
};

// ---- interleaved memory ---------------------------------------------------------------------------------------------

#define RVK_INTERLEAVED(n, T, suffix)                                                                                  \
    RVK_INLINE Vecs<T, n> load##n(const T* p)                                                                          \
    {                                                                                                                  \
        const auto m = vld##n##q_##suffix(p);                                                                          \
        Vecs<T, n> r;                                                                                                  \
        unrolled<n>([&](auto i) RVK_INLINE_LAMBDA { r[i] = vec(m.val[i]); });                                          \
        return r;                                                                                                      \
    }                                                                                                                  \
    RVK_INLINE void store##n(T* p, const Vecs<T, n>& v)                                                                \
    {                                                                                                                  \
        decltype(vld##n##q_##suffix(p)) m;                                                                             \
        unrolled<n>([&](auto i) RVK_INLINE_LAMBDA { m.val[i] = reg(v[i]); });                                          \
        vst##n##q_##suffix(p, m);                                                                                      \
    }
#define RVK_INTERLEAVED_ALL(T, suffix)                                                                                 \
    RVK_INTERLEAVED(2, T, suffix)                                                                                      \
    RVK_INTERLEAVED(3, T, suffix)                                                                                      \
    RVK_INTERLEAVED(4, T, suffix)
RVK_INTERLEAVED_ALL(uint8_t, u8)
RVK_INTERLEAVED_ALL(int8_t, s8)
RVK_INTERLEAVED_ALL(uint16_t, u16)
RVK_INTERLEAVED_ALL(int16_t, s16)
RVK_INTERLEAVED_ALL(uint32_t, u32)
RVK_INTERLEAVED_ALL(int32_t, s32)
RVK_INTERLEAVED_ALL(float, f32)
#undef RVK_INTERLEAVED_ALL
#undef RVK_INTERLEAVED

#undef RVK_UNARY
#undef RVK_BINARY
#undef RVK_BINARY_8_16
#undef RVK_BINARY_8_16_32

} // namespace
} // namespace rvk::vecta::RVK_ISA
