// Vector implementations of points through the lens of a camera: the reference's operations in its order.
#include "cpu/ravikCameraC.h"
#include "vecta/simd/doubles.h"
#include "vecta/vecta.h"

#include <ravik/camera.h>

namespace rvk::vecta::RVK_ISA {
namespace {

using Points = DoublePoints<2>;

RVK_INLINE Doubles twice(Doubles a)
{
    return a + a;
}

// The lens, each number in all lanes.
struct Lens
{
    Doubles fx, fy, cx, cy, k1, k2, p1, p2, k3;

    RVK_INLINE explicit Lens(const CameraModel& c)
        : fx(splatDouble(c.fx)), fy(splatDouble(c.fy)), cx(splatDouble(c.cx)), cy(splatDouble(c.cy)),
          k1(splatDouble(c.k1)), k2(splatDouble(c.k2)), p1(splatDouble(c.p1)), p2(splatDouble(c.p2)),
          k3(splatDouble(c.k3))
    {
    }
};

RVK_INLINE Points distort(const Lens& c, const Points& p)
{
    const Doubles xx = p[0] * p[0], yy = p[1] * p[1], xy2 = twice(p[0]) * p[1], r2 = xx + yy;
    const Doubles s = splatDouble(1) + r2 * (c.k1 + r2 * (c.k2 + r2 * c.k3));
    return {c.fx * (p[0] * s + (c.p1 * xy2 + c.p2 * (r2 + twice(xx)))) + c.cx,
            c.fy * (p[1] * s + (c.p1 * (r2 + twice(yy)) + c.p2 * xy2)) + c.cy};
}

RVK_INLINE Points undistort(const Lens& c, const Points& pixel)
{
    const Doubles one = splatDouble(1), three = splatDouble(3), nothing = splatDouble(0);
    const Points none = {splatDouble(__builtin_nan("")), splatDouble(__builtin_nan(""))};
    const Points distorted = {(pixel[0] - c.cx) / c.fx, (pixel[1] - c.cy) / c.fy};
    Points p = distorted, result = none;
    DoubleMask isOpen = notGreater(nothing, one); // lanes that have no result yet
    for (int step = 0; step < kUndistortSteps; ++step) {
        const Doubles xx = p[0] * p[0], yy = p[1] * p[1], xy2 = twice(p[0]) * p[1], r2 = xx + yy;
        const Doubles s = one + r2 * (c.k1 + r2 * (c.k2 + r2 * c.k3));
        const Doubles ds = c.k1 + r2 * (twice(c.k2) + r2 * (three * c.k3));
        const Doubles tx = c.p1 * xy2 + c.p2 * (r2 + twice(xx)), ty = c.p1 * (r2 + twice(yy)) + c.p2 * xy2;
        const Doubles ex = distorted[0] - (p[0] * s + tx), ey = distorted[1] - (p[1] * s + ty);
        const Doubles six1 = splatDouble(6) * c.p1, six2 = splatDouble(6) * c.p2;
        const Doubles xByX = s + (twice(xx) * ds + (twice(c.p1) * p[1] + six2 * p[0]));
        const Doubles xByY = xy2 * ds + (twice(c.p1) * p[0] + twice(c.p2) * p[1]);
        const Doubles yByY = s + (twice(yy) * ds + (six1 * p[1] + twice(c.p2) * p[0]));
        const Doubles determinant = xByX * yByY - xByY * xByY, reciprocal = one / determinant;
        const Doubles dx = (yByY * ex - xByY * ey) * reciprocal, dy = (xByX * ey - xByY * ex) * reciprocal;
        p = {p[0] + dx, p[1] + dy};
        const Doubles limit = splatDouble(kLastUndistortStep) * (one + (abs(p[0]) + abs(p[1])));
        const DoubleMask isLast = isOpen & notGreater(abs(dx) + abs(dy), limit);
        const DoubleMask isGood = isLast & greater(s, nothing) & greater(determinant, nothing);
        result = {select(isGood, p[0], result[0]), select(isGood, p[1], result[1])};
        isOpen = isOpen & ~isLast;
        if (!any(isOpen))
            break;
    }
    return result;
}

struct Pose
{
    Doubles m[3][4];

