// C references of points through the lens of a camera.
#include "cpu/ravikCameraC.h"

#include "functions.h"

#include <ravik/camera.h>

#include <cmath>

namespace rvk {

CameraModel::CameraModel(const float* camera, const float* distortion)
    : fx(camera[0]), fy(camera[1]), cx(camera[2]), cy(camera[3]), k1(0), k2(0), p1(0), p2(0), k3(0)
{
    if (distortion) {
        k1 = distortion[0];
        k2 = distortion[1];
        p1 = distortion[2];
        p2 = distortion[3];
        k3 = distortion[4];
    }
}

PoseMatrix::PoseMatrix(const float* pose)
{
    for (int i = 0; i < 12; ++i)
        m[i / 4][i % 4] = pose[i];
}

namespace {

struct Point
{
    double x, y;
};

Point distort(const CameraModel& c, Point p)
{
    const double xx = p.x * p.x, yy = p.y * p.y, xy2 = 2 * p.x * p.y, r2 = xx + yy;
    const double s = 1 + r2 * (c.k1 + r2 * (c.k2 + r2 * c.k3));
    return {c.fx * (p.x * s + (c.p1 * xy2 + c.p2 * (r2 + 2 * xx))) + c.cx,
            c.fy * (p.y * s + (c.p1 * (r2 + 2 * yy) + c.p2 * xy2)) + c.cy};
}

constexpr Point kNone = {NAN, NAN};

Point undistort(const CameraModel& c, Point pixel)
{
    const Point distorted = {(pixel.x - c.cx) / c.fx, (pixel.y - c.cy) / c.fy};
    Point p = distorted;
    for (int step = 0; step < kUndistortSteps; ++step) {
        const double xx = p.x * p.x, yy = p.y * p.y, xy2 = 2 * p.x * p.y, r2 = xx + yy;
        const double s = 1 + r2 * (c.k1 + r2 * (c.k2 + r2 * c.k3));
        const double ds = c.k1 + r2 * (2 * c.k2 + r2 * (3 * c.k3)); // by r2
        const double tx = c.p1 * xy2 + c.p2 * (r2 + 2 * xx), ty = c.p1 * (r2 + 2 * yy) + c.p2 * xy2;
        const double ex = distorted.x - (p.x * s + tx), ey = distorted.y - (p.y * s + ty);
        // The derivatives of (x s + tx, y s + ty): xByX, xByY = yByX, yByY.
        const double xByX = s + (2 * xx * ds + (2 * c.p1 * p.y + 6 * c.p2 * p.x));
        const double xByY = xy2 * ds + (2 * c.p1 * p.x + 2 * c.p2 * p.y);
        const double yByY = s + (2 * yy * ds + (6 * c.p1 * p.y + 2 * c.p2 * p.x));
        const double determinant = xByX * yByY - xByY * xByY, reciprocal = 1 / determinant;
        const double dx = (yByY * ex - xByY * ey) * reciprocal, dy = (xByX * ey - xByY * ex) * reciprocal;
        p = {p.x + dx, p.y + dy};
        if (std::fabs(dx) + std::fabs(dy) <= kLastUndistortStep * (1 + (std::fabs(p.x) + std::fabs(p.y))))
            return s > 0 && determinant > 0 ? p : kNone;
    }
    return kNone;
}

Point project(const CameraModel& c, const PoseMatrix& pose, const float* point)
{
    const auto row = [&](int i) {
        return pose.m[i][0] * point[0] + pose.m[i][1] * point[1] + pose.m[i][2] * point[2] + pose.m[i][3];
    };
    const double z = row(2), reciprocal = 1 / z;
    return z > 0 ? distort(c, {row(0) * reciprocal, row(1) * reciprocal}) : kNone;
}

// formula(floats of a point) for each of the list.
template <class Formula>
rvkStatus mapPoints(const float* src, uint32_t srcStride, uint32_t count, float* dst, uint32_t dstStride,
                    Formula formula)
{
    bool haveAll = true;
    for (size_t i = 0; i < count; ++i) {
        Point p = formula(src + i * (srcStride / sizeof(float)));
        if (!(std::fabs(p.x) <= kLargestFloat && std::fabs(p.y) <= kLargestFloat)) {
            p = kNone;
            haveAll = false;
        }
        float* const result = dst + i * (dstStride / sizeof(float));
        result[0] = static_cast<float>(p.x);
        result[1] = static_cast<float>(p.y);
    }
    return haveAll ? RAVIK_SUCCESS : RAVIK_EFAIL;
}

constexpr uint32_t kSize2 = 2 * sizeof(float), kSize3 = 3 * sizeof(float);

} // namespace

rvkStatus rvkGeomDistortPoint2xNf32C(const float32_t* camera, const float32_t* distortion, const float32_t* points,
                                     uint32_t srcStride, uint32_t numPoints, float32_t* distorted, uint32_t dstStride)
{
    const CameraModel model(camera, distortion);
    return mapPoints(points, srcStride, numPoints, distorted, dstStride, [&](const float* p) {
        return distort(model, {p[0], p[1]});
    });
}

rvkStatus rvkGeomDistortPoint2x1f32C(const float32_t* camera, const float32_t* distortion, const float32_t* point,
                                     float32_t* distorted)
{
    return rvkGeomDistortPoint2xNf32C(camera, distortion, point, kSize2, 1, distorted, kSize2);
}

rvkStatus rvkGeomUndistortPoint2xNf32C(const float32_t* camera, const float32_t* distortion, const float32_t* points,
                                       uint32_t srcStride, uint32_t numPoints, float32_t* undistorted,
                                       uint32_t dstStride)
{
    const CameraModel model(camera, distortion);
    return mapPoints(points, srcStride, numPoints, undistorted, dstStride, [&](const float* p) {
        return undistort(model, {p[0], p[1]});
    });
}

rvkStatus rvkGeomUndistortPoint2x1f32C(const float32_t* camera, const float32_t* distortion, const float32_t* point,
                                       float32_t* undistorted)
{
    return rvkGeomUndistortPoint2xNf32C(camera, distortion, point, kSize2, 1, undistorted, kSize2);
}

rvkStatus rvkGeomProjectPoint3xNf32C(const float32_t* camera, const float32_t* distortion, const float32_t* pose,
                                     const float32_t* points, uint32_t srcStride, uint32_t numPoints,
                                     float32_t* projected, uint32_t dstStride)
{
    const CameraModel model(camera, distortion);
    const PoseMatrix matrix(pose);
    return mapPoints(points, srcStride, numPoints, projected, dstStride,
                     [&](const float* p) { return project(model, matrix, p); });
}

rvkStatus rvkGeomProjectPoint3x1f32C(const float32_t* camera, const float32_t* distortion, const float32_t* pose,
                                     const float32_t* point, float32_t* projected)
{
    return rvkGeomProjectPoint3xNf32C(camera, distortion, pose, point, kSize3, 1, projected, kSize2);
}

} // namespace rvk
