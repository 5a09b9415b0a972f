// Maximally stable extremal regions, with their pixels, as OpenCV gives them. It runs on one thread, as the rows do that
// ask for one pass after the other; the other rows are of two threads.
#include "bench.h"

#include <ravik/frame.h>
#include <ravik/mser.h>

#if RVK_BENCH_OPENCV_FEATURES2D
#include <opencv2/features2d.hpp>
#define OPENCV_FEATURES(...) OPENCV(__VA_ARGS__)
#else
#define OPENCV_FEATURES(...) nullptr
#endif

namespace {

using namespace bench;

// OpenCV's parameters where none are given.
constexpr u32 kDelta = 5, kMinArea = 60, kMaxArea = 14400, kMostRegions = 20000;
constexpr f32 kMaxVariation = 0.25f, kMinDiversity = 0.2f;
constexpr u32 kRoomForPixels = kBufferValues / 2;

rvkMserRegion* regions(const Picture& p, unsigned index)
{
    return reinterpret_cast<rvkMserRegion*>(p.out<u32>(index));
}

void onePassAfterTheOther(const Picture& p, u32 connectivity)
{
    u32 count;
    for (const u32 polarity : {RAVIK_MSER_BRIGHT, RAVIK_MSER_DARK})
        rvkMserExtu8_v3(p.in<u8>(), p.width, p.height, 0, kDelta, kMinArea, kMaxArea, kMaxVariation, kMinDiversity,
                        connectivity, polarity, regions(p, 0), kMostRegions, &count, p.out<u32>(1), kRoomForPixels);
}

void bothAtOnce(const Picture& p)
{
    u32 count;
    rvkMserExtu8(p.in<u8>(), p.width, p.height, kDelta, kMinArea, kMaxArea, kMaxVariation, kMinDiversity, regions(p, 0),
                 kMostRegions, &count, p.out<u32>(1), kRoomForPixels);
}

void byHandle(const Picture& p)
{
    static void* handle;
    static u32 width;
    if (width != p.width) {
        rvkMemFree(handle);
        handle = nullptr;
        rvkMserNN8Init(p.width, p.height, kDelta, kMinArea, kMaxArea, kMaxVariation, kMinDiversity, &handle);
        width = p.width;
    }
    u32 count;
    rvkMserExtNN8u8(handle, p.in<u8>(), p.width, p.height, 0, regions(p, 0), kMostRegions, &count, p.out<u32>(1),
                    kRoomForPixels);
}

void split(const Picture& p)
{
    u32 brightCount, darkCount;
    rvkMserSplitExtu8(p.in<u8>(), p.width, p.height, 0, kDelta, kMinArea, kMaxArea, kMaxVariation, kMinDiversity,
                      regions(p, 0), kMostRegions, &brightCount, p.out<u32>(1), kRoomForPixels, regions(p, 2),
                      kMostRegions, &darkCount, p.out<u32>(3), kRoomForPixels);
}

#if RVK_BENCH_OPENCV_FEATURES2D
void openCv(const Picture& p)
{
    static const cv::Ptr<cv::MSER> mser = cv::MSER::create();
    std::vector<std::vector<cv::Point>> pixels;
    std::vector<cv::Rect> bounds;
    mser->detectRegions(p.matIn<u8>(), pixels, bounds);
}
#endif

constexpr Row kRows[] = {
    {"rvkMserExtu8_v3, 4, one thread", "MSER", trafficOnNatural(1, 1), RAVIK(onePassAfterTheOther(p, 4)),
     OPENCV_FEATURES(openCv(p))},
    {"rvkMserExtu8_v3, 8, one thread", nullptr, trafficOnNatural(1, 1), RAVIK(onePassAfterTheOther(p, 8)),
     OPENCV_FEATURES(openCv(p))},
    {"rvkMserExtu8", "MSER", trafficOnNatural(1, 1), RAVIK(bothAtOnce(p)), OPENCV_FEATURES(openCv(p))},
    {"rvkMserExtNN8u8", nullptr, trafficOnNatural(1, 1), RAVIK(byHandle(p)), OPENCV_FEATURES(openCv(p))},
    {"rvkMserSplitExtu8", "MSER", trafficOnNatural(1, 1), RAVIK(split(p)), OPENCV_FEATURES(openCv(p))},
};
const Rows registered(kRows);

} // namespace
