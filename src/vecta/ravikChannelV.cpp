// Vector implementations of the functions on chroma and channels: steps that one driver walks over rows. Where chroma
// is halved or doubled across, a unit is two pixels.
#include "color.h"
#include "vecta/simd/steps.h"
#include "vecta/vecta.h"

#include <ravik/channel.h>

namespace rvk::vecta::RVK_ISA {
namespace {

// ---- past the caches ------------------------------------------------------------------------------------------------

// How many pixels lie before the first one that begins a whole register; kNever when none does.
constexpr size_t kNever = SIZE_MAX;
template <class Step>
RVK_INLINE size_t pixelsBeforeRegister(const uint8_t* row)
{
    for (size_t n = 0; n < kBytes; ++n)
        if ((reinterpret_cast<uintptr_t>(row) + n * Step::out) % kBytes == 0)
            return n;
    return kNever;
}

// Whole steps of one destination, past the caches: other stores have each line of it read before it is written.
template <class Step, size_t sources>
RVK_INLINE void mapStepsPastCaches(size_t steps, Rows<const uint8_t, sources>& src, Rows<uint8_t, 1>& dst)
{
    for (; steps; --steps) {
        storeInterleavedPastCaches(dst.row[0], Step::take(src));
        src.move(Step::units * Step::in);
        dst.move(Step::units * Step::out);
    }
}

// The same of any step, by pieces that the first-level cache holds, and which are copied from there.
template <class Step, size_t sources, size_t targets>
RVK_INLINE void mapPiecesPastCaches(size_t width, Rows<const uint8_t, sources> src, Rows<uint8_t, targets> dst)
{
    constexpr size_t piece = 1024;
    alignas(64) uint8_t buffer[targets][piece * Step::out];
    Rows<uint8_t, targets> to;
    unrolled<targets>([&](auto i) RVK_INLINE_LAMBDA { to.row[i] = buffer[i]; });
    for (size_t n; width; width -= n) {
        n = least(width, piece);
        mapRows<Step>(n, src, to);
        unrolled<targets>([&](auto i) RVK_INLINE_LAMBDA { copyPastCaches(buffer[i], dst.row[i], n * Step::out); });
        src.move(n * Step::in);
        dst.move(n * Step::out);
    }
}

template <class Step, size_t sources, size_t targets>
RVK_INLINE void mapRowsPastCaches(size_t width, Rows<const uint8_t, sources> src, Rows<uint8_t, targets> dst)
{
    if constexpr (requires { Step::interleaves; }) {
        const size_t head = least(pixelsBeforeRegister<Step>(dst.row[0]), width), steps = (width - head) / Step::units;
        if (steps > 0) { // head is not kNever
            mapPiecesPastCaches<Step>(head, src, dst);
            src.move(head * Step::in);
            dst.move(head * Step::out);
            mapStepsPastCaches<Step>(steps, src, dst);
            width -= head + steps * Step::units;
        }
    }
    mapPiecesPastCaches<Step>(width, src, dst);
    finishWritesPastCaches();
}

template <class Plane, size_t count>
RVK_INLINE bool allPacked(const Plane (&planes)[count], size_t rowBytes)
{
    bool packed = true;
    for (size_t i = 0; i < count; ++i)
        packed = packed && planes[i].stride == rowBytes;
    return packed;
}

// Planes of `width` pixels; a plane has `height` rows, or half of them where the other side has two for each of its
// own. Rows without gaps are walked as one.
template <class Step, size_t sources, size_t targets>
RVK_NOINLINE void mapPlanes(size_t width, size_t height, const SourcePlane (&src)[sources],
                            const TargetPlane (&dst)[targets])
{
    constexpr size_t srcRows = Step::halvesY ? 2 : 1, dstRows = Step::doublesY ? 2 : 1, rows = srcRows * dstRows;
    const bool isLarge = pastCachesIsFaster(targets * targetBytes<Step>(width) * height);
    if (rows == 1 && width % Step::pixels == 0 && allPacked(src, sourceBytes<Step>(width)) &&
        allPacked(dst, targetBytes<Step>(width))) {
        width *= height;
        height = 1;
    }
    for (size_t y = 0; y < height; y += rows) {
        const auto rowAt = [=](const auto& plane, size_t i, size_t planeRows) RVK_INLINE_LAMBDA {
            return Plane{plane.data, plane.stride}.row(planeRows == 1 ? y / rows : least(y + i, height - 1));
        };
        Rows<const uint8_t, sources * srcRows> from;
        Rows<uint8_t, targets * dstRows> to;
        unrolled<sources * srcRows>(
            [&](auto i) RVK_INLINE_LAMBDA { from.row[i] = rowAt(src[i % sources], i / sources, srcRows); });
        unrolled<targets * dstRows>(
            [&](auto i) RVK_INLINE_LAMBDA { to.row[i] = rowAt(dst[i % targets], i / targets, dstRows); });
        if constexpr (Step::mayWritePastCaches) {
            if (isLarge) {
                mapRowsPastCaches<Step>(width, from, to);
                continue;
            }
        }
        mapRows<Step>(anyNumber(width), from, to);
    }
}

RVK_NOINLINE void copyPlane(size_t width, size_t height, const SourcePlane& src, const TargetPlane& dst)
{
    if (src.stride == width && dst.stride == width) {
        width *= height;
        height = 1;
    }
    for (size_t y = 0; y < height; ++y)
        __builtin_memcpy(Plane{dst.data, dst.stride}.row(y), Plane{src.data, src.stride}.row(y), width);
}

// ---- steps of channels ----------------------------------------------------------------------------------------------

struct PixelByPixel : WholeUnits
{
    static constexpr bool halvesY = false, doublesY = false;
    static constexpr size_t units = Vec<uint8_t>::lanes;
    static constexpr bool mayWritePastCaches = kWritesPastCaches;
};

template <size_t channels>
struct Combine : PixelByPixel
{
    static constexpr size_t in = 1, out = channels;
    static constexpr bool interleaves = true;

