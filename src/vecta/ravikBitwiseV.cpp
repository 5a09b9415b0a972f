// Vector implementations of bitwise logic and fills.
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include <ravik/bitwise.h>

namespace rvk::vecta::RVK_ISA {
namespace {

// What a driver takes at once: the pixels whose mask bytes fill a vector. Elements of 32 bits then come as four.
constexpr size_t kPixels = Vec<uint8_t>::lanes;
template <class T>
using Step = Vecs<T, kPixels / Vec<T>::lanes>;

// The mask bytes as elements of type T.
template <class T>
RVK_INLINE Step<T> maskElements(Vec<uint8_t> mask)
{
    if constexpr (sizeof(T) == 1) {
        return {bitCast<T>(mask)};
    } else {
        const Vecs<uint16_t, 2> pairs = widen(mask);
        const Vecs<uint32_t, 2> low = widen(pairs[0]), high = widen(pairs[1]);
        return {bitCast<T>(low[0]), bitCast<T>(low[1]), bitCast<T>(high[0]), bitCast<T>(high[1])};
    }
}

// ---- masked or ------------------------------------------------------------------------------------------------------

RVK_INLINE Vec<uint8_t> orSelected(Vec<uint8_t> a, Vec<uint8_t> b, Vec<uint8_t> mask)
{
    return select(equal(mask, zero<uint8_t>()), mask, a | b);
}

RVK_INLINE Step<int32_t> orSelected(Step<int32_t> a, Step<int32_t> b, Vec<uint8_t> mask)
{
    const Step<int32_t> masks = maskElements<int32_t>(mask);
    unrolled<4>([&](auto i)
                    RVK_INLINE_LAMBDA { a[i] = select(equal(masks[i], zero<int32_t>()), masks[i], a[i] | b[i]); });
    return a;
}

template <class T>
RVK_INLINE void orImage(size_t width, size_t height, Plane<const T> src1, Plane<const T> src2, Plane<T> dst,
                        Plane<const uint8_t> mask)
{
    if (mask.data)
        mapImage(
            width, height, dst, [](auto a, auto b, auto m) RVK_INLINE_LAMBDA { return orSelected(a, b, m); }, src1,
            src2, mask);
    else
        mapImage(
            width, height, dst, [](auto a, auto b) RVK_INLINE_LAMBDA { return a | b; }, src1, src2);
}

// ---- fills ----------------------------------------------------------------------------------------------------------

// One row without a mask; `width` in elements.
template <class T, size_t channels>
RVK_INLINE void fillRow(size_t width, T* dst, const Vecs<T, channels>& pattern)
{
    constexpr size_t step = channels * Vec<T>::lanes;
    if (width < step) {
        storePartial(dst, pattern, width);
        return;
    }
    T* const tail = dst + (width - step); // a multiple of `channels` on, so the pattern fits there too
    for (; dst < tail; dst += step)
        store(dst, pattern);
    store(tail, pattern);
}

// Every lane `channels` times: the k-th vector of that.
template <size_t channels, size_t k, class T>
RVK_INLINE Vec<T> repeatLanes(Vec<T> v)
{
    return shuffle(v, v, [](size_t i) { return (k * Vec<T>::lanes + i) / channels; });
}

// The pattern where the mask of the pixel is not 0, else what was there.
template <class T, size_t channels>
RVK_INLINE void fillSelectedStep(T* dst, Vec<uint8_t> mask, const Vecs<T, channels>& pattern)
{
    const Step<T> masks = maskElements<T>(mask);
    unrolled<kPixels / Vec<T>::lanes>([&](auto i) RVK_INLINE_LAMBDA {
        unrolled<channels>([&](auto k) RVK_INLINE_LAMBDA {
            const Vec<T> m = repeatLanes<channels, k>(masks[i]);
            store(dst, select(equal(m, zero<T>()), load(dst), pattern[k]));
            dst += Vec<T>::lanes;
        });
    });
}

// One row with a mask; `width` in pixels. The last step of a row overlaps the one before it: filling twice does
// no harm.
template <class T, size_t channels>
RVK_INLINE void fillSelectedRow(size_t width, T* dst, const uint8_t* mask, const Vecs<T, channels>& pattern)
{
    if (width < kPixels) {
        T pixels[kPixels * channels];
        __builtin_memcpy(pixels, dst, width * channels * sizeof(T));
        fillSelectedStep(pixels, loadPartial(mask, width), pattern);
        __builtin_memcpy(dst, pixels, width * channels * sizeof(T));
        return;
    }
    T* const dstTail = dst + (width - kPixels) * channels;
    const uint8_t* const maskTail = mask + (width - kPixels);
    for (; mask < maskTail; mask += kPixels, dst += kPixels * channels)
        fillSelectedStep(dst, load(mask), pattern);
    fillSelectedStep(dstTail, load(maskTail), pattern);
}

template <class T, size_t channels>
RVK_NOINLINE void fillBits(size_t width, size_t height, Plane<T> dst, const T (&values)[channels],
                           Plane<const uint8_t> mask)
{
    const Vecs<T, channels> pattern = patternOf(values);
    if (dst.packed(width * channels) && (!mask.data || mask.packed(width))) {
        width *= height;
        height = 1;
    }
    for (size_t y = 0; y < height; ++y)
        if (mask.data)
            fillSelectedRow(width, dst.row(y), mask.row(y), pattern);
        else
            fillRow(width * channels, dst.row(y), pattern);
}

// Elements are copied and masks compared as unsigned numbers: as floats, masks would be subnormal and could pass for 0.
template <class T, size_t channels>
RVK_INLINE void fillSelected(size_t width, size_t height, Plane<T> dst, const T (&values)[channels],
                             Plane<const uint8_t> mask)
{
    using U = Unsigned<T>;
    U bits[channels];
    __builtin_memcpy(bits, values, sizeof bits);
    fillBits(width, height, Plane{reinterpret_cast<U*>(dst.data), dst.stride}, bits, mask);
}

} // namespace

void rvkBitwiseAndu8V(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                      const uint8_t* src2, uint32_t src2Stride, uint8_t* dst, uint32_t dstStride)
{
    mapImage(
        srcWidth, srcHeight, Plane{dst, dstStride}, [](auto a, auto b) RVK_INLINE_LAMBDA { return a & b; },
        Plane{src1, src1Stride}, Plane{src2, src2Stride});
}

void rvkBitwiseNotu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                      uint32_t dstStride)
{
    mapImage(
        srcWidth, srcHeight, Plane{dst, dstStride}, [](auto a) RVK_INLINE_LAMBDA { return ~a; }, Plane{src, srcStride});
}

void rvkBitwiseXoru8V(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                      const uint8_t* src2, uint32_t src2Stride, uint8_t* dst, uint32_t dstStride)
{
    mapImage(
        srcWidth, srcHeight, Plane{dst, dstStride}, [](auto a, auto b) RVK_INLINE_LAMBDA { return a ^ b; },
        Plane{src1, src1Stride}, Plane{src2, src2Stride});
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikBitwiseForms.h"
