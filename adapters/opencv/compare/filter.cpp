// Calls that reach the hooks of imgproc for filters and edges.
#include "operation.h"

#include <opencv2/imgproc.hpp>

namespace {

// One picture in, one out; sometimes in place. `function` draws its parameters and returns the call.
using Unary = std::function<void(const cv::Mat&, cv::Mat&)>;

Operation unary(const char* name, int srcType, int dstType, std::function<Unary(Draw&)> prepare)
{
    return {name, [=](Draw& draw) {
                const cv::Mat src = draw.source(srcType);
                const Draw::Destination to = draw.destination(dstType);
                cv::Mat dst = srcType == dstType && draw.among({0, 0, 1}) ? src : to.region;
                const Unary function = prepare(draw);
                return Call{[=]() mutable { function(src, dst); }, {to.whole, src}, src.total() * src.elemSize()};
            }};
}

int border(Draw& draw)
{
    const int type =
        draw.among({cv::BORDER_REFLECT_101, cv::BORDER_REPLICATE, cv::BORDER_CONSTANT, cv::BORDER_REFLECT});
    return draw.among({type, type | cv::BORDER_ISOLATED});
}

Unary morphology(Draw& draw,
                 void (*function)(cv::InputArray, cv::OutputArray, cv::InputArray, cv::Point, int, int,
                                  const cv::Scalar&),
                 int sizeToTime)
{
    const cv::Size size(draw.between(1, 17, sizeToTime), draw.between(1, 17, sizeToTime));
    const cv::Mat kernel = cv::getStructuringElement(
        draw.among({cv::MORPH_RECT, cv::MORPH_RECT, cv::MORPH_CROSS}),
        draw.among({cv::Size(size.width, size.width), cv::Size(size.width, size.width), size}));
    const int iterations = draw.among({1, 1, 2, 3});
    const int outside = draw.among({int(cv::BORDER_CONSTANT), border(draw)});
    const cv::Scalar value = draw.among({cv::morphologyDefaultBorderValue(), cv::Scalar::all(draw.between(0, 255, 0))});
    return [=](const cv::Mat& src, cv::Mat& dst) {
        function(src, dst, kernel, cv::Point(-1, -1), iterations, outside, value);
    };
}

Unary sobel(Draw& draw, int ksize, bool alongX)
{
    const int outside = border(draw);
    return
        [=](const cv::Mat& src, cv::Mat& dst) { cv::Sobel(src, dst, CV_16S, alongX, !alongX, ksize, 1, 0, outside); };
}

Unary canny(Draw& draw, int ksize, bool isEuclidean)
{
    const double scale = ksize == 3 ? 1 : ksize == 5 ? 12 : 160;
    const double low = draw.between(-10., 150., 40.) * scale, high = draw.between(0., 300., 100.) * scale;
    const bool whole = draw.among({true, true, false});
    return [=](const cv::Mat& src, cv::Mat& dst) {
        cv::Canny(src, dst, whole ? cvRound(low) : low, whole ? cvRound(high) : high, ksize, isEuclidean);
    };
}

Unary wholeKernel(Draw& draw, int depth)
{
    const cv::Size size(draw.between(1, 6, 2) * 2 - 1, draw.between(1, 6, 2) * 2 - 1);
    cv::Mat kernel = draw.noise(CV_32F, size, -9, 10).clone();
    const float factor = draw.among({1.f, 1.f, 0.3f}); // weights that are not whole are OpenCV's own
    for (auto weight = kernel.begin<float>(); weight != kernel.end<float>(); ++weight)
        *weight = std::floor(*weight) * factor;
    const int outside = border(draw);
    return
        [=](const cv::Mat& src, cv::Mat& dst) { cv::filter2D(src, dst, depth, kernel, cv::Point(-1, -1), 0, outside); };
}

} // namespace

std::vector<Operation> filterOperations()
{
    std::vector<Operation> all = {
        unary("filter2D8u", CV_8U, CV_8U, [](Draw& draw) { return wholeKernel(draw, CV_8U); }),
        unary("filter2D16s", CV_8U, CV_16S, [](Draw& draw) { return wholeKernel(draw, CV_16S); }),
        unary("erode3x3", CV_8U, CV_8U, [](Draw& draw) { return morphology(draw, cv::erode, 3); }),
        unary("dilate3x3", CV_8U, CV_8U, [](Draw& draw) { return morphology(draw, cv::dilate, 3); }),
        unary("erode9x9", CV_8U, CV_8U, [](Draw& draw) { return morphology(draw, cv::erode, 9); }),
        unary("dilate9x9", CV_8U, CV_8U, [](Draw& draw) { return morphology(draw, cv::dilate, 9); }),
        unary("medianBlur3x3", CV_8U, CV_8U,
              [](Draw&) { return [](const cv::Mat& src, cv::Mat& dst) { cv::medianBlur(src, dst, 3); }; }),
        unary("threshold8u", CV_8U, CV_8U,
              [](Draw& draw) {
                  const double limit = draw.between(-20., 280., 100.), value = draw.between(0., 300., 255.);
                  const int type = draw.among<int>({cv::THRESH_BINARY, cv::THRESH_BINARY_INV, cv::THRESH_TRUNC,
                                                    cv::THRESH_BINARY | cv::THRESH_OTSU});
                  return [=](const cv::Mat& src, cv::Mat& dst) { cv::threshold(src, dst, limit, value, type); };
              }),
        unary("boxFilter3x3", CV_8U, CV_8U,
              [](Draw& draw) {
                  return [outside = border(draw)](const cv::Mat& src, cv::Mat& dst) {
                      cv::blur(src, dst, cv::Size(3, 3), cv::Point(-1, -1), outside);
                  };
              }),
        {"pyrDown",
         [](Draw& draw) {
             const cv::Mat src = draw.source(CV_8U);
             const Draw::Destination to = draw.destination(CV_8U, cv::Size((src.cols + 1) / 2, (src.rows + 1) / 2));
             const int outside = draw.among({cv::BORDER_REFLECT_101, cv::BORDER_REPLICATE, cv::BORDER_REFLECT});
             return Call{[=] { cv::pyrDown(src, to.region, cv::Size(), outside); }, {to.whole}, src.total()};
         }},
    };
    for (int ksize : {3, 5, 7}) {
        const std::string size = std::to_string(ksize) + "x" + std::to_string(ksize);
        for (bool alongX : {true, false})
            all.push_back(unary(((alongX ? "sobelX" : "sobelY") + size).c_str(), CV_8U, CV_16S,
                                [=](Draw& draw) { return sobel(draw, ksize, alongX); }));
        for (bool isEuclidean : {false, true})
            all.push_back(unary(((isEuclidean ? "cannyL2_" : "cannyL1_") + size).c_str(), CV_8U, CV_8U,
                                [=](Draw& draw) { return canny(draw, ksize, isEuclidean); }));
    }
    return all;
}
