// Vector implementations of the transposes, flips and rotations.
//
// Pixels are 1, 2, 3 or 4 bytes at any address, rows a signed number of bytes apart: a rotation is a transpose whose
// source or destination is walked from its last row up.
#include "cpu/transform.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// ---- registers of a chosen number of 16-byte blocks ---------------------------------------------------------------

template <class T, size_t bytes>
struct Reg
{
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

// Bytes first, first + 1, ... of a register, as a smaller one.
template <size_t first, size_t bytes, size_t... i>
RVK_INLINE Reg<uint8_t, sizeof...(i)> partOf(Reg<uint8_t, bytes> r, Indices<i...>)
{
    return {__builtin_shufflevector(r.raw, r.raw, (first + i)...)};
}

template <size_t bytes>
RVK_INLINE void storeThreeQuarters(uint8_t* p, Reg<uint8_t, bytes> r)
{
    storeReg(p, partOf<0>(r, typename CountTo<bytes / 2>::Type{}));
    storeReg(p + bytes / 2, partOf<bytes / 2>(r, typename CountTo<bytes / 4>::Type{}));
}

// ---- transposes ---------------------------------------------------------------------------------------------------

// Transposes the blocks of n registers. Write the numbers of a pixel's register and of its lane in the block as one
// string of bits: a round of zips rotates it by one bit. A pixel is loaded where the string is (row, column); after as
// many rounds as the number of a block's row has bits, it is (column, row).
template <size_t blockRows, class T, size_t bytes, size_t n>
RVK_INLINE void zipRounds(Reg<T, bytes> (&r)[n])
{
    if constexpr (blockRows > 1) {
        Reg<T, bytes> zipped[n];
        unrolled<n / 2>([&](auto i)
                            RVK_INLINE_LAMBDA { zipBlocks(r[i], r[i + n / 2], zipped[2 * i], zipped[2 * i + 1]); });
        unrolled<n>([&](auto i) RVK_INLINE_LAMBDA { r[i] = zipped[i]; });
        zipRounds<blockRows / 2>(r);
    }
}

// A tile is the part of an image that is transposed in registers: `columns` x `rows` pixels. A tile of 16-byte blocks
// is as many columns wide as there are registers: one for each pixel of a block, or half as many where that is too many
// for the instruction set.
template <class Lane, size_t bytes>
struct Tile
{
#if defined(__ARM_NEON) && !defined(__aarch64__)
    static constexpr size_t columns = kBlock<Lane> < 8 ? kBlock<Lane> : 8;
#else
    static constexpr size_t columns = kBlock<Lane>;
#endif
    static constexpr size_t rows = bytes / sizeof(Lane);
    static constexpr size_t excess = 0; // what its loads read behind the tile's rows, in bytes

    template <size_t>
    static RVK_INLINE void transpose(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep)
    {
        constexpr size_t rowsAtOnce = kBlock<Lane> / columns;
        Reg<Lane, bytes> r[columns];
        unrolled<columns>([&](auto i) RVK_INLINE_LAMBDA {
            if constexpr (rowsAtOnce == 1)
                r[i] = loadBlocks<Lane, bytes>(src, static_cast<ptrdiff_t>(columns) * srcStep);
            else
                r[i] = loadHalves<Lane>(src, srcStep);
            src += static_cast<ptrdiff_t>(rowsAtOnce) * srcStep;
        });
        zipRounds<kBlock<Lane>>(r);
        unrolled<columns>([&](auto i) RVK_INLINE_LAMBDA {
            storeReg(dst, r[i]);
            dst += dstStep;
        });
    }
};

#if defined(__ARM_NEON)

RVK_INLINE void transpose8x8(uint8x8_t (&r)[8])
{
    unrolled<4>([&](auto pair) RVK_INLINE_LAMBDA {
        constexpr size_t i = 2 * pair;
        const uint8x8x2_t t = vtrn_u8(r[i], r[i + 1]);
        r[i] = t.val[0];
        r[i + 1] = t.val[1];
    });
    unrolled<4>([&](auto pair) RVK_INLINE_LAMBDA {
        constexpr size_t i = pair / 2 * 4 + pair % 2;
        const uint16x4x2_t t = vtrn_u16(vreinterpret_u16_u8(r[i]), vreinterpret_u16_u8(r[i + 2]));
        r[i] = vreinterpret_u8_u16(t.val[0]);
        r[i + 2] = vreinterpret_u8_u16(t.val[1]);
    });
    unrolled<4>([&](auto i) RVK_INLINE_LAMBDA {
        const uint32x2x2_t t = vtrn_u32(vreinterpret_u32_u8(r[i]), vreinterpret_u32_u8(r[i + 4]));
        r[i] = vreinterpret_u8_u32(t.val[0]);
        r[i + 4] = vreinterpret_u8_u32(t.val[1]);
    });
}

// Pixels of three bytes: each channel in registers of its own.
template <size_t bytes>
struct RgbTile
{
    static constexpr size_t columns = 8;
    static constexpr size_t rows = 8;
    static constexpr size_t excess = 0;

