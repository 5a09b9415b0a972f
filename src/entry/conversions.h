// What the entries of colour conversions share: conditions, checks and the call.
#pragma once

#include "bodies.h"
#include "color.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>

namespace rvk {

// ---- conditions, as the log quotes them -----------------------------------------------------------------------------

template <uint32_t size>
constexpr const char* sourceCondition(const Packed<size>&)
{
    constexpr const char* texts[] = {"src && srcWidth && srcHeight && (srcStride >= srcWidth)",
                                     "src && srcWidth && srcHeight && (srcStride >= srcWidth*2)",
                                     "src && srcWidth && srcHeight && (srcStride >= srcWidth*3)",
                                     "src && srcWidth && srcHeight && (srcStride >= srcWidth*4)"};
    return texts[size - 1];
}

template <uint32_t count>
constexpr const char* sourceCondition(const Channels<count>&)
{
    constexpr const char* texts[] = {
        "src1 && src2 && srcWidth && srcHeight && (src1Stride >= srcWidth) && (src2Stride >= srcWidth)",
        "src1 && src2 && src3 && srcWidth && srcHeight && (src1Stride >= srcWidth) && (src2Stride >= srcWidth) && "
        "(src3Stride >= srcWidth)",
        "src1 && src2 && src3 && src4 && srcWidth && srcHeight && (src1Stride >= srcWidth) && "
        "(src2Stride >= srcWidth) && (src3Stride >= srcWidth) && (src4Stride >= srcWidth)"};
    return texts[count - 2];
}

template <class S>
constexpr const char* sourceCondition(const Planar<S>&)
{
    return S::xShift ? "srcY && srcCb && srcCr && srcWidth && srcHeight && (srcYStride >= srcWidth) && "
                       "(srcCbStride >= (srcWidth+1)/2) && (srcCrStride >= (srcWidth+1)/2)"
                     : "srcY && srcCb && srcCr && srcWidth && srcHeight && (srcYStride >= srcWidth) && "
                       "(srcCbStride >= srcWidth) && (srcCrStride >= srcWidth)";
}

template <class S, bool crFirst>
constexpr const char* sourceCondition(const PseudoPlanar<S, crFirst>&)
{
    return S::xShift
               ? "srcY && srcC && srcWidth && srcHeight && (srcYStride >= srcWidth) && "
                 "(srcCStride >= (srcWidth+1)/2*2)"
               : "srcY && srcC && srcWidth && srcHeight && (srcYStride >= srcWidth) && (srcCStride >= srcWidth*2)";
}

template <uint32_t size>
constexpr const char* targetCondition(const Packed<size>&)
{
    constexpr const char* texts[] = {"dst && (dstStride >= srcWidth)", "dst && (dstStride >= srcWidth*2)",
                                     "dst && (dstStride >= srcWidth*3)", "dst && (dstStride >= srcWidth*4)"};
    return texts[size - 1];
}

constexpr const char* targetCondition(const Channels<2>&)
{
    return "dst1 && dst2 && (dst1Stride >= srcWidth) && (dst2Stride >= srcWidth)";
}

template <class S>
constexpr const char* targetCondition(const Planar<S>&)
{
    return S::xShift ? "dstY && dstCb && dstCr && (dstYStride >= srcWidth) && (dstCbStride >= (srcWidth+1)/2) && "
                       "(dstCrStride >= (srcWidth+1)/2)"
                     : "dstY && dstCb && dstCr && (dstYStride >= srcWidth) && (dstCbStride >= srcWidth) && "
                       "(dstCrStride >= srcWidth)";
}

template <class S>
constexpr const char* targetCondition(const PseudoPlanar<S>&)
{
    return S::xShift ? "dstY && dstC && (dstYStride >= srcWidth) && (dstCStride >= (srcWidth+1)/2*2)"
                     : "dstY && dstC && (dstYStride >= srcWidth) && (dstCStride >= srcWidth*2)";
}

constexpr const char* kNoOverlap = "the images do not overlap";

// ---- planes ---------------------------------------------------------------------------------------------------------

inline uint32_t packedRowIfZero(uint32_t stride, uint64_t rowSize)
{
    return stride ? stride : static_cast<uint32_t>(std::min<uint64_t>(rowSize, UINT32_MAX));
}

template <class Format, class Plane>
void packWhereZero(Plane (&planes)[Format::planes], uint32_t width)
{
    for (uint32_t i = 0; i < Format::planes; ++i)
        planes[i].stride = packedRowIfZero(planes[i].stride, Format::rowSize(i, width));
}

template <class Format, class Plane>
bool holdRows(const Plane (&planes)[Format::planes], uint32_t width)
{
    for (uint32_t i = 0; i < Format::planes; ++i)
        if (!planes[i].data || planes[i].stride < Format::rowSize(i, width))
            return false;
    return true;
}

template <class Plane, size_t count>
bool suitDsp(const Plane (&planes)[count])
{
    return std::all_of(planes, planes + count, [](const Plane& plane) { return aligned(8, plane.data, plane.stride); });
}

inline uintptr_t addressOf(const uint8_t* data)
{
    return reinterpret_cast<uintptr_t>(data);
}

// Where the bytes of a plane lie.
struct Extent
{
    uintptr_t begin;
    uint64_t stride, rowSize, rows;

