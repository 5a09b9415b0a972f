// Hough transforms, edge pixels, line segments. Lines are looked for among the edges that Canny's detector finds in the
// natural picture. Scores of circles are sums of nine cells, where OpenCV's are of one: thresholds differ, so that both
// find a circle or two.
#include "bench.h"

#include <ravik/canny.h>
#include <ravik/hough.h>

#include <vector>

namespace {

using namespace bench;

constexpr u32 kMost = 10000;

// The edges of the picture of a size, made once.
u8* edges(const Picture& p)
{
    static std::vector<u8> pixels;
    static u32 width = 0;
    if (width != p.width) {
        width = p.width;
        pixels.resize(size_t{p.width} * p.height);
        rvkFilterCanny3x3u8(p.in<u8>(), p.width, p.height, pixels.data(), 100, 200);
    }
    return pixels.data();
}

void lines(const Picture& p)
{
    static rvkLine found[kMost];
    u32 count;
    rvkHoughLineu8(edges(p), p.width, p.height, 0, 180, 1, 100, found, kMost, &count);
}

void circles(const Picture& p)
{
    static rvkCircle found[kMost];
    u32 count;
    rvkHoughCircleu8(p.in<u8>(), p.width, p.height, 0, 200, 8, 50, 80, 20, found, kMost, &count);
}

void edgePixels(const Picture& p)
{
    u32 count;
    rvkImageDetectEdgePixelsu8(p.in<u8>(), p.width, p.height, 0, 200, p.out<u32>(), p.width * p.height, &count,
                               p.out<s16>(1));
}

void lineSegments(const Picture& p)
{
    static rvkLineSegment found[kMost];
    u32 count;
    rvkImageDetectLineSegmentsu8(p.in<u8>(), p.width, p.height, 0, 200, 10, 1, found, kMost, &count);
}

#if RVK_BENCH_OPENCV
void linesOfOpenCv(const Picture& p)
{
    std::vector<cv::Vec2f> found;
    cv::HoughLines(cv::Mat(static_cast<int>(p.height), static_cast<int>(p.width), CV_8U, edges(p)), found, 1,
                   CV_PI / 180, 100);
}

void circlesOfOpenCv(const Picture& p)
{
    std::vector<cv::Vec3f> found;
    cv::HoughCircles(p.matIn<u8>(), found, cv::HOUGH_GRADIENT, 1, 20, 200, 50, 8, 50);
}
#endif

constexpr Row kRows[] = {
    {"rvkHoughLineu8", "HoughLines 1px 1deg", trafficOnNatural(1, 0), RAVIK(lines(p)), OPENCV(linesOfOpenCv(p))},
    {"rvkHoughCircleu8", "HoughCircles radius 8..50", trafficOnNatural(1, 0), RAVIK(circles(p)),
     OPENCV(circlesOfOpenCv(p))},
    {"rvkImageDetectEdgePixelsu8", nullptr, trafficOnNatural(1, 0), RAVIK(edgePixels(p))},
    {"rvkImageDetectLineSegmentsu8", nullptr, trafficOnNatural(1, 0), RAVIK(lineSegments(p))},
};
const Rows registered(kRows);

} // namespace
