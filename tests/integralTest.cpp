#include "support/kernelModes.h"
#include "support/logCapture.h"
#include "support/windows.h"

#include <cstdlib>

#if RVK_TEST_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace test;

namespace {

// The sum over what `valueAt` gives for the pixels that belong to each entry.
template <class Sum, class Belongs, class ValueAt>
Picture<Sum> sumsOf(int width, int height, const Picture<uint8_t>& src, Belongs belongs, ValueAt valueAt)
{
    return pictureOf<Sum>(width, height, [&](int x, int y) {
        Sum sum = 0;
        for (int j = 0; j < src.height; ++j)
            for (int i = 0; i < src.width; ++i)
                sum += belongs(x, y, i, j) ? static_cast<Sum>(valueAt(i, j)) : 0;
        return sum;
    });
}

const auto isBefore = [](int x, int y, int i, int j) { return i < x && j < y; };
const auto isUpTo = [](int x, int y, int i, int j) { return i <= x && j <= y; };
const auto isInTriangle = [](int x, int y, int i, int j) { return j < y && std::abs(i - x + 1) <= y - j - 1; };

auto pixelOf(const Picture<uint8_t>& src)
{
    return [&](int i, int j) { return uint32_t{src.at(i, j)}; };
}
auto squareOf(const Picture<uint8_t>& src)
{
    return [&](int i, int j) { return uint32_t{src.at(i, j)} * src.at(i, j); };
}

// Every implementation of a function that writes one column and row more than the picture makes the sums of `belongs`.
template <Slot slot, class Sum, class Belongs>
void expectExclusive(Belongs belongs)
{
    Random random(static_cast<uint32_t>(slot));
    for (int trial = 0; trial < 25; ++trial) {
        const int width = 1 + static_cast<int>(random.below(trial % 3 ? 90 : 20));
        const Picture<uint8_t> src = randomPicture<uint8_t>(random, width, 1 + static_cast<int>(random.below(9)));
        const auto expected = sumsOf<Sum>(src.width + 1, src.height + 1, src, belongs, pixelOf(src));
        forEachImplementation<slot>([&](const char* name, auto function) {
            Picture<Sum> dst(src.width + 1, src.height + 1, 77);
            function(src.pixels.data(), src.columns(), src.rows(), src.stride(), dst.pixels.data(), dst.stride());
            ASSERT_EQ(dst, expected) << name;
        });
    }
}

TEST(Integral, SumsWhatBelongsToEachEntry)
{
    expectExclusive<Slot::rvkIntegrateImageu8_v2, uint32_t>(isBefore);
    expectExclusive<Slot::rvkTiltedIntegralu8s32, int32_t>(isInTriangle);
}

TEST(Integral, OfPixelsAndSquares)
{
    Random random(1);
    for (int trial = 0; trial < 25; ++trial) {
        const Picture<uint8_t> src = randomPicture<uint8_t>(random, 18 + static_cast<int>(random.below(90)),
                                                            18 + static_cast<int>(random.below(5)));
        const auto sums = sumsOf<uint32_t>(src.width, src.height, src, isUpTo, pixelOf(src));
        const auto squares = sumsOf<uint64_t>(src.width, src.height, src, isUpTo, squareOf(src));
        forEachImplementation<Slot::rvkIntegrateImageu8u64>([&](const char* name, auto function) {
            Picture<uint32_t> dst(src.width, src.height, 77);
            Picture<uint64_t> ofSquares(src.width, src.height, 77);
            function(src.pixels.data(), src.columns(), src.rows(), src.stride(), dst.pixels.data(),
                     ofSquares.pixels.data(), dst.stride(), ofSquares.stride());
            ASSERT_EQ(dst, sums) << name;
            ASSERT_EQ(ofSquares, squares) << name;
        });
        const uint32_t left = random.below(src.columns() - 17), top = random.below(src.rows() - 17);
        const auto patch = pictureOf<uint8_t>(
            18, 18, [&](int x, int y) { return src.at(static_cast<int>(left) + x, static_cast<int>(top) + y); });
        const auto patchSums = sumsOf<uint32_t>(19, 19, patch, isBefore, pixelOf(patch));
        const auto patchSquares = sumsOf<uint32_t>(19, 19, patch, isBefore, squareOf(patch));
        forEachImplementation<Slot::rvkIntegratePatch18x18u8>([&](const char* name, auto function) {
            Picture<uint32_t> dst(19, 19, 77), ofSquares(19, 19, 77);
            function(src.pixels.data(), src.columns(), src.rows(), src.stride(), left, top, dst.pixels.data(),
                     ofSquares.pixels.data());
            ASSERT_EQ(dst, patchSums) << name;
            ASSERT_EQ(ofSquares, patchSquares) << name;
        });
    }
}

TEST(Integral, OfLumaAndChromaAndOfForeground)
{
    Random random(2);
    for (int trial = 0; trial < 25; ++trial) {
        const int width = 2 + static_cast<int>(random.below(90)), height = 2 + static_cast<int>(random.below(9));
        const int pairs = (width + 1) / 2;
        const Picture<uint8_t> luma = randomPicture<uint8_t>(random, width, height);
        const Picture<uint8_t> chroma = randomPicture<uint8_t>(random, 2 * pairs, (height + 1) / 2);
        const auto half = [&](int component) {
            const auto plane = pictureOf<uint8_t>(width / 2, height / 2,
                                                  [&](int x, int y) { return chroma.at(2 * x + component, y); });
            return sumsOf<uint32_t>(width / 2, height / 2, plane, isUpTo, pixelOf(plane));
        };
        const auto ofY = sumsOf<uint32_t>(width, height, luma, isUpTo, pixelOf(luma));
        forEachImplementation<Slot::rvkIntegrateImageYCbCr420PseudoPlanaru8>([&](const char* name, auto function) {
            Picture<uint32_t> y(width, height, 77), cb(width / 2, height / 2, 77), cr = cb;
            function(luma.pixels.data(), chroma.pixels.data(), luma.columns(), luma.rows(), luma.stride(),
                     chroma.stride(), y.pixels.data(), cb.pixels.data(), cr.pixels.data(), y.stride(), cb.stride(),
                     cr.stride());
            ASSERT_EQ(y, ofY) << name;
            ASSERT_EQ(cb, half(0)) << name;
            ASSERT_EQ(cr, half(1)) << name;
        });
        const int background[] = {luma.at(0, 0), chroma.at(0, 0), static_cast<int>(random.below(256))};
        const uint32_t threshold = random.below(trial % 2 ? 766 : 300);
        const auto isForeground = [&](int x, int y) {
            return std::abs(luma.at(x, y) - background[0]) + std::abs(chroma.at(x / 2 * 2, y / 2) - background[1]) +
                       std::abs(chroma.at(x / 2 * 2 + 1, y / 2) - background[2]) >
                   static_cast<int>(threshold);
        };
        const auto counts = sumsOf<uint32_t>(width, height, luma, isUpTo, isForeground);
        forEachImplementation<Slot::rvkFindForegroundIntegrateImageYCbCr420u32>([&](const char* name, auto function) {
            Picture<uint32_t> dst(width, height, 77);
            function(luma.pixels.data(), chroma.pixels.data(), luma.columns(), luma.rows(), luma.stride(),
                     chroma.stride(), static_cast<uint8_t>(background[0]), static_cast<uint8_t>(background[1]),
                     static_cast<uint8_t>(background[2]), threshold, dst.pixels.data(), dst.stride());
            ASSERT_EQ(dst, counts) << name << ", threshold " << threshold;
        });
    }
}

void expectSumsOfWhite(uint32_t width, uint32_t height)
{
    const uint64_t pixels = uint64_t{width} * height;
    const std::vector<uint8_t> src(pixels, 255);
    forEachImplementation<Slot::rvkIntegrateImageu8u64>([&](const char* name, auto function) {
        std::vector<uint32_t> sums(pixels);
        std::vector<uint64_t> squares(pixels);
        function(src.data(), width, height, width, sums.data(), squares.data(), 4 * width, 8 * width);
        EXPECT_EQ(sums.back(), static_cast<uint32_t>(255 * pixels)) << name;
        EXPECT_EQ(squares.back(), 255 * 255 * pixels) << name;
    });
}

// Sums of 32 bits wrap, squares' sums of 64 do not: of 2^24 white pixels, in rows whose squares just fit 32 bits, and of
// a row of which they do not.
TEST(Integral, SumsOfLargePicturesWrap)
{
    expectSumsOfWhite(66051, 255);
    expectSumsOfWhite(66052, 1);
}

TEST(Integral, LineKernelAddsTheRowAbove)
{
    inBothModes(Kernel::irvkIntegralLine, "irvkIntegralLine", [] {
        for (uint32_t width = 1; width < 150; ++width) {
            std::vector<uint8_t> src(width, 200);
            std::vector<uint32_t> above(width, UINT32_MAX), dst(width), expected(width);
            for (uint32_t x = 0; x < width; ++x)
                expected[x] = 200 * (x + 1) - 1;
            kernel<Kernel::irvkIntegralLine>()(src.data(), width, above.data(), dst.data());
            EXPECT_EQ(dst, expected);
        }
    });
}

TEST(Integral, RefusesWhatItsDescriptorsDoNotSay)
{
    const uint8_t src[400] = {};
    uint32_t sums[400] = {}, squares[400] = {};
    clearLog();
    rvkIntegrateImageLineu8(src, 0, sums);
    rvkIntegrateImageLineu8(src, 0x40000000, sums);
    rvkIntegrateImageu8(src, 0x3fffffff, 1, sums); // 2^32 bytes a row
    rvkIntegrateImageu8_v2(src, UINT32_MAX, 1, 0, sums, 64);
    rvkIntegratePatchu8(src, 20, 9, 0, 12, 12, sums, squares); // beyond the stride
    EXPECT_EQ(logLines.size(), 5u);
}

#if RVK_TEST_OPENCV
TEST(Integral, IsThatOfOpenCv)
{
    Random random(4);
    const Picture<uint8_t> src = randomPicture<uint8_t>(random, 333, 111);
    const cv::Mat mat(111, 333, CV_8U, const_cast<uint8_t*>(src.pixels.data()));
    cv::Mat sum, squares, tilted;
    cv::integral(mat, sum, squares, tilted, CV_32S, CV_64F);
    Picture<uint32_t> ours(334, 112), ourSums(333, 111);
    Picture<uint64_t> ourSquares(333, 111);
    Picture<int32_t> ourTilted(334, 112);
    rvkIntegrateImageu8(src.pixels.data(), 333, 111, ours.pixels.data());
    rvkIntegrateImageu8u64(src.pixels.data(), 333, 111, 0, ourSums.pixels.data(), ourSquares.pixels.data(), 0, 0);
    rvkTiltedIntegralu8s32(src.pixels.data(), 333, 111, 0, ourTilted.pixels.data(), 0);
    for (int y = 0; y < 112; ++y)
        for (int x = 0; x < 334; ++x) {
            ASSERT_EQ(static_cast<int>(ours.at(x, y)), sum.at<int>(y, x));
            ASSERT_EQ(ourTilted.at(x, y), tilted.at<int>(y, x));
            if (x && y) {
                ASSERT_EQ(static_cast<double>(ourSquares.at(x - 1, y - 1)), squares.at<double>(y, x));
            }
        }
}
#endif

} // namespace
