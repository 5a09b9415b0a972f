// C references of the transforms.
#include "cpu/ravikAffineC.h"
#include "cpu/finite.h"
#include "cpu/image.h"
#include "functions.h"
#include "log.h"

#include <cmath>

namespace rvk {

// ---- patches --------------------------------------------------------------------------------------------------------

namespace {

// The largest float that is no more than the number.
float floatUpTo(uint32_t number)
{
    const auto nearest = static_cast<float>(number);
    return nearest > static_cast<double>(number) ? std::nextafter(nearest, 0.0f) : nearest;
}

// Everything outside becomes the nearest edge, what is no number 0.
float clampPosition(float position, float last)
{
    const float fromFirst = position > 0 ? position : 0;
    return fromFirst < last ? fromFirst : last;
}

} // namespace

PatchSource patchSource(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride)
{
    return {src, width, height, stride, floatUpTo(width - 1), floatUpTo(height - 1)};
}

bool placePatch(const PatchSource& source, const float* position, const float* affine, uint32_t patchWidth,
                uint32_t patchHeight, PatchStart& start)
{
    const float hw = static_cast<float>(patchWidth) * 0.5f, hh = static_cast<float>(patchHeight) * 0.5f;
    const auto isInside = [&](PatchStart corner) { // no comparison with what is no number is true
        return corner.x >= 0 && corner.x <= source.right && corner.y >= 0 && corner.y <= source.bottom;
    };
    const auto left = [&](float pos, float m0, float m1) { return pos - (m0 * hw + m1 * hh); };
    const auto right = [&](float pos, float m0, float m1) { return pos + (m0 * (hw - 1) - m1 * hh); };
    const auto bottomLeft = [&](float pos, float m0, float m1) { return pos - (m0 * hw - m1 * (hh - 1)); };
    const auto bottomRight = [&](float pos, float m0, float m1) { return pos + (m0 * (hw - 1) + m1 * (hh - 1)); };
    const auto both = [&](auto corner) {
        return PatchStart{corner(position[0], affine[0], affine[1]), corner(position[1], affine[2], affine[3])};
    };
    start = both(left);
    return isInside(start) && isInside(both(right)) && isInside(both(bottomLeft)) && isInside(both(bottomRight));
}

uint8_t samplePatch(const PatchSource& source, float x, float y)
{
    x = clampPosition(x, source.right);
    y = clampPosition(y, source.bottom);
    const uint32_t ix = static_cast<uint32_t>(x), iy = static_cast<uint32_t>(y);
    const float fx = x - static_cast<float>(ix), fy = y - static_cast<float>(iy);
    // At the last column and row the neighbour has no weight, and need not exist.
    const uint32_t nextX = std::min(ix + 1, source.width - 1), nextY = std::min(iy + 1, source.height - 1);
    const Plane image{source.data, source.stride};
    const float p00 = image.row(iy)[ix], p01 = image.row(iy)[nextX];
    const float p10 = image.row(nextY)[ix], p11 = image.row(nextY)[nextX];
    const float top = p00 + fx * (p01 - p00), bottom = p10 + fx * (p11 - p10);
    return static_cast<uint8_t>(top + fy * (bottom - top));
}

rvkStatus rvkTransformAffineu8_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   const float32_t* position, const float32_t* affine, uint8_t* patch,
                                   uint32_t patchWidth, uint32_t patchHeight, uint32_t patchStride)
{
    const PatchSource source = patchSource(src, srcWidth, srcHeight, srcStride);
    PatchStart start;
    if (!placePatch(source, position, affine, patchWidth, patchHeight, start))
        return RAVIK_EFAIL;
    const Plane dst{patch, patchStride};
    for (uint32_t j = 0; j < patchHeight; ++j) {
        float x = start.x + static_cast<float>(j) * affine[1], y = start.y + static_cast<float>(j) * affine[3];
        for (uint32_t i = 0; i < patchWidth; ++i) {
            dst.row(j)[i] = samplePatch(source, x, y);
            x += affine[0];
            y += affine[2];
        }
    }
    return RAVIK_SUCCESS;
}

