// C references of the smoothing filters and of local normalisation.
#include "cpu/ravikBlurC.h"
#include "cpu/image.h"
#include "functions.h"
#include "log.h"
#include "scratch.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace rvk {
namespace {

// The weights of a row or column of a kernel; the weight of a pixel is the product of those of its row and its column.
constexpr int kBinomial3[] = {1, 2, 1};
constexpr int kBinomial5[] = {1, 4, 6, 4, 1};
constexpr int kBinomial11[] = {1, 10, 45, 120, 210, 252, 210, 120, 45, 10, 1};
constexpr int kBox3[] = {1, 1, 1};
constexpr int kBox5[] = {1, 1, 1, 1, 1};
constexpr int kBox11[] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};

// The weighted sum of `size` pixels of column x, from row y down.
template <class Wide, class T, size_t size>
Wide columnSum(const int (&weights)[size], Plane<const T> src, size_t x, size_t y)
{
    Wide sum = 0;
    for (size_t k = 0; k < size; ++k)
        sum += Wide{weights[k]} * src.row(y + k)[x];
    return sum;
}

// dst = finish(weighted sum of the window) for every pixel whose window lies within the image. The sums of the window's
// columns are kept while it moves along the row.
template <class Wide, class T, size_t size, class Finish>
void filterInterior(const int (&weights)[size], size_t width, size_t height, Plane<const T> src, Plane<T> dst,
                    Finish finish)
{
    constexpr size_t radius = size / 2;
    for (size_t y = radius; y + radius < height; ++y) {
        Wide columns[size] = {};
        for (size_t x = 0; x < width; ++x) {
            for (size_t k = 0; k + 1 < size; ++k)
                columns[k] = columns[k + 1];
            columns[size - 1] = columnSum<Wide>(weights, src, x, y - radius);
            if (x < size - 1)
                continue;
            Wide sum = 0;
            for (size_t k = 0; k < size; ++k)
                sum += weights[k] * columns[k];
            dst.row(y)[x - radius] = finish(sum);
        }
    }
}

// f(x, y) for every pixel whose window of this radius does not lie within the image.
template <class F>
void forRing(size_t radius, size_t width, size_t height, F f)
{
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x) {
            const bool interior = x == radius && x + radius < width && y >= radius && y + radius < height;
            if (interior)
                x = width - radius;
            f(x, y);
        }
}

// Which elements of a window around a position lie in the image, along a row or a column of `length`.
struct Part
{
    size_t begin, end;
};
Part partInside(size_t position, size_t radius, size_t length)
{
    return {position < radius ? radius - position : 0, std::min(2 * radius + 1, length + radius - position)};
}

// The ring from the pixels that exist: their weighted sum divided by the sum of their weights, rounded towards zero.
template <class Wide, class T, size_t size>
void renormalisedRing(const int (&weights)[size], size_t width, size_t height, Plane<const T> src, Plane<T> dst)
{
    constexpr size_t radius = size / 2;
    forRing(radius, width, height, [&](size_t x, size_t y) {
        const Part rows = partInside(y, radius, height), columns = partInside(x, radius, width);
        Wide sum = 0, weightOfAll = 0;
        for (size_t j = rows.begin; j < rows.end; ++j)
            for (size_t i = columns.begin; i < columns.end; ++i) {
                const Wide weight = Wide{weights[j]} * weights[i];
                sum += weight * src.row(y + j - radius)[x + i - radius];
                weightOfAll += weight;
            }
        dst.row(y)[x] = static_cast<T>(sum / weightOfAll);
    });
}

// The ring as the interior, with something in the place of the pixels that do not exist: the nearest pixel that does,
// or a value.
template <size_t size, class Finish>
void paddedRing(const int (&weights)[size], size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst,
                bool replicate, uint8_t outside, Finish finish)
{
    constexpr int64_t radius = size / 2;
    const BorderedImage<uint8_t> bordered(src, width, height, replicate, outside);
    forRing(radius, width, height, [&](size_t x, size_t y) {
        int sum = 0;
        for (size_t j = 0; j < size; ++j)
            for (size_t i = 0; i < size; ++i)
                sum += weights[j] * weights[i] *
                       bordered.at(static_cast<int64_t>(x + i) - radius, static_cast<int64_t>(y + j) - radius);
        dst.row(y)[x] = finish(sum);
    });
}

// ---- Gaussians ----------------------------------------------------------------------------------

// Rounds down; the shift of a negative sum is arithmetic.
template <class T, unsigned shift>
constexpr auto shiftedRight = [](auto sum) { return static_cast<T>(sum >> shift); };

