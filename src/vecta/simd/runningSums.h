// Sums of all bytes up to each, and of their squares, within a vector; sums of both over many vectors.
#pragma once

#include "vecta/simd/simd.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// The last lane in all lanes.
template <class T>
RVK_INLINE Vec<T> splatLast(Vec<T> v)
{
    return shuffle(v, v, [](size_t) { return Vec<T>::lanes - 1; });
}

RVK_INLINE Vecs<uint32_t, 4> widenBoth(const Vecs<uint16_t, 2>& v)
{
    const Vecs<uint32_t, 2> low = widen(v[0]), high = widen(v[1]);
    return {low[0], low[1], high[0], high[1]};
}

// The sums of neighbours.
RVK_INLINE Vec<uint16_t> addPairs(Vec<uint8_t> v)
{
#if defined(__x86_64__)
    return bitCast<uint16_t>(dotPairs(v, splat<int8_t>(1)));
#else
    return vec(vpaddlq_u8(reg(v)));
#endif
}

RVK_INLINE Vec<uint32_t> addPairs(Vec<uint16_t> v)
{
#if defined(__x86_64__)
    return addTo(zero<uint32_t>(), v);
#else
    return vec(vpaddlq_u16(reg(v)));
#endif
}

// Lane i is the sum of the lanes 0 to i.
template <size_t step = 1, class T>
RVK_INLINE Vec<T> runningSums(Vec<T> v)
{
    if constexpr (step == Vec<T>::lanes)
        return v;
    else
        return runningSums<2 * step>(v + extract<Vec<T>::lanes - step>(zero<T>(), v));
}

// The same, twice as wide: pairs are summed first, so that half as many lanes have to be moved.
template <class T>
RVK_INLINE Vecs<Wider<T>, 2> runningSumsWide(Vec<T> v)
{
    const Vec<Wider<T>> toOdd = runningSums(addPairs(v));
    const Vec<Wider<T>> toEven = toOdd - shiftRight(bitCast<Wider<T>>(v), 8 * sizeof(T));
    return zip(toEven, toOdd);
}

// ---- of the bytes of a vector ------------------------------------------------------------------------------------

#if RVK_AVX512

// Words of four bytes are summed first. Each vector of results has each of its four words four times, to add as many
// of its bytes as each result is of.
RVK_INLINE Vecs<uint32_t, 4> sumsUpToEach(Vec<uint8_t> v)
{
    const Vec<int32_t> words = addDotQuads(zero<int32_t>(), v, splat<int8_t>(1));
    const Vec<int32_t> before = runningSums(words) - words;
    const Vec<int8_t> firstBytes = vec<int8_t>(_mm512_set4_epi32(0x01010101, 0x00010101, 0x00000101, 0x00000001));
    Vecs<uint32_t, 4> sums;
    unrolled<4>([&](auto quarter) RVK_INLINE_LAMBDA {
        const auto fourTimes = [](Vec<int32_t> w) RVK_INLINE_LAMBDA {
            return shuffle(w, w, [](size_t i) { return decltype(quarter){} * 4 + i / 4; });
        };
        const Vec<uint8_t> bytes = bitCast<uint8_t>(fourTimes(bitCast<int32_t>(v)));
        sums[quarter] = bitCast<uint32_t>(addDotQuads(fourTimes(before), bytes, firstBytes));
    });
    return sums;
}

#else

RVK_INLINE Vecs<uint32_t, 4> sumsUpToEach(Vec<uint8_t> v)
{
    return widenBoth(runningSumsWide(v)); // sums within a vector fit 16 bits
}

#endif

RVK_INLINE Vecs<uint32_t, 4> squaresUpToEach(Vec<uint8_t> v)
{
    const Vecs<uint16_t, 2> squares = multiplyWide(v, v);
    const Vecs<uint32_t, 2> low = runningSumsWide(squares[0]), high = runningSumsWide(squares[1]);
    const Vec<uint32_t> before = splatLast(low[1]);
    return {low[0], low[1], before + high[0], before + high[1]};
}

// ---- of many bytes -----------------------------------------------------------------------------------------------

// The sum of bytes and that of their squares.
class ByteMoments
{
public:
    static constexpr size_t most = 16384; // vectors

    RVK_INLINE void add(Vec<uint8_t> v)
    {
        m_sums = addBytesTo(m_sums, v);
#if RVK_AVX512
        const Vec<int8_t> less128 = bitCast<int8_t>(v ^ splat<uint8_t>(128));
        m_squares = bitCast<uint32_t>(addDotQuads(bitCast<int32_t>(m_squares), v, less128));
#elif defined(__x86_64__)
        const Vec<uint16_t> pairs = bitCast<uint16_t>(v);
        const Vec<int16_t> even = bitCast<int16_t>(pairs & splat<uint16_t>(255));
        const Vec<int16_t> odd = bitCast<int16_t>(shiftRight(pairs, 8));
        m_squares = m_squares + bitCast<uint32_t>(dotPairs(even, even) + dotPairs(odd, odd));
#else
        const Vecs<uint16_t, 2> squares = multiplyWide(v, v);
        m_squares = addTo(addTo(m_squares, squares[0]), squares[1]);
#endif
    }
    RVK_INLINE uint64_t sum() const
    {
        return reduceAdd(addTo(zero<uint64_t>(), m_sums));
    }
    RVK_INLINE uint64_t squares() const
    {
#if RVK_AVX512 // v * (v - 128) has been summed
        const int64_t products = reduceAdd(addTo(zero<int64_t>(), bitCast<int32_t>(m_squares)));
        return static_cast<uint64_t>(products) + 128 * sum();
#else
        return reduceAdd(addTo(zero<uint64_t>(), m_squares));
#endif
    }

private:
    Vec<uint32_t> m_sums = {}, m_squares = {};
};

} // namespace
} // namespace rvk::vecta::RVK_ISA
