// Scaling by any ratio against expectations in doubles or, of areas and means, in whole parts of pixels.
#include "support/guarded.h"
#include "support/implementations.h"
#include "support/kernelModes.h"
#include "support/random.h"

#include <cmath>
#include <functional>
#include <numeric>

#if RVK_TEST_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace test;

namespace {

struct Size
{
    uint32_t width, height;
};

struct Image
{
    Size size;
    uint32_t channels;
    std::vector<uint8_t> bytes;

    Image(Size s, uint32_t count) : size(s), channels(count), bytes(size_t{s.width} * s.height * count) {}
    // The nearest pixel of one outside.
    uint8_t at(int64_t x, int64_t y, uint32_t channel = 0) const
    {
        const int64_t column = std::clamp<int64_t>(x, 0, int64_t{size.width} - 1);
        const int64_t row = std::clamp<int64_t>(y, 0, int64_t{size.height} - 1);
        return bytes[static_cast<size_t>((row * size.width + column) * channels + channel)];
    }
};

Image randomImage(Size size, uint32_t channels = 1)
{
    Image image(size, channels);
    Random random(size.width * 31 + size.height);
    for (uint8_t& byte : image.bytes)
        byte = static_cast<uint8_t>(random.below(3) ? random.below(256) : random.below(2) * 255);
    return image;
}

double centre(uint32_t i, uint32_t from, uint32_t to)
{
    return (i + 0.5) * from / to - 0.5;
}

using Expectation = std::function<double(const Image&, Size to, uint32_t x, uint32_t y, uint32_t channel)>;

double nearest(const Image& src, Size to, uint32_t x, uint32_t y, uint32_t)
{
    return src.at((2 * x + 1) * src.size.width / (2 * to.width), (2 * y + 1) * src.size.height / (2 * to.height));
}

// Of the pixels around the centre, each weighed by `kernel` of its distance.
template <class Kernel>
double convolved(const Image& src, Size to, uint32_t x, uint32_t y, uint32_t channel, Kernel kernel)
{
    const double cx = centre(x, src.size.width, to.width), cy = centre(y, src.size.height, to.height);
    const auto left = static_cast<int64_t>(std::floor(cx)), top = static_cast<int64_t>(std::floor(cy));
    double sum = 0;
    for (int64_t j = top - 1; j <= top + 2; ++j)
        for (int64_t i = left - 1; i <= left + 2; ++i)
            sum += kernel(std::fabs(cx - double(i))) * kernel(std::fabs(cy - double(j))) * src.at(i, j, channel);
    return sum;
}

double bilinear(const Image& src, Size to, uint32_t x, uint32_t y, uint32_t channel)
{
    return convolved(src, to, x, y, channel, [](double d) { return std::max(0.0, 1 - d); });
}

double cubic(const Image& src, Size to, uint32_t x, uint32_t y, uint32_t channel)
{
    const double value = convolved(src, to, x, y, channel, [](double d) {
        return d < 1 ? 1.5 * d * d * d - 2.5 * d * d + 1 : d < 2 ? -0.5 * d * d * d + 2.5 * d * d - 4 * d + 2 : 0;
    });
    return std::clamp(value, 0.0, 255.0);
}

// Each pixel of the source is to.width x to.height parts, each of the destination as many as the source has pixels.
double area(const Image& src, Size to, uint32_t x, uint32_t y, uint32_t)
{
    uint64_t sum = 0;
    for (uint32_t j = y * src.size.height; j < (y + 1) * src.size.height; ++j)
        for (uint32_t i = x * src.size.width; i < (x + 1) * src.size.width; ++i)
            sum += src.at(i / to.width, j / to.height);
    const uint64_t count = uint64_t{src.size.width} * src.size.height;
    return double((2 * sum + count) / (2 * count));
}

double wholeMean(const Image& src, Size to, uint32_t x, uint32_t y, uint32_t channel)
{
    uint64_t sum = 0, count = 0;
    for (uint32_t j = y * src.size.height / to.height; j < (y + 1) * src.size.height / to.height; ++j)
        for (uint32_t i = x * src.size.width / to.width; i < (x + 1) * src.size.width / to.width; ++i, ++count)
            sum += src.at(i, j, channel);
    return double((2 * sum + count) / (2 * count));
}

constexpr Size kSizes[][2] = {
    {{1, 1}, {1, 1}},      {{1, 1}, {5, 3}},     {{2, 3}, {67, 9}},    {{37, 5}, {37, 5}},     {{64, 3}, {48, 2}},
    {{130, 9}, {87, 6}},   {{133, 8}, {66, 4}},  {{131, 7}, {62, 3}},  {{97, 7}, {31, 2}},     {{258, 12}, {64, 3}},
    {{61, 11}, {122, 9}},  {{40, 5}, {160, 20}}, {{85, 4}, {127, 6}},  {{300, 40}, {9, 1}},    {{5, 33}, {2, 16}},
    {{17, 9}, {255, 10}},  {{200, 3}, {199, 3}}, {{70, 20}, {69, 18}}, {{513, 2}, {384, 1}},   {{30, 4}, {29, 90}},
    {{220, 60}, {66, 18}}, {{80, 32}, {75, 30}}, {{640, 6}, {426, 4}}, {{150, 20}, {131, 17}},
};

enum class Direction { down, up, any };

bool isScaled(Direction direction, Size from, Size to)
{
    return direction == Direction::any ||
           (direction == Direction::down ? to.width <= from.width && to.height <= from.height
                                         : to.width >= from.width && to.height >= from.height);
}

// Every pixel lies within `tolerance` of what is expected; nothing is read outside of the source, nor written beside
// rows.
template <Slot slot, class... Parameter>
void expectScaled(Direction direction, uint32_t channels, double tolerance, const Expectation& expected,
                  Parameter... parameters)
{
    constexpr uint32_t gap = 3;
    for (const auto& [from, to] : kSizes) {
        if (!isScaled(direction, from, to))
            continue;
        const Image image = randomImage(from, channels);
        GuardedMemory src(image.bytes.size(), GuardedMemory::Flush::toEnd);
        std::copy(image.bytes.begin(), image.bytes.end(), src.data());
        const uint32_t rowBytes = to.width * channels, stride = rowBytes + gap;
        std::vector<double> values;
        for (uint32_t y = 0; y < to.height; ++y)
            for (uint32_t x = 0; x < rowBytes; ++x)
                values.push_back(expected(image, to, x / channels, y, x % channels));
        forEachImplementation<slot>([&, size = to](const char* name, auto function) {
            std::vector<uint8_t> dst(size_t{stride} * size.height, 0xA5);
            function(src.data(), image.size.width, image.size.height, image.size.width * channels, dst.data(),
                     size.width, size.height, stride, parameters...);
            for (uint32_t y = 0; y < size.height; ++y) {
                for (uint32_t x = 0; x < rowBytes; ++x)
                    ASSERT_NEAR(dst[y * stride + x], values[y * rowBytes + x], tolerance)
                        << nameOf(slot) << " on " << name << ", " << image.size.width << "x" << image.size.height
                        << " to " << size.width << "x" << size.height << ", " << x << ", " << y;
                for (uint32_t x = rowBytes; x < stride; ++x)
                    ASSERT_EQ(dst[y * stride + x], 0xA5) << nameOf(slot) << " on " << name;
            }
        });
    }
}

TEST(Resize, IsWhatTheFormulasSay)
{
    expectScaled<Slot::rvkScaleDownNNu8>(Direction::down, 1, 0, nearest);
    expectScaled<Slot::rvkScaleDownBLu8>(Direction::down, 1, 0.55, bilinear);
    expectScaled<Slot::rvkScaleDownu8_v2>(Direction::down, 1, 0, area);
    expectScaled<Slot::rvkScaleu8>(Direction::any, 1, 0, nearest, RAVIK_INTERPOLATION_NEAREST);
    expectScaled<Slot::rvkScaleu8>(Direction::any, 1, 0.55, bilinear, RAVIK_INTERPOLATION_BILINEAR);
    expectScaled<Slot::rvkScaleu8>(Direction::any, 1, 0, area, RAVIK_INTERPOLATION_AREA);
    expectScaled<Slot::rvkScaleUpPolyu8>(Direction::up, 1, 0.65, cubic);
    expectScaled<Slot::rvkScaleUpPolyInterleaveu8>(Direction::up, 2, 0.65, cubic);
    expectScaled<Slot::rvkScaleDownMNu8>(Direction::down, 1, 0, wholeMean);
    expectScaled<Slot::rvkScaleDownMNInterleaveu8>(Direction::down, 2, 0, wholeMean);
}

TEST(Resize, BilinearIsExactWhereFractionsAreEighths)
{
    for (const auto& [from, to] : {std::pair<Size, Size>{{66, 6}, {33, 3}}, {{99, 6}, {66, 4}}, {{33, 5}, {132, 20}}}) {
        const Image image = randomImage(from);
        forEachImplementation<Slot::rvkScaleu8>([&, size = to](const char* name, auto function) {
            std::vector<uint8_t> dst(size_t{size.width} * size.height);
            function(image.bytes.data(), image.size.width, image.size.height, image.size.width, dst.data(), size.width,
                     size.height, size.width, RAVIK_INTERPOLATION_BILINEAR);
            for (uint32_t i = 0; i < dst.size(); ++i)
                ASSERT_EQ(dst[i], std::floor(bilinear(image, size, i % size.width, i / size.width, 0) + 0.5)) << name;
        });
    }
}

TEST(Resize, BordersOfLargerPictures)
{
    // Doubled, the first column is a quarter of what is outside and three quarters of the first pixel.
    const uint8_t src[] = {100, 20};
    forEachImplementation<Slot::rvkScaleu8_v2>([&](const char* name, auto function) {
        const auto scaled = [&](uint32_t border) {
            std::vector<uint8_t> dst(8, 0xA5);
            EXPECT_EQ(function(src, 2, 1, 2, dst.data(), 4, 2, 4, RAVIK_INTERPOLATION_BILINEAR, border, 200),
                      RAVIK_SUCCESS);
            return dst;
        };
        using Row = std::vector<uint8_t>;
        EXPECT_EQ(scaled(RAVIK_BORDER_REPLICATE), (Row{100, 80, 40, 20, 100, 80, 40, 20})) << name;
        EXPECT_EQ(scaled(RAVIK_BORDER_CONSTANT), (Row{144, 110, 80, 99, 144, 110, 80, 99})) << name;
        EXPECT_EQ(scaled(RAVIK_BORDER_NONE), Row(8, 0xA5)) << name; // every pixel needs a row outside
        std::vector<uint8_t> dst(4, 0xA5);
        function(src, 2, 1, 2, dst.data(), 4, 1, 4, RAVIK_INTERPOLATION_BILINEAR, RAVIK_BORDER_NONE, 0);
        EXPECT_EQ(dst, (Row{0xA5, 80, 40, 0xA5})) << name;
    });
}

TEST(Resize, LargestRatios)
{
    std::vector<uint8_t> white(65535 * 3, 255);
    forEachImplementation<Slot::rvkScaleu8>([&](const char* name, auto function) {
        for (const uint32_t how :
             {RAVIK_INTERPOLATION_NEAREST, RAVIK_INTERPOLATION_BILINEAR, RAVIK_INTERPOLATION_AREA}) {
            uint8_t one[2] = {};
            function(white.data(), 65535, 3, 65535, one, 2, 1, 2, how);
            EXPECT_TRUE(one[0] == 255 && one[1] == 255) << name;
            function(white.data(), 3, 65535, 3, one, 1, 2, 1, how);
            EXPECT_TRUE(one[0] == 255 && one[1] == 255) << name;
            std::vector<uint8_t> row(65535);
            function(white.data(), 2, 1, 2, row.data(), 65535, 1, 65535, how);
            EXPECT_EQ(row, std::vector<uint8_t>(65535, 255)) << name;
        }
    });
    forEachImplementation<Slot::rvkScaleDownMNu8>([&](const char* name, auto function) {
        uint8_t one = 0;
        function(white.data(), 65535, 3, 65535, &one, 1, 1, 1);
        EXPECT_EQ(one, 255) << name;
        function(white.data(), 3, 65535, 3, &one, 1, 1, 1);
        EXPECT_EQ(one, 255) << name;
    });
}

TEST(Resize, SizesThatOverflowAreRefused)
{
    uint8_t src = 0, dst = 0xA5;
    EXPECT_EQ(rvkScaleu8(&src, 1u << 31, 1, 0, &dst, 1, 1, 0, 1), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkScaleu8(&src, 1, 1u << 31, 0, &dst, 1, 1, 0, 1), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkScaleu8(&src, 1, 1, 0, &dst, 1u << 31, 1, 0, 1), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkScaleu8(&src, 1, 1, 0, &dst, 1, 1u << 31, 0, 1), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkScaleDownu8_v2(&src, 1u << 29, 1u << 29, 0, &dst, 1, 1, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(dst, 0xA5);
}

TEST(Resize, KernelOfMeans)
{
    const uint8_t src[2][6] = {{1, 2, 3, 4, 5, 6}, {2, 3, 4, 5, 6, 8}};
    inBothModes(Kernel::irvkScaleDownMNCore, "irvkScaleDownMNCore", [&] {
        uint8_t dst[2] = {};
        kernel<Kernel::irvkScaleDownMNCore>()(src[0], 5, 2, 6, 1, dst, 2);
        EXPECT_EQ(dst[0], 2);
        EXPECT_EQ(dst[1], 5); // 27 / 6
        kernel<Kernel::irvkScaleDownMNCore>()(src[0], 3, 2, 6, 2, dst, 1);
        EXPECT_EQ(dst[0], 4); // 21 / 6
        EXPECT_EQ(dst[1], 5); // 28 / 6
    });
}

#if RVK_TEST_OPENCV
TEST(Resize, OpencvDiffersByOneAtMost)
{
    for (const auto& [from, to] : kSizes) {
        if (!isScaled(Direction::down, from, to))
            continue;
        Image image = randomImage(from);
        const cv::Mat src(int(from.height), int(from.width), CV_8UC1, image.bytes.data());
        const auto expectNear = [&, size = to](int opencv, uint32_t how) {
            cv::Mat theirs, ours(int(size.height), int(size.width), CV_8UC1);
            cv::resize(src, theirs, ours.size(), 0, 0, opencv);
            ASSERT_EQ(rvkScaleu8(image.bytes.data(), image.size.width, image.size.height, 0, ours.data, size.width,
                                 size.height, 0, how),
                      RAVIK_SUCCESS);
            EXPECT_LE(cv::norm(ours, theirs, cv::NORM_INF), 1) << size.width << "x" << size.height;
        };
        expectNear(cv::INTER_LINEAR, RAVIK_INTERPOLATION_BILINEAR);
        expectNear(cv::INTER_AREA, RAVIK_INTERPOLATION_AREA);
    }
}
#endif

} // namespace
