// Image derivatives. OpenCV's are those of the whole picture, with its border; spatialGradient is its fastest pair.
#include "bench.h"

#include <ravik/gradient.h>

namespace {

using namespace bench;

#if RVK_BENCH_OPENCV
void sobel(const Picture& p, int size, int depth)
{
    cv::Mat dx = depth == CV_16S ? p.matOut<s16>(0) : p.matOut<f32>(0);
    cv::Mat dy = depth == CV_16S ? p.matOut<s16>(1) : p.matOut<f32>(1);
    cv::Sobel(p.matIn<u8>(), dx, depth, 1, 0, size, 1, 0, cv::BORDER_REPLICATE);
    cv::Sobel(p.matIn<u8>(), dy, depth, 0, 1, size, 1, 0, cv::BORDER_REPLICATE);
}

void sobelPair(const Picture& p)
{
    cv::Mat dx = p.matOut<s16>(0), dy = p.matOut<s16>(1);
    cv::spatialGradient(p.matIn<u8>(), dx, dy, 3, cv::BORDER_REPLICATE);
}

void sobelOfFloats(const Picture& p)
{
    cv::Sobel(p.matIn<f32>(), p.matOut<f32>(0), CV_32F, 1, 0, 3, 1, 0, cv::BORDER_REPLICATE);
    cv::Sobel(p.matIn<f32>(), p.matOut<f32>(1), CV_32F, 0, 1, 3, 1, 0, cv::BORDER_REPLICATE);
}

void scharr(const Picture& p)
{
    cv::Mat dx = p.matOut<s16>(0), dy = p.matOut<s16>(1);
    cv::Scharr(p.matIn<u8>(), dx, CV_16S, 1, 0, 1, 0, cv::BORDER_REPLICATE);
    cv::Scharr(p.matIn<u8>(), dy, CV_16S, 0, 1, 1, 0, cv::BORDER_REPLICATE);
}

void strength(const Picture& p)
{
    cv::Mat dx = p.matOut<s16>(0), dy = p.matOut<s16>(1), sum = p.matOut<u8>(2), absDx = p.matOut<u8>(3),
            absDy = p.matOut<u8>(4);
    cv::spatialGradient(p.matIn<u8>(), dx, dy, 3, cv::BORDER_REPLICATE);
    cv::convertScaleAbs(dx, absDx);
    cv::convertScaleAbs(dy, absDy);
    cv::add(absDx, absDy, sum);
}
#endif

constexpr Row kRows[] = {
    {"rvkFilterSobel3x3u8_v2", "Sobel abs(dx)+abs(dy) u8", traffic(1, 1),
     RAVIK(rvkFilterSobel3x3u8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0)), OPENCV(strength(p))},
    {"rvkFilterSobel3x3u8s16, replicate", "Sobel dx dy 3x3 s16", traffic(1, 4),
     RAVIK(rvkFilterSobel3x3u8s16(p.in<u8>(), p.width, p.height, 0, p.out<s16>(0), p.out<s16>(1), 0,
                                  RAVIK_BORDER_REPLICATE, 0)),
     OPENCV(sobelPair(p))},
    {"rvkFilterSobel5x5u8s16, replicate", nullptr, traffic(1, 4),
     RAVIK(rvkFilterSobel5x5u8s16(p.in<u8>(), p.width, p.height, 0, p.out<s16>(0), p.out<s16>(1), 0,
                                  RAVIK_BORDER_REPLICATE, 0)),
     OPENCV(sobel(p, 5, CV_16S))},
    {"rvkFilterSobel7x7u8s16, replicate", nullptr, traffic(1, 4),
     RAVIK(rvkFilterSobel7x7u8s16(p.in<u8>(), p.width, p.height, 0, p.out<s16>(0), p.out<s16>(1), 0,
                                  RAVIK_BORDER_REPLICATE, 0)),
     OPENCV(sobel(p, 7, CV_16S))},
    {"rvkImageGradientInterleavedf32_v2", nullptr, traffic(1, 8),
     RAVIK(rvkImageGradientInterleavedf32_v2(p.in<u8>(), p.width, p.height, 0, p.out<f32>(), 0))},
    {"rvkImageGradientInterleaveds16_v2", nullptr, traffic(1, 4),
     RAVIK(rvkImageGradientInterleaveds16_v2(p.in<u8>(), p.width, p.height, 0, p.out<s16>(), 0))},
    {"rvkImageGradientPlanarf32_v2", nullptr, traffic(1, 8),
     RAVIK(rvkImageGradientPlanarf32_v2(p.in<u8>(), p.width, p.height, 0, p.out<f32>(0), p.out<f32>(1), 0)),
     OPENCV(sobel(p, 1, CV_32F))},
    {"rvkImageGradientPlanars16_v2", nullptr, traffic(1, 4),
     RAVIK(rvkImageGradientPlanars16_v2(p.in<u8>(), p.width, p.height, 0, p.out<s16>(0), p.out<s16>(1), 0)),
     OPENCV(sobel(p, 1, CV_16S))},
    {"rvkImageGradientScharrInterleaveds16", "Scharr dx dy s16", traffic(1, 4),
     RAVIK(rvkImageGradientScharrInterleaveds16(p.in<u8>(), p.width, p.height, 0, p.out<s16>(), 0)), OPENCV(scharr(p))},
    {"rvkImageGradientSobelInterleavedf32_v2", nullptr, traffic(1, 8),
     RAVIK(rvkImageGradientSobelInterleavedf32_v2(p.in<u8>(), p.width, p.height, 0, p.out<f32>(), 0)),
     OPENCV(sobel(p, 3, CV_32F))},
    {"rvkImageGradientSobelInterleaveds16_v2", nullptr, traffic(1, 4),
     RAVIK(rvkImageGradientSobelInterleaveds16_v2(p.in<u8>(), p.width, p.height, 0, p.out<s16>(), 0)),
     OPENCV(sobelPair(p))},
    {"rvkImageGradientSobelInterleaveds16_v3", "Sobel dx dy 3x3 s16", traffic(1, 4),
     RAVIK(rvkImageGradientSobelInterleaveds16_v3(p.in<u8>(), p.width, p.height, 0, p.out<s16>(), 0)),
     OPENCV(sobelPair(p))},
    {"rvkImageGradientSobelPlanarf32_v2", nullptr, traffic(1, 8),
     RAVIK(rvkImageGradientSobelPlanarf32_v2(p.in<u8>(), p.width, p.height, 0, p.out<f32>(0), p.out<f32>(1), 0)),
     OPENCV(sobel(p, 3, CV_32F))},
    {"rvkImageGradientSobelPlanarf32f32_v2", nullptr, traffic(4, 8),
     RAVIK(rvkImageGradientSobelPlanarf32f32_v2(p.in<f32>(), p.width, p.height, 0, p.out<f32>(0), p.out<f32>(1), 0)),
     OPENCV(sobelOfFloats(p))},
    {"rvkImageGradientSobelPlanars16_v2", "Sobel dx dy 3x3 s16", traffic(1, 4),
     RAVIK(rvkImageGradientSobelPlanars16_v2(p.in<u8>(), p.width, p.height, 0, p.out<s16>(0), p.out<s16>(1), 0)),
     OPENCV(sobelPair(p))},
    {"rvkImageGradientSobelPlanars16_v3", "Sobel dx dy 3x3 s16", traffic(1, 4),
     RAVIK(rvkImageGradientSobelPlanars16_v3(p.in<u8>(), p.width, p.height, 0, p.out<s16>(0), p.out<s16>(1), 0)),
     OPENCV(sobelPair(p))},
    {"rvkImageGradientSobelPlanars16_v3, dx", "Sobel dx 3x3 s16", traffic(1, 2),
     RAVIK(rvkImageGradientSobelPlanars16_v3(p.in<u8>(), p.width, p.height, 0, p.out<s16>(0), nullptr, 0)),
     OPENCV(cv::Sobel(p.matIn<u8>(), p.matOut<s16>(0), CV_16S, 1, 0, 3, 1, 0, cv::BORDER_REPLICATE))},
    {"rvkImageGradientSobelPlanars16_v3, dy", "Sobel dy 3x3 s16", traffic(1, 2),
     RAVIK(rvkImageGradientSobelPlanars16_v3(p.in<u8>(), p.width, p.height, 0, nullptr, p.out<s16>(0), 0)),
     OPENCV(cv::Sobel(p.matIn<u8>(), p.matOut<s16>(0), CV_16S, 0, 1, 3, 1, 0, cv::BORDER_REPLICATE))},
    {"rvkImageGradientSobelPlanars8_v2", nullptr, traffic(1, 2),
     RAVIK(rvkImageGradientSobelPlanars8_v2(p.in<u8>(), p.width, p.height, 0, p.out<s8>(0), p.out<s8>(1), 0))},
};
const Rows registered(kRows);

} // namespace
