// Statistics of grey values, and pictures changed by tables of them.
#include "bench.h"

#include <ravik/statistics.h>

namespace {

using namespace bench;

// A table without order.
const u8* anyTable()
{
    static const auto table = [] {
        struct
        {
            u8 values[256];
        } t;
        for (unsigned i = 0; i < 256; ++i)
            t.values[i] = static_cast<u8>(i * 167 + 13);
        return t;
    }();
    return table.values;
}

constexpr Row kRows[] = {
    {"rvkImageIntensityStats_v2", "mean and deviation u8", traffic(1, 0),
     RAVIK(rvkImageIntensityStats_v2(p.in<u8>(), 0, 0, 0, p.width, p.height, p.out<f32>(), p.out<f32>(1), 0)),
     OPENCV(cv::Mat mean, deviation; cv::meanStdDev(p.matIn<u8>(), mean, deviation))},
    {"rvkImageIntensityStats", "mean and deviation u8", traffic(1, 0),
     RAVIK(rvkImageIntensityStats(p.in<u8>(), p.width, 0, 0, p.width, p.height, p.out<f32>(), p.out<f32>(1))),
     OPENCV(cv::Mat mean, deviation; cv::meanStdDev(p.matIn<u8>(), mean, deviation))},
    {"rvkImageIntensityHistogram", "histogram u8", trafficByContent(1, 0),
     RAVIK(rvkImageIntensityHistogram(p.in<u8>(), 0, 0, 0, p.width, p.height, p.out<u32>())),
     OPENCV(const cv::Mat mat = p.matIn<u8>(); cv::Mat counts; const int channel = 0, size = 256;
            const float range[] = {0, 256}; const float* ranges = range;
            cv::calcHist(&mat, 1, &channel, cv::Mat(), counts, 1, &size, &ranges))},
    {"rvkImageSpatialHistogramu8", nullptr, trafficByContent(1, 0),
     RAVIK(rvkImageSpatialHistogramu8(p.in<u8>(), p.width, p.height, 0, 8, 8, p.out<u32>()))},
    {"rvkImageSpatialHistogramu8_v2", nullptr, trafficByContent(1, 4),
     RAVIK(rvkImageSpatialHistogramu8_v2(p.in<u8>(), p.width, p.height, 0, 16, 16, p.out<u32>(), 0))},
    {"rvkImageHistogramEqualizeu8", "equalizeHist u8", trafficByContent(1, 1),
     RAVIK(rvkImageHistogramEqualizeu8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV(cv::Mat out = p.matOut<u8>(); cv::equalizeHist(p.matIn<u8>(), out))},
    {"rvkTableLookupu8", "lookup table u8", streaming(1, 1),
     RAVIK(rvkTableLookupu8(p.in<u8>(), p.width, p.height, 0, anyTable(), p.out<u8>(), 0)),
     OPENCV(const cv::Mat table(1, 256, CV_8U, const_cast<u8*>(anyTable()));
            cv::LUT(p.matIn<u8>(), table, p.matOut<u8>()))},
};
const Rows registered(kRows);

} // namespace
