// The hooks of OpenCV's module imgproc: filters and edges.
#include "border.h"

#include <ravik/blur.h>
#include <ravik/canny.h>
#include <ravik/correlation.h>
#include <ravik/gradient.h>
#include <ravik/median.h>
#include <ravik/morphology.h>
#include <ravik/scale.h>
#include <ravik/threshold.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <memory>
#include <new>

using namespace rvk::hal;

namespace {

constexpr int typeOf(int depth, int channels)
{
    return depth + ((channels - 1) << 3);
}

bool isWhole(double value)
{
    return value == std::floor(value);
}

// The filters whose context OpenCV keeps between initialization and the end: what is to be called.
struct Context
{
    Windows windows;
    Outside outside;
    bool isolated;
    size_t pixelSize; // of the target
};

int start(cvhalFilter2D** context, Context&& wanted)
{
    auto* made = new (std::nothrow) Context(std::move(wanted));
    *context = reinterpret_cast<cvhalFilter2D*>(made);
    return made ? kOk : kNotImplemented;
}

int finish(cvhalFilter2D* context)
{
    delete reinterpret_cast<Context*>(context);
    return kOk;
}

int run(cvhalFilter2D* context, Source source, void* dst, size_t dstStep)
{
    const auto& wanted = *reinterpret_cast<Context*>(context);
    if (wanted.isolated)
        source.left = source.top = source.right = source.bottom = 0;
    return filterWithBorder(source, {dst, dstStep, source.width, source.height, wanted.pixelSize}, wanted.outside,
                            wanted.windows);
}

// A region of a matrix of that size, as OpenCV's filters with a context are given it.
Source regionOf(const uint8_t* src, size_t step, int width, int height, int fullWidth, int fullHeight, int x, int y)
{
    return {src, step, width, height, x, y, fullWidth - width - x, fullHeight - height - y};
}

// ---- filter2D: kernels of whole numbers, whose sums are exact in whichever order and precision --------------------

// At most as large as what OpenCV does not do by Fourier transforms, which are not exact.
constexpr int kMostWeights = 121;

struct Weights
{
    int16_t values[kMostWeights];
    bool areWhole;
};

// The kernel turned by 180 degrees, since OpenCV correlates and the library's rectangular windows convolve.
Weights turned(const uint8_t* kernel, size_t step, int width, int height)
{
    Weights weights = {{}, true};
    for (int y = 0; y < height; y++) {
        const auto* row = reinterpret_cast<const float*>(kernel + y * step);
        for (int x = 0; x < width; x++) {
            if (!isWhole(row[x]) || std::fabs(row[x]) > 32767)
                return {{}, false};
            weights.values[(height - 1 - y) * width + (width - 1 - x)] = int16_t(row[x]);
        }
    }
    return weights;
}

Filter convolution(const Weights& weights, int kernelWidth, int kernelHeight, int dstDepth)
{
    if (dstDepth == k8U)
        return [=](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, void* dst,
                   uint32_t dstStride) {
            return rvkFilterConvolveMxNu8(src, width, height, srcStride, weights.values, kernelWidth, kernelHeight, 0,
                                          static_cast<uint8_t*>(dst), dstStride);
        };
    return [=](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, void* dst, uint32_t dstStride) {
        return rvkFilterConvolveMxNu8s16(src, width, height, srcStride, weights.values, kernelWidth, kernelHeight, 0,
                                         static_cast<int16_t*>(dst), dstStride);
    };
}

// ---- gradients ----------------------------------------------------------------------------------------------------

using SobelFunction = rvkStatus (*)(const uint8_t*, uint32_t, uint32_t, uint32_t, int16_t*, int16_t*, uint32_t,
                                    uint32_t, uint8_t);

// One of the derivatives, without a border or with that of the library that is the same as OpenCV's.
Filter derivative(SobelFunction function, bool alongX, const Outside& outside)
{
    const uint32_t border = outside.border == kReplicate  ? RAVIK_BORDER_REPLICATE
                            : outside.border == kConstant ? RAVIK_BORDER_CONSTANT
                                                          : RAVIK_BORDER_NONE;
    return [=](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, void* dst, uint32_t dstStride) {
        auto* plane = static_cast<int16_t*>(dst);
        return function(src, width, height, srcStride, alongX ? plane : nullptr, alongX ? nullptr : plane, dstStride,
                        border, 0);
    };
}

bool isFirstDerivative(int dx, int dy)
{
    return (dx == 1 && dy == 0) || (dx == 0 && dy == 1);
}

} // namespace

