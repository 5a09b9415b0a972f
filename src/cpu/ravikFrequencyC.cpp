// C references of the cosine transforms of blocks and of the Fourier transforms.
#include "cpu/ravikFrequencyC.h"

#include "cpu/image.h"
#include "functions.h"
#include "scratch.h"

#include <bit>
#include <cmath>
#include <utility>

namespace rvk {

// ---- cosine transforms ----------------------------------------------------------------------------------------------

namespace {

// The value at sample n of the cosine of frequency k, in units of 2^-15: cos((2n + 1) k pi / 16) / 2, and less by the
// root of 2 for frequency 0.
constexpr int32_t cosine(size_t k, size_t n)
{
    if (k == 0)
        return kHalfCosine[4];
    const size_t angle = (2 * n + 1) * k % 32, ofHalfTurn = angle <= 16 ? angle : 32 - angle;
    return ofHalfTurn <= 8 ? kHalfCosine[ofHalfTurn % 8] : -kHalfCosine[16 - ofHalfTurn];
}

struct Basis
{
    int32_t at[8][8]; // by frequency and sample

    constexpr Basis() : at()
    {
        for (size_t k = 0; k < 8; ++k)
            for (size_t n = 0; n < 8; ++n)
                at[k][n] = cosine(k, n);
    }
};
constexpr Basis kBasis;

int32_t shiftedRounded(int32_t sum, unsigned shift)
{
    return (sum + (1 << (shift - 1))) >> shift;
}

using Block = int32_t[8][8];

// Down the columns, then along the rows.
void forward(const Block& pixels, Block& coefficients)
{
    Block columns;
    for (size_t k = 0; k < 8; ++k)
        for (size_t x = 0; x < 8; ++x) {
            int32_t sum = 0;
            for (size_t n = 0; n < 8; ++n)
                sum += kBasis.at[k][n] * (pixels[n][x] - kMiddlePixel);
            columns[k][x] = shiftedRounded(sum, kForwardShifts[0]);
        }
    for (size_t y = 0; y < 8; ++y)
        for (size_t k = 0; k < 8; ++k) {
            int32_t sum = 0;
            for (size_t n = 0; n < 8; ++n)
                sum += kBasis.at[k][n] * columns[y][n];
            coefficients[y][k] = shiftedRounded(sum, kForwardShifts[1]);
        }
    coefficients[0][0] += kMiddleFrequency;
}

void inverse(const Block& coefficients, Block& pixels)
{
    Block columns;
    for (size_t n = 0; n < 8; ++n)
        for (size_t x = 0; x < 8; ++x) {
            int32_t sum = 0;
            for (size_t k = 0; k < 8; ++k)
                sum += kBasis.at[k][n] * std::clamp(coefficients[k][x], kLeastCoefficient, kLargestCoefficient);
            columns[n][x] = shiftedRounded(sum, kInverseShifts[0]);
        }
    for (size_t y = 0; y < 8; ++y)
        for (size_t n = 0; n < 8; ++n) {
            int32_t sum = 0;
            for (size_t k = 0; k < 8; ++k)
                sum += kBasis.at[k][n] * columns[y][k];
            pixels[y][n] = shiftedRounded(sum, kInverseShifts[1]);
        }
}

template <class S, class D>
void mapBlocks(uint32_t width, uint32_t height, Plane<const S> src, Plane<D> dst,
               void (*transform)(const Block&, Block&))
{
    Block in, out;
    const auto forBlock = [](auto f) {
        for (size_t y = 0; y < 8; ++y)
            for (size_t x = 0; x < 8; ++x)
                f(x, y);
    };
    for (size_t top = 0; top < height; top += 8)
        for (size_t left = 0; left < width; left += 8) {
            forBlock([&](size_t x, size_t y) { in[y][x] = src.row(top + y)[left + x]; });
            transform(in, out);
            forBlock([&](size_t x, size_t y) { dst.row(top + y)[left + x] = saturate<D>(out[y][x]); });
        }
}

} // namespace

rvkStatus rvkDCTu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int16_t* dst,
                    uint32_t dstStride)
{
    mapBlocks<uint8_t, int16_t>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, forward);
    return RAVIK_SUCCESS;
}

rvkStatus rvkIDCTs16C(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                      uint32_t dstStride)
{
    mapBlocks<int16_t, uint8_t>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, inverse);
    return RAVIK_SUCCESS;
}

// ---- Fourier transforms ---------------------------------------------------------------------------------------------