    RVK_INLINE static Vecs<uint8_t, channels> take(const Rows<const uint8_t, channels>& src)
    {
        Vecs<uint8_t, channels> v;
        unrolled<channels>([&](auto i) RVK_INLINE_LAMBDA { v[i] = load(src.row[i]); });
        return v;
    }
    RVK_INLINE static void put(const Vecs<uint8_t, channels>& v, size_t, uint8_t* dst) { storeInterleaved(dst, v); }
};

template <size_t channels>
struct Separate : PixelByPixel
{
    static constexpr size_t in = channels, out = 1;

    RVK_INLINE static Vecs<uint8_t, channels> take(const Rows<const uint8_t, 1>& src)
    {
        return loadInterleaved<channels>(src.row[0]);
    }
    RVK_INLINE static void put(const Vecs<uint8_t, channels>& v, size_t target, uint8_t* dst) { store(dst, v[target]); }
};

template <size_t channels, size_t channel>
struct Extract : PixelByPixel
{
    static constexpr size_t in = channels, out = 1;

    RVK_INLINE static Vec<uint8_t> take(const Rows<const uint8_t, 1>& src)
    {
        return loadInterleaved<channels>(src.row[0])[channel];
    }
    RVK_INLINE static void put(Vec<uint8_t> v, size_t, uint8_t* dst) { store(dst, v); }
};

// ---- steps of resampling: rows are those of the first plane, then of the second, and then the lower ones ------------

// By halving or doubling the samples of rows, and the rows.
template <bool fewerX, bool fewerY, bool moreX, bool moreY>
struct Scaling
{
    static constexpr bool halvesX = fewerX, halvesY = fewerY, doublesX = moreX, doublesY = moreY;
    static constexpr size_t pixels = fewerX || moreX ? 2 : 1;
    static constexpr bool mayWritePastCaches = false;
};
using NoScaling = Scaling<false, false, false, false>;

template <class From, class To>
using ScalingOf = Scaling<(From::xShift < To::xShift), (From::yShift < To::yShift), (From::xShift > To::xShift),
                          (From::yShift > To::yShift)>;

// Samples across and rows, of the side that has more of them, of a picture's `width` and `height`.
template <class From, class To>
RVK_INLINE size_t samplesOfRow(uint32_t width)
{
    return sampled(width, From::xShift < To::xShift ? From::xShift : To::xShift);
}
template <class From, class To>
RVK_INLINE size_t rowsOfPlane(uint32_t height)
{
    return sampled(height, From::yShift < To::yShift ? From::yShift : To::yShift);
}

template <bool first, class A, class B>
struct Either
{
    using Type = A;
};
template <class A, class B>
struct Either<false, A, B>
{
    using Type = B;
};

// `row` of 1 or 2 rows: their means, and those of neighbours of T where they are halved across.
template <class R, class T, class... Byte>
RVK_INLINE Vec<uint8_t> loadSamples(const Byte*... row)
{
    if constexpr (R::halvesX)
        return loadMeans<T>(row...);
    else if constexpr (R::halvesY)
        return average(load(row)...);
    else
        return load(row...);
}

// The same of pairs, the two apart.
template <class R>
RVK_INLINE Vecs<uint8_t, 2> loadPairs(const uint8_t* row)
{
    if constexpr (R::halvesX)
        return load2Means(row);
    else
        return load2(row);
}
template <class R>
RVK_INLINE Vecs<uint8_t, 2> loadPairs(const uint8_t* row1, const uint8_t* row2)
{
    if constexpr (R::halvesX)
        return load2Means(row1, row2);
    else
        return both(load2(row1), load2(row2), [](auto a, auto b) RVK_INLINE_LAMBDA { return average(a, b); });
}

template <class R, class T>
RVK_INLINE void storeSamples(uint8_t* row, Vec<uint8_t> v)
{
    if constexpr (R::doublesX)
        storeTwice<T>(row, v);
    else
        store(row, v);
}

template <class R>
RVK_INLINE void storePairs(uint8_t* row, const Vecs<uint8_t, 2>& v)
{
    if constexpr (R::doublesX)
        store2Twice(row, v);
    else
        store2(row, v);
}

// Planes to planes, of samples T: bytes, or 16 bits for pairs.
template <class R, class T>
struct ResampleSamples : R
{
    static constexpr size_t in = sizeof(T) << R::halvesX, out = sizeof(T) << R::doublesX, units = Vec<T>::lanes;