int ravik_hal_filterInit(cvhalFilter2D** context, uint8_t* kernel, size_t kernelStep, int kernelType, int kernelWidth,
                         int kernelHeight, int, int, int srcType, int dstType, int borderType, double delta,
                         int anchorX, int anchorY, bool, bool)
{
    const int border = borderType & ~kIsolated;
    const bool isOdd = kernelWidth % 2 && kernelHeight % 2;
    const bool isCentred = anchorX == kernelWidth / 2 && anchorY == kernelHeight / 2;
    if (srcType != typeOf(k8U, 1) || (dstType != typeOf(k8U, 1) && dstType != typeOf(k16S, 1)) || delta != 0 ||
        kernelType != typeOf(k32F, 1) || !isOdd || !isCentred || kernelWidth * kernelHeight > kMostWeights)
        return kNotImplemented;
    const Weights weights = turned(kernel, kernelStep, kernelWidth, kernelHeight);
    if (!weights.areWhole)
        return kNotImplemented;
    const Windows windows = {convolution(weights, kernelWidth, kernelHeight, dstType),
                             std::max(kernelWidth, kernelHeight) / 2, border == kReplicate};
    return start(context, {windows, {border}, (borderType & kIsolated) != 0, dstType == k8U ? 1u : 2u});
}

int ravik_hal_filter(cvhalFilter2D* context, uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width,
                     int height, int fullWidth, int fullHeight, int offsetX, int offsetY)
{
    return run(context, regionOf(src, srcStep, width, height, fullWidth, fullHeight, offsetX, offsetY), dst, dstStep);
}

int ravik_hal_filterFree(cvhalFilter2D* context)
{
    return finish(context);
}

// ---- erode and dilate: squares of ones ----------------------------------------------------------------------------

namespace {

// OpenCV's value for "pixels outside do not take part".
bool isDefaultBorder(const double value[4])
{
    return value[0] == DBL_MAX && value[1] == DBL_MAX && value[2] == DBL_MAX && value[3] == DBL_MAX;
}

bool isSquareOfOnes(const uint8_t* kernel, size_t step, int width, int height)
{
    if (width != height)
        return false;
    for (int y = 0; y < height; y++) {
        if (std::count(kernel + y * step, kernel + y * step + width, 0))
            return false;
    }
    return true;
}

Filter morphology(bool erodes, int size)
{
    if (size == 3)
        return [=](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, void* dst,
                   uint32_t dstStride) {
            const auto function = erodes ? rvkFilterErode3x3u8_v3 : rvkFilterDilate3x3u8_v3;
            return function(src, width, height, srcStride, static_cast<uint8_t*>(dst), dstStride, RAVIK_BORDER_NONE, 0);
        };
    return [=](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, void* dst, uint32_t dstStride) {
        const auto function = erodes ? rvkFilterErodeNxNu8 : rvkFilterDilateNxNu8;
        return function(src, width, height, srcStride, size, static_cast<uint8_t*>(dst), dstStride);
    };
}

} // namespace

