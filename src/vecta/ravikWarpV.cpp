// Vector implementations of the perspective warps and remaps.
#include "cpu/ravikWarpC.h"
#include "vecta/simd/squares.h"
#include "vecta/vecta.h"

#include <ravik/warp.h>

namespace rvk::vecta::RVK_ISA {
namespace {

// The positions of the pixels of a row, by the operations of the reference.
using WarpedPositions = Positions<kPositionBits>;
class PerspectiveRow
{
public:
    RVK_INLINE PerspectiveRow(const Homography& h, float y)
    {
        for (size_t i = 0; i < 3; ++i) {
            m_factor[i] = splat(h.m[3 * i]);
            m_start[i] = splat(h.m[3 * i + 1] * y + h.m[3 * i + 2]);
        }
    }

    RVK_INLINE WarpedPositions operator()(size_t x, size_t) const
    {
        const Vecs<float, 2> numbers = iotaSplit<float>();
        WarpedPositions p;
        unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
            const Vec<float> column = numbers[i] + splat(static_cast<float>(x));
            const Vec<float> factor =
                divide(splat(static_cast<float>(kPositionOne)), column * m_factor[2] + m_start[2]);
            p.x[i] = (column * m_factor[0] + m_start[0]) * factor;
            p.y[i] = (column * m_factor[1] + m_start[1]) * factor;
        });
        return p;
    }

private:
    Vec<float> m_factor[3], m_start[3];
};

#if defined(__AVX512VNNI__)

// The same of squares in rows y to y + 3. The products with columns are those of all rows.
class PerspectiveSquares
{
public:
    RVK_INLINE PerspectiveSquares(const Homography& h, const float (&products)[3][kMostSquareColumns], size_t left,
                                  size_t y)
        : m_h(h), m_products(products), m_left(left), m_y(static_cast<float>(y))
    {
        const Vec<float> rows = splat(m_y) + toFloat(shiftRight(iota<int32_t>(), 2));
        unrolled<3>([&](auto i) RVK_INLINE_LAMBDA { m_start[i] = startOf(i, rows); });
    }

    // Of the square that begins with a column.
    RVK_INLINE SquarePositions at(size_t x) const
    {
        return divided([&](size_t i)
                           RVK_INLINE_LAMBDA { return loadFourTimes(m_products[i] + (x - m_left)) + m_start[i]; });
    }
    // The middles of a segment's squares, about.
    RVK_INLINE SquarePositions middles(size_t x) const
    {
        const Vec<float> columns = splat(static_cast<float>(x) + kMiddle) + iota<float>() * splat(4.0f);
        return divided([&](size_t i) RVK_INLINE_LAMBDA {
            return columns * splat(m_h.m[3 * i]) + startOf(i, splat(m_y + kMiddle));
        });
    }

private:
    static constexpr float kMiddle = 1.5f;

    RVK_INLINE Vec<float> startOf(size_t i, Vec<float> row) const
    {
        return splat(m_h.m[3 * i + 1]) * row + splat(m_h.m[3 * i + 2]);
    }
    template <class Sum>
    static RVK_INLINE SquarePositions divided(Sum sum)
    {
        const Vec<float> factor = divide(splat(static_cast<float>(kPositionOne)), sum(2));
        return {sum(0) * factor, sum(1) * factor};
    }

    const Homography& m_h;
    const float (&m_products)[3][kMostSquareColumns];
    size_t m_left;
    float m_y;
    Vec<float> m_start[3];
};

// Of those in some columns.
class PerspectiveColumns
{
public:
    RVK_INLINE PerspectiveColumns(const Homography& h, size_t left, size_t columns) : m_h(h), m_left(left)
    {
        for (size_t x = 0; x < columns; x += Vec<float>::lanes)
            for (size_t i = 0; i < 3; ++i)
                store(m_products[i] + x, (iota<float>() + splat(static_cast<float>(left + x))) * splat(h.m[3 * i]));
    }
    RVK_INLINE PerspectiveSquares band(size_t y) const { return {m_h, m_products, m_left, y}; }

private:
    const Homography& m_h;
    size_t m_left;
    float m_products[3][kMostSquareColumns];
};

#endif

