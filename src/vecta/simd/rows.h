// How the vector implementations walk images. An element-wise function is one line: an image driver and a formula on
// vectors. The formula sees every element once or, at the end of a row, twice; never one outside the row.
#pragma once

#include "vecta/simd/simd.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// Rows of T, `stride` bytes apart; a stride that is not a multiple of the element size is rounded down to one.
template <class T>
struct Plane {
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

// Elements that one step of a formula on these types takes: as many as the narrowest type has in a vector. The wider types
// then come as several vectors.
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

// One row of mapImage. The last step of a row overlaps the one before it. Its sources are read before anything is written,
// so that the destination may be one of the sources.
template <class D, class Formula, class... S>
RVK_INLINE void mapRow(size_t width, D* dst, Formula formula, const S*... src)
{
    constexpr size_t step = stepOf<D, S...>();
    if (width < step) {
        storePartial(dst, formula(loadStepPartial<step>(src, width)...), width);
        return;
    }
    const size_t tail = width - step;
    const auto last = formula(loadStep<step>(src + tail)...);
    D* const dstTail = dst + tail;
    for (size_t pairs = width / (2 * step); pairs; --pairs) { // pointers, not an index: 32-bit Arm would add it to each
        const auto first = formula(loadStep<step>(src)...);
        const auto second = formula(loadStep<step>(src + step)...);
        store(dst, first);
        store(dst + step, second);
        dst += 2 * step;
        ((src += 2 * step), ...);
    }
    if (dst < dstTail)
        store(dst, formula(loadStep<step>(src)...));
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
        mapRow(width, dst.row(y), formula, sources.row(y)...);
}

// The numbers one after the other, again and again: as many vectors as it takes for the first number to come first again.
template <class T, size_t channels>
RVK_INLINE Vecs<T, channels> patternOf(const T (&values)[channels])
{
    constexpr size_t lanes = Vec<T>::lanes;
    Vecs<T, channels> pattern;
    for (size_t i = 0; i < channels * lanes; ++i)
        pattern.v[i / lanes].raw[i % lanes] = values[i % channels];
    return pattern;
}

// As mapImage on pixels of `channels` interleaved elements, against one number per channel: the formula takes a vector of
// source elements and the vector of the numbers that belong to them.
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
