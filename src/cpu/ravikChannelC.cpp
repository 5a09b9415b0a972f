// C references of the functions on chroma and channels, a sample at a time.
#include "cpu/conversions.h"
#include "functions.h"

namespace rvk {
namespace {

void copySamples(const uint8_t* src, size_t srcStep, uint32_t count, uint8_t* dst, size_t dstStep)
{
    for (size_t x = 0; x < count; ++x)
        dst[x * dstStep] = src[x * srcStep];
}

void swapPairs(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    for (size_t x = 0; x < width; ++x) {
        const uint8_t first = src[2 * x]; // dst may be src
        dst[2 * x] = src[2 * x + 1];
        dst[2 * x + 1] = first;
    }
}

// ---- resampling -----------------------------------------------------------------------------------------------------

// Samples begin to end - 1 of the source are what a sample of the destination takes the mean of.
struct Range
{
    size_t begin, end;
};

// Sample i of the destination belongs to pixels i << toShift and following ones.
Range samplesFor(size_t i, uint32_t size, uint32_t fromShift, uint32_t toShift)
{
    const size_t last = std::min<size_t>(((i + 1) << toShift) - 1, size - 1);
    return {i << toShift >> fromShift, (last >> fromShift) + 1};
}

uint8_t meanOf(const SourcePlane& plane, size_t step, Range columns, Range rows)
{
    size_t sum = 0;
    for (size_t y = rows.begin; y < rows.end; ++y)
        for (size_t x = columns.begin; x < columns.end; ++x)
            sum += rowOf(plane, y)[x * step];
    const size_t count = (columns.end - columns.begin) * (rows.end - rows.begin);
    return static_cast<uint8_t>((sum + count / 2) / count);
}

// Samples of one component of a picture of `width` x `height`, which stand `srcStep` and `dstStep` bytes apart.
template <class From, class To>
void resampleComponent(uint32_t width, uint32_t height, const SourcePlane& src, size_t srcStep, const TargetPlane& dst,
                       size_t dstStep)
{
    for (size_t y = 0; y < sampled(height, To::yShift); ++y)
        for (size_t x = 0; x < sampled(width, To::xShift); ++x)
            rowOf(dst, y)[x * dstStep] = meanOf(src, srcStep, samplesFor(x, width, From::xShift, To::xShift),
                                                samplesFor(y, height, From::yShift, To::yShift));
}

template <class From, class To>
void resamplePlane(uint32_t width, uint32_t height, const SourcePlane& src, const TargetPlane& dst)
{
    resampleComponent<From, To>(width, height, src, 1, dst, 1);
}

// Cb and Cr, from the plane that each is in.
template <class S, class AnyPlane>
AnyPlane componentOf(Planar<S>, const AnyPlane (&planes)[3], size_t i)
{
    return planes[1 + i];
}
template <class S, class AnyPlane>
AnyPlane componentOf(PseudoPlanar<S>, const AnyPlane (&planes)[2], size_t i)
{
    return {planes[1].data + i, planes[1].stride};
}

// The chroma of a picture.
template <class From, class To>
void resample(const Conversion<From, To>& c)
{
    constexpr size_t srcStep = 4 - From::planes, dstStep = 4 - To::planes; // two planes: one of them has pairs
    for (size_t i = 0; i < 2; ++i)
        resampleComponent<From, To>(c.width, c.height, componentOf(From(), c.src, i), srcStep,
                                    componentOf(To(), c.dst, i), dstStep);
}

// ---- pictures -------------------------------------------------------------------------------------------------------

template <class From, class To>
requires IsResampling<From, To>
void convert(const Conversion<From, To>& c)
{
    for (size_t y = 0; y < c.height; ++y)
        copySamples(rowOf(c.src[0], y), 1, c.width, rowOf(c.dst[0], y), 1);
    resample(c);
}

void convert(const Conversion<Interleaved<2>, SwappedPairs>& c)
{
    forEachRow(c, swapPairs);
}

template <uint32_t count>
void convert(const Conversion<Channels<count>, Interleaved<count>>& c)
{
    for (size_t y = 0; y < c.height; ++y)
        for (size_t i = 0; i < count; ++i)
            copySamples(rowOf(c.src[i], y), 1, c.width, rowOf(c.dst[0], y) + i, count);
}

template <uint32_t count>
void convert(const Conversion<Interleaved<count>, Channels<count>>& c)
{
    for (size_t y = 0; y < c.height; ++y)
        for (size_t i = 0; i < count; ++i)
            copySamples(rowOf(c.src[0], y) + i, count, c.width, rowOf(c.dst[i], y), 1);
}

void extract(const Samples& samples, uint32_t width, uint32_t height, const SourcePlane& src, const TargetPlane& dst)
{
    for (size_t y = 0; y < sampled(height, samples.yShift); ++y)
        copySamples(rowOf(src, y) + samples.offset, samples.step, sampled(width, samples.xShift), rowOf(dst, y), 1);
}

} // namespace
} // namespace rvk

#include "forms/ravikChannelForms.h"