template <size_t channels, uint32_t interpolation>
RVK_NOINLINE void warpPerspectiveBy(const SampledImage& src, uint32_t dstWidth, uint32_t dstHeight, Plane<uint8_t> dst,
                                    const Homography& h)
{
    const auto rows = [&](size_t y) RVK_INLINE_LAMBDA { return PerspectiveRow(h, static_cast<float>(y)); };
#if defined(__AVX512VNNI__)
    if constexpr (channels == 1)
        if (hasSquares(src, dstWidth, dstHeight)) {
            const auto columns = [&](size_t left, size_t n)
                                     RVK_INLINE_LAMBDA { return PerspectiveColumns(h, left, n); };
            return sampleBySquares<interpolation>(src, dstWidth, dstHeight, dst, columns, rows);
        }
#endif
    sampleImage<channels, interpolation>(src, dstWidth, dstHeight, dst, rows);
}

template <size_t channels>
RVK_INLINE void warpPerspective(const SampledImage& src, uint32_t dstWidth, uint32_t dstHeight, Plane<uint8_t> dst,
                                const float32_t* matrix)
{
    const Homography h = scaledHomography(matrix);
    if (src.interpolation == RAVIK_INTERPOLATION_NEAREST)
        warpPerspectiveBy<channels, RAVIK_INTERPOLATION_NEAREST>(src, dstWidth, dstHeight, dst, h);
    else
        warpPerspectiveBy<channels, RAVIK_INTERPOLATION_BILINEAR>(src, dstWidth, dstHeight, dst, h);
}

#if defined(__AVX512VNNI__)

// Where maps say that squares in rows y to y + 3 are.
class MappedSquares
{
public:
    RVK_INLINE MappedSquares(Plane<const float32_t> mapX, Plane<const float32_t> mapY, size_t y)
        : m_x(mapX.row(y)), m_y(mapY.row(y)), m_strideX(mapX.row(1) - mapX.row(0)), m_strideY(mapY.row(1) - mapY.row(0))
    {
    }
    // Of the square that begins with a column.
    RVK_INLINE SquarePositions at(size_t x) const
    {
        return inFractions({loadFourRows(m_x + x, m_strideX), loadFourRows(m_y + x, m_strideY)});
    }
    // The middles of a segment's squares, about: of their pixels (1, 1) and (2, 2).
    RVK_INLINE SquarePositions middles(size_t x) const
    {
        const auto middle = [](const float* p, ptrdiff_t stride) RVK_INLINE_LAMBDA {
            return (everyFourth<1>(p + stride) + everyFourth<2>(p + 2 * stride)) * splat(0.5f);
        };
        return inFractions({middle(m_x + x, m_strideX), middle(m_y + x, m_strideY)});
    }

private:
    static RVK_INLINE SquarePositions inFractions(const SquarePositions& p)
    {
        const Vec<float> one = splat(static_cast<float>(kPositionOne));
        return {p.x * one, p.y * one};
    }

    const float *m_x, *m_y;
    ptrdiff_t m_strideX, m_strideY; // floats
};

struct MappedColumns
{
    Plane<const float32_t> x, y;

    RVK_INLINE MappedSquares band(size_t row) const { return {x, y, row}; }
};

#endif

template <size_t channels, uint32_t interpolation>
RVK_NOINLINE void remapBy(const SampledImage& src, uint32_t dstWidth, uint32_t dstHeight, Plane<uint8_t> dst,
                          Plane<const float32_t> mapX, Plane<const float32_t> mapY)
{
    const auto rows = [=](size_t y) RVK_INLINE_LAMBDA {
        const float* const xs = mapX.row(y);
        const float* const ys = mapY.row(y);
        return [=](size_t x, size_t n) RVK_INLINE_LAMBDA {
            return Positions<0>{loadCoordinates(xs + x, n), loadCoordinates(ys + x, n)};
        };
    };
#if defined(__AVX512VNNI__)
    if constexpr (channels == 1)
        if (hasSquares(src, dstWidth, dstHeight))
            return sampleBySquares<interpolation>(
                src, dstWidth, dstHeight, dst,
                [=](size_t, size_t) RVK_INLINE_LAMBDA {
                    return MappedColumns{mapX, mapY};
                },
                rows);
#endif
    sampleImage<channels, interpolation>(src, dstWidth, dstHeight, dst, rows);
}

template <size_t channels>
RVK_INLINE void remap(const SampledImage& src, uint32_t dstWidth, uint32_t dstHeight, Plane<uint8_t> dst,
                      Plane<const float32_t> mapX, Plane<const float32_t> mapY)
{
    if (src.interpolation == RAVIK_INTERPOLATION_NEAREST)
        remapBy<channels, RAVIK_INTERPOLATION_NEAREST>(src, dstWidth, dstHeight, dst, mapX, mapY);
    else
        remapBy<channels, RAVIK_INTERPOLATION_BILINEAR>(src, dstWidth, dstHeight, dst, mapX, mapY);
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikWarpForms.h"
