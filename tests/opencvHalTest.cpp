// The hooks of adapters/opencv that a run of OpenCV 4.6 does not reach: those of later versions beside what OpenCV does
// itself, and arguments that OpenCV does not pass.
#include "ravik_hal.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

#if RVK_TEST_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

constexpr int kNotImplemented = 1;

// A hook as a function of what is the same in most of them.
struct Hook
{
    const char* name;
    size_t srcElement, dstElement;
    std::function<int(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width, int height)> call;
};

std::vector<Hook> hooks()
{
    static const uint8_t table[256] = {};
    using In = const uint8_t*;
    using Out = uint8_t*;
    return {
        {"absdiff8u", 1, 1,
         [](In src, size_t srcStep, Out dst, size_t dstStep, int width, int height) {
             return ravik_hal_absdiff8u(src, srcStep, src, srcStep, dst, dstStep, width, height);
         }},
        {"mul8u16u", 1, 2,
         [](In src, size_t srcStep, Out dst, size_t dstStep, int width, int height) {
             return ravik_hal_mul8u16u(src, srcStep, src, srcStep, reinterpret_cast<uint16_t*>(dst), dstStep, width,
                                       height, 1);
         }},
        {"lut", 3, 3,
         [](In src, size_t srcStep, Out dst, size_t dstStep, int width, int height) {
             return ravik_hal_lut(src, srcStep, 2 << 3, table, 1, 1, dst, dstStep, width, height);
         }},
        {"flip", 2, 2,
         [](In src, size_t srcStep, Out dst, size_t dstStep, int width, int height) {
             return ravik_hal_flip(2, src, srcStep, width, height, dst, dstStep, 1);
         }},
        {"rotate90", 1, 1,
         [](In src, size_t srcStep, Out dst, size_t dstStep, int width, int height) {
             return ravik_hal_rotate90(0, src, srcStep, width, height, dst, dstStep, 90);
         }},
        {"resize", 1, 1,
         [](In src, size_t srcStep, Out dst, size_t dstStep, int width, int height) {
             return ravik_hal_resize(0, src, srcStep, width, height, dst, dstStep, width, height, 1, 1, 1);
         }},
        {"resize of 3 channels", 1, 1,
         [](In src, size_t srcStep, Out dst, size_t dstStep, int width, int height) {
             return ravik_hal_resize(2 << 3, src, srcStep, width, height, dst, dstStep, width, height, 1, 1, 1);
         }},
        {"warpAffine", 1, 1,
         [](In src, size_t srcStep, Out dst, size_t dstStep, int width, int height) {
             const double matrix[] = {1, 0, 0.5, 0, 1, 0.5}, border[4] = {};
             return ravik_hal_warpAffine(2 << 3, src, srcStep, width, height, dst, dstStep, width, height, matrix, 1, 0,
                                         border);
         }},
        {"remap32f", 1, 1,
         [](In src, size_t srcStep, Out dst, size_t dstStep, int width, int height) {
             float map[64] = {};
             const double border[4] = {};
             return ravik_hal_remap32f(0, src, srcStep, width, height, dst, dstStep, width, height, map, 16, map, 16, 1,
                                       0, border);
         }},
        {"cvtBGRtoBGR", 1, 1,
         [](In src, size_t srcStep, Out dst, size_t dstStep, int width, int height) {
             return ravik_hal_cvtBGRtoBGR(src, srcStep, dst, dstStep, width, height, 0, 3, 4, true);
         }},
        {"cvtGraytoBGR", 1, 1,
         [](In src, size_t srcStep, Out dst, size_t dstStep, int width, int height) {
             return ravik_hal_cvtGraytoBGR(src, srcStep, dst, dstStep, width, height, 0, 3);
         }},
        {"integral", 1, 4,
         [](In src, size_t srcStep, Out dst, size_t dstStep, int width, int height) {
             return ravik_hal_integral(0, 4, 6, src, srcStep, dst, dstStep, nullptr, 0, nullptr, 0, width, height, 1);
         }},
        {"equalize_hist", 1, 1, ravik_hal_equalize_hist},
        {"threshold", 1, 1,
         [](In src, size_t srcStep, Out dst, size_t dstStep, int width, int height) {
             return ravik_hal_threshold(src, srcStep, dst, dstStep, width, height, 0, 1, 100, 255, 0);
         }},
        {"medianBlur", 1, 1,
         [](In src, size_t srcStep, Out dst, size_t dstStep, int width, int height) {
             return ravik_hal_medianBlur(src, srcStep, dst, dstStep, width, height, 0, 1, 3);
         }},
        {"boxFilter beside other pixels", 1, 1,
         [](In src, size_t srcStep, Out dst, size_t dstStep, int width, int height) {
             return ravik_hal_boxFilter(src, srcStep, dst, dstStep, width, height, 0, 0, 1, 0, 0, 0, 1, 3, 3, 1, 1,
                                        true, 4);
         }},
        {"transpose2d", 4, 4,
         [](In src, size_t srcStep, Out dst, size_t dstStep, int width, int height) {
             return ravik_hal_transpose2d(src, srcStep, dst, dstStep, width, height, 4);
         }},
    };
}

