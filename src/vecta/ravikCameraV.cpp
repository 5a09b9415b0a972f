// Vector implementations of points through the lens of a camera: the reference's operations in its order; but on 32-bit
// Arm floats, where they suffice.
#include "cpu/ravikCameraC.h"
#include "vecta/simd/doubles.h"
#include "vecta/vecta.h"

#include <ravik/camera.h>

namespace rvk {
decltype(::rvkGeomDistortPoint2xNf32) rvkGeomDistortPoint2xNf32C;
decltype(::rvkGeomUndistortPoint2xNf32) rvkGeomUndistortPoint2xNf32C;
decltype(::rvkGeomProjectPoint3xNf32) rvkGeomProjectPoint3xNf32C;
} // namespace rvk

namespace rvk::vecta::RVK_ISA {
namespace {

constexpr bool kHasDoubles = Doubles::lanes > 1;

// ---- in doubles -----------------------------------------------------------------------------------------------------

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

// ---- in floats ------------------------------------------------------------------------------------------------------
//
// Without vectors of doubles. A distorted point is off by at most 16 roundings of the formula of magnitudes, 2^-20 of
// it, and what Newton's method finds by less than 2^-18 * (1 + |x| + |y|). Where that, or whether a point has a result at
// all, is not certain the reference is asked; it has what is left of a list, too.

using Floats = Vec<float>;
using FloatPoints = Vecs<float, 2>;

struct FloatLens
{
    Floats fx, fy, cx, cy, perFx, perFy, k1, k2, p1, p2, k3;
    Floats sizeOfK1, sizeOfK2, sizeOfK3, sizeOfP;
    bool isModerate; // no numbers of moderate points overflow

