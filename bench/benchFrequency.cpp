// Cosine and Fourier transforms, wavelets. OpenCV transforms floats: its columns convert there and back. It takes
// cosine transforms a block at a time, and has no wavelets.
#include "bench.h"

#include <ravik/frequency.h>

namespace {

using namespace bench;

constexpr u32 kSide = 512;
constexpr Picture kSquare = {kSide * kSide, 1};

#if RVK_BENCH_OPENCV
using OfFloats = void (*)(cv::InputArray, cv::OutputArray, int);

void byBlocks(const cv::Mat& src, cv::Mat dst, OfFloats function)
{
    cv::Mat in, out;
    for (int y = 0; y + 8 <= src.rows; y += 8)
        for (int x = 0; x + 8 <= src.cols; x += 8) {
            const cv::Rect block(x, y, 8, 8);
            src(block).convertTo(in, CV_32F);
            function(in, out, 0);
            out.convertTo(dst(block), dst.type());
        }
}

cv::Mat square(f32* data, int channels)
{
    return cv::Mat(kSide, kSide, CV_MAKETYPE(CV_32F, channels), data);
}

void fourier(const Picture& p)
{
    cv::Mat in = square(p.out<f32>(1), 1);
    p.matIn<u8>(cv::Size(kSide, kSide)).convertTo(in, CV_32F);
    cv::dft(in, square(p.out<f32>(), 2), cv::DFT_COMPLEX_OUTPUT);
}

void inverseFourier(const Picture& p)
{
    cv::Mat out = square(p.out<f32>(1), 1);
    cv::dft(p.matIn<f32>(cv::Size(kSide, kSide), 0, 2), out, cv::DFT_INVERSE | cv::DFT_SCALE | cv::DFT_REAL_OUTPUT);
    out.convertTo(p.matOut<u8>(cv::Size(kSide, kSide)), CV_8U);
}
#endif

constexpr Row kRows[] = {
    {"rvkDCTu8", "DCT 8x8 f32", traffic(1, 2), RAVIK(rvkDCTu8(p.in<u8>(), p.width, p.height, 0, p.out<s16>(), 0)),
     OPENCV(byBlocks(p.matIn<u8>(), p.matOut<s16>(), cv::dct))},
    {"rvkIDCTs16", nullptr, traffic(2, 1), RAVIK(rvkIDCTs16(p.in<s16>(), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV(byBlocks(p.matIn<s16>(), p.matOut<u8>(), cv::idct))},
    {"rvkFFTu8", "FFT real f32", traffic(1, 8), RAVIK(rvkFFTu8(p.in<u8>(), kSide, kSide, 0, p.out<f32>(), 0)),
     OPENCV(fourier(p)), nullptr, kSquare},
    {"rvkIFFTf32", "FFT complex f32", traffic(8, 1), RAVIK(rvkIFFTf32(p.in<f32>(), kSide, kSide, 0, p.out<u8>(), 0)),
     OPENCV(inverseFourier(p)), nullptr, kSquare},
    {"rvkDWT53Tabs16", nullptr, traffic(2, 2),
     RAVIK(rvkDWT53Tabs16(p.in<s16>(), p.width, p.height, 0, p.out<s16>(), 0))},
    {"rvkIDWT53Tabs16", nullptr, traffic(2, 2),
     RAVIK(rvkIDWT53Tabs16(p.in<s16>(), p.width, p.height, 0, p.out<s16>(), 0))},
    {"rvkDWT53TabTransposes16", nullptr, traffic(2, 2),
     RAVIK(rvkDWT53TabTransposes16(p.in<s16>(), p.width, p.height, 0, p.out<s16>(), 0))},
    {"rvkIDWT53TabTransposes16", nullptr, traffic(2, 2),
     RAVIK(rvkIDWT53TabTransposes16(p.in<s16>(), p.width, p.height, 0, p.out<s16>(), 0))},
    {"rvkDWTHaaru8", nullptr, traffic(1, 2), RAVIK(rvkDWTHaaru8(p.in<u8>(), p.width, p.height, 0, p.out<s16>(), 0))},
    {"rvkIDWTHaars16", nullptr, traffic(2, 1),
     RAVIK(rvkIDWTHaars16(p.in<s16>(), p.width, p.height, 0, p.out<u8>(), 0))},
    {"rvkDWTHaarTransposeu8", nullptr, traffic(1, 2),
     RAVIK(rvkDWTHaarTransposeu8(p.in<u8>(), p.width, p.height, 0, p.out<s16>(), 0))},
    {"rvkIDWTHaarTransposes16", nullptr, traffic(2, 1),
     RAVIK(rvkIDWTHaarTransposes16(p.in<s16>(), p.width, p.height, 0, p.out<u8>(), 0))},
};
const Rows registered(kRows);

} // namespace
