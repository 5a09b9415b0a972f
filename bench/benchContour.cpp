// Contours of a picture in two tones, and what is made of them: drawn, and as polygons.
#include "bench.h"

#include <ravik/contour.h>
#include <ravik/drawing.h>
#include <ravik/polygon.h>
#include <ravik/threshold.h>

#include <map>
#include <vector>

namespace {

using namespace bench;

constexpr u32 kMostContours = kMostPixels / 16, kMostPoints = kMostPixels;

struct Scene
{
    std::vector<u8> tones, mask; // bright and dark; a copy to change
    std::vector<u32> sizes, counts;
    std::vector<s32> points, hierarchy;
    u32 count = 0;
    size_t longest = 0; // of all points, from there on those of the longest contour
    u32 longestSize = 0;
#if RVK_BENCH_OPENCV
    std::vector<std::vector<cv::Point>> contours;
    std::vector<cv::Point> polygon;
#endif

    explicit Scene(const Picture& p)
        : tones(p.width * p.height), mask(tones.size()), sizes(kMostContours), counts(kMostContours),
          points(2 * kMostPoints), hierarchy(4 * kMostContours)
    {
        rvkFilterThresholdu8(p.in<u8>(), p.width, p.height, 0, tones.data(), 0, 128);
        rvkFindContoursListu8(tones.data(), p.width, p.height, 0, 0, sizes.data(), kMostContours, &count, points.data(),
                              kMostPoints, nullptr, nullptr);
        for (size_t i = 0, at = 0; i < count; at += sizes[i++])
            if (sizes[i] > longestSize) {
                longest = at;
                longestSize = sizes[i];
            }
#if RVK_BENCH_OPENCV
        for (size_t i = 0, at = 0; i < count; i++) {
            contours.emplace_back();
            for (u32 k = 0; k < sizes[i]; k++, at++)
                contours.back().emplace_back(points[2 * at], points[2 * at + 1]);
            if (sizes[i] == longestSize)
                polygon = contours.back();
        }
#endif
    }
    const s32* ofLongest() const
    {
        return points.data() + 2 * longest;
    }
};

Scene& scene(const Picture& p)
{
    static std::map<u32, Scene> scenes;
    return scenes.try_emplace(p.width, p).first->second;
}

template <rvkStatus (*find)(const u8*, u32, u32, u32, u32, u32*, u32, u32*, s32*, u32, s32*, rvkContourWorkspace*)>
void findContours(const Picture& p)
{
    Scene& s = scene(p);
    u32 found;
    find(s.tones.data(), p.width, p.height, 0, RAVIK_CONTOUR_ALL_POINTS, s.counts.data(), kMostContours, &found,
         p.out<s32>(), kMostPoints, s.hierarchy.data(), nullptr);
}

#if RVK_BENCH_OPENCV
template <int mode>
void findOpenCv(const Picture& p)
{
    std::vector<std::vector<cv::Point>> contours;
    std::vector<cv::Vec4i> hierarchy;
    const cv::Mat tones(static_cast<int>(p.height), static_cast<int>(p.width), CV_8U, scene(p).tones.data());
    cv::findContours(tones, contours, hierarchy, mode, cv::CHAIN_APPROX_NONE);
}
#endif

rvkStatus draw(const Picture& p, u32 thickness)
{
    const Scene& s = scene(p);
    return rvkDrawContouru8(p.out<u8>(), p.width, p.height, 0, s.points.data(), s.sizes.data(), s.count, thickness, 9);
}

// A polygon of a few long edges, that reaches out of the picture.
struct Star
{
    s32 points[22];