int ravik_hal_morphInit(cvhalFilter2D** context, int operation, int srcType, int dstType, int, int, int kernelType,
                        uint8_t* kernel, size_t kernelStep, int kernelWidth, int kernelHeight, int anchorX, int anchorY,
                        int borderType, const double borderValue[4], int iterations, bool, bool)
{
    const int border = borderType & ~kIsolated, size = kernelWidth;
    if (srcType != typeOf(k8U, 1) || dstType != srcType || kernelType != typeOf(k8U, 1) || iterations != 1 ||
        anchorX != size / 2 || anchorY != size / 2 || !isSquareOfOnes(kernel, kernelStep, kernelWidth, kernelHeight))
        return kNotImplemented;
    const bool erodes = operation == kErode, isDefault = isDefaultBorder(borderValue);
    // Pixels mirrored at the edge are in the window themselves if it reaches as far in each direction.
    const bool isMirrored = border == kReflect || border == kReflect101;
    const bool nothingOutside = border == kReplicate || (isMirrored && size % 2) || (border == kConstant && isDefault);
    const uint8_t neutral = erodes ? 255 : 0;
    const uint8_t value = isDefault ? neutral : uint8_t(std::clamp(std::nearbyint(borderValue[0]), 0., 255.));
    const Windows windows = {morphology(erodes, size), size / 2, nothingOutside};
    return start(context, {windows, {border, value}, (borderType & kIsolated) != 0, 1});
}

int ravik_hal_morph(cvhalFilter2D* context, uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width,
                    int height, int srcFullWidth, int srcFullHeight, int srcX, int srcY, int, int, int, int)
{
    return run(context, regionOf(src, srcStep, width, height, srcFullWidth, srcFullHeight, srcX, srcY), dst, dstStep);
}

int ravik_hal_morphFree(cvhalFilter2D* context)
{
    return finish(context);
}

// ---- thresholds ---------------------------------------------------------------------------------------------------

int ravik_hal_threshold(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width, int height,
                        int depth, int channels, double threshold, double maxValue, int thresholdType)
{
    const bool isInverse = thresholdType == kBinaryInverse;
    if (depth != k8U || (thresholdType != kBinary && !isInverse) || threshold < 0 || threshold > 255 ||
        width > INT32_MAX / channels || !areStrides(width * channels, height, 1, {srcStep, dstStep}) ||
        !mayWrite(src, srcStep, size_t(width) * channels, dst, dstStep, size_t(width) * channels, height))
        return kNotImplemented;
    const uint8_t value = uint8_t(maxValue);
    return done(rvkFilterThresholdu8_v3(src, width * channels, height, strideOf(srcStep, height), dst,
                                        strideOf(dstStep, height), uint32_t(threshold), isInverse ? 0 : value,
                                        isInverse ? value : 0));
}

// ---- smoothing ----------------------------------------------------------------------------------------------------

int ravik_hal_medianBlur(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width, int height,
                         int depth, int channels, int ksize)
{
    if (depth != k8U || channels != 1 || ksize != 3)
        return kNotImplemented;
    const auto median = [](const uint8_t* from, uint32_t w, uint32_t h, uint32_t fromStride, void* to,
                           uint32_t toStride) {
        return rvkFilterMedian3x3u8_v3(from, w, h, fromStride, static_cast<uint8_t*>(to), toStride,
                                       RAVIK_BORDER_REPLICATE, 0);
    };
    return filterWithBorder({src, srcStep, width, height}, {dst, dstStep, width, height, 1}, {kReplicate},
                            {median, 1, true});
}

int ravik_hal_boxFilter(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width, int height,
                        int srcDepth, int dstDepth, int channels, int left, int top, int right, int bottom,
                        size_t kernelWidth, size_t kernelHeight, int anchorX, int anchorY, bool normalize,
                        int borderType)
{
    const auto isCentre = [](int anchor) { return anchor == 1 || anchor == -1; };
    if (srcDepth != k8U || dstDepth != k8U || channels != 1 || kernelWidth != 3 || kernelHeight != 3 ||
        !isCentre(anchorX) || !isCentre(anchorY) || !normalize)
        return kNotImplemented;
    const auto box = [](const uint8_t* from, uint32_t w, uint32_t h, uint32_t fromStride, void* to, uint32_t toStride) {
        return rvkBoxFilter3x3u8_v2(from, w, h, fromStride, static_cast<uint8_t*>(to), toStride, RAVIK_BORDER_REPLICATE,
                                    0);
    };
    return filterWithBorder({src, srcStep, width, height, left, top, right, bottom}, {dst, dstStep, width, height, 1},
                            {borderType}, {box, 1, borderType == kReplicate});
}

