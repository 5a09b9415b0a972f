// Vector implementations of the transposes, flips and rotations.
//
// Pixels are 1, 2, 3 or 4 bytes at any address, rows a signed number of bytes apart: a rotation is a transpose whose
// source or destination is walked from its last row up.
#include "cpu/transform.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

RVK_INLINE size_t atMost(size_t a, size_t b)
{
    return a < b ? a : b;
}

// ---- registers of a chosen number of 16-byte blocks
// --------------------------------------------------------------------

template <class T, size_t bytes>
struct Reg {
    using Raw __attribute__((vector_size(bytes))) = T;
    using InMemory __attribute__((vector_size(bytes), aligned(1), may_alias)) = T;
    static constexpr size_t lanes = bytes / sizeof(T);
    Raw raw;
};

template <class T, size_t bytes>
RVK_INLINE Reg<T, bytes> loadReg(const uint8_t* p)
{
    return {*reinterpret_cast<const typename Reg<T, bytes>::InMemory*>(p)};
}

template <class T, size_t bytes>
RVK_INLINE void storeReg(uint8_t* p, Reg<T, bytes> r)
{
    *reinterpret_cast<typename Reg<T, bytes>::InMemory*>(p) = r.raw;
}

// Block b comes from p + b * step.
template <class T, size_t bytes>
RVK_INLINE Reg<T, bytes> loadBlocks(const uint8_t* p, [[maybe_unused]] ptrdiff_t step)
{
#if defined(__AVX2__)
    const auto block = [&](ptrdiff_t b) RVK_INLINE_LAMBDA {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + b * step));
    };
    const auto pair = [&](ptrdiff_t b) RVK_INLINE_LAMBDA {
        return _mm256_inserti128_si256(_mm256_castsi128_si256(block(b)), block(b + 1), 1);
    };
#endif
    if constexpr (bytes == 16)
        return loadReg<T, 16>(p);
#if defined(__AVX2__)
    else if constexpr (bytes == 32)
        return {(typename Reg<T, 32>::Raw)pair(0)};
#endif
#if defined(__AVX512BW__)
    else if constexpr (bytes == 64)
        return {(typename Reg<T, 64>::Raw)_mm512_inserti64x4(_mm512_castsi256_si512(pair(0)), pair(2), 1)};
#endif
}

// The lower half of the one block comes from p, the upper one from p + step.
template <class T>
RVK_INLINE Reg<T, 16> loadHalves(const uint8_t* p, ptrdiff_t step)
{
#if defined(__ARM_NEON)
    return {(typename Reg<T, 16>::Raw)vcombine_u8(vld1_u8(p), vld1_u8(p + step))};
#else
    uint64_t half[2];
    __builtin_memcpy(&half[0], p, 8);
    __builtin_memcpy(&half[1], p + step, 8);
    return {(typename Reg<T, 16>::Raw)(typename Reg<uint64_t, 16>::Raw{half[0], half[1]})};
#endif
}

template <class T, size_t bytes, class F, size_t... i>
RVK_INLINE Reg<T, bytes> shuffleReg(Reg<T, bytes> a, Reg<T, bytes> b, F, Indices<i...>)
{
    return {__builtin_shufflevector(a.raw, b.raw, F{}(i)...)};
}

// Lane i of the result is lane f(i) of a followed by b, as in shuffle().
template <class T, size_t bytes, class F>
RVK_INLINE Reg<T, bytes> shuffleReg(Reg<T, bytes> a, Reg<T, bytes> b, F f)
{
    return shuffleReg(a, b, f, typename CountTo<bytes / sizeof(T)>::Type{});
}

// In each block: a0 b0 a1 b1 ... of the lower halves of the blocks, and of the upper halves.
template <class T, size_t bytes>
RVK_INLINE void zipBlocks(Reg<T, bytes> a, Reg<T, bytes> b, Reg<T, bytes>& low, Reg<T, bytes>& high)
{
    constexpr size_t n = kBlock<T>;
    low = shuffleReg(a, b, [](size_t i) { return i / n * n + i % n / 2 + i % 2 * Reg<T, bytes>::lanes; });
    high = shuffleReg(a, b, [](size_t i) { return i / n * n + n / 2 + i % n / 2 + i % 2 * Reg<T, bytes>::lanes; });
}