// ---- clipped transforms of pictures ---------------------------------------------------------------------------------

ClippedMap clippedMap(const ClippedSource& source, const float* position, const float* affine, uint32_t dstWidth,
                      uint32_t dstHeight)
{
    const double m0 = affine[0], m1 = affine[1], m2 = affine[2], m3 = affine[3];
    const double halfWidth = dstWidth * 0.5, halfHeight = dstHeight * 0.5;
    return {.startX = position[0] - (m0 * halfWidth + m1 * halfHeight),
            .startY = position[1] - (m2 * halfWidth + m3 * halfHeight),
            .acrossX = m0,
            .acrossY = m2,
            .downX = m1,
            .downY = m3,
            .right = source.width - 1.0,
            .bottom = source.height - 1.0};
}

namespace {

int32_t fixedInside(double coordinate, double last)
{
    const double fromFirst = coordinate > 0 ? coordinate : 0;
    return static_cast<int32_t>((fromFirst < last ? fromFirst : last) * 65536);
}

} // namespace

ClippedPosition clippedPosition(const ClippedSource& source, const ClippedRun& run, uint32_t column)
{
    const uint32_t beyondAnchor = column % kClippedAnchors;
    const int64_t toAnchor = int64_t{column} - beyondAnchor - run.first; // which may be before the run
    const auto inside = [&](int64_t start, int64_t step, uint32_t size) {
        const int64_t anchor = (start + toAnchor * step) >> 16;
        const int64_t position = anchor + beyondAnchor * (step / 65536); // truncated, so that no anchor is passed
        return static_cast<int32_t>(std::clamp<int64_t>(position, 0, int64_t{size - 1} << 16));
    };
    return {inside(run.x, run.stepX, source.width), inside(run.y, run.stepY, source.height)};
}

void sampleNearest(const ClippedSource& source, ClippedPosition position, uint8_t* dst)
{
    const uint8_t* const row = Plane{source.data, source.stride}.row(static_cast<size_t>((position.y + 32768) >> 16));
    *dst = row[(position.x + 32768) >> 16];
}

void sampleBilinear(const ClippedSource& source, ClippedPosition position, uint8_t* dst)
{
    const int32_t ix = position.x >> 16, iy = position.y >> 16, fx = position.x & 65535, fy = position.y & 65535;
    const uint8_t* const row = Plane{source.data, source.stride}.row(static_cast<size_t>(iy));
    const uint8_t* const nextRow = fy ? row + source.stride : row; // neighbours without weight need not exist
    const int32_t next = fx ? ix + 1 : ix;
    const auto down = [&](int32_t column) { // 7 bits of fraction
        return row[column] * 128 + (((nextRow[column] - row[column]) * 128 * (fy >> 1) + 16384) >> 15);
    };
    const int32_t left = down(ix), right = down(next);
    *dst = static_cast<uint8_t>((left + ((fx * (right - left)) >> 16) + 64) >> 7);
}

namespace {

// Keys' weights of the four pixels around a position, with 14 bits; they add up to 1.
//     (-t + 2 t^2 - t^3) / 2, (2 - 5 t^2 + 3 t^3) / 2, (t + 4 t^2 - 3 t^3) / 2, (-t^2 + t^3) / 2
struct CubicWeights
{
    int32_t w[4];

    explicit CubicWeights(int32_t coordinate)
    {
        const int32_t t = (coordinate & 65535) >> 1, t2 = (t * t + 16384) >> 15, t3 = (t2 * t + 16384) >> 15;
        w[0] = (2 * t2 - t - t3 + 2) >> 2;
        w[2] = t2 - t3 + ((t + t3 + 2) >> 2);
        w[3] = (t3 - t2 + 2) >> 2;
        w[1] = 16384 - w[0] - w[2] - w[3];
    }
    // The rounded weighted sum, less `bits` of fraction.
    template <class At>
    int32_t sum(uint32_t bits, At at) const
    {
        return (w[0] * at(0) + w[1] * at(1) + w[2] * at(2) + w[3] * at(3) + (1 << (bits - 1))) >> bits;
    }
};

} // namespace

