#include "kernels.h"
#include "naturalPicture.h"
#include "support/kernelModes.h"
#include "support/logCapture.h"
#include "support/windows.h"

#if RVK_TEST_OPENCV
#include <opencv2/features2d.hpp>
#endif

using namespace test;

namespace {

class Bits : public RandomBits
{
public:
    explicit Bits(Random& random) : m_random(random) {}
    uint32_t next() override { return static_cast<uint32_t>(m_random.next() >> 32); }

private:
    Random& m_random;
};

Picture<uint8_t> naturalPicture(int width, int height, Random& random)
{
    Picture<uint8_t> picture(width, height);
    Bits bits(random);
    drawNaturalPicture(picture.pixels.data(), picture.columns(), picture.rows(), picture.columns(), bits);
    return picture;
}

// ---- the oracle: all arcs of all pixels ----------------------------------------------------------------------------

// The circle: point i is kAround[i] columns and kAround[(i + 4) % 16] rows away.
constexpr int kAround[] = {0, 1, 2, 3, 3, 3, 2, 1, 0, -1, -2, -3, -3, -3, -2, -1};

// The contrast of a pixel: by how much the worst pixel of its best arc differs from it. Corners' are above the barrier.
int contrastAt(const Picture<uint8_t>& src, int x, int y, int arc)
{
    int best = -255;
    for (int start = 0; start < 16; ++start)
        for (const int sign : {1, -1}) {
            int worst = 255;
            for (int i = start; i < start + arc; ++i)
                worst = std::min(worst, sign * (src.at(x + kAround[i % 16], y + kAround[(i + 4) % 16]) - src.at(x, y)));
            best = std::max(best, worst);
        }
    return best;
}

struct Corner
{
    uint32_t x, y, score;
    bool operator==(const Corner&) const = default;
    friend void PrintTo(const Corner& c, std::ostream* out) { *out << c.x << "," << c.y << ":" << c.score; }
};
using Corners = std::vector<Corner>;

struct Search
{
    int arc, barrier, border;
    size_t capacity;
    bool suppresses;
};

template <class Excludes>
Corners expectedCorners(const Picture<uint8_t>& src, const Search& search, Excludes excludes)
{
    Corners all;
    for (int y = search.border; y < src.height - search.border; ++y)
        for (int x = search.border; x < src.width - search.border; ++x) {
            const int contrast = excludes(x, y) ? INT32_MIN : contrastAt(src, x, y, search.arc);
            if (contrast > search.barrier && (all.empty() || all.size() < search.capacity))
                all.push_back(
                    {static_cast<uint32_t>(x), static_cast<uint32_t>(y), static_cast<uint32_t>(contrast - 1)});
        }
    if (!search.suppresses)
        return all;
    if (search.capacity == 0)
        return {};
    Corners best;
    std::copy_if(all.begin(), all.end(), std::back_inserter(best), [&](const Corner& a) {
        return std::none_of(all.begin(), all.end(), [&](const Corner& b) {
            return (a.x != b.x || a.y != b.y) && a.x - b.x + 1 <= 2 && a.y - b.y + 1 <= 2 && b.score >= a.score;
        });
    });
    return best;
}

// ---- calls ---------------------------------------------------------------------------------------------------------

// The memory of a call, as large as it has to be.
struct Lists
{
    std::vector<uint32_t> xy, scores, tempBuf;
    uint32_t count = 77;

