// What the C and the vector implementations of cameras share.
#pragma once

#include <cstddef>
#include <cstdint>

namespace rvk {

// A camera and what its lens does, nothing where there is no distortion.
struct CameraModel
{
    double fx, fy, cx, cy;
    double k1, k2, p1, p2, k3;

    CameraModel(const float* camera, const float* distortion);
};

// World to camera, [R | t].
struct PoseMatrix
{
    double m[3][4];

    explicit PoseMatrix(const float* pose);
};

constexpr int kUndistortSteps = 20;
constexpr double kLastUndistortStep = 0x1p-22; // times 1 + |x| + |y|, or less
constexpr double kLargestFloat = 0x1.fffffep127;

} // namespace rvk