    uint64_t size() const { return (rows - 1) * stride + rowSize; }
};

// Whether planes have bytes in common. Pictures side by side in rows of one stride have none; of other planes whose rows
// mingle it is assumed.
inline bool overlap(const Extent& a, const Extent& b)
{
    if (a.begin > b.begin)
        return overlap(b, a);
    const uint64_t distance = b.begin - a.begin;
    if (distance >= a.size())
        return false;
    const uint64_t column = distance % a.stride;
    return a.stride != b.stride || column < a.rowSize || column + b.rowSize > a.stride;
}

template <class Format, class Plane>
Extent extentOf(const Plane (&planes)[Format::planes], uint32_t i, uint32_t width, uint32_t height)
{
    return {addressOf(planes[i].data), planes[i].stride, Format::rowSize(i, width), Format::rows(i, height)};
}

template <class From, class To>
bool imagesOverlap(const Conversion<From, To>& c)
{
    for (uint32_t j = 0; j < To::planes; ++j) {
        const Extent dst = extentOf<To>(c.dst, j, c.width, c.height);
        for (uint32_t i = 0; i < From::planes; ++i)
            if (overlap(extentOf<From>(c.src, i, c.width, c.height), dst))
                return true;
        for (uint32_t i = 0; i < j; ++i)
            if (overlap(extentOf<To>(c.dst, i, c.width, c.height), dst))
                return true;
    }
    return false;
}

// ---- what kinds of conversions need ---------------------------------------------------------------------------------

template <class Format>
inline constexpr bool isPacked = Format::planes == 1;

template <class Format>
inline constexpr bool isRotated = false;
template <class Format>
inline constexpr bool isRotated<Rotated180<Format>> = true;

template <class From, class To>
bool isInPlace(const Conversion<From, To>& c)
{
    if constexpr (isPacked<From> && isPacked<To> && !isRotated<To>)
        return From::rowSize(0, 1) == To::rowSize(0, 1) && c.src[0].data == c.dst[0].data &&
               c.src[0].stride == c.dst[0].stride;
    return false;
}

// A row of pairs is taken in pairs.
template <class From, class To>
constexpr uint32_t leastWidth()
{
    if constexpr (isPacked<To> && requires { From::xShift; })
        return 1u << From::xShift;
    return 1;
}

template <class From, class To>
const char* violatedCondition(const Conversion<From, To>& c)
{
    if (!c.width || !c.height || !holdRows<From>(c.src, c.width))
        return sourceCondition(From());
    if (!holdRows<To>(c.dst, c.width))
        return targetCondition(To());
    if (c.width < leastWidth<From, To>())
        return "srcWidth > 1";
    return !isInPlace(c) && imagesOverlap(c) ? kNoOverlap : nullptr;
}

// ---- calls ----------------------------------------------------------------------------------------------------------

template <Slot slot, class From, class To, size_t... i, size_t... j>
ResultOf<slot> call(RVK_IMPL target, const Conversion<From, To>& c, std::index_sequence<0, i...>,
                    std::index_sequence<j...>)
{
    return std::apply(implementation<slot>(target),
                      std::tuple_cat(std::tuple(c.src[0].data, c.width, c.height, c.src[0].stride),
                                     std::tuple(c.src[i].data, c.src[i].stride)...,
                                     std::tuple(c.dst[j].data, c.dst[j].stride)...));
}

template <Slot slot, class From, class To>
ResultOf<slot> convert(const char* function, Conversion<From, To> c)
{
    packWhereZero<From>(c.src, c.width);
    packWhereZero<To>(c.dst, c.width);
    const RVK_IMPL target =
        chooseTarget(slot, [&] { return suitDsp(c.src) && suitDsp(c.dst) && enoughWork(c.width, c.height); });
    if (const char* condition = violatedCondition(c))
        return refuse<slot>({function, condition});
    return call<slot>(target, c, std::make_index_sequence<From::planes>(), std::make_index_sequence<To::planes>());
}

} // namespace rvk
