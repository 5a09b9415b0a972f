// Bodies that entries share, from four that would be equal up. Such an entry says which slot it calls and in which
// words the log refuses; the rest is the body's: defaults, target, argument check, call. Parameters that stand at
// another place in each of the public functions come last here.
#pragma once

#include "dispatch.h"

#include <algorithm>
#include <type_traits>

namespace rvk {

// An entry's name and its condition as the log quotes it, word for word. Without words the refusal is a status alone.
struct Words
{
    const char* function;
    const char* condition;
};
inline constexpr Words kSilent = {nullptr, nullptr};

template <class Function>
struct ResultOfPointer;
template <class Result, class... Arguments>
struct ResultOfPointer<Result (*)(Arguments...)>
{
    using Type = Result;
};
template <Slot slot>
using ResultOf = typename ResultOfPointer<typename SignatureOf<slot>::Type>::Type;

template <Slot slot>
ResultOf<slot> refuse(Words words)
{
    if (words.function)
        logArgumentAssertion(words.function, words.condition);
    if constexpr (std::is_same_v<ResultOf<slot>, int32_t>)
        return -1;
    else if constexpr (!std::is_void_v<ResultOf<slot>>)
        return RAVIK_EBADPARAM;
}

// Whether a matrix or picture of such pixels has a size, rows of whole elements, and less than 2^31 bytes.
inline bool isMatrix(uint32_t width, uint32_t height, uint32_t stride, uint32_t elementSize, uint32_t channels = 1)
{
    return width && height && isMultipleOf(elementSize, stride) && stride >= rowSize(width, elementSize * channels) &&
           rowSize(stride, height) < uint64_t{1} << 31;
}

// ---- element by element -------------------------------------------------------------------------

// Two images, each with a stride of its own.
template <Slot slot, class S1, class S2, class D, class... Parameters>
ResultOf<slot> combine(Words words, const S1* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                       const S2* src2, uint32_t src2Stride, D* dst, uint32_t dstStride, Parameters... parameters)
{
    constexpr bool hasBytes = sizeof(S1) == 1 || sizeof(S2) == 1, is32Bit = sizeof(S1) == 4;
    src1Stride = packedIfZero(src1Stride, width, sizeof(S1));
    src2Stride = packedIfZero(src2Stride, width, sizeof(S2));
    dstStride = packedIfZero(dstStride, width, sizeof(D));
    const RVK_IMPL target = chooseTarget(slot, [&] {
        return aligned(is32Bit ? 4 : 8, src1, src2, dst, src1Stride, src2Stride, dstStride) &&
               enoughWork(width, height, is32Bit ? 8 : 1) && (!hasBytes || width >= 32);
    });
    if (!(src1 && src2 && dst && width && height && src1Stride >= rowSize(width, sizeof(S1)) &&
          src2Stride >= rowSize(width, sizeof(S2)) && dstStride >= rowSize(width, sizeof(D))))
        return refuse<slot>(words);
    return implementation<slot>(target)(src1, width, height, src1Stride, src2, src2Stride, parameters..., dst,
                                        dstStride);
}

// One image, and numbers: one for each of its channels, or others.
template <Slot slot, uint32_t channels = 1, class T, class... Numbers>
ResultOf<slot> combineWithNumbers(Words words, const T* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                  T* dst, uint32_t dstStride, Numbers... numbers)
{
    constexpr uint32_t pixelSize = channels * sizeof(T);
    srcStride = packedIfZero(srcStride, width, pixelSize);
    dstStride = packedIfZero(dstStride, width, pixelSize);
    const RVK_IMPL target = chooseTarget(slot, [&] {
        return aligned(sizeof(T) == 4 ? 4 : 8, src, dst, srcStride, dstStride) &&
               enoughWork(width, height, sizeof(T) == 2 ? 1 : pixelSize);
    });
    if (!(src && dst && width && height && srcStride >= rowSize(width, pixelSize) &&
          dstStride >= rowSize(width, pixelSize)))
        return refuse<slot>(words);
    return implementation<slot>(target)(src, width, height, srcStride, numbers..., dst, dstStride);
}

// Bytes to bytes.
template <Slot slot, class... Parameters>
ResultOf<slot> mapBytes(Words words, const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                        uint8_t* dst, uint32_t dstStride, Parameters... parameters)
{
    srcStride = packedIfZero(srcStride, width);
    dstStride = packedIfZero(dstStride, width);
    const RVK_IMPL target = chooseTarget(
        slot, [&] { return aligned(8, src, dst, srcStride, dstStride, width) && enoughWork(width, height); });
    if (!(src && dst && width && height && srcStride >= width && dstStride >= width))
        return refuse<slot>(words);
    return implementation<slot>(target)(src, width, height, srcStride, dst, dstStride, parameters...);
}

// ---- filters to images of the same format -------------------------------------------------------

// Sizes of pictures from which on the filter, and the DSP, take them.
struct FilterSizes
{
    uint32_t leastWidth = 1, leastHeight = 1;
    uint32_t dspWidth = 1, dspHeight = 1;
    bool anyDstStride = false; // rows of the destination may overlap
};

// Of a window that the picture must hold.
constexpr FilterSizes windowOf(uint32_t size)
{
    return {.leastWidth = size, .leastHeight = size, .dspHeight = size};
}

constexpr FilterSizes withAnyDstStride(FilterSizes sizes)
{
    sizes.anyDstStride = true;
    return sizes;
}

template <class T>
bool suitsDsp(const FilterSizes& sizes, const T* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
              const T* dst, uint32_t dstStride)
{
    return aligned(sizeof(T) == 1 ? 8 : 4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) &&
           srcWidth >= sizes.dspWidth && srcHeight >= sizes.dspHeight;
}

template <class T>
bool accepts(const FilterSizes& sizes, const T* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
             const T* dst, uint32_t dstStride)
{
    const uint64_t row = rowSize(srcWidth, sizeof(T));
    return src && dst && srcWidth >= sizes.leastWidth && srcHeight >= sizes.leastHeight && srcStride >= row &&
           (dstStride >= row || (dstStride && sizes.anyDstStride));
}

template <Slot slot, class T, class... Parameters>
ResultOf<slot> filter(FilterSizes sizes, Words words, const T* src, uint32_t srcWidth, uint32_t srcHeight,
                      uint32_t srcStride, T* dst, uint32_t dstStride, Parameters... parameters)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(T));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(T));
    const RVK_IMPL target =
        chooseTarget(slot, [&] { return suitsDsp(sizes, src, srcWidth, srcHeight, srcStride, dst, dstStride); });
    if (!rowFits(srcWidth, sizeof(T)))
        return refuse<slot>({words.function, "rowFits(srcWidth, sizeof(T))"});
    if (!accepts(sizes, src, srcWidth, srcHeight, srcStride, dst, dstStride))
        return refuse<slot>(words);
    if (src == dst)
        return refuse<slot>({words.function, "src != dst"});
    return implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride, parameters...);
}

// ---- corners on a circle of radius 3 -------------------------------------------------------------

// `hasList`: whether the pointers behind `xy` that must not be null are none.
template <Slot slot, class... Parameters>
void detectCorners(Words words, bool hasList, const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                   int32_t barrier, uint32_t border, uint32_t* xy, Parameters... parameters)
{
    stride = packedIfZero(stride, width);
    border = std::max(border, 3u);
    const RVK_IMPL target = chooseTarget(slot, [&] { return aligned(8, src, stride) && enoughWork(width, height); });
    const uint64_t borders = uint64_t{border} * 2;
    if (!(src && xy && hasList && stride >= width && borders < width && borders < height))
        return refuse<slot>(words);
    if (stride > INT32_MAX)
        return refuse<slot>({words.function, "stride <= INT32_MAX"});
    implementation<slot>(target)(src, width, height, stride, barrier, border, xy, parameters...);
}

} // namespace rvk