// `count` outputs of a row from x on.
template <size_t count>
void gaussian3x3Outputs(Plane<const uint8_t> src, size_t x, size_t y, uint8_t* dst)
{
    int columns[count + 2];
    for (size_t i = 0; i < count + 2; ++i)
        columns[i] = columnSum<int>(kBinomial3, src, x - 1 + i, y - 1);
    for (size_t i = 0; i < count; ++i)
        dst[x + i] = static_cast<uint8_t>((columns[i] + 2 * columns[i + 1] + columns[i + 2]) >> 4);
}

// Six outputs a step share the sums of eight columns.
void gaussian3x3Interior(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst)
{
    if (width < 3)
        return;
    const size_t w_2 = width - 2, w6 = w_2 - w_2 % 6;
    if (!(w6 <= w_2 && w6 + 5 >= w_2))
        failInternalAssertion("src/cpu/ravikBlurC", 121, "w6<=w_2 && w6>=w_2-5");
    for (size_t y = 1; y + 1 < height; ++y) {
        size_t x = 1;
        for (; x <= w6; x += 6)
            gaussian3x3Outputs<6>(src, x, y, dst.row(y));
        for (; x <= w_2; ++x)
            gaussian3x3Outputs<1>(src, x, y, dst.row(y));
    }
}

// The Gaussians whose flag asks for the ring.
template <class Wide, unsigned shift, class T, size_t size>
void gaussian(const int (&weights)[size], const T* src, uint32_t width, uint32_t height, uint32_t srcStride, T* dst,
              uint32_t dstStride, uint32_t blurBorder)
{
    const Plane in = {src, srcStride};
    const Plane out = {dst, dstStride};
    filterInterior<Wide>(weights, width, height, in, out, shiftedRight<T, shift>);
    if (blurBorder == 1)
        renormalisedRing<Wide>(weights, width, height, in, out);
}

} // namespace

void rvkFilterGaussian3x3u8_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    const Plane in = {src, srcStride};
    const Plane out = {dst, dstStride};
    gaussian3x3Interior(srcWidth, srcHeight, in, out);
    if (blurBorder == 1)
        renormalisedRing<int>(kBinomial3, srcWidth, srcHeight, in, out);
}

rvkStatus rvkFilterGaussian3x3u8_v3C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    const Plane in = {src, srcStride};
    const Plane out = {dst, dstStride};
    gaussian3x3Interior(srcWidth, srcHeight, in, out);
    const bool replicate = borderType == RAVIK_BORDER_REPLICATE;
    if (replicate || borderType == RAVIK_BORDER_CONSTANT)
        paddedRing(kBinomial3, srcWidth, srcHeight, in, out, replicate, borderValue, shiftedRight<uint8_t, 4>);
    else
        renormalisedRing<int>(kBinomial3, srcWidth, srcHeight, in, out);
    return RAVIK_SUCCESS;
}

void rvkFilterGaussian5x5u8_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    gaussian<int, 8>(kBinomial5, src, srcWidth, srcHeight, srcStride, dst, dstStride, blurBorder);
}

void rvkFilterGaussian5x5s16_v2C(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 int16_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    gaussian<int, 8>(kBinomial5, src, srcWidth, srcHeight, srcStride, dst, dstStride, blurBorder);
}

void gaussian5x5s32Ring(const int32_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int32_t* dst,
                        uint32_t dstStride)
{
    renormalisedRing<int64_t>(kBinomial5, width, height, Plane{src, srcStride}, Plane{dst, dstStride});
}

void rvkFilterGaussian5x5s32_v2C(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 int32_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    if (blurBorder == 1)
        gaussian<int64_t, 8>(kBinomial5, src, srcWidth, srcHeight, srcStride, dst, dstStride, blurBorder);
}

void rvkFilterGaussian11x11u8_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    gaussian<int, 20>(kBinomial11, src, srcWidth, srcHeight, srcStride, dst, dstStride, blurBorder);
}

// ---- box filters --------------------------------------------------------------------------------

namespace {

// The rounded product with a 16-bit reciprocal.
template <unsigned reciprocal>
constexpr auto mean =
    [](int sum) { return static_cast<uint8_t>((static_cast<unsigned>(sum) * reciprocal + 32768) >> 16); };
constexpr auto meanOf9 = mean<7282>;
constexpr auto meanOf25 = mean<2621>;
constexpr auto meanOf121 = mean<542>;

} // namespace

