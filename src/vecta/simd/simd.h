// The vector layer: what the vector units include. One source written against it serves every instruction set.
#pragma once

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

// ---- built from the above, the same everywhere --------------------------------------------------------------------------

// |a| of floats: clears the sign bit, of zeros and non-numbers too.
RVK_INLINE Vec<float> abs(Vec<float> a)
{
    return bitCast<float>(bitCast<uint32_t>(a) & splat(0x7fffffffu));
}

RVK_INLINE Vec<float> absDiff(Vec<float> a, Vec<float> b) { return abs(a - b); }

// The wrapped difference without its sign.
RVK_INLINE Vec<int32_t> absDiff(Vec<int32_t> a, Vec<int32_t> b) { return abs(a - b); }

#if defined(__x86_64__)
// The exact difference without its sign; it wraps where the element is too narrow for it.
RVK_INLINE Vec<int8_t> absDiff(Vec<int8_t> a, Vec<int8_t> b) { return max(a, b) - min(a, b); }
RVK_INLINE Vec<int16_t> absDiff(Vec<int16_t> a, Vec<int16_t> b) { return max(a, b) - min(a, b); }
RVK_INLINE Vec<uint32_t> absDiff(Vec<uint32_t> a, Vec<uint32_t> b) { return max(a, b) - min(a, b); }
#endif

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

// ... and is exact for narrower ones.
RVK_INLINE uint32_t reduceAdd(Vec<uint8_t> v) { return reduceAdd(addBytesTo(zero<uint32_t>(), v)); }
RVK_INLINE uint32_t reduceAdd(Vec<uint16_t> v) { return reduceAdd(addTo(zero<uint32_t>(), v)); }
RVK_INLINE int32_t reduceAdd(Vec<int16_t> v) { return reduceAdd(addTo(zero<int32_t>(), v)); }

} // namespace
} // namespace rvk::vecta::RVK_ISA
