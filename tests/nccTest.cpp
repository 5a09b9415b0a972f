// What follows from the descriptors is not here: refusals, packed forms, vectors equal to references.
#include "support/windows.h"

#include <cmath>
#include <numeric>
#if RVK_TEST_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace test;

namespace {

struct Place
{
    uint32_t x, y;
    float score;

    bool operator==(const Place&) const = default;
};
constexpr Place kNowhere = {UINT32_MAX, UINT32_MAX, 0};

using Bytes = Picture<uint8_t>;

Bytes noise(int width, int height, uint32_t seed)
{
    Random random(seed);
    return pictureOf<uint8_t>(width, height, [&](int, int) { return random.below(256); });
}

Bytes cut(const Bytes& src, int x, int y, int width, int height)
{
    return pictureOf<uint8_t>(width, height, [&](int i, int j) { return src.at(x + i, y + j); });
}

template <class Function>
Place inRectangle(Function function, const Bytes& patch, const Bytes& src, uint32_t x, uint32_t y, uint32_t width,
                  uint32_t height)
{
    Place best = {};
    EXPECT_EQ(function(patch.pixels.data(), 1, patch.columns(), patch.rows(), patch.stride(), src.pixels.data(),
                       src.columns(), src.rows(), src.stride(), x, y, width, height, &best.x, &best.y, &best.score),
              RAVIK_SUCCESS);
    return best;
}

// The correlation of deviations from the means: another way than by sums of products.
long double correlation(const Bytes& a, const Bytes& b)
{
    const auto mean = [](const Bytes& p) {
        return std::accumulate(p.pixels.begin(), p.pixels.end(), 0.0L) / static_cast<long double>(p.pixels.size());
    };
    const long double meanA = mean(a), meanB = mean(b);
    long double ab = 0, aa = 0, bb = 0;
    for (size_t i = 0; i < a.pixels.size(); ++i) {
        const long double x = a.pixels[i] - meanA, y = b.pixels[i] - meanB;
        ab += x * y, aa += x * x, bb += y * y;
    }
    return ab / std::sqrt(aa * bb);
}

TEST(Ncc, FindsTheBestOfAllPositions)
{
    const Bytes src = noise(61, 33, 1);
    Random random(2);
    for (const auto& [width, height] : {std::pair{8, 8}, {1, 5}, {19, 3}, {7, 20}, {30, 33}}) {
        const Bytes patch = noise(width, height, random.below(99));
        const int left = static_cast<int>(random.below(40)), top = static_cast<int>(random.below(20)), size = 25;
        int bestX = -1, bestY = -1;
        long double most = -2;
        for (int y = top; y < top + size; ++y)
            for (int x = left; x < left + size; ++x) {
                if (!src.hasWindow(x, y, width, height))
                    continue;
                const long double score = correlation(patch, cut(src, x - width / 2, y - height / 2, width, height));
                if (score > most + 1e-12L)
                    most = score, bestX = x, bestY = y;
            }
        forEachImplementation<Slot::rvkNCCPatchesOnRectu8>([&](const char* name, auto function) {
            const Place best =
                inRectangle(function, patch, src, static_cast<uint32_t>(left), static_cast<uint32_t>(top), size, size);
            EXPECT_TRUE(best.x == static_cast<uint32_t>(bestX) && best.y == static_cast<uint32_t>(bestY)) << name;
            EXPECT_NEAR(best.score, bestX < 0 ? 0 : static_cast<double>(most), 1e-6) << name;
        });
#if RVK_TEST_OPENCV
        const auto mat = [](const Bytes& p) {
            return cv::Mat(p.height, p.width, CV_8U, const_cast<uint8_t*>(p.pixels.data()));
        };
        cv::Mat scores;
        cv::matchTemplate(mat(src), mat(patch), scores, cv::TM_CCOEFF_NORMED);
        if (bestX >= 0) {
            EXPECT_NEAR(scores.at<float>(bestY - height / 2, bestX - width / 2), static_cast<double>(most), 1e-4);
        }
#endif
    }
}

// Ties go to the first in raster order, also across the tiles of vectors. Far more pixels than vectors compare by
// themselves, whose sums are at the ends of 32 bits.
TEST(Ncc, TakesTheFirstOfTheBest)
{
    Bytes src = noise(700, 40, 3), large = noise(300, 270, 5);
    for (uint8_t& pixel : large.pixels)
        pixel = pixel < 128 ? 0 : 255;
    const Bytes patch = noise(8, 8, 4);
    for (const auto& [x, y] : {std::pair{600, 10}, {300, 20}, {101, 20}})
        for (int i = 0; i < 64; ++i)
            src.at(x + i % 8, y + i / 8) = 255 - patch.at(i % 8, i / 8) / 4;
    const Bytes negative = pictureOf<uint8_t>(8, 8, [&](int x, int y) { return 255 - patch.at(x, y) / 4; });
    forEachImplementation<Slot::rvkNCCPatchesOnRectu8>([&](const char* name, auto function) {
        EXPECT_EQ(inRectangle(function, negative, src, 0, 0, UINT32_MAX, UINT32_MAX), (Place{604, 14, 1})) << name;
        EXPECT_EQ(inRectangle(function, negative, src, 0, 20, 400, 9), (Place{105, 24, 1})) << name;
        EXPECT_EQ(inRectangle(function, cut(large, 17, 9, 256, 256), large, 135, 130, 20, 9), (Place{145, 137, 1}));
    });
}

template <Slot slot>
void expectShape(bool isCircle)
{
    const Bytes src = noise(60, 50, 4), corner = cut(src, 52, 42, 8, 8), first = cut(src, 0, 0, 8, 8);
    forEachImplementation<slot>([&](const char* name, auto function) {
        const auto around = [&](const Bytes& patch, const Bytes& picture, uint32_t x, uint32_t y, uint32_t radius) {
            Place best = {};
            const int32_t result = function(patch.pixels.data(), 8, picture.pixels.data(), 60, 50, 60, x, y, radius,
                                            &best.x, &best.y, &best.score);
            EXPECT_EQ(result, best == kNowhere) << name;
            return best;
        };
        for (const auto& [dx, dy] : {std::pair{5, 0}, {4, 3}, {4, 4}, {-5, 5}, {6, 0}}) {
            const bool isNear = isCircle ? dx * dx + dy * dy <= 25 : std::abs(dx) <= 5 && std::abs(dy) <= 5;
            EXPECT_EQ(around(cut(src, 26 + dx, 20 + dy, 8, 8), src, 30, 24, 5).score == 1, isNear) << name << dx << dy;
        }
        EXPECT_EQ(around(corner, src, 56, 46, 0), (Place{56, 46, 1})) << name;
        EXPECT_EQ(around(corner, src, 57, 46, 0), kNowhere) << name << ": no window fits";
        EXPECT_EQ(around(corner, src, 0, 0, UINT32_MAX), (Place{56, 46, 1})) << name;
        EXPECT_EQ(around(first, src, UINT32_MAX, 4, UINT32_MAX - 4), (Place{4, 4, 1})) << name;
        EXPECT_EQ(around(first, Bytes(60, 50, 7), 30, 20, 9), kNowhere) << name << ": windows of one grey level";
        EXPECT_EQ(around(Bytes(8, 8, 3), src, 30, 20, 9), kNowhere) << name << ": such a patch";
    });
}

TEST(Ncc, LooksWithinTheRadius)
{
    expectShape<Slot::rvkNCCPatchOnCircle8x8u8_v2>(true);
    expectShape<Slot::rvkNCCPatchOnSquare8x8u8_v2>(false);
}

} // namespace
