// What the function lists say, in types: the slots, the C references, and the signature behind each slot.
#pragma once

#include "internal.h"
#include "offload.h"

#include <ravik/ravik.h>

#include <cstddef>
#include <cstdint>

// RVK_WHEN_YES(x) is x, RVK_WHEN_NO(x) is nothing: for the YES and NO columns of the lists.
#define RVK_WHEN_YES(...) __VA_ARGS__
#define RVK_WHEN_NO(...)

namespace rvk {

inline constexpr uint32_t kPublicFunctions = 506;
inline constexpr uint32_t kInternalFunctions = 16;
inline constexpr uint32_t kTargets = 7;

enum class Slot : uint32_t {
#define RVK_FUNCTION(name, reference, vecta, remote) name,
#include "functionList.inc"
#undef RVK_FUNCTION
    count
};
static_assert(static_cast<uint32_t>(Slot::count) == kPublicFunctions);

enum class InternalSlot : uint32_t {
#define RVK_INTERNAL_FUNCTION(name, reference, vecta, remote) name,
#include "internalFunctionList.inc"
#undef RVK_INTERNAL_FUNCTION
    count
};
static_assert(static_cast<uint32_t>(InternalSlot::count) == kInternalFunctions);

enum class Kernel : uint32_t {
#define RVK_KERNEL(name, reference, vecta) name,
#include "kernelList.inc"
#undef RVK_KERNEL
    count
};
inline constexpr uint32_t kKernels = static_cast<uint32_t>(Kernel::count);

// Public functions that are dispatched by the internal list.
using ::rvkScaleDownBy2Gaussian5x5f32;
using ::rvkScaleDownBy2Gaussian5x5f32_v2;

// Every reference has the signature of its public function (of its own declaration in offload.h for internal
// operations); a definition that deviates does not link.
#define RVK_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##reference(decltype(::name) name##C;)
#include "functionList.inc"
#undef RVK_FUNCTION
#define RVK_INTERNAL_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##reference(decltype(rvk::name) name##C;)
#include "internalFunctionList.inc"
#undef RVK_INTERNAL_FUNCTION
// The references of the inner kernels: one declaration here for each row of kernelList.inc whose reference column says
// YES.
void irvkRowRGBToLabC(const uint8_t* src, uint32_t width, uint8_t* dst); // src is RGBA8888

// Chroma of a row. `width` counts the samples, or pairs of them, of the longer rows, and may be odd: shorter ones then
// have (width + 1) / 2. Halved rows have the rounded means of neighbours, the last sample alone where it has none;
// doubled ones have each sample twice. Chroma rows are of pairs, but irvkChromaUpsamplePlanar's of one component. What
// doubles vertically writes two rows. No row may overlap another.
void irvkRowDownsampleBy2C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowDownsampleBy2DeinterleaveC(const uint8_t* src, uint32_t width, uint8_t* dst1, uint8_t* dst2);
void irvkRowUpsampleBy2C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowUpsampleBy2InterleaveC(const uint8_t* src1, const uint8_t* src2, uint32_t width, uint8_t* dst);
void irvkChromaUpsampleVerticalC(const uint8_t* src, uint32_t width, uint8_t* dst, uint32_t dstStride);
void irvkChromaUpsampleHorizontalC(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkChromaUpsample2DC(const uint8_t* src, uint32_t width, uint8_t* dst, uint32_t dstStride);
void irvkChromaUpsamplePlanarC(const uint8_t* src, uint32_t width, uint8_t* dst, uint32_t dstStride);
void irvkRowInterleaveUVC(const uint8_t* src1, const uint8_t* src2, uint32_t width, uint8_t* dst);
void irvkRowDeinterleaveUVC(const uint8_t* src, uint32_t width, uint8_t* dst1, uint8_t* dst2);

// A channel of a row of `width` pixels. `src` is the row of the plane that has it: of luma or of pairs, or the packed
// row, which ends with a whole group of two pixels. U and V are (width + 1) / 2 samples.
void irvkExtractYFromNV12C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkExtractUFromNV12C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkExtractVFromNV12C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkExtractYFromNV21C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkExtractUFromNV21C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkExtractVFromNV21C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkExtractYFromUYVYC(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkExtractUFromUYVYC(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkExtractVFromUYVYC(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkExtractYFromYUYVC(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkExtractUFromYUYVC(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkExtractVFromYUYVC(const uint8_t* src, uint32_t width, uint8_t* dst);

// A row of `width` pixels to luma and the chroma of even pixels, and to luma alone. Of YYUV, two rows of luma share the
// chroma of the first, (width + 1) / 2 pairs. The byte order is that of the conversions of pictures.
void irvkRowRGB565ToYUVC(const uint8_t* src, uint32_t width, uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr);
void irvkRowRGB565ToYYUVC(const uint8_t* src, uint32_t width, uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride,
                          uint8_t* dstC);
void irvkRowRGB565ToYC(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowRGB888ToYUVC(const uint8_t* src, uint32_t width, uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr);
void irvkRowRGB888ToYYUVC(const uint8_t* src, uint32_t width, uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride,
                          uint8_t* dstC);
void irvkRowRGB888ToYC(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowRGBA8888ToYUVC(const uint8_t* src, uint32_t width, uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr);
void irvkRowRGBA8888ToYYUVC(const uint8_t* src, uint32_t width, uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride,
                            uint8_t* dstC);
void irvkRowRGBA8888ToYC(const uint8_t* src, uint32_t width, uint8_t* dst);

// A row of `width` pixels to another layout of RGB.
void irvkRowRGB565ToBGR565C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowRGB565ToRGB888C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowRGB565ToBGR888C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowRGB565ToRGBA8888C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowRGB565ToBGRA8888C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowRGB888ToRGB565C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowRGB888ToBGR565C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowRGB888ToBGR888C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowRGB888ToRGBA8888C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowRGB888ToBGRA8888C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowRGBA8888ToRGB565C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowRGBA8888ToBGR565C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowRGBA8888ToRGB888C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowRGBA8888ToBGR888C(const uint8_t* src, uint32_t width, uint8_t* dst);
void irvkRowRGBA8888ToBGRA8888C(const uint8_t* src, uint32_t width, uint8_t* dst);

// A row of `dstWidth` pixels of 1 or 2 bytes: each byte is the rounded mean of that byte of the pixels in `rows` rows
// of the source, columns floor(x * srcWidth / dstWidth) to floor((x + 1) * srcWidth / dstWidth) - 1.
void irvkScaleDownMNCoreC(const uint8_t* src, uint32_t srcWidth, uint32_t rows, uint32_t srcStride, uint32_t pixelSize,
                          uint8_t* dst, uint32_t dstWidth);

// The moments of a tile of at most 32x32 pixels, of which those that are not 0 count as 1 when `binary` is not 0.
struct RawMoments;
void irvkTileMomentsu8C(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t binary,
                        RawMoments* moments);
void irvkTileMomentss32C(const int32_t* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t binary,
                         RawMoments* moments);
void irvkTileMomentsf32C(const float32_t* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t binary,
                         RawMoments* moments);

// The sum of the pixels of a block; and of two blocks the sum of absolute differences, each pixel less the whole part
// of the mean of its block. *mean2 is that of the second.
uint32_t calculateBlockSum16x16C(const uint8_t* block, uint32_t stride);
uint32_t calculateBlockSAD_ZeroMean16x16C(const uint8_t* block1, const uint8_t* block2, uint32_t stride,
                                          uint32_t* mean2);

// A row of an integral image: dst[x] is above[x] and the sum of src[0] to src[x].
void irvkIntegralLineC(const uint8_t* src, uint32_t width, const uint32_t* above, uint32_t* dst);

// Votes of pixels, x + 65536 * y, for the lines of one angle: each for bin (x * c + y * s + 16384) >> 15, where `votes` is
// bin 0. The sums fit 32 bits.
void irvkHoughAccumulateAreaC(const uint32_t* pixels, uint32_t nPixels, int32_t c, int32_t s, uint32_t* votes);

// Scharr's derivatives across and down, weights 3 10 3 by 32, of width x height samples; there is one more around them,
// where `src` begins.
void irvkGradientIxf32C(const float32_t* src, uint32_t width, uint32_t height, uint32_t srcStride, float32_t* dst,
                        uint32_t dstStride);
void irvkGradientIyf32C(const float32_t* src, uint32_t width, uint32_t height, uint32_t srcStride, float32_t* dst,
                        uint32_t dstStride);

// The dot product of n elements modulo 2^32.
int32_t irvkDotProductNC(const int8_t* a, const int8_t* b, uint32_t n);

// Interleaved points moved and scaled: (point - centre) * scale.
void irvkNormalizePoints2DC(const float32_t* points, uint32_t count, const double* centre, double scale,
                            double* normalized);

// MSER. The cells of a picture (cpu/ravikMserC.h) and how many there are of each grey value. Plus takes 255 - src for
// bright regions, minus src for dark ones. The cells for 4 and for 8 neighbours are the same.
void irvkMserPreprocessPlusNN4C(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint16_t* cells,
                                uint32_t* histogram);
void irvkMserPreprocessMinusNN4C(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint16_t* cells,
                                 uint32_t* histogram);
void irvkMserPreprocessPlusNN8C(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint16_t* cells,
                                uint32_t* histogram);
void irvkMserPreprocessMinusNN8C(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint16_t* cells,
                                 uint32_t* histogram);
// May raise pits, components of pixels that are all below those around them, to the level where they meet these, and
// then counts anew: those of at most mostPixels pixels and mostDepth levels. So it depends on the implementation which
// small regions the cells have, but not which larger ones; the reference leaves all. `memory` is for 4 bytes a cell.
void irvkMserFillPitsNN4C(uint16_t* cells, uint32_t width, uint32_t height, uint32_t mostPixels, uint32_t mostDepth,
                          uint32_t* histogram, uint32_t* memory);
void irvkMserFillPitsNN8C(uint16_t* cells, uint32_t width, uint32_t height, uint32_t mostPixels, uint32_t mostDepth,
                          uint32_t* histogram, uint32_t* memory);
// The bounds of lists of pixels, one list behind the other, each with one pixel at least, and the least place of each.
// A place is a cell's number; rows have `pitch` cells.
void irvkMserBoundingBoxesC(const uint32_t* places, const uint32_t* counts, uint32_t nLists, uint32_t pitch,
                            rvkRectangle* boxes, uint32_t* firsts);

// The largest threshold from `barrier` on at which a pixel is a FAST corner, if it is one at `barrier`. The offsets are
// those of the 16 pixels of the circle around it, in their order.
uint32_t fast9_corner_scoreC(const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier);
uint32_t fast10_corner_scoreC(const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier);

template <auto slot>
struct SignatureOf; // Type: pointer to the functions that fill the slot's row; absent while the row has no reference

#define RVK_FUNCTION(name, reference, vecta, remote) \
    RVK_WHEN_##reference(template <> struct SignatureOf<Slot::name> { using Type = decltype(&name##C); };)
#include "functionList.inc"
#undef RVK_FUNCTION
#define RVK_INTERNAL_FUNCTION(name, reference, vecta, remote) \
    RVK_WHEN_##reference(template <> struct SignatureOf<InternalSlot::name> { using Type = decltype(&name##C); };)
#include "internalFunctionList.inc"
#undef RVK_INTERNAL_FUNCTION
#define RVK_KERNEL(name, reference, vecta) \
    RVK_WHEN_##reference(template <> struct SignatureOf<Kernel::name> { using Type = decltype(&name##C); };)
#include "kernelList.inc"
#undef RVK_KERNEL

} // namespace rvk