namespace {

Complex product(Complex a, Complex b)
{
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

// The transform of a line of n values, a power of two, in place.
void transformLine(Complex* line, size_t n, const Complex* roots)
{
    const auto bits = static_cast<unsigned>(std::countr_zero(n));
    for (size_t i = 0; i < n; ++i)
        if (i < reversedBits(i, bits))
            std::swap(line[i], line[reversedBits(i, bits)]);
    for (size_t half = 1; half < n; half *= 2)
        for (size_t first = 0; first < n; first += 2 * half)
            for (size_t k = 0; k < half; ++k) {
                Complex &even = line[first + k], &odd = line[first + k + half];
                const Complex turned = product(odd, roots[k * (n / (2 * half))]);
                odd = {even.re - turned.re, even.im - turned.im};
                even = {even.re + turned.re, even.im + turned.im};
            }
}

// A real part as a pixel.
uint8_t pixelOf(double value)
{
    return value >= 255 ? 255 : value > 0 ? static_cast<uint8_t>(value + 0.5) : uint8_t{0};
}

} // namespace

void fillRootsOfUnity(Complex* roots, size_t n)
{
    roots[0] = {1, 0};
    Complex turn = {1, 0}; // exp(-2 pi i / parts)
    for (size_t parts = 2; parts <= n; parts *= 2) {
        if (parts <= 4)
            turn = parts == 2 ? Complex{-1, 0} : Complex{0, -1};
        else
            turn = {std::sqrt((1 + turn.re) / 2), turn.im / (2 * std::sqrt((1 + turn.re) / 2))};
        const size_t step = n / parts;
        for (size_t k = 0; k < n; k += 2 * step)
            roots[k + step] = product(roots[k], turn);
    }
}

size_t reversedBits(size_t i, unsigned bits)
{
    size_t reversed = 0;
    for (unsigned bit = 0; bit < bits; ++bit)
        reversed |= (i >> bit & 1) << (bits - 1 - bit);
    return reversed;
}

// Rows in place of `dst`, then columns. Rounding the former to floats costs an eighth of the error that is allowed.
rvkStatus rvkFFTu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t* dst,
                    uint32_t dstStride)
{
    const uint32_t longest = std::max(srcWidth, srcHeight);
    const Scratch<Complex> line(longest), roots(longest);
    if (!line || !roots)
        return RAVIK_ENORES;
    const Plane<const uint8_t> in{src, srcStride};
    const Plane out{dst, dstStride};
    const auto put = [&](size_t x, size_t y, Complex value) {
        out.row(y)[2 * x] = static_cast<float32_t>(value.re);
        out.row(y)[2 * x + 1] = static_cast<float32_t>(value.im);
    };
    fillRootsOfUnity(roots.get(), srcWidth);
    for (size_t y = 0; y < srcHeight; ++y) {
        for (size_t x = 0; x < srcWidth; ++x)
            line[x] = {static_cast<double>(in.row(y)[x]), 0};
        transformLine(line.get(), srcWidth, roots.get());
        for (size_t u = 0; u < srcWidth; ++u)
            put(u, y, line[u]);
    }
    fillRootsOfUnity(roots.get(), srcHeight);
    for (size_t u = 0; u < srcWidth; ++u) {
        for (size_t y = 0; y < srcHeight; ++y)
            line[y] = {out.row(y)[2 * u], out.row(y)[2 * u + 1]};
        transformLine(line.get(), srcHeight, roots.get());
        for (size_t v = 0; v < srcHeight; ++v)
            put(u, v, line[v]);
    }
    return RAVIK_SUCCESS;
}

// The inverse transform is that of the values with real and imaginary part exchanged, exchanged again.
rvkStatus rvkIFFTf32C(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                      uint32_t dstStride)
{
    const uint32_t longest = std::max(srcWidth, srcHeight);
    const Scratch<Complex> picture(srcWidth, srcHeight), line(longest), roots(longest);
    if (!picture || !line || !roots)
        return RAVIK_ENORES;
    const Plane<const float32_t> in{src, srcStride};
    const Plane out{dst, dstStride};
    const auto row = [&](size_t y) { return picture.get() + y * srcWidth; };
    bool isFinite = true;
    fillRootsOfUnity(roots.get(), srcHeight);
    for (size_t u = 0; u < srcWidth; ++u) {
        for (size_t v = 0; v < srcHeight; ++v) {
            line[v] = {in.row(v)[2 * u + 1], in.row(v)[2 * u]};
            isFinite = isFinite && std::isfinite(line[v].re) && std::isfinite(line[v].im);
        }
        transformLine(line.get(), srcHeight, roots.get());
        for (size_t y = 0; y < srcHeight; ++y)
            row(y)[u] = line[y];
    }
    fillRootsOfUnity(roots.get(), srcWidth);
    const double scale = isFinite ? 1 / (static_cast<double>(srcWidth) * srcHeight) : 0;
    for (size_t y = 0; y < srcHeight; ++y) {
        transformLine(row(y), srcWidth, roots.get());
        for (size_t x = 0; x < srcWidth; ++x)
            out.row(y)[x] = isFinite ? pixelOf(row(y)[x].im * scale) : uint8_t{0};
    }
    return RAVIK_SUCCESS;
}

} // namespace rvk
