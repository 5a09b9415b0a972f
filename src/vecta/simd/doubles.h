// Vectors of doubles, for formulas that floats are too coarse for, and points of floats to and from them. Each operation
// is that of IEEE on each lane, so results have the bits of the scalar formula in the same order. 32-bit Arm has no
// vectors of doubles: there a vector is one number of the scalar unit, which does not flush subnormals.
#pragma once

// Operations stand in columns here, a line each.
// clang-format off

#include "vecta/simd/simd.h"

namespace rvk::vecta::RVK_ISA {
namespace {

#if defined(__arm__)

struct Doubles {
    static constexpr size_t lanes = 1;
    double raw;
};

struct DoubleMask {
    bool bits;
};

RVK_INLINE Doubles splatDouble(double x) { return {x}; }
RVK_INLINE bool any(DoubleMask m) { return m.bits; }
RVK_INLINE bool all(DoubleMask m) { return m.bits; }
RVK_INLINE DoubleMask operator~(DoubleMask m) { return {!m.bits}; }
RVK_INLINE Doubles abs(Doubles a) { return {__builtin_fabs(a.raw)}; }
RVK_INLINE Doubles squareRoot(Doubles a) { return {__builtin_sqrt(a.raw)}; }
RVK_INLINE Doubles roundedDown(Doubles a) { return {__builtin_floor(a.raw)}; }
RVK_INLINE Doubles countDoubles(uint32_t first) { return {static_cast<double>(first)}; }
RVK_INLINE unsigned laneBits(DoubleMask m) { return m.bits; }

#else

struct Doubles {
    using Raw __attribute__((vector_size(kBytes))) = double;
    static constexpr size_t lanes = kBytes / sizeof(double);
    Raw raw;
};

// All bits of a true lane are set.
struct DoubleMask {
    using Raw __attribute__((vector_size(kBytes))) = int64_t;
    Raw bits;
};

RVK_INLINE Doubles splatDouble(double x) { return {x - Doubles::Raw{}}; }
RVK_INLINE DoubleMask operator~(DoubleMask m) { return {~m.bits}; }
RVK_INLINE Doubles abs(Doubles a) { return {(Doubles::Raw)((DoubleMask::Raw)a.raw & INT64_MAX)}; }
#if defined(__x86_64__)
RVK_INLINE Doubles squareRoot(Doubles a) { return {(Doubles::Raw)RVK_MM(sqrt_pd)(a.raw)}; }
#else
RVK_INLINE Doubles squareRoot(Doubles a) { return {(Doubles::Raw)vsqrtq_f64(a.raw)}; }
#endif
#if RVK_AVX512
RVK_INLINE Doubles roundedDown(Doubles a) { return {(Doubles::Raw)_mm512_roundscale_pd(a.raw, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC)}; }
#elif defined(__x86_64__)
RVK_INLINE Doubles roundedDown(Doubles a) { return {(Doubles::Raw)RVK_MM(floor_pd)(a.raw)}; }
#else
RVK_INLINE Doubles roundedDown(Doubles a) { return {(Doubles::Raw)vrndmq_f64(a.raw)}; }
#endif

// A bit for each true lane.
RVK_INLINE unsigned laneBits(DoubleMask m)
{
#if defined(__AVX512DQ__)
    return _mm512_movepi64_mask((__m512i)m.bits);
#elif defined(__AVX2__)
    return static_cast<unsigned>(_mm256_movemask_pd((__m256d)m.bits));
#elif defined(__x86_64__)
    return static_cast<unsigned>(_mm_movemask_pd((__m128d)m.bits));
#else
    return static_cast<unsigned>((m.bits[0] & 1) | (m.bits[1] & 2));
#endif
}
RVK_INLINE bool any(DoubleMask m) { return laneBits(m) != 0; }
RVK_INLINE bool all(DoubleMask m) { return laneBits(m) == (1u << Doubles::lanes) - 1; }

#endif

RVK_INLINE Doubles operator+(Doubles a, Doubles b) { return {a.raw + b.raw}; }
RVK_INLINE Doubles operator-(Doubles a, Doubles b) { return {a.raw - b.raw}; }
RVK_INLINE Doubles operator*(Doubles a, Doubles b) { return {a.raw * b.raw}; }
RVK_INLINE Doubles operator/(Doubles a, Doubles b) { return {a.raw / b.raw}; }
RVK_INLINE Doubles operator*(double a, Doubles b) { return splatDouble(a) * b; }

// False for not-a-numbers.
RVK_INLINE DoubleMask greater(Doubles a, Doubles b) { return {a.raw > b.raw}; }
RVK_INLINE DoubleMask notGreater(Doubles a, Doubles b) { return {a.raw <= b.raw}; }
#if defined(__arm__)
RVK_INLINE DoubleMask operator&(DoubleMask a, DoubleMask b) { return {a.bits && b.bits}; }
RVK_INLINE DoubleMask operator|(DoubleMask a, DoubleMask b) { return {a.bits || b.bits}; }
#else
RVK_INLINE DoubleMask operator&(DoubleMask a, DoubleMask b) { return {a.bits & b.bits}; }
RVK_INLINE DoubleMask operator|(DoubleMask a, DoubleMask b) { return {a.bits | b.bits}; }
#endif

// a where true, else b.
RVK_INLINE Doubles select(DoubleMask m, Doubles a, Doubles b) { return {m.bits ? a.raw : b.raw}; }

// a where one is not a number.
RVK_INLINE Doubles min(Doubles a, Doubles b) { return select(greater(a, b), b, a); }
RVK_INLINE Doubles max(Doubles a, Doubles b) { return select(greater(b, a), b, a); }

#if !defined(__arm__)
// As many elements as there are lanes.
RVK_INLINE Doubles firstToDoubles(Vec<uint32_t> v)
{
    uint32_t __attribute__((vector_size(kBytes / 2))) first;
    __builtin_memcpy(&first, &v.raw, sizeof first);
    return {__builtin_convertvector(first, Doubles::Raw)};
}
// first, first + 1, ...
RVK_INLINE Doubles countDoubles(uint32_t first) { return firstToDoubles(iota<uint32_t>() + splat(first)); }
#endif

#if RVK_AVX512
// As many floats as there are lanes.
RVK_INLINE Doubles loadToDoubles(const float* p)
{
    float __attribute__((vector_size(kBytes / 2))) v;
    __builtin_memcpy(&v, p, sizeof v);
    return {__builtin_convertvector(v, Doubles::Raw)};
}

// sum + a * b, where doubles hold the product, so that it does not matter whether it is rounded first.
RVK_INLINE Doubles addExactProduct(Doubles sum, Doubles a, Doubles b)
{
    return {(Doubles::Raw)_mm512_fmadd_pd((__m512d)a.raw, (__m512d)b.raw, (__m512d)sum.raw)};
}
#endif

// All lanes.
RVK_INLINE void storeDoubles(double* p, Doubles v) { __builtin_memcpy(p, &v.raw, sizeof v.raw); }

// ---- points of floats: their coordinates, each in a vector ----------------------------------------------------------

template <size_t coordinates>
struct DoublePoints {
    Doubles v[coordinates];
    RVK_INLINE Doubles& operator[](size_t i) { return v[i]; }
    RVK_INLINE Doubles operator[](size_t i) const { return v[i]; }
};

// As many packed points as a vector has lanes.
#if defined(__arm__)

template <size_t coordinates>
RVK_INLINE DoublePoints<coordinates> loadPoints(const float* p)
{
    DoublePoints<coordinates> r;
    unrolled<coordinates>([&](auto c) RVK_INLINE_LAMBDA { r[c] = {static_cast<double>(p[c])}; });
    return r;
}

RVK_INLINE void storePoints(float* p, const DoublePoints<2>& points)
{
    p[0] = static_cast<float>(points[0].raw);
    p[1] = static_cast<float>(points[1].raw);
}

#else

using HalfOfFloats __attribute__((vector_size(kBytes / 2))) = float; // one for each lane of a Doubles

// Every `coordinates`-th float of the memory from p on, beginning with the first or a later one; it lies in the two
// vectors.
template <size_t coordinates, size_t first, size_t... i>
RVK_INLINE Doubles everyNth(Vec<float> begin, Vec<float> end, Indices<i...>)
{
    constexpr size_t lanes = Vec<float>::lanes, endsAt = (coordinates - 2) * Doubles::lanes; // where `end` begins
    constexpr auto laneOf = [](size_t at) { return at < lanes ? at : lanes + at - endsAt; };
    return {__builtin_convertvector(
        (HalfOfFloats)__builtin_shufflevector(begin.raw, end.raw, laneOf(coordinates * i + first)...), Doubles::Raw)};
}

template <size_t coordinates>
RVK_INLINE DoublePoints<coordinates> loadPoints(const float* p)
{
    static_assert(coordinates == 2 || coordinates == 3);
    const Vec<float> begin = load(p), end = load(p + (coordinates - 2) * Doubles::lanes);
    DoublePoints<coordinates> r;
    unrolled<coordinates>([&](auto c) RVK_INLINE_LAMBDA {
        constexpr size_t first = decltype(c){};
        r[c] = everyNth<coordinates, first>(begin, end, typename CountTo<Doubles::lanes>::Type{});
    });
    return r;
}

template <size_t... i>
RVK_INLINE Vec<float> zipHalves(HalfOfFloats a, HalfOfFloats b, Indices<i...>)
{
    return {__builtin_shufflevector(a, b, (i / 2 + i % 2 * Doubles::lanes)...)};
}

RVK_INLINE void storePoints(float* p, const DoublePoints<2>& points)
{
    store(p, zipHalves(__builtin_convertvector(points[0].raw, HalfOfFloats),
                       __builtin_convertvector(points[1].raw, HalfOfFloats),
                       typename CountTo<Vec<float>::lanes>::Type{}));
}

#endif

#if !defined(__arm__)
// The lower half of the lanes and the upper half, of floats or 32-bit integers.
template <class T>
    requires(sizeof(T) == 4)
RVK_INLINE DoublePoints<2> toDoubles(Vec<T> v)
{
    T __attribute__((vector_size(kBytes / 2))) halves[2];
    __builtin_memcpy(halves, &v.raw, sizeof halves);
    return {{{__builtin_convertvector(halves[0], Doubles::Raw)}, {__builtin_convertvector(halves[1], Doubles::Raw)}}};
}
#endif

// The same of a list whose points are `step` floats apart. Where it ends after `count` points, fewer than a vector has
// lanes, the last one stands for those that there are not, and these are not stored.
template <size_t coordinates>
RVK_INLINE DoublePoints<coordinates> loadPoints(const float* p, size_t step, size_t count)
{
    constexpr size_t lanes = Doubles::lanes;
    if (count >= lanes && step == coordinates)
        return loadPoints<coordinates>(p);
    float packed[coordinates * lanes];
    for (size_t i = 0; i < lanes; ++i)
        __builtin_memcpy(packed + i * coordinates, p + (i < count ? i : count - 1) * step, coordinates * sizeof(float));
    return loadPoints<coordinates>(packed);
}

RVK_INLINE void storePoints(float* p, const DoublePoints<2>& points, size_t step, size_t count)
{
    constexpr size_t lanes = Doubles::lanes;
    if (count >= lanes && step == 2)
        return storePoints(p, points);
    float packed[2 * lanes];
    storePoints(packed, points);
    for (size_t i = 0; i < lanes && i < count; ++i)
        __builtin_memcpy(p + i * step, packed + 2 * i, 2 * sizeof(float));
}

} // namespace
} // namespace rvk::vecta::RVK_ISA