int ravik_hal_pyrdown(const uint8_t* src, size_t srcStep, int srcWidth, int srcHeight, uint8_t* dst, size_t dstStep,
                      int dstWidth, int dstHeight, int depth, int channels, int borderType)
{
    const int border = borderType & ~kIsolated;
    if (depth != k8U || channels != 1 || dstWidth != (srcWidth + 1) / 2 || dstHeight != (srcHeight + 1) / 2 ||
        border == kConstant)
        return kNotImplemented;
    const auto halve = [](const uint8_t* from, uint32_t w, uint32_t h, uint32_t fromStride, void* to,
                          uint32_t toStride) {
        rvkScaleDownBy2Gaussian5x5u8_v2(from, w, h, fromStride, static_cast<uint8_t*>(to), toStride);
        return RAVIK_SUCCESS;
    };
    return filterWithBorder({src, srcStep, srcWidth, srcHeight}, {dst, dstStep, dstWidth, dstHeight, 1}, {border},
                            {halve, 2, false, 2});
}

// ---- gradients and edges ------------------------------------------------------------------------------------------

int ravik_hal_sobel(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width, int height,
                    int srcDepth, int dstDepth, int channels, int left, int top, int right, int bottom, int dx, int dy,
                    int ksize, double scale, double delta, int borderType)
{
    const SobelFunction function = ksize == 3   ? rvkFilterSobel3x3u8s16
                                   : ksize == 5 ? rvkFilterSobel5x5u8s16
                                   : ksize == 7 ? rvkFilterSobel7x7u8s16
                                                : nullptr;
    if (!function || srcDepth != k8U || dstDepth != k16S || channels != 1 || !isFirstDerivative(dx, dy) || scale != 1 ||
        delta != 0)
        return kNotImplemented;
    const Outside outside = {borderType};
    const bool hasBorder = borderType == kReplicate || borderType == kConstant;
    return filterWithBorder({src, srcStep, width, height, left, top, right, bottom}, {dst, dstStep, width, height, 2},
                            outside, {derivative(function, dx == 1, outside), ksize / 2, hasBorder});
}

namespace {

// A threshold of OpenCV as the library's; negative where it has none that does the same. OpenCV compares whole
// magnitudes with the threshold rounded down, and squares it before that for the Euclidean norm. Gradients of 7x7
// pixels and their thresholds are sixteenths for OpenCV; the library's thresholds are not.
int cannyThreshold(double threshold, int ksize, bool isEuclidean)
{
    const int scale = ksize == 7 ? 16 : 1;
    const double scaled = isEuclidean ? threshold * scale : std::floor(threshold) * scale;
    return scaled >= 0 && scaled <= 32767 && isWhole(scaled) ? int(scaled) : -1;
}

} // namespace

int ravik_hal_canny(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width, int height,
                    int channels, double lowThreshold, double highThreshold, int ksize, bool L2gradient)
{
    const int low = cannyThreshold(lowThreshold, ksize, L2gradient);
    const int high = cannyThreshold(highThreshold, ksize, L2gradient);
    if (channels != 1 || low < 0 || high < 0 || (ksize != 3 && ksize != 5 && ksize != 7) ||
        !areStrides(width, height, 1, {srcStep, dstStep}) ||
        !areApart(extentOf(src, srcStep, width, height), extentOf(dst, dstStep, width, height)))
        return kNotImplemented;
    const uint32_t srcStride = strideOf(srcStep, height), dstStride = strideOf(dstStep, height);
    if (ksize == 3 && !L2gradient)
        return done(rvkFilterCanny3x3u8_v3(src, width, height, srcStride, dst, dstStride, low, high));
    return done(rvkFilterCannyu8(src, width, height, srcStride, ksize, low, high,
                                 L2gradient ? RAVIK_CANNY_NORM_L2 : RAVIK_CANNY_NORM_L1, dst, dstStride, nullptr,
                                 nullptr, 0));
}
