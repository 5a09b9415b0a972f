// Vector implementations of the corner detectors.
//
// Blocks of rows go through all steps while the caches have them: products of gradients, their smoothing, responses and
// the search for the largest of these, which stays two rows behind.
#include "cpu/ravikHarrisC.h"
#include "scratch.h"
#include "vecta/simd/binomials.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

using Bytes = Vec<uint8_t>;
using Shorts = Vec<int16_t>;
using Words = Vec<int32_t>;
using Floats = Vec<float>;

constexpr size_t kProducts = 3; // of gradients: xx, yy and xy

using Smoothing = Binomial5<int16_t, ShiftRight<8>>;
constexpr size_t kRowsBefore = Smoothing::rows - 1; // that a window has above its last one
constexpr size_t kRows = 28;                        // of a block

// ---- gradients -----------------------------------------------------------------------------------------------------

// Of `n` pixels of the middle row, which has one more at either end.
RVK_INLINE void multiplyGradients(size_t n, const uint8_t* above, const uint8_t* row, const uint8_t* below,
                                  Plane<int16_t> products)
{
    const auto multiply = [=](size_t x, auto loadPixels) RVK_INLINE_LAMBDA {
        const Vec<int8_t> dx = halfDifference(loadPixels(row + x + 1), loadPixels(row + x - 1));
        const Vec<int8_t> dy = halfDifference(loadPixels(below + x), loadPixels(above + x));
        store(products.row(0) + x, multiplyWide(dx, dx));
        store(products.row(1) + x, multiplyWide(dy, dy));
        store(products.row(2) + x, multiplyWide(dx, dy));
    };
    if (n < kBytes) {
        multiply(0, [=](const uint8_t* p) RVK_INLINE_LAMBDA { return loadPartial(p, n); });
        return;
    }
    for (size_t next = 0; next < n; next += kBytes) {
        const size_t x = next + kBytes <= n ? next : n - kBytes; // the last step may overlap the one before it
        multiply(x, [](const uint8_t* p) RVK_INLINE_LAMBDA { return load(p); });
    }
}

// ---- responses, of a vector of smoothed products -------------------------------------------------------------------

// Neighbouring gradients cannot all be -128, so sums of two products fit 16 bits.
struct HarrisResponse
{
    RVK_INLINE Vecs<int32_t, 2> operator()(Shorts xx, Shorts yy, Shorts xy) const
    {
        const Shorts trace = xx + yy;
        const Vecs<int32_t, 2> determinant = dotInLanes({{xx, xy}}, {{yy, zero<int16_t>() - xy}});
        const Vecs<int32_t, 2> square = multiplyWideInLanes(trace, trace);
        return orderWidened(
            Vecs<int32_t, 2>{determinant[0] - shiftRight(square[0], 4), determinant[1] - shiftRight(square[1], 4)});
    }
};

// Twice the smaller eigenvalue, as a key in the order of the floats; where it certainly is not above the threshold the
// least key, because roots take long. Factors of 2 in all operations leave the bits of the rest what they are.
struct SmallerEigenvalue
{
    Floats threshold; // twice, and no subnormal number below 0

    RVK_INLINE Vecs<int32_t, 2> operator()(Shorts xx, Shorts yy, Shorts xy) const
    {
        const Vecs<int32_t, 2> sums = widen(xx + yy), differences = widen(xx - yy), mixed = widen(xy);
        Floats trace[2], square[2];
        Mask<float> mayExceed[2];
        unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
            const Floats difference = toFloat(differences[i]), twice = toFloat(mixed[i] + mixed[i]);
            trace[i] = toFloat(sums[i]);
            square[i] = difference * difference + twice * twice;
            // trace - sqrt(square) > threshold, with a margin for what is lost by rounding
            const Floats excess = trace[i] - threshold, margin = splat(1 + 1.0f / (1 << 20));
            mayExceed[i] = greater(excess, zero<float>()) & ~greater(square[i], excess * excess * margin);
        });
        if (!any(mayExceed[0] | mayExceed[1]))
            return {{splat(INT32_MIN), splat(INT32_MIN)}};
        return {{orderKeys(trace[0] - squareRoot(square[0])), orderKeys(trace[1] - squareRoot(square[1]))}};
    }
};

// ---- blocks --------------------------------------------------------------------------------------------------------

// Products of gradients of a part of the picture that the first-level cache holds: all three of a row one after the
// other. Their columns are whole steps, and a vector behind them may be read.
constexpr size_t kTileColumns = 128, kTilePitch = kTileColumns + Shorts::lanes;
constexpr size_t kTileOutputs = kTileColumns - (Smoothing::columns - 1);
static_assert(kTileColumns % kBytes == 0);

