#include "support/logCapture.h"
#include "support/windows.h"

#include <cmath>

using namespace test;

namespace {

// ---- optical flow ---------------------------------------------------------------------------------------------------

struct Vector
{
    int x, y, toX, toY;

    bool operator==(const Vector&) const = default;
    friend void PrintTo(const Vector& v, std::ostream* out)
    {
        *out << v.x << ", " << v.y << " to " << v.toX << ", " << v.toY;
    }
};

struct Flow
{
    uint32_t left = 0, top = 0, right, bottom, shift = 16, width = 6, height = 5, step = 1;
};

template <class Function>
std::vector<Vector> track(Function function, const Picture<uint8_t>& a, const Picture<uint8_t>& b, const Flow& flow)
{
    uint32_t count = 99;
    std::vector<uint32_t> v[4];
    for (auto& list : v)
        list.resize(400);
    EXPECT_EQ(function(a.pixels.data(), b.pixels.data(), a.columns(), a.rows(), a.stride(), flow.left, flow.top,
                       flow.right, flow.bottom, flow.shift, flow.width, flow.height, flow.step, 0, &count, v[0].data(),
                       v[1].data(), v[2].data(), v[3].data()),
              RAVIK_SUCCESS);
    std::vector<Vector> vectors;
    for (size_t i = 0; i < count; ++i)
        vectors.push_back({static_cast<int>(v[0][i]), static_cast<int>(v[1][i]), static_cast<int>(v[2][i]),
                           static_cast<int>(v[3][i])});
    return vectors;
}

// Waves of half a block's length, moved by (dx, dy).
Picture<uint8_t> waves(int dx, int dy, double mean = 140)
{
    return pictureOf<uint8_t>(96, 80, [=](int x, int y) {
        x -= dx, y -= dy;
        return mean * (1 + 0.4 * std::sin(x * 0.31 + 0.01 * x * y) + 0.3 * std::cos(y * 0.37 - 0.2 * x));
    });
}

TEST(BlockMatching, FindsTheMotionOfAllBlocks)
{
    const Flow everywhere{.right = 96, .bottom = 80};
    // The blocks that keep clear of the edges, in raster order.
    const auto expected = [](int dx, int dy) {
        std::vector<Vector> vectors;
        for (int y = 16; y <= 48; y += 16)
            for (int x = 16; x <= 64; x += 16)
                vectors.push_back({x, y, x + dx, y + dy});
        return vectors;
    };
    const Flow inside{.left = 20, .top = 17, .right = 64, .bottom = 48}; // rounded outwards
    forEachImplementation<Slot::rvkTrackBMOpticalFlow16x16u8>([&](const char* name, auto function) {
        const auto still = waves(0, 0);
        EXPECT_EQ(track(function, still, waves(5, -3), inside), expected(5, -3)) << name;
        Flow coarse = inside;
        coarse.step = 2; // and every place around the best one
        EXPECT_EQ(track(function, still, waves(-4, 3), coarse), expected(-4, 3)) << name;
        EXPECT_TRUE(track(function, still, still, everywhere).empty()) << name << ": nothing moved";
        EXPECT_TRUE(track(function, waves(0, 0, 19), waves(5, 0, 19), everywhere).empty()) << name << ": too dark";
        EXPECT_TRUE(track(function, Picture<uint8_t>(96, 80, 200), still, everywhere).empty())
            << name << ": no texture";
    });
}

TEST(BlockMatching, MeasuresByThePublicFunctionOnItsUnit)
{
    ASSERT_EQ(rvkSetOperationMode(RAVIK_OP_CPU_PERFORMANCE), 0);
    dispatchState.runtimeLog = 1;
    clearLog();
    track(rvkTrackBMOpticalFlow16x16u8, waves(0, 0), waves(5, 0), {.right = 16, .bottom = 16, .width = 1, .height = 0});
    dispatchState.runtimeLog = 0;
    const std::string line = "6 ravik_runtime_log: rvkSumOfAbsoluteDiff16x16u8_VECTA";
    // Four blocks, each at its own place and, row by row of blocks, at two and at three.
    EXPECT_EQ(std::count(logLines.begin(), logLines.end(), line), 4 + 2 * (2 + 3));
}

TEST(BlockMatching, RefusesAndNeverWraps)
{
    const auto picture = waves(0, 0);
    const auto status = [&](const Flow& flow, uint32_t stride = 96, bool hasList = true) {
        uint32_t v[5] = {};
        return rvkTrackBMOpticalFlow16x16u8(picture.pixels.data(), picture.pixels.data(), 96, 80, stride, flow.left,
                                            flow.top, flow.right, flow.bottom, flow.shift, flow.width, flow.height,
                                            flow.step, 0, v, v + 1, v + 2, v + 3, hasList ? v + 4 : nullptr);
    };
    EXPECT_EQ(status({.left = 80, .right = 96, .bottom = 80}), RAVIK_SUCCESS);
    EXPECT_EQ(status({.left = 81, .right = 96, .bottom = 80}), RAVIK_EUNALIGNPARAM);
    EXPECT_EQ(status({.top = 65, .right = 96, .bottom = 80}), RAVIK_EUNALIGNPARAM);
    EXPECT_EQ(status({.right = 97, .bottom = 80}), RAVIK_EUNALIGNPARAM);
    EXPECT_EQ(status({.right = 96, .bottom = 80}, 95), RAVIK_EUNALIGNPARAM);
    EXPECT_EQ(status({.right = 96, .bottom = 80, .shift = 0}), RAVIK_EUNALIGNPARAM);
    EXPECT_EQ(status({.right = 96, .bottom = 80, .step = 0}), RAVIK_EBADPARAM);
    EXPECT_EQ(status({.right = 96, .bottom = 80}, 96, false), RAVIK_EBADPARAM);
    const Flow far{.right = 96, .bottom = 80, .shift = UINT32_MAX, .width = UINT32_MAX, .height = UINT32_MAX};
    forEachImplementation<Slot::rvkTrackBMOpticalFlow16x16u8>([&](const char* name, auto function) {
        Flow farther = far;
        farther.step = UINT32_MAX;
        EXPECT_EQ(track(function, picture, waves(5, 3), far), (std::vector<Vector>{{0, 0, 5, 3}})) << name;
        EXPECT_TRUE(track(function, picture, waves(5, 3), farther).empty()) << name;
    });
}

// ---- mean shift -----------------------------------------------------------------------------------------------------

template <class T, class Function>
uint32_t shift(Function function, const Picture<T>& p, rvkRectangle& window, uint32_t steps, float epsilon = 1)
{
    return function(p.pixels.data(), p.columns(), p.rows(), p.stride(), &window, steps, epsilon);
}

void expectWindow(const rvkRectangle& w, int x, int y, int width, int height, const char* what)
{
    EXPECT_EQ((std::vector{w.x, w.y, w.width, w.height}), (std::vector{x, y, width, height})) << what;
}

template <Slot slot, class T>
void expectMeanShift()
{
    const auto blob =
        pictureOf<T>(100, 80, [](int x, int y) { return x >= 50 && x < 60 && y >= 40 && y < 50 ? 9 : 0; });
    const Picture<T> empty(100, 80);
    forEachImplementation<slot>([&](const char* name, auto function) {
        rvkRectangle w = {-5, 90, 20, 20};
        EXPECT_EQ(shift(function, blob, w, 0), 0u);
        expectWindow(w, -5, 90, 20, 20, name);
        EXPECT_EQ(shift(function, empty, w, 9), 0u);
        expectWindow(w, 0, 79, 20, 1, name); // clamped
        w = {40, 30, -1, 20};
        EXPECT_EQ(shift(function, empty, w, 9), 0u);
        expectWindow(w, 40, 30, 60, 20, name); // sizes are unsigned
        w = {38, 45, 20, 20};                  // sees columns 50 to 57, rows 45 to 49
        EXPECT_EQ(shift(function, blob, w, 1), 1u);
        expectWindow(w, 44, 37, 20, 20, name);
        w = {38, 45, 20, 20};
        EXPECT_EQ(shift(function, blob, w, 9, 1.6f), 2u); // 2.56 is 3: steps of one pixel each way end it
        expectWindow(w, 44, 35, 20, 20, name);
        w = {45, 35, 20, 20}; // the centre lies between two pixels: 9.5 of 10, then 10.5
        EXPECT_EQ(shift(function, blob, w, 9), 9u);
        expectWindow(w, 44, 34, 20, 20, name);
        w = {95, 75, 30, 30};
        EXPECT_EQ(shift(function, Picture<T>(100, 80, 1), w, 9, 2), 0u);
        expectWindow(w, 94, 74, 5, 5, name); // the size is clamped before the step alone
    });
}

TEST(MeanShift, MovesToTheCentreOfMass)
{
    expectMeanShift<Slot::rvkMeanShiftu8, uint8_t>();
    expectMeanShift<Slot::rvkMeanShifts32, int32_t>();
    expectMeanShift<Slot::rvkMeanShiftf32, float>();
}

// Sums of parts: a block far from the upper left corner, and a picture that is the same everywhere, which leaves the
// window there.
template <Slot slot, class T>
void expectShiftOfLargeWindow(T inside, T outside = 0, int toX = 200, int toY = 95) // from 1050, 150 to 1250, 245
{
    const Picture<T> full(2100, 300, inside);
    const auto blob = pictureOf<T>(
        2100, 300, [=](int x, int y) { return x >= 1100 && x < 1401 && y >= 200 && y < 291 ? inside : outside; });
    forEachImplementation<slot>([&](const char* name, auto function) {
        rvkRectangle w = {0, 0, 2100, 300};
        EXPECT_EQ(shift(function, full, w, 1), 1u);
        expectWindow(w, 0, 0, 2100, 300, name);
        EXPECT_EQ(shift(function, blob, w, 1), 1u);
        expectWindow(w, toX, toY, 2100, 300, name);
    });
}

TEST(MeanShift, OfLargeWindows)
{
    expectShiftOfLargeWindow<Slot::rvkMeanShiftu8, uint8_t>(255);
    expectShiftOfLargeWindow<Slot::rvkMeanShifts32, int32_t>(INT32_MAX);
    expectShiftOfLargeWindow<Slot::rvkMeanShifts32, int32_t>(INT32_MIN);
    expectShiftOfLargeWindow<Slot::rvkMeanShifts32, int32_t>(-24, -1, 100, 47); // half of the mass is the block's
    expectShiftOfLargeWindow<Slot::rvkMeanShiftf32, float>(1e20f);
}

// Rounds are at most 16 long here: what is left of a large number of steps after whole rounds gives the same.
TEST(MeanShift, EndsWhateverItIsAskedFor)
{
    Random random(1);
    uint32_t moving = 0;
    for (int trial = 0; trial < 60; ++trial) {
        const auto p = pictureOf<int32_t>(12, 9, [&](int, int) { return static_cast<int>(random.below(7)) - 3; });
        const rvkRectangle start = {static_cast<int>(random.below(12)), static_cast<int>(random.below(9)),
                                    1 + static_cast<int>(random.below(6)), 1 + static_cast<int>(random.below(6))};
        forEachImplementation<Slot::rvkMeanShifts32>([&](const char* name, auto function) {
            constexpr uint32_t rounds = 720720;
            rvkRectangle few = start, many = start, next = start;
            const uint32_t steps = shift(function, p, few, 200, NAN);
            const uint32_t allSteps = shift(function, p, many, 200 + rounds * 5900, NAN);
            EXPECT_EQ(allSteps, steps == 200 ? 200 + rounds * 5900 : steps);
            expectWindow(many, few.x, few.y, few.width, few.height, name);
            shift(function, p, next, 201, 0);
            moving += next.x != few.x || next.y != few.y;
        });
    }
    EXPECT_GT(moving, 0u); // some went round
}

TEST(MeanShift, TakesAnyFloats)
{
    for (const float odd : {NAN, INFINITY, -INFINITY, 3e38f, 1e-45f}) {
        auto p = Picture<float>(20, 20, 1);
        p.at(7, 7) = odd;
        p.at(8, 3) = -odd;
        for (const float epsilon : {NAN, INFINITY, -2.0f, 1e30f})
            forEachImplementation<Slot::rvkConAdaTrackf32>([&](const char* name, auto function) {
                rvkRectangle w = {2, 3, 10, 10};
                rvkRotatedBox box;
                EXPECT_LE(function(p.pixels.data(), 20, 20, 80, &w, 50, epsilon, &box), 50u) << name;
                EXPECT_TRUE(w.x >= 0 && w.x < 20 && w.y >= 0 && w.y < 20 && w.width >= 1 && w.height >= 1) << name;
                EXPECT_TRUE(std::isfinite(box.x + box.y + box.width + box.height + box.angle)) << name;
            });
    }
}

// ---- adaptive tracking ----------------------------------------------------------------------------------------------

// An ellipse of 60 x 24 pixels that turns by 7 degrees from frame to frame while it goes round.
struct Ellipse
{
    double x, y, degrees, c, s;

