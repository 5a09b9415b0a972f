// Vector implementations of the conversions between colour spaces and layouts of RGB: rows are loaded as vectors of one
// channel each, converted, and stored in the layout of their target.
#include "color.h"
#include "vecta/simd/chroma.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include <ravik/color.h>

namespace rvk::vecta::RVK_ISA {
namespace {

// ---- pixels in memory -----------------------------------------------------------------------------------------------

constexpr size_t kStep = Vec<uint8_t>::lanes; // pixels of a vector

// Five and six bits at the top of a byte widen by their own upper bits.
RVK_INLINE Vec<uint8_t> widened5(Vec<uint8_t> v)
{
    return joinBits<5>(v, v);
}
RVK_INLINE Vec<uint8_t> widened6(Vec<uint8_t> v)
{
    return joinBits<6>(v, v);
}

template <class F>
RVK_INLINE Rgb loadRgb(const uint8_t* p)
{
    if constexpr (!F::isBytes) {
        static_assert(F::redShift > F::blueShift);
        const Vecs<uint8_t, 2> bytes = load2(p);
        const Vec<uint8_t> low = bytes[0], high = bytes[1];
        return {widened5(high), widened6(joinBits<3>(shiftLeft(high, 5), low)), widened5(shiftLeft(low, 3))};
    } else if constexpr (F::hasAlpha) {
        const auto v = load4(p);
        return {v[F::redByte], v[F::greenByte], v[F::blueByte]};
    } else {
        const auto v = load3(p);
        return {v[F::redByte], v[F::greenByte], v[F::blueByte]};
    }
}

template <class F>
constexpr bool redComesFirst()
{
    if constexpr (F::isBytes)
        return F::redByte < F::blueByte;
    else
        return F::redShift > F::blueShift;
}

template <class F>
RVK_INLINE void storeRgb(uint8_t* p, const Rgb& rgb)
{
    const Vec<uint8_t> first = redComesFirst<F>() ? rgb.red : rgb.blue, last = redComesFirst<F>() ? rgb.blue : rgb.red;
    if constexpr (!F::isBytes)
        store2(p, Vecs<uint8_t, 2>{joinBits<3>(shiftLeft(rgb.green, 3), last), joinBits<5>(first, rgb.green)});
    else if constexpr (F::hasAlpha)
        store4(p, Vecs<uint8_t, 4>{first, rgb.green, last, splat<uint8_t>(255)});
    else
        store3(p, Vecs<uint8_t, 3>{first, rgb.green, last});
}

template <class F>
constexpr bool isRotated = false;
template <class F>
constexpr bool isRotated<Rotated180<F>> = true;

RVK_INLINE Rgb reversed(const Rgb& p)
{
    return {reverse(p.red), reverse(p.green), reverse(p.blue)};
}

// Stores the pixels at x of a row, or where they go in a row that is turned.
template <class F>
RVK_INLINE void storeAt(uint8_t* row, size_t x, size_t width, const Rgb& rgb)
{
    if constexpr (isRotated<F>)
        storeRgb<F>(row + (width - kStep - x) * F::pixelSize, reversed(rgb));
    else
        storeRgb<F>(row + x * F::pixelSize, rgb);
}

// ---- chroma in memory -----------------------------------------------------------------------------------------------

// Rows of two planes, or one of pairs; at(i) is sample i.
template <class Byte>
struct ChromaPlanes
{
    static constexpr size_t rows = 2, size = 1;
    Byte* row[rows];

    RVK_INLINE ChromaPlanes at(size_t i) const { return {{row[0] + i, row[1] + i}}; }
};
template <class Byte, bool crIsFirst = false>
struct ChromaPairs
{
    static constexpr size_t rows = 1, size = 2;
    Byte* row[rows];

