// Element-wise arithmetic. OpenCV's products round halves to even, ours upward; the work is the same.
#include "bench.h"

#include <ravik/arithm.h>

namespace {

using namespace bench;

constexpr u32 kSaturate = RAVIK_POLICY_SATURATE;
constexpr u32 kWrap = RAVIK_POLICY_WRAP;

#if RVK_BENCH_OPENCV
cv::Mat noMask()
{
    return {};
}
#endif

// A function of libyuv on four channels of a pixel, here four pixels.
template <class Function>
void asArgb(Function function, const Picture& p)
{
    const int bytes = static_cast<int>(p.width);
    function(p.in<u8>(0), bytes, p.in<u8>(1), bytes, p.out<u8>(), bytes, bytes / 4, static_cast<int>(p.height));
}

#if RVK_BENCH_LIBYUV
void interpolate(const Picture& p, int weight2)
{
    const int width = static_cast<int>(p.width);
    libyuv::InterpolatePlane(p.in<u8>(0), width, p.in<u8>(1), width, p.out<u8>(), width, width,
                             static_cast<int>(p.height), weight2);
}
#endif

constexpr Row kRows[] = {
    {"rvkAddScalarf32", nullptr, streaming(4, 4),
     RAVIK(rvkAddScalarf32(p.in<f32>(), p.width, p.height, 0, 2.5f, p.out<f32>(), 0)),
     OPENCV(cv::add(p.matIn<f32>(), cv::Scalar(2.5), p.matOut<f32>()))},
    {"rvkAddScalars16", nullptr, streaming(2, 2),
     RAVIK(rvkAddScalars16(p.in<s16>(), p.width, p.height, 0, 1000, p.out<s16>(), 0)),
     OPENCV(cv::add(p.matIn<s16>(), cv::Scalar(1000), p.matOut<s16>()))},
    {"rvkAddSquaredu8u16", nullptr, streaming(3, 2),
     RAVIK(rvkAddSquaredu8u16(p.in<u8>(0), p.width, p.height, 0, p.in<u16>(1), 0, 4, p.out<u16>(), 0))},
    {"rvkAddWeightedu8", "addWeighted u8", streaming(2, 1),
     RAVIK(rvkAddWeightedu8(p.in<u8>(0), p.width, p.height, 0, p.in<u8>(1), 0, 0.25f, 0.75f, p.out<u8>(), 0)),
     OPENCV(cv::addWeighted(p.matIn<u8>(0), 0.25, p.matIn<u8>(1), 0.75, 0, p.matOut<u8>())),
     LIBYUV(interpolate(p, 192))},
    {"rvkAddWeightedu8, sharpen", nullptr, traffic(2, 1),
     RAVIK(rvkAddWeightedu8(p.in<u8>(0), p.width, p.height, 0, p.in<u8>(1), 0, 1.5f, -0.5f, p.out<u8>(), 0)),
     OPENCV(cv::addWeighted(p.matIn<u8>(0), 1.5, p.matIn<u8>(1), -0.5, 0, p.matOut<u8>()))},
    {"rvkAddf32", nullptr, streaming(8, 4),
     RAVIK(rvkAddf32(p.in<f32>(0), p.width, p.height, 0, p.in<f32>(1), 0, p.out<f32>(), 0)),
     OPENCV(cv::add(p.matIn<f32>(0), p.matIn<f32>(1), p.matOut<f32>()))},
    {"rvkAdds16", "add s16 saturate", streaming(4, 2),
     RAVIK(rvkAdds16(p.in<s16>(0), p.width, p.height, 0, p.in<s16>(1), 0, p.out<s16>(), 0)),
     OPENCV(cv::add(p.matIn<s16>(0), p.matIn<s16>(1), p.matOut<s16>()))},
    {"rvkAdds16_v2, wrap", nullptr, streaming(4, 2),
     RAVIK(rvkAdds16_v2(p.in<s16>(0), p.width, p.height, 0, p.in<s16>(1), 0, kWrap, p.out<s16>(), 0))},
    {"rvkAddu16u8u16", nullptr, streaming(3, 2),
     RAVIK(rvkAddu16u8u16(p.in<u16>(0), p.width, p.height, 0, p.in<u8>(1), 0, kSaturate, p.out<u16>(), 0)),
     OPENCV(cv::add(p.matIn<u16>(0), p.matIn<u8>(1), p.matOut<u16>(), noMask(), CV_16U))},
    {"rvkAddu8", "add u8 saturate", streaming(2, 1),
     RAVIK(rvkAddu8(p.in<u8>(0), p.width, p.height, 0, p.in<u8>(1), 0, kSaturate, p.out<u8>(), 0)),
     OPENCV(cv::add(p.matIn<u8>(0), p.matIn<u8>(1), p.matOut<u8>())), LIBYUV(asArgb(libyuv::ARGBAdd, p))},
    {"rvkAddu8u16", nullptr, streaming(2, 2),
     RAVIK(rvkAddu8u16(p.in<u8>(0), p.width, p.height, 0, p.in<u8>(1), 0, p.out<u16>(), 0)),
     OPENCV(cv::add(p.matIn<u8>(0), p.matIn<u8>(1), p.matOut<u16>(), noMask(), CV_16U))},
    {"rvkAverages32", nullptr, streaming(4, 0), RAVIK(rvkAverages32(p.in<s32>(), p.width, p.height, 0, p.out<f32>())),
     OPENCV(*p.out<f32>() = static_cast<f32>(cv::mean(p.matIn<s32>())[0]))},
    {"rvkAverageu8", "mean u8", streaming(1, 0), RAVIK(rvkAverageu8(p.in<u8>(), p.width, p.height, 0, p.out<f32>())),
     OPENCV(*p.out<f32>() = static_cast<f32>(cv::mean(p.matIn<u8>())[0]))},
    {"rvkElementMultiplyf32", nullptr, streaming(8, 4),
     RAVIK(rvkElementMultiplyf32(p.in<f32>(0), p.width, p.height, 0, p.in<f32>(1), 0, p.out<f32>(), 0)),
     OPENCV(cv::multiply(p.matIn<f32>(0), p.matIn<f32>(1), p.matOut<f32>()))},
    {"rvkElementMultiplys16", nullptr, streaming(4, 2),
     RAVIK(rvkElementMultiplys16(p.in<s16>(0), p.width, p.height, 0, p.in<s16>(1), 0, kSaturate, 12, p.out<s16>(), 0)),
     OPENCV(cv::multiply(p.matIn<s16>(0), p.matIn<s16>(1), p.matOut<s16>(), 1.0 / 4096))},
    {"rvkElementMultiplys16, scale 0", "multiply s16 saturate", streaming(4, 2),
     RAVIK(rvkElementMultiplys16(p.in<s16>(0), p.width, p.height, 0, p.in<s16>(1), 0, kSaturate, 0, p.out<s16>(), 0)),
     OPENCV(cv::multiply(p.matIn<s16>(0), p.matIn<s16>(1), p.matOut<s16>()))},
    {"rvkElementMultiplyu8", "multiply u8 scaled", streaming(2, 1),
     RAVIK(rvkElementMultiplyu8(p.in<u8>(0), p.width, p.height, 0, p.in<u8>(1), 0, kSaturate, 8, p.out<u8>(), 0)),
     OPENCV(cv::multiply(p.matIn<u8>(0), p.matIn<u8>(1), p.matOut<u8>(), 1.0 / 256)),
     LIBYUV(asArgb(libyuv::ARGBMultiply, p))},
    {"rvkElementMultiplyu8, scale 0", "multiply u8 saturate", streaming(2, 1),
     RAVIK(rvkElementMultiplyu8(p.in<u8>(0), p.width, p.height, 0, p.in<u8>(1), 0, kSaturate, 0, p.out<u8>(), 0)),
     OPENCV(cv::multiply(p.matIn<u8>(0), p.matIn<u8>(1), p.matOut<u8>()))},
    {"rvkElementMultiplyu8s16", nullptr, streaming(2, 2),
     RAVIK(rvkElementMultiplyu8s16(p.in<u8>(0), p.width, p.height, 0, p.in<u8>(1), 0, kSaturate, 2, p.out<s16>(), 0)),
     OPENCV(cv::multiply(p.matIn<u8>(0), p.matIn<u8>(1), p.matOut<s16>(), 0.25, CV_16S))},
    {"rvkElementMultiplyu8u16", nullptr, streaming(2, 2),
     RAVIK(rvkElementMultiplyu8u16(p.in<u8>(0), p.width, p.height, 0, p.in<u8>(1), 0, p.out<u16>(), 0)),
     OPENCV(cv::multiply(p.matIn<u8>(0), p.matIn<u8>(1), p.matOut<u16>(), 1, CV_16U))},
    {"rvkMultiplyScalarf32", nullptr, streaming(4, 4),
     RAVIK(rvkMultiplyScalarf32(p.in<f32>(), p.width, p.height, 0, 2.5f, p.out<f32>(), 0)),
     OPENCV(cv::multiply(p.matIn<f32>(), cv::Scalar(2.5), p.matOut<f32>()))},
    {"rvkMultiplyScalars16", nullptr, streaming(2, 2),
     RAVIK(rvkMultiplyScalars16(p.in<s16>(), p.width, p.height, 0, 1000, 12, p.out<s16>(), 0)),
     OPENCV(cv::multiply(p.matIn<s16>(), cv::Scalar(1000), p.matOut<s16>(), 1.0 / 4096))},
    {"rvkSubtracts16", "subtract s16 saturate", streaming(4, 2),
     RAVIK(rvkSubtracts16(p.in<s16>(0), p.width, p.height, 0, p.in<s16>(1), 0, kSaturate, p.out<s16>(), 0)),
     OPENCV(cv::subtract(p.matIn<s16>(0), p.matIn<s16>(1), p.matOut<s16>()))},
    {"rvkSubtractu8", "subtract u8 saturate", streaming(2, 1),
     RAVIK(rvkSubtractu8(p.in<u8>(0), p.width, p.height, 0, p.in<u8>(1), 0, kSaturate, p.out<u8>(), 0)),
     OPENCV(cv::subtract(p.matIn<u8>(0), p.matIn<u8>(1), p.matOut<u8>())), LIBYUV(asArgb(libyuv::ARGBSubtract, p))},
    {"rvkSubtractu8s16", nullptr, streaming(2, 2),
     RAVIK(rvkSubtractu8s16(p.in<u8>(0), p.width, p.height, 0, p.in<u8>(1), 0, p.out<s16>(), 0)),
     OPENCV(cv::subtract(p.matIn<u8>(0), p.matIn<u8>(1), p.matOut<s16>(), noMask(), CV_16S))},
};
const Rows registered(kRows);

} // namespace
