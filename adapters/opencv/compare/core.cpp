// Calls that reach the hooks of core.
#include "operation.h"

namespace {

using Binary = void (*)(const cv::Mat&, const cv::Mat&, cv::Mat&);

// An operation on two pictures of one of the depths, with any number of channels; sometimes in place.
Operation binary(const char* name, int depth, Binary function)
{
    return {name, [=](Draw& draw) {
                const int type = CV_MAKETYPE(depth, draw.among({1, 3, 2, 4}));
                const cv::Mat a = draw.source(type), b = draw.source(type);
                Draw::Destination to = draw.destination(type);
                cv::Mat dst = draw.among({0, 0, 1}) ? a : to.region;
                return Call{[=]() mutable { function(a, b, dst); }, {to.whole, a}, a.total() * a.elemSize()};
            }};
}

} // namespace

std::vector<Operation> coreOperations()
{
    return {
        binary("absdiff8u", CV_8U, [](const cv::Mat& a, const cv::Mat& b, cv::Mat& dst) { cv::absdiff(a, b, dst); }),
    };
}