void sampleCubicRgb(const ClippedSource& source, ClippedPosition position, uint8_t* dst)
{
    const CubicWeights across(position.x), down(position.y);
    const auto pixel = [&](int32_t row, int32_t column, int32_t channel) {
        const int32_t y = std::clamp((position.y >> 16) - 1 + row, 0, static_cast<int32_t>(source.height) - 1);
        const int32_t x = std::clamp((position.x >> 16) - 1 + column, 0, static_cast<int32_t>(source.width) - 1);
        return int32_t{Plane{source.data, source.stride}.row(static_cast<size_t>(y))[3 * x + channel]};
    };
    for (int32_t channel = 0; channel < 3; ++channel) {
        const auto columnSum = [&](int32_t column) { // 6 bits of fraction
            return down.sum(8, [&](int32_t row) { return pixel(row, column, channel); });
        };
        dst[channel] = saturate<uint8_t>(across.sum(20, columnSum));
    }
}

void fillClipped(const ClippedSource& source, const ClippedRules& rules, const ClippedMap& map, uint32_t row,
                 uint32_t first, uint32_t end, uint8_t* dst)
{
    const size_t channels = rules.channels;
    if (rules.borderType == RAVIK_BORDER_CONSTANT && channels == 1) {
        std::fill(dst + first, dst + end, *rules.borderValue);
    } else if (rules.borderType == RAVIK_BORDER_CONSTANT) {
        for (uint32_t i = first; i < end; ++i)
            std::copy_n(rules.borderValue, channels, dst + i * channels);
    } else if (rules.borderType == RAVIK_BORDER_REPLICATE) {
        for (uint32_t i = first; i < end; ++i) {
            const ExactPosition p = positionOf(map, row, i);
            const ClippedPosition nearest = {fixedInside(p.x, map.right), fixedInside(p.y, map.bottom)};
            rules.sample(source, nearest, dst + i * channels);
        }
    }
}

namespace {

bool isIntegralNumber(int64_t fixed)
{
    return (fixed & 0xffffffff) == 0;
}

void requireInvariant(bool holds, int line, const char* condition)
{
    if (!holds)
        failInternalAssertion("src/cpu/ravikWarpC", line, condition);
}

// A run along a row of the source: nothing to interpolate down. It gives what any run does.
void sampleHorizontalRun(const ClippedSource& source, const ClippedRun& pos, uint8_t* dst)
{
    requireInvariant(isIntegralNumber(pos.y), 211, "isIntegralNumber(pos.y)");
    const uint8_t* const row = Plane{source.data, source.stride}.row(static_cast<size_t>(pos.y >> 32));
    for (uint32_t i = pos.first; i < pos.end; ++i) {
        const int32_t x = clippedPosition(source, pos, i).x, ix = x >> 16, fx = x & 65535;
        const int32_t p0 = row[ix], p1 = static_cast<uint32_t>(ix) == source.width - 1 ? p0 : row[ix + 1];
        const int32_t c = p0 + ((fx * (p1 - p0) + 32768) >> 16);
        requireInvariant(c >= 0 && c < 256, 224, "c>=0 && c<256");
        dst[i] = static_cast<uint8_t>(c);
    }
}

void transformClipped(const ClippedSource& source, const ClippedRules& rules, const float* position,
                      const float* affine, Plane<uint8_t> dst, uint32_t dstWidth, uint32_t dstHeight)
{
    const ClippedMap map = clippedMap(source, position, affine, dstWidth, dstHeight);
    for (uint32_t j = 0; j < dstHeight; ++j) {
        const ClippedRun run = clippedRun(map, j, 0, dstWidth);
        fillClipped(source, rules, map, j, 0, run.first, dst.row(j));
        fillClipped(source, rules, map, j, run.end, dstWidth, dst.row(j));
        const double y = map.startY + j * map.downY;
        if (rules.sample == sampleBilinear && map.acrossY == 0 && y == std::floor(y))
            sampleHorizontalRun(source, run, dst.row(j));
        else
            for (uint32_t i = run.first; i < run.end; ++i)
                rules.sample(source, clippedPosition(source, run, i), dst.row(j) + size_t{i} * rules.channels);
    }
}

} // namespace

