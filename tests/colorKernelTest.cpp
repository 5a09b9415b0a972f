// The inner kernels on rows of RGB, by their pointers, in the modes of references and of vectors: each writes what the
// reference of the function of its kind makes of a picture of one row, or of two, and nothing else.
#include "support/guarded.h"
#include "support/kernelModes.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ravik/ravik.h>
#include <vector>

using namespace rvk;
using namespace test;

namespace {

constexpr uint32_t kGap = 3; // behind each row but the last

struct Call
{
    uint32_t width;
    const uint8_t* src;
    uint32_t srcStride;
    uint8_t* dst[3];
    uint32_t lumaStride;
};

struct RgbKernel
{
    Kernel kernel;
    const char* name;
    uint32_t rows, pixelSize;
    uint32_t targets[3]; // bytes of a row for two pixels, of each target
    uint32_t targetRows; // of the first target
    void (*call)(const Call&);
    void (*reference)(const Call&);
};

template <Kernel row, auto reference>
constexpr RgbKernel reordering(const char* name, uint32_t pixelSize, uint32_t targetSize)
{
    return {row,
            name,
            1,
            pixelSize,
            {2 * targetSize},
            1,
            [](const Call& c) { kernel<row>()(c.src, c.width, c.dst[0]); },
            [](const Call& c) { reference(c.src, c.width, 1, c.srcStride, c.dst[0], UINT32_MAX); }};
}

template <Kernel row, auto reference>
constexpr RgbKernel planar(const char* name, uint32_t pixelSize)
{
    return {row,
            name,
            1,
            pixelSize,
            {2, 1, 1},
            1,
            [](const Call& c) { kernel<row>()(c.src, c.width, c.dst[0], c.dst[1], c.dst[2]); },
            [](const Call& c) {
                reference(c.src, c.width, 1, c.srcStride, c.dst[0], c.width, c.dst[1], c.width, c.dst[2], c.width);
            }};
}

template <Kernel row, auto reference>
constexpr RgbKernel twoRows(const char* name, uint32_t pixelSize)
{
    return {row,
            name,
            2,
            pixelSize,
            {2, 2},
            2,
            [](const Call& c) { kernel<row>()(c.src, c.width, c.srcStride, c.dst[0], c.lumaStride, c.dst[1]); },
            [](const Call& c) {
                reference(c.src, c.width, 2, c.srcStride, c.dst[0], c.lumaStride, c.dst[1], 2 * c.width);
            }};
}

template <Kernel row, auto reference>
constexpr RgbKernel luma(const char* name, uint32_t pixelSize)
{
    return {row,
            name,
            1,
            pixelSize,
            {2},
            1,
            [](const Call& c) { kernel<row>()(c.src, c.width, c.dst[0]); },
            [](const Call& c) {
                std::vector<uint8_t> cb(c.width), cr(c.width);
                reference(c.src, c.width, 1, c.srcStride, c.dst[0], c.width, cb.data(), c.width, cr.data(), c.width);
            }};
}

constexpr RgbKernel kRgbKernels[] = {
    planar<Kernel::irvkRowRGB565ToYUV, rvkColorRGB565ToYCbCr422Planaru8C>("irvkRowRGB565ToYUV", 2),
    twoRows<Kernel::irvkRowRGB565ToYYUV, rvkColorRGB565ToYCbCr420PseudoPlanaru8C>("irvkRowRGB565ToYYUV", 2),
    luma<Kernel::irvkRowRGB565ToY, rvkColorRGB565ToYCbCr444Planaru8C>("irvkRowRGB565ToY", 2),
    planar<Kernel::irvkRowRGB888ToYUV, rvkColorRGB888ToYCbCr422Planaru8C>("irvkRowRGB888ToYUV", 3),
    twoRows<Kernel::irvkRowRGB888ToYYUV, rvkColorRGB888ToYCbCr420PseudoPlanaru8C>("irvkRowRGB888ToYYUV", 3),
    luma<Kernel::irvkRowRGB888ToY, rvkColorRGB888ToYCbCr444Planaru8C>("irvkRowRGB888ToY", 3),
    planar<Kernel::irvkRowRGBA8888ToYUV, rvkColorRGBA8888ToYCbCr422Planaru8C>("irvkRowRGBA8888ToYUV", 4),
    twoRows<Kernel::irvkRowRGBA8888ToYYUV, rvkColorRGBA8888ToYCbCr420PseudoPlanaru8C>("irvkRowRGBA8888ToYYUV", 4),
    luma<Kernel::irvkRowRGBA8888ToY, rvkColorRGBA8888ToYCbCr444Planaru8C>("irvkRowRGBA8888ToY", 4),
    reordering<Kernel::irvkRowRGB565ToBGR565, rvkColorRGB565ToBGR565u8C>("irvkRowRGB565ToBGR565", 2, 2),
    reordering<Kernel::irvkRowRGB565ToRGB888, rvkColorRGB565ToRGB888u8C>("irvkRowRGB565ToRGB888", 2, 3),
    reordering<Kernel::irvkRowRGB565ToBGR888, rvkColorRGB565ToBGR888u8C>("irvkRowRGB565ToBGR888", 2, 3),
    reordering<Kernel::irvkRowRGB565ToRGBA8888, rvkColorRGB565ToRGBA8888u8C>("irvkRowRGB565ToRGBA8888", 2, 4),
    reordering<Kernel::irvkRowRGB565ToBGRA8888, rvkColorRGB565ToBGRA8888u8C>("irvkRowRGB565ToBGRA8888", 2, 4),
    reordering<Kernel::irvkRowRGB888ToRGB565, rvkColorRGB888ToRGB565u8C>("irvkRowRGB888ToRGB565", 3, 2),
    reordering<Kernel::irvkRowRGB888ToBGR565, rvkColorRGB888ToBGR565u8C>("irvkRowRGB888ToBGR565", 3, 2),
    reordering<Kernel::irvkRowRGB888ToBGR888, rvkColorRGB888ToBGR888u8C>("irvkRowRGB888ToBGR888", 3, 3),
    reordering<Kernel::irvkRowRGB888ToRGBA8888, rvkColorRGB888ToRGBA8888u8C>("irvkRowRGB888ToRGBA8888", 3, 4),
    reordering<Kernel::irvkRowRGB888ToBGRA8888, rvkColorRGB888ToBGRA8888u8C>("irvkRowRGB888ToBGRA8888", 3, 4),
    reordering<Kernel::irvkRowRGBA8888ToRGB565, rvkColorRGBA8888ToRGB565u8C>("irvkRowRGBA8888ToRGB565", 4, 2),
    reordering<Kernel::irvkRowRGBA8888ToBGR565, rvkColorRGBA8888ToBGR565u8C>("irvkRowRGBA8888ToBGR565", 4, 2),
    reordering<Kernel::irvkRowRGBA8888ToRGB888, rvkColorRGBA8888ToRGB888u8C>("irvkRowRGBA8888ToRGB888", 4, 3),
    reordering<Kernel::irvkRowRGBA8888ToBGR888, rvkColorRGBA8888ToBGR888u8C>("irvkRowRGBA8888ToBGR888", 4, 3),
    reordering<Kernel::irvkRowRGBA8888ToBGRA8888, rvkColorRGBA8888ToBGRA8888u8C>("irvkRowRGBA8888ToBGRA8888", 4, 4),
};

// Bytes of a row of target i.
size_t targetRow(const RgbKernel& tested, size_t i, uint32_t width)
{
    const uint32_t odd = tested.targets[i] == 2 && i > 0 ? width % 2 : 0; // pairs of chroma
    return (size_t{width} * tested.targets[i] + 1) / 2 + odd;
}

void callOnGuardedRows(const RgbKernel& tested, uint32_t width, GuardedMemory::Flush flush)
{
    constexpr uint8_t untouched = 0xa5;
    const uint32_t rowSize = width * tested.pixelSize;
    const GuardedMemory source(tested.rows * (rowSize + kGap) - kGap, flush);
    Random random(width);
    std::generate_n(source.data(), tested.rows * (rowSize + kGap) - kGap,
                    [&] { return static_cast<uint8_t>(random.below(256)); });
    size_t sizes[3];
    for (size_t i = 0; i < 3; ++i)
        sizes[i] = std::max<size_t>(targetRow(tested, i, width), 1);
    sizes[0] = tested.targetRows * (sizes[0] + kGap) - kGap;
    const GuardedMemory targets[] = {{sizes[0], flush}, {sizes[1], flush}, {sizes[2], flush}};
    std::vector<uint8_t> expected[3];
    Call call = {width, source.data(), rowSize + kGap, {}, width + kGap}, onExpected = call;
    for (size_t i = 0; i < 3; ++i) {
        std::fill_n(targets[i].data(), sizes[i], untouched);
        expected[i].assign(sizes[i], untouched);
        call.dst[i] = targets[i].data();
        onExpected.dst[i] = expected[i].data();
    }
    tested.call(call);
    tested.reference(onExpected);
    for (size_t i = 0; i < 3; ++i)
        ASSERT_TRUE(std::equal(expected[i].begin(), expected[i].end(), targets[i].data()))
            << tested.name << " of width " << width << ", target " << i;
}

void callAtAllWidths(const RgbKernel& tested)
{
    for (uint32_t width = 1; width < 150; ++width)
        for (const auto flush : {GuardedMemory::Flush::toStart, GuardedMemory::Flush::toEnd})
            callOnGuardedRows(tested, width, flush);
}

TEST(ColorKernels, ConvertRowsAsTheFunctionsDoInBothModes)
{
    for (const RgbKernel& tested : kRgbKernels)
        inBothModes(tested.kernel, tested.name, [&] { callAtAllWidths(tested); });
}

} // namespace