// ---- transposes
// ---------------------------------------------------------------------------------------------------------

// A pixel in a register: three bytes travel in a lane of four.
template <size_t pixel>
struct LaneOf {
    using Type = uint32_t;
};
template <>
struct LaneOf<1> {
    using Type = uint8_t;
};
template <>
struct LaneOf<2> {
    using Type = uint16_t;
};

// The part of an image that is transposed in registers. It is as many columns wide as there are registers: one for each
// pixel of a block, or half as many where that is too many for the instruction set.
template <size_t pixel, size_t bytes>
struct Tile {
    using Lane = typename LaneOf<pixel>::Type;
#if defined(__ARM_NEON) && !defined(__aarch64__)
    static constexpr size_t columns = pixel == 1 ? 8 : kBlock<Lane>;
#else
    static constexpr size_t columns = kBlock<Lane>;
#endif
    static constexpr size_t rows = bytes / sizeof(Lane);
    Reg<Lane, bytes> r[columns];
};

RVK_INLINE Reg<uint32_t, 16> loadFourRgb(const uint8_t* p)
{
#if defined(__ARM_NEON)
    const uint32x2_t last = vld1_lane_u32(reinterpret_cast<const uint32_t*>(p + 8), vdup_n_u32(0), 0);
    const Reg<uint8_t, 16> packed = {(Reg<uint8_t, 16>::Raw)vcombine_u8(vld1_u8(p), vreinterpret_u8_u32(last))};
#else
    uint64_t first;
    uint32_t last;
    __builtin_memcpy(&first, p, 8);
    __builtin_memcpy(&last, p + 8, 4);
    const Reg<uint8_t, 16> packed = {(Reg<uint8_t, 16>::Raw)Reg<uint64_t, 16>::Raw{first, last}};
#endif
    return {(Reg<uint32_t, 16>::Raw)shuffleReg(packed, packed, [](size_t i) { return i / 4 * 3 + i % 4; }).raw};
}

RVK_INLINE void storeFourRgb(uint8_t* p, Reg<uint32_t, 16> r)
{
    const Reg<uint8_t, 16> lanes = {(Reg<uint8_t, 16>::Raw)r.raw};
    const Reg<uint8_t, 16> packed = shuffleReg(lanes, lanes, [](size_t i) { return i < 12 ? i / 3 * 4 + i % 3 : i; });
    const uint64_t first = ((Reg<uint64_t, 16>::Raw)packed.raw)[0];
    const uint32_t last = ((Reg<uint32_t, 16>::Raw)packed.raw)[2];
    __builtin_memcpy(p, &first, 8);
    __builtin_memcpy(p + 8, &last, 4);
}

template <size_t pixel, size_t bytes>
RVK_INLINE void loadTile(Tile<pixel, bytes>& tile, const uint8_t* src, ptrdiff_t step)
{
    using T = Tile<pixel, bytes>;
    unrolled<T::columns>([&](auto i) RVK_INLINE_LAMBDA {
        if constexpr (pixel == 3) {
            tile.r[i] = loadFourRgb(src);
            src += step;
        } else if constexpr (T::columns == kBlock<typename T::Lane>) {
            tile.r[i] = loadBlocks<typename T::Lane, bytes>(src, static_cast<ptrdiff_t>(T::columns) * step);
            src += step;
        } else {
            tile.r[i] = loadHalves<typename T::Lane>(src, step);
            src += 2 * step;
        }
    });
}

// Write the numbers of a pixel's register and of its lane in the block as one string of bits: a round of zips rotates
// it by one bit. A pixel is loaded where the string is (row, column); after as many rounds as a block's rows have bits,
// it is (column, row).
template <size_t blockRows, size_t pixel, size_t bytes>
RVK_INLINE void zipRounds(Tile<pixel, bytes>& tile)
{
    if constexpr (blockRows > 1) {
        constexpr size_t half = Tile<pixel, bytes>::columns / 2;
        Tile<pixel, bytes> zipped;
        unrolled<half>([&](auto i) RVK_INLINE_LAMBDA {
            zipBlocks(tile.r[i], tile.r[i + half], zipped.r[2 * i], zipped.r[2 * i + 1]);
        });
        tile = zipped;
        zipRounds<blockRows / 2>(tile);
    }
}

