// What the entries of colour conversions share: conditions, checks and the call.
#pragma once

#include "bodies.h"
#include "color.h"

#include <algorithm>
#include <cstddef>
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

// Where the bytes of a plane lie.
struct Extent
{
    const uint8_t* data;
    uint32_t stride, rows;
    uint64_t rowSize;

    uint64_t size() const { return (uint64_t{rows} - 1) * stride + rowSize; }
};

// Whether planes have bytes in common. Pictures side by side in rows of one stride have none; of other planes whose
// rows mingle it is assumed.
bool overlap(const Extent& a, const Extent& b);

// The planes of a call, those of the source first, and what it must keep.
struct PlanesOfCall
{
    const Extent* planes;
    uint32_t sources, targets;
    uint32_t width, height, leastWidth;
    bool mayRunInPlace;
    const char *sourceCondition, *targetCondition;
};

RVK_IMPL chooseTarget(Slot slot, const PlanesOfCall& call);
// Null when there is none.
const char* violatedCondition(const PlanesOfCall& call);

// ---- what kinds of conversions need ---------------------------------------------------------------------------------

template <class Format>
inline constexpr bool isRotated = false;
template <class Format>
inline constexpr bool isRotated<Rotated180<Format>> = true;

template <class From, class To>
constexpr bool mayRunInPlace()
{
    return From::planes == 1 && To::planes == 1 && From::rowSize(0, 1) == To::rowSize(0, 1) && !isRotated<To>;
}

// A row of pairs is taken in pairs.
template <class From, class To>
constexpr uint32_t leastWidth()
{
    if constexpr (IsToRgb<From, To>)
        return 1u << From::xShift;
    return 1;
}

// ---- calls ----------------------------------------------------------------------------------------------------------

// Packs the planes whose stride is 0, and says where they lie.
template <class Format, class Plane>
void takePlanes(Plane (&planes)[Format::planes], uint32_t width, uint32_t height, Extent* extents)
{
    for (uint32_t i = 0; i < Format::planes; ++i) {
        const uint64_t rowSize = Format::rowSize(i, width);
        planes[i].stride = packedRowIfZero(planes[i].stride, rowSize);
        extents[i] = {planes[i].data, planes[i].stride, Format::rows(i, height), rowSize};
    }
}

// Even arguments are the data of planes, odd ones their strides.
template <size_t i, class Plane, size_t count>
auto argument(const Plane (&planes)[count])
{
    if constexpr (i % 2 == 0)
        return planes[i / 2].data;
    else
        return planes[i / 2].stride;
}

template <Slot slot, class From, class To, size_t... i, size_t... j>
ResultOf<slot> call(RVK_IMPL target, const Conversion<From, To>& c, std::index_sequence<0, 1, i...>,
                    std::index_sequence<j...>)
{
    return implementation<slot>(target)(c.src[0].data, c.width, c.height, c.src[0].stride, argument<i>(c.src)...,
                                        argument<j>(c.dst)...);
}

template <Slot slot, class From, class To>
ResultOf<slot> convert(const char* function, Conversion<From, To> c)
{
    Extent planes[From::planes + To::planes];
    takePlanes<From>(c.src, c.width, c.height, planes);
    takePlanes<To>(c.dst, c.width, c.height, planes + From::planes);
    const PlanesOfCall all = {planes,
                              From::planes,
                              To::planes,
                              c.width,
                              c.height,
                              leastWidth<From, To>(),
                              mayRunInPlace<From, To>(),
                              sourceCondition(From()),
                              targetCondition(To())};
    const RVK_IMPL target = chooseTarget(slot, all);
    if (const char* condition = violatedCondition(all))
        return refuse<slot>({function, condition});
    return call<slot>(target, c, std::make_index_sequence<2 * From::planes>(),
                      std::make_index_sequence<2 * To::planes>());
}

} // namespace rvk
