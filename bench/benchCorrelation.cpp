// Correlation and convolution with kernels of the caller. OpenCV's filters take the same weights, as floats, and scale
// where these shift.
#include "bench.h"

#include <ravik/correlation.h>

namespace {

using namespace bench;

// Weights without symmetry, which OpenCV would make use of. The sums of the fixed-point weights are about 2^12.
constexpr uint32_t kMostWeights = 17;
constexpr uint32_t kShift = 12;

struct Weights
{
    s8 bytes[9] = {-1, 2, 3, 4, 5, 6, -7, 8, -9};
    s16 shorts[kMostWeights * kMostWeights];
    f32 floats[kMostWeights * kMostWeights];

    constexpr explicit Weights(int scale) : shorts(), floats()
    {
        for (int i = 0; i < static_cast<int>(kMostWeights * kMostWeights); ++i) {
            shorts[i] = static_cast<s16>((i * 37 % 23 - 5) * scale);
            floats[i] = static_cast<f32>(shorts[i]) / 4096;
        }
    }
};
constexpr Weights kLine(40), kSquare(8); // for separable kernels, and for those of two dimensions

// Weights of a Gaussian with the deviation, and of the 8 bits, that OpenCV chooses for the size.
constexpr s16 kGaussian7[] = {8, 28, 56, 72, 56, 28, 8};
constexpr s16 kGaussian15[] = {1, 3, 6, 12, 20, 29, 37, 40, 37, 29, 20, 12, 6, 3, 1};

void gaussian(const Picture& p, u32 size)
{
    const s16* const weights = size == 7 ? kGaussian7 : kGaussian15;
    rvkFilterCorrSepMxNu8(p.in<u8>(), p.width, p.height, 0, weights, size, weights, size, 8, 8, p.out<u8>(), 0);
}

#if RVK_BENCH_OPENCV
template <class S, class D>
void correlate(const Picture& p, int size)
{
    const cv::Mat kernel(size, size, CV_32F, const_cast<f32*>(kSquare.floats));
    cv::filter2D(p.matIn<S>(), p.matOut<D>(), cv::DataType<D>::depth, kernel, cv::Point(-1, -1), 0,
                 cv::BORDER_REPLICATE);
}

template <class T>
void correlateSeparably(const Picture& p, int size)
{
    const cv::Mat weights(size, 1, CV_32F, const_cast<f32*>(kLine.floats));
    cv::sepFilter2D(p.matIn<T>(), p.matOut<T>(), -1, weights, weights, cv::Point(-1, -1), 0, cv::BORDER_REPLICATE);
}
#endif

constexpr Row kRows[] = {
    {"rvkConvValids16, 5x5", nullptr, traffic(2, 2),
     RAVIK(rvkConvValids16(p.in<s16>(), p.width, p.height, 0, kSquare.shorts, 5, 5, kShift, p.out<s16>(), 0)),
     OPENCV(correlate<s16, s16>(p, 5))},
    {"rvkFilterConvSepMxNs16, 5x5", "separable filter 5x5 16-bit", traffic(2, 2),
     RAVIK(rvkFilterConvSepMxNs16(p.in<s16>(), p.width, p.height, 0, kLine.shorts, 5, kLine.shorts, 5, kShift, kShift,
                                  p.out<s16>(), 0)),
     OPENCV(correlateSeparably<s16>(p, 5))},
    {"rvkFilterConvolveMxNu8, 5x5", nullptr, traffic(1, 1),
     RAVIK(rvkFilterConvolveMxNu8(p.in<u8>(), p.width, p.height, 0, kSquare.shorts, 5, 5, kShift, p.out<u8>(), 0)),
     OPENCV(correlate<u8, u8>(p, 5))},
    {"rvkFilterConvolveMxNu8s16, 7x7", nullptr, traffic(1, 2),
     RAVIK(rvkFilterConvolveMxNu8s16(p.in<u8>(), p.width, p.height, 0, kSquare.shorts, 7, 7, kShift, p.out<s16>(), 0)),
     OPENCV(correlate<u8, s16>(p, 7))},
    {"rvkFilterCorr3x3s8_v2", nullptr, traffic(1, 1),
     RAVIK(rvkFilterCorr3x3s8_v2(p.in<u8>(), p.width, p.height, 0, kLine.bytes, 4, p.out<u8>(), 0)),
     OPENCV(correlate<u8, u8>(p, 3))},
    {"rvkFilterCorrNxNu8, 3x3", nullptr, traffic(1, 1),
     RAVIK(rvkFilterCorrNxNu8(p.in<u8>(), p.width, p.height, 0, kSquare.shorts, 3, kShift, p.out<u8>(), 0)),
     OPENCV(correlate<u8, u8>(p, 3))},
    {"rvkFilterCorrNxNu8, 9x9", nullptr, traffic(1, 1),
     RAVIK(rvkFilterCorrNxNu8(p.in<u8>(), p.width, p.height, 0, kSquare.shorts, 9, kShift, p.out<u8>(), 0)),
     OPENCV(correlate<u8, u8>(p, 9))},
    {"rvkFilterCorrNxNu8f32, 5x5", nullptr, traffic(1, 4),
     RAVIK(rvkFilterCorrNxNu8f32(p.in<u8>(), p.width, p.height, 0, kSquare.floats, 5, p.out<f32>(), 0)),
     OPENCV(correlate<u8, f32>(p, 5))},
    {"rvkFilterCorrNxNu8s16, 5x5", nullptr, traffic(1, 2),
     RAVIK(rvkFilterCorrNxNu8s16(p.in<u8>(), p.width, p.height, 0, kSquare.shorts, 5, kShift, p.out<s16>(), 0)),
     OPENCV(correlate<u8, s16>(p, 5))},
    {"rvkFilterCorrNxNu8s16, 15x15", nullptr, traffic(1, 2),
     RAVIK(rvkFilterCorrNxNu8s16(p.in<u8>(), p.width, p.height, 0, kSquare.shorts, 15, kShift, p.out<s16>(), 0)),
     OPENCV(correlate<u8, s16>(p, 15))},
    {"rvkFilterCorrSep9x9s16_v2", nullptr, traffic(2, 2),
     RAVIK(rvkFilterCorrSep9x9s16_v2(p.in<s16>(), p.width, p.height, 0, kLine.shorts, kLine.shorts, kShift, kShift,
                                     p.out<s16>(), 0)),
     OPENCV(correlateSeparably<s16>(p, 9))},
    {"rvkFilterCorrSep11x11s16_v2", nullptr, traffic(2, 2),
     RAVIK(rvkFilterCorrSep11x11s16_v2(p.in<s16>(), p.width, p.height, 0, kLine.shorts, kLine.shorts, kShift, kShift,
                                       p.out<s16>(), 0)),
     OPENCV(correlateSeparably<s16>(p, 11))},
    {"rvkFilterCorrSep13x13s16_v2", nullptr, traffic(2, 2),
     RAVIK(rvkFilterCorrSep13x13s16_v2(p.in<s16>(), p.width, p.height, 0, kLine.shorts, kLine.shorts, kShift, kShift,
                                       p.out<s16>(), 0)),
     OPENCV(correlateSeparably<s16>(p, 13))},
    {"rvkFilterCorrSep15x15s16_v2", nullptr, traffic(2, 2),
     RAVIK(rvkFilterCorrSep15x15s16_v2(p.in<s16>(), p.width, p.height, 0, kLine.shorts, kLine.shorts, kShift, kShift,
                                       p.out<s16>(), 0)),
     OPENCV(correlateSeparably<s16>(p, 15))},
    {"rvkFilterCorrSep17x17s16_v2", nullptr, traffic(2, 2),
     RAVIK(rvkFilterCorrSep17x17s16_v2(p.in<s16>(), p.width, p.height, 0, kLine.shorts, kLine.shorts, kShift, kShift,
                                       p.out<s16>(), 0)),
     OPENCV(correlateSeparably<s16>(p, 17))},
    {"rvkFilterCorrSepMxNu8, 5x5", "separable filter 5x5 u8", traffic(1, 1),
     RAVIK(rvkFilterCorrSepMxNu8(p.in<u8>(), p.width, p.height, 0, kLine.shorts, 5, kLine.shorts, 5, kShift, kShift,
                                 p.out<u8>(), 0)),
     OPENCV(correlateSeparably<u8>(p, 5))},
    {"rvkFilterCorrSepMxNu8, Gaussian 7x7", "Gaussian 7x7 u8", traffic(1, 1), RAVIK(gaussian(p, 7)),
     OPENCV(cv::GaussianBlur(p.matIn<u8>(), p.matOut<u8>(), {7, 7}, 0, 0, cv::BORDER_REPLICATE))},
    {"rvkFilterCorrSepMxNu8, Gaussian 15x15", "Gaussian 15x15 u8", traffic(1, 1), RAVIK(gaussian(p, 15)),
     OPENCV(cv::GaussianBlur(p.matIn<u8>(), p.matOut<u8>(), {15, 15}, 0, 0, cv::BORDER_REPLICATE))},
    {"rvkFilterCorrSepNxNs16, 5x5", "separable filter 5x5 16-bit", traffic(2, 2),
     RAVIK(rvkFilterCorrSepNxNs16(p.in<s16>(), p.width, p.height, 0, kLine.shorts, kLine.shorts, 5, kShift, kShift,
                                  p.out<s16>(), 0)),
     OPENCV(correlateSeparably<s16>(p, 5))},
};
const Rows registered(kRows);

} // namespace
