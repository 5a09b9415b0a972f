// The pairs of a list of correspondences whose strides are not 0.
#pragma once

#include <ravik/correspondences.h>

#include <cstddef>

namespace rvk {

inline const float32_t* pointAt(const float32_t* points, uint32_t stride, size_t i)
{
    return points + i * (stride / sizeof(float32_t));
}
inline const float32_t* srcOf(const rvkaCorrespondences& pairs, size_t i)
{
    return pointAt(pairs.src, pairs.srcStride, i);
}
inline const float32_t* dstOf(const rvkaCorrespondences& pairs, size_t i)
{
    return pointAt(pairs.dst, pairs.dstStride, i);
}
inline bool isChosen(const rvkaCorrespondences& pairs, size_t i)
{
    return !pairs.mask || pairs.mask[i];
}

} // namespace rvk
