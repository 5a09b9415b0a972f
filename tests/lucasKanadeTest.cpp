// What follows from the descriptors is not here: refusals of numbers, vectors equal to references.
#include "support/kernelModes.h"
#include "support/logCapture.h"
#include "support/windows.h"

#include <cmath>
#if RVK_TEST_OPENCV
#include <opencv2/video/tracking.hpp>
#endif

using namespace test;

namespace {

struct Point
{
    double x, y;
};

struct WindowSize
{
    int width, height;
};

// A texture that turns and moves, in pictures of which each shows it at half the size of the one before.
constexpr int kWidth = 160, kHeight = 120;
constexpr uint32_t kLevels = 3, kPoints = 16;

double textureAt(double x, double y)
{
    return 128 + 45 * std::sin(0.17 * x + 0.05 * y) + 45 * std::cos(0.14 * y - 0.07 * x) +
           30 * std::sin(0.1 * x + 0.11 * y + 0.0008 * x * y);
}
Point moved(Point p, double direction = 1)
{
    const double c = std::cos(0.03), s = std::sin(0.03) * direction;
    const Point from = direction > 0 ? p : Point{p.x - 2.3, p.y + 1.7};
    const double x = from.x - 80, y = from.y - 60;
    const Point turned = {c * x - s * y + 80, s * x + c * y + 60};
    return direction > 0 ? Point{turned.x + 2.3, turned.y - 1.7} : turned;
}

template <class T>
struct Pyramid
{
    std::vector<Picture<T>> pictures;

