// C references of the bilateral filters.
#include "cpu/ravikBilateralC.h"

#include "cpu/image.h"
#include "functions.h"
#include "scratch.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>

namespace rvk {

// ---- windows: weights ---------------------------------------------------------------------------

namespace {
constexpr double kBend = 0.474; // the factor of u^2
}

int multiplyRounded(int a, int b)
{
    return (a * b + (1 << 14)) >> 15;
}

RangeScale rangeScale(float32_t sigmaColor)
{
    const double sigma = std::min<double>(sigmaColor, 2048);
    const double step = 32768 * std::sqrt(std::sqrt(kBend)) / 8 / sigma; // of t, from one grey level to the next
    const double limit = std::ceil(19500 / step);                        // weights are 0 from t = 19500 on
    const double factor = std::floor(32767 / limit);
    const double scale = std::min(std::nearbyint(step / factor * 32768), 32767.0);
    return {static_cast<int16_t>(limit), static_cast<int16_t>(factor), static_cast<int16_t>(scale)};
}

int16_t weightAtDistance(int dx, int dy, float32_t sigmaSpace)
{
    const double sigma = sigmaSpace, u = (dx * dx + dy * dy) / (32 * sigma * sigma);
    const double vertex = 32768 / (2 * std::sqrt(kBend)); // of the parabola that the weight begins as
    return static_cast<int16_t>(std::nearbyint(std::max(vertex - 32768 * std::sqrt(kBend) * u, 0.0)));
}

// ---- windows ------------------------------------------------------------------------------------

namespace {

int weightOf(int atDistance, int difference, RangeScale scale)
{
    const int t = multiplyRounded(std::min<int>(difference, scale.limit) * scale.factor, scale.scale);
    const int rest = std::max(atDistance - multiplyRounded(t, std::min(2 * t, 32767)), 0);
    int weight = multiplyRounded(rest, rest) + kWeightFloor;
    for (int i = 0; i < kWeightSquarings; ++i)
        weight = multiplyRounded(weight, weight);
    return weight;
}

struct Neighbour
{
    int dx, dy;
    int16_t weights[256]; // by the difference of grey levels
};

// The pixel itself is one of its neighbours.
template <int radius>
struct Window
{
    Neighbour neighbours[(2 * radius + 1) * (2 * radius + 1)];
    size_t count = 0;

    Window(float32_t sigmaColor, float32_t sigmaSpace)
    {
        const RangeScale scale = rangeScale(sigmaColor);
        for (int dy = -radius; dy <= radius; ++dy)
            for (int dx = -radius; dx <= radius; ++dx) {
                if (!isInWindow(dx, dy, radius))
                    continue;
                Neighbour& neighbour = neighbours[count++];
                neighbour.dx = dx;
                neighbour.dy = dy;
                const int atDistance = weightAtDistance(dx, dy, sigmaSpace);
                for (int difference = 0; difference < 256; ++difference)
                    neighbour.weights[difference] = static_cast<int16_t>(weightOf(atDistance, difference, scale));
            }
    }
};

struct Size
{
    size_t width, height;
};

template <int radius>
uint8_t meanOfWindow(Size size, Plane<const uint8_t> src, const Window<radius>& window, size_t x, size_t y)
{
    const int pixel = src.row(y)[x];
    int sum = 0, total = 0;
    for (size_t i = 0; i < window.count; ++i) {
        const Neighbour& neighbour = window.neighbours[i];
        // Left of the picture and above it are huge numbers.
        const size_t u = x + static_cast<size_t>(neighbour.dx), v = y + static_cast<size_t>(neighbour.dy);
        if (u >= size.width || v >= size.height)
            continue;
        const int difference = src.row(v)[u] - pixel;
        const int weight = neighbour.weights[std::abs(difference)];
        sum += weight * difference;
        total += weight;
    }
    const float mean = std::nearbyint(static_cast<float>(sum) / static_cast<float>(total));
    return static_cast<uint8_t>(pixel + static_cast<int>(mean));
}

template <int radius>
void filterWindows(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint8_t* dst,
                   uint32_t dstStride, float32_t sigmaColor, float32_t sigmaSpace)
{
    const Window<radius> window(sigmaColor, sigmaSpace);
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            Plane{dst, dstStride}.row(y)[x] = meanOfWindow({width, height}, {src, srcStride}, window, x, y);
}

} // namespace

// ---- recursive ----------------------------------------------------------------------------------

namespace {

float fastExp(float x)
{
    return std::bit_cast<float>(static_cast<uint32_t>((std::max(x * 1.442695f, -126.0f) + 126.942696f) * 8388608.0f));
}

float blend(float weight, float before, float value)
{
    return weight * before + (1 - weight) * value;
}

// Both ways over `count` values that are `step` elements apart in `values` and in `result`. The weights follow the
// differences in `pixels`.
struct Line
{
    const uint8_t* pixels;
    size_t pixelStep, count, step;

    float weight(const float (&weights)[256], size_t i) const // between i - 1 and i
    {
        return weights[std::abs(pixels[i * pixelStep] - pixels[(i - 1) * pixelStep])];
    }
};

void filterLine(const Line& line, const float (&weights)[256], const float* values, float* result)
{
    const size_t step = line.step, last = line.count - 1;
    result[0] = values[0];
    for (size_t i = 1; i <= last; ++i)
        result[i * step] = blend(line.weight(weights, i), result[(i - 1) * step], values[i * step]);
    float back = values[last * step];
    result[last * step] = (result[last * step] + back) * 0.5f;
    for (size_t i = last; i > 0; --i) {
        back = blend(line.weight(weights, i), back, values[(i - 1) * step]);
        result[(i - 1) * step] = (result[(i - 1) * step] + back) * 0.5f;
    }
}

} // namespace

float32_t recursiveSpace(float32_t sigmaSpace, uint32_t size)
{
    return fastExp(-1.4142f / (static_cast<float>(size) * sigmaSpace));
}

void recursiveWeights(float32_t (&weights)[256], float32_t sigmaColor, float32_t sigmaSpace, uint32_t size)
{
    const float space = recursiveSpace(sigmaSpace, size);
    for (int difference = 0; difference < 256; ++difference)
        weights[difference] = space * fastExp(static_cast<float>(-difference) / (sigmaColor * 255));
}

rvkStatus rvkBilateralFilterRecursiveu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         uint8_t* dst, uint32_t dstStride, float32_t sigmaColor, float32_t sigmaSpace)
{
    const size_t width = srcWidth, height = srcHeight;
    const Plane in = {src, srcStride};
    const Plane out = {dst, dstStride};
    const Scratch<float> rows(height, width), columns(height, width), row(width);
    if (!rows || !columns || !row)
        return RAVIK_ENORES;

    float weights[256];
    recursiveWeights(weights, sigmaColor, sigmaSpace, srcWidth);
    for (size_t y = 0; y < height; ++y) {
        std::copy_n(in.row(y), width, row.get());
        filterLine({in.row(y), 1, width, 1}, weights, row.get(), rows.get() + y * width);
    }
    recursiveWeights(weights, sigmaColor, sigmaSpace, srcHeight);
    for (size_t x = 0; x < width; ++x)
        filterLine({src + x, srcStride, height, width}, weights, rows.get() + x, columns.get() + x);
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            out.row(y)[x] = static_cast<uint8_t>(columns[y * width + x] + 0.5f);
    return RAVIK_SUCCESS;
}

} // namespace rvk

#include "forms/ravikBilateralForms.h"