// Empty and huge pictures, steps below a row, past 31 bits or of no whole elements, and overlapping memory.
TEST(OpencvHal, BadArgumentsAreLeftToOpenCV)
{
    alignas(8) uint8_t memory[4096] = {};
    const size_t step = 64;
    for (const Hook& hook : hooks()) {
        uint8_t *src = memory, *dst = memory + 2048;
        const auto refuses = [&](size_t srcStep, size_t dstStep, int width, int height) {
            return hook.call(src, srcStep, dst, dstStep, width, height) == kNotImplemented;
        };
        EXPECT_TRUE(refuses(step, step, 0, 4)) << hook.name;
        EXPECT_TRUE(refuses(step, step, 4, -1)) << hook.name;
        EXPECT_TRUE(refuses(size_t{1} << 31, step, 4, 4)) << hook.name;
        EXPECT_TRUE(refuses(step, size_t{1} << 31, 4, 4)) << hook.name;
        EXPECT_TRUE(refuses(3 * hook.srcElement, step, 4, 4)) << hook.name;
        EXPECT_TRUE(refuses(step, 3 * hook.dstElement, 4, 4)) << hook.name;
        EXPECT_TRUE(refuses(step, step, INT32_MAX, 1)) << hook.name;
        if (hook.srcElement > 1) {
            EXPECT_TRUE(refuses(step + 1, step, 4, 4)) << hook.name;
        }
        if (hook.dstElement > 1) {
            EXPECT_TRUE(refuses(step, step + 1, 4, 4)) << hook.name;
        }
        dst = src + 2 * step;
        EXPECT_TRUE(refuses(step, step, 4, 4)) << hook.name;
    }
    for (const uint8_t byte : memory)
        ASSERT_EQ(byte, 0);
}

TEST(OpencvHal, CornersOfOtherKindsAreLeftToOpenCV)
{
    const std::vector<uint8_t> src(100 * 20);
    int stored = 0;
    const auto store = [](void* list, const uint32_t*, const uint32_t*, uint32_t) { ++*static_cast<int*>(list); };
    const auto corners = [&](size_t step, int width, int height, int threshold, int type) {
        return ravik_hal_FASTInto(src.data(), step, width, height, threshold, true, type, store, &stored);
    };
    EXPECT_EQ(corners(100, 100, 20, 10, 1), kNotImplemented);  // another circle
    EXPECT_EQ(corners(100, 100, 20, 0, 2), kNotImplemented);   // scores of 0
    EXPECT_EQ(corners(100, 100, 20, 255, 2), kNotImplemented); // none
    EXPECT_EQ(corners(100, 100, 6, 10, 2), kNotImplemented);   // no room for a circle
    EXPECT_EQ(corners(99, 100, 20, 10, 2), kNotImplemented);
    EXPECT_EQ(corners(0, INT32_MAX, INT32_MAX, 10, 2), kNotImplemented);
    EXPECT_EQ(stored, 0);
    EXPECT_EQ(corners(100, 100, 20, 10, 2), 0);
    EXPECT_EQ(stored, 1);
}

// Warps by matrices that single precision does not hold, or that have no finite positions.
TEST(OpencvHal, DoubtfulMatricesAreLeftToOpenCV)
{
    const std::vector<uint8_t> src(400, 9);
    std::vector<uint8_t> dst(400);
    const double border[4] = {};
    const auto warp = [&](const std::vector<double>& matrix, int interpolation, int borderType) {
        return ravik_hal_warpPerspective(0, src.data(), 20, 20, 20, dst.data(), 20, 20, 20, matrix.data(),
                                         interpolation, borderType, border);
    };
    EXPECT_EQ(warp({1, 0, NAN, 0, 1, 0, 0, 0, 1}, 1, 0), kNotImplemented);
    EXPECT_EQ(warp({1, 0, 0, 0, INFINITY, 0, 0, 0, 1}, 1, 0), kNotImplemented);
    EXPECT_EQ(warp({1, 0, 0, 0, 1, NAN, 0, 0, 1}, 1, 0), kNotImplemented);
    EXPECT_EQ(warp({1, 0, 0, 0, 1, 0, 0, NAN, 1}, 1, 0), kNotImplemented);
    EXPECT_EQ(warp({1e9, 0, -1e9, 0, 1, 0, 0, 0, 1}, 1, 0), kNotImplemented); // differences of large numbers
    EXPECT_EQ(warp({1, 0, 0, 0, 1, 0, -0.1, 0, 1}, 1, 0), kNotImplemented);   // a horizon in the picture
    EXPECT_EQ(warp({1, 0, 0, 0, 1, 0, 0, 0, 0}, 1, 0), kNotImplemented);      // no denominator
    EXPECT_EQ(warp({1, 0, 0, 0, 1, 0, 0, 0, 1}, 0, 0), kNotImplemented);      // the nearest pixel
    EXPECT_EQ(warp({1, 0, 0, 0, 1, 0, 0, 0, 1}, 1, 5), kNotImplemented);      // transparent
    EXPECT_EQ(dst, std::vector<uint8_t>(400));
    EXPECT_EQ(warp({-2, 0, 0, 0, -2, 0, 0, 0, -2}, 1, 0), 0);
    EXPECT_EQ(dst, src);
}

