// The hooks of OpenCV's module imgproc for pictures that are resized and warped, and for sums over pictures.
#include "border.h"

#include <ravik/channel.h>
#include <ravik/integral.h>
#include <ravik/scale.h>
#include <ravik/statistics.h>
#include <ravik/warp.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <memory>
#include <new>
#include <numeric>

using namespace rvk::hal;

namespace {

enum Interpolation { kNearest, kLinear, kCubic, kArea, kLanczos4, kLinearExact, kNearestExact };

constexpr int kOneByte = k8U;
constexpr int kThreeBytes = k8U | 2 << 3;
constexpr int kFourBytes = k8U | 3 << 3;
constexpr int kLongest = 32766; // OpenCV warps no picture that has more columns or rows

int channelsOf(int type)
{
    return (type >> 3) + 1;
}

uint8_t toByte(double value)
{
    return value >= 255 ? 255 : value > 0 ? uint8_t(std::lrint(value)) : 0;
}

// Whether the library can make the one picture of the other: of pixels of some bytes, apart from each other.
bool arePictures(int type, const Source& source, const Target& target)
{
    const int pixel = int(target.pixelSize);
    return (type == kOneByte || type == kThreeBytes || type == kFourBytes) &&
           areStrides(source.width, source.height, 1, {}) && areStrides(target.width, target.height, 1, {}) &&
           areStrides(source.width * pixel, source.height, 1, {source.step}) &&
           areStrides(target.width * pixel, target.height, 1, {target.step}) &&
           areApart(extentOf(source.data, source.step, size_t(source.width) * pixel, source.height), extentOf(target));
}

// ---- resize ---------------------------------------------------------------------------------------------------------

// The columns of a picture that is resized, or its rows.
struct Axis
{
    int src, dst;
    double scale; // columns of the source to one of the destination

    bool isBy(double number) const { return std::abs(scale - number) < DBL_EPSILON; }
    bool isByWhole() const { return isBy(std::round(scale)); }
};

// The library's scale is that of the sizes. So is OpenCV's, or it is a whole number, and columns of the source are left
// over at the end, which are not looked at.
bool setAxis(int src, int dst, double inverseScale, Axis& axis)
{
    axis = {src, dst, 1 / inverseScale};
    if (inverseScale == double(dst) / src)
        return true;
    if (!(axis.scale >= 1 && axis.scale <= src) || !axis.isByWhole() || std::lrint(axis.scale) > src / dst)
        return false;
    axis.src = int(std::lrint(axis.scale)) * dst;
    return true;
}

// Whether OpenCV, which takes column(x) for column x, takes the one that the library takes: where the middle of the
// column x lies, and of two neighbours the right one.
template <typename Column>
bool hasLibrarysColumns(const Axis& axis, Column column)
{
    for (int x = 0; x < axis.dst; x++) {
        if (std::min(column(x), axis.src - 1) != int((2 * int64_t(x) + 1) * axis.src / (2 * int64_t(axis.dst))))
            return false;
    }
    return true;
}

bool isNearest(const Axis& axis)
{
    return hasLibrarysColumns(axis, [&](int x) { return int(x * axis.scale); });
}

// In 16 bits after the point.
bool isNearestExact(const Axis& axis)
{
    if (std::max(axis.src, axis.dst) > kLongest) // more than 32 bits hold
        return false;
    const int step = ((axis.src << 16) + axis.dst / 2) / axis.dst;
    return hasLibrarysColumns(axis, [&](int x) { return (step * x + step / 2 - 1) >> 16; });
}

// Positions are multiples of 1/8: both compute with such without rounding.
bool isLinearExact(const Axis& axis)
{
    return 4 * int64_t(axis.src) % axis.dst == 0;
}

// A resize as the library does it.
struct Resize
{
    Axis columns, rows;
    uint32_t interpolation;