rvkStatus rvkTransformAffineClippedu8_v3C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          const float32_t* position, const float32_t* affine, uint8_t* dst,
                                          uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                          uint32_t interpolation, uint32_t borderType, uint8_t borderValue)
{
    const bool isNearest = interpolation == RAVIK_INTERPOLATION_NEAREST;
    transformClipped({src, srcWidth, srcHeight, srcStride},
                     {isNearest ? sampleNearest : sampleBilinear, 1, borderType, &borderValue}, position, affine,
                     {dst, dstStride}, dstWidth, dstHeight);
    return RAVIK_SUCCESS;
}

rvkStatus rvk3ChannelTransformAffineClippedBCu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                 uint32_t srcStride, const float32_t* position, const float32_t* affine,
                                                 uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight,
                                                 uint32_t dstStride, uint32_t borderType, const uint8_t* borderValue)
{
    transformClipped({src, srcWidth, srcHeight, srcStride}, {sampleCubicRgb, 3, borderType, borderValue}, position,
                     affine, {dst, dstStride}, dstWidth, dstHeight);
    return RAVIK_SUCCESS;
}

// ---- transforms from points, inverses -------------------------------------------------------------------------------

namespace {

using Matrix = double[3][3];

void multiply(const Matrix& a, const Matrix& b, Matrix& product)
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            product[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
}

// The inverse times the determinant.
void adjugate(const Matrix& m, Matrix& result)
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            const int i1 = (i + 1) % 3, i2 = (i + 2) % 3, j1 = (j + 1) % 3, j2 = (j + 2) % 3;
            result[j][i] = m[i1][j1] * m[i2][j2] - m[i1][j2] * m[i2][j1];
        }
}

// Four points as seen from the first, in which lies (0, 0).
class Quadrilateral
{
public:
    explicit Quadrilateral(const float* points)
    {
        for (int i = 0; i < 4; ++i) {
            m_x[i] = double{points[2 * i]} - points[0];
            m_y[i] = double{points[2 * i + 1]} - points[1];
        }
    }

    // Twice the area of the triangle of three of the points. It is 0 where they are on a line, and, as products of
    // floats are exact, only there, unless the points lie wider apart than doubles have digits.
    double area(int a, int b, int c) const
    {
        return (m_x[b] - m_x[a]) * (m_y[c] - m_y[a]) - (m_y[b] - m_y[a]) * (m_x[c] - m_x[a]);
    }
    bool isGeneral() const
    {
        return area(0, 1, 2) != 0 && area(0, 1, 3) != 0 && area(0, 2, 3) != 0 && area(1, 2, 3) != 0;
    }

    // The matrix that maps (1, 0, 0), (0, 1, 0), (0, 0, 1) and (1, 1, 1) to the points: its columns are the first
    // three, weighted so that they add up to the fourth.
    void basis(Matrix& m) const
    {
        const double weights[] = {area(1, 2, 3), -area(0, 2, 3), area(0, 1, 3)};
        for (int i = 0; i < 3; ++i) {
            m[0][i] = weights[i] * m_x[i];
            m[1][i] = weights[i] * m_y[i];
            m[2][i] = weights[i];
        }
    }

private:
    double m_x[4], m_y[4];
};

} // namespace

