// C references of the transposes, flips and rotations.
#include "cpu/transform.h"
#include "functions.h"
#include "log.h"

#include <cstddef>

namespace rvk {
namespace {

constexpr int kArgumentLine = 733; // where the log says that the arguments are wrong

// A pixel of several bytes, at any address.
template <size_t bytes>
struct Pixel
{
    uint8_t byte[bytes];
};

// Rows of pixels, `stride` bytes apart. A stride that does not keep the rows aligned is rounded down.
template <class P, class Byte>
struct PixelRows
{
    Byte* data;
    uint32_t stride;

    P* operator[](size_t y) const { return reinterpret_cast<P*>(data + y * (stride / alignof(P) * alignof(P))); }
};

template <class P>
PixelRows<const P, const uint8_t> rowsOf(const void* image, uint32_t stride)
{
    return {static_cast<const uint8_t*>(image), stride};
}

template <class P>
PixelRows<P, uint8_t> rowsOf(void* image, uint32_t stride)
{
    return {static_cast<uint8_t*>(image), stride};
}

template <class P>
void transpose(const void* src, size_t width, size_t height, uint32_t srcStride, void* dst, uint32_t dstStride)
{
    const auto in = rowsOf<P>(src, srcStride);
    const auto out = rowsOf<P>(dst, dstStride);
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            out[x][y] = in[y][x];
}

// ---- flips: pixels change places in pairs, so that source and destination may be the same image ----

template <class P>
void exchange(const P& from, const P& mirrored, P& to, P& mirroredTo)
{
    const P a = from, b = mirrored;
    to = b;
    mirroredTo = a;
}

template <class P>
void mirrorRow(const P* in, P* out, size_t width)
{
    for (size_t left = 0; left < (width + 1) / 2; ++left) {
        const size_t right = width - 1 - left;
        exchange(in[left], in[right], out[left], out[right]);
    }
}

template <class P>
void flipHorizontally(const void* src, size_t width, size_t height, uint32_t srcStride, void* dst, uint32_t dstStride)
{
    for (size_t y = 0; y < height; ++y)
        mirrorRow(rowsOf<P>(src, srcStride)[y], rowsOf<P>(dst, dstStride)[y], width);
}

template <class P>
void flipVertically(const void* src, size_t width, size_t height, uint32_t srcStride, void* dst, uint32_t dstStride)
{
    const auto in = rowsOf<P>(src, srcStride);
    const auto out = rowsOf<P>(dst, dstStride);
    for (size_t top = 0; top < (height + 1) / 2; ++top) {
        const size_t bottom = height - 1 - top;
        for (size_t x = 0; x < width; ++x)
            exchange(in[top][x], in[bottom][x], out[top][x], out[bottom][x]);
    }
}

template <class P>
void flipBoth(const void* src, size_t width, size_t height, uint32_t srcStride, void* dst, uint32_t dstStride)
{
    const auto in = rowsOf<P>(src, srcStride);
    const auto out = rowsOf<P>(dst, dstStride);
    for (size_t top = 0; top < height / 2; ++top) {
        const size_t bottom = height - 1 - top;
        for (size_t left = 0; left < width; ++left) {
            const size_t right = width - 1 - left;
            exchange(in[top][left], in[bottom][right], out[top][left], out[bottom][right]);
        }
    }
    if (height % 2)
        mirrorRow(in[height / 2], out[height / 2], width);
}

template <class P>
void flip(const void* src, size_t width, size_t height, uint32_t srcStride, void* dst, uint32_t dstStride, uint32_t dir)
{
    if (dir == RAVIK_FLIP_HORIZONTAL)
        flipHorizontally<P>(src, width, height, srcStride, dst, dstStride);
    if (dir == RAVIK_FLIP_VERTICAL)
        flipVertically<P>(src, width, height, srcStride, dst, dstStride);
    if (dir == RAVIK_FLIP_BOTH)
        flipBoth<P>(src, width, height, srcStride, dst, dstStride);
}

// ---- rotations ----

template <class P>
void rotateBy90(const void* src, size_t width, size_t height, uint32_t srcStride, void* dst, uint32_t dstStride)
{
    const auto in = rowsOf<P>(src, srcStride);
    const auto out = rowsOf<P>(dst, dstStride);
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            out[x][height - 1 - y] = in[y][x];
}

template <class P>
void rotateBy270(const void* src, size_t width, size_t height, uint32_t srcStride, void* dst, uint32_t dstStride)
{
    const auto in = rowsOf<P>(src, srcStride);
    const auto out = rowsOf<P>(dst, dstStride);
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            out[width - 1 - x][y] = in[y][x];
}

// `flipName` is the flip of the same pixels.
template <class P>
rvkStatus rotate(const char* flipName, const void* src, size_t width, size_t height, uint32_t srcStride, void* dst,
                 uint32_t dstStride, uint32_t rotation)
{
    if (rotation == RAVIK_ROTATE_90)
        rotateBy90<P>(src, width, height, srcStride, dst, dstStride);
    if (rotation == RAVIK_ROTATE_270)
        rotateBy270<P>(src, width, height, srcStride, dst, dstStride);
    if (rotation == RAVIK_ROTATE_180) {
        if (!flipIsPossible(flipName, src, srcStride, dst, dstStride))
            return RAVIK_EBADPARAM;
        flipBoth<P>(src, width, height, srcStride, dst, dstStride);
    }
    return RAVIK_SUCCESS;
}

} // namespace

bool flipIsPossible(const char* function, const void* src, uint32_t srcStride, const void* dst, uint32_t dstStride)
{
    if (src != dst || srcStride == dstStride)
        return true;
    logLibraryError("Error: %s - Try to do in place but srcStride != dstStride\n", function);
    return false;
}

void rvkTransposeu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                     uint32_t dstStride)
{
    transpose<uint8_t>(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkTransposeu16C(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint16_t* dst,
                      uint32_t dstStride)
{
    transpose<uint16_t>(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkTransposef32C(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t* dst,
                      uint32_t dstStride)
{
    transpose<float32_t>(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkTransposeRGB888u8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                           uint32_t dstStride)
{
    if (!(src && dst && srcWidth && srcHeight && srcStride / 3 >= srcWidth && dstStride / 3 >= srcHeight))
        failInternalAssertion("src/cpu/ravikArithmC", kArgumentLine,
                              "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*3) && "
                              "(dstStride >= srcHeight*3)");
    transpose<Pixel<3>>(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkFlipu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                uint32_t dstStride, uint32_t dir)
{
    if (flipIsPossible("rvkFlipu8", src, srcStride, dst, dstStride))
        flip<uint8_t>(src, srcWidth, srcHeight, srcStride, dst, dstStride, dir);
}

void rvkFlipu16C(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint16_t* dst,
                 uint32_t dstStride, uint32_t dir)
{
    if (flipIsPossible("rvkFlipu16", src, srcStride, dst, dstStride))
        flip<uint16_t>(src, srcWidth, srcHeight, srcStride, dst, dstStride, dir);
}

void rvkFlipRGB888u8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                      uint32_t dstStride, uint32_t dir)
{
    if (flipIsPossible("rvkFlipRGB888u8", src, srcStride, dst, dstStride))
        flip<Pixel<3>>(src, srcWidth, srcHeight, srcStride, dst, dstStride, dir);
}

rvkStatus rvkRotateImageu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                            uint32_t dstStride, uint32_t rotation)
{
    return rotate<uint8_t>("rvkFlipu8", src, srcWidth, srcHeight, srcStride, dst, dstStride, rotation);
}

rvkStatus rvkRotateImageInterleavedu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t* dst, uint32_t dstStride, uint32_t rotation)
{
    return rotate<Pixel<2>>("rvkFlipu16", src, srcWidth, srcHeight, srcStride, dst, dstStride, rotation);
}

} // namespace rvk