// Where there are more than 16 registers they hold the sums of all products, and nothing smoothed goes through memory:
// with AVX-512 that spares a tenth of the time. Of 16 they would be spilled: 40 % more instructions on 32-bit Arm.
#if defined(__AVX512BW__) || defined(__aarch64__)
constexpr bool kSmoothsAllAtOnce = true;
#else
constexpr bool kSmoothsAllAtOnce = false;
#endif

// The responses of windows.
template <class Response>
struct ResponseKernel
{
    static constexpr size_t rows = Smoothing::rows, columns = Smoothing::columns, step = Smoothing::step;
    Response response;
    Smoothing smoothing[kProducts] = {};

    RVK_INLINE Vecs<int32_t, 2> next(const int16_t* p)
    {
        return response(smoothing[0].next(p), smoothing[1].next(p + kTilePitch), smoothing[2].next(p + 2 * kTilePitch));
    }
};

// Of `n` x `m` windows of products; n is a multiple of a step.
template <class Response>
RVK_INLINE void respondToProducts(size_t n, size_t m, const int16_t* products, Plane<int32_t> responses,
                                  Response response)
{
    constexpr uint32_t stride = kProducts * kTilePitch * sizeof(int16_t);
    if constexpr (kSmoothsAllAtOnce) {
        walk(n, m, Plane<const int16_t>{products, stride}, ResponseKernel<Response>{response}, responses);
        return;
    }
    alignas(kBytes) int16_t smoothed[kRows * kProducts * kTilePitch];
    for (size_t i = 0; i < kProducts * kTilePitch; i += kTilePitch)
        walk(n, m, Plane<const int16_t>{products + i, stride}, Smoothing{}, Plane<int16_t>{smoothed + i, stride});
    for (size_t y = 0; y < m; ++y)
        for (size_t x = 0; x < n; x += Smoothing::step) {
            const int16_t* const p = smoothed + y * kProducts * kTilePitch + x;
            store(responses.row(y) + x, response(load(p), load(p + kTilePitch), load(p + 2 * kTilePitch)));
        }
}

// Responses of `count` rows and so many columns, whose windows of products begin with pixel (left, top). Columns up to
// the next whole step are written, too.
template <class Response>
RVK_INLINE void respondInTile(const GreyImage& image, size_t left, size_t top, size_t columns, size_t count,
                              Response response, Plane<int32_t> responses)
{
    alignas(kBytes) int16_t products[(kRows + kRowsBefore) * kProducts * kTilePitch];
    const Plane src = {image.data, image.stride};
    const Plane<int16_t> rows = {products, kTilePitch * sizeof(int16_t)};
    for (size_t k = 0; k < count + kRowsBefore; ++k) {
        const size_t y = top + k;
        multiplyGradients(columns + Smoothing::columns - 1, src.row(y - 1) + left, src.row(y) + left,
                          src.row(y + 1) + left, {rows.row(k * kProducts), rows.stride});
    }
    respondToProducts(roundedUp(columns, Smoothing::step), count, products, responses, response);
}

// Computes the responses of the picture, a block of rows after the other: use(first, end, rows) gets those of rows
// `first` to `end`. Row `first` is rows.row(kRowsBefore), above it are the last of the block before; their column 0 is
// kResponseBorder of the picture. False ends it.
template <class Response, class Use>
RVK_INLINE rvkStatus respondInBlocks(const GreyImage& image, Response response, Use use)
{
    const size_t n = image.width - 2 * kResponseBorder, m = image.height - 2 * kResponseBorder;
    const uint64_t pitch = roundedUp(image.width, kBytes) + uint64_t{2} * kBytes;
    const Scratch<int32_t> scratch(least(kRows, m) + kRowsBefore, pitch);
    if (!scratch)
        return RAVIK_ENORES;
    const Plane<int32_t> responses = {scratch.get(), static_cast<uint32_t>(pitch * sizeof(int32_t))};
    for (size_t top = 0; top < m; top += kRows) {
        const size_t count = least(kRows, m - top);
        for (size_t x = 0; x < n; x += kTileOutputs)
            respondInTile(image, x + 1, top + 1, least(kTileOutputs, n - x), count, response,
                          {responses.row(kRowsBefore) + x, responses.stride});
        if (!use(top + kResponseBorder, top + kResponseBorder + count, responses))
            break;
        __builtin_memmove(responses.row(0), responses.row(count), kRowsBefore * responses.stride);
    }
    return RAVIK_SUCCESS;
}

// ---- the largest responses -----------------------------------------------------------------------------------------

RVK_INLINE Words max5(const int32_t* p)
{
    return max(max(max(load(p - 2), load(p - 1)), max(load(p + 1), load(p + 2))), load(p));
}