template <size_t pixel, size_t bytes>
RVK_INLINE void transposeTile(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep)
{
    using T = Tile<pixel, bytes>;
    T tile;
    loadTile(tile, src, srcStep);
    zipRounds<kBlock<typename T::Lane>>(tile);
    unrolled<T::columns>([&](auto i) RVK_INLINE_LAMBDA {
        if constexpr (pixel == 3)
            storeFourRgb(dst, tile.r[i]);
        else
            storeReg(dst, tile.r[i]);
        dst += dstStep;
    });
}

// Images are transposed in bands of as many rows as a cache line of the destination takes, so that lines are written
// whole.
template <size_t pixel>
constexpr size_t kBandRows = 64 / sizeof(typename LaneOf<pixel>::Type);

// `width` x `height` are at least a tile. The last tiles overlap their neighbours.
template <size_t pixel, size_t bytes>
RVK_INLINE void transposeBand(const uint8_t* src, size_t width, size_t height, ptrdiff_t srcStep, uint8_t* dst,
                              ptrdiff_t dstStep)
{
    using T = Tile<pixel, bytes>;
    for (size_t nextX = 0; nextX < width; nextX += T::columns) {
        const size_t x = atMost(nextX, width - T::columns);
        for (size_t nextY = 0; nextY < height; nextY += T::rows) {
            const size_t y = atMost(nextY, height - T::rows);
            transposeTile<pixel, bytes>(src + static_cast<ptrdiff_t>(y) * srcStep + x * pixel, srcStep,
                                        dst + static_cast<ptrdiff_t>(x) * dstStep + y * pixel, dstStep);
        }
    }
}

// The same for rows so far apart that few of them find room in the cache together: squares of the source are copied to
// where they do, so that each of its lines is fetched once.
template <size_t pixel, size_t bytes>
RVK_INLINE void transposeBandThroughBuffer(const uint8_t* src, size_t width, size_t height, ptrdiff_t srcStep,
                                           uint8_t* dst, ptrdiff_t dstStep)
{
    constexpr size_t side = kBandRows<pixel>;
    constexpr size_t rowBytes = side * pixel;
    alignas(64) uint8_t buffer[side * rowBytes];
    for (size_t nextX = 0; nextX < width; nextX += side) {
        const size_t x = atMost(nextX, width - side);
        for (size_t y = 0; y < height; ++y)
            __builtin_memcpy(buffer + y * rowBytes, src + static_cast<ptrdiff_t>(y) * srcStep + x * pixel, rowBytes);
        transposeBand<pixel, bytes>(buffer, side, height, rowBytes, dst + static_cast<ptrdiff_t>(x) * dstStep, dstStep);
    }
}