    template <size_t>
    static RVK_INLINE void transpose(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep)
    {
        uint8x8_t channel[3][8];
        unrolled<8>([&](auto i) RVK_INLINE_LAMBDA {
            const uint8x8x3_t row = vld3_u8(src);
            unrolled<3>([&](auto c) RVK_INLINE_LAMBDA { channel[c][i] = row.val[c]; });
            src += srcStep;
        });
        unrolled<3>([&](auto c) RVK_INLINE_LAMBDA { transpose8x8(channel[c]); });
        unrolled<8>([&](auto i) RVK_INLINE_LAMBDA {
            const uint8x8x3_t row = {{channel[0][i], channel[1][i], channel[2][i]}};
            vst3_u8(dst, row);
            dst += dstStep;
        });
    }
};

#else

// Pixels of three bytes: in registers they take lanes of four. A load of a row takes 16 bytes for 4 pixels.
template <size_t bytes>
struct RgbTile
{
    static constexpr size_t columns = 4;
    static constexpr size_t rows = bytes / 4;
    static constexpr size_t excess = 4;

    template <size_t lead>
    static RVK_INLINE void transpose(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep)
    {
        Reg<uint32_t, bytes> r[columns];
        unrolled<columns>([&](auto i) RVK_INLINE_LAMBDA {
            r[i] = spread<lead>(loadBlocks<uint8_t, bytes>(src - lead, static_cast<ptrdiff_t>(columns) * srcStep));
            src += srcStep;
        });
        zipRounds<4>(r);
        unrolled<columns>([&](auto i) RVK_INLINE_LAMBDA {
            storeThreeQuarters(dst, pack(r[i]));
            dst += dstStep;
        });
    }

private:
    using Bytes = Reg<uint8_t, bytes>;
    using Lanes = Reg<uint32_t, bytes>;

    // Four pixels in each block, from byte `lead` on, to one in each lane.
    template <size_t lead>
    static RVK_INLINE Lanes spread(Bytes v)
    {
        const Bytes r = shuffleReg(v, v, [](size_t i) { return i / 16 * 16 + (i % 16 / 4 * 3 + i % 4 + lead) % 16; });
        return {(typename Lanes::Raw)r.raw};
    }