    explicit Star(const Picture& p)
    {
        for (u32 i = 0; i < 11; i++) {
            const u32 k = i * 5 % 11;
            points[2 * i] = static_cast<s32>(p.width * (k * k % 11) / 9) - 20;
            points[2 * i + 1] = static_cast<s32>(p.height * (k * 3 % 11) / 9) - 20;
        }
    }
#if RVK_BENCH_OPENCV
    std::vector<cv::Point> polygon() const
    {
        std::vector<cv::Point> all;
        for (u32 i = 0; i < 11; i++)
            all.emplace_back(points[2 * i], points[2 * i + 1]);
        return all;
    }
#endif
};
constexpr u32 kStarSize = 11;

constexpr Row kRows[] = {
    {"rvkFindContoursExternalu8", nullptr, trafficOnNatural(1, 0), findContours<rvkFindContoursExternalu8>,
     OPENCV(findOpenCv<cv::RETR_EXTERNAL>(p))},
    {"rvkFindContoursListu8", "findContours list", trafficOnNatural(1, 0), findContours<rvkFindContoursListu8>,
     OPENCV(findOpenCv<cv::RETR_LIST>(p))},
    {"rvkFindContoursCcompu8", nullptr, trafficOnNatural(1, 0), findContours<rvkFindContoursCcompu8>,
     OPENCV(findOpenCv<cv::RETR_CCOMP>(p))},
    {"rvkFindContoursTreeu8", nullptr, trafficOnNatural(1, 0), findContours<rvkFindContoursTreeu8>,
     OPENCV(findOpenCv<cv::RETR_TREE>(p))},
    {"rvkDrawContouru8, filled", nullptr, trafficOnNatural(0, 1), RAVIK(draw(p, RAVIK_DRAW_FILLED)),
     OPENCV(cv::Mat dst = p.matOut<u8>(); cv::fillPoly(dst, scene(p).contours, 9))},
    {"rvkDrawContouru8, lines", nullptr, trafficOnNatural(0, 1), RAVIK(draw(p, 1)),
     OPENCV(cv::Mat dst = p.matOut<u8>(); cv::polylines(dst, scene(p).contours, true, 9))},
    {"rvkDrawContouru8, thick lines", nullptr, trafficOnNatural(0, 1), RAVIK(draw(p, 3)),
     OPENCV(cv::Mat dst = p.matOut<u8>(); cv::polylines(dst, scene(p).contours, true, 9, 3))},
    {"rvkDrawContouru8, star filled", nullptr, trafficOnNatural(0, 1),
     RAVIK(rvkDrawContouru8(p.out<u8>(), p.width, p.height, 0, Star(p).points, &kStarSize, 1, RAVIK_DRAW_FILLED, 9)),
     OPENCV(cv::Mat dst = p.matOut<u8>(); cv::fillPoly(dst, std::vector{Star(p).polygon()}, 9))},
    {"rvkDrawContouru8, star of thick lines", nullptr, trafficOnNatural(0, 1),
     RAVIK(rvkDrawContouru8(p.out<u8>(), p.width, p.height, 0, Star(p).points, &kStarSize, 1, 5, 9)),
     OPENCV(cv::Mat dst = p.matOut<u8>(); cv::polylines(dst, Star(p).polygon(), true, 9, 5))},
    {"rvkDrawContourInterleavedu8", nullptr, trafficOnNatural(0, 3),
     RAVIK(const Scene& s = scene(p); rvkDrawContourInterleavedu8(p.out<u8>(), p.width, p.height, 0, s.points.data(),
                                                                  s.sizes.data(), s.count, RAVIK_DRAW_FILLED, 9, 8, 7)),
     OPENCV(cv::Mat dst = p.matOut<u8>(0, 3); cv::fillPoly(dst, scene(p).contours, cv::Scalar(9, 8, 7)))},
    {"rvkDrawContourPlanaru8", nullptr, trafficOnNatural(0, 3),
     RAVIK(const Scene& s = scene(p);
           rvkDrawContourPlanaru8(p.out<u8>(0), p.out<u8>(1), p.out<u8>(2), p.width, p.height, 0, s.points.data(),
                                  s.sizes.data(), s.count, RAVIK_DRAW_FILLED, 9, 8, 7)),
     OPENCV(for (unsigned i = 0; i < 3; i++) {
         cv::Mat dst = p.matOut<u8>(i);
         cv::fillPoly(dst, scene(p).contours, 9 - i);
     })},
    {"rvkFillConvexPolyu8", nullptr, trafficOnNatural(0, 1),
     RAVIK(const s32 w = static_cast<s32>(p.width), h = static_cast<s32>(p.height);
           const s32 points[] = {w / 3, 2, w - 5, h / 2, w / 2, h - 9, 4, h / 3};
           rvkFillConvexPolyu8(p.out<u8>(), p.width, p.height, 0, points, 4, 9)),
     OPENCV(cv::Mat dst = p.matOut<u8>(); const int w = dst.cols; const int h = dst.rows; cv::fillConvexPoly(
                dst, std::vector<cv::Point>{{w / 3, 2}, {w - 5, h / 2}, {w / 2, h - 9}, {4, h / 3}}, 9))},
    {"rvkBoundingRectangle", nullptr, trafficOnNatural(8, 0),
     RAVIK(rvkRectangle r; const Scene& s = scene(p); rvkBoundingRectangle(s.ofLongest(), s.longestSize, &r)),
     OPENCV(cv::boundingRect(scene(p).polygon))},
    {"rvkFindConvexHull", nullptr, trafficOnNatural(8, 0),
     RAVIK(const Scene& s = scene(p); u32 corners;
           rvkFindConvexHull(s.ofLongest(), s.longestSize, p.out<s32>(), &corners)),
     OPENCV(std::vector<cv::Point> hull; cv::convexHull(scene(p).polygon, hull))},
    {"rvkPointPolygonTest", nullptr, trafficOnNatural(8, 0),
     RAVIK(const Scene& s = scene(p);
           rvkPointPolygonTest(s.ofLongest(), s.longestSize, 100.5f, 99.25f, 0, p.out<f32>())),
     OPENCV(cv::pointPolygonTest(scene(p).polygon, {100.5f, 99.25f}, false))},
    {"rvkPointPolygonTest, distance", nullptr, trafficOnNatural(8, 0),
     RAVIK(const Scene& s = scene(p);
           rvkPointPolygonTest(s.ofLongest(), s.longestSize, 100.5f, 99.25f, 1, p.out<f32>())),
     OPENCV(cv::pointPolygonTest(scene(p).polygon, {100.5f, 99.25f}, true))},
    {"rvkSegmentFGMasku8", nullptr, trafficOnNatural(1, 1),
     RAVIK(Scene& s = scene(p); s.mask = s.tones;
           rvkSegmentFGMasku8(s.mask.data(), p.width, p.height, 0, RAVIK_MASK_CONTOURS, 8))},
};
const Rows registered(kRows);

} // namespace