rvkStatus rvkBoxFilter3x3u8_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    const Plane in = {src, srcStride};
    const Plane out = {dst, dstStride};
    filterInterior<int>(kBox3, srcWidth, srcHeight, in, out, meanOf9);
    const uint8_t outside = borderType == RAVIK_BORDER_CONSTANT ? borderValue : 0;
    paddedRing(kBox3, srcWidth, srcHeight, in, out, borderType == RAVIK_BORDER_REPLICATE, outside, meanOf9);
    return RAVIK_SUCCESS;
}

void rvkBoxFilter3x3u8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                        uint32_t dstStride)
{
    rvkBoxFilter3x3u8_v2C(src, srcWidth, srcHeight, srcStride, dst, dstStride, 0, 0);
}

void rvkBoxFilter5x5u8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                        uint32_t dstStride)
{
    const Plane in = {src, srcStride};
    const Plane out = {dst, dstStride};
    filterInterior<int>(kBox5, srcWidth, srcHeight, in, out, meanOf25);
    paddedRing(kBox5, srcWidth, srcHeight, in, out, false, 0, meanOf25);
}

void rvkBoxFilter11x11u8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                          uint32_t dstStride)
{
    const Plane in = {src, srcStride};
    const Plane out = {dst, dstStride};
    filterInterior<int>(kBox11, srcWidth, srcHeight, in, out, meanOf121);
    paddedRing(kBox11, srcWidth, srcHeight, in, out, false, 0, meanOf121);
}

namespace {

// The sum of `count` values, by halves: the first has the largest power of two below `count`.
template <class T>
T pairwiseSum(const T* values, size_t count)
{
    if (count == 1)
        return values[0];
    const size_t half = std::bit_ceil(count) / 2;
    return pairwiseSum(values, half) + pairwiseSum(values + half, count - half);
}

// Sums of windows of floating-point values, each formed on its own and always in the same order: along the rows
// pairwise; then the sums of the window's rows, which lie in a ring of windowHeight rows, from the window's first row's
// place to the end of the ring, last row first, plus the others, first row first.
template <class T>
class WindowSums
{
public:
    WindowSums(size_t width, size_t windowWidth, size_t windowHeight)
        : m_width(width), m_windowWidth(windowWidth), m_windowHeight(windowHeight), m_padded(width + windowWidth - 1),
          m_ring(windowHeight, width)
    {
    }

    explicit operator bool() const { return m_padded && m_ring; }

    // Takes the next row: value(x) for x from 0 to width - 1, continued at both ends by the nearest.
    template <class Value>
    void add(Value value)
    {
        const size_t before = m_windowWidth / 2;
        for (size_t x = 0; x < m_width + m_windowWidth - 1; ++x)
            m_padded[x] = value(std::clamp(x, before, before + m_width - 1) - before);
        for (size_t x = 0; x < m_width; ++x)
            m_ring[m_next * m_width + x] = pairwiseSum(m_padded.get() + x, m_windowWidth);
        m_next = (m_next + 1) % m_windowHeight;
    }

    // The sum over the last windowHeight rows of the window of column x.
    T at(size_t x) const
    {
        T older = m_ring[(m_windowHeight - 1) * m_width + x];
        for (size_t k = m_windowHeight - 1; k-- > m_next;)
            older += m_ring[k * m_width + x];
        if (m_next == 0)
            return older;
        T newer = m_ring[x];
        for (size_t k = 1; k < m_next; ++k)
            newer += m_ring[k * m_width + x];
        return older + newer;
    }

private:
    size_t m_width, m_windowWidth, m_windowHeight;
    Scratch<T> m_padded, m_ring;
    size_t m_next = 0; // where the oldest row is, and the next one will be
};

} // namespace

rvkStatus rvkBoxFilterNxNf32C(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint32_t N, float32_t* dst, uint32_t dstStride)
{
    WindowSums<float> sums(srcWidth, N, N);
    if (!sums)
        return RAVIK_ENORES;
    const float pixels = static_cast<float>(N) * static_cast<float>(N);
    // In place, row y is read for the last time before output row y - N / 2 is written, or the last one.
    for (size_t y = 0; y < size_t{srcHeight} + N - 1; ++y) {
        const size_t nearest = std::clamp<size_t>(y, N / 2, N / 2 + srcHeight - 1) - N / 2;
        const float* in = Plane{src, srcStride}.row(nearest);
        sums.add([&](size_t x) { return in[x]; });
        if (y + 1 < N)
            continue;
        float* out = Plane{dst, dstStride}.row(y + 1 - N);
        for (size_t x = 0; x < srcWidth; ++x)
            out[x] = sums.at(x) / pixels;
    }
    return RAVIK_SUCCESS;
}

// ---- local normalisation ------------------------------------------------------------------------