    bool isHalf() const { return columns.isBy(2) && rows.isBy(2); }
    bool isEnlarging() const { return columns.src <= columns.dst && rows.src <= rows.dst; }
};

// Whether means of whole pixels may lie between two numbers. OpenCV takes the even one of them, but for 2 x 2 pixels.
bool hasTies(const Axis& columns, const Axis& rows)
{
    return columns.isByWhole() && rows.isByWhole() && std::lrint(columns.scale) * std::lrint(rows.scale) % 2 == 0;
}

// The library's interpolation that gives OpenCV's result, if there is one.
bool chooseInterpolation(int interpolation, Resize& resize)
{
    const Axis &columns = resize.columns, &rows = resize.rows;
    const uint32_t linear = resize.isHalf() ? RAVIK_INTERPOLATION_AREA : RAVIK_INTERPOLATION_BILINEAR;
    switch (interpolation) {
    case kNearest:
        resize.interpolation = RAVIK_INTERPOLATION_NEAREST;
        return isNearest(columns) && isNearest(rows);
    case kNearestExact:
        resize.interpolation = RAVIK_INTERPOLATION_NEAREST;
        return isNearestExact(columns) && isNearestExact(rows);
    case kLinear:
        resize.interpolation = linear;
        return true;
    case kLinearExact:
        resize.interpolation = linear;
        return resize.isHalf() || (isLinearExact(columns) && isLinearExact(rows));
    case kArea:
        resize.interpolation = RAVIK_INTERPOLATION_AREA;
        return columns.scale >= 1 && rows.scale >= 1 && (resize.isHalf() || !hasTies(columns, rows));
    default:
        return false;
    }
}

bool setResize(const Source& source, const Target& target, double inverseX, double inverseY, int interpolation,
               Resize& resize)
{
    if (interpolation == kNearestExact) { // does not look at the scales
        inverseX = double(target.width) / source.width;
        inverseY = double(target.height) / source.height;
    }
    return setAxis(source.width, target.width, inverseX, resize.columns) &&
           setAxis(source.height, target.height, inverseY, resize.rows) && chooseInterpolation(interpolation, resize);
}

// By measurements. Taking several channels apart costs about as much as OpenCV takes for a few pixels.
bool isFaster(int channels, const Resize& resize)
{
    const Axis &columns = resize.columns, &rows = resize.rows;
    if (resize.interpolation == RAVIK_INTERPOLATION_AREA)
        return channels == 1 || !resize.isHalf();
    if (channels == 1)
        return columns.src <= 4 * columns.dst && rows.src <= 4 * rows.dst;
    if (channels == 3 && resize.interpolation == RAVIK_INTERPOLATION_BILINEAR)
        return int64_t(columns.src) * rows.src <= 3 * int64_t(columns.dst) * rows.dst;
    return channels == 3 && resize.isEnlarging();
}

rvkStatus resizePlane(const uint8_t* src, uint32_t srcStride, uint8_t* dst, uint32_t dstStride, const Resize& resize)
{
    return rvkScaleu8_v2(src, resize.columns.src, resize.rows.src, srcStride, dst, resize.columns.dst, resize.rows.dst,
                         dstStride, resize.interpolation, RAVIK_BORDER_REPLICATE, 0);
}

// Three or four channels, one after the other, put together at the end.
rvkStatus resizeChannels(const uint8_t* src, uint32_t srcStride, int channels, uint8_t* dst, uint32_t dstStride,
                         const Resize& resize)
{
    const uint32_t srcWidth = resize.columns.src, srcHeight = resize.rows.src;
    const uint32_t dstWidth = resize.columns.dst, dstHeight = resize.rows.dst;
    const size_t srcPlane = size_t(srcWidth) * srcHeight, dstPlane = size_t(dstWidth) * dstHeight;
    const std::unique_ptr<uint8_t[]> memory(new (std::nothrow) uint8_t[srcPlane + channels * dstPlane]);
    if (!memory)
        return RAVIK_ENORES;
    const uint32_t format = channels == 3 ? RAVIK_FORMAT_RGB : RAVIK_FORMAT_RGBA;
    uint8_t* planes[4];
    for (int i = 0; i < channels; i++) {
        planes[i] = memory.get() + srcPlane + i * dstPlane;
        if (rvkChannelExtractu8(src, srcWidth, srcHeight, srcStride, nullptr, 0, format, RAVIK_CHANNEL_R + i,
                                memory.get(), 0) != RAVIK_SUCCESS ||
            resizePlane(memory.get(), 0, planes[i], 0, resize) != RAVIK_SUCCESS)
            return RAVIK_EFAIL;
    }
    return channels == 3 ? rvkChannelCombine3Planesu8(planes[0], dstWidth, dstHeight, 0, planes[1], 0, planes[2], 0,
                                                      dst, dstStride)
                         : rvkChannelCombine4Planesu8(planes[0], dstWidth, dstHeight, 0, planes[1], 0, planes[2], 0,
                                                      planes[3], 0, dst, dstStride);
}

// ---- warps ----------------------------------------------------------------------------------------------------------

// Bilinear, with a value outside. OpenCV rounds positions to 1/32 of a pixel and the library does not. OpenCV's tests
// allow for that only with this border; with others they want the same rounding.
bool isWarp(int type, const Source& source, const Target& target, int interpolation, int borderType)
{
    return interpolation == kLinear && borderType == kConstant && std::max(source.width, source.height) <= kLongest &&
           arePictures(type, source, target);
}

// The largest absolute value that a row of a matrix takes in a picture, or more.
double reach(const double row[3], const Target& target)
{
    return std::abs(row[0]) * target.width + std::abs(row[1]) * target.height + std::abs(row[2]);
}

// Whether positions in single precision, as the library's are, are near enough to OpenCV's in double: the denominator
// does not come near 0 in the picture, and positions are within a few hundredths of a pixel of exact ones.
bool isPrecise(const double matrix[9], const Target& target)
{
    const double right = target.width - 1, bottom = target.height - 1;
    const auto denominator = [&](double x, double y) { return matrix[6] * x + matrix[7] * y + matrix[8]; };
    const auto [least, largest] =
        std::minmax({denominator(0, 0), denominator(right, 0), denominator(0, bottom), denominator(right, bottom)});
    const double nearest = least > 0 ? least : -largest;
    const double furthest = (1 << 14) * nearest;
    return nearest > 1e-6 && nearest < 1e6 && reach(matrix + 6, target) < 8 * nearest &&
           reach(matrix, target) < furthest && reach(matrix + 3, target) < furthest;
}

int warp(int type, const Source& source, const Target& target, const double matrix[9], int interpolation,
         int borderType, const double borderValue[4])
{
    if (!isWarp(type, source, target, interpolation, borderType) || !isPrecise(matrix, target))
        return kNotImplemented;
    float32_t single[9];
    std::copy_n(matrix, 9, single);
    const uint8_t outside[3] = {toByte(borderValue[0]), toByte(borderValue[1]), toByte(borderValue[2])};
    auto* const dst = static_cast<uint8_t*>(target.data);
    const uint32_t srcStride = strideOf(source.step, source.height), dstStride = strideOf(target.step, target.height);
    if (type == kOneByte)
        return done(rvkWarpPerspectiveu8_v4(source.data, source.width, source.height, srcStride, dst, target.width,
                                            target.height, dstStride, single, RAVIK_INTERPOLATION_BILINEAR,
                                            RAVIK_BORDER_CONSTANT, outside[0]));
    if (type == kThreeBytes)
        return done(rvk3ChannelWarpPerspectiveu8_v2(source.data, source.width, source.height, srcStride, dst,
                                                    target.width, target.height, dstStride, single,
                                                    RAVIK_INTERPOLATION_BILINEAR, RAVIK_BORDER_CONSTANT, outside));
    return kNotImplemented;
}

// ---- histograms -----------------------------------------------------------------------------------------------------

// What OpenCV makes of each value: the darkest that occurs becomes 0, the others the share that is as dark or darker
// without those; a picture of one value stays as it is.
void equalizingTable(const uint32_t histogram[256], uint8_t table[256])
{
    const int darkest = int(std::find_if(histogram, histogram + 255, [](uint32_t n) { return n > 0; }) - histogram);
    const int others = std::accumulate(histogram + darkest + 1, histogram + 256, 0);
    std::fill_n(table, 256, uint8_t(others ? 0 : darkest));
    if (!others)
        return;
    const float scale = 255.f / float(others);
    for (int value = darkest + 1, sum = 0; value < 256; value++) {
        sum += int(histogram[value]);
        table[value] = toByte(float(sum) * scale);
    }
}

} // namespace

