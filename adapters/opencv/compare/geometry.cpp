// Calls that reach the hooks of imgproc for resizing, warps and sums.
#include "operation.h"

#include <opencv2/imgproc.hpp>

#include <cmath>

namespace {

using Unary = std::function<void(const cv::Mat&, cv::Mat&)>;

using TargetSize = std::function<cv::Size(Draw&, cv::Size& sourceSize)>;

template <typename T>
T among(Draw& draw, const std::vector<T>& choices)
{
    return choices[draw.between(0, int(choices.size()) - 1, 0)];
}

// A picture of one size from one of another.
Operation resizing(const char* name, std::vector<int> types, std::vector<int> interpolations, TargetSize targetSize,
                   double within = 0)
{
    return {name,
            [=](Draw& draw) {
                const int type = among(draw, types), interpolation = among(draw, interpolations);
                cv::Size sourceSize = draw.size();
                const cv::Size size = targetSize(draw, sourceSize);
                const cv::Mat src = draw.source(type, sourceSize);
                const Draw::Destination to = draw.destination(type, size);
                cv::Mat dst = to.region;
                return Call{[=]() mutable { cv::resize(src, dst, size, 0, 0, interpolation); },
                            {to.whole, src},
                            src.total() * src.elemSize()};
            },
            within};
}

// By a factor instead of a size: odd columns and rows are left over.
Operation resizingByFactor(const char* name, std::vector<int> interpolations, std::vector<double> factors,
                           double within = 0)
{
    return {name,
            [=](Draw& draw) {
                const cv::Mat src = draw.source(CV_8UC1);
                const double factor = among(draw, factors);
                const int interpolation = among(draw, interpolations);
                const cv::Size size(std::max(1, cvRound(src.cols * factor)), std::max(1, cvRound(src.rows * factor)));
                const Draw::Destination to = draw.destination(CV_8UC1, size);
                cv::Mat dst = to.region;
                return Call{[=]() mutable { cv::resize(src, dst, {}, factor, factor, interpolation); },
                            {to.whole, src},
                            src.total() * src.elemSize()};
            },
            within};
}

cv::Size times(cv::Size size, int x, int y)
{
    return {size.width * x, size.height * y};
}

cv::Size half(Draw& draw, cv::Size& source)
{
    const cv::Size size((draw.size().width + 1) / 2, (draw.size().height + 1) / 2);
    source = times(size, 2, 2);
    return size;
}

cv::Size byWhole(Draw& draw, cv::Size& source)
{
    const cv::Size size(draw.size().width / 3 + 1, draw.size().height / 3 + 1);
    source = times(size, draw.among({3, 1, 3, 4, 5, 7}), draw.among({3, 3, 1, 4, 5}));
    return size;
}

cv::Size smaller(Draw& draw, cv::Size& source)
{
    return {draw.between(1, source.width, source.width * 2 / 3), draw.between(1, source.height, source.height * 2 / 3)};
}

cv::Size any(Draw& draw, cv::Size& source)
{
    return {draw.between(1, 2 * source.width + 3, source.width * 2 / 3),
            draw.between(1, 2 * source.height + 3, source.height * 2 / 3)};
}

cv::Size larger(Draw& draw, cv::Size& source)
{
    return times(source, draw.among({2, 3, 2, 4, 5}), draw.among({2, 3, 4, 7}));
}

// By multiples of a quarter, and by 2 and 4 upwards; sometimes by other numbers.
cv::Size byQuarters(Draw& draw, cv::Size& source)
{
    if (draw.among({0, 0, 0, 1}))
        return any(draw, source);
    const cv::Size base((draw.size().width + 3) / 4, (draw.size().height + 3) / 4);
    source = times(base, draw.among({6, 1, 2, 3, 5, 7, 8, 13}), draw.among({6, 1, 2, 4, 5, 9, 8}));
    return times(base, 4, 4);
}

int border(Draw& draw)
{
    return draw.among({cv::BORDER_CONSTANT, cv::BORDER_REPLICATE, cv::BORDER_REFLECT_101});
}

// A turned, stretched and shifted picture: from the destination to the source.
cv::Matx23d affine(Draw& draw, cv::Size size)
{
    const double angle = draw.between(-3.2, 3.2, 0.3), zoom = std::exp(draw.between(-1.5, 1.5, 0.1));
    const double stretch = draw.between(0.5, 2., 1.);
    const double cosine = std::cos(angle) * zoom, sine = std::sin(angle) * zoom;
    const double shiftX = draw.between(-0.3, 0.3, 0.) * size.width, shiftY = draw.between(-0.3, 0.3, 0.) * size.height;
    return {cosine * stretch,
            -sine,
            shiftX + (1 - cosine * stretch) * size.width / 2 + sine * size.height / 2, //
            sine,
            cosine,
            shiftY + (1 - cosine) * size.height / 2 - sine * size.width / 2};
}

cv::Matx33d perspective(Draw& draw, cv::Size size)
{
    const cv::Matx23d m = affine(draw, size);
    return {m(0, 0),
            m(0, 1),
            m(0, 2),
            m(1, 0),
            m(1, 1),
            m(1, 2),
            draw.between(-1.2, 1.2, 0.3) / size.width,
            draw.between(-1.2, 1.2, -0.2) / size.height,
            1};
}

// Positions of OpenCV are rounded to 1/32 of a pixel: half of that in each direction makes 255 / 32 grey levels, and
// results are rounded. Its own tests allow 16.
constexpr double kWithinOfWarps = 11;

Operation warping(const char* name, std::vector<int> types, std::function<Unary(Draw&, cv::Size)> prepare)
{
    return {name,
            [=](Draw& draw) {
                const int type = among(draw, types);
                const cv::Mat src = draw.source(type);
                const cv::Size size = draw.among({src.size(), cv::Size(src.rows, src.cols)});
                const Draw::Destination to = draw.destination(type, size);
                cv::Mat dst = to.region;
                const Unary function = prepare(draw, src.size());
                return Call{[=]() mutable { function(src, dst); }, {to.whole, src}, src.total() * src.elemSize()};
            },
            kWithinOfWarps};
}

Unary affineWarp(Draw& draw, cv::Size size)
{
    const cv::Matx23d matrix = affine(draw, size);
    const int outside = border(draw), inverse = draw.among({int(cv::WARP_INVERSE_MAP), 0});
    const cv::Scalar value(draw.between(-9., 300., 0.), 20.5, 255);
    return [=](const cv::Mat& src, cv::Mat& dst) {
        cv::warpAffine(src, dst, matrix, dst.size(), cv::INTER_LINEAR | inverse, outside, value);
    };
}

Unary perspectiveWarp(Draw& draw, cv::Size size)
{
    const cv::Matx33d matrix = perspective(draw, size);
    const int outside = border(draw);
    const cv::Scalar value(draw.between(-9., 300., 0.), 20.5, 255);
    return [=](const cv::Mat& src, cv::Mat& dst) {
        cv::warpPerspective(src, dst, matrix, dst.size(), cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, outside, value);
    };
}

// Moves by whole pixels are exact.
Operation shift()
{
    return {"warpAffine.shift", [](Draw& draw) {
                const cv::Mat src = draw.source(CV_8UC1);
                const Draw::Destination to = draw.destination(CV_8UC1);
                cv::Mat dst = to.region;
                const cv::Matx23d matrix(1, 0, draw.between(-20, 20, 7), 0, 1, draw.between(-20, 20, -5));
                const int outside = border(draw);
                return Call{
                    [=]() mutable { cv::warpAffine(src, dst, matrix, dst.size(), cv::INTER_LINEAR, outside, 99); },
                    {to.whole, src},
                    src.total()};
            }};
}

Operation integral(const char* name, bool squares, bool tilted)
{
    return {name, [=](Draw& draw) {
                const cv::Mat src = draw.source(draw.among({CV_8UC1, CV_8UC1, CV_8UC1, CV_8UC3}));
                const cv::Size size(src.cols + 1, src.rows + 1);
                const int sumType = CV_32SC(src.channels()), squaresDepth = draw.among({CV_32S, CV_32S, CV_64F});
                const Draw::Destination toSum = draw.destination(sumType, size),
                                        toSquares = draw.destination(CV_MAKETYPE(squaresDepth, src.channels()), size),
                                        toTilted = draw.destination(sumType, size);
                cv::Mat sum = toSum.region, square = toSquares.region, turned = toTilted.region;
                return Call{[=]() mutable {
                                cv::integral(src, sum, squares ? cv::_InputOutputArray(square) : cv::noArray(),
                                             tilted ? cv::_InputOutputArray(turned) : cv::noArray(), CV_32S,
                                             squaresDepth);
                            },
                            {toSum.whole, toSquares.whole, toTilted.whole},
                            src.total() * src.elemSize()};
            }};
}

} // namespace