// The step of a picture of one row means nothing.
TEST(OpencvHal, OneRowHasAnyStep)
{
    for (const size_t step : {size_t{0}, size_t{1}, SIZE_MAX}) {
        const uint8_t a[] = {1, 200, 3}, b[] = {4, 100, 3};
        uint8_t dst[3];
        ASSERT_EQ(ravik_hal_absdiff8u(a, step, b, step + 1, dst, step, 3, 1), 0);
        EXPECT_EQ(dst[0], 3);
        EXPECT_EQ(dst[1], 100);
        EXPECT_EQ(dst[2], 0);
        uint8_t colors[9];
        ASSERT_EQ(ravik_hal_cvtGraytoBGR(a, step, colors, step, 3, 1, 0, 3), 0);
        EXPECT_EQ(colors[5], 200);
        ASSERT_EQ(ravik_hal_resize(0, a, step, 3, 1, colors, step, 9, 1, 3, 1, 0), 0);
        EXPECT_EQ(colors[3], 200);
        EXPECT_EQ(colors[8], 3);
    }
}

#if RVK_TEST_OPENCV

cv::RNG random(1);

// A part of a larger picture, so that steps are larger than rows.
cv::Mat region(int type, cv::Size size)
{
    cv::Mat whole(size.height + 3, size.width + random.uniform(0, 20), type);
    random.fill(whole.reshape(1), cv::RNG::UNIFORM, 0, 256);
    return whole(cv::Rect(whole.cols - size.width, 2, size.width, size.height));
}

cv::Size randomSize()
{
    return {random.uniform(1, 90), random.uniform(1, 90)};
}

// Whether the hook did the work as OpenCV does; where it may not refuse, whether it did it at all.
void expectSame(int status, const cv::Mat& actual, const cv::Mat& expected, bool isTaken = true)
{
    EXPECT_EQ(status, isTaken ? 0 : kNotImplemented);
    if (status == 0) {
        EXPECT_EQ(cv::norm(actual, expected, cv::NORM_INF), 0) << actual.size() << " of " << actual.elemSize();
    }
}

TEST(OpencvHal, MovesPixelsAsOpenCVDoes)
{
    for (int round = 0; round < 300; round++) {
        const int type = std::vector{CV_8UC1, CV_8UC2, CV_8UC3, CV_8UC4, CV_16SC1, CV_32FC1, CV_64FC1}[round % 7];
        const cv::Mat src = region(type, randomSize());
        const int pixel = int(src.elemSize());
        cv::Mat expected;
        const cv::Mat same = region(type, src.size()), turned = region(type, {src.rows, src.cols});

        cv::transpose(src, expected);
        expectSame(ravik_hal_transpose2d(src.data, src.step, turned.data, turned.step, src.cols, src.rows, pixel),
                   turned, expected, pixel <= 4);
        for (const int mode : {0, 1, -1}) {
            cv::flip(src, expected, mode);
            expectSame(ravik_hal_flip(type, src.data, src.step, src.cols, src.rows, same.data, same.step, mode), same,
                       expected, mode == 0 || pixel <= 3);
        }
        for (const int mode : {cv::ROTATE_90_CLOCKWISE, cv::ROTATE_180, cv::ROTATE_90_COUNTERCLOCKWISE}) {
            cv::rotate(src, expected, mode);
            const cv::Mat& dst = mode == cv::ROTATE_180 ? same : turned;
            expectSame(
                ravik_hal_rotate90(type, src.data, src.step, src.cols, src.rows, dst.data, dst.step, 90 * (mode + 1)),
                dst, expected, pixel <= 3);
        }
        cv::flip(src, expected, 1);
        expectSame(ravik_hal_flip(type, src.data, src.step, src.cols, src.rows, src.data, src.step, 1), src, expected,
                   pixel <= 3);
    }
}

