#include "support/implementations.h"
#include "support/random.h"

#include <array>
#include <cmath>
#include <complex>

#if RVK_TEST_OPENCV
#include <opencv2/core.hpp>
#endif

using namespace test;

namespace {

using Complex = std::complex<long double>;

const long double kPi = std::acos(-1.0L);

template <class T>
std::vector<T> drawn(size_t count, Content content, Random& random)
{
    std::vector<T> values(count);
    for (T& value : values)
        value = drawElement<T>(random, content);
    return values;
}

// ---- cosine transforms ----

// The value at sample n of the orthonormal cosine of frequency k.
long double cosine(int k, int n)
{
    return std::cos((2 * n + 1) * k * kPi / 16) * (k ? 0.5L : std::sqrt(0.125L));
}

using Block = std::array<long double, 64>;

// Row by row the sums over both frequencies, or over both samples.
Block transformed(const Block& in, bool isInverse)
{
    const auto alongColumns = [=](const Block& block) {
        Block out{};
        for (int to = 0; to < 8; to++)
            for (int from = 0; from < 8; from++)
                for (int x = 0; x < 8; x++) // the transpose of it
                    out[size_t(x * 8 + to)] +=
                        block[size_t(from * 8 + x)] * (isInverse ? cosine(from, to) : cosine(to, from));
        return out;
    };
    return alongColumns(alongColumns(in));
}

// Blocks of all kinds, and those whose errors add up: all values are extreme, of the signs that one result has.
template <class T>
std::vector<T> blocksFor(T low, T high, Random& random)
{
    std::vector<T> blocks;
    for (int i = 0; i < 64; i++)
        for (int at = 0; at < 64; at++) {
            const int k = i / 8, l = i % 8, y = at / 8, x = at % 8;
            const bool isPositive =
                std::is_signed_v<T> ? cosine(y, k) * cosine(x, l) > 0 : cosine(k, y) * cosine(l, x) > 0;
            blocks.push_back(isPositive ? high : low);
        }
    for (int i = 0; i < 400; i++) {
        const std::vector<T> block = drawn<T>(64, drawContent(random), random);
        blocks.insert(blocks.end(), block.begin(), block.end());
    }
    for (int i = 0; i < 200 * 64; i++) // of the size that pictures have, and some that are sparse
        blocks.push_back(static_cast<T>(i < 6400 || random.below(8) == 0 ? low / 8 + int(random.below(256)) : 0));
    return blocks;
}

TEST(CosineTransform, IsNearTheExactOne)
{
    Random random(1);
    const std::vector<uint8_t> pixels = blocksFor<uint8_t>(0, 255, random);
    std::vector<int16_t> results(pixels.size());
    ASSERT_EQ(rvkDCTu8(pixels.data(), 8, static_cast<uint32_t>(pixels.size() / 8), 0, results.data(), 0),
              RAVIK_SUCCESS);
    long double sum = 0;
    for (size_t first = 0; first < pixels.size(); first += 64) {
        Block exact;
        std::copy_n(&pixels[first], 64, exact.begin());
        exact = transformed(exact, false);
        for (size_t i = 0; i < 64; i++) {
            ASSERT_LE(std::fabs(results[first + i] - exact[i]), 0.7L) << first / 64 << ", coefficient " << i;
            sum += results[first + i] - exact[i];
        }
    }
    EXPECT_LT(std::fabs(sum), 0.01L * static_cast<long double>(pixels.size()));
}

TEST(CosineTransform, InverseIsNearTheExactOne)
{
    Random random(2);
    const std::vector<int16_t> values = blocksFor<int16_t>(-2048, 2047, random);
    std::vector<uint8_t> results(values.size());
    ASSERT_EQ(rvkIDCTs16(values.data(), 8, static_cast<uint32_t>(values.size() / 8), 0, results.data(), 0),
              RAVIK_SUCCESS);
    for (size_t first = 0; first < values.size(); first += 64) {
        Block exact;
        long double magnitudes = 0;
        for (size_t i = 0; i < 64; i++) {
            exact[i] = std::min(std::max<int>(values[first + i], -2048), 2047);
            magnitudes += std::fabs(exact[i]);
        }
        exact = transformed(exact, true);
        for (size_t i = 0; i < 64; i++)
            ASSERT_LE(std::fabs(results[first + i] - std::min(std::max(exact[i], 0.0L), 255.0L)),
                      magnitudes > 16384 ? 1.5L : 1.0L)
                << first / 64 << ", pixel " << i;
    }
}

// ---- Fourier transforms ----

struct Size
{
    uint32_t width, height;
    size_t area() const { return size_t{width} * height; }
};

// The sums of the definition, by rows and then by columns; `sign` is that of the exponent.
std::vector<Complex> fourier(const std::vector<Complex>& in, Size size, int sign)
{
    const auto alongRows = [=](const std::vector<Complex>& rows, size_t width, size_t height) {
        std::vector<Complex> out(rows.size()), roots(width); // the transpose of it
        for (size_t i = 0; i < width; i++)
            roots[i] = std::polar(1.0L, sign * 2 * kPi * static_cast<long double>(i) / static_cast<long double>(width));
        for (size_t y = 0; y < height; y++)
            for (size_t u = 0; u < width; u++)
                for (size_t x = 0; x < width; x++)
                    out[u * height + y] += rows[y * width + x] * roots[u * x % width];
        return out;
    };
    return alongRows(alongRows(in, size.width, size.height), size.height, size.width);
}

long double normOf(const std::vector<Complex>& values)
{
    long double sum = 0;
    for (const Complex value : values)
        sum += std::norm(value);
    return std::sqrt(sum);
}

constexpr Size kSizes[] = {{1, 1}, {2, 1}, {1, 2}, {4, 2}, {2, 8}, {16, 16}, {32, 4}, {8, 64}, {128, 32}, {64, 128}};

TEST(FourierTransform, IsNearTheExactOne)
{
    Random random(3);
    for (const Size size : kSizes)
        for (const Content content : {Content::uniform, Content::extremes, Content::constant}) {
            const std::vector<uint8_t> picture = drawn<uint8_t>(size.area(), content, random);
            const std::vector<Complex> exact = fourier({picture.begin(), picture.end()}, size, -1);
            forEachImplementation<Slot::rvkFFTu8>([&](const char* name, auto function) {
                std::vector<float> spectrum(2 * size.area());
                ASSERT_EQ(
                    function(picture.data(), size.width, size.height, size.width, spectrum.data(), 8 * size.width),
                    RAVIK_SUCCESS);
                std::vector<Complex> errors = exact;
                for (size_t i = 0; i < errors.size(); i++)
                    errors[i] -= Complex{spectrum[2 * i], spectrum[2 * i + 1]};
                EXPECT_LE(normOf(errors), 3e-7L * normOf(exact)) << name << ", " << size.width << "x" << size.height;
            });
        }
}

TEST(FourierTransform, InverseIsNearTheExactOne)
{
    Random random(4);
    for (const Size size : kSizes)
        for (const float scale : {1.0f, 30.0f, 1e30f}) {
            std::vector<float> spectrum(2 * size.area());
            std::vector<Complex> exact;
            for (float& value : spectrum)
                value = scale * static_cast<float>(static_cast<int>(random.below(2001)) - 1000);
            spectrum[0] += 100 * static_cast<float>(size.area()); // few pixels are clamped
            for (size_t i = 0; i < size.area(); i++)
                exact.push_back(Complex{spectrum[2 * i], spectrum[2 * i + 1]} / static_cast<long double>(size.area()));
            exact = fourier(exact, size, 1);
            const long double allowed = 0.5L + 1e-6L * normOf(exact);
            forEachImplementation<Slot::rvkIFFTf32>([&](const char* name, auto function) {
                std::vector<uint8_t> picture(size.area());
                ASSERT_EQ(
                    function(spectrum.data(), size.width, size.height, 8 * size.width, picture.data(), size.width),
                    RAVIK_SUCCESS);
                for (size_t i = 0; i < picture.size(); i++)
                    ASSERT_LE(std::fabs(picture[i] - std::min(std::max(exact[i].real(), 0.0L), 255.0L)), allowed)
                        << name << ", " << size.width << "x" << size.height << ", pixel " << i;
            });
        }
}

TEST(FourierTransform, WhatIsNoNumberMakesAllPixels0)
{
    for (const float odd : {NAN, INFINITY, -INFINITY})
        for (const size_t at : {size_t{0}, size_t{1}, size_t{67}, size_t{2 * 64 * 4 - 1}}) {
            std::vector<float> spectrum(2 * 64 * 4, 1e6f);
            spectrum[at] = odd;
            forEachImplementation<Slot::rvkIFFTf32>([&](const char* name, auto function) {
                std::vector<uint8_t> picture(64 * 4, 77);
                EXPECT_EQ(function(spectrum.data(), 64, 4, 8 * 64, picture.data(), 64), RAVIK_SUCCESS);
                EXPECT_EQ(picture, std::vector<uint8_t>(64 * 4)) << name << ", " << odd << " at " << at;
            });
        }
}

TEST(FourierTransform, PicturesComeBack)
{
    Random random(5);
    for (const Content content : {Content::uniform, Content::extremes}) {
        const Size size = {1024, content == Content::uniform ? 1024u : 128u};
        const std::vector<uint8_t> picture = drawn<uint8_t>(size.area(), content, random);
        std::vector<float> spectrum(2 * size.area());
        forEachImplementation<Slot::rvkFFTu8>([&](const char* name, auto function) {
            if (size.height == 1024 && function == referenceOf<Slot::rvkFFTu8>())
                return; // takes its time
            std::vector<uint8_t> back(size.area());
            EXPECT_EQ(function(picture.data(), size.width, size.height, size.width, spectrum.data(), 8 * size.width),
                      RAVIK_SUCCESS);
            for (const NamedCell& inverse : vectaCellsOf(Slot::rvkIFFTf32)) {
                reinterpret_cast<decltype(&rvkIFFTf32)>(inverse.cell)(spectrum.data(), size.width, size.height,
                                                                      8 * size.width, back.data(), size.width);
                EXPECT_EQ(back, picture) << name << ", " << inverse.name;
            }
        });
    }
}

// ---- wavelets ----

// A function that takes T to D.
template <class T, class D>
using Transform = rvkStatus (*)(const T*, uint32_t, uint32_t, uint32_t, D*, uint32_t);

// Pictures of many sizes come back, and transposed forms have the transposes of what plain ones have.
template <class T>
void expectReversible(uint32_t unit, Transform<T, int16_t> forward, Transform<int16_t, T> inverse,
                      Transform<T, int16_t> forwardTransposed, Transform<int16_t, T> inverseTransposed)
{
    Random random(6);
    for (int i = 0; i < 60; i++) {
        const uint32_t width = unit * (1 + random.below(40)), height = unit * (1 + random.below(40));
        const std::vector<T> picture = drawn<T>(size_t{width} * height, drawContent(random), random);
        std::vector<int16_t> plain(picture.size()), turned(picture.size()), expected(picture.size());
        std::vector<T> back(picture.size()), backFromTurned(picture.size());
        EXPECT_EQ(forward(picture.data(), width, height, 0, plain.data(), 0), RAVIK_SUCCESS);
        EXPECT_EQ(forwardTransposed(picture.data(), width, height, 0, turned.data(), 0), RAVIK_SUCCESS);
        EXPECT_EQ(inverse(plain.data(), width, height, 0, back.data(), 0), RAVIK_SUCCESS);
        EXPECT_EQ(inverseTransposed(turned.data(), height, width, 0, backFromTurned.data(), 0), RAVIK_SUCCESS);
        for (size_t at = 0; at < picture.size(); at++)
            expected[at % width * height + at / width] = plain[at];
        ASSERT_EQ(turned, expected) << width << "x" << height;
        ASSERT_EQ(back, picture) << width << "x" << height;
        ASSERT_EQ(backFromTurned, picture) << width << "x" << height;
    }
}

TEST(Wavelet, IsReversibleAndTransposed)
{
    expectReversible<int16_t>(1, rvkDWT53Tabs16, rvkIDWT53Tabs16, rvkDWT53TabTransposes16, rvkIDWT53TabTransposes16);
    expectReversible<uint8_t>(2, rvkDWTHaaru8, rvkIDWTHaars16, rvkDWTHaarTransposeu8, rvkIDWTHaarTransposes16);
}

TEST(Wavelet, WorkedValues)
{
    using Shorts = std::vector<int16_t>;
    Shorts values(20);
    EXPECT_EQ(rvkDWT53Tabs16(Shorts{7, 1, 12, 100, 5, 3, 90, 4, 0, 1, 250, 2, 33, 9, 60, 8, 77, 5, 6, 200}.data(), 5, 4,
                             0, values.data(), 0),
              RAVIK_SUCCESS);
    EXPECT_EQ(values,
              (Shorts{-19, 40, 29, 72, 77, 135, -4, 58, -47, -59, -44, 15, -45, 161, -29, -137, 10, 111, 210, -59}));
    const uint8_t pixels[] = {255, 0, 7, 3, 255, 1, 0, 5};
    values.resize(8);
    EXPECT_EQ(rvkDWTHaaru8(pixels, 4, 2, 0, values.data(), 0), RAVIK_SUCCESS);
    EXPECT_EQ(values, (Shorts{511, 15, 509, -1, -1, 5, 1, 9}));
    uint8_t few[4];
    EXPECT_EQ(rvkIDWTHaars16(Shorts{32767, 32767, -32768, -32768}.data(), 2, 2, 0, few, 0), RAVIK_SUCCESS);
    EXPECT_EQ(std::vector<int>(few, few + 4), (std::vector<int>{0, 0, 255, 0}));
    EXPECT_EQ(rvkIDWTHaars16(Shorts{505, 2, -3, 1}.data(), 2, 2, 0, few, 0), RAVIK_SUCCESS);
    EXPECT_EQ(std::vector<int>(few, few + 4), (std::vector<int>{126, 125, 127, 127}));
}

TEST(Wavelet, InPlaceTheStridesMustBeEqual)
{
    int16_t image[256] = {77};
    for (const auto function : {rvkDWT53Tabs16, rvkIDWT53Tabs16})
        EXPECT_EQ(function(image, 8, 8, 16, image, 18), RAVIK_EBADPARAM);
    EXPECT_EQ(image[0], 77);
}

#if RVK_TEST_OPENCV
TEST(FrequencyTransform, IsNearThatOfOpenCv)
{
    Random random(7);
    const std::vector<uint8_t> pixels = drawn<uint8_t>(512 * 1024, Content::uniform, random);
    cv::Mat picture, exact, got, spectrum(512, 1024, CV_32FC2), coefficients(512, 1024, CV_16S);
    cv::Mat(512, 1024, CV_8U, const_cast<uint8_t*>(pixels.data())).convertTo(picture, CV_64F);
    cv::dft(picture, exact, cv::DFT_COMPLEX_OUTPUT);
    forEachImplementation<Slot::rvkFFTu8>([&](const char* name, auto function) {
        function(pixels.data(), 1024, 512, 1024, spectrum.ptr<float>(), 8192);
        spectrum.convertTo(got, CV_64F);
        EXPECT_LE(cv::norm(got, exact), 3e-7 * cv::norm(exact)) << name;
    });
    rvkDCTu8(pixels.data(), 1024, 512, 0, coefficients.ptr<int16_t>(), 0);
    coefficients.convertTo(got, CV_64F);
    for (int x = 0; x < 1024; x += 8) {
        cv::dct(picture(cv::Rect(x, x / 16 * 8, 8, 8)), exact);
        EXPECT_LE(cv::norm(got(cv::Rect(x, x / 16 * 8, 8, 8)), exact, cv::NORM_INF), 0.7);
    }
}
#endif

} // namespace
