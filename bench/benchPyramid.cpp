#include "bench.h"

#include <ravik/pyramid.h>

namespace {

using namespace bench;

constexpr u32 kLevels = 4;

// The levels of a picture in an output buffer, one behind the other.
template <class T>
void layOut(const Picture& p, rvkPyramidLevel (&pyramid)[kLevels], unsigned index, u32 firstLevel)
{
    T* memory = p.out<T>(index);
    for (u32 k = firstLevel; k < kLevels; k++) {
        pyramid[k] = {memory, p.width >> k, p.height >> k};
        memory += size_t{pyramid[k].width} * pyramid[k].height;
    }
}

template <class T, auto function>
void create(const Picture& p)
{
    rvkPyramidLevel pyramid[kLevels];
    layOut<T>(p, pyramid, 0, 1);
    function(p.in<T>(), p.width, p.height, kLevels, pyramid);
}

void createBy3x3(const Picture& p)
{
    rvkPyramidLevel packed[kLevels];
    layOut<u8>(p, packed, 0, 1);
    rvkPyramidLevel_v2 pyramid[kLevels] = {};
    for (u32 k = 1; k < kLevels; k++)
        pyramid[k].ptr = packed[k].ptr;
    rvkPyramidCreateu8_v3(p.in<u8>(), p.width, p.height, 0, kLevels, pyramid, 3);
}

// The levels' contents do not matter: they are what the outputs happen to hold, but for the base.
template <class T, class D, auto function>
void derive(const Picture& p)
{
    rvkPyramidLevel pyramid[kLevels], dx[kLevels], dy[kLevels];
    layOut<T>(p, pyramid, 2, 1);
    pyramid[0] = {const_cast<T*>(p.in<T>()), p.width, p.height};
    layOut<D>(p, dx, 0, 0);
    layOut<D>(p, dy, 1, 0);
    function(pyramid, dx, dy, kLevels);
}

#if RVK_BENCH_OPENCV
template <class T>
void createOpencv(const Picture& p)
{
    rvkPyramidLevel pyramid[kLevels];
    layOut<T>(p, pyramid, 0, 1);
    cv::Mat from = p.matIn<T>();
    for (u32 k = 1; k < kLevels; k++) {
        cv::Mat to(static_cast<int>(pyramid[k].height), static_cast<int>(pyramid[k].width), from.type(),
                   pyramid[k].ptr);
        cv::pyrDown(from, to, to.size());
        from = to;
    }
}
#define OPENCV_WORK(...) __VA_ARGS__
#else
#define OPENCV_WORK(...) nullptr
#endif

// What the levels above the base add to its pixels, and all of them together.
constexpr double kAbove = 1 / 4.0 + 1 / 16.0 + 1 / 64.0, kAll = 1 + kAbove;

constexpr Row kRows[] = {
    {"rvkPyramidCreateu8", "pyramid of 4 levels 5x5 u8", traffic(1, kAbove), create<u8, rvkPyramidCreateu8>,
     OPENCV_WORK(createOpencv<u8>)},
    {"rvkPyramidCreateu8_v3 3x3", nullptr, traffic(1, kAbove), createBy3x3},
    {"rvkPyramidCreatef32", nullptr, traffic(4, 4 * kAbove), create<f32, rvkPyramidCreatef32>,
     OPENCV_WORK(createOpencv<f32>)},
    {"rvkPyramidSobelGradientCreatei8", nullptr, traffic(kAll, 2 * kAll),
     derive<u8, s8, rvkPyramidSobelGradientCreatei8>},
    {"rvkPyramidSobelGradientCreatef32", nullptr, traffic(4 * kAll, 8 * kAll),
     derive<f32, f32, rvkPyramidSobelGradientCreatef32>},
};
const Rows registered(kRows);

} // namespace
