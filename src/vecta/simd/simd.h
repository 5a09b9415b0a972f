// The vector layer: what the vector units include. One source written against it serves every instruction set.
//
// Vec<T> is one register of elements T: uint8_t, int8_t, uint16_t, int16_t, uint32_t, int32_t, float, and uint64_t and
// int64_t for sums. It has Vec<T>::lanes of them, kBytes in all. Vecs<T, n> are n vectors, [0] to [n - 1]. Wider<T> and
// Narrower<T> are the types twice and half as wide. Nothing needs more alignment than its elements, and what is said to
// touch n elements touches no other. Every operation gives the same bits on every instruction set, except that float
// arithmetic and comparisons on 32-bit Arm take subnormals as zero (divide and squareRoot do not).
//
// Memory      load(p), store(p, v or vs), loadVecs<n>(p)
//             loadPartial(p, n), loadVecsPartial<count>(p, n), storePartial(p, v or vs, n): the first n elements, n may
//             be 0; loads give zero in the lanes after them
//             loadWiden<To>(p): Vec<To>::lanes elements half as wide, or bytes to 32 bits
//             load2, load3, load4(p) -> Vecs<T, n>: the channels of interleaved pixels; store2, store3, store4(p, vs);
//             loadInterleaved<n>(p), storeInterleaved(p, vs): these by their number
//             loadEach16(addresses, offset): u8, blocks of 16 bytes, block i from addresses[i] + offset
//             loadMeans<T>(p), loadMeans<T>(p, q): u8, the rounded means of the bytes of each element of T, 8 or 16
//             bits, with those of its neighbour; with q, of those and the two in the row there. load2Means ->
//             Vecs<uint8_t, 2>: of pairs of bytes, the two apart
//             storeChosen(p, v, mask, others): 32 bits, the true lanes without gaps, or, where the instruction set has
//             no such thing, all lanes, those of `others` where false; returns how many. Writes a vector
//             storeTwice<T>(p, v): u8, each element of T, 8 or 16 bits, twice; store2Twice(p, vs): each pair twice
//             copyPastCaches(from, to, n): of what will not be found in the caches again; kWritesPastCaches: whether
//             that is any different; pastCachesIsFaster(n): whether to do so with n bytes;
//             storeInterleavedPastCaches(p, vs): store2, store3, store4 to an address of whole registers;
//             finishWritesPastCaches() after the last one
//             prefetch(p, n): n elements are wanted soon; nothing on Arm, where it takes instructions that filters feel
// Constants   splat(x), zero<T>(), iota<T>(): 0, 1, 2, ...
// Arithmetic  + - * (integers wrap; * of bytes is slow), & | ^ ~, shiftLeft, shiftRight(v, count): count < width of T
//             min, max: of floats b < a ? b : a and a < b ? b : a, so a when equal or when either is not a number
//             addSat, subSat: 8 and 16 bits; average: (a + b + 1) >> 1, u8 and u16; halfDifference: u8, (a - b) >> 1;
//             halfSum: s16, (a + b) >> 1
//             abs: s8, s16, s32 (the least value stays), float (clears the sign bit)
//             absDiff: exact modulo the width; but s32: abs of the wrapped difference; float: abs(a - b)
//             distance: s16, |a - b| where a - b fits
//             joinBits<n>(a, b): u8, the upper n bits of a, then the upper bits of b
//             countBits: u8, of each byte; of a machine word; kCountBitsInVectorsFrom: as many bytes, and vectors pay
// Rounding    shiftRightRounded(v, count): (v + 2^(count - 1)) >> count, count > 0; u16, s16, s32 (where the sum fits)
//             shiftLeftSat(v, count): u16, s16
//             multiplyRounded(a, b): u8, (a * b + 2^7) >> 8; s16, (a * b + 2^14) >> 15, not of -32768 twice
//             multiplyHighRounded(a, b): u16, (a * b + 2^15) >> 16, b below 2^15
//             narrowRounded<To, count>(vs), narrowRoundedInLanes: narrowSat<To> of the rounded shift, but not of u32
//             multiplyAndShiftInLanes(v, factor, count): s16, s32: the rounded shift of the products, count < 30
// Weights     weightedMean(a, b, weight1, weight2): u8, (a * weight1 + b * weight2 + 128) >> 8, weights from 0 to 255
//             that make 256 at most; weightedSum: clamped, for any weights of which isWeightOfSums(weight) is true
// Floats      divide, squareRoot: IEEE everywhere; nothing is contracted, a * b + c rounds twice
//             multiplyAdd(a, b, c): a * b + c, rounded once or twice, whichever is cheaper
//             toFloat: s32, and u32 below 2^31; truncateToInt, roundToInt (halves to even): the value must fit int32_t;
//             toFixed<bits>(v): truncateToInt of v * 2^bits
//             guessReciprocal, closeReciprocal, guessSquareRoot: of positive numbers, good to 7, 20 and 19 bits; their
//             bits differ
//             orderKeys(v): s32 in the order of the floats, not-a-numbers at the ends, both zeros 0
// Comparison  equal, greater, less -> Mask<T>, false for not-a-numbers; masks combine by & | ^ ~
//             select(mask, a, b): a where true, else b; toVec(mask): all bits of true lanes set; any, all(mask);
//             firstTrue(mask): the number of the first true lane, of which there must be one
//             widen(mask) -> Masks<Wider, 2>, narrow(low mask, high mask): of signed elements
//             laneBits(mask): u8, bit i is lane i, in an integer of at least as many bits
// Width       widen(v) -> Vecs<Wider, 2>; narrow(vs): drops the upper halves of the elements; narrowSat<To>(vs): s16 to
//             u8 or s8, u16 to u8, s32 to s16 or u16, u32 to u16
//             addWide, subtractWide(a, b) -> Vecs<Wider, 2>: exact, 8 and 16 bits; differences have a sign
//             narrowShifted<count>(vs): u16 to u8, where the shifted elements fit; storeLowBytes(p, v): u16, narrowed
//             multiplyWide(a, b) -> Vecs<Wider, 2>: 8 and 16 bits; multiplyHigh: the upper halves of products, 16 bits
//             dotPairs(a, b): s16 -> s32, a[2i] * b[2i] + a[2i + 1] * b[2i + 1]
//             addDotOfPairs(acc, p, q): s32 and as many s8 in memory as a vector has s16: acc + dotPairs
//             addWeightedHalves(acc, v, HalfWeights(low, high)): u32 -> s32, acc + the lower 16 bits of each element,
//             by low, + the upper ones, by high; halves below 2^14, weights at most 2^16 without their sign
//             dot(a, b): two vectors of s16 each -> s32, a[0] * b[0] + a[1] * b[1], element by element
//             multiplyQ15<factor>(v): s16, v * factor / 2^15, rounded down; multiplyQ8(a, b): u16, (a * b + 128) / 2^8,
//             saturated
//             both(vs, f), both(vs, ws, f): f on both halves
//  ..Split    32-bit elements in two vectors, in the order of which joinSplit(vs) -> u16 is cheapest: their lower
//             halves, in the order of memory. loadSplit(p) -> Vecs<T, 2>; iotaSplit<T>(): the numbers of the elements;
//             orderSplit(vs): all of them in the order of memory
//  ..InLanes  widenInLanes, narrowInLanes, narrowSatInLanes<To>, narrowShiftedInLanes<count>, multiplyWideInLanes,
//             zipInLanes: the same, with the lanes of the wide vectors in the order that is cheapest. What one takes
//             apart, another puts together; orderWidened(vs): those of 16 and more bits in the order of memory
//             dotInLanes(a, b): as dot; addDotInLanes(acc, a, b)
//             addBothInLanes(acc, vs): s32 + s16, acc + vs[0] + vs[1] of elements that are not negative
// Lanes       reverse(v); extract<n>(a, b): lanes n, n + 1, ... of a followed by b; zipLow, zipHigh, zip(a, b):
//             a0 b0 a1 b1 ...; unzipEven, unzipOdd(a, b): every second lane of a followed by b
//             shuffle(a, b, [](size_t i) { ... }): lane i is that lane of a followed by b; costs what it costs
//             bitCast<To>(v or vs): the same bits as other elements
// Tables      lookup16(loadTable16(p), indices below 16), lookup32(loadTable32(p), indices below 32),
//             lookup(prepare(table of 256 bytes), any indices): u8. The table must stay where it is while the prepared
//             one is in use
//             lookupWindows<n>(row, offsets, indices): u8; lanes w * kWindow to w * kWindow + kWindow - 1 are bytes of
//             the row, of the n * kWindow bytes from offsets[w] on those with these indices; n is 1 or 2
//             storeWindows(p, apart, v): u8, each kWindow lanes, in order, to the places p, p + apart, ...
// Scattered   gatherBytes, gatherPairs(p, split offsets below 2^31) -> u16: the byte, or the two bytes, at p + offset;
//             kGatherReach: bytes from there on that may be read, 2 or more. gatherWords(p, offsets) -> u32: four bytes
//             loadEach4(p, offsets) -> Vecs<uint32_t, 2>, loadEach8InLanes<n>(p, offsets) -> u64, n below 4: so many
//             bytes at p + each of the split offsets in memory, in order, and in that of a u16 widened in lanes twice;
//             x86 alone, and for offsets that were stored some time ago
// Sums        addNeighbours(v): u8 to u16, v[2i] + v[2i + 1]; addNeighboursTo(acc, v): u8 to u16, s16 to s32;
//             addNeighboursInLanes(a, b): of u16 below 2^15; subtractNeighbours(v): u8 to s16, v[2i] - v[2i + 1]
//             addBytesTo(acc u32, u8), addTo(acc, v) for u16 to u32, s16 to s32, u32 to u64, s32 to s64: each element
//             of v is added to some lane of acc; reduceAdd(v): exact for u8, u16 and s16, wrapping for 32 and 64 bits
//             addDot(acc, a, b): u8, s8: each product is added to some lane of acc, 32 bits, which wrap. In two parts,
//             where one a meets several b: addPartOfDot(acc, a, b) lacks restOfDot() of addToRestOfDot(acc, a)
//             joinUpperHalves(a, b): s16 to u8, s32 to s16, x86 alone, those of a0 b0 a1 b1 ...
//             storeSums(p, vs): p[i] = reduceAdd(vs[i]) of four vectors of 32 bits
//             Total<T>: add(v), value(): of many; u8 modulo 2^32, s32 modulo 2^64
//             reduceMin, reduceMax(v): 8, 16, 32 bits, and floats without not-a-numbers
#pragma once