int ravik_hal_resize(int srcType, const uint8_t* src, size_t srcStep, int srcWidth, int srcHeight, uint8_t* dst,
                     size_t dstStep, int dstWidth, int dstHeight, double inverseScaleX, double inverseScaleY,
                     int interpolation)
{
    const int channels = channelsOf(srcType);
    const Source source{src, srcStep, srcWidth, srcHeight};
    const Target target{dst, dstStep, dstWidth, dstHeight, size_t(channels)};
    Resize resize;
    if (!arePictures(srcType, source, target) ||
        !setResize(source, target, inverseScaleX, inverseScaleY, interpolation, resize) || !isFaster(channels, resize))
        return kNotImplemented;
    const uint32_t srcStride = strideOf(srcStep, srcHeight), dstStride = strideOf(dstStep, dstHeight);
    return done(channels == 1 ? resizePlane(src, srcStride, dst, dstStride, resize)
                              : resizeChannels(src, srcStride, channels, dst, dstStride, resize));
}

int ravik_hal_warpAffine(int srcType, const uint8_t* src, size_t srcStep, int srcWidth, int srcHeight, uint8_t* dst,
                         size_t dstStep, int dstWidth, int dstHeight, const double matrix[6], int interpolation,
                         int borderType, const double borderValue[4])
{
    // Of a picture that becomes smaller, much of what is asked for lies outside, which OpenCV has sooner.
    if (srcType == kThreeBytes && std::abs(matrix[0] * matrix[4] - matrix[1] * matrix[3]) > 1.5)
        return kNotImplemented;
    double whole[9] = {0, 0, 0, 0, 0, 0, 0, 0, 1};
    std::copy_n(matrix, 6, whole);
    return warp(srcType, {src, srcStep, srcWidth, srcHeight},
                {dst, dstStep, dstWidth, dstHeight, size_t(channelsOf(srcType))}, whole, interpolation, borderType,
                borderValue);
}