    template <size_t sources>
    RVK_INLINE static Vec<uint8_t> take(const Rows<const uint8_t, sources>& src)
    {
        if constexpr (R::halvesY)
            return loadSamples<R, T>(src.row[0], src.row[1]);
        else
            return loadSamples<R, T>(src.row[0]);
    }
    RVK_INLINE static void put(Vec<uint8_t> v, size_t, uint8_t* dst) { storeSamples<R, T>(dst, v); }
};

template <class R>
struct ResampleToPairs : R
{
    static constexpr size_t in = 1 << R::halvesX, out = 2 << R::doublesX, units = Vec<uint8_t>::lanes;

    template <size_t sources>
    RVK_INLINE static Vecs<uint8_t, 2> take(const Rows<const uint8_t, sources>& src)
    {
        Vecs<uint8_t, 2> v;
        unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
            if constexpr (R::halvesY)
                v[i] = loadSamples<R, uint8_t>(src.row[i], src.row[2 + i]);
            else
                v[i] = loadSamples<R, uint8_t>(src.row[i]);
        });
        return v;
    }
    RVK_INLINE static void put(const Vecs<uint8_t, 2>& v, size_t, uint8_t* dst) { storePairs<R>(dst, v); }
};

template <class R>
struct ResampleFromPairs : R
{
    static constexpr size_t in = 2 << R::halvesX, out = 1 << R::doublesX, units = Vec<uint8_t>::lanes;

    template <size_t sources>
    RVK_INLINE static Vecs<uint8_t, 2> take(const Rows<const uint8_t, sources>& src)
    {
        if constexpr (R::halvesY)
            return loadPairs<R>(src.row[0], src.row[1]);
        else
            return loadPairs<R>(src.row[0]);
    }
    RVK_INLINE static void put(const Vecs<uint8_t, 2>& v, size_t target, uint8_t* dst)
    {
        storeSamples<R, uint8_t>(dst, v[target % 2]);
    }
};

// ---- pictures -------------------------------------------------------------------------------------------------------

void convert(const Conversion<Interleaved<2>, SwappedPairs>& c)
{
    mapImage(
        size_t{2} * c.width, c.height, Plane{c.dst[0].data, c.dst[0].stride},
        [](Vec<uint8_t> v) RVK_INLINE_LAMBDA { return shuffle(v, v, [](size_t i) { return i ^ 1; }); },
        Plane{c.src[0].data, c.src[0].stride});
}

