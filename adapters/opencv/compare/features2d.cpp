// Calls that reach the hooks of features2d.
#include "operation.h"

#include <opencv2/features2d.hpp>

namespace {

// The corners as a matrix, of which all results have the same rows.
Operation corners(const char* name, bool suppress)
{
    return {name, [=](Draw& draw) {
                const cv::Mat a = draw.source(CV_8U);
                const int threshold = draw.among({10, 20, 1, 0, 5, 40, 100, 254, 255, 300, -3});
                const auto type = draw.among({cv::FastFeatureDetector::TYPE_9_16, cv::FastFeatureDetector::TYPE_9_16,
                                              cv::FastFeatureDetector::TYPE_7_12});
                cv::Mat result = cv::Mat::zeros(int(a.total()) + 1, 7, CV_32F);
                std::vector<cv::KeyPoint> points;
                return Call{[=]() mutable {
                                cv::FAST(a, points, threshold, suppress, type);
                                result.at<float>(0, 0) = float(points.size());
                                for (size_t i = 0; i < points.size(); i++) {
                                    const cv::KeyPoint& p = points[i];
                                    float* row = result.ptr<float>(int(i) + 1);
                                    row[0] = p.pt.x;
                                    row[1] = p.pt.y;
                                    row[2] = p.size;
                                    row[3] = p.angle;
                                    row[4] = p.response;
                                    row[5] = float(p.octave);
                                    row[6] = float(p.class_id);
                                }
                            },
                            {result},
                            a.total()};
            }};
}

} // namespace

std::vector<Operation> features2dOperations()
{
    return {
        corners("FAST", true),
        corners("FASTAll", false),
    };
}