    explicit Ellipse(int frame)
        : x(80 + 30 * std::cos(frame * 0.1)), y(70 + 25 * std::sin(frame * 0.1)), degrees(frame * 7 % 180),
          c(std::cos(degrees * M_PI / 180)), s(std::sin(degrees * M_PI / 180))
    {
    }
    bool has(int column, int row) const
    {
        const double u = (c * (column - x) + s * (row - y)) / 30, v = (c * (row - y) - s * (column - x)) / 12;
        return u * u + v * v <= 1;
    }
    double halfWidth() const { return std::sqrt(900 * c * c + 144 * s * s); }
    double halfHeight() const { return std::sqrt(900 * s * s + 144 * c * c); }
};

template <Slot slot, class T>
void expectToFollow()
{
    std::vector<Picture<T>> frames;
    for (int frame = 0; frame < 30; ++frame)
        frames.push_back(pictureOf<T>(160, 140, [e = Ellipse(frame)](int x, int y) { return e.has(x, y) ? 200 : 0; }));
    forEachImplementation<slot>([&](const char* name, auto function) {
        rvkRectangle w = {70, 45, 60, 60};
        for (size_t frame = 0; frame < frames.size(); ++frame) {
            const Ellipse e(static_cast<int>(frame));
            rvkRotatedBox box;
            function(frames[frame].pixels.data(), 160, 140, frames[frame].stride(), &w, 20, 1, &box);
            ASSERT_LT(std::fabs(std::remainder(box.angle - e.degrees, 180)), 3) << name << ", frame " << frame;
            ASSERT_TRUE(box.angle >= 0 && box.angle < 180) << name;
            ASSERT_LT(std::hypot(box.x - e.x, box.y - e.y), 0.5) << name << ", frame " << frame;
            ASSERT_NEAR(box.width, 60, 1) << name;
            ASSERT_NEAR(box.height, 24, 1) << name;
            ASSERT_TRUE(std::fabs(w.x - (e.x - e.halfWidth())) < 2 && std::fabs(w.y - (e.y - e.halfHeight())) < 2);
            ASSERT_TRUE(std::fabs(w.width - 2 * e.halfWidth()) < 4 && std::fabs(w.height - 2 * e.halfHeight()) < 4);
        }
    });
}

TEST(AdaptiveTracking, FollowsAnEllipse)
{
    expectToFollow<Slot::rvkConAdaTracku8, uint8_t>();
    expectToFollow<Slot::rvkConAdaTracks32, int32_t>();
    expectToFollow<Slot::rvkConAdaTrackf32, float>();
}

TEST(AdaptiveTracking, OfNothingAndOfAPixel)
{
    forEachImplementation<Slot::rvkConAdaTracku8>([](const char* name, auto function) {
        Picture<uint8_t> p(40, 30);
        rvkRectangle w = {30, 20, 50, 5};
        rvkRotatedBox box = {1, 2, 3, 4, 5};
        EXPECT_EQ(function(p.pixels.data(), 40, 30, 40, &w, 9, 1, &box), 0u);
        EXPECT_EQ(box.x + box.y + box.width + box.height + box.angle, 0) << name;
        expectWindow(w, 30, 20, 10, 5, name);
        p.at(33, 22) = 7;
        function(p.pixels.data(), 40, 30, 40, &w, 9, 1, &box);
        EXPECT_EQ((std::vector{box.x, box.y, box.width, box.height, box.angle}), (std::vector<float>{33, 22, 0, 0, 0}));
        expectWindow(w, 33, 22, 1, 1, name);
    });
}

// ---- motion history -------------------------------------------------------------------------------------------------

TEST(MotionHistory, KeepsStampsThatAreNotOld)
{
    const uint8_t mask[] = {1, 255, 0, 0, 0, 0, 0, 0};
    const int32_t before[] = {5, 5, 90, 89, 0, INT32_MAX, -20, 100}, expected[] = {100, 100, 90, 0, 0, 0, 0, 100};
    forEachImplementation<Slot::rvkUpdateMotionHistoryu8s32>([&](const char* name, auto function) {
        for (uint32_t height = 1; height < 12; ++height) {
            std::vector<uint8_t> src;
            std::vector<int32_t> dst, wanted;
            for (uint32_t y = 0; y < height; ++y) {
                src.insert(src.end(), mask, mask + 8);
                dst.insert(dst.end(), before, before + 8);
                wanted.insert(wanted.end(), expected, expected + 8);
            }
            function(src.data(), 8, height, 8, dst.data(), 32, 100, 10);
            EXPECT_EQ(dst, wanted) << name;
        }
    });
}

} // namespace
