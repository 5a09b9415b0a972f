// Calls that reach the hooks of imgproc for colours.
#include "operation.h"

#include <opencv2/imgproc.hpp>

namespace {

Operation conversion(const char* name, int srcType, int dstType, std::initializer_list<int> codes)
{
    const std::vector<int> all(codes);
    return {name, [=](Draw& draw) {
                const cv::Mat src = draw.source(srcType);
                const Draw::Destination to = draw.destination(dstType);
                cv::Mat dst = srcType == dstType && draw.among({0, 0, 1}) ? src : to.region;
                const int code = all[draw.between(0, int(all.size()) - 1, 0)];
                return Call{[=]() mutable { cv::cvtColor(src, dst, code); },
                            {to.whole, dst, src},
                            src.total() * src.elemSize()};
            }};
}

} // namespace

std::vector<Operation> colorOperations()
{
    return {
        conversion("cvtBGRtoBGR.3to3", CV_8UC3, CV_8UC3, {cv::COLOR_BGR2RGB}),
        conversion("cvtBGRtoBGR.3to4", CV_8UC3, CV_8UC4, {cv::COLOR_BGR2BGRA}),
        conversion("cvtBGRtoBGR.3to4swapped", CV_8UC3, CV_8UC4, {cv::COLOR_BGR2RGBA}),
        conversion("cvtBGRtoBGR.4to3", CV_8UC4, CV_8UC3, {cv::COLOR_BGRA2BGR}),
        conversion("cvtBGRtoBGR.4to3swapped", CV_8UC4, CV_8UC3, {cv::COLOR_BGRA2RGB}),
        conversion("cvtBGRtoBGR.4to4swapped", CV_8UC4, CV_8UC4, {cv::COLOR_BGRA2RGBA}),
        conversion("cvtBGRtoBGR.16u", CV_16UC3, CV_16UC3, {cv::COLOR_BGR2RGB}),
        conversion("cvtBGRtoBGR5x5.3", CV_8UC3, CV_8UC2,
                   {cv::COLOR_BGR2BGR565, cv::COLOR_RGB2BGR565, cv::COLOR_BGR2BGR555}),
        conversion("cvtBGRtoBGR5x5.4", CV_8UC4, CV_8UC2,
                   {cv::COLOR_BGRA2BGR565, cv::COLOR_RGBA2BGR565, cv::COLOR_RGBA2BGR555}),
        conversion("cvtGraytoBGR.3", CV_8UC1, CV_8UC3, {cv::COLOR_GRAY2BGR}),
        conversion("cvtGraytoBGR.4", CV_8UC1, CV_8UC4, {cv::COLOR_GRAY2BGRA}),
    };
}
