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

// ---- of the bytes of a vector, and of what came before them ------------------------------------------------------
//
// `before` is added to all, and becomes the last of these sums: the sum of a row goes from vector to vector.

#if RVK_AVX512

// Of each four words those bytes that are behind the first, the second, the third and the last byte.
RVK_INLINE Vec<uint8_t> laterBytes()
{
    return vec<uint8_t>(_mm512_set4_epi32(0, static_cast<int>(0xff000000), static_cast<int>(0xffff0000), ~0xff));
}

// Which of sixteen bytes the lanes of a vector of sums are for. Where pairs of lanes are for bytes eight apart, the lower
// lanes and the upper ones are in order when they become wide.
template <bool paired>
constexpr size_t byteOfLane(size_t lane)
{
    return paired ? lane % 2 * 8 + lane / 2 : lane;
}

// From the sums of words of four bytes, of which a quarter as many have to be moved. Each vector of results has each of
// its four words four times; less(sums, bytes, which of them are later) takes these away.
template <bool paired, class Less>
RVK_INLINE Vecs<uint32_t, 4> upToEach(Vec<int32_t> ofWords, Vec<uint8_t> v, Vec<uint32_t>& before, Less less)
{
    const Vec<int32_t> upToWords = runningSums(ofWords) + bitCast<int32_t>(before);
    const Vec<int32_t> last = anyVector(splat(15)); // of a constant clang would make two operations
    before = vec<uint32_t>(_mm512_permutexvar_epi32(reg(last), reg(upToWords)));
    Vecs<uint32_t, 4> sums;
    unrolled<4>([&](auto quarter) RVK_INLINE_LAMBDA {
        const auto fourTimes = [](Vec<int32_t> w) RVK_INLINE_LAMBDA {
            return shuffle(w, w, [](size_t i) { return decltype(quarter){} * 4 + byteOfLane<paired>(i) / 4; });
        };
        const Vec<int32_t> inOrder = bitCast<int32_t>(laterBytes());
        const Vec<int32_t> later = shuffle(inOrder, inOrder, [](size_t i) { return byteOfLane<paired>(i) % 4; });
        sums[quarter] = bitCast<uint32_t>(
            less(fourTimes(upToWords), bitCast<uint8_t>(fourTimes(bitCast<int32_t>(v))), bitCast<uint8_t>(later)));
    });
    return sums;
}

RVK_INLINE Vecs<uint32_t, 4> sumsUpToEach(Vec<uint8_t> v, Vec<uint32_t>& before)
{
    const Vec<int32_t> words = addDotQuads(zero<int32_t>(), v, splat<int8_t>(1));
    return upToEach<false>(words, v, before,
                           [](Vec<int32_t> sums, Vec<uint8_t> bytes, Vec<uint8_t> later) RVK_INLINE_LAMBDA {
                               return addDotQuads(sums, bytes, bitCast<int8_t>(later)); // times -1
                           });
}

// The square of p is 127 * p - p * (127 - p), whose second factors are signed bytes.
template <bool paired = false>
RVK_INLINE Vecs<uint32_t, 4> squaresUpToEach(Vec<uint8_t> v, Vec<uint32_t>& before)
{
    const auto less127 = [](Vec<uint8_t> p) RVK_INLINE_LAMBDA { return p ^ splat<uint8_t>(127); };
    const Vec<int32_t> words = addDotQuads(zero<int32_t>(), v, splat<int8_t>(127)) -
                               addDotQuads(zero<int32_t>(), v, bitCast<int8_t>(less127(v)));
    return upToEach<paired>(words, v, before,
                            [=](Vec<int32_t> sums, Vec<uint8_t> bytes, Vec<uint8_t> later) RVK_INLINE_LAMBDA {
                                const Vec<uint8_t> minus127 = later & splat<uint8_t>(256 - 127);
                                return addDotQuads(addDotQuads(sums, bytes, bitCast<int8_t>(minus127)), bytes,
                                                   bitCast<int8_t>(less127(bytes) & later));
                            });
}

RVK_INLINE Vecs<uint64_t, 8> wideSquaresUpToEach(Vec<uint8_t> v, Vec<uint32_t>& before)
{
    const Vecs<uint32_t, 4> sums = squaresUpToEach<true>(v, before);
    Vecs<uint64_t, 8> wide;
    unrolled<4>([&](auto i) RVK_INLINE_LAMBDA {
        wide[2 * i] = bitCast<uint64_t>(sums[i]) & splat<uint64_t>(UINT32_MAX);
        wide[2 * i + 1] = shiftRight(bitCast<uint64_t>(sums[i]), 32);
    });
    return wide;
}

#else

RVK_INLINE Vecs<uint32_t, 4> addBefore(Vecs<uint32_t, 4> sums, Vec<uint32_t>& before)
{
    unrolled<4>([&](auto i) RVK_INLINE_LAMBDA { sums[i] = sums[i] + before; });
    before = splatLast(sums[3]);
    return sums;
}

RVK_INLINE Vecs<uint32_t, 4> sumsUpToEach(Vec<uint8_t> v, Vec<uint32_t>& before)
{
    return addBefore(widenBoth(runningSumsWide(v)), before); // sums within a vector fit 16 bits
}

RVK_INLINE Vecs<uint32_t, 4> squaresUpToEach(Vec<uint8_t> v, Vec<uint32_t>& before)
{
    const Vecs<uint16_t, 2> squares = multiplyWide(v, v);
    const Vecs<uint32_t, 2> low = runningSumsWide(squares[0]), high = runningSumsWide(squares[1]);
    const Vec<uint32_t> lower = splatLast(low[1]);
    return addBefore({low[0], low[1], lower + high[0], lower + high[1]}, before);
}

RVK_INLINE Vecs<uint64_t, 8> wideSquaresUpToEach(Vec<uint8_t> v, Vec<uint32_t>& before)
{
    const Vecs<uint32_t, 4> sums = squaresUpToEach(v, before);
    Vecs<uint64_t, 8> wide;
    unrolled<4>([&](auto i) RVK_INLINE_LAMBDA {
        const Vecs<uint64_t, 2> two = widen(sums[i]);
        wide[2 * i] = two[0];
        wide[2 * i + 1] = two[1];
    });
    return wide;
}

#endif

RVK_INLINE Vecs<uint32_t, 4> sumsUpToEach(Vec<uint8_t> v)
{
    Vec<uint32_t> none = zero<uint32_t>();
    return sumsUpToEach(v, none);
}

RVK_INLINE Vecs<uint32_t, 4> squaresUpToEach(Vec<uint8_t> v)
{
    Vec<uint32_t> none = zero<uint32_t>();
    return squaresUpToEach(v, none);
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
