// Histograms of oriented gradients, as OpenCV gives them for a window as large as the picture.
#include "bench.h"

#include <ravik/hog.h>

#if RVK_BENCH_OPENCV_OBJDETECT
#include <opencv2/objdetect.hpp>
#define OPENCV_OBJDETECT(...) OPENCV(__VA_ARGS__)
#else
#define OPENCV_OBJDETECT(...) nullptr
#endif

namespace {

using namespace bench;

constexpr u32 kCell = 8, kBlock = 2, kBins = 9;

template <u32 method>
void extract(const Picture& p)
{
    static rvkHOG* hog;
    if (!hog)
        rvkHOGInit(method, kCell, kBlock, 1, kBins, &hog);
    rvkExtractHOGu16(hog, p.in<u8>(), p.width, p.height, 0, p.out<u16>(), 0);
}

#if RVK_BENCH_OPENCV_OBJDETECT
void openCv(const Picture& p)
{
    const int cell = kCell, width = static_cast<int>(p.width) / cell * cell,
              height = static_cast<int>(p.height) / cell * cell;
    const cv::HOGDescriptor hog({width, height}, {2 * cell, 2 * cell}, {cell, cell}, {cell, cell}, kBins);
    std::vector<float> values;
    hog.compute(p.matIn<u8>(), values);
    p.out<f32>()[0] = values[0];
}
#endif

constexpr Row kRows[] = {
    {"rvkExtractHOGu16", "HOG 8x8 cells", trafficOnNatural(1, 1), extract<RAVIK_HOG_DALAL>,
     OPENCV_OBJDETECT(openCv(p))},
    {"rvkExtractHOGu16, FHOG", nullptr, trafficOnNatural(1, 1), extract<RAVIK_HOG_FHOG>},
};
const Rows registered(kRows);

} // namespace
