#include "support/logCapture.h"
#include "support/scarceMemory.h"
#include "support/windows.h"

#include <cmath>

#if RVK_TEST_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace test;

namespace {

struct Statistics
{
    float mean = 77, variance = 77;
};

template <class Function>
Statistics statisticsOf(Function function, const Picture<uint8_t>& src, uint32_t x, uint32_t y, uint32_t width,
                        uint32_t height, int32_t estimator)
{
    Statistics s;
    EXPECT_EQ(function(src.pixels.data(), src.stride(), x, y, width, height, &s.mean, &s.variance, estimator),
              RAVIK_SUCCESS);
    return s;
}

TEST(Statistics, WorkedValues)
{
    const Picture<uint8_t> src = pictureOf<uint8_t>(4, 3, [](int x, int y) { return 10 * y + x; });
    forEachImplementation<Slot::rvkImageIntensityStats_v2>([&](const char* name, auto function) {
        const Statistics biased = statisticsOf(function, src, 1, 1, 2, 2, RAVIK_VARIANCE_BIASED); // 11 12 / 21 22
        EXPECT_EQ(biased.mean, 16.5f) << name;
        EXPECT_EQ(biased.variance, 25.25f) << name;
        EXPECT_EQ(statisticsOf(function, src, 1, 1, 2, 2, RAVIK_VARIANCE_UNBIASED).variance, 101 / 3.0f) << name;
        EXPECT_EQ(statisticsOf(function, src, 3, 2, 1, 1, RAVIK_VARIANCE_BIASED).variance, 0) << name;
        EXPECT_FALSE(std::isfinite(statisticsOf(function, src, 3, 2, 1, 1, RAVIK_VARIANCE_UNBIASED).variance)) << name;
        clearLog();
        Statistics s;
        EXPECT_EQ(function(src.pixels.data(), 4, 0, 0, 4, 3, &s.mean, &s.variance, 2), 3);
        EXPECT_TRUE(logHas("6 ravik_lib_log: rvkImageIntensityStats_v2 error invalid varianceEstimator 2"));
        EXPECT_EQ(s.mean, 77);
    });
    forEachImplementation<Slot::rvkImageIntensityStats>([&](const char* name, auto function) {
        Statistics s;
        function(src.pixels.data(), 4, 1, 1, 2, 2, &s.mean, &s.variance);
        EXPECT_EQ(s.variance, 25.25f) << name;
    });
}

// So many pixels of the largest value that 32 bits hold neither sum, and of both ends, where variance is the largest.
TEST(Statistics, OfManyPixelsAreExact)
{
    const uint32_t width = 8192, height = 2500;
    for (const uint8_t low : {255, 0}) {
        std::vector<uint8_t> src(size_t{width} * height, 255);
        std::fill_n(src.begin(), src.size() / 2, low);
        const float mean = low ? 255.0f : 127.5f;
        forEachImplementation<Slot::rvkImageIntensityStats>([&](const char* name, auto function) {
            Statistics s;
            function(src.data(), width, 0, 0, width, height, &s.mean, &s.variance);
            EXPECT_NEAR(s.mean, mean, 1e-5f) << name;
            EXPECT_NEAR(s.variance, low ? 0 : 127.5f * 127.5f, 0.01f) << name;
        });
    }
}

// ---- histograms ----

using Histogram = std::vector<uint32_t>;

Histogram histogramOf(const Picture<uint8_t>& src, uint32_t left, uint32_t top, uint32_t right, uint32_t bottom)
{
    Histogram histogram(256);
    for (uint32_t y = top; y < bottom; ++y)
        for (uint32_t x = left; x < right; ++x)
            ++histogram[src.pixels[y * src.columns() + x]];
    return histogram;
}

TEST(Statistics, SpatialHistogramsAreThoseOfTheirCells)
{
    Random random(5);
    for (int trial = 0; trial < 40; ++trial) {
        const uint32_t width = 1 + random.below(150), height = 1 + random.below(40);
        const Picture<uint8_t> src = randomPicture<uint8_t>(random, static_cast<int>(width), static_cast<int>(height));
        const uint32_t across = 1 + random.below(width), down = 1 + random.below(height);
        Histogram expected;
        for (uint32_t row = 0; row < down; ++row)
            for (uint32_t column = 0; column < across; ++column) {
                const Histogram cell = histogramOf(src, column * width / across, row * height / down,
                                                   (column + 1) * width / across, (row + 1) * height / down);
                expected.insert(expected.end(), cell.begin(), cell.end());
            }
        forEachImplementation<Slot::rvkImageSpatialHistogramu8>([&](const char* name, auto function) {
            Histogram actual(expected.size(), 77);
            function(src.pixels.data(), width, height, width, across, down, actual.data());
            ASSERT_EQ(actual, expected) << name << ", " << across << "x" << down << " of " << width << "x" << height;
        });
        const uint32_t cellWidth = 1 + random.below(width + 9), cellHeight = 1 + random.below(height + 9);
        expected.clear();
        for (uint32_t y = 0; y < height; y += cellHeight)
            for (uint32_t x = 0; x < width; x += cellWidth) {
                const Histogram cell =
                    histogramOf(src, x, y, std::min(width, x + cellWidth), std::min(height, y + cellHeight));
                expected.insert(expected.end(), cell.begin(), cell.end());
                expected.push_back(77);
            }
        forEachImplementation<Slot::rvkImageSpatialHistogramu8_v2>([&](const char* name, auto function) {
            Histogram actual(expected.size(), 77);
            function(src.pixels.data(), width, height, width, cellWidth, cellHeight, actual.data(), 257 * 4);
            ASSERT_EQ(actual, expected) << name << ", cells of " << cellWidth << "x" << cellHeight;
        });
    }
}

// ---- tables ----

TEST(Statistics, EqualizingSpreadsTheValues)
{
    const auto expectEqualized = [](std::vector<uint8_t> pixels, const std::vector<uint8_t>& expected) {
        const auto width = static_cast<uint32_t>(pixels.size());
        forEachImplementation<Slot::rvkImageHistogramEqualizeu8>([&](const char* name, auto function) {
            std::vector<uint8_t> dst(width);
            function(pixels.data(), width, 1, width, dst.data(), width);
            EXPECT_EQ(dst, expected) << name;
        });
    };
    expectEqualized({7}, {255});
    expectEqualized({9, 9, 9, 200}, {191, 191, 191, 255});             // 191.25
    expectEqualized({3, 5, 4, 6, 8, 7}, {43, 128, 85, 170, 255, 213}); // 42.5, 127.5 and 212.5 up
    expectEqualized({255, 0, 0, 0, 0}, {255, 204, 204, 204, 204});
}

TEST(Statistics, TablesAreLookedUpAtEveryValue)
{
    Random random(6);
    std::vector<uint8_t> table(256), src(1024), expected(1024);
    std::generate(table.begin(), table.end(), [&] { return static_cast<uint8_t>(random.below(256)); });
    for (size_t i = 0; i < src.size(); ++i) {
        src[i] = static_cast<uint8_t>(i % 3 ? random.below(256) : i / 3);
        expected[i] = table[src[i]];
    }
    forEachImplementation<Slot::rvkTableLookupu8>([&](const char* name, auto function) {
        std::vector<uint8_t> dst(1024);
        EXPECT_EQ(function(src.data(), 1024, 1, 1024, table.data(), dst.data(), 1024), RAVIK_SUCCESS);
        EXPECT_EQ(dst, expected) << name;
    });
}

#if RVK_TEST_OPENCV
TEST(Statistics, AreThoseOfOpenCv)
{
    Random random(7);
    const Picture<uint8_t> src = randomPicture<uint8_t>(random, 640, 311);
    const cv::Mat mat(311, 640, CV_8U, const_cast<uint8_t*>(src.pixels.data()));
    cv::Mat counts, mean, deviation;
    cv::calcHist(std::vector<cv::Mat>{mat}, {0}, {}, counts, {256}, {0, 256});
    cv::meanStdDev(mat, mean, deviation);
    Histogram histogram(256), expected(counts.begin<float>(), counts.end<float>());
    rvkImageIntensityHistogram(src.pixels.data(), 0, 0, 0, 640, 311, histogram.data());
    EXPECT_EQ(histogram, expected);
    Statistics s;
    rvkImageIntensityStats(src.pixels.data(), 640, 0, 0, 640, 311, &s.mean, &s.variance);
    EXPECT_NEAR(s.mean, mean.at<double>(0), 1e-4);
    EXPECT_NEAR(std::sqrt(s.variance), deviation.at<double>(0), 0.01);
}
#endif

} // namespace