    RVK_INLINE explicit Pose(const PoseMatrix& pose)
    {
        for (int i = 0; i < 12; ++i)
            m[i / 4][i % 4] = splatDouble(pose.m[i / 4][i % 4]);
    }
};

RVK_INLINE Points project(const Lens& c, const Pose& pose, const DoublePoints<3>& p)
{
    const auto row = [&](int i) RVK_INLINE_LAMBDA {
        return pose.m[i][0] * p[0] + pose.m[i][1] * p[1] + pose.m[i][2] * p[2] + pose.m[i][3];
    };
    const Doubles z = row(2), reciprocal = splatDouble(1) / z, none = splatDouble(__builtin_nan(""));
    const Points distorted = distort(c, {row(0) * reciprocal, row(1) * reciprocal});
    const DoubleMask isInFront = greater(z, splatDouble(0));
    return {select(isInFront, distorted[0], none), select(isInFront, distorted[1], none)};
}

// formula(a vector of points) for the whole list.
template <size_t coordinates, class Formula>
RVK_INLINE rvkStatus mapPoints(const float* src, uint32_t srcStride, size_t count, float* dst, uint32_t dstStride,
                               Formula formula)
{
    const size_t srcStep = srcStride / sizeof(float), dstStep = dstStride / sizeof(float);
    const Doubles largest = splatDouble(kLargestFloat), none = splatDouble(__builtin_nan(""));
    DoubleMask haveAll = notGreater(largest, largest);
    for (size_t i = 0; i < count; i += Doubles::lanes) {
        const Points p = formula(loadPoints<coordinates>(src + i * srcStep, srcStep, count - i));
        const DoubleMask isFinite = notGreater(abs(p[0]), largest) & notGreater(abs(p[1]), largest);
        haveAll = haveAll & isFinite;
        const Points stored = {select(isFinite, p[0], none), select(isFinite, p[1], none)};
        storePoints(dst + i * dstStep, stored, dstStep, count - i);
    }
    return all(haveAll) ? RAVIK_SUCCESS : RAVIK_EFAIL;
}

} // namespace

rvkStatus rvkGeomDistortPoint2xNf32V(const float32_t* camera, const float32_t* distortion, const float32_t* points,
                                     uint32_t srcStride, uint32_t numPoints, float32_t* distorted, uint32_t dstStride)
{
    const Lens lens(CameraModel(camera, distortion));
    return mapPoints<2>(points, srcStride, numPoints, distorted, dstStride,
                        [&](const Points& p) RVK_INLINE_LAMBDA { return distort(lens, p); });
}

rvkStatus rvkGeomUndistortPoint2xNf32V(const float32_t* camera, const float32_t* distortion, const float32_t* points,
                                       uint32_t srcStride, uint32_t numPoints, float32_t* undistorted,
                                       uint32_t dstStride)
{
    const Lens lens(CameraModel(camera, distortion));
    return mapPoints<2>(points, srcStride, numPoints, undistorted, dstStride,
                        [&](const Points& p) RVK_INLINE_LAMBDA { return undistort(lens, p); });
}

rvkStatus rvkGeomProjectPoint3xNf32V(const float32_t* camera, const float32_t* distortion, const float32_t* pose,
                                     const float32_t* points, uint32_t srcStride, uint32_t numPoints,
                                     float32_t* projected, uint32_t dstStride)
{
    const Lens lens(CameraModel(camera, distortion));
    const Pose matrix{PoseMatrix(pose)};
    return mapPoints<3>(points, srcStride, numPoints, projected, dstStride,
                        [&](const DoublePoints<3>& p) RVK_INLINE_LAMBDA { return project(lens, matrix, p); });
}

} // namespace rvk::vecta::RVK_ISA
