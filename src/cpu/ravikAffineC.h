// What the C and the vector implementations of the transforms share.
#pragma once

namespace rvk {

// A camera, what its lens does, and the depth of a disparity of 1.
struct LensCamera
{
    float fx, fy, cx, cy;
    float reciprocalFx, reciprocalFy;
    float k1, k2, p1, p2, k3;
    float depthOfOne;
};

// `distortion` may be null.
LensCamera lensCamera(const float* camera, const float* distortion, float baseline);

} // namespace rvk
