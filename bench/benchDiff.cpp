// Absolute and signed differences.
#include "bench.h"

#include <ravik/diff.h>

namespace {

using namespace bench;

constexpr Row kRows[] = {
    {"rvkAbsDiffu8", "absdiff u8", streaming(2, 1),
     RAVIK(rvkAbsDiffu8(p.in<u8>(0), p.in<u8>(1), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV(cv::absdiff(p.matIn<u8>(0), p.matIn<u8>(1), p.matOut<u8>()))},
    {"rvkAbsDiffs32", "absdiff s32", streaming(8, 4),
     RAVIK(rvkAbsDiffs32(p.in<s32>(0), p.in<s32>(1), p.width, p.height, 0, p.out<s32>(), 0)),
     OPENCV(cv::absdiff(p.matIn<s32>(0), p.matIn<s32>(1), p.matOut<s32>()))},
    {"rvkAbsDifff32", nullptr, streaming(8, 4),
     RAVIK(rvkAbsDifff32(p.in<f32>(0), p.in<f32>(1), p.width, p.height, 0, p.out<f32>(), 0)),
     OPENCV(cv::absdiff(p.matIn<f32>(0), p.matIn<f32>(1), p.matOut<f32>()))},

    {"rvkAbsDiffVu8", nullptr, streaming(1, 1),
     RAVIK(rvkAbsDiffVu8(p.in<u8>(), p.width, p.height, 0, 99, p.out<u8>(), 0)),
     OPENCV(cv::absdiff(p.matIn<u8>(), cv::Scalar(99), p.matOut<u8>()))},
    {"rvkAbsDiffVs32", nullptr, streaming(4, 4),
     RAVIK(rvkAbsDiffVs32(p.in<s32>(), p.width, p.height, 0, 99, p.out<s32>(), 0)),
     OPENCV(cv::absdiff(p.matIn<s32>(), cv::Scalar(99), p.matOut<s32>()))},
    {"rvkAbsDiffVf32", nullptr, streaming(4, 4),
     RAVIK(rvkAbsDiffVf32(p.in<f32>(), p.width, p.height, 0, 99, p.out<f32>(), 0)),
     OPENCV(cv::absdiff(p.matIn<f32>(), cv::Scalar(99), p.matOut<f32>()))},

    {"rvkAbsDiffVc3u8", nullptr, streaming(3, 3),
     RAVIK(rvkAbsDiffVc3u8(p.in<u8>(), p.width, p.height, 0, 9, 99, 199, p.out<u8>(), 0)),
     OPENCV(cv::absdiff(p.matIn<u8>(0, 3), cv::Scalar(9, 99, 199), p.matOut<u8>(0, 3)))},
    {"rvkAbsDiffVc3s32", nullptr, streaming(12, 12),
     RAVIK(rvkAbsDiffVc3s32(p.in<s32>(), p.width, p.height, 0, 9, 99, 199, p.out<s32>(), 0)),
     OPENCV(cv::absdiff(p.matIn<s32>(0, 3), cv::Scalar(9, 99, 199), p.matOut<s32>(0, 3)))},
    {"rvkAbsDiffVc3f32", nullptr, streaming(12, 12),
     RAVIK(rvkAbsDiffVc3f32(p.in<f32>(), p.width, p.height, 0, 9, 99, 199, p.out<f32>(), 0)),
     OPENCV(cv::absdiff(p.matIn<f32>(0, 3), cv::Scalar(9, 99, 199), p.matOut<f32>(0, 3)))},
    {"rvkAbsDiffVc4u8", nullptr, streaming(4, 4),
     RAVIK(rvkAbsDiffVc4u8(p.in<u8>(), p.width, p.height, 0, 9, 99, 199, 29, p.out<u8>(), 0)),
     OPENCV(cv::absdiff(p.matIn<u8>(0, 4), cv::Scalar(9, 99, 199, 29), p.matOut<u8>(0, 4)))},
    {"rvkAbsDiffVc4s32", nullptr, streaming(16, 16),
     RAVIK(rvkAbsDiffVc4s32(p.in<s32>(), p.width, p.height, 0, 9, 99, 199, 29, p.out<s32>(), 0)),
     OPENCV(cv::absdiff(p.matIn<s32>(0, 4), cv::Scalar(9, 99, 199, 29), p.matOut<s32>(0, 4)))},
    {"rvkAbsDiffVc4f32", nullptr, streaming(16, 16),
     RAVIK(rvkAbsDiffVc4f32(p.in<f32>(), p.width, p.height, 0, 9, 99, 199, 29, p.out<f32>(), 0)),
     OPENCV(cv::absdiff(p.matIn<f32>(0, 4), cv::Scalar(9, 99, 199, 29), p.matOut<f32>(0, 4)))},

    {"rvkImageDiffu8", "subtract u8 saturate", streaming(2, 1),
     RAVIK(rvkImageDiffu8(p.in<u8>(0), p.in<u8>(1), p.width, p.height, p.out<u8>())),
     OPENCV(cv::subtract(p.matIn<u8>(0), p.matIn<u8>(1), p.matOut<u8>()))},
    {"rvkImageDiffu8_v2", "subtract u8 saturate", streaming(2, 1),
     RAVIK(rvkImageDiffu8_v2(p.in<u8>(0), p.in<u8>(1), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV(cv::subtract(p.matIn<u8>(0), p.matIn<u8>(1), p.matOut<u8>()))},
    {"rvkImageDiffs16", "subtract s16 saturate", streaming(4, 2),
     RAVIK(rvkImageDiffs16(p.in<s16>(0), p.in<s16>(1), p.width, p.height, 0, p.out<s16>(), 0)),
     OPENCV(cv::subtract(p.matIn<s16>(0), p.matIn<s16>(1), p.matOut<s16>()))},
    {"rvkImageDifff32", nullptr, streaming(8, 4),
     RAVIK(rvkImageDifff32(p.in<f32>(0), p.in<f32>(1), p.width, p.height, 0, p.out<f32>(), 0)),
     OPENCV(cv::subtract(p.matIn<f32>(0), p.matIn<f32>(1), p.matOut<f32>()))},
    {"rvkImageDiffu8f32", nullptr, streaming(2, 4),
     RAVIK(rvkImageDiffu8f32(p.in<u8>(0), p.in<u8>(1), p.width, p.height, 0, p.out<f32>(), 0)),
     OPENCV(cv::subtract(p.matIn<u8>(0), p.matIn<u8>(1), p.matOut<f32>(), cv::noArray(), CV_32F))},
    {"rvkImageDiffu8s8", nullptr, streaming(2, 1),
     RAVIK(rvkImageDiffu8s8(p.in<u8>(0), p.in<u8>(1), p.width, p.height, 0, p.out<s8>(), 0))},
};
const Rows registered(kRows);

} // namespace
