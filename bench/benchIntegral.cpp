// Integral images.
#include "bench.h"

#include <ravik/integral.h>

namespace {

using namespace bench;

// Room for two words a pixel.
uint64_t* squares(const Picture& p)
{
    return reinterpret_cast<uint64_t*>(p.out<u32>(1));
}

constexpr Row kRows[] = {
    {"rvkIntegrateImageu8", "integral u32", traffic(1, 4),
     RAVIK(rvkIntegrateImageu8(p.in<u8>(), p.width, p.height, p.out<u32>())),
     OPENCV(cv::Mat sum(static_cast<int>(p.height) + 1, static_cast<int>(p.width) + 1, CV_32S, p.out<u32>());
            cv::integral(p.matIn<u8>(), sum, CV_32S))},
    {"rvkIntegrateImageu8_v2", "integral u32", traffic(1, 4),
     RAVIK(rvkIntegrateImageu8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u32>(), 0)),
     OPENCV(cv::Mat sum(static_cast<int>(p.height) + 1, static_cast<int>(p.width) + 1, CV_32S, p.out<u32>());
            cv::integral(p.matIn<u8>(), sum, CV_32S))},
    {"rvkIntegrateImageu8u64", "integral and squared u32 f64", traffic(1, 12),
     RAVIK(rvkIntegrateImageu8u64(p.in<u8>(), p.width, p.height, 0, p.out<u32>(), squares(p), 0, 0)),
     OPENCV(const int rows = static_cast<int>(p.height) + 1, columns = static_cast<int>(p.width) + 1;
            cv::Mat sum(rows, columns, CV_32S, p.out<u32>()); cv::Mat ofSquares(rows, columns, CV_64F, squares(p));
            cv::integral(p.matIn<u8>(), sum, ofSquares, CV_32S, CV_64F))},
    {"rvkTiltedIntegralu8s32", nullptr, traffic(1, 4),
     RAVIK(rvkTiltedIntegralu8s32(p.in<u8>(), p.width, p.height, 0, p.out<s32>(), 0))},
    {"rvkIntegrateImageYCbCr420PseudoPlanaru8", nullptr, traffic(1.5, 6),
     RAVIK(rvkIntegrateImageYCbCr420PseudoPlanaru8(p.in<u8>(), p.in<u8>(1), p.width, p.height, 0, 0, p.out<u32>(),
                                                   p.out<u32>(1), p.out<u32>(2), 0, 0, 0))},
    {"rvkFindForegroundIntegrateImageYCbCr420u32", nullptr, traffic(1.5, 4),
     RAVIK(rvkFindForegroundIntegrateImageYCbCr420u32(p.in<u8>(), p.in<u8>(1), p.width, p.height, 0, 0, 100, 128, 128,
                                                      60, p.out<u32>(), 0))},
    {"rvkIntegratePatchu8", nullptr, traffic(1, 8),
     RAVIK(rvkIntegratePatchu8(p.in<u8>(), 0, 0, 0, p.width, p.height, p.out<u32>(), p.out<u32>(1)))},
    {"rvkIntegratePatchu8_v3", nullptr, traffic(1, 8),
     RAVIK(rvkIntegratePatchu8_v3(p.in<u8>(), p.width, p.height, 0, 0, 0, p.width, p.height, p.out<u32>(), 0,
                                  p.out<u32>(1), 0))},
    {"rvkIntegratePatch12x12u8",
     nullptr,
     traffic(1, 8),
     RAVIK(rvkIntegratePatch12x12u8(p.in<u8>(), 640, 480, 0, 5, 7, p.out<u32>(), p.out<u32>(1))),
     nullptr,
     nullptr,
     {144, 1}},
    {"rvkIntegratePatch18x18u8",
     nullptr,
     traffic(1, 8),
     RAVIK(rvkIntegratePatch18x18u8(p.in<u8>(), 640, 480, 0, 5, 7, p.out<u32>(), p.out<u32>(1))),
     nullptr,
     nullptr,
     {324, 1}},
    {"rvkIntegrateImageLineu8",
     nullptr,
     traffic(1, 4),
     RAVIK(rvkIntegrateImageLineu8(p.in<u8>(), p.width, p.out<u32>())),
     nullptr,
     nullptr,
     {1920, 1}},
    {"rvkIntegrateImageLine64u8",
     nullptr,
     traffic(1, 4),
     RAVIK(rvkIntegrateImageLine64u8(p.in<u8>(), p.out<u32>())),
     nullptr,
     nullptr,
     {64, 1}},
};
const Rows registered(kRows);

} // namespace