// Operations stand in columns here, a line each.
// clang-format off

#include "vecta/simd/core.h"
#if defined(__x86_64__)
#include "vecta/simd/x86.h"
#elif defined(__ARM_NEON)
#include "vecta/simd/neon.h"
#else
#error "the vector layer has back ends for x86-64 and NEON"
#endif

namespace rvk::vecta::RVK_ISA {
namespace {

// ---- built from the above, the same everywhere ----------------------------------------------------------------------

// |a| of floats: clears the sign bit, of zeros and non-numbers too.
RVK_INLINE Vec<float> abs(Vec<float> a)
{
    return bitCast<float>(bitCast<uint32_t>(a) & splat(0x7fffffffu));
}

RVK_INLINE Vec<float> absDiff(Vec<float> a, Vec<float> b) { return abs(a - b); }

// The wrapped difference without its sign.
RVK_INLINE Vec<int32_t> absDiff(Vec<int32_t> a, Vec<int32_t> b) { return abs(a - b); }

// Masks of elements twice and half as wide; the narrow one has the lanes of `low` followed by those of `high`.
#if !defined(__AVX512BW__) // x86.h has them in mask registers
template <class T>
    requires(isSigned<T>)
RVK_INLINE Masks<Wider<T>, 2> widen(Mask<T> m)
{
    using U = Unsigned<Wider<T>>;
    const Vecs<Wider<T>, 2> wide = widen(toVec(m));
    return {{{bitCast<U>(wide[0])}, {bitCast<U>(wide[1])}}};
}

template <class T>
    requires(isSigned<T>)
RVK_INLINE Mask<Narrower<T>> narrow(Mask<T> low, Mask<T> high)
{
    using N = Narrower<T>;
    return {bitCast<Unsigned<N>>(narrowSat<N>(Vecs<T, 2>{toVec(low), toVec(high)}))};
}
#endif

#if defined(__x86_64__)
// The exact difference without its sign; it wraps where the element is too narrow for it.
RVK_INLINE Vec<int8_t> absDiff(Vec<int8_t> a, Vec<int8_t> b) { return max(a, b) - min(a, b); }
RVK_INLINE Vec<int16_t> absDiff(Vec<int16_t> a, Vec<int16_t> b) { return max(a, b) - min(a, b); }
RVK_INLINE Vec<uint32_t> absDiff(Vec<uint32_t> a, Vec<uint32_t> b) { return max(a, b) - min(a, b); }
#endif

template <size_t count, class T>
RVK_INLINE Vecs<T, count> loadInterleaved(const T* p)
{
    static_assert(2 <= count && count <= 4);
    if constexpr (count == 2)
        return load2(p);
    else if constexpr (count == 3)
        return load3(p);
    else
        return load4(p);
}

template <class T, size_t count>
RVK_INLINE void storeInterleaved(T* p, const Vecs<T, count>& v)
{
    static_assert(2 <= count && count <= 4);
    if constexpr (count == 2)
        store2(p, v);
    else if constexpr (count == 3)
        store3(p, v);
    else
        store4(p, v);
}

// The true lanes in their order, where the instruction set has that; otherwise all, of `others` where false. Returns
// how many were stored; a whole vector is written.
template <class T>
    requires(sizeof(T) == 4)
RVK_INLINE size_t storeChosen(T* p, Vec<T> v, Mask<T> mask, Vec<T> others)
{
#if defined(__AVX512BW__)
    static_cast<void>(others);
    store(p, vec<T>(_mm512_maskz_compress_epi32(mask.bits, reg(v)))); // to memory, some processors take long
    return countBits(uint64_t{mask.bits});
#else
    store(p, select(mask, v, others));
    return Vec<T>::lanes;
#endif
}

// op over all lanes, for an operation whose order does not matter.
template <size_t step, class T, class Op>
RVK_INLINE T reduceFrom(Vec<T> v, Op op)
{
    if constexpr (step == 0)
        return v.raw[0];
    else
        return reduceFrom<step / 2>(op(v, shuffle(v, v, [](size_t i) { return i ^ step; })), op);
}

// The least and the largest lane. Of floats: any of the zeros when zeros are the least; no lane may be a not-a-number.
template <class T> RVK_INLINE T reduceMin(Vec<T> v)
{
    return reduceFrom<Vec<T>::lanes / 2>(v, [](Vec<T> a, Vec<T> b) RVK_INLINE_LAMBDA { return min(a, b); });
}

template <class T> RVK_INLINE T reduceMax(Vec<T> v)
{
    return reduceFrom<Vec<T>::lanes / 2>(v, [](Vec<T> a, Vec<T> b) RVK_INLINE_LAMBDA { return max(a, b); });
}

// The sum of all lanes, which wraps for 32 and 64-bit elements, ...
#if defined(__x86_64__)
template <class T>
    requires(sizeof(T) >= 4 && !isSame<T, float>)
RVK_INLINE T reduceAdd(Vec<T> v)
{
    return reduceFrom<Vec<T>::lanes / 2>(v, [](Vec<T> a, Vec<T> b) RVK_INLINE_LAMBDA { return a + b; });
}
#endif

#if defined(__x86_64__)
RVK_INLINE int64_t Total<int32_t>::value() const
{
    const uint64_t high = reduceAdd(highs);
    const uint64_t low = reduceAdd(pairs) - (high << 32);
    return static_cast<int64_t>(low + high - (vectors * Vec<int32_t>::lanes << 31));
}
#endif

// ... and is exact for narrower ones.
RVK_INLINE uint32_t reduceAdd(Vec<uint8_t> v) { return reduceAdd(addBytesTo(zero<uint32_t>(), v)); }
RVK_INLINE uint32_t reduceAdd(Vec<uint16_t> v) { return reduceAdd(addTo(zero<uint32_t>(), v)); }
RVK_INLINE int32_t reduceAdd(Vec<int16_t> v) { return reduceAdd(addTo(zero<int32_t>(), v)); }

// The sum of bytes modulo 2^32.
template <>
struct Total<uint8_t> {
    Vec<uint32_t> sums = {};

