// Vector implementation of Lucas-Kanade tracking: columns of the window side by side.
#include "cpu/ravikLucasKanadeC.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {

// ---- derivatives --------------------------------------------------------------------------------

namespace {

using Floats = Vec<float>;
static_assert(Floats::lanes <= kLucasKanadeLanes);

// Of width x height samples, by those at six places around each, opposite ones one after the other.
template <size_t count>
RVK_INLINE void derive(const float* const (&places)[count], uint32_t width, uint32_t height, uint32_t srcStride,
                       float* dst, uint32_t dstStride)
{
    const auto plane = [&](size_t i) RVK_INLINE_LAMBDA { return Plane<const float>{places[i], srcStride}; };
    mapImage(
        width, height, Plane{dst, dstStride},
        [](Floats a0, Floats b0, Floats a1, Floats b1, Floats a2, Floats b2)
            RVK_INLINE_LAMBDA { return ((b0 - a0) + (b2 - a2)) * splat(3.0f / 32) + (b1 - a1) * splat(10.0f / 32); },
        plane(0), plane(1), plane(2), plane(3), plane(4), plane(5));
}

RVK_INLINE const float* below(const float* src, size_t rows, uint32_t stride)
{
    return src + rows * (stride / sizeof(float));
}

} // namespace

void irvkGradientIxf32V(const float32_t* src, uint32_t width, uint32_t height, uint32_t srcStride, float32_t* dst,
                        uint32_t dstStride)
{
    const float *middle = below(src, 1, srcStride), *last = below(src, 2, srcStride);
    derive({src, src + 2, middle, middle + 2, last, last + 2}, width, height, srcStride, dst, dstStride);
}

void irvkGradientIyf32V(const float32_t* src, uint32_t width, uint32_t height, uint32_t srcStride, float32_t* dst,
                        uint32_t dstStride)
{
    const float* const last = below(src, 2, srcStride);
    derive({src, last, src + 1, last + 1, src + 2, last + 2}, width, height, srcStride, dst, dstStride);
}

// ---- windows ------------------------------------------------------------------------------------

namespace {

void toFloats(const uint8_t* src, uint32_t srcStride, size_t width, size_t height, float* dst, size_t dstPitch)
{
    mapImage(
        width, height, Plane{dst, static_cast<uint32_t>(dstPitch * sizeof(float))},
        [](Vec<uint8_t> pixels) RVK_INLINE_LAMBDA {
            const Vecs<uint16_t, 2> words = widen(pixels);
            Vecs<float, 4> floats;
            unrolled<4>([&](auto i)
                            RVK_INLINE_LAMBDA { floats[i] = toFloat(bitCast<int32_t>(widen(words[i / 2])[i % 2])); });
            return floats;
        },
        Plane{src, srcStride});
}

void toFloats(const float* src, uint32_t srcStride, size_t width, size_t height, float* dst, size_t dstPitch)
{
    for (size_t y = 0; y < height; ++y)
        __builtin_memcpy(dst + y * dstPitch, src + y * (srcStride / sizeof(float)), width * sizeof(float));
}

RVK_INLINE Floats between(Floats a, Floats b, Floats fraction)
{
    return a + fraction * (b - a);
}

// Samples of a row of pixels; of a column of them, row after row.
class Samples
{
public:
    RVK_INLINE Samples(const LucasKanadePatch& patch, size_t column)
        : m_next(patch.pixels + column), m_pitch(patch.pitch), m_right(splat(patch.right)), m_below(splat(patch.below)),
          m_upper(zero<float>())
    {
        m_upper = nextRow();
    }
    RVK_INLINE Floats next()
    {
        const Floats lower = nextRow(), samples = between(m_upper, lower, m_below);
        m_upper = lower;
        return samples;
    }

private:
    RVK_INLINE Floats nextRow()
    {
        const Floats samples = between(load(m_next), load(m_next + 1), m_right);
        m_next += m_pitch;
        return samples;
    }

    const float* m_next;
    const size_t m_pitch;
    const Floats m_right, m_below;
    Floats m_upper;
};

void sample(const LucasKanadePatch& patch, size_t width, size_t height, float* dst, size_t dstPitch)
{
    for (size_t column = 0; column < width; column += Floats::lanes) {
        Samples samples(patch, column);
        for (size_t y = 0; y < height; ++y)
            store(dst + y * dstPitch + column, samples.next());
    }
}

void sumSquares(const LucasKanadeWindow& window, float* sumsXX, float* sumsXY, float* sumsYY)
{
    for (size_t column = 0; column < window.columns; column += Floats::lanes) {
        Floats xx = zero<float>(), xy = xx, yy = xx;
        for (size_t y = 0; y < window.rows; ++y) {
            const size_t at = y * window.pitch + column;
            const Floats dx = load(window.dx + at), dy = load(window.dy + at);
            xx = xx + dx * dx;
            xy = xy + dx * dy;
            yy = yy + dy * dy;
        }
        store(sumsXX + column, xx);
        store(sumsXY + column, xy);
        store(sumsYY + column, yy);
    }
}

void sumDifferences(const LucasKanadeWindow& window, const LucasKanadePatch& patch, float* sumsX, float* sumsY)
{
    for (size_t column = 0; column < window.columns; column += Floats::lanes) {
        Samples samples(patch, column);
        Floats x = zero<float>(), y = x;
        for (size_t row = 0; row < window.rows; ++row) {
            const size_t at = row * window.pitch + column;
            const Floats difference = load(window.values + row * window.valuePitch + column) - samples.next();
            x = x + difference * load(window.dx + at);
            y = y + difference * load(window.dy + at);
        }
        store(sumsX + column, x);
        store(sumsY + column, y);
    }
}

void sumErrors(const LucasKanadeWindow& window, const LucasKanadePatch& patch, float* errors)
{
    for (size_t column = 0; column < window.columns; column += Floats::lanes) {
        Samples samples(patch, column);
        Floats sum = zero<float>();
        for (size_t row = 0; row < window.rows; ++row)
            sum = sum + absDiff(load(window.values + row * window.valuePitch + column), samples.next());
        store(errors + column, sum);
    }
}

template <class T>
constexpr LucasKanadeKernels<T> kernelsOf = {toFloats, sample, sumSquares, sumDifferences, sumErrors};

} // namespace
} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikLucasKanadeForms.h"
