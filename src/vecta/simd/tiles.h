// Squares of pixels that are transposed in registers, and runs of pixels that are mirrored. Pixels are 1, 2, 3 or 4
// bytes at any address, rows a signed number of bytes apart.
#pragma once

#include "vecta/simd/rows.h"

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

#if defined(__aarch64__)
constexpr size_t kSquares = 2; // that 32 registers hold side by side; their loads and stores are in pairs
constexpr size_t kRowsTogether = 4;
#else
constexpr size_t kSquares = 1;
constexpr size_t kRowsTogether = 1;
#endif
#if defined(__clang__)
constexpr bool kPinsPointers = kRowsTogether > 1;
#elif defined(__arm__)
constexpr bool kPinsPointers = true;
#else
constexpr bool kPinsPointers = false;
#endif

// Calls f(address, number) for `rows` rows `step` bytes apart. Each `together` of them share a pointer, for instruction
// sets whose addresses add a register.
template <size_t rows, size_t together, class Byte, class F>
RVK_INLINE void forRows(Byte* p, ptrdiff_t step, F f)
{
    unrolled<rows / together>([&](auto group) RVK_INLINE_LAMBDA {
        unrolled<together>([&](auto k) RVK_INLINE_LAMBDA {
            f(p + static_cast<ptrdiff_t>(k) * step, Constant<group * together + k>{});
        });
        p += static_cast<ptrdiff_t>(together) * step;
        if constexpr (kPinsPointers && (together > 1 || kRowsTogether == 1))
            pin(p); // or the compiler would keep, or form anew, a pointer for each row
    });
}

// A tile is the part of an image that is transposed in registers: `columns` x `rows` pixels. It consists of `across` x
// `down` squares of 16-byte blocks. A square is as many columns wide as it has registers: one for each pixel of a
// block, or half as many where that is too many for the instruction set.
template <class Lane, size_t bytes, size_t across = 1, size_t down = 1>
struct Tile
{
#if defined(__ARM_NEON) && !defined(__aarch64__)
    static constexpr size_t side = kBlock<Lane> < 8 ? kBlock<Lane> : 8;
#else
    static constexpr size_t side = kBlock<Lane>;
#endif
    static constexpr size_t pixel = sizeof(Lane);
    static constexpr size_t columns = across * side;
    static constexpr size_t rows = down * bytes / pixel;
    static constexpr size_t leastWidth = columns; // of a picture
    static constexpr size_t excess = 0;           // what its loads read behind the tile's rows, in bytes
    static_assert(bytes == 16 || (across == 1 && down == 1));

    template <size_t>
    static RVK_INLINE void transpose(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep)
    {
        constexpr size_t rowsAtOnce = kBlock<Lane> / side;
        Reg<Lane, bytes> r[across][down][side];
        forRows<down * side, across == 1 ? kRowsTogether : 1>(
            src, static_cast<ptrdiff_t>(rowsAtOnce) * srcStep, [&](const uint8_t* row, auto i) RVK_INLINE_LAMBDA {
                unrolled<across>([&](auto x) RVK_INLINE_LAMBDA {
                    if constexpr (rowsAtOnce == 1)
                        r[x][i / side][i % side] =
                            loadBlocks<Lane, bytes>(row + 16 * x, static_cast<ptrdiff_t>(side) * srcStep);
                    else
                        r[x][i / side][i % side] = loadHalves<Lane>(row, srcStep);
                });
            });
        unrolled<across * down>([&](auto i) RVK_INLINE_LAMBDA { zipRounds<kBlock<Lane>>(r[i / down][i % down]); });
        forRows<across * side, down == 1 ? kRowsTogether : 1>(dst, dstStep,
                                                              [&](uint8_t* row, auto i) RVK_INLINE_LAMBDA {
                                                                  unrolled<down>([&](auto y) RVK_INLINE_LAMBDA {
                                                                      auto& column = r[i / side][y][i % side];
#if defined(__aarch64__) && defined(__clang__)
                                                                      // clang merges the last zips into stores of
                                                                      // interleaved halves, which are more.
                                                                      __asm__("" : "+w"(column.raw));
#endif
                                                                      storeReg(row + bytes * y, column);
                                                                  });
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
    static constexpr size_t pixel = 3;
    static constexpr size_t columns = 8;
    static constexpr size_t rows = 8;
    static constexpr size_t leastWidth = 8;
    static constexpr size_t excess = 0;

    template <size_t>
    static RVK_INLINE void transpose(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep)
    {
        uint8x8_t channel[3][8];
        forRows<8, 1>(src, srcStep, [&](const uint8_t* p, auto i) RVK_INLINE_LAMBDA {
            const uint8x8x3_t row = vld3_u8(p);
            unrolled<3>([&](auto c) RVK_INLINE_LAMBDA { channel[c][i] = row.val[c]; });
        });
        unrolled<3>([&](auto c) RVK_INLINE_LAMBDA { transpose8x8(channel[c]); });
        forRows<8, 1>(dst, dstStep, [&](uint8_t* p, auto i) RVK_INLINE_LAMBDA {
            const uint8x8x3_t row = {{channel[0][i], channel[1][i], channel[2][i]}};
            vst3_u8(p, row);
        });
    }
};

#else

// Pixels of three bytes: in registers they take lanes of four. A load of a row takes 16 bytes for 4 pixels.
template <size_t bytes>
struct RgbTile
{
    static constexpr size_t pixel = 3;
    static constexpr size_t columns = 4;
    static constexpr size_t rows = bytes / 4;
    static constexpr size_t leastWidth = 8;
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

// A block's columns as vectors: lane y of vector x is element x of row y, of as many rows as there are lanes.
template <class T>
RVK_INLINE Vecs<T, kBlock<T>> loadColumns(const uint8_t* p, ptrdiff_t step)
{
    constexpr size_t n = kBlock<T>;
    Reg<T, kBytes> r[n];
    forRows<n, kRowsTogether>(p, step, [&](const uint8_t* row, auto i) RVK_INLINE_LAMBDA {
        r[i] = loadBlocks<T, kBytes>(row, static_cast<ptrdiff_t>(n) * step);
    });
    zipRounds<n>(r);
    Vecs<T, n> columns;
    unrolled<n>([&](auto i) RVK_INLINE_LAMBDA { columns[i].raw = r[i].raw; });
    return columns;
}

// The tiles for a kind of pixels: the largest, and those for pictures that are too small for it.
template <size_t pixel>
struct Tiles;
template <>
struct Tiles<1>
{
    using Large = Tile<uint8_t, kBytes>;
    using Small = Tile<uint8_t, 16>;
};
template <>
struct Tiles<2>
{
    using Large = Tile<uint16_t, kBytes, 1, kSquares>;
    using Small = Tile<uint16_t, 16>;
};
template <>
struct Tiles<3>
{
    using Large = RgbTile<kBytes>;
    using Small = RgbTile<16>;
};
template <>
struct Tiles<4>
{
    using Large = Tile<uint32_t, kBytes, kSquares, kSquares>;
    using Small = Tile<uint32_t, 16>;
};

// ---- mirrored runs --------------------------------------------------------------------------------------------------

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

} // namespace
} // namespace rvk::vecta::RVK_ISA
