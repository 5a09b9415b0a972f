// Pictures of depths and what is made of them, and pictures of another bit depth: the C reference.
#include "functions.h"
#include "image.h"

#include <cfloat>
#include <cmath>
#include <cstdlib>

namespace rvk {

// ---- bit depth ------------------------------------------------------------------------------------------------------

rvkStatus rvkConvertDepthu8s16C(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint32_t shift,
                                int16_t* dst, uint32_t dstStride)
{
    mapElements(
        width, height, Plane{dst, dstStride}, [=](uint8_t value) { return static_cast<int16_t>(value << shift); },
        Plane{src, srcStride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkConvertDepths16u8C(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                uint32_t policy, uint32_t shift, uint8_t* dst, uint32_t dstStride)
{
    mapElements(
        width, height, Plane{dst, dstStride},
        [=](int16_t value) {
            const int shifted = value >> shift;
            return policy == RAVIK_POLICY_SATURATE ? saturate<uint8_t>(shifted) : static_cast<uint8_t>(shifted);
        },
        Plane{src, srcStride});
    return RAVIK_SUCCESS;
}

// ---- pictures of depths ---------------------------------------------------------------------------------------------

namespace {

bool isDepth(float depth)
{
    return depth > 0 && depth <= FLT_MAX;
}

struct Point
{
    double x, y, z;
};

Point operator-(const Point& a, const Point& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

double dot(const Point& a, const Point& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

// A pixel of a picture of `width` x `height`, if it has one there.
struct Pixel
{
    bool exists;
    uint32_t column, row;
};

struct Camera
{
    double fx, fy, cx, cy;

    explicit Camera(const float* camera) : fx(camera[0]), fy(camera[1]), cx(camera[2]), cy(camera[3]) {}

    // The point of a depth.
    Point at(uint32_t column, uint32_t row, double depth) const
    {
        return {(column - cx) * depth / fx, (row - cy) * depth / fy, depth};
    }

    // The pixel nearest to where a point is seen.
    Pixel nearest(const Point& q, uint32_t width, uint32_t height) const
    {
        if (!(q.z > 0))
            return {};
        const double column = fx * (q.x / q.z) + cx + 0.5, row = fy * (q.y / q.z) + cy + 0.5; // rounded down below
        if (!(column >= 0 && column < width && row >= 0 && row < height))
            return {};
        return {true, static_cast<uint32_t>(column), static_cast<uint32_t>(row)};
    }
};

class Pose
{
public:
    explicit Pose(const float* pose) { std::copy_n(pose, 12, m_elements); }

    Point operator()(const Point& p) const { return {row(0, p), row(4, p), row(8, p)}; }

private:
    double row(int first, const Point& p) const
    {
        const double* const r = m_elements + first;
        return r[0] * p.x + r[1] * p.y + r[2] * p.z + r[3];
    }

    double m_elements[12];
};

} // namespace

rvkStatus rvkConvertDepthImageToPointCloudf32C(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, const float32_t* camera, float32_t* dst,
                                               uint32_t dstStride)
{
    const Camera of(camera);
    for (uint32_t y = 0; y < srcHeight; ++y)
        for (uint32_t x = 0; x < srcWidth; ++x) {
            const float depth = Plane{src, srcStride}.row(y)[x];
            float* const point = Plane{dst, dstStride}.row(y) + size_t{3} * x;
            const Point seen = of.at(x, y, isDepth(depth) ? depth : NAN);
            point[0] = static_cast<float>(seen.x);
            point[1] = static_cast<float>(seen.y);
            point[2] = static_cast<float>(seen.z);
        }
    return RAVIK_SUCCESS;
}

rvkStatus rvkRegisterDepthImagef32C(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    const float32_t* srcCamera, const float32_t* pose, const float32_t* dstCamera,
                                    float32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    const Camera from(srcCamera), to(dstCamera);
    const Pose move(pose);
    for (uint32_t y = 0; y < dstHeight; ++y)
        std::fill_n(Plane{dst, dstStride}.row(y), dstWidth, 0.0f);
    for (uint32_t y = 0; y < srcHeight; ++y)
        for (uint32_t x = 0; x < srcWidth; ++x) {
            const float seen = Plane{src, srcStride}.row(y)[x];
            if (!isDepth(seen))
                continue;
            const Point q = move(from.at(x, y, seen));
            const Pixel pixel = to.nearest(q, dstWidth, dstHeight);
            const auto depth = static_cast<float>(q.z);
            if (!pixel.exists || !isDepth(depth))
                continue;
            float& nearest = Plane{dst, dstStride}.row(pixel.row)[pixel.column];
            if (nearest == 0 || depth < nearest)
                nearest = depth;
        }
    return RAVIK_SUCCESS;
}

namespace {

constexpr uint32_t kBlockSide = 8, kBlockVoxels = kBlockSide * kBlockSide * kBlockSide;

// The quotient rounded, halves away from zero. The divisor is positive, twice the dividend and it fit 32 bits.
int32_t divideRounded(int32_t dividend, uint32_t divisor)
{
    const auto magnitude = static_cast<uint32_t>(std::abs(dividend));
    const auto quotient = static_cast<int32_t>((2 * magnitude + divisor) / (2 * divisor));
    return dividend < 0 ? -quotient : quotient;
}

void fuse(double before, double truncation, int16_t maxWeight, int16_t& distance, int16_t& weight)
{
    const double part = std::min(1.0, before / truncation) * 32767;
    const auto s = static_cast<int32_t>(part < 0 ? part - 0.5 : part + 0.5);
    const int32_t w = std::max<int32_t>(weight, 0);
    distance = static_cast<int16_t>(divideRounded(distance * w + s, static_cast<uint32_t>(w) + 1));
    weight = static_cast<int16_t>(std::min<int32_t>(w + 1, maxWeight));
}

} // namespace

rvkStatus rvkDepthFusion8x8x8xNs16C(int16_t* distances, int16_t* weights, const int32_t* blocks, uint32_t numBlocks,
                                    float32_t voxelSize, float32_t truncation, int16_t maxWeight,
                                    const float32_t* depth, uint32_t width, uint32_t height, uint32_t stride,
                                    const float32_t* camera, const float32_t* pose)
{
    const Camera of(camera);
    const Pose toCamera(pose);
    for (size_t voxel = 0; voxel < size_t{numBlocks} * kBlockVoxels; ++voxel) {
        const int32_t* const block = blocks + voxel / kBlockVoxels * 3;
        const auto centre = [&](int32_t coordinate, size_t step) {
            const auto i = static_cast<uint32_t>(voxel / step % kBlockSide);
            return (8.0 * coordinate + i + 0.5) * voxelSize;
        };
        const Point q =
            toCamera({centre(block[0], 1), centre(block[1], kBlockSide), centre(block[2], kBlockSide * kBlockSide)});
        const Pixel pixel = of.nearest(q, width, height);
        const float seen = pixel.exists ? Plane{depth, stride}.row(pixel.row)[pixel.column] : 0;
        if (const double before = seen - q.z; isDepth(seen) && before >= -truncation)
            fuse(before, truncation, maxWeight, distances[voxel], weights[voxel]);
    }
    return RAVIK_SUCCESS;
}

// ---- alignment ------------------------------------------------------------------------------------------------------

namespace {

// The sums of `size` unknowns.
template <uint32_t size>
class NormalEquations
{
public:
    void add(const double (&j)[size], double e)
    {
        for (uint32_t row = 0; row < size; ++row) {
            for (uint32_t column = 0; column <= row; ++column)
                m_jtj[row][column] += j[row] * j[column];
            m_jte[row] += j[row] * e;
        }
        m_squares += e * e;
        ++m_count;
    }

    rvkStatus store(float* jtj, float* jte, float* sumSquares, uint32_t* count) const
    {
        if (!fitsFloats())
            return RAVIK_EFAIL;
        for (uint32_t row = 0; row < size; ++row) {
            for (uint32_t column = 0; column < size; ++column)
                jtj[row * size + column] = static_cast<float>(m_jtj[std::max(row, column)][std::min(row, column)]);
            jte[row] = static_cast<float>(m_jte[row]);
        }
        *sumSquares = static_cast<float>(m_squares);
        *count = m_count;
        return RAVIK_SUCCESS;
    }

private:
    bool fitsFloats() const
    {
        bool fits = m_squares <= FLT_MAX;
        for (uint32_t row = 0; row < size; ++row) {
            fits &= std::fabs(m_jte[row]) <= FLT_MAX;
            for (uint32_t column = 0; column <= row; ++column)
                fits &= std::fabs(m_jtj[row][column]) <= FLT_MAX;
        }
        return fits;
    }

    double m_jtj[size][size] = {}, m_jte[size] = {}, m_squares = 0;
    uint32_t m_count = 0;
};

bool isFinite(float number)
{
    return std::fabs(number) <= FLT_MAX;
}

} // namespace

rvkStatus rvkJacobianSE2f32C(const float32_t* warped, const float32_t* reference, uint32_t width, uint32_t height,
                             uint32_t srcStride, const float32_t* dx, const float32_t* dy, uint32_t dxyStride,
                             float32_t* jtj, float32_t* jte, float32_t* sumSquares, uint32_t* numPixels)
{
    const double centreX = (width - 1.0) / 2, centreY = (height - 1.0) / 2;
    NormalEquations<3> sums;
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x) {
            const float w = Plane{warped, srcStride}.row(y)[x], r = Plane{reference, srcStride}.row(y)[x];
            const float gx = Plane{dx, dxyStride}.row(y)[x], gy = Plane{dy, dxyStride}.row(y)[x];
            if (isFinite(w) && isFinite(r) && isFinite(gx) && isFinite(gy))
                sums.add({gx, gy, gy * (x - centreX) - gx * (y - centreY)}, double{w} - r);
        }
    return sums.store(jtj, jte, sumSquares, numPixels);
}

rvkStatus rvkICPJacobianErrorSE3f32C(const float32_t* points, uint32_t numPoints, uint32_t pointStride,
                                     const float32_t* vertexMap, const float32_t* normalMap, uint32_t width,
                                     uint32_t height, uint32_t mapStride, const float32_t* camera,
                                     const float32_t* pose, float32_t maxDistance, float32_t* jtj, float32_t* jte,
                                     float32_t* sumSquares, uint32_t* numMatched)
{
    const Camera of(camera);
    const Pose toCamera(pose);
    const double farthest = double{maxDistance} * maxDistance;
    NormalEquations<6> sums;
    for (uint32_t i = 0; i < numPoints; ++i) {
        const float* const point = Plane{points, pointStride}.row(i);
        const Point q = toCamera({point[0], point[1], point[2]});
        const Pixel pixel = of.nearest(q, width, height);
        if (!pixel.exists)
            continue;
        const float* const vertex = Plane{vertexMap, mapStride}.row(pixel.row) + size_t{3} * pixel.column;
        const float* const normal = Plane{normalMap, mapStride}.row(pixel.row) + size_t{3} * pixel.column;
        if (!(vertex[2] > 0 && std::all_of(vertex, vertex + 3, isFinite) && std::all_of(normal, normal + 3, isFinite)))
            continue;
        const Point n{normal[0], normal[1], normal[2]}, away = q - Point{vertex[0], vertex[1], vertex[2]};
        if (dot(away, away) <= farthest)
            sums.add({n.x, n.y, n.z, q.y * n.z - q.z * n.y, q.z * n.x - q.x * n.z, q.x * n.y - q.y * n.x},
                     dot(n, away));
    }
    return sums.store(jtj, jte, sumSquares, numMatched);
}

} // namespace rvk
