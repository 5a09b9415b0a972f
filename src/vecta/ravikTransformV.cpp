// Vector implementations of the transposes, flips and rotations.
//
// Pixels are 1, 2, 3 or 4 bytes at any address, rows a signed number of bytes apart: a rotation is a transpose whose
// source or destination is walked from its last row up.
#include "cpu/transform.h"
#include "vecta/simd/tiles.h"
#include "vecta/vecta.h"

#include <ravik/transform.h>

namespace rvk::vecta::RVK_ISA {
namespace {

// Images are transposed in bands of as many rows as a cache line of the destination takes, so that lines are written
// whole.
template <size_t pixel>
constexpr size_t kBandRows = pixel == 3 ? 16 : 64 / pixel;

// `width` is at least a tile, `height` some of them. The last tile across overlaps its neighbour.
template <class Tile>
RVK_NOINLINE void transposeBand(const uint8_t* src, size_t width, size_t height, ptrdiff_t srcStep, uint8_t* dst,
                                ptrdiff_t dstStep)
{
    constexpr size_t pixel = Tile::pixel;
    for (size_t nextX = 0; nextX < width; nextX += Tile::columns) {
        const size_t x = least(nextX, width - Tile::columns);
        const bool readsBehindRow = (width - x) * pixel < Tile::columns * pixel + Tile::excess;
        const uint8_t* in = src + x * pixel;
        uint8_t* out = dst + static_cast<ptrdiff_t>(x) * dstStep;
        for (size_t tiles = height / Tile::rows; tiles > 0; --tiles) {
            if (Tile::excess > 0 && readsBehindRow)
                Tile::template transpose<Tile::excess>(in, srcStep, out, dstStep); // starts earlier for it
            else
                Tile::template transpose<0>(in, srcStep, out, dstStep);
            in += static_cast<ptrdiff_t>(Tile::rows) * srcStep;
            out += Tile::rows * pixel;
        }
    }
}

// The same for rows so far apart that few of them find room in the cache together: squares of the source are copied to
// where they do, so that each of its lines is fetched once.
template <class Tile>
RVK_INLINE void transposeBandThroughBuffer(const uint8_t* src, size_t width, size_t height, ptrdiff_t srcStep,
                                           uint8_t* dst, ptrdiff_t dstStep)
{
    constexpr size_t pixel = Tile::pixel, side = kBandRows<pixel>;
    constexpr size_t rowBytes = side * pixel;
    alignas(64) uint8_t buffer[side * rowBytes];
    for (size_t nextX = 0; nextX < width; nextX += side) {
        const size_t x = least(nextX, width - side);
        for (size_t y = 0; y < height; ++y)
            __builtin_memcpy(buffer + y * rowBytes, src + static_cast<ptrdiff_t>(y) * srcStep + x * pixel, rowBytes);
        transposeBand<Tile>(buffer, side, height, rowBytes, dst + static_cast<ptrdiff_t>(x) * dstStep, dstStep);
    }
}

// Whether the rows of a band share so few sets of a cache of 4096 bytes a way that most evict each other.
template <size_t pixel>
RVK_INLINE bool rowsCollideInCache(ptrdiff_t step)
{
    return step % static_cast<ptrdiff_t>(65536 / kBandRows<pixel>) == 0;
}

template <class Tile>
RVK_INLINE void transposeByTiles(const uint8_t* src, size_t width, size_t height, ptrdiff_t srcStep, uint8_t* dst,
                                 ptrdiff_t dstStep)
{
    constexpr size_t pixel = Tile::pixel;
    const bool throughBuffer = rowsCollideInCache<pixel>(srcStep) && width >= kBandRows<pixel>;
    for (size_t next = 0; next < height;) {
        const size_t y = least(next, height - Tile::rows);
        const size_t rows = least((height - y) / Tile::rows * Tile::rows, kBandRows<pixel>);
        next = y + rows;
        const uint8_t* in = src + static_cast<ptrdiff_t>(y) * srcStep;
        if (throughBuffer)
            transposeBandThroughBuffer<Tile>(in, width, rows, srcStep, dst + y * pixel, dstStep);
        else
            transposeBand<Tile>(in, width, rows, srcStep, dst + y * pixel, dstStep);
    }
}

template <size_t pixel>
RVK_INLINE void copyPixel(const uint8_t* from, uint8_t* to)
{
    uint8_t copy[pixel];
    __builtin_memcpy(copy, from, pixel);
    __builtin_memcpy(to, copy, pixel);
}

// dst(y, x) = src(x, y). The steps from row to row may be negative.
template <size_t pixel>
RVK_NOINLINE void transpose(const uint8_t* src, size_t width, size_t height, ptrdiff_t srcStep, uint8_t* dst,
                            ptrdiff_t dstStep)
{
    using Large = typename Tiles<pixel>::Large;
    using Small = typename Tiles<pixel>::Small;
    if (width >= Large::leastWidth && height >= Large::rows) {
        transposeByTiles<Large>(src, width, height, srcStep, dst, dstStep);
    } else if (width >= Small::leastWidth && height >= Small::rows) {
        transposeByTiles<Small>(src, width, height, srcStep, dst, dstStep);
    } else {
        for (size_t y = 0; y < height; ++y)
            for (size_t x = 0; x < width; ++x)
                copyPixel<pixel>(src + static_cast<ptrdiff_t>(y) * srcStep + x * pixel,
                                 dst + static_cast<ptrdiff_t>(x) * dstStep + y * pixel);
    }
}

// ---- flips: runs of pixels in registers ---------------------------------------------------------------------------

// ---- flips from one image to another ------------------------------------------------------------------------------

// Mirrors a row of `size` bytes that is at least a run. The last run overlaps the one before it.
template <class Run>
RVK_INLINE void mirrorRuns(const uint8_t* in, uint8_t* out, size_t size)
{
    const uint8_t* const end = in + size;
    size_t i = 0;
    for (; i + 2 * Run::size <= size; i += 2 * Run::size) {
        const Run first = Run::load(end - i - Run::size);
        const Run second = Run::load(end - i - 2 * Run::size);
        first.storeReversed(out + i);
        second.storeReversed(out + i + Run::size);
    }
    if (i + Run::size <= size)
        Run::load(end - i - Run::size).storeReversed(out + i);
    Run::load(in).storeReversed(out + size - Run::size);
}

template <size_t pixel>
RVK_INLINE void mirrorRow(const uint8_t* in, uint8_t* out, size_t width)
{
    const size_t size = width * pixel;
    if (size >= Runs<pixel>::Long::size)
        mirrorRuns<typename Runs<pixel>::Long>(in, out, size);
    else if (size >= Runs<pixel>::Short::size)
        mirrorRuns<typename Runs<pixel>::Short>(in, out, size);
    else
        for (size_t x = 0; x < width; ++x)
            copyPixel<pixel>(in + (width - 1 - x) * pixel, out + x * pixel);
}

template <size_t pixel>
RVK_INLINE void flipApart(const uint8_t* src, size_t width, size_t height, size_t srcStride, uint8_t* dst,
                          size_t dstStride, uint32_t dir)
{
    for (size_t y = 0; y < height; ++y) {
        const uint8_t* in = src + (dir == RAVIK_FLIP_HORIZONTAL ? y : height - 1 - y) * srcStride;
        if (dir == RAVIK_FLIP_VERTICAL)
            mapRow(
                width * pixel, dst + y * dstStride, [](auto bytes) RVK_INLINE_LAMBDA { return bytes; }, in);
        else
            mirrorRow<pixel>(in, dst + y * dstStride, width);
    }
}

// ---- flips in place -----------------------------------------------------------------------------------------------

// Exchanges `size` bytes of pixels from `left` upwards with as many below `right`, at least a run, each pixel for the
// mirrored one. The last step overlaps the one before it; its pixels are read before anything is written.
template <class Run>
RVK_INLINE void exchangeRuns(uint8_t* left, uint8_t* right, size_t size)
{
    const size_t tail = size - Run::size;
    const Run lastLeft = Run::load(left + tail);
    const Run lastRight = Run::load(right - size);
    for (size_t i = 0; i < tail; i += Run::size) {
        const Run fromLeft = Run::load(left + i);
        const Run fromRight = Run::load(right - i - Run::size);
        fromRight.storeReversed(left + i);
        fromLeft.storeReversed(right - i - Run::size);
    }
    lastRight.storeReversed(left + tail);
    lastLeft.storeReversed(right - size);
}

template <size_t pixel>
RVK_INLINE void exchange(uint8_t* left, uint8_t* right, size_t pixels)
{
    const size_t size = pixels * pixel;
    if (size >= Runs<pixel>::Long::size)
        return exchangeRuns<typename Runs<pixel>::Long>(left, right, size);
    if (size >= Runs<pixel>::Short::size)
        return exchangeRuns<typename Runs<pixel>::Short>(left, right, size);
    for (size_t i = 0; i < size; i += pixel) {
        uint8_t fromLeft[pixel];
        __builtin_memcpy(fromLeft, left + i, pixel);
        copyPixel<pixel>(right - i - pixel, left + i);
        __builtin_memcpy(right - i - pixel, fromLeft, pixel);
    }
}

template <size_t pixel>
RVK_INLINE void mirrorRowInPlace(uint8_t* row, size_t width)
{
    exchange<pixel>(row, row + width * pixel, width / 2);
}

RVK_INLINE void swapRows(uint8_t* a, uint8_t* b, size_t bytes)
{
    uint8_t piece[1024];
    for (size_t i = 0; i < bytes; i += sizeof piece) {
        const size_t n = least(bytes - i, sizeof piece);
        __builtin_memcpy(piece, a + i, n);
        __builtin_memcpy(a + i, b + i, n);
        __builtin_memcpy(b + i, piece, n);
    }
}

template <size_t pixel>
RVK_INLINE void flipInPlace(uint8_t* image, size_t width, size_t height, size_t stride, uint32_t dir)
{
    if (dir == RAVIK_FLIP_HORIZONTAL) {
        for (size_t y = 0; y < height; ++y)
            mirrorRowInPlace<pixel>(image + y * stride, width);
        return;
    }
    for (size_t y = 0; y < height / 2; ++y) {
        uint8_t* top = image + y * stride;
        uint8_t* bottom = image + (height - 1 - y) * stride;
        if (dir == RAVIK_FLIP_VERTICAL)
            swapRows(top, bottom, width * pixel);
        else
            exchange<pixel>(top, bottom + width * pixel, width);
    }
    if (dir == RAVIK_FLIP_BOTH && height % 2)
        mirrorRowInPlace<pixel>(image + height / 2 * stride, width);
}

template <size_t pixel>
RVK_NOINLINE void flip(const uint8_t* src, size_t width, size_t height, size_t srcStride, uint8_t* dst,
                       size_t dstStride, uint32_t dir)
{
    if (dir == RAVIK_FLIP_BOTH && srcStride == width * pixel && dstStride == width * pixel) {
        width *= height; // without gaps between the rows it mirrors one long row
        height = 1;
    }
    if (src == dst)
        flipInPlace<pixel>(dst, width, height, dstStride, dir);
    else
        flipApart<pixel>(src, width, height, srcStride, dst, dstStride, dir);
}

// ---- rotations: `flipName` is the flip of the same pixels ---------------------------------------------------------

template <size_t pixel>
RVK_INLINE rvkStatus rotate(const char* flipName, const uint8_t* src, uint32_t width, uint32_t height,
                            uint32_t srcStride, uint8_t* dst, uint32_t dstStride, uint32_t rotation)
{
    const ptrdiff_t srcStep = static_cast<ptrdiff_t>(srcStride), dstStep = static_cast<ptrdiff_t>(dstStride);
    if (rotation == RAVIK_ROTATE_90) {
        transpose<pixel>(src + size_t{height - 1} * srcStride, width, height, -srcStep, dst, dstStep);
    } else if (rotation == RAVIK_ROTATE_270) {
        transpose<pixel>(src, width, height, srcStep, dst + size_t{width - 1} * dstStride, -dstStep);
    } else if (rotation == RAVIK_ROTATE_180) {
        if (!flipIsPossible(flipName, src, srcStride, dst, dstStride))
            return RAVIK_EBADPARAM;
        flip<pixel>(src, width, height, srcStride, dst, dstStride, RAVIK_FLIP_BOTH);
    }
    return RAVIK_SUCCESS;
}

template <class T>
RVK_INLINE const uint8_t* bytesOf(const T* p)
{
    return reinterpret_cast<const uint8_t*>(p);
}
template <class T>
RVK_INLINE uint8_t* bytesOf(T* p)
{
    return reinterpret_cast<uint8_t*>(p);
}

// The stride in bytes of rows of T: a multiple of the element size.
template <class T>
RVK_INLINE uint32_t wholeElements(uint32_t stride)
{
    return stride / sizeof(T) * sizeof(T);
}

} // namespace

void rvkTransposeu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                     uint32_t dstStride)
{
    transpose<1>(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkTransposeu16V(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint16_t* dst,
                      uint32_t dstStride)
{
    transpose<2>(bytesOf(src), srcWidth, srcHeight, wholeElements<uint16_t>(srcStride), bytesOf(dst),
                 wholeElements<uint16_t>(dstStride));
}

void rvkTransposef32V(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t* dst,
                      uint32_t dstStride)
{
    transpose<4>(bytesOf(src), srcWidth, srcHeight, wholeElements<float32_t>(srcStride), bytesOf(dst),
                 wholeElements<float32_t>(dstStride));
}

void rvkTransposeRGB888u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                           uint32_t dstStride)
{
    transpose<3>(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkFlipu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                uint32_t dstStride, uint32_t dir)
{
    if (flipIsPossible("rvkFlipu8", src, srcStride, dst, dstStride))
        flip<1>(src, srcWidth, srcHeight, srcStride, dst, dstStride, dir);
}

void rvkFlipu16V(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint16_t* dst,
                 uint32_t dstStride, uint32_t dir)
{
    if (flipIsPossible("rvkFlipu16", src, srcStride, dst, dstStride))
        flip<2>(bytesOf(src), srcWidth, srcHeight, wholeElements<uint16_t>(srcStride), bytesOf(dst),
                wholeElements<uint16_t>(dstStride), dir);
}

void rvkFlipRGB888u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                      uint32_t dstStride, uint32_t dir)
{
    if (flipIsPossible("rvkFlipRGB888u8", src, srcStride, dst, dstStride))
        flip<3>(src, srcWidth, srcHeight, srcStride, dst, dstStride, dir);
}

rvkStatus rvkRotateImageu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                            uint32_t dstStride, uint32_t rotation)
{
    return rotate<1>("rvkFlipu8", src, srcWidth, srcHeight, srcStride, dst, dstStride, rotation);
}

rvkStatus rvkRotateImageInterleavedu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t* dst, uint32_t dstStride, uint32_t rotation)
{
    return rotate<2>("rvkFlipu16", src, srcWidth, srcHeight, srcStride, dst, dstStride, rotation);
}

} // namespace rvk::vecta::RVK_ISA
