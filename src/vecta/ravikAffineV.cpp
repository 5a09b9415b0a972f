// Vector implementations of the transforms.
#include "cpu/ravikAffineC.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {

// ---- depth ----------------------------------------------------------------------------------------------------------

namespace {

// Where the lens puts the pixels of a row of the ideal camera.
class LensRow
{
public:
    RVK_INLINE LensRow(const LensCamera& lens, uint32_t row) : m_lens(lens)
    {
        m_y = (static_cast<float>(row) - lens.cy) * lens.reciprocalFy;
        m_yy = m_y * m_y;
        m_tangentialY = m_yy + m_yy;
    }

    struct Position
    {
        Vec<float> u, v;
    };
    RVK_INLINE Position at(Vec<float> column) const
    {
        const auto k = [](float number) RVK_INLINE_LAMBDA { return splat(number); };
        const Vec<float> x = (column - k(m_lens.cx)) * k(m_lens.reciprocalFx), y = k(m_y);
        const Vec<float> xx = x * x, xy2 = k(2) * x * y, r2 = xx + k(m_yy);
        const Vec<float> radial = k(1) + r2 * (k(m_lens.k1) + r2 * (k(m_lens.k2) + r2 * k(m_lens.k3)));
        const Vec<float> p1 = k(m_lens.p1), p2 = k(m_lens.p2);
        return {k(m_lens.fx) * (x * radial + (p1 * xy2 + p2 * (r2 + k(2) * xx))) + k(m_lens.cx),
                k(m_lens.fy) * (y * radial + (p1 * (r2 + k(m_tangentialY)) + p2 * xy2)) + k(m_lens.cy)};
    }

private:
    const LensCamera& m_lens;
    float m_y, m_yy, m_tangentialY;
};

// The pixels nearest to positions, 0 where there are none, of at most 2^24 in a row or column.
struct NearestPixels
{
    Mask<float> exist;
    Vec<int32_t> number;

    RVK_INLINE NearestPixels(Vec<float> position, uint32_t size)
    {
        const Vec<float> rounded = position + splat(0.5f);
        exist = ~less(rounded, zero<float>()) & less(rounded, splat(static_cast<float>(size)));
        number = truncateToInt(select(exist, rounded, zero<float>()));
    }
};

// The disparities of some pixels of a row and the depths of them. Three loops, so that the loads of single elements are
// many between vectors that were just stored and their use.
class DepthChunk
{
public:
    static constexpr size_t kColumns = 256;

    // Elements of the source, -1 where there is none.
    RVK_INLINE void find(const LensRow& row, size_t x, size_t n, uint32_t width, uint32_t height, int32_t rowElements)
    {
        for (size_t i = 0; i < n; i += kLanes) {
            const auto column = iota<int32_t>() + splat(static_cast<int32_t>(x + i));
            const LensRow::Position position = row.at(toFloat(column));
            const NearestPixels u(position.u, width), v(position.v, height);
            const Vec<int32_t> element = v.number * splat(rowElements) + u.number;
            const Mask<float> exists = u.exist & v.exist;
            const Vec<float> none = bitCast<float>(splat(-1));
            store(m_elements + i, bitCast<int32_t>(select(exists, bitCast<float>(element), none)));
        }
    }
    RVK_INLINE void fetch(const float* src, size_t n)
    {
        for (size_t i = 0; i < roundedUp(n, kLanes); ++i)
            m_disparities[i] = src[m_elements[i] < 0 ? 0 : m_elements[i]];
    }
    // Whether disparities are positive is asked of their bits, because subnormals are, too.
    RVK_INLINE Vec<float> depth(size_t i, Vec<float> ofOne) const
    {
        const Vec<float> disparity = load(m_disparities + i);
        const Vec<int32_t> bits = bitCast<int32_t>(disparity), infinity = splat(0x7f800000);
        const Mask<int32_t> isPositive = greater(bits, zero<int32_t>()) & ~greater(bits, infinity);
        const Mask<int32_t> exists = greater(load(m_elements + i), splat(-1));
        return bitCast<float>(select(isPositive & exists, bitCast<int32_t>(divide(ofOne, disparity)), zero<int32_t>()));
    }

private:
    static constexpr size_t kLanes = Vec<float>::lanes;
    int32_t m_elements[kColumns];
    float m_disparities[kColumns];
};

} // namespace

rvkStatus rvkUndistortDisparityConvertDepthf32V(const float32_t* disparity, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, const float32_t* camera,
                                                const float32_t* distortion, float32_t baseline, float32_t* depth,
                                                uint32_t dstStride)
{
    constexpr uint32_t mostPixels = 1 << 24; // in a direction: floats hold their numbers
    constexpr size_t lanes = Vec<float>::lanes;
    if (srcWidth > mostPixels || srcHeight > mostPixels || uint64_t{srcStride} / sizeof(float) * srcHeight > INT32_MAX)
        return rvkUndistortDisparityConvertDepthf32C(disparity, srcWidth, srcHeight, srcStride, camera, distortion,
                                                     baseline, depth, dstStride);
    const LensCamera lens = lensCamera(camera, distortion, baseline);
    const auto rowElements = static_cast<int32_t>(srcStride / sizeof(float));
    const Vec<float> depthOfOne = splat(lens.depthOfOne);
    DepthChunk chunk;
    for (uint32_t y = 0; y < srcHeight; ++y) {
        const LensRow row(lens, y);
        float* const dst = Plane{depth, dstStride}.row(y);
        for (size_t x = 0; x < srcWidth; x += DepthChunk::kColumns) {
            const size_t n = least(srcWidth - x, DepthChunk::kColumns);
            chunk.find(row, x, n, srcWidth, srcHeight, rowElements);
            chunk.fetch(disparity, n);
            size_t i = 0;
            for (; i + lanes <= n; i += lanes)
                store(dst + x + i, chunk.depth(i, depthOfOne));
            if (i < n)
                storePartial(dst + x + i, chunk.depth(i, depthOfOne), n - i);
        }
    }
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA
