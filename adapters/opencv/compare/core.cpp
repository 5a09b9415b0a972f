// Calls that reach the hooks of core.
#include "operation.h"

namespace {

Operation absdiff(const char* name)
{
    return {name, [=](Draw& draw) {
                const int type = CV_MAKETYPE(CV_8U, draw.among({1, 3, 2, 4}));
                const cv::Mat a = draw.source(type), b = draw.source(type);
                Draw::Destination to = draw.destination(type);
                cv::Mat dst = draw.among({0, 0, 1}) ? a : to.region;
                return Call{[=]() mutable { cv::absdiff(a, b, dst); }, {to.whole, a}, a.total() * a.elemSize()};
            }};
}

// A number for each channel in place of the second picture: OpenCV computes it block by block.
Operation absdiffScalar(const char* name)
{
    return {name, [=](Draw& draw) {
                const int type = CV_MAKETYPE(CV_8U, draw.among({1, 3, 2, 4}));
                const cv::Mat a = draw.source(type);
                Draw::Destination to = draw.destination(type);
                return Call{[=]() mutable { cv::absdiff(a, cv::Scalar(1, 70, 130, 255), to.region); },
                            {to.whole},
                            a.total() * a.elemSize()};
            }};
}

Operation product(const char* name)
{
    return {name, [=](Draw& draw) {
                const int type = CV_MAKETYPE(CV_8U, draw.among({1, 3, 2, 4}));
                const cv::Mat a = draw.source(type), b = draw.source(type);
                const double scale = draw.among({1., 1., 1., 0.5, 4., 1 / 255.});
                Draw::Destination to = draw.destination(type);
                cv::Mat dst = draw.among({0, 0, 1}) ? a : to.region;
                return Call{[=]() mutable { cv::multiply(a, b, dst, scale); }, {to.whole, a}, a.total() * a.elemSize()};
            }};
}

Operation split(const char* name, int channels)
{
    return {name, [=](Draw& draw) {
                const cv::Mat a = draw.source(CV_8UC(channels));
                std::vector<cv::Mat> planes, wholes;
                for (int i = 0; i < channels; i++) {
                    const Draw::Destination to = draw.destination(CV_8U);
                    planes.push_back(to.region);
                    wholes.push_back(to.whole);
                }
                return Call{[=]() mutable { cv::split(a, planes); }, wholes, a.total() * a.elemSize()};
            }};
}

Operation merge(const char* name, int channels)
{
    return {name, [=](Draw& draw) {
                std::vector<cv::Mat> planes;
                for (int i = 0; i < channels; i++)
                    planes.push_back(draw.source(CV_8U));
                Draw::Destination to = draw.destination(CV_8UC(channels));
                return Call{[=]() mutable { cv::merge(planes, to.region); }, {to.whole}, planes[0].total() * channels};
            }};
}

Operation minMax(const char* name, int depth)
{
    return {name, [=](Draw& draw) {
                const cv::Mat a = draw.source(depth);
                cv::Mat result = cv::Mat::zeros(1, 6, CV_64F);
                const bool low = draw.among({1, 1, 0}), high = draw.among({1, 1, 0}), value = draw.among({1, 0});
                return Call{[=]() mutable {
                                double* r = result.ptr<double>();
                                cv::Point lowest, highest;
                                cv::minMaxLoc(a, value ? r : nullptr, r + 1, low ? &lowest : nullptr,
                                              high ? &highest : nullptr);
                                r[2] = lowest.x;
                                r[3] = lowest.y;
                                r[4] = highest.x;
                                r[5] = highest.y;
                            },
                            {result},
                            a.total() * a.elemSize()};
            }};
}

// Products of matrices of up to `most` rows and columns.
Operation gemm(const char* name, int most, int flagsToTime = 0)
{
    Operation operation{
        name, [=](Draw& draw) {
            const int rows = draw.between(1, most, most), columns = draw.between(1, most, most),
                      length = draw.between(1, most, most);
            const int flags = draw.among({flagsToTime, 0, 0, 1, 2, 3});
            const cv::Size size1 = flags & cv::GEMM_1_T ? cv::Size(rows, length) : cv::Size(length, rows);
            const cv::Size size2 = flags & cv::GEMM_2_T ? cv::Size(length, columns) : cv::Size(columns, length);
            const cv::Mat a = draw.noise(CV_32F, size1, -0.25, 0.25), b = draw.noise(CV_32F, size2, -0.25, 0.25);
            const cv::Mat c = draw.among({0, 0, 1}) ? draw.noise(CV_32F, cv::Size(columns, rows), -1, 1) : cv::Mat();
            const double alpha = draw.among({1., 1., 2., -0.7});
            Draw::Destination to = draw.destination(CV_32F, cv::Size(columns, rows));
            return Call{[=]() mutable { cv::gemm(a, b, alpha, c, 1, to.region, flags); },
                        {to.whole},
                        (a.total() + b.total()) * sizeof(float)};
        }};
    operation.within = 5e-5;
    return operation;
}

Operation singularValues(const char* name, int rows, int columns)
{
    Operation operation{name, [=](Draw& draw) {
                            const int height = draw.between(1, 20, rows), width = draw.between(1, 20, columns);
                            const cv::Mat a = draw.noise(CV_32F, cv::Size(width, height), -1, 1);
                            const cv::Mat w(std::min(height, width), 1, CV_32F);
                            const int flags = draw.among({int(cv::SVD::NO_UV), int(cv::SVD::NO_UV), 0});
                            return Call{[=]() mutable {
                                            cv::Mat u, vt;
                                            cv::SVD::compute(a, w, u, vt, flags);
                                        },
                                        {w},
                                        a.total() * sizeof(float)};
                        }};
    operation.within = 1e-5;
    return operation;
}

} // namespace

std::vector<Operation> coreOperations()
{
    return {
        absdiff("absdiff8u"),
        absdiffScalar("absdiff8uScalar"),
        product("mul8u"),
        split("split8uC2", 2),
        split("split8uC3", 3),
        merge("merge8uC2", 2),
        merge("merge8uC3", 3),
        minMax("minMaxIdx8u", CV_8U),
        minMax("minMaxIdx16u", CV_16U),
        minMax("minMaxIdx16s", CV_16S),
        minMax("minMaxIdx32s", CV_32S),
        minMax("minMaxIdx32f", CV_32F),
        gemm("gemm32f4x4", 4),
        gemm("gemm32f16x16", 16),
        gemm("gemm32f64x64", 64),
        gemm("gemm32f512x512", 512),
        gemm("gemm32f16x16Transposed1", 16, cv::GEMM_1_T),
        gemm("gemm32f64x64Transposed2", 64, cv::GEMM_2_T),
        singularValues("SVD32f6x6", 6, 6),
        singularValues("SVD32f32x9", 32, 9),
        singularValues("SVD32f64x64", 64, 64),
    };
}