rvkStatus rvkGetPerspectiveTransformf32C(const float32_t* src, const float32_t* dst, float32_t* matrix)
{
    const Quadrilateral from(src), to(dst);
    if (!from.isGeneral() || !to.isGeneral())
        return RAVIK_EFAIL;
    Matrix fromBasis, toBasis, coordinates, map, fromOrigin;
    from.basis(fromBasis);
    to.basis(toBasis);
    adjugate(fromBasis, coordinates);
    multiply(toBasis, coordinates, map);
    const Matrix toFirst = {{1, 0, -double{src[0]}}, {0, 1, -double{src[1]}}, {0, 0, 1}};
    const Matrix fromFirst = {{1, 0, dst[0]}, {0, 1, dst[1]}, {0, 0, 1}};
    multiply(map, toFirst, fromOrigin);
    multiply(fromFirst, fromOrigin, map);
    double elements[9];
    for (int i = 0; i < 9; ++i)
        elements[i] = map[i / 3][i % 3] / map[2][2];
    return storeFinite(elements, matrix) ? RAVIK_SUCCESS : RAVIK_EFAIL;
}

rvkStatus rvkInvertAffineTransformf32C(const float32_t* matrix, float32_t* inverse)
{
    const double a = matrix[0], b = matrix[1], x = matrix[2], c = matrix[3], d = matrix[4], y = matrix[5];
    const double determinant = a * d - b * c;
    if (determinant == 0)
        return RAVIK_EFAIL;
    const double elements[] = {d / determinant,  -b / determinant, (b * y - d * x) / determinant,
                               -c / determinant, a / determinant,  (c * x - a * y) / determinant};
    return storeFinite(elements, inverse) ? RAVIK_SUCCESS : RAVIK_EFAIL;
}

// ---- depth ----------------------------------------------------------------------------------------------------------

LensCamera lensCamera(const float* camera, const float* distortion, float baseline)
{
    const float fx = camera[0], fy = camera[1];
    LensCamera lens = {fx, fy, camera[2], camera[3], 1 / fx, 1 / fy, 0, 0, 0, 0, 0, fx * baseline};
    if (distortion) {
        lens.k1 = distortion[0];
        lens.k2 = distortion[1];
        lens.p1 = distortion[2];
        lens.p2 = distortion[3];
        lens.k3 = distortion[4];
    }
    return lens;
}

namespace {

// The pixel nearest to a position of one direction; `size`, which is none, where there is no pixel.
uint32_t nearestPixel(float position, uint32_t size)
{
    const float rounded = position + 0.5f;
    if (!(rounded >= 0 && rounded < 4294967296.0f))
        return size;
    return std::min(static_cast<uint32_t>(rounded), size);
}

} // namespace

rvkStatus rvkUndistortDisparityConvertDepthf32C(const float32_t* disparity, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, const float32_t* camera,
                                                const float32_t* distortion, float32_t baseline, float32_t* depth,
                                                uint32_t dstStride)
{
    const LensCamera lens = lensCamera(camera, distortion, baseline);
    const Plane src{disparity, srcStride};
    const Plane dst{depth, dstStride};
    for (uint32_t row = 0; row < srcHeight; ++row)
        for (uint32_t column = 0; column < srcWidth; ++column) {
            const float x = (static_cast<float>(column) - lens.cx) * lens.reciprocalFx;
            const float y = (static_cast<float>(row) - lens.cy) * lens.reciprocalFy;
            const float xx = x * x, yy = y * y, xy2 = 2 * x * y, r2 = xx + yy;
            const float radial = 1 + r2 * (lens.k1 + r2 * (lens.k2 + r2 * lens.k3));
            const float u = lens.fx * (x * radial + (lens.p1 * xy2 + lens.p2 * (r2 + 2 * xx))) + lens.cx;
            const float v = lens.fy * (y * radial + (lens.p1 * (r2 + 2 * yy) + lens.p2 * xy2)) + lens.cy;
            const uint32_t i = nearestPixel(u, srcWidth), j = nearestPixel(v, srcHeight);
            const float found = i < srcWidth && j < srcHeight ? src.row(j)[i] : 0;
            dst.row(row)[column] = found > 0 ? lens.depthOfOne / found : 0;
        }
    return RAVIK_SUCCESS;
}

} // namespace rvk

#include "forms/ravikAffineForms.h"
