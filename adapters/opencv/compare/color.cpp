// Calls that reach the hooks of imgproc for colours.
#include "operation.h"

#include <opencv2/imgproc.hpp>

namespace {

// Of bytes first, sometimes of other elements.
Operation conversion(const char* name, int srcChannels, int dstChannels, std::vector<int> depths,
                     std::vector<int> codes)
{
    return {
        name, [=](Draw& draw) {
            const int depth = depths[draw.between(0, int(depths.size()) - 1, 0)];
            const cv::Mat src = draw.source(CV_MAKETYPE(depth, srcChannels));
            const Draw::Destination to = draw.destination(CV_MAKETYPE(depth, dstChannels));
            cv::Mat dst = srcChannels == dstChannels && draw.among({0, 0, 1}) ? src : to.region;
            const int code = codes[draw.between(0, int(codes.size()) - 1, 0)];
            return Call{[=]() mutable { cv::cvtColor(src, dst, code); }, {to.whole, src}, src.total() * src.elemSize()};
        }};
}

} // namespace

std::vector<Operation> colorOperations()
{
    const std::vector<int> any = {CV_8U, CV_8U, CV_8U, CV_16U, CV_32F};
    return {
        conversion("cvtBGRtoBGR.3to3", 3, 3, any, {cv::COLOR_BGR2RGB}),
        conversion("cvtBGRtoBGR.3to4", 3, 4, any, {cv::COLOR_BGR2BGRA}),
        conversion("cvtBGRtoBGR.3to4swapped", 3, 4, any, {cv::COLOR_BGR2RGBA}),
        conversion("cvtBGRtoBGR.4to3", 4, 3, any, {cv::COLOR_BGRA2BGR}),
        conversion("cvtBGRtoBGR.4to3swapped", 4, 3, any, {cv::COLOR_BGRA2RGB}),
        conversion("cvtBGRtoBGR5x5.3", 3, 2, {CV_8U},
                   {cv::COLOR_BGR2BGR565, cv::COLOR_RGB2BGR565, cv::COLOR_BGR2BGR555}),
        conversion("cvtBGRtoBGR5x5.4", 4, 2, {CV_8U},
                   {cv::COLOR_BGRA2BGR565, cv::COLOR_RGBA2BGR565, cv::COLOR_RGBA2BGR555}),
        conversion("cvtGraytoBGR", 1, 3, any, {cv::COLOR_GRAY2BGR}),
    };
}
