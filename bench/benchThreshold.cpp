// Thresholds.
#include "bench.h"

#include <ravik/threshold.h>

namespace {

using namespace bench;

constexpr Row kRows[] = {
    {"rvkFilterThresholdu8", "threshold u8", streaming(1, 1),
     RAVIK(rvkFilterThresholdu8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, 100)),
     OPENCV(cv::threshold(p.matIn<u8>(), p.matOut<u8>(), 99, 255, cv::THRESH_BINARY))},
    {"rvkFilterThresholdu8_v2", "threshold u8", streaming(1, 1),
     RAVIK(rvkFilterThresholdu8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, 100)),
     OPENCV(cv::threshold(p.matIn<u8>(), p.matOut<u8>(), 99, 255, cv::THRESH_BINARY))},
    {"rvkFilterThresholdu8_v3", "threshold u8", streaming(1, 1),
     RAVIK(rvkFilterThresholdu8_v3(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, 100, 200, 50)),
     OPENCV(cv::threshold(p.matIn<u8>(), p.matOut<u8>(), 100, 200, cv::THRESH_BINARY))},
    {"rvkFilterThresholdRangeu8", "in range u8", streaming(1, 1),
     RAVIK(rvkFilterThresholdRangeu8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, 100, 150)),
     OPENCV(cv::inRange(p.matIn<u8>(), cv::Scalar(100), cv::Scalar(150), p.matOut<u8>()))},
    {"rvkFilterThresholdRangeu8_v2", "in range u8", streaming(1, 1),
     RAVIK(rvkFilterThresholdRangeu8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, 100, 150, 200, 50)),
     OPENCV(cv::inRange(p.matIn<u8>(), cv::Scalar(100), cv::Scalar(150), p.matOut<u8>()))},
    {"rvkFilterThresholdOtsuu8", "threshold Otsu u8", trafficByContent(1, 1),
     RAVIK(rvkFilterThresholdOtsuu8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, 0)),
     OPENCV(cv::threshold(p.matIn<u8>(), p.matOut<u8>(), 0, 255, cv::THRESH_BINARY | cv::THRESH_OTSU))},
    {"rvkAdaptiveThresholdGaussian3x3u8", nullptr, traffic(1, 1),
     RAVIK(rvkAdaptiveThresholdGaussian3x3u8(p.in<u8>(), p.width, p.height, 0, 255, 0, 5, p.out<u8>(), 0)),
     OPENCV(cv::adaptiveThreshold(p.matIn<u8>(), p.matOut<u8>(), 255, cv::ADAPTIVE_THRESH_GAUSSIAN_C, cv::THRESH_BINARY,
                                  3, 5))},
    {"rvkAdaptiveThresholdGaussian5x5u8", "adaptive threshold gaussian 5x5", traffic(1, 1),
     RAVIK(rvkAdaptiveThresholdGaussian5x5u8(p.in<u8>(), p.width, p.height, 0, 255, 0, 5, p.out<u8>(), 0)),
     OPENCV(cv::adaptiveThreshold(p.matIn<u8>(), p.matOut<u8>(), 255, cv::ADAPTIVE_THRESH_GAUSSIAN_C, cv::THRESH_BINARY,
                                  5, 5))},
    {"rvkAdaptiveThresholdGaussian11x11u8", nullptr, traffic(1, 1),
     RAVIK(rvkAdaptiveThresholdGaussian11x11u8(p.in<u8>(), p.width, p.height, 0, 255, 0, 5, p.out<u8>(), 0)),
     OPENCV(cv::adaptiveThreshold(p.matIn<u8>(), p.matOut<u8>(), 255, cv::ADAPTIVE_THRESH_GAUSSIAN_C, cv::THRESH_BINARY,
                                  11, 5))},
    {"rvkAdaptiveThresholdMean3x3u8", nullptr, traffic(1, 1),
     RAVIK(rvkAdaptiveThresholdMean3x3u8(p.in<u8>(), p.width, p.height, 0, 255, 0, 5, p.out<u8>(), 0)),
     OPENCV(cv::adaptiveThreshold(p.matIn<u8>(), p.matOut<u8>(), 255, cv::ADAPTIVE_THRESH_MEAN_C, cv::THRESH_BINARY, 3,
                                  5))},
    {"rvkAdaptiveThresholdMean5x5u8", "adaptive threshold mean 5x5", traffic(1, 1),
     RAVIK(rvkAdaptiveThresholdMean5x5u8(p.in<u8>(), p.width, p.height, 0, 255, 0, 5, p.out<u8>(), 0)),
     OPENCV(cv::adaptiveThreshold(p.matIn<u8>(), p.matOut<u8>(), 255, cv::ADAPTIVE_THRESH_MEAN_C, cv::THRESH_BINARY, 5,
                                  5))},
    {"rvkAdaptiveThresholdMean11x11u8", nullptr, traffic(1, 1),
     RAVIK(rvkAdaptiveThresholdMean11x11u8(p.in<u8>(), p.width, p.height, 0, 255, 0, 5, p.out<u8>(), 0)),
     OPENCV(cv::adaptiveThreshold(p.matIn<u8>(), p.matOut<u8>(), 255, cv::ADAPTIVE_THRESH_MEAN_C, cv::THRESH_BINARY, 11,
                                  5))},
};
const Rows registered(kRows);

} // namespace