    Lists(const Picture<uint8_t>& src, size_t capacity)
        : xy(2 * std::max<size_t>(capacity, 1)), scores(std::max<size_t>(capacity, 1)),
          tempBuf(3 * capacity + src.rows())
    {
    }
    Corners corners() const
    {
        Corners list;
        for (size_t i = 0; i < count; ++i)
            list.push_back({xy[2 * i], xy[2 * i + 1], scores[i]});
        return list;
    }
};

// The corners that all implementations of a function with scores find: with the arguments behind the count.
template <Slot slot, class... Arguments>
void expectCorners(const Picture<uint8_t>& src, const Search& search, const Corners& expected, Arguments... arguments)
{
    forEachImplementation<slot>([&](const char* name, auto function) {
        Lists lists(src, search.capacity);
        function(src.pixels.data(), src.columns(), src.rows(), src.stride(), search.barrier,
                 static_cast<uint32_t>(search.border), lists.xy.data(), lists.scores.data(),
                 static_cast<uint32_t>(search.capacity), &lists.count, arguments..., search.suppresses,
                 lists.tempBuf.data());
        EXPECT_EQ(lists.corners(), expected)
            << nameOf(slot) << " on " << name << ": " << src.width << "x" << src.height << ", barrier "
            << search.barrier << ", border " << search.border << ", at most " << search.capacity;
    });
}

Search drawSearch(Random& random, int arc)
{
    static constexpr int barriers[] = {20, 10, 40, 0, 1, 100, 253, 254, 255, 256, INT32_MAX, -1, -20, -255, INT32_MIN};
    const size_t most = random.below(4) ? random.below(60) : 5000;
    return {arc, random.below(2) ? 15 : barriers[random.below(15)], static_cast<int>(3 + random.below(3)), most,
            random.below(2) == 0};
}

TEST(Fast, FindsTheCornersOfTheDefinition)
{
    Random random(1);
    size_t corners = 0;
    for (int trial = 0; trial < 300; ++trial) {
        const int width = 11 + static_cast<int>(random.below(trial % 8 ? 40 : 300));
        const auto src = naturalPicture(width, 11 + static_cast<int>(random.below(20)), random);
        const auto none = [](int, int) { return false; };
        const Search nine = drawSearch(random, 9), ten = drawSearch(random, 10);
        const Corners expected = expectedCorners(src, nine, none);
        expectCorners<Slot::rvkCornerFast9Scoreu8_v2>(src, nine, expected);
        expectCorners<Slot::rvkCornerFast10Scoreu8>(src, ten, expectedCorners(src, ten, none));
        corners += nine.barrier == 15 ? expected.size() : 0;
    }
    EXPECT_GT(corners, 500u);
}

TEST(Fast, FindsTheBestCornersOfLongRows)
{
    Random random(2);
    const auto src = naturalPicture(5000, 20, random);
    const Search search = {9, 15, 3, 5000, true};
    const Corners expected = expectedCorners(src, search, [](int, int) { return false; });
    EXPECT_GT(expected.size(), 500u);
    expectCorners<Slot::rvkCornerFast9Scoreu8_v2>(src, search, expected);
}

TEST(Fast, MasksOfAllSizesExcludePixels)
{
    Random random(2);
    for (int trial = 0; trial < 100; ++trial) {
        const auto src = naturalPicture(8 * (2 + static_cast<int>(random.below(12))), 16 + 8 * (trial % 2), random);
        const int shift = static_cast<int>(random.below(7)) - 3;
        const auto scaled = [=](int size) { return shift < 0 ? size >> -shift : size << shift; };
        const uint32_t width = static_cast<uint32_t>(scaled(src.width)),
                       height = static_cast<uint32_t>(scaled(src.height));
        const uint32_t rowBytes = (width + 7) / 8;
        std::vector<uint8_t> mask(rowBytes * height);
        for (uint8_t& byte : mask)
            byte = static_cast<uint8_t>(random.next() & random.next());
        const auto excludes = [&](int x, int y) {
            const uint32_t column = static_cast<uint32_t>(scaled(x)), row = static_cast<uint32_t>(scaled(y));
            return (mask[row * rowBytes + column / 8] & 0x80u >> column % 8) != 0;
        };
        const Search nine = drawSearch(random, 9), ten = drawSearch(random, 10);
        expectCorners<Slot::rvkCornerFast9InMaskScoreu8_v2>(src, nine, expectedCorners(src, nine, excludes),
                                                            mask.data(), width, height);
        expectCorners<Slot::rvkCornerFast10InMaskScoreu8>(src, ten, expectedCorners(src, ten, excludes), mask.data(),
                                                          width, height);
        for (const auto& [otherWidth, otherHeight] : {std::pair(width, height + 1), std::pair(2 * width, height),
                                                      std::pair(16 * src.columns(), 16 * src.rows())})
            expectCorners<Slot::rvkCornerFast9InMaskScoreu8_v2>(src, nine, {}, mask.data(), otherWidth, otherHeight);
    }
}

// A pixel of 100 whose circle has `count` pixels of a value from `start` on, all others are 100.
Picture<uint8_t> arcPicture(int start, int count, int value)
{
    Picture<uint8_t> src(7, 7, 100);
    for (int i = start; i < start + count; ++i)
        src.at(3 + kAround[i % 16], 3 + kAround[(i + 4) % 16]) = static_cast<uint8_t>(value);
    return src;
}

TEST(Fast, ArcsOfNineAndTenInARowBeyondTheBarrier)
{
    for (int start = 0; start < 16; ++start)
        for (const auto& [count, value] : {std::pair(8, 200),
                                           {9, 200},
                                           {10, 200},
                                           {16, 200},
                                           {9, 121},
                                           {9, 120},
                                           {10, 79},
                                           {10, 80},
                                           {9, 0},
                                           {10, 255}}) {
            const auto src = arcPicture(start, count, value);
            const Corners corner = {{3, 3, static_cast<uint32_t>(std::abs(value - 100) - 1)}};
            const bool isBeyond = std::abs(value - 100) > 20;
            expectCorners<Slot::rvkCornerFast9Scoreu8_v2>(src, {9, 20, 3, 9, false},
                                                          isBeyond && count >= 9 ? corner : Corners());
            expectCorners<Slot::rvkCornerFast10Scoreu8>(src, {10, 20, 3, 9, false},
                                                        isBeyond && count >= 10 ? corner : Corners());
        }
}

TEST(Fast, KernelsScoreOneCorner)
{
    Random random(3);
    const auto check = [&](int arc, auto score) {
        for (int trial = 0; trial < 200; ++trial) {
            const auto src = arcPicture(static_cast<int>(random.below(16)), static_cast<int>(random.below(17)),
                                        static_cast<int>(random.below(256)));
            ptrdiff_t offsets[16];
            for (int i = 0; i < 16; ++i) {
                offsets[i] = kAround[(i + 4) % 16] * 7 + kAround[i];
            }
            for (const int barrier : {0, 20, 254, 255, 300, -1, -300})
                EXPECT_EQ(score(&src.pixels[3 * 7 + 3], offsets, barrier),
                          static_cast<uint32_t>(std::max(barrier, contrastAt(src, 3, 3, arc) - 1)));
        }
    };
    inBothModes(Kernel::fast9_corner_score, "FAST-9", [&] { check(9, kernel<Kernel::fast9_corner_score>()); });
    inBothModes(Kernel::fast10_corner_score, "FAST-10", [&] { check(10, kernel<Kernel::fast10_corner_score>()); });
}

// ---- what the descriptors cannot say -------------------------------------------------------------------------------

TEST(Fast, SuppressionNeedsItsMemory)
{
    const Picture<uint8_t> src(7, 7);
    uint32_t xy[2], scores[1], count;
    rvkCornerFast9Scoreu8_v2(src.pixels.data(), 7, 7, 0, 20, 0, xy, scores, 1, &count, 0, nullptr);
    EXPECT_EQ(count, 0u);
    const auto suppressWithout = [&](auto function) {
        clearLog();
        atexit([] { fputs(logLines.empty() ? "nothing" : logLines.front().c_str(), stderr); });
        function(src.pixels.data(), 7, 7, 7, 20, 3, xy, scores, 1, &count, 1, nullptr);
    };
    forEachImplementation<Slot::rvkCornerFast9Scoreu8_v2>([&](const char*, auto function) {
        EXPECT_EXIT(suppressWithout(function), testing::ExitedWithCode(1),
                    "6 ravik_lib_log: src/cpu/ravikFastC@[0-9]+: tempBuf Assertion failed\n");
    });
    forEachImplementation<Slot::rvkCornerFast10Scoreu8>([&](const char*, auto function) {
        EXPECT_EXIT(suppressWithout(function), testing::ExitedWithCode(1),
                    "6 ravik_lib_log: src/cpu/ravikFast10C@[0-9]+: tempBuf Assertion failed\n");
    });
}

TEST(Fast, BordersBelowThreeAreThree)
{
    const auto src = arcPicture(5, 9, 200);
    for (uint32_t border = 0; border <= 3; ++border) {
        uint32_t xy[2] = {}, count = 0;
        rvkCornerFast9u8(src.pixels.data(), 7, 7, 0, 20, border, xy, 1, &count);
        EXPECT_TRUE(count == 1 && xy[0] == 3 && xy[1] == 3) << border;
    }
}

TEST(Fast, RefusesStridesThatPositionsCannotReach)
{
    const Picture<uint8_t> src(7, 7);
    uint32_t xy[2], count = 5;
    clearLog();
    rvkCornerFast9u8(src.pixels.data(), 7, 7, 0x80000000u, 20, 0, xy, 1, &count);
    EXPECT_TRUE(logHas("6 ravik_lib_log: Assertion failed @rvkCornerFast9u8: stride <= INT32_MAX\n"));
    EXPECT_EQ(count, 5u);
}

#if RVK_TEST_OPENCV
TEST(Fast, FindsTheCornersOfOpenCv)
{
    Random random(4);
    for (int trial = 0; trial < 3; ++trial) {
        auto src = naturalPicture(320, 240, random);
        const cv::Mat mat(src.height, src.width, CV_8U, src.pixels.data());
        for (const int barrier : {1, 3, 5, 8, 12, 20, 30, 45, 70, 120}) {
            std::vector<cv::KeyPoint> theirs;
            cv::FAST(mat, theirs, barrier, false, cv::FastFeatureDetector::TYPE_9_16);
            EXPECT_GT(theirs.size(), 20u);
            std::vector<uint32_t> expected;
            for (const cv::KeyPoint& corner : theirs)
                expected.insert(expected.end(),
                                {static_cast<uint32_t>(corner.pt.x), static_cast<uint32_t>(corner.pt.y)});
            forEachImplementation<Slot::rvkCornerFast9u8>([&](const char* name, auto function) {
                std::vector<uint32_t> xy(2 * src.pixels.size());
                uint32_t count = 0;
                function(src.pixels.data(), src.columns(), src.rows(), src.stride(), barrier, 3, xy.data(),
                         static_cast<uint32_t>(src.pixels.size()), &count);
                xy.resize(2 * count);
                EXPECT_EQ(xy, expected) << name << ", barrier " << barrier;
            });
        }
    }
}
#endif

} // namespace