template <uint32_t count>
RVK_INLINE void convert(const Conversion<Channels<count>, Interleaved<count>>& c)
{
    mapPlanes<Combine<count>>(c.width, c.height, c.src, c.dst);
}

template <uint32_t count>
RVK_INLINE void convert(const Conversion<Interleaved<count>, Channels<count>>& c)
{
    mapPlanes<Separate<count>>(c.width, c.height, c.src, c.dst);
}

// Samples of one plane; the sizes of conversions are those of a picture.
template <class From, class To>
RVK_INLINE void resamplePlane(uint32_t width, uint32_t height, const SourcePlane& src, const TargetPlane& dst)
{
    const SourcePlane from[] = {src};
    const TargetPlane to[] = {dst};
    using R = ScalingOf<From, To>;
    mapPlanes<ResampleSamples<R, uint8_t>>(samplesOfRow<From, To>(width), rowsOfPlane<From, To>(height), from, to);
}

// The chroma of a picture.
template <class From, class To>
RVK_INLINE void resample(const Conversion<Planar<From>, Planar<To>>& c)
{
    for (size_t i = 1; i <= 2; ++i)
        resamplePlane<From, To>(c.width, c.height, c.src[i], c.dst[i]);
}

template <class From, class To>
RVK_INLINE void resample(const Conversion<PseudoPlanar<From>, PseudoPlanar<To>>& c)
{
    const SourcePlane src[] = {c.src[1]};
    const TargetPlane dst[] = {c.dst[1]};
    using R = ScalingOf<From, To>;
    const size_t width = samplesOfRow<From, To>(c.width), height = rowsOfPlane<From, To>(c.height);
    if constexpr (R::pixels == 2)
        mapPlanes<ResampleSamples<R, uint16_t>>(width, height, src, dst);
    else
        mapPlanes<ResampleSamples<R, uint8_t>>(2 * width, height, src, dst);
}

template <class From, class To>
RVK_INLINE void resample(const Conversion<Planar<From>, PseudoPlanar<To>>& c)
{
    const SourcePlane src[] = {c.src[1], c.src[2]};
    const TargetPlane dst[] = {c.dst[1]};
    using R = ScalingOf<From, To>;
    using Step = typename Either<isSame<R, NoScaling>, Combine<2>, ResampleToPairs<R>>::Type;
    mapPlanes<Step>(samplesOfRow<From, To>(c.width), rowsOfPlane<From, To>(c.height), src, dst);
}

template <class From, class To>
RVK_INLINE void resample(const Conversion<PseudoPlanar<From>, Planar<To>>& c)
{
    const SourcePlane src[] = {c.src[1]};
    const TargetPlane dst[] = {c.dst[1], c.dst[2]};
    using R = ScalingOf<From, To>;
    using Step = typename Either<isSame<R, NoScaling>, Separate<2>, ResampleFromPairs<R>>::Type;
    mapPlanes<Step>(samplesOfRow<From, To>(c.width), rowsOfPlane<From, To>(c.height), src, dst);
}

template <class From, class To>
requires IsResampling<From, To> RVK_INLINE void convert(const Conversion<From, To>& c)
{
    copyPlane(c.width, c.height, c.src[0], c.dst[0]);
    resample(c);
}

template <size_t channels, size_t channel>
RVK_INLINE void extractChannel(size_t width, size_t height, const SourcePlane& src, const TargetPlane& dst)
{
    const SourcePlane from[] = {src};
    const TargetPlane to[] = {dst};
    mapPlanes<Extract<channels, channel>>(width, height, from, to);
}

void extract(const Samples& samples, uint32_t srcWidth, uint32_t srcHeight, const SourcePlane& src,
             const TargetPlane& dst)
{
    const size_t width = sampled(srcWidth, samples.xShift), height = sampled(srcHeight, samples.yShift);
    using Function = void(size_t, size_t, const SourcePlane&, const TargetPlane&);
    static constexpr Function* const functions[4][4] = {
        {copyPlane},
        {extractChannel<2, 0>, extractChannel<2, 1>},
        {extractChannel<3, 0>, extractChannel<3, 1>, extractChannel<3, 2>},
        {extractChannel<4, 0>, extractChannel<4, 1>, extractChannel<4, 2>, extractChannel<4, 3>}};
    functions[samples.step - 1][samples.offset](width, height, src, dst);
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikChannelForms.h"