namespace {

// 128 + 32 * (pixel - mean) / deviation of a window of `count` pixels. Sums about an integer near the mean keep what is
// subtracted from each other small; `oneth` is 1 / count.
uint8_t normalised(int32_t pixel, uint32_t sum, uint32_t sumOfSquares, uint32_t count, float oneth)
{
    const uint32_t nearMean = static_cast<uint32_t>(static_cast<float>(sum) * oneth);
    const uint32_t rest = sum - nearMean * count; // modulo 2^32, as the next; the results fit 31 bits and a sign
    const uint32_t squaresAboutNearMean = sumOfSquares - nearMean * (sum + rest);
    const float meanAboveNearMean = static_cast<float>(static_cast<int32_t>(rest)) * oneth;
    const float variance = static_cast<float>(squaresAboutNearMean) * oneth - meanAboveNearMean * meanAboveNearMean;
    const float deviation = std::sqrt(std::max(variance, 1.0f));
    const float above = static_cast<float>(pixel - static_cast<int32_t>(nearMean)) - meanAboveNearMean;
    return saturate<uint8_t>(128 + static_cast<int>(std::nearbyint(32.0f * (above / deviation))));
}

// (value - mean) / deviation of a window of `count` values, both times `count`; by way of the square, which a double
// holds whatever the float. The floor is not 0 even where all values are.
float normalised(float value, double sum, double sumOfSquares, double count)
{
    const double above = count * value - sum;
    const double squaredSum = sum * sum;
    const double spread = std::max(count * sumOfSquares - squaredSum, 0x1p-40 * squaredSum + 0x1p-600);
    return std::copysign(std::sqrt(static_cast<float>(above * above / spread)), static_cast<float>(above));
}

} // namespace

rvkStatus rvkNormalizeLocalBoxu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint32_t windowWidth, uint32_t windowHeight, uint8_t* dst, uint32_t dstStride)
{
    const Plane in = {src, srcStride};
    const int64_t right = int64_t{srcWidth} - 1, bottom = int64_t{srcHeight} - 1;
    const int64_t radiusX = windowWidth / 2, radiusY = windowHeight / 2;
    const uint32_t count = windowWidth * windowHeight;
    const float oneth = 1.0f / static_cast<float>(count);
    for (int64_t y = 0; y <= bottom; ++y) {
        const uint8_t* row = in.row(static_cast<size_t>(y));
        uint32_t sum = 0, sumOfSquares = 0;
        const auto addColumn = [&](int64_t x, uint32_t sign) {
            const int64_t nearestX = std::clamp<int64_t>(x, 0, right);
            for (int64_t k = y - radiusY; k <= y + radiusY; ++k) {
                const uint32_t pixel = in.row(static_cast<size_t>(std::clamp<int64_t>(k, 0, bottom)))[nearestX];
                sum += sign * pixel;
                sumOfSquares += sign * (pixel * pixel);
            }
        };
        for (int64_t x = -radiusX; x < radiusX; ++x)
            addColumn(x, 1);
        for (int64_t x = 0; x <= right; ++x) {
            addColumn(x + radiusX, 1);
            Plane{dst, dstStride}.row(static_cast<size_t>(y))[x] = normalised(row[x], sum, sumOfSquares, count, oneth);
            addColumn(x - radiusX, static_cast<uint32_t>(-1));
        }
    }
    return RAVIK_SUCCESS;
}

rvkStatus rvkNormalizeLocalBoxf32C(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint32_t windowWidth, uint32_t windowHeight, float32_t* dst, uint32_t dstStride)
{
    WindowSums<double> sums(srcWidth, windowWidth, windowHeight), squares(srcWidth, windowWidth, windowHeight);
    if (!sums || !squares)
        return RAVIK_ENORES;
    const Plane in = {src, srcStride};
    const size_t radiusY = windowHeight / 2;
    const double count = static_cast<double>(windowWidth) * windowHeight;
    for (size_t y = 0; y < srcHeight + 2 * radiusY; ++y) {
        const float* row = in.row(std::clamp<size_t>(y, radiusY, radiusY + srcHeight - 1) - radiusY);
        sums.add([&](size_t x) { return double{row[x]}; });
        squares.add([&](size_t x) { return double{row[x]} * row[x]; });
        if (y < 2 * radiusY)
            continue;
        const float* centre = in.row(y - 2 * radiusY);
        float* out = Plane{dst, dstStride}.row(y - 2 * radiusY);
        for (size_t x = 0; x < srcWidth; ++x)
            out[x] = normalised(centre[x], sums.at(x), squares.at(x), count);
    }
    return RAVIK_SUCCESS;
}

} // namespace rvk