    RVK_INLINE explicit FloatLens(const CameraModel& c)
        : fx(splatFloat(c.fx)), fy(splatFloat(c.fy)), cx(splatFloat(c.cx)), cy(splatFloat(c.cy)),
          perFx(splatFloat(1 / c.fx)), perFy(splatFloat(1 / c.fy)), k1(splatFloat(c.k1)), k2(splatFloat(c.k2)),
          p1(splatFloat(c.p1)), p2(splatFloat(c.p2)), k3(splatFloat(c.k3)), sizeOfK1(abs(k1)), sizeOfK2(abs(k2)),
          sizeOfK3(abs(k3)), sizeOfP(abs(p1) + abs(p2))
    {
        const auto isBelow = [](double number, double limit)
                                 RVK_INLINE_LAMBDA { return number < limit && -number < limit; };
        constexpr double pixels = 0x1p20, coefficient = 0x1p10;
        isModerate = c.fx > 1 / pixels && c.fx < pixels && c.fy > 1 / pixels && c.fy < pixels &&
                     isBelow(c.cx, pixels) && isBelow(c.cy, pixels) && isBelow(c.k1, coefficient) &&
                     isBelow(c.k2, coefficient) && isBelow(c.p1, coefficient) && isBelow(c.p2, coefficient) &&
                     isBelow(c.k3, coefficient);
    }

private:
    static RVK_INLINE Floats splatFloat(double x) { return splat(static_cast<float>(x)); }
};

RVK_INLINE bool areModerate(const FloatPoints& p)
{
    const Floats most = splat(16.0f);
    return all(less(abs(p[0]), most) & less(abs(p[1]), most));
}

// Whether the result counts.
RVK_INLINE bool distort(const FloatLens& c, const FloatPoints& p, FloatPoints& result)
{
    if (!areModerate(p))
        return false;
    const Floats xx = p[0] * p[0], yy = p[1] * p[1], xy = p[0] * p[1], xy2 = xy + xy, r2 = xx + yy;
    const Floats s = splat(1.0f) + r2 * (c.k1 + r2 * (c.k2 + r2 * c.k3));
    result = {c.fx * (p[0] * s + (c.p1 * xy2 + c.p2 * (r2 + (xx + xx)))) + c.cx,
              c.fy * (p[1] * s + (c.p1 * (r2 + (yy + yy)) + c.p2 * xy2)) + c.cy};
    return true;
}

RVK_INLINE bool undistort(const FloatLens& c, const FloatPoints& pixel, FloatPoints& result)
{
    constexpr int mostSteps = 8;
    const Floats one = splat(1.0f), two = splat(2.0f), six = splat(6.0f), least = splat(0.25f);
    const FloatPoints distorted = {(pixel[0] - c.cx) * c.perFx, (pixel[1] - c.cy) * c.perFy};
    const Floats twoK2 = c.k2 + c.k2, threeK3 = c.k3 * splat(3.0f);
    FloatPoints p = distorted;
    for (int step = 0; step < mostSteps; ++step) {
        const Floats xx = p[0] * p[0], yy = p[1] * p[1], xy = p[0] * p[1], xy2 = xy + xy, r2 = xx + yy;
        const Floats s = one + r2 * (c.k1 + r2 * (c.k2 + r2 * c.k3)), ds = c.k1 + r2 * (twoK2 + r2 * threeK3);
        const Floats tx = c.p1 * xy2 + c.p2 * (r2 + (xx + xx)), ty = c.p1 * (r2 + (yy + yy)) + c.p2 * xy2;
        const Floats ex = distorted[0] - (p[0] * s + tx), ey = distorted[1] - (p[1] * s + ty);
        const Floats p1x = c.p1 * p[0], p1y = c.p1 * p[1], p2x = c.p2 * p[0], p2y = c.p2 * p[1];
        const Floats xByX = s + (two * (xx * ds + p1y) + six * p2x);
        const Floats xByY = xy2 * ds + two * (p1x + p2y);
        const Floats yByY = s + (two * (yy * ds + p2x) + six * p1y);
        const Floats determinant = xByX * yByY - xByY * xByY;
        if (!all(greater(s, least) & greater(determinant, least)))
            return false;
        const Floats reciprocal = closeReciprocal(determinant);
        const Floats dx = (yByY * ex - xByY * ey) * reciprocal, dy = (xByX * ey - xByY * ex) * reciprocal;
        p = {p[0] + dx, p[1] + dy};
        const Floats size = one + (abs(p[0]) + abs(p[1]));
        if (!all(less(abs(dx) + abs(dy), splat(0x1p-13f) * size)))
            continue;
        // The errors of ex and ey are at most 18 * 2^-24 of the magnitudes of their terms; what becomes of them here.
        const Floats radial = one + r2 * (c.sizeOfK1 + r2 * (c.sizeOfK2 + r2 * c.sizeOfK3));
        const Floats magnitude = radial * (size - one) + splat(4.0f) * c.sizeOfP * r2;
        const Floats spread = abs(xByX) + abs(xByY) + abs(yByY);
        result = p;
        return all(less(magnitude * spread, splat(2.5f) * determinant * size));
    }
    return false;
}

// Where points are seen, in doubles: what cancels there would be lost. Points that are not in front are not a number.
RVK_INLINE FloatPoints seeFrom(const PoseMatrix& pose, const float* points, size_t step)
{
    float x[Floats::lanes], y[Floats::lanes];
    for (size_t i = 0; i < Floats::lanes; ++i) {
        const double px = points[i * step], py = points[i * step + 1], pz = points[i * step + 2];
        const auto row = [&](int r) RVK_INLINE_LAMBDA {
            return pose.m[r][0] * px + pose.m[r][1] * py + pose.m[r][2] * pz + pose.m[r][3];
        };
        const double z = row(2), reciprocal = z > 0 ? 1 / z : __builtin_nan("");
        x[i] = static_cast<float>(row(0) * reciprocal);
        y[i] = static_cast<float>(row(1) * reciprocal);
    }
    return {load(x), load(y)};
}

RVK_INLINE FloatPoints loadFloats(const float* p, size_t step)
{
    if (step == 2)
        return load2(p);
    float packed[2 * Floats::lanes];
    for (size_t i = 0; i < Floats::lanes; ++i)
        __builtin_memcpy(packed + 2 * i, p + i * step, 2 * sizeof(float));
    return load2(packed);
}

// formula(points from an address, result) of a vector of points at a time, reference(points, how many, results) where
// it says that its result does not count.
template <class Formula, class Reference>
RVK_INLINE rvkStatus mapFloats(const float* src, uint32_t srcStride, size_t count, float* dst, uint32_t dstStride,
                               bool isModerate, Formula formula, Reference reference)
{
    constexpr size_t lanes = Floats::lanes;
    const size_t srcStep = srcStride / sizeof(float), dstStep = dstStride / sizeof(float);
    rvkStatus status = RAVIK_SUCCESS;
    for (size_t i = 0; i < count; i += lanes) {
        const size_t n = count - i < lanes ? count - i : lanes;
        const float* const from = src + i * srcStep;
        float* const to = dst + i * dstStep;
        FloatPoints result;
        if (!(isModerate && n == lanes && formula(from, srcStep, result))) {
            if (reference(from, static_cast<uint32_t>(n), to) != RAVIK_SUCCESS)
                status = RAVIK_EFAIL;
        } else if (dstStep == 2) {
            store2(to, result);
        } else {
            float packed[2 * lanes];
            store2(packed, result);
            for (size_t k = 0; k < lanes; ++k)
                __builtin_memcpy(to + k * dstStep, packed + 2 * k, 2 * sizeof(float));
        }
    }
    return status;
}

} // namespace

rvkStatus rvkGeomDistortPoint2xNf32V(const float32_t* camera, const float32_t* distortion, const float32_t* points,
                                     uint32_t srcStride, uint32_t numPoints, float32_t* distorted, uint32_t dstStride)
{
    const CameraModel model(camera, distortion);
    if constexpr (kHasDoubles) {
        const Lens lens(model);
        return mapPoints<2>(points, srcStride, numPoints, distorted, dstStride,
                            [&](const Points& p) RVK_INLINE_LAMBDA { return distort(lens, p); });
    } else {
        const FloatLens lens(model);
        return mapFloats(
            points, srcStride, numPoints, distorted, dstStride, lens.isModerate,
            [&](const float* from, size_t step, FloatPoints& result)
                RVK_INLINE_LAMBDA { return distort(lens, loadFloats(from, step), result); },
            [&](const float* from, uint32_t n, float* to) {
                return rvkGeomDistortPoint2xNf32C(camera, distortion, from, srcStride, n, to, dstStride);
            });
    }
}

rvkStatus rvkGeomUndistortPoint2xNf32V(const float32_t* camera, const float32_t* distortion, const float32_t* points,
                                       uint32_t srcStride, uint32_t numPoints, float32_t* undistorted,
                                       uint32_t dstStride)
{
    const CameraModel model(camera, distortion);
    if constexpr (kHasDoubles) {
        const Lens lens(model);
        return mapPoints<2>(points, srcStride, numPoints, undistorted, dstStride,
                            [&](const Points& p) RVK_INLINE_LAMBDA { return undistort(lens, p); });
    } else {
        const FloatLens lens(model);
        return mapFloats(
            points, srcStride, numPoints, undistorted, dstStride, lens.isModerate,
            [&](const float* from, size_t step, FloatPoints& result)
                RVK_INLINE_LAMBDA { return undistort(lens, loadFloats(from, step), result); },
            [&](const float* from, uint32_t n, float* to) {
                return rvkGeomUndistortPoint2xNf32C(camera, distortion, from, srcStride, n, to, dstStride);
            });
    }
}

rvkStatus rvkGeomProjectPoint3xNf32V(const float32_t* camera, const float32_t* distortion, const float32_t* pose,
                                     const float32_t* points, uint32_t srcStride, uint32_t numPoints,
                                     float32_t* projected, uint32_t dstStride)
{
    const CameraModel model(camera, distortion);
    const PoseMatrix matrix(pose);
    if constexpr (kHasDoubles) {
        const Lens lens(model);
        const Pose rows(matrix);
        return mapPoints<3>(points, srcStride, numPoints, projected, dstStride,
                            [&](const DoublePoints<3>& p) RVK_INLINE_LAMBDA { return project(lens, rows, p); });
    } else {
        const FloatLens lens(model);
        return mapFloats(
            points, srcStride, numPoints, projected, dstStride, lens.isModerate,
            [&](const float* from, size_t step, FloatPoints& result)
                RVK_INLINE_LAMBDA { return distort(lens, seeFrom(matrix, from, step), result); },
            [&](const float* from, uint32_t n, float* to) {
                return rvkGeomProjectPoint3xNf32C(camera, distortion, pose, from, srcStride, n, to, dstStride);
            });
    }
}

} // namespace rvk::vecta::RVK_ISA