    // The reverse; the pixels of all blocks together.
    static RVK_INLINE Bytes pack(Lanes v)
    {
        const Bytes loose = {(typename Bytes::Raw)v.raw};
        const Bytes inBlocks = shuffleReg(
            loose, loose, [](size_t i) { return i % 16 < 12 ? i / 16 * 16 + i % 16 / 3 * 4 + i % 16 % 3 : i; });
        const Lanes triples = {(typename Lanes::Raw)inBlocks.raw};
        const Lanes packed =
            shuffleReg(triples, triples, [](size_t i) { return i < 3 * rows / 4 ? i / 3 * 4 + i % 3 : i; });
        return {(typename Bytes::Raw)packed.raw};
    }
};

#endif

template <size_t pixel, size_t bytes>
struct TileOf;
template <size_t bytes>
struct TileOf<1, bytes> : Tile<uint8_t, bytes>
{
};
template <size_t bytes>
struct TileOf<2, bytes> : Tile<uint16_t, bytes>
{
};
template <size_t bytes>
struct TileOf<3, bytes> : RgbTile<bytes>
{
};
template <size_t bytes>
struct TileOf<4, bytes> : Tile<uint32_t, bytes>
{
};

// Images are transposed in bands of as many rows as a cache line of the destination takes, so that lines are written
// whole.
template <size_t pixel>
constexpr size_t kBandRows = pixel == 3 ? 16 : 64 / pixel;

// `width` x `height` are at least a tile. The last tiles overlap their neighbours.
template <size_t pixel, size_t bytes>
RVK_INLINE void transposeBand(const uint8_t* src, size_t width, size_t height, ptrdiff_t srcStep, uint8_t* dst,
                              ptrdiff_t dstStep)
{
    using T = TileOf<pixel, bytes>;
    for (size_t nextX = 0; nextX < width; nextX += T::columns) {
        const size_t x = least(nextX, width - T::columns);
        const bool readsBehindRow = (width - x) * pixel < T::columns * pixel + T::excess;
        for (size_t nextY = 0; nextY < height; nextY += T::rows) {
            const size_t y = least(nextY, height - T::rows);
            const uint8_t* in = src + static_cast<ptrdiff_t>(y) * srcStep + x * pixel;
            uint8_t* out = dst + static_cast<ptrdiff_t>(x) * dstStep + y * pixel;
            if (T::excess > 0 && readsBehindRow)
                T::template transpose<T::excess>(in, srcStep, out, dstStep); // starts earlier for it
            else
                T::template transpose<0>(in, srcStep, out, dstStep);
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
        const size_t x = least(nextX, width - side);
        for (size_t y = 0; y < height; ++y)
            __builtin_memcpy(buffer + y * rowBytes, src + static_cast<ptrdiff_t>(y) * srcStep + x * pixel, rowBytes);
        transposeBand<pixel, bytes>(buffer, side, height, rowBytes, dst + static_cast<ptrdiff_t>(x) * dstStep, dstStep);
    }
}

// Whether the rows of a band share so few sets of a cache of 4096 bytes a way that most evict each other.
template <size_t pixel>
RVK_INLINE bool rowsCollideInCache(ptrdiff_t step)
{
    return step % static_cast<ptrdiff_t>(65536 / kBandRows<pixel>) == 0;
}

template <size_t pixel, size_t bytes>
RVK_INLINE void transposeByTiles(const uint8_t* src, size_t width, size_t height, ptrdiff_t srcStep, uint8_t* dst,
                                 ptrdiff_t dstStep)
{
    const bool throughBuffer = rowsCollideInCache<pixel>(srcStep) && width >= kBandRows<pixel>;
    for (size_t nextY = 0; nextY < height; nextY += kBandRows<pixel>) {
        const size_t y = least(nextY, height - TileOf<pixel, bytes>::rows);
        const size_t rows = least(height - y, kBandRows<pixel>);
        const uint8_t* in = src + static_cast<ptrdiff_t>(y) * srcStep;
        if (throughBuffer)
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
RVK_NOINLINE void transpose(const uint8_t* src, size_t width, size_t height, ptrdiff_t srcStep, uint8_t* dst,
                            ptrdiff_t dstStep)
{
    constexpr size_t leastWidth = pixel == 3 ? 8 : TileOf<pixel, 16>::columns;
    if (width >= leastWidth && height >= TileOf<pixel, kBytes>::rows) {
        transposeByTiles<pixel, kBytes>(src, width, height, srcStep, dst, dstStep);
    } else if (width >= leastWidth && height >= TileOf<pixel, 16>::rows) {
        transposeByTiles<pixel, 16>(src, width, height, srcStep, dst, dstStep);
    } else {
        for (size_t y = 0; y < height; ++y)
            for (size_t x = 0; x < width; ++x)
                copyPixel<pixel>(src + static_cast<ptrdiff_t>(y) * srcStep + x * pixel,
                                 dst + static_cast<ptrdiff_t>(x) * dstStep + y * pixel);
    }
}

// ---- flips: runs of pixels in registers ---------------------------------------------------------------------------

// As many pixels as registers hold, the other way round.
template <class Lane, size_t bytes>
struct PixelRun
{
    static constexpr size_t size = bytes;
    Reg<Lane, bytes> r;

    static RVK_INLINE PixelRun load(const uint8_t* p) { return {loadReg<Lane, bytes>(p)}; }
    RVK_INLINE void storeReversed(uint8_t* p) const
    {
        storeReg(p, shuffleReg(r, r, [](size_t i) { return Reg<Lane, bytes>::lanes - 1 - i; }));
    }
};

#if defined(__x86_64__)

// Where byte i of `size` mirrored bytes comes from.
constexpr size_t mirroredRgb(size_t size, size_t i)
{
    return size - 3 - i / 3 * 3 + i % 3;
}

#endif
#if defined(__AVX512VBMI__)

// A shuffle takes any bytes of two registers; of the three, only the middle result needs a byte of each.
struct RgbRun
{
    static constexpr size_t size = 192;
    using Bytes = Reg<uint8_t, 64>;
    Bytes r[3];

    static RVK_INLINE RgbRun load(const uint8_t* p)
    {
        return {loadReg<uint8_t, 64>(p), loadReg<uint8_t, 64>(p + 64), loadReg<uint8_t, 64>(p + 128)};
    }
    RVK_INLINE void storeReversed(uint8_t* p) const
    {
        storeReg(p, shuffleReg(r[1], r[2], [](size_t i) { return mirroredRgb(size, i) - 64; }));
        const Bytes most = shuffleReg(r[1], r[2], [](size_t i) { return (mirroredRgb(size, 64 + i) + 64) % 128; });
        storeReg(p + 64, shuffleReg(most, r[0], [](size_t i) {
                     const size_t source = mirroredRgb(size, 64 + i);
                     return source < 64 ? 64 + source : i;
                 }));
        storeReg(p + 128, shuffleReg(r[0], r[1], [](size_t i) { return mirroredRgb(size, 128 + i); }));
    }
};

#elif defined(__x86_64__)

// Where byte i of 48 mirrored bytes comes from: an index into register `from`, or one that gives zero.
constexpr uint8_t mirroredIndex(size_t from, size_t i)
{
    const size_t source = mirroredRgb(48, i);
    return source / 16 == from ? static_cast<uint8_t>(source % 16) : 0x80;
}

struct RgbRun
{
    static constexpr size_t size = 48;
    using Bytes = Reg<uint8_t, 16>;
    Bytes r[3];

    static RVK_INLINE RgbRun load(const uint8_t* p)
    {
        return {loadReg<uint8_t, 16>(p), loadReg<uint8_t, 16>(p + 16), loadReg<uint8_t, 16>(p + 32)};
    }
    RVK_INLINE void storeReversed(uint8_t* p) const
    {
        storeReg(p, Bytes{part<0, 1>(r[1]).raw | part<0, 2>(r[2]).raw});
        storeReg(p + 16, Bytes{part<1, 0>(r[0]).raw | part<1, 1>(r[1]).raw | part<1, 2>(r[2]).raw});
        storeReg(p + 32, Bytes{part<2, 0>(r[0]).raw | part<2, 1>(r[1]).raw});
    }

private:
    // What register `to` of the mirrored ones takes from register `from`.
    template <size_t to, size_t from>
    static RVK_INLINE Bytes part(Bytes bytes)
    {
        return part<to, from>(bytes, CountTo<16>::Type{});
    }
    template <size_t to, size_t from, size_t... i>
    static RVK_INLINE Bytes part(Bytes bytes, Indices<i...>)
    {
        const Bytes::Raw index = {mirroredIndex(from, 16 * to + i)...};
        return {(Bytes::Raw)_mm_shuffle_epi8((__m128i)bytes.raw, (__m128i)index)};
    }
};

#else

struct RgbRun
{
    static constexpr size_t size = 3 * kBytes;
    Vecs<uint8_t, 3> channels;

    static RVK_INLINE RgbRun load(const uint8_t* p) { return {load3(p)}; }
    RVK_INLINE void storeReversed(uint8_t* p) const
    {
        store3(p, Vecs<uint8_t, 3>{reverse(channels[0]), reverse(channels[1]), reverse(channels[2])});
    }
};

#endif

// The longest and the shortest runs of a kind of pixels.
template <size_t pixel>
struct Runs;
template <>
struct Runs<1>
{
    using Long = PixelRun<uint8_t, kBytes>;
    using Short = PixelRun<uint8_t, 16>;
};
template <>
struct Runs<2>
{
    using Long = PixelRun<uint16_t, kBytes>;
    using Short = PixelRun<uint16_t, 16>;
};
template <>
struct Runs<3>
{
    using Long = RgbRun;
    using Short = RgbRun;
};

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