    RVK_INLINE void add(Vec<uint8_t> v) { sums = addBytesTo(sums, v); }
    RVK_INLINE uint32_t value() const { return reduceAdd(sums); }
};

// ---- products of bytes ----------------------------------------------------------------------------------------------

#if defined(__x86_64__)
// acc + p[2i] * q[2i] + p[2i + 1] * q[2i + 1] of half a vector of bytes.
RVK_INLINE Vec<int32_t> addDotOfPairs(Vec<int32_t> acc, const int8_t* p, const int8_t* q)
{
    return acc + dotPairs(loadWiden<int16_t>(p), loadWiden<int16_t>(q));
}
#endif

#if !defined(__AVX512BW__) // x86.h has them in parts
template <class T>
    requires(sizeof(T) == 1)
RVK_INLINE Vec<Wider<Wider<T>>> addToRestOfDot(Vec<Wider<Wider<T>>> acc, Vec<T>) { return acc; }
template <class Sum>
RVK_INLINE Vec<Sum> restOfDot(Vec<Sum> sum) { return sum; }
#endif

template <class T>
    requires(sizeof(T) == 1)
RVK_INLINE Vec<Wider<Wider<T>>> addDot(Vec<Wider<Wider<T>>> acc, Vec<T> a, Vec<T> b)
{
    return addPartOfDot(acc, a, b) + restOfDot(addToRestOfDot(zero<Wider<Wider<T>>>(), a));
}

// ---- floats in their order ------------------------------------------------------------------------------------------

// Two's complement numbers in the order of the floats, both zeros 0, subnormals as they are. What is not a number lies
// beyond both infinities, at either end.
RVK_INLINE Vec<int32_t> orderKeys(Vec<float> v)
{
    const Vec<int32_t> bits = bitCast<int32_t>(v);
    const Vec<int32_t> sign = shiftRight(bits, 31);
    return ((bits & splat<int32_t>(INT32_MAX)) ^ sign) - sign;
}

} // namespace
} // namespace rvk::vecta::RVK_ISA
