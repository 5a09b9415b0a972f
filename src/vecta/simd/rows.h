// How the vector implementations walk images. An element-wise function is one line: an image driver and a formula on
// vectors. The formula sees every element once or, at the end of a row, twice; never one outside the row.
#pragma once

#include "vecta/simd/simd.h"

namespace rvk::vecta::RVK_ISA {
namespace {

RVK_INLINE size_t least(size_t a, size_t b)
{
    return a < b ? a : b;
}
RVK_INLINE size_t greatest(size_t a, size_t b)
{
    return a < b ? b : a;
}

RVK_INLINE size_t roundedUp(size_t n, size_t step)
{
    return (n + step - 1) / step * step;
}

// Where position i lies when positions begin `before` ahead of the picture: on the nearest of the `size` pixels inside.
RVK_INLINE size_t nearest(size_t i, size_t before, size_t size)
{
    return i < before ? 0 : least(i - before, size - 1);
}

// Rows of T, `stride` bytes apart; a stride that is not a multiple of the element size is rounded down to one.
template <class T>
struct Plane
{
    T* data;
    uint32_t stride;

    RVK_INLINE T* row(size_t y) const { return data + y * (stride / sizeof(T)); }
    RVK_INLINE bool packed(size_t width) const { return stride / sizeof(T) == width; }
};
template <class T>
Plane(T*, uint32_t) -> Plane<T>;

template <class T>
constexpr size_t largestLanes(size_t n)
{
    return Vec<T>::lanes > n ? Vec<T>::lanes : n;
}

// Elements that one step of a formula on these types takes: as many as the narrowest type has in a vector. The wider
// types then come as several vectors.
template <class... T>
constexpr size_t stepOf()
{
    size_t n = 0;
    ((n = largestLanes<T>(n)), ...);
    return n;
}

// `step` elements of T: a Vec, or Vecs where one vector does not hold them.
template <size_t step, class T>
RVK_INLINE auto loadStep(const T* p)
{
    if constexpr (step == Vec<T>::lanes)
        return load(p);
    else
        return loadVecs<step / Vec<T>::lanes>(p);
}

template <size_t step, class T>
RVK_INLINE auto loadStepPartial(const T* p, size_t n)
{
    if constexpr (step == Vec<T>::lanes)
        return loadPartial(p, n);
    else
        return loadVecsPartial<step / Vec<T>::lanes>(p, n);
}

// The last step of `width` elements, or all of them where they are fewer.
template <size_t step, class T>
RVK_INLINE auto loadLast(const T* p, size_t width)
{
    return width < step ? loadStepPartial<step>(p, width) : loadStep<step>(p + (width - step));
}

// Two steps that follow each other in memory. loadPair and storePair move the pointer past them.
template <class V>
struct Pair
{
    V first, second;
};

#if defined(__arm__) && !defined(__clang__)

// Two registers and the pointer in one instruction, which g++ does not find.
template <class T>
RVK_INLINE Pair<Vec<T>> loadTwo(const T*& p)
{
    uint8x16x2_t r;
    __asm__("vld1.8 %h0, [%1]!" : "=w"(r), "+r"(p) : "m"(*reinterpret_cast<const uint8_t(*)[32]>(p)));
    return {bitCast<T>(vec(r.val[0])), bitCast<T>(vec(r.val[1]))};
}

template <class T>
RVK_INLINE void storeTwo(T*& p, Vec<T> first, Vec<T> second)
{
    const uint8x16x2_t r = {{reg(bitCast<uint8_t>(first)), reg(bitCast<uint8_t>(second))}};
    __asm__("vst1.8 %h2, [%1]!" : "=m"(*reinterpret_cast<uint8_t(*)[32]>(p)), "+r"(p) : "w"(r));
}

#else

template <class T>
RVK_INLINE Pair<Vec<T>> loadTwo(const T*& p)
{
#if defined(__AVX512BW__)
    // Where the caches miss, 64 bytes in one load come later than one byte and then the rest (Zen 4: a tenth of the
    // time of a sum of two large images).
    const auto touch = [](const volatile T* line) RVK_INLINE_LAMBDA { static_cast<void>(*line); };
    touch(p);
    touch(p + Vec<T>::lanes);
#endif
    const Pair<Vec<T>> r = {load(p), load(p + Vec<T>::lanes)};
    p += 2 * Vec<T>::lanes;
    return r;
}

template <class T>
RVK_INLINE void storeTwo(T*& p, Vec<T> first, Vec<T> second)
{
    store(p, first);
    store(p + Vec<T>::lanes, second);
    p += 2 * Vec<T>::lanes;
}

#endif

template <size_t count, class T>
RVK_INLINE Vecs<T, count> loadTwoByTwo(const T*& p)
{
    Vecs<T, count> r;
    unrolled<count / 2>([&](auto i) RVK_INLINE_LAMBDA {
        const Pair<Vec<T>> two = loadTwo(p);
        r[2 * i] = two.first;
        r[2 * i + 1] = two.second;
    });
    return r;
}

// The step at p; moves p past it.
template <size_t step, class T>
RVK_INLINE auto loadNext(const T*& p)
{
    constexpr size_t count = step / Vec<T>::lanes;
    if constexpr (count == 1) {
        const Vec<T> v = load(p);
        p += step;
        return v;
    } else {
        return loadTwoByTwo<count>(p);
    }
}

template <class T>
RVK_INLINE void storeNext(T*& p, Vec<T> v)
{
    store(p, v);
    p += Vec<T>::lanes;
}

template <class T, size_t count>
RVK_INLINE void storeNext(T*& p, const Vecs<T, count>& v)
{
    unrolled<count / 2>([&](auto i) RVK_INLINE_LAMBDA { storeTwo(p, v[2 * i], v[2 * i + 1]); });
}

template <size_t step, class T>
RVK_INLINE auto loadPair(const T*& p)
{
    if constexpr (step == Vec<T>::lanes) {
        return loadTwo(p);
    } else {
        const auto first = loadNext<step>(p);
        return Pair<Vecs<T, step / Vec<T>::lanes>>{first, loadNext<step>(p)};
    }
}

template <class T>
RVK_INLINE void storePair(T*& p, Vec<T> first, Vec<T> second)
{
    storeTwo(p, first, second);
}

template <class T, size_t count>
RVK_INLINE void storePair(T*& p, const Vecs<T, count>& first, const Vecs<T, count>& second)
{
    storeNext(p, first);
    storeNext(p, second);
}

// Two steps of all images fit the 16 registers that every instruction set has.
template <size_t step, class... T>
constexpr bool pairFitsRegisters = 2 * ((step / Vec<T>::lanes) + ...) <= 16;

// One row of mapImage. The last step of a row overlaps the one before it. Its sources are read before anything is
// written, so that the destination may be one of the sources.
template <class D, class Formula, class... S>
RVK_INLINE void mapRow(size_t width, D* dst, Formula formula, const S*... src)
{
    constexpr size_t step = stepOf<D, S...>();
    const auto last = formula(loadLast<step>(src, width)...);
    if (width < step) {
        storePartial(dst, last, width);
        return;
    }
    D* const dstTail = dst + (width - step);
    if constexpr (pairFitsRegisters<step, D, S...>) {
        const auto mapPair = [&](auto... v)
                                 RVK_INLINE_LAMBDA { storePair(dst, formula(v.first...), formula(v.second...)); };
        for (size_t pairs = width / (2 * step); pairs; --pairs)
            mapPair(loadPair<step>(src)...);
    }
    while (dst < dstTail)
        storeNext(dst, formula(loadNext<step>(src)...));
    store(dstTail, last);
}

// dst = formula(sources...) for every element of `width` x `height`. The formula takes a step of each source, a Vec or
// Vecs, and returns a step of the destination. Images without gaps between their rows are walked as one long row.
template <class D, class Formula, class... S>
RVK_INLINE void mapImage(size_t width, size_t height, Plane<D> dst, Formula formula, Plane<const S>... sources)
{
    if (dst.packed(width) && (sources.packed(width) && ...)) {
        width *= height;
        height = 1;
    }
    for (size_t y = 0; y < height; ++y)
        mapRow(anyNumber(width), dst.row(y), formula, sources.row(y)...);
}

// The numbers one after the other, again and again: as many vectors as it takes for the first number to come first
// again.
template <class T, size_t channels>
RVK_INLINE Vecs<T, channels> patternOf(const T (&values)[channels])
{
    constexpr size_t lanes = Vec<T>::lanes;
    Vecs<T, channels> pattern;
    for (size_t i = 0; i < channels * lanes; ++i)
        pattern.v[i / lanes].raw[i % lanes] = values[i % channels];
    return pattern;
}

// As mapImage on pixels of `channels` interleaved elements, against one number per channel: the formula takes a vector
// of source elements and the vector of the numbers that belong to them.
template <class D, size_t channels, class Formula>
RVK_INLINE void mapImageWithValues(size_t width, size_t height, Plane<D> dst, Plane<const D> src,
                                   const D (&values)[channels], Formula formula)
{
    constexpr size_t step = channels * Vec<D>::lanes;
    const Vecs<D, channels> pattern = patternOf(values);
    const auto apply = [&](Vecs<D, channels> v) RVK_INLINE_LAMBDA {
        for (size_t i = 0; i < channels; ++i)
            v[i] = formula(v[i], pattern[i]);
        return v;
    };
    width *= channels;
    if (dst.packed(width) && src.packed(width)) {
        width *= height;
        height = 1;
    }
    for (size_t y = 0; y < height; ++y) {
        width = anyNumber(width);
        const D* in = src.row(y);
        D* out = dst.row(y);
        if (width < step) {
            storePartial(out, apply(loadVecsPartial<channels>(in, width)), width);
            continue;
        }
        const size_t tail = width - step; // a multiple of `channels`, so the pattern fits there too
        const auto last = apply(loadVecs<channels>(in + tail));
        for (size_t x = 0; x < tail; x += step)
            store(out + x, apply(loadVecs<channels>(in + x)));
        store(out + tail, last);
    }
}

} // namespace
} // namespace rvk::vecta::RVK_ISA