int ravik_hal_warpPerspective(int srcType, const uint8_t* src, size_t srcStep, int srcWidth, int srcHeight,
                              uint8_t* dst, size_t dstStep, int dstWidth, int dstHeight, const double matrix[9],
                              int interpolation, int borderType, const double borderValue[4])
{
    return warp(srcType, {src, srcStep, srcWidth, srcHeight},
                {dst, dstStep, dstWidth, dstHeight, size_t(channelsOf(srcType))}, matrix, interpolation, borderType,
                borderValue);
}

int ravik_hal_remap32f(int srcType, const uint8_t* src, size_t srcStep, int srcWidth, int srcHeight, uint8_t* dst,
                       size_t dstStep, int dstWidth, int dstHeight, float* mapX, size_t mapXStep, float* mapY,
                       size_t mapYStep, int interpolation, int borderType, const double borderValue[4])
{
    const Source source{src, srcStep, srcWidth, srcHeight};
    const Target target{dst, dstStep, dstWidth, dstHeight, size_t(channelsOf(srcType))};
    if (!isWarp(srcType, source, target, interpolation, borderType) || (mapXStep != mapYStep && dstHeight > 1) ||
        !areStrides(dstWidth, dstHeight, sizeof(float), {mapXStep}))
        return kNotImplemented;
    const uint32_t srcStride = strideOf(srcStep, srcHeight), dstStride = strideOf(dstStep, dstHeight),
                   mapStride = strideOf(mapXStep, dstHeight);
    if (srcType == kOneByte)
        return done(rvkRemapu8_v2(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, mapX, mapY,
                                  mapStride, RAVIK_INTERPOLATION_BILINEAR, RAVIK_BORDER_CONSTANT,
                                  toByte(borderValue[0])));
    if (srcType != kFourBytes || std::any_of(borderValue, borderValue + 4, toByte))
        return kNotImplemented;
    rvkRemapRGBA8888BLu8(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, mapX, mapY,
                         mapStride);
    return kOk;
}

int ravik_hal_integral(int depth, int sumDepth, int squaresDepth, const uint8_t* src, size_t srcStep, uint8_t* sum,
                       size_t sumStep, uint8_t* squares, size_t squaresStep, uint8_t* tilted, size_t tiltedStep,
                       int width, int height, int channels)
{
    const auto isTable = [&](uint8_t* table, size_t step) {
        return areStrides(width + 1, std::max(height, 2), sizeof(uint32_t), {step}) &&
               areApart(extentOf(src, srcStep, width, height),
                        extentOf(table, step, (size_t(width) + 1) * sizeof(uint32_t), height + 1));
    };
    if (depth != k8U || sumDepth != k32S || channels != 1 || (squares && squaresDepth != k32S) ||
        !areStrides(width, height, 1, {srcStep}) || !isTable(sum, sumStep) ||
        (squares && !isTable(squares, squaresStep)) || (tilted && !isTable(tilted, tiltedStep)))
        return kNotImplemented;
    const uint32_t srcStride = strideOf(srcStep, height);
    auto* const sums = reinterpret_cast<uint32_t*>(sum);
    if (!squares)
        rvkIntegrateImageu8_v2(src, width, height, srcStride, sums, uint32_t(sumStep));
    else if (rvkIntegratePatchu8_v3(src, width, height, srcStride, 0, 0, width, height, sums, uint32_t(sumStep),
                                    reinterpret_cast<uint32_t*>(squares), uint32_t(squaresStep)) != RAVIK_SUCCESS)
        return kNotImplemented;
    if (tilted)
        rvkTiltedIntegralu8s32(src, width, height, srcStride, reinterpret_cast<int32_t*>(tilted), uint32_t(tiltedStep));
    return kOk;
}

int ravik_hal_equalize_hist(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width, int height)
{
    if (!areStrides(width, height, 1, {srcStep, dstStep}) ||
        !mayWrite(src, srcStep, width, dst, dstStep, width, height))
        return kNotImplemented;
    uint32_t histogram[256];
    rvkImageIntensityHistogram(src, strideOf(srcStep, height), 0, 0, width, height, histogram);
    uint8_t table[256];
    equalizingTable(histogram, table);
    return done(rvkTableLookupu8(src, width, height, strideOf(srcStep, height), table, dst, strideOf(dstStep, height)));
}