    RVK_INLINE ChromaPairs at(size_t i) const { return {{row[0] + 2 * i}}; }
};

RVK_INLINE uint8_t* rowOf(const TargetPlane& plane, size_t y)
{
    return plane.data + y * plane.stride;
}
RVK_INLINE const uint8_t* rowOf(const SourcePlane& plane, size_t y)
{
    return plane.data + y * plane.stride;
}

template <class Byte>
RVK_INLINE ChromaPlanes<Byte> chromaPlanes(Byte* cb, Byte* cr)
{
    return {{cb, cr}};
}

template <class S, class AnyPlane>
RVK_INLINE auto chromaRow(Planar<S>, const AnyPlane (&planes)[3], size_t y)
{
    return chromaPlanes(rowOf(planes[1], y), rowOf(planes[2], y));
}
template <class S, bool crFirst>
RVK_INLINE auto chromaRow(PseudoPlanar<S, crFirst>, const SourcePlane (&planes)[2], size_t y)
{
    return ChromaPairs<const uint8_t, crFirst>{{rowOf(planes[1], y)}};
}
template <class S>
RVK_INLINE auto chromaRow(PseudoPlanar<S>, const TargetPlane (&planes)[2], size_t y)
{
    return ChromaPairs<uint8_t>{{rowOf(planes[1], y)}};
}

RVK_INLINE void storeChroma(const Rgb (&p)[1], const ChromaPlanes<uint8_t>& to)
{
    const Chroma c = chromaOf(p[0]);
    store(to.row[0], c.cb);
    store(to.row[1], c.cr);
}
RVK_INLINE void storeChroma(const Rgb (&p)[1], const ChromaPairs<uint8_t>& to)
{
    const Chroma c = chromaOf(p[0]);
    store2(to.row[0], Vecs<uint8_t, 2>{c.cb, c.cr});
}
RVK_INLINE void storeChromaOfEven(const Rgb (&p)[kSharing], const ChromaPlanes<uint8_t>& to)
{
    storeEvenChroma(p, to.row[0], to.row[1]);
}
RVK_INLINE void storeChromaOfEven(const Rgb (&p)[kSharing], const ChromaPairs<uint8_t>& to)
{
    storeEvenChroma(p, to.row[0]);
}

RVK_INLINE auto loadOwnOffsets(const ChromaPlanes<const uint8_t>& from)
{
    return loadOwnOffsets(from.row[0], from.row[1]);
}
template <bool crFirst>
RVK_INLINE auto loadOwnOffsets(const ChromaPairs<const uint8_t, crFirst>& from)
{
    return loadOwnOffsets<crFirst>(from.row[0]);
}
RVK_INLINE void loadSharedOffsets(const ChromaPlanes<const uint8_t>& from, Offsets (&offsets)[kSharing])
{
    loadSharedOffsets(from.row[0], from.row[1], offsets);
}
template <bool crFirst>
RVK_INLINE void loadSharedOffsets(const ChromaPairs<const uint8_t, crFirst>& from, Offsets (&offsets)[kSharing])
{
    loadSharedOffsets<crFirst>(from.row[0], offsets);
}

// ---- rows -----------------------------------------------------------------------------------------------------------

RVK_INLINE void copyBytes(uint8_t* to, const uint8_t* from, size_t size)
{
    __builtin_memcpy(to, from, size);
}

// The vectors of pixels that a step takes, and how many pixels they are.
template <uint32_t xShift>
constexpr size_t kVectors = xShift ? kSharing : 1;
template <uint32_t xShift>
constexpr size_t kPixels = kVectors<xShift>* kStep;

// Samples that belong to n pixels.
template <uint32_t xShift>
RVK_INLINE size_t samplesOf(size_t n)
{
    return (n + xShift) >> xShift;
}

// Calls convert(x) for steps of a row. The last one overlaps the one before it, but not so that it would begin in the
// middle of a pair. Returns where the rest begins, if there is one: it is shorter than a step.
template <uint32_t xShift, class Convert>
RVK_INLINE size_t forEachStep(size_t width, Convert convert)
{
    constexpr size_t step = kPixels<xShift>;
    const size_t rest = width % step;
    const size_t whole = width < step || rest % (1u << xShift) != 0 ? width - rest : width;
    for (size_t next = 0; next < whole; next += step)
        convert(least(next, whole - step));
    return whole;
}

// A pixel after the other, from one format of a plane to another, in place if the formats are of one size.
template <size_t fromSize, size_t toSize, class Load, class Store>
RVK_INLINE void mapPixels(const uint8_t* src, size_t width, uint8_t* dst, Load load, Store store)
{
    if (width < kStep) {
        uint8_t in[kStep * fromSize] = {}, out[kStep * toSize];
        copyBytes(in, src, width * fromSize);
        store(out, load(in));
        copyBytes(dst, out, width * toSize);
        return;
    }
    const size_t tail = width - kStep;
    const auto last = load(src + tail * fromSize);
    uint8_t* const dstTail = dst + tail * toSize;
    for (size_t steps = width / kStep; steps > 0; --steps) {
        store(dst, load(src));
        src += kStep * fromSize;
        dst += kStep * toSize;
    }
    if (width % kStep != 0)
        store(dstTail, last);
}

template <class From, class To>
RVK_NOINLINE void reorder(const uint8_t* src, size_t width, uint8_t* dst)
{
    mapPixels<From::pixelSize, To::pixelSize>(
        src, width, dst, [](const uint8_t* p) RVK_INLINE_LAMBDA { return loadRgb<From>(p); },
        [](uint8_t* p, const Rgb& rgb) RVK_INLINE_LAMBDA { storeRgb<To>(p, rgb); });
}

// Alpha stays as it is.
template <>
RVK_NOINLINE void reorder<Rgba8888, Bgra8888>(const uint8_t* src, size_t width, uint8_t* dst)
{
    mapPixels<4, 4>(
        src, width, dst, [](const uint8_t* p) RVK_INLINE_LAMBDA { return load4(p); },
        [](uint8_t* p, const Vecs<uint8_t, 4>& v) RVK_INLINE_LAMBDA {
            store4(p, Vecs<uint8_t, 4>{v[2], v[1], v[0], v[3]});
        });
}

// Green stays where it is.
template <>
RVK_NOINLINE void reorder<Rgb565, Bgr565>(const uint8_t* src, size_t width, uint8_t* dst)
{
    mapPixels<2, 2>(
        src, width, dst, [](const uint8_t* p) RVK_INLINE_LAMBDA { return bitCast<uint16_t>(loadVecs<2>(p)); },
        [](uint8_t* p, const Vecs<uint16_t, 2>& words) RVK_INLINE_LAMBDA {
            const auto swap = [](Vec<uint16_t> v) RVK_INLINE_LAMBDA {
                return shiftLeft(v, 11) | shiftRight(v, 11) | (v & splat<uint16_t>(0x07e0));
            };
            store(p, bitCast<uint8_t>(both(words, swap)));
        });
}

template <class From>
RVK_NOINLINE void toLuma(const uint8_t* src, size_t width, uint8_t* dst)
{
    mapPixels<From::pixelSize, 1>(
        src, width, dst, [](const uint8_t* p) RVK_INLINE_LAMBDA { return lumaOf(loadRgb<From>(p)); },
        [](uint8_t* p, Vec<uint8_t> v) RVK_INLINE_LAMBDA { store(p, v); });
}

RVK_NOINLINE void toGrey(const uint8_t* src, size_t width, uint8_t* dst)
{
    mapPixels<3, 1>(
        src, width, dst, [](const uint8_t* p) RVK_INLINE_LAMBDA { return loadGrey(p); },
        [](uint8_t* p, Vec<uint8_t> v) RVK_INLINE_LAMBDA { store(p, v); });
}

RVK_NOINLINE void toYCrCb(const uint8_t* src, size_t width, uint8_t* dst)
{
    mapPixels<3, 3>(
        src, width, dst,
        [](const uint8_t* p) RVK_INLINE_LAMBDA {
            const Rgb rgb = loadRgb<Bgr888>(p);
            const Chroma chroma = chromaOf(rgb);
            return Vecs<uint8_t, 3>{lumaOf(rgb), chroma.cr, chroma.cb};
        },
        [](uint8_t* p, const Vecs<uint8_t, 3>& v) RVK_INLINE_LAMBDA { store3(p, v); });
}

template <class From, uint32_t xShift, class To>
RVK_NOINLINE void toLumaAndChroma(const uint8_t* src, size_t width, uint8_t* dstY, To chroma)
{
    constexpr size_t step = kPixels<xShift>, samples = step >> xShift;
    const size_t whole = forEachStep<xShift>(width, [&](size_t x) RVK_INLINE_LAMBDA {
        Rgb p[kVectors<xShift>];
        unrolled<kVectors<xShift>>([&](auto i) RVK_INLINE_LAMBDA {
            p[i] = loadRgb<From>(src + (x + i * kStep) * From::pixelSize);
            store(dstY + x + i * kStep, lumaOf(p[i]));
        });
        if constexpr (xShift == 0)
            storeChroma(p, chroma.at(x));
        else
            storeChromaOfEven(p, chroma.at(x / 2));
    });
    const size_t rest = width - whole;
    if (rest == 0)
        return;
    uint8_t in[step * From::pixelSize] = {}, outY[step], outC[To::rows][samples * To::size];
    copyBytes(in, src + whole * From::pixelSize, rest * From::pixelSize);
    To out, end = chroma.at(whole >> xShift);
    for (size_t i = 0; i < To::rows; ++i)
        out.row[i] = outC[i];
    toLumaAndChroma<From, xShift>(in, step, outY, out);
    copyBytes(dstY + whole, outY, rest);
    for (size_t i = 0; i < To::rows; ++i)
        copyBytes(end.row[i], outC[i], samplesOf<xShift>(rest) * To::size);
}

// Rows of luma that share a row of chroma, and where they go.
template <size_t count>
struct LumaRows
{
    const uint8_t* luma[count];
    uint8_t* dst[count];
};

template <class To, uint32_t xShift, size_t count, class From>
RVK_NOINLINE void toRgb(const LumaRows<count>& rows, From chroma, size_t width)
{
    constexpr size_t step = kPixels<xShift>, samples = step >> xShift;
    const auto convertVectors = [&](size_t x, const auto& offsets) RVK_INLINE_LAMBDA {
        unrolled<count>(
            [&](auto k) RVK_INLINE_LAMBDA { storeAt<To>(rows.dst[k], x, width, offsets.of(load(rows.luma[k] + x))); });
    };
    const size_t whole = forEachStep<xShift>(width, [&](size_t x) RVK_INLINE_LAMBDA {
        if constexpr (xShift == 0) {
            convertVectors(x, loadOwnOffsets(chroma.at(x)));
        } else {
            Offsets offsets[kSharing];
            loadSharedOffsets(chroma.at(x / 2), offsets);
            unrolled<kSharing>([&](auto i) RVK_INLINE_LAMBDA { convertVectors(x + i * kStep, offsets[i]); });
        }
    });
    const size_t rest = width - whole;
    if (rest == 0)
        return;
    uint8_t inY[count][step] = {}, inC[From::rows][samples * From::size] = {}, out[count][step * To::pixelSize];
    From in, end = chroma.at(whole >> xShift);
    for (size_t i = 0; i < From::rows; ++i) {
        copyBytes(inC[i], end.row[i], samplesOf<xShift>(rest) * From::size);
        in.row[i] = inC[i];
    }
    LumaRows<count> shortRows;
    for (size_t k = 0; k < count; ++k) {
        copyBytes(inY[k], rows.luma[k] + whole, rest);
        shortRows.luma[k] = inY[k];
        shortRows.dst[k] = out[k];
    }
    toRgb<To, xShift>(shortRows, in, step);
    const size_t first = isRotated<To> ? 0 : whole, firstOut = isRotated<To> ? step - rest : 0;
    for (size_t k = 0; k < count; ++k)
        copyBytes(rows.dst[k] + first * To::pixelSize, out[k] + firstOut * To::pixelSize, rest * To::pixelSize);
}

// ---- pictures -------------------------------------------------------------------------------------------------------

template <class From, class To>
requires IsToYCbCr<From, To> RVK_INLINE void convert(const Conversion<From, To>& c)
{
    for (size_t y = 0; y < c.height; ++y) {
        const uint8_t* const src = rowOf(c.src[0], y);
        if (y % (1u << To::yShift) == 0)
            toLumaAndChroma<From, To::xShift>(src, c.width, rowOf(c.dst[0], y),
                                              chromaRow(To(), c.dst, y >> To::yShift));
        else
            toLuma<From>(src, c.width, rowOf(c.dst[0], y));
    }
}

template <class From, class To>
RVK_INLINE uint8_t* targetRow(const Conversion<From, To>& c, size_t y)
{
    return rowOf(c.dst[0], isRotated<To> ? c.height - 1 - y : y);
}

// Of 4:2:0, rows are converted two at a time, the last one twice where it has no other beside it.
template <class From, class To>
requires IsToRgb<From, To> RVK_INLINE void convert(const Conversion<From, To>& c)
{
    constexpr size_t count = From::xShift && From::yShift ? 2 : 1;
    for (size_t y = 0; y < c.height; y += count) {
        LumaRows<count> rows;
        for (size_t k = 0; k < count; ++k) {
            const size_t row = least(y + k, c.height - 1);
            rows.luma[k] = rowOf(c.src[0], row);
            rows.dst[k] = targetRow(c, row);
        }
        toRgb<To, From::xShift>(rows, chromaRow(From(), c.src, y >> From::yShift), c.width);
    }
}

// Pictures without gaps between their rows are one long row.
template <class From, class To>
RVK_INLINE void mapRows(const Conversion<From, To>& c, void (*convertRow)(const uint8_t*, size_t, uint8_t*))
{
    size_t width = c.width, height = c.height;
    if (c.src[0].stride == width * From::pixelSize && c.dst[0].stride == width * To::pixelSize) {
        width *= height;
        height = 1;
    }
    for (size_t y = 0; y < height; ++y)
        convertRow(rowOf(c.src[0], y), width, rowOf(c.dst[0], y));
}

template <class From, class To>
requires(IsReordering<From, To> && !isRotated<To>) RVK_INLINE void convert(const Conversion<From, To>& c)
{
    mapRows(c, reorder<From, To>);
}

RVK_INLINE void convert(const Conversion<Rgb888, Grey>& c)
{
    mapRows(c, toGrey);
}

RVK_INLINE void convert(const Conversion<Bgr888, YCrCb888>& c)
{
    mapRows(c, toYCrCb);
}

template <class From, class To>
RVK_NOINLINE void reorderAndTurn(const uint8_t* src, size_t width, uint8_t* dst)
{
    const size_t whole = forEachStep<0>(width, [&](size_t x) RVK_INLINE_LAMBDA {
        storeAt<To>(dst, x, width, loadRgb<From>(src + x * From::pixelSize));
    });
    const size_t rest = width - whole;
    if (rest == 0)
        return;
    uint8_t in[kStep * From::pixelSize] = {}, out[kStep * To::pixelSize];
    copyBytes(in, src, rest * From::pixelSize);
    reorderAndTurn<From, To>(in, kStep, out);
    copyBytes(dst, out + (kStep - rest) * To::pixelSize, rest * To::pixelSize);
}

template <class From, class To>
requires(IsReordering<From, To>&& isRotated<To>) RVK_INLINE void convert(const Conversion<From, To>& c)
{
    for (size_t y = 0; y < c.height; ++y)
        reorderAndTurn<From, To>(rowOf(c.src[0], y), c.width, targetRow(c, y));
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikColorForms.h"