std::vector<Operation> geometryOperations()
{
    return {
        resizing("resize.half", {CV_8UC1, CV_8UC3, CV_8UC4}, {cv::INTER_LINEAR, cv::INTER_AREA, cv::INTER_LINEAR_EXACT},
                 half),
        resizing("resize.area", {CV_8UC1}, {cv::INTER_AREA}, smaller, 1),
        resizing("resize.area.3", {CV_8UC3, CV_8UC4, CV_16UC1}, {cv::INTER_AREA}, smaller, 1),
        resizing("resize.areaByWhole", {CV_8UC1, CV_8UC3, CV_8UC4}, {cv::INTER_AREA}, byWhole),
        resizing("resize.linear", {CV_8UC1}, {cv::INTER_LINEAR, cv::INTER_LINEAR, cv::INTER_CUBIC}, any, 1),
        resizing("resize.linear.3", {CV_8UC3, CV_8UC3, CV_8UC2, CV_8UC4, CV_32FC1}, {cv::INTER_LINEAR}, any, 1),
        resizing("resize.linearLarger", {CV_8UC1}, {cv::INTER_LINEAR}, larger, 1),
        resizing("resize.linearLarger.3", {CV_8UC3, CV_8UC4}, {cv::INTER_LINEAR}, larger, 1),
        resizing("resize.linearExact", {CV_8UC1}, {cv::INTER_LINEAR_EXACT}, byQuarters),
        resizing("resize.linearExact.3", {CV_8UC3, CV_8UC4}, {cv::INTER_LINEAR_EXACT}, byQuarters),
        resizing("resize.nearestLarger", {CV_8UC1}, {cv::INTER_NEAREST}, larger),
        resizing("resize.nearestLarger.3", {CV_8UC3, CV_8UC4}, {cv::INTER_NEAREST, cv::INTER_NEAREST_EXACT}, larger),
        resizing("resize.nearestExact", {CV_8UC1, CV_8UC3}, {cv::INTER_NEAREST_EXACT, cv::INTER_NEAREST}, any),
        resizing("resize.nearestExactLarger", {CV_8UC1}, {cv::INTER_NEAREST_EXACT}, larger),
        resizingByFactor("resize.halfByFactor", {cv::INTER_LINEAR, cv::INTER_LINEAR_EXACT}, {0.5}),
        resizingByFactor("resize.exactByFactor",
                         {cv::INTER_NEAREST_EXACT, cv::INTER_LINEAR_EXACT, cv::INTER_NEAREST, cv::INTER_LINEAR_EXACT},
                         {0.8, 0.5, 1 / 3., 0.7, 0.4, 2., 3.}),
        resizingByFactor("resize.areaByFactor", {cv::INTER_AREA}, {0.3, 1 / 3., 0.25, 0.9}, 1),
        resizingByFactor("resize.linearByFactor", {cv::INTER_LINEAR}, {0.7, 1 / 3., 0.25, 1.4}, 1),
        warping("warpAffine", {CV_8UC1}, affineWarp),
        warping("warpAffine.3", {CV_8UC3, CV_8UC3, CV_8UC4, CV_16UC1}, affineWarp),
        shift(),
        warping("warpPerspective", {CV_8UC1}, perspectiveWarp),
        warping("warpPerspective.3", {CV_8UC3, CV_8UC3, CV_8UC4, CV_32FC1}, perspectiveWarp),
        integral("integral", false, false),
        integral("integral.squares", true, false),
        integral("integral.tilted", false, true),
        integral("integral.all", true, true),
    };
}