// Those of a vector of responses that are above the threshold and their neighbours.
RVK_INLINE Mask<int32_t> largest(const int32_t* p, size_t pitch, Words threshold)
{
    const Words centre = load(p);
    Mask<int32_t> mask = greater(centre, threshold);
    if (!any(mask))
        return mask;
    mask = mask & greater(centre, max(max(load(p - 2), load(p - 1)), max(load(p + 1), load(p + 2))));
    mask = mask & greater(centre, max(max5(p - pitch), max5(p + pitch)));
    if (!any(mask))
        return mask;
    return mask & greater(centre, max(max5(p - 2 * pitch), max5(p + 2 * pitch)));
}

// Gives the corners among the first `n` of two vectors to the taker; false when it wants no more.
RVK_NOINLINE bool takeCorners(const int32_t* p, size_t pitch, size_t n, int32_t threshold, uint32_t x, uint32_t y,
                              CornerTaker& taker)
{
    constexpr size_t lanes = Words::lanes;
    for (size_t first = 0; first < n; first += lanes) {
        const Mask<int32_t> mask = largest(p + first, pitch, splat(threshold));
        if (!any(mask))
            continue;
        int32_t isCorner[lanes];
        store(isCorner, toVec(mask));
        for (size_t i = 0; i < lanes && first + i < n; ++i)
            if (isCorner[i] && !taker.take(static_cast<uint32_t>(x + first + i), y, p[first + i]))
                return false;
    }
    return true;
}

RVK_INLINE bool takeCornersOfRow(const int32_t* row, size_t pitch, const CornerArea& area, int32_t threshold,
                                 uint32_t y, CornerTaker& taker)
{
    constexpr size_t step = 4 * Words::lanes;
    for (size_t x = area.left; x < area.right; x += step) {
        const int32_t* const p = row + (x - kResponseBorder);
        const Vecs<int32_t, 4> v = loadVecs<4>(p);
        if (any(greater(max(max(v[0], v[1]), max(v[2], v[3])), splat(threshold))) &&
            !takeCorners(p, pitch, least(step, area.right - x), threshold, static_cast<uint32_t>(x), y, taker))
            return false;
    }
    return true;
}

template <class Response>
RVK_INLINE rvkStatus findCorners(const GreyImage& image, const CornerArea& area, int32_t threshold, CornerTaker& taker,
                                 Response response)
{
    return respondInBlocks(image, response, [&](size_t first, size_t end, Plane<int32_t> rows) RVK_INLINE_LAMBDA {
        const size_t pitch = rows.stride / sizeof(int32_t);
        const size_t bottom = least(end - 2, area.bottom);
        for (size_t y = first < area.top + 2 ? area.top : first - 2; y < bottom; ++y)
            if (!takeCornersOfRow(rows.row(y + kRowsBefore - first), pitch, area, threshold, static_cast<uint32_t>(y),
                                  taker))
                return false;
        return true;
    });
}

RVK_NOINLINE rvkStatus findHarrisCorners(const GreyImage& image, const CornerArea& area, int32_t threshold,
                                         CornerTaker& taker)
{
    return findCorners(image, area, threshold, taker, HarrisResponse{});
}

int32_t orderKey(float v)
{
    return orderKeys(splat(v)).raw[0];
}

RVK_NOINLINE rvkStatus findGoodFeatures(const GreyImage& image, const CornerArea& area, float32_t threshold,
                                        CornerTaker& taker)
{
    constexpr float leastNormal = __FLT_MIN__;
    const float twice = threshold + threshold;
    const bool isSubnormal = -leastNormal < twice && twice < 0;
    return findCorners(image, area, orderKey(twice), taker,
                       SmallerEigenvalue{splat(isSubnormal ? -leastNormal : twice)});
}

} // namespace

rvkStatus rvkLocalHarrisMaxu8V(const uint8_t* patch, uint32_t width, uint32_t height, uint32_t stride, uint32_t* maxX,
                               uint32_t* maxY, int32_t* maxResponse)
{
    const size_t n = width - 2 * kResponseBorder;
    int32_t best = INT32_MIN;
    size_t bestX = 0, bestY = 0;
    const auto search = [&](size_t first, size_t end, Plane<int32_t> rows) RVK_INLINE_LAMBDA {
        for (size_t y = first; y < end; ++y) {
            int32_t* const row = rows.row(y + kRowsBefore - first);
            store(row + n, splat(INT32_MIN)); // so that whole vectors have nothing else behind the last response
            Words most = load(row);
            for (size_t x = Words::lanes; x < n; x += Words::lanes)
                most = max(most, load(row + x));
            const int32_t largest = reduceMax(most);
            if (largest <= best)
                continue;
            best = largest;
            bestY = y;
            for (bestX = 0; row[bestX] != largest;)
                ++bestX;
        }
        return true;
    };
    const rvkStatus status = respondInBlocks({patch, width, height, stride}, HarrisResponse{}, search);
    if (status == RAVIK_SUCCESS) {
        *maxX = static_cast<uint32_t>(bestX + kResponseBorder);
        *maxY = static_cast<uint32_t>(bestY);
        *maxResponse = best;
    }
    return status;
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikHarrisForms.h"
