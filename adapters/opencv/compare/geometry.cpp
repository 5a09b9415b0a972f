// Calls that reach the hooks of imgproc for resizing, warps and sums.
#include "operation.h"

#include <opencv2/imgproc.hpp>

#include <cmath>

namespace {

using Unary = std::function<void(const cv::Mat&, cv::Mat&)>;

// A picture of one size from one of another.
Operation resizing(const char* name, int interpolation, std::function<cv::Size(Draw&, cv::Size&)> targetSize,
                   double within = 0)
{
    return {name,
            [=](Draw& draw) {
                const int type = draw.among({CV_8UC1, CV_8UC1, CV_8UC1, CV_8UC3});
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
Operation resizingByFactor(const char* name, int interpolation, double factor, double within = 0)
{
    return {name,
            [=](Draw& draw) {
                const cv::Mat src = draw.source(CV_8UC1);
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

cv::Size odd(Draw& draw, cv::Size& source)
{
    const cv::Size size(draw.size().width / 3 + 1, draw.size().height / 3 + 1);
    source = times(size, draw.among({3, 1, 3, 5, 7}), draw.among({3, 3, 1, 5}));
    return size;
}

cv::Size anySmaller(Draw& draw, cv::Size& source)
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

// By multiples of a quarter, and by 2 and 4 upwards.
cv::Size quarters(Draw& draw, cv::Size& source)
{
    const cv::Size base((draw.size().width + 3) / 4, (draw.size().height + 3) / 4);
    const cv::Size size = times(base, 4, 4);
    source = times(base, draw.among({6, 1, 2, 3, 5, 7, 8, 13}), draw.among({6, 1, 2, 4, 5, 9, 8}));
    return size;
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

// Positions of OpenCV are rounded to 1/32 of a pixel: half of that in each direction makes 255 / 32 of a grey level,
// and results are rounded. Its own tests allow 16.
constexpr double kWithinOfWarps = 11;

Operation warping(const char* name, int type, std::function<Unary(Draw&, cv::Size)> prepare)
{
    return {name,
            [=](Draw& draw) {
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

Operation integral(const char* name, int type, bool squares, bool tilted)
{
    return {name, [=](Draw& draw) {
                const cv::Mat src = draw.source(type);
                const cv::Size size(src.cols + 1, src.rows + 1);
                const int sumType = CV_32SC(src.channels());
                const Draw::Destination toSum = draw.destination(sumType, size),
                                        toSquares = draw.destination(sumType, size),
                                        toTilted = draw.destination(sumType, size);
                cv::Mat sum = toSum.region, square = toSquares.region, turned = toTilted.region;
                return Call{[=]() mutable {
                                cv::integral(src, sum, squares ? cv::_InputOutputArray(square) : cv::noArray(),
                                             tilted ? cv::_InputOutputArray(turned) : cv::noArray(), CV_32S, CV_32S);
                            },
                            {toSum.whole, toSquares.whole, toTilted.whole},
                            src.total() * src.elemSize()};
            }};
}

} // namespace

std::vector<Operation> geometryOperations()
{
    return {
        resizing("resize.half", cv::INTER_LINEAR, half),
        resizing("resize.halfArea", cv::INTER_AREA, half),
        resizing("resize.areaOdd", cv::INTER_AREA, odd),
        resizing("resize.area", cv::INTER_AREA, anySmaller, 1),
        resizing("resize.linear", cv::INTER_LINEAR, any, 1),
        resizing("resize.linearLarger", cv::INTER_LINEAR, larger, 1),
        resizing("resize.linearExact", cv::INTER_LINEAR_EXACT, any),
        resizing("resize.linearExactQuarters", cv::INTER_LINEAR_EXACT, quarters),
        resizing("resize.nearest", cv::INTER_NEAREST, any),
        resizing("resize.nearestLarger", cv::INTER_NEAREST, larger),
        resizing("resize.nearestExact", cv::INTER_NEAREST_EXACT, any),
        resizing("resize.nearestExactLarger", cv::INTER_NEAREST_EXACT, larger),
        resizing("resize.cubic", cv::INTER_CUBIC, any),
        resizingByFactor("resize.halfByFactor", cv::INTER_LINEAR, 0.5),
        resizingByFactor("resize.areaByFactor", cv::INTER_AREA, 0.3, 1),
        resizingByFactor("resize.linearByFactor", cv::INTER_LINEAR, 0.7, 1),
        warping("warpAffine", CV_8UC1, affineWarp),
        warping("warpAffine.3", CV_8UC3, affineWarp),
        warping("warpAffine.4", CV_8UC4, affineWarp),
        shift(),
        warping("warpPerspective", CV_8UC1, perspectiveWarp),
        warping("warpPerspective.3", CV_8UC3, perspectiveWarp),
        integral("integral", CV_8UC1, false, false),
        integral("integral.squares", CV_8UC1, true, false),
        integral("integral.tilted", CV_8UC1, false, true),
        integral("integral.all", CV_8UC1, true, true),
        integral("integral.3", CV_8UC3, true, false),
    };
}
