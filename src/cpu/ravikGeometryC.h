// What the reference of maps fitted to correspondences shares with the vector implementation. Correspondences have their
// strides here, and those of a search are packed.
#pragma once

#include <ravik/geometry.h>

#include <cstddef>

namespace rvk {

// |model(src) - dst|^2 of one pair, rounded once; infinity where there is none.
using SquaredError = float32_t(const float32_t* model, const float32_t* src, const float32_t* dst);
SquaredError affineSquaredError, homographySquaredError, poseSquaredError;

// The number of inliers of a homography among packed pairs without a mask. It may stop where it sees that there are no
// more than `best`. `inliers`, which may be null, gets a byte for each pair when it does not.
using CountInliers = uint32_t(const rvkaCorrespondences& packed, const float32_t* homography, float32_t maxSquaredError,
                              uint32_t best, uint8_t* inliers);

struct RobustSearch
{
    float32_t maxSquaredError;
    uint32_t maxIterations;
    float32_t confidence;
    uint32_t seed;
    CountInliers* countInliers;
};
rvkStatus fitRobustly(const rvkaCorrespondences& pairs, const RobustSearch& search, float32_t* homography,
                      uint8_t* inliers, uint32_t* numInliers);

} // namespace rvk