TEST(OpencvHal, ComputesAsOpenCVDoes)
{
    const cv::Mat table = region(CV_8U, {256, 1});
    for (int round = 0; round < 100; round++) {
        const cv::Size size = randomSize();
        const int channels = 1 + round % 4;
        const cv::Mat a = region(CV_8UC(channels), size), b = region(CV_8UC(channels), size);
        const cv::Mat bytes = region(CV_8UC(channels), size), words = region(CV_16UC(channels), size),
                      floats = region(CV_32FC(channels), size);
        cv::Mat expected;
        cv::LUT(a, table, expected);
        expectSame(ravik_hal_lut(a.data, a.step, size_t(a.type()), table.data, 1, 1, bytes.data, bytes.step, size.width,
                                 size.height),
                   bytes, expected);
        const int width = size.width * channels;
        cv::subtract(a, b, expected, cv::noArray(), CV_32F);
        expectSame(ravik_hal_sub8u32f(a.data, a.step, b.data, b.step, reinterpret_cast<float*>(floats.data),
                                      floats.step, width, size.height),
                   floats, expected);
        cv::multiply(a, b, expected, 1, CV_16U);
        expectSame(ravik_hal_mul8u16u(a.data, a.step, b.data, b.step, reinterpret_cast<uint16_t*>(words.data),
                                      words.step, width, size.height, 1),
                   words, expected);

        int count = -1;
        const cv::Mat row = a.row(0).reshape(1), other = b.row(0).reshape(1);
        ASSERT_EQ(ravik_hal_normHamming8u(row.data, width, 1, &count), 0);
        EXPECT_EQ(count, cv::norm(row, cv::NORM_HAMMING));
        ASSERT_EQ(ravik_hal_normHammingDiff8u(row.data, other.data, width, 1, &count), 0);
        EXPECT_EQ(count, cv::norm(row, other, cv::NORM_HAMMING));
        EXPECT_EQ(ravik_hal_normHamming8u(row.data, width, 2, &count), kNotImplemented);
    }
}

TEST(OpencvHal, EqualizesAsOpenCVDoes)
{
    for (int round = 0; round < 100; round++) {
        const cv::Mat src = region(CV_8U, randomSize()), dst = region(CV_8U, src.size());
        const int least = round % 200, most = least + 1 + round % 50;
        random.fill(src, cv::RNG::UNIFORM, least, most);
        cv::Mat expected;
        cv::equalizeHist(src, expected);
        expectSame(ravik_hal_equalize_hist(src.data, src.step, dst.data, dst.step, src.cols, src.rows), dst, expected);
        expectSame(ravik_hal_equalize_hist(src.data, src.step, src.data, src.step, src.cols, src.rows), src, expected);
    }
}

// OpenCV rounds positions to 1/32 of a pixel.
TEST(OpencvHal, RemapsNearlyAsOpenCVDoes)
{
    for (int round = 0; round < 100; round++) {
        const int type = round % 3 ? CV_8UC1 : CV_8UC4;
        const cv::Mat src = region(type, randomSize()), dst = region(type, randomSize());
        const cv::Mat maps = region(CV_32F, {dst.cols * 2, dst.rows});
        cv::Mat mapX = maps.colRange(0, dst.cols), mapY = maps.colRange(dst.cols, 2 * dst.cols);
        random.fill(mapX, cv::RNG::UNIFORM, -5, src.cols + 5);
        random.fill(mapY, cv::RNG::UNIFORM, -5, src.rows + 5);
        mapX.at<float>(0, 0) = round % 2 ? NAN : 1e5f;
        mapY.at<float>(0, 0) = -INFINITY;
        const cv::Scalar value(type == CV_8UC1 ? 99.6 : 0);
        const auto hook = [&](int interpolation, int border) {
            return ravik_hal_remap32f(src.type(), src.data, src.step, src.cols, src.rows, dst.data, dst.step, dst.cols,
                                      dst.rows, mapX.ptr<float>(), mapX.step, mapY.ptr<float>(), mapY.step,
                                      interpolation, border, value.val);
        };
        cv::Mat expected;
        cv::remap(src, expected, mapX, mapY, cv::INTER_LINEAR, cv::BORDER_CONSTANT, value);
        ASSERT_EQ(hook(cv::INTER_LINEAR, cv::BORDER_CONSTANT), 0);
        EXPECT_LE(cv::norm(dst, expected, cv::NORM_INF), 10);
        EXPECT_EQ(hook(cv::INTER_CUBIC, cv::BORDER_CONSTANT), kNotImplemented);
        EXPECT_EQ(hook(cv::INTER_LINEAR, cv::BORDER_REPLICATE), kNotImplemented);
    }
}

#endif

} // namespace
