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

template <class From>
Chroma meanOf(const SourcePlane (&src)[From::planes], Range columns, Range rows)
{
    size_t cb = 0, cr = 0;
    for (size_t y = rows.begin; y < rows.end; ++y)
        for (size_t x = columns.begin; x < columns.end; ++x) {
            const Chroma chroma = chromaRow(From(), src, y)[x];
            cb += chroma.cb;
            cr += chroma.cr;
        }
    const size_t count = (columns.end - columns.begin) * (rows.end - rows.begin);
    return {static_cast<uint8_t>((cb + count / 2) / count), static_cast<uint8_t>((cr + count / 2) / count)};
}

// ---- pictures -------------------------------------------------------------------------------------------------------

template <class From, class To>
requires IsResampling<From, To>
void convert(const Conversion<From, To>& c)
{
    for (size_t y = 0; y < c.height; ++y)
        copySamples(rowOf(c.src[0], y), 1, c.width, rowOf(c.dst[0], y), 1);
    for (size_t y = 0; y < sampled(c.height, To::yShift); ++y)
        for (size_t x = 0; x < sampled(c.width, To::xShift); ++x)
            chromaRow(To(), c.dst, y)
                .set(x, meanOf<From>(c.src, samplesFor(x, c.width, From::xShift, To::xShift),
                                     samplesFor(y, c.height, From::yShift, To::yShift)));
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

} // namespace

rvkStatus rvkChannelExtractu8C(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                               const uint8_t* src2, uint32_t src2Stride, uint32_t format, uint32_t channel,
                               uint8_t* dst, uint32_t dstStride)
{
    const Samples samples = samplesOf(format, channel);
    const Plane src = samples.plane ? Plane{src2, src2Stride} : Plane{src1, src1Stride};
    for (size_t y = 0; y < sampled(srcHeight, samples.yShift); ++y)
        copySamples(src.row(y) + samples.offset, samples.step, sampled(srcWidth, samples.xShift),
                    Plane{dst, dstStride}.row(y), 1);
    return RAVIK_SUCCESS;
}

} // namespace rvk

#include "forms/ravikChannelForms.h"