template <size_t pixel, size_t bytes>
RVK_INLINE void transposeByTiles(const uint8_t* src, size_t width, size_t height, ptrdiff_t srcStep, uint8_t* dst,
                                 ptrdiff_t dstStep)
{
    constexpr size_t tileRows = Tile<pixel, bytes>::rows;
    const bool rowsCollideInCache = srcStep % static_cast<ptrdiff_t>(1024 * sizeof(typename LaneOf<pixel>::Type)) == 0;
    for (size_t nextY = 0; nextY < height; nextY += kBandRows<pixel>) {
        const size_t y = atMost(nextY, height - tileRows);
        const size_t rows = atMost(height - y, kBandRows<pixel>);
        const uint8_t* in = src + static_cast<ptrdiff_t>(y) * srcStep;
        if (rowsCollideInCache && width >= kBandRows<pixel>)
            transposeBandThroughBuffer<pixel, bytes>(in, width, rows, srcStep, dst + y * pixel, dstStep);
        else
            transposeBand<pixel, bytes>(in, width, rows, srcStep, dst + y * pixel, dstStep);
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
__attribute__((noinline)) void transpose(const uint8_t* src, size_t width, size_t height, ptrdiff_t srcStep,
                                         uint8_t* dst, ptrdiff_t dstStep)
{
    constexpr size_t most = pixel == 3 ? 16 : kBytes;
    if (width >= Tile<pixel, most>::columns && height >= Tile<pixel, most>::rows) {
        transposeByTiles<pixel, most>(src, width, height, srcStep, dst, dstStep);
    } else if (width >= Tile<pixel, 16>::columns && height >= Tile<pixel, 16>::rows) {
        transposeByTiles<pixel, 16>(src, width, height, srcStep, dst, dstStep);
    } else {
        for (size_t y = 0; y < height; ++y)
            for (size_t x = 0; x < width; ++x)
                copyPixel<pixel>(src + static_cast<ptrdiff_t>(y) * srcStep + x * pixel,
                                 dst + static_cast<ptrdiff_t>(x) * dstStep + y * pixel);
    }
}

// ---- flips
// --------------------------------------------------------------------------------------------------------------

// Takes n pixels upwards from leftIn and n downwards from rightIn, which is the end of the last of them; each goes to
// the mirrored place in the other. The destinations may be the sources.
template <size_t pixel>
RVK_INLINE void exchangePixels(const uint8_t* leftIn, const uint8_t* rightIn, uint8_t* leftOut, uint8_t* rightOut,
                               size_t n)
{
    for (; n > 0; --n, leftIn += pixel, leftOut += pixel) {
        rightIn -= pixel;
        rightOut -= pixel;
        uint8_t left[pixel];
        __builtin_memcpy(left, leftIn, pixel);
        copyPixel<pixel>(rightIn, leftOut);
        __builtin_memcpy(rightOut, left, pixel);
    }
}

template <class Lane, size_t bytes>
RVK_INLINE Reg<Lane, bytes> reversed(Reg<Lane, bytes> r)
{
    return shuffleReg(r, r, [](size_t i) { return Reg<Lane, bytes>::lanes - 1 - i; });
}

// exchangePixels for n pixels that are at least a register; pixels of a lane. The last step overlaps the one before it
// and its sources are read before anything is written.
template <class Lane, size_t bytes>
RVK_INLINE void exchangeRegs(const uint8_t* leftIn, const uint8_t* rightIn, uint8_t* leftOut, uint8_t* rightOut,
                             size_t n)
{
    const size_t size = n * sizeof(Lane), tail = size - bytes;
    const auto lastLeft = loadReg<Lane, bytes>(leftIn + tail);
    const auto lastRight = loadReg<Lane, bytes>(rightIn - size);
    for (size_t i = 0; i < tail; i += bytes) {
        const auto left = loadReg<Lane, bytes>(leftIn + i);
        const auto right = loadReg<Lane, bytes>(rightIn - i - bytes);
        storeReg(leftOut + i, reversed(right));
        storeReg(rightOut - i - bytes, reversed(left));
    }
    storeReg(leftOut + tail, reversed(lastRight));
    storeReg(rightOut - size, reversed(lastLeft));
}

// exchangePixels for three bytes, five pixels at a time. A register has one byte more: it lies in a pixel whose turn
// comes later, and there it may get what it had in the source.
RVK_INLINE void exchangeRgb(const uint8_t* leftIn, const uint8_t* rightIn, uint8_t* leftOut, uint8_t* rightOut,
                            size_t n)
{
    using R = Reg<uint8_t, 16>;
    for (; n > 5; n -= 5, leftIn += 15, leftOut += 15) {
        const R left = loadReg<uint8_t, 16>(leftIn);
        const R right = loadReg<uint8_t, 16>(rightIn - 16);
        storeReg(leftOut, shuffleReg(right, left, [](size_t i) { return i < 15 ? 13 - i / 3 * 3 + i % 3 : 16 + 15; }));
        storeReg(rightOut - 16,
                 shuffleReg(left, right, [](size_t i) { return i > 0 ? 12 - (i - 1) / 3 * 3 + (i - 1) % 3 : 16; }));
        rightIn -= 15;
        rightOut -= 15;
    }
    exchangePixels<3>(leftIn, rightIn, leftOut, rightOut, n);
}

template <size_t pixel>
RVK_INLINE void exchange(const uint8_t* leftIn, const uint8_t* rightIn, uint8_t* leftOut, uint8_t* rightOut, size_t n)
{
    using Lane = typename LaneOf<pixel>::Type;
    if constexpr (pixel == 3)
        exchangeRgb(leftIn, rightIn, leftOut, rightOut, n);
    else if (n * pixel >= kBytes)
        exchangeRegs<Lane, kBytes>(leftIn, rightIn, leftOut, rightOut, n);
    else if (n * pixel >= 16)
        exchangeRegs<Lane, 16>(leftIn, rightIn, leftOut, rightOut, n);
    else
        exchangePixels<pixel>(leftIn, rightIn, leftOut, rightOut, n);
}

template <size_t pixel>
RVK_INLINE void mirrorRow(const uint8_t* in, uint8_t* out, size_t width)
{
    exchange<pixel>(in, in + width * pixel, out, out + width * pixel, width / 2);
    if (width % 2)
        copyPixel<pixel>(in + width / 2 * pixel, out + width / 2 * pixel);
}

template <size_t pixel>
RVK_INLINE void flipHorizontally(const uint8_t* src, size_t width, size_t height, size_t srcStride, uint8_t* dst,
                                 size_t dstStride)
{
    for (size_t y = 0; y < height; ++y)
        mirrorRow<pixel>(src + y * srcStride, dst + y * dstStride, width);
}

RVK_INLINE void swapRows(uint8_t* a, uint8_t* b, size_t bytes)
{
    uint8_t piece[1024];
    for (size_t i = 0; i < bytes; i += sizeof piece) {
        const size_t n = atMost(bytes - i, sizeof piece);
        __builtin_memcpy(piece, a + i, n);
        __builtin_memcpy(a + i, b + i, n);
        __builtin_memcpy(b + i, piece, n);
    }
}

RVK_INLINE void flipVertically(const uint8_t* src, size_t rowBytes, size_t height, size_t srcStride, uint8_t* dst,
                               size_t dstStride)
{
    if (src == dst) {
        for (size_t y = 0; y < height / 2; ++y)
            swapRows(dst + y * dstStride, dst + (height - 1 - y) * dstStride, rowBytes);
    } else {
        for (size_t y = 0; y < height; ++y)
            __builtin_memcpy(dst + (height - 1 - y) * dstStride, src + y * srcStride, rowBytes);
    }
}

// Images without gaps between their rows are one long row to it.
template <size_t pixel>
RVK_INLINE void flipBoth(const uint8_t* src, size_t width, size_t height, size_t srcStride, uint8_t* dst,
                         size_t dstStride)
{
    if (srcStride == width * pixel && dstStride == width * pixel) {
        width *= height;
        height = 1;
    }
    for (size_t top = 0; top < height / 2; ++top) {
        const size_t bottom = height - 1 - top;
        exchange<pixel>(src + top * srcStride, src + bottom * srcStride + width * pixel, dst + top * dstStride,
                        dst + bottom * dstStride + width * pixel, width);
    }
    if (height % 2)
        mirrorRow<pixel>(src + height / 2 * srcStride, dst + height / 2 * dstStride, width);
}

template <size_t pixel>
__attribute__((noinline)) void flip(const uint8_t* src, size_t width, size_t height, size_t srcStride, uint8_t* dst,
                                    size_t dstStride, uint32_t dir)
{
    if (dir == RAVIK_FLIP_HORIZONTAL)
        flipHorizontally<pixel>(src, width, height, srcStride, dst, dstStride);
    if (dir == RAVIK_FLIP_VERTICAL)
        flipVertically(src, width * pixel, height, srcStride, dst, dstStride);
    if (dir == RAVIK_FLIP_BOTH)
        flipBoth<pixel>(src, width, height, srcStride, dst, dstStride);
}

// ---- rotations: `flipName` is the flip of the same pixels
// ---------------------------------------------------------------

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