    explicit Pyramid(bool isMoved)
    {
        for (uint32_t k = 0; k < kLevels; ++k)
            pictures.push_back(pictureOf<T>(kWidth >> k, kHeight >> k, [=](int x, int y) {
                const Point p = {std::ldexp(x, static_cast<int>(k)), std::ldexp(y, static_cast<int>(k))};
                const Point shown = isMoved ? moved(p, -1) : p;
                return textureAt(shown.x, shown.y);
            }));
    }
    template <class Level = rvkPyramidLevel>
    std::vector<Level> levels()
    {
        std::vector<Level> all;
        for (Picture<T>& p : pictures) {
            Level& level = all.emplace_back();
            level.ptr = p.pixels.data(), level.width = p.columns(), level.height = p.rows();
        }
        return all;
    }
};

// ---- the definition, in double ------------------------------------------------------------------

template <class At>
double bilinear(At at, double x, double y)
{
    const double left = std::floor(x), top = std::floor(y), u = x - left, v = y - top;
    const int i = static_cast<int>(left), j = static_cast<int>(top);
    return (1 - v) * ((1 - u) * at(i, j) + u * at(i + 1, j)) + v * ((1 - u) * at(i, j + 1) + u * at(i + 1, j + 1));
}

// False when the window is too flat.
template <class T>
bool followOn(const Picture<T>& a, const Picture<T>& b, Point p, Point& flow, WindowSize size, double minimum)
{
    const auto pixelOf = [](const Picture<T>& picture) {
        return [&](int x, int y) { return static_cast<double>(picture.nearest(x, y)); };
    };
    const auto pixel = pixelOf(a);
    const auto dx = [&](int x, int y) {
        const auto d = [&](int row) { return pixel(x + 1, row) - pixel(x - 1, row); };
        return (3 * d(y - 1) + 10 * d(y) + 3 * d(y + 1)) / 32;
    };
    const auto dy = [&](int x, int y) {
        const auto d = [&](int column) { return pixel(column, y + 1) - pixel(column, y - 1); };
        return (3 * d(x - 1) + 10 * d(x) + 3 * d(x + 1)) / 32;
    };
    struct Sample
    {
        double x, y, value, dx, dy;
    };
    std::vector<Sample> window;
    for (int j = -size.height / 2; j <= size.height / 2; ++j)
        for (int i = -size.width / 2; i <= size.width / 2; ++i) {
            const double x = p.x + i, y = p.y + j;
            window.push_back({x, y, bilinear(pixel, x, y), bilinear(dx, x, y), bilinear(dy, x, y)});
        }
    for (int step = 0; step < 30; ++step) {
        double xx = 0, xy = 0, yy = 0, bx = 0, by = 0;
        for (const Sample& at : window) {
            const double difference = at.value - bilinear(pixelOf(b), at.x + flow.x, at.y + flow.y);
            xx += at.dx * at.dx, xy += at.dx * at.dy, yy += at.dy * at.dy;
            bx += difference * at.dx, by += difference * at.dy;
        }
        const double determinant = xx * yy - xy * xy;
        if ((xx + yy - std::hypot(xx - yy, 2 * xy)) / 2 < minimum * size.width * size.height)
            return false;
        const Point d = {(yy * bx - xy * by) / determinant, (xx * by - xy * bx) / determinant};
        flow = {flow.x + d.x, flow.y + d.y};
        if (std::hypot(d.x, d.y) < 0.01)
            break;
    }
    return true;
}

template <class T>
bool follow(const Pyramid<T>& a, const Pyramid<T>& b, Point p, Point& to, WindowSize window, double minimum)
{
    Point flow = {(to.x - p.x) / 8, (to.y - p.y) / 8};
    bool isFound = false;
    for (uint32_t k = kLevels; k-- > 0;) {
        const double scale = 1.0 / (1 << k);
        flow = {2 * flow.x, 2 * flow.y};
        isFound = followOn(a.pictures[k], b.pictures[k], {p.x * scale, p.y * scale}, flow, window, minimum);
    }
    to = {p.x + flow.x, p.y + flow.y};
    return isFound && to.x >= 0 && to.x <= kWidth - 1 && to.y >= 0 && to.y <= kHeight - 1;
}

// ---- tracking -----------------------------------------------------------------------------------

template <Slot slot, class T, class Level = rvkPyramidLevel, class... Options>
void expectTracks(Options... useGuess)
{
    Pyramid<T> a(false), b(true);
    const auto pyr1 = a.template levels<Level>(), pyr2 = b.template levels<Level>();
    Random random(8);
    std::vector<float> points, guesses;
    for (uint32_t i = 0; i < kPoints; ++i) {
        points.push_back(static_cast<float>(random.below(kWidth * 64 - 63)) / 64);
        points.push_back(static_cast<float>(random.below(kHeight * 64 - 63)) / 64);
        guesses.push_back(points[2 * i] + (sizeof...(useGuess) ? 14 : 0));
        guesses.push_back(points[2 * i + 1] - (sizeof...(useGuess) ? 10 : 0));
    }
    for (const WindowSize window : {WindowSize{13, 15}, {35, 9}}) {
        std::vector<Point> wanted;
        std::vector<uint8_t> isFound;
        for (size_t i = 0; i < points.size(); i += 2) {
            wanted.push_back({guesses[i], guesses[i + 1]});
            isFound.push_back(follow(a, b, {points[i], points[i + 1]}, wanted.back(), window, 4));
        }
        EXPECT_GT(std::count(isFound.begin(), isFound.end(), 1), 10);
        forEachImplementation<slot>([&](const char* name, auto function) {
            std::vector<float> found = guesses, errors(kPoints);
            std::vector<uint8_t> status(kPoints, 9);
            EXPECT_EQ(function(pyr1.data(), pyr2.data(), kLevels, points.data(), found.data(), kPoints,
                               static_cast<uint32_t>(window.width), static_cast<uint32_t>(window.height), 30, 0.01f, 4,
                               status.data(), errors.data(), useGuess...),
                      RAVIK_SUCCESS);
            EXPECT_EQ(status, isFound) << name;
            for (size_t i = 0; i < kPoints; ++i) {
                const Point p = {points[2 * i], points[2 * i + 1]}, to = status[i] ? wanted[i] : p;
                EXPECT_LT(std::hypot(found[2 * i] - to.x, found[2 * i + 1] - to.y), 0.02) << name << ", point " << i;
                const Point truth = moved(p);
                const bool isClear = std::min({p.x, p.y, kWidth - p.x, kHeight - p.y}) > 30;
                EXPECT_TRUE(!isClear || std::hypot(found[2 * i] - truth.x, found[2 * i + 1] - truth.y) < 0.4) << name;
                EXPECT_TRUE(status[i] ? errors[i] >= 0 && errors[i] < 40 && (!isClear || errors[i] < 2)
                                      : errors[i] == INFINITY)
                    << name << ", point " << i << ": " << errors[i];
            }
        });
    }
}

TEST(LucasKanade, FollowsAsInDoublePrecision)
{
    expectTracks<Slot::rvkTrackLKOpticalFlowu8_v2, uint8_t>();
    expectTracks<Slot::rvkTrackLKOpticalFlowf32, float>();
    expectTracks<Slot::rvkTrackLKOpticalFlowu8_v3, uint8_t, rvkPyramidLevel_v2>(1u);
}

TEST(LucasKanade, LosesWhatHasNoAnswer)
{
    Pyramid<float> a(false), b(true), odd(true);
    odd.pictures[0].at(76, 50) = NAN;
    odd.pictures[0].at(20, 90) = INFINITY;
    odd.pictures[1].at(60, 40) = 3e38f;
    Picture<float> flat(kWidth, kHeight, 3), pixel(1, 1, 3);
    const std::vector<float> points = {80, 60, -0.01f, 50, 50, 119.1f, NAN, 5, INFINITY, 5, 1e38f, 5, 75, 52, 20, 88};
    const auto statuses = [&](auto function, std::vector<rvkPyramidLevel> pyr1, std::vector<rvkPyramidLevel> pyr2,
                              float minimum, uint32_t iterations = 20) {
        std::vector<float> found(16, -7), errors(8);
        std::vector<uint8_t> status(8, 9);
        EXPECT_EQ(function(pyr1.data(), pyr2.data(), static_cast<uint32_t>(pyr1.size()), points.data(), found.data(), 8,
                           13, 13, iterations, 0, minimum, status.data(), errors.data()),
                  RAVIK_SUCCESS);
        for (size_t i = 0; i < 16; ++i)
            EXPECT_TRUE(status[i / 2] || sameFloat(found[i], points[i])) << i;
        return status;
    };
    const auto levelsOf = [](Picture<float>& p) {
        return std::vector<rvkPyramidLevel>{{p.pixels.data(), p.columns(), p.rows()}};
    };
    using Bytes = std::vector<uint8_t>;
    forEachImplementation<Slot::rvkTrackLKOpticalFlowf32>([&](const char* name, auto function) {
        EXPECT_EQ(statuses(function, a.levels(), b.levels(), 1), (Bytes{1, 0, 0, 0, 0, 0, 1, 1})) << name;
        EXPECT_EQ(statuses(function, a.levels(), odd.levels(), 1), (Bytes{1, 0, 0, 0, 0, 0, 0, 0})) << name;
        EXPECT_EQ(statuses(function, odd.levels(), a.levels(), 1)[6], 0) << name;
        EXPECT_EQ(statuses(function, a.levels(), b.levels(), 1e6f), Bytes(8)) << name;
        EXPECT_EQ(statuses(function, levelsOf(flat), levelsOf(flat), 0, UINT32_MAX), Bytes(8)) << name;
        EXPECT_EQ(statuses(function, levelsOf(pixel), levelsOf(pixel), 0), Bytes(8)) << name;
        // A level that is too flat is passed over.
        std::vector<rvkPyramidLevel> topped = a.levels(), moved = b.levels();
        topped.push_back({flat.pixels.data(), 20, 15}), moved.push_back({flat.pixels.data(), 20, 15});
        EXPECT_EQ(statuses(function, topped, moved, 1), (Bytes{1, 0, 0, 0, 0, 0, 1, 1})) << name;
    });
}

TEST(LucasKanade, FirstFormIsTheSecondWithDefaults)
{
    Pyramid<uint8_t> a(false), b(true);
    auto pyr1 = a.levels(), pyr2 = b.levels();
    const float points[] = {80, 60, 30, 40, 500, 3};
    float first[6], second[6];
    uint8_t status1[3], status2[3];
    const auto call = [&] {
        rvkTrackLKOpticalFlowu8(pyr1.data(), pyr2.data(), 3, points, first, 3, 11, 9, 20, 0.01f, status1);
        return rvkTrackLKOpticalFlowu8_v2(pyr1.data(), pyr2.data(), 3, points, second, 3, 11, 9, 20, 0.01f, 0.1f,
                                          status2, nullptr);
    };
    EXPECT_EQ(call(), RAVIK_SUCCESS);
    EXPECT_TRUE(std::equal(first, first + 6, second) && std::equal(status1, status1 + 3, status2));
    EXPECT_EQ((std::vector{status1[0], status1[1], status1[2]}), (std::vector<uint8_t>{1, 1, 0}));
    for (const auto& [width, height] : {std::pair{81u, 60u}, {80u, 0u}, {UINT32_MAX, 60u}}) {
        pyr2[1].width = width, pyr2[1].height = height;
        clearLog();
        EXPECT_EQ(call(), RAVIK_EBADPARAM);
        EXPECT_EQ(logLines.size(), 1u);
    }
    EXPECT_EQ(rvkTrackLKOpticalFlowu8_v2(pyr1.data(), nullptr, 3, points, second, 3, 11, 9, 20, 0.01f, 0.1f, status2,
                                         nullptr),
              RAVIK_EBADPARAM);
}

TEST(LucasKanade, DerivativesByScharr)
{
    Random random(3);
    for (uint32_t width = 1; width < 40; width += 3) {
        const auto src = pictureOf<float>(static_cast<int>(width) + 2, 7, [&](int, int) { return random.below(256); });
        inBothModes(Kernel::irvkGradientIxf32, "irvkGradientIxf32", [&] {
            Picture<float> dx(static_cast<int>(width), 5), dy = dx;
            kernel<Kernel::irvkGradientIxf32>()(src.pixels.data(), width, 5, src.stride(), dx.pixels.data(),
                                                dx.stride());
            kernel<Kernel::irvkGradientIyf32>()(src.pixels.data(), width, 5, src.stride(), dy.pixels.data(),
                                                dy.stride());
            for (int y = 0; y < 5; ++y)
                for (int x = 0; x < dx.width; ++x) {
                    float across = 0, down = 0;
                    for (int i = 0; i < 3; ++i) {
                        const float weight = i == 1 ? 10 : 3;
                        across += weight * (src.at(x + 2, y + i) - src.at(x, y + i));
                        down += weight * (src.at(x + i, y + 2) - src.at(x + i, y));
                    }
                    ASSERT_TRUE(dx.at(x, y) == across / 32 && dy.at(x, y) == down / 32);
                }
        });
    }
}

#if RVK_TEST_OPENCV
TEST(LucasKanade, AgreesWithOpenCv)
{
    const Picture<uint8_t> a = Pyramid<uint8_t>(false).pictures[0], b = Pyramid<uint8_t>(true).pictures[0];
    std::vector<uint8_t> memory[2][2];
    std::vector<rvkPyramidLevel> pyramids[2];
    std::vector<cv::Point2f> points, peers, ours(200);
    for (int i = 0; i < 200; ++i)
        points.emplace_back(static_cast<float>(20 + i % 20 * 6), static_cast<float>(20 + i / 20 * 8));
    for (int p = 0; p < 2; ++p) {
        memory[p][0].resize(80 * 60), memory[p][1].resize(40 * 30);
        pyramids[p] = {{}, {memory[p][0].data(), 0, 0}, {memory[p][1].data(), 0, 0}};
        ASSERT_EQ(rvkPyramidCreateu8((p ? b : a).pixels.data(), kWidth, kHeight, kLevels, pyramids[p].data()), 0);
    }
    const auto mat = [](const Picture<uint8_t>& p) {
        return cv::Mat(p.height, p.width, CV_8U, const_cast<uint8_t*>(p.pixels.data()));
    };
    std::vector<uint8_t> found, status(200);
    cv::calcOpticalFlowPyrLK(mat(a), mat(b), points, peers, found, cv::noArray(), {15, 15}, kLevels - 1);
    ASSERT_EQ(rvkTrackLKOpticalFlowu8_v2(pyramids[0].data(), pyramids[1].data(), kLevels, &points[0].x, &ours[0].x, 200,
                                         15, 15, 30, 0.01f, 0.1f, status.data(), nullptr),
              RAVIK_SUCCESS);
    int common = 0, near = 0;
    for (size_t i = 0; i < 200; ++i)
        if (found[i] && status[i])
            ++common, near += cv::norm(ours[i] - peers[i]) < 0.1;
    EXPECT_GT(common, 150);
    EXPECT_GE(near * 100, common * 95);
}
#endif

} // namespace
