// Lists of points, and cameras, in the arguments of the entries.
#pragma once

#include "cpu/finite.h"
#include "dispatch.h"

#include <ravik/correspondences.h>

namespace rvk {

constexpr uint32_t kPoint2 = 2 * sizeof(float32_t), kPoint3 = 3 * sizeof(float32_t);

// Points are there, do not overlap, are aligned, and end before 2^31 bytes.
inline bool arePoints(const float32_t* points, uint32_t stride, uint32_t count, uint32_t pointSize)
{
    const uint64_t end = count ? uint64_t{stride} * (count - 1) + pointSize : 0;
    return points && stride >= pointSize && aligned(sizeof(float32_t), stride) && end < uint64_t{1} << 31;
}

// Pairs with strides that are not 0; none, without points, where there is no pointer to them.
inline rvkaCorrespondences withStrides(const rvkaCorrespondences* given, uint32_t srcPoint = kPoint2)
{
    rvkaCorrespondences pairs = {};
    if (given)
        pairs = *given;
    pairs.srcStride = packedIfZero(pairs.srcStride, srcPoint);
    pairs.dstStride = packedIfZero(pairs.dstStride, kPoint2);
    return pairs;
}

inline bool arePairs(const rvkaCorrespondences& pairs, uint32_t srcPoint = kPoint2)
{
    return arePoints(pairs.src, pairs.srcStride, pairs.count, srcPoint) &&
           arePoints(pairs.dst, pairs.dstStride, pairs.count, kPoint2);
}

// Focal lengths and a centre that a camera can have.
inline bool isCamera(const float32_t* camera)
{
    return camera && areFinite(camera, 4) && camera[0] > 0 && camera[1] > 0;
}

} // namespace rvk
