// Sums of absolute differences. Blocks come in batches of 1000, one after the other.
#include "bench.h"

#include <ravik/sad.h>

namespace {

using namespace bench;

constexpr Picture kBatch = {1000, 1};

template <u32 size>
void compareBlocks(const Picture& p, u32 (*function)(const u8*, u32, const u8*, u32))
{
    for (u32 i = 0; i < p.width; ++i)
        p.out<u32>()[i] = function(p.in<u8>(0) + i * size * size, size, p.in<u8>(1) + i * size * size, size);
}

#if RVK_BENCH_OPENCV
template <int size>
void compareBlocksByOpenCv(const Picture& p)
{
    for (u32 i = 0; i < p.width; ++i) {
        const auto block = [=](unsigned input) {
            return cv::Mat(size, size, CV_8U, const_cast<u8*>(p.in<u8>(input)) + i * size * size);
        };
        p.out<u32>()[i] = static_cast<u32>(cv::norm(block(0), block(1), cv::NORM_L1));
    }
}

// Squared differences: OpenCV has no absolute ones.
template <int size>
void matchByOpenCv(const Picture& p)
{
    cv::Mat dst = p.matOut<f32>({static_cast<int>(p.width) - size + 1, static_cast<int>(p.height) - size + 1});
    cv::matchTemplate(p.matIn<u8>(), p.matIn<u8>({size, size}, 1), dst, cv::TM_SQDIFF);
}
#endif

constexpr Row kRows[] = {
    {"rvkSumOfAbsoluteDiff8x8u8", nullptr, traffic(128, 4), RAVIK(compareBlocks<8>(p, rvkSumOfAbsoluteDiff8x8u8)),
     OPENCV(compareBlocksByOpenCv<8>(p)), nullptr, kBatch},
    {"rvkSumOfAbsoluteDiff16x16u8", "SAD 16x16 u8", traffic(512, 4),
     RAVIK(compareBlocks<16>(p, rvkSumOfAbsoluteDiff16x16u8)), OPENCV(compareBlocksByOpenCv<16>(p)), nullptr, kBatch},
    {"rvkSumOfAbsoluteDiffs8x8u8_v2", nullptr, traffic(1, 2),
     RAVIK(rvkSumOfAbsoluteDiffs8x8u8_v2(p.in<u8>(1), p.in<u8>(), p.width, p.height, 0, p.out<u16>(), 0)),
     OPENCV(matchByOpenCv<8>(p))},
    {"rvkSumOfAbsoluteDiffs16x16u8", nullptr, traffic(1, 2),
     RAVIK(rvkSumOfAbsoluteDiffs16x16u8(p.in<u8>(1), p.in<u8>(), p.width, p.height, 0, p.out<u16>(), 0)),
     OPENCV(matchByOpenCv<16>(p))},
};
const Rows registered(kRows);

} // namespace
