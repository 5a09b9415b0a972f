// C references of the transforms.
#include "cpu/ravikAffineC.h"
#include "cpu/image.h"
#include "functions.h"

#include <cmath>

namespace rvk {

// ---- transforms from points, inverses -------------------------------------------------------------------------------

namespace {

// Writes the numbers as floats, or nothing when one of them is not finite then.
template <size_t count>
rvkStatus storeFinite(const double (&values)[count], float* dst)
{
    for (const double value : values)
        if (!std::isfinite(static_cast<float>(value)))
            return RAVIK_EFAIL;
    for (size_t i = 0; i < count; ++i)
        dst[i] = static_cast<float>(values[i]);
    return RAVIK_SUCCESS;
}

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

    // Twice the area of the triangle of three of the points. It is 0 where they are on a line, and, as products of floats
    // are exact, only there, unless the points lie wider apart than doubles have digits.
    double area(int a, int b, int c) const
    {
        return (m_x[b] - m_x[a]) * (m_y[c] - m_y[a]) - (m_y[b] - m_y[a]) * (m_x[c] - m_x[a]);
    }
    bool isGeneral() const
    {
        return area(0, 1, 2) != 0 && area(0, 1, 3) != 0 && area(0, 2, 3) != 0 && area(1, 2, 3) != 0;
    }

    // The matrix that maps (1, 0, 0), (0, 1, 0), (0, 0, 1) and (1, 1, 1) to the points: its columns are the first three,
    // weighted so that they add up to the fourth.
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
    return storeFinite(elements, matrix);
}

rvkStatus rvkInvertAffineTransformf32C(const float32_t* matrix, float32_t* inverse)
{
    const double a = matrix[0], b = matrix[1], x = matrix[2], c = matrix[3], d = matrix[4], y = matrix[5];
    const double determinant = a * d - b * c;
    if (determinant == 0)
        return RAVIK_EFAIL;
    return storeFinite({d / determinant, -b / determinant, (b * y - d * x) / determinant, -c / determinant,
                        a / determinant, (c * x - a * y) / determinant},
                       inverse);
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
