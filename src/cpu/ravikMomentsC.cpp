// C references of the moments.
#include "cpu/ravikMomentsC.h"

#include "cpu/image.h"
#include "functions.h"

#include <cmath>

namespace rvk {
namespace {

template <class Total, class Sum>
RawMoments sumColumns(const MomentColumns<Sum>& columns, size_t first, size_t end)
{
    Total m00 = 0, m10 = 0, m01 = 0, m20 = 0, m11 = 0, m02 = 0, m30 = 0, m21 = 0, m12 = 0, m03 = 0;
    for (size_t column = first; column < end; ++column) {
        const Total c0 = columns[0][column], c1 = columns[1][column], c2 = columns[2][column], c3 = columns[3][column];
        const Total x = static_cast<Total>(column - first), xx = x * x, xxx = xx * x;
        m00 += c0, m10 += x * c0, m20 += xx * c0, m30 += xxx * c0;
        m01 += c1, m11 += x * c1, m21 += xx * c1;
        m02 += c2, m12 += x * c2;
        m03 += c3;
    }
    const auto rounded = [](Total m) { return static_cast<double>(m); };
    return {rounded(m00), rounded(m10), rounded(m01), rounded(m20), rounded(m11),
            rounded(m02), rounded(m30), rounded(m21), rounded(m12), rounded(m03)};
}

template <class Total, class Sum, class T>
RawMoments tileMoments(uint32_t width, uint32_t height, Plane<const T> src, bool binary)
{
    MomentColumns<Sum> columns = {};
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x) {
            const T pixel = src.row(y)[x];
            const Sum value = binary ? static_cast<Sum>(pixel != 0) : static_cast<Sum>(pixel);
            columns[0][x] += value;
            columns[1][x] += static_cast<Sum>(y) * value;
            columns[2][x] += static_cast<Sum>(y * y) * value;
            columns[3][x] += static_cast<Sum>(y * y * y) * value;
        }
    return sumColumns<Total>(columns, 0, width);
}

// `momentsOfTile` is a kernel.
template <class T, class Kernel>
void imageMoments(uint32_t width, uint32_t height, Plane<const T> src, uint32_t binary, rvkMoments* moments,
                  Kernel momentsOfTile)
{
    RawMoments sums = {};
    for (uint32_t y = 0; y < height; y += std::min(kMomentTile, height - y))
        for (uint32_t x = 0; x < width; x += std::min(kMomentTile, width - x)) {
            RawMoments tile;
            momentsOfTile(src.row(y) + x, std::min(kMomentTile, width - x), std::min(kMomentTile, height - y),
                          src.stride, binary, &tile);
            addTile(sums, tile, x, y);
        }
    storeMoments(sums, moments);
}

} // namespace

RawMoments momentsOfColumns(const MomentColumns<float32_t>& columns, size_t first, size_t end)
{
    return sumColumns<double>(columns, first, end);
}

RawMoments firstMomentsOfColumns(const MomentColumns<float32_t>& columns, size_t first, size_t end)
{
    RawMoments moments = {};
    for (size_t column = first; column < end; ++column) {
        moments.m00 += columns[0][column];
        moments.m10 += static_cast<double>(column - first) * columns[0][column];
        moments.m01 += columns[1][column];
    }
    return moments;
}

void addTile(RawMoments& sums, const RawMoments& tile, uint32_t column, uint32_t row)
{
    const RawMoments moved = movedTile(tile, static_cast<double>(column), static_cast<double>(row));
    sums.m00 += moved.m00;
    sums.m10 += moved.m10;
    sums.m01 += moved.m01;
    sums.m20 += moved.m20;
    sums.m11 += moved.m11;
    sums.m02 += moved.m02;
    sums.m30 += moved.m30;
    sums.m21 += moved.m21;
    sums.m12 += moved.m12;
    sums.m03 += moved.m03;
}

void storeMoments(const RawMoments& raw, rvkMoments* moments)
{
    const auto rounded = [](double m) { return static_cast<float32_t>(m); };
    *moments = {};
    moments->m00 = rounded(raw.m00);
    moments->m10 = rounded(raw.m10);
    moments->m01 = rounded(raw.m01);
    moments->m20 = rounded(raw.m20);
    moments->m11 = rounded(raw.m11);
    moments->m02 = rounded(raw.m02);
    moments->m30 = rounded(raw.m30);
    moments->m21 = rounded(raw.m21);
    moments->m12 = rounded(raw.m12);
    moments->m03 = rounded(raw.m03);
    if (raw.m00 == 0 || !std::isfinite(raw.m00))
        return;

    const double x = raw.m10 / raw.m00, y = raw.m01 / raw.m00; // the centre
    const double mu20 = raw.m20 - x * raw.m10, mu11 = raw.m11 - x * raw.m01, mu02 = raw.m02 - y * raw.m01;
    const double mu30 = raw.m30 - x * (3 * mu20 + x * raw.m10);
    const double mu21 = raw.m21 - x * (2 * mu11 + x * raw.m01) - y * mu20;
    const double mu12 = raw.m12 - y * (2 * mu11 + y * raw.m10) - x * mu02;
    const double mu03 = raw.m03 - y * (3 * mu02 + y * raw.m01);
    moments->mu20 = rounded(mu20);
    moments->mu11 = rounded(mu11);
    moments->mu02 = rounded(mu02);
    moments->mu30 = rounded(mu30);
    moments->mu21 = rounded(mu21);
    moments->mu12 = rounded(mu12);
    moments->mu03 = rounded(mu03);

    const double second = raw.m00 * raw.m00, third = second * std::sqrt(std::fabs(raw.m00));
    moments->nu20 = rounded(mu20 / second);
    moments->nu11 = rounded(mu11 / second);
    moments->nu02 = rounded(mu02 / second);
    moments->nu30 = rounded(mu30 / third);
    moments->nu21 = rounded(mu21 / third);
    moments->nu12 = rounded(mu12 / third);
    moments->nu03 = rounded(mu03 / third);
}

// No sum over a tile of bytes exceeds 2^31, none over one of 32-bit integers 2^60.

void irvkTileMomentsu8C(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t binary,
                        RawMoments* moments)
{
    *moments = tileMoments<uint32_t, uint32_t>(width, height, Plane{src, stride}, binary != 0);
}

void irvkTileMomentss32C(const int32_t* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t binary,
                         RawMoments* moments)
{
    *moments = tileMoments<int64_t, int64_t>(width, height, Plane{src, stride}, binary != 0);
}

void irvkTileMomentsf32C(const float32_t* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t binary,
                         RawMoments* moments)
{
    *moments = tileMoments<double, float32_t>(width, height, Plane{src, stride}, binary != 0);
}

rvkStatus rvkImageMomentsu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint32_t binary, rvkMoments* moments)
{
    imageMoments(srcWidth, srcHeight, Plane{src, srcStride}, binary, moments, irvkTileMomentsu8C);
    return RAVIK_SUCCESS;
}

rvkStatus rvkImageMomentss32C(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint32_t binary, rvkMoments* moments)
{
    imageMoments(srcWidth, srcHeight, Plane{src, srcStride}, binary, moments, irvkTileMomentss32C);
    return RAVIK_SUCCESS;
}

rvkStatus rvkImageMomentsf32C(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint32_t binary, rvkMoments* moments)
{
    imageMoments(srcWidth, srcHeight, Plane{src, srcStride}, binary, moments, irvkTileMomentsf32C);
    return RAVIK_SUCCESS;
}

} // namespace rvk
