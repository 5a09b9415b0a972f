// Vector implementations of clustering: the search for the nearest centres.
//
// Floats: half of the distances less what they have in common, |c|^2 / 2 - p.c, are formed in single precision, in
// tiles of centres side by side. They decide where rounding errors do not reach; centres that come too close for that
// are compared as the reference does it. So the labels are the reference's.
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include "cpu/ravikClusterC.h"
#include "scratch.h"

#include <ravik/search.h>

namespace rvk::vecta::RVK_ISA {
namespace {

constexpr size_t kTogether = 4; // points, or centres, that are worked on side by side

// ---- floats ---------------------------------------------------------------------------------------------------------

constexpr size_t kVectors = 2; // of centres, in a tile
constexpr size_t kTile = kVectors * Vec<float>::lanes;
constexpr uint32_t kMostDim = 1 << 20; // beyond which the bound of the errors below would not hold

// Tile by tile the first coordinates of its centres, the second ones, and so on.
RVK_INLINE void arrangeCenters(const ClusterJob<float>& job, float* tiles, float* halfSquares)
{
    const size_t count = job.centerCount, dim = job.dim, padded = roundedUp(count, kTile);
    for (size_t k = 0; k < padded; ++k) {
        float* const to = tiles + k / kTile * kTile * dim + k % kTile;
        for (size_t j = 0; j < dim; ++j)
            to[j * kTile] = k < count ? job.center(k)[j] : 0.0f;
        if (k >= count)
            halfSquares[k] = __builtin_inff(); // never the nearest
    }
}

// |c|^2 / 2, or 0 where points and centres have length 1 anyway. Returns the largest |c|^2, which is infinite where
// scores could overflow.
RVK_INLINE double sumSquares(const ClusterJob<float>& job, float* halfSquares)
{
    double largest = 0;
    for (size_t k = 0; k < job.centerCount; ++k) {
        double squares = 0;
        for (size_t j = 0; j < job.dim; ++j)
            squares += static_cast<double>(job.center(k)[j]) * job.center(k)[j];
        if (!(squares <= largest)) // a number that is none stays
            largest = squares;
        halfSquares[k] = job.metric == ClusterMetric::normed ? 0.0f : static_cast<float>(squares / 2);
    }
    return largest < 1e37 ? largest : __builtin_inf();
}

RVK_INLINE float squaredLength(const float* point, size_t dim)
{
    constexpr size_t lanes = Vec<float>::lanes;
    Vec<float> sum = zero<float>();
    size_t j = 0;
    for (; j + lanes <= dim; j += lanes)
        sum = multiplyAdd(load(point + j), load(point + j), sum);
    if (j < dim) {
        const Vec<float> rest = loadPartial(point + j, dim - j);
        sum = multiplyAdd(rest, rest, sum);
    }
    return reduceFrom<lanes / 2>(sum, [](Vec<float> a, Vec<float> b) RVK_INLINE_LAMBDA { return a + b; });
}

using Points = const float* [kTogether];

// scores[n * padded + k] = halfSquares[k] - points[n].centre k.
RVK_NOINLINE void scorePoints(const Points& points, const float* tiles, const float* halfSquares, size_t padded,
                              size_t dim, float* scores)
{
    constexpr size_t lanes = Vec<float>::lanes;
    for (size_t first = 0; first < padded; first += kTile) {
        Vecs<float, kVectors> dots[kTogether] = {};
        for (size_t j = 0; j < dim; ++j, tiles += kTile) {
            const Vecs<float, kVectors> centers = loadVecs<kVectors>(tiles);
            unrolled<kTogether>([&](auto n) RVK_INLINE_LAMBDA {
                const Vec<float> coordinate = splat(points[n][j]);
                unrolled<kVectors>(
                    [&](auto v) RVK_INLINE_LAMBDA { dots[n][v] = multiplyAdd(centers[v], coordinate, dots[n][v]); });
            });
        }
        unrolled<kTogether>([&](auto n) RVK_INLINE_LAMBDA {
            unrolled<kVectors>([&](auto v) RVK_INLINE_LAMBDA {
                const size_t k = first + v * lanes;
                store(scores + n * padded + k, load(halfSquares + k) - dots[n][v]);
            });
        });
    }
}

// Those up to a limit.
struct Candidates
{
    int32_t count, sumOfLabels;
};

RVK_INLINE Candidates countCandidates(const float* scores, size_t padded, float limit)
{
    constexpr size_t lanes = Vec<float>::lanes;
    const Vec<float> most = splat(limit);
    Vec<int32_t> labels = iota<int32_t>(), count = zero<int32_t>(), sum = zero<int32_t>();
    for (size_t k = 0; k < padded; k += lanes) {
        const Vec<int32_t> isNear = bitCast<int32_t>(toVec(~greater(load(scores + k), most)));
        count = count - isNear;
        sum = sum + (labels & isNear);
        labels = labels + splat<int32_t>(lanes);
    }
    return {reduceAdd(count), reduceAdd(sum)};
}

RVK_INLINE float leastOf(const float* scores, size_t padded)
{
    Vec<float> best = splat(__builtin_inff());
    for (size_t k = 0; k < padded; k += Vec<float>::lanes)
        best = min(best, load(scores + k));
    return reduceMin(best);
}

RVK_NOINLINE uint32_t nearestOf(const ClusterJob<float>& job, const float* point, const float* scores, float limit)
{
    uint32_t label = 0;
    double least = __builtin_inf();
    for (uint32_t k = 0; k < job.centerCount; ++k) {
        if (scores[k] > limit)
            continue;
        const double distance = squaredDistance(job, point, job.center(k));
        if (distance < least) {
            least = distance;
            label = k;
        }
    }
    return label;
}

// `largest` is the largest |c|^2. With u = 2^-24, two scores err by (dim + 4) u (|p|^2 + 2 |c|^2) at most; twice that,
// and what is lost of numbers that 32-bit Arm takes for zero, cannot be told from a tie.
RVK_INLINE uint32_t labelOf(const ClusterJob<float>& job, const float* point, const float* scores, size_t padded,
                            double largest)
{
    const double unit = 1.0 / (1 << 22), lost = unit * unit * unit * unit * unit; // 2^-110
    const double reach = (job.dim + 8.0) * (unit * (squaredLength(point, job.dim) + largest) + lost);
    const float limit = leastOf(scores, padded) + static_cast<float>(reach);
    if (!(limit < __builtin_inff()))
        return nearestCenter(job, point);
    const Candidates near = countCandidates(scores, padded, limit);
    return near.count == 1 ? static_cast<uint32_t>(near.sumOfLabels) : nearestOf(job, point, scores, limit);
}

rvkStatus labelFloats(const ClusterJob<float>& job)
{
    const size_t padded = roundedUp(job.centerCount, kTile);
    const Scratch<float> tiles(padded, job.dim), halfSquares(padded), scores(kTogether, padded);
    if (!tiles || !halfSquares || !scores)
        return RAVIK_ENORES;
    arrangeCenters(job, tiles.get(), halfSquares.get());
    const double largest = sumSquares(job, halfSquares.get());
    const size_t last = job.pointCount - 1;
    for (size_t i = 0; i < job.pointCount; i += kTogether) {
        Points points;
        unrolled<kTogether>([&](auto n) RVK_INLINE_LAMBDA { points[n] = job.point(least(i + n, last)); });
        scorePoints(points, tiles.get(), halfSquares.get(), padded, job.dim, scores.get());
        for (size_t n = 0; n < kTogether && i + n <= last; ++n)
            job.labels[i + n] = labelOf(job, points[n], scores.get() + n * padded, padded, largest);
    }
    return RAVIK_SUCCESS;
}

// ---- bytes ----------------------------------------------------------------------------------------------------------

constexpr uint32_t kMostBytes = 1 << 16; // whose squared distances fit 32 bits

// The sums of products with a point, whose row has `length` bytes, as the centres' rows: whole vectors.
struct ByteDots
{
    const uint8_t* point;
    size_t length;
    Vec<uint32_t> start; // what they have in common

    RVK_INLINE ByteDots(const uint8_t* p, size_t n) : point(p), length(n), start(zero<uint32_t>())
    {
        for (size_t j = 0; j < n; j += Vec<uint8_t>::lanes)
            start = addToRestOfDot(start, load(p + j));
        start = restOfDot(start);
    }
    RVK_INLINE uint32_t ofPoint() const
    {
        Vec<uint32_t> sum = start;
        for (size_t j = 0; j < length; j += Vec<uint8_t>::lanes)
            sum = addPartOfDot(sum, load(point + j), load(point + j));
        return reduceAdd(sum);
    }
    RVK_INLINE void ofFour(const uint8_t* rows, uint32_t* dots) const
    {
        Vecs<uint32_t, kTogether> sums = {{start, start, start, start}};
        for (size_t j = 0; j < length; j += Vec<uint8_t>::lanes) {
            const Vec<uint8_t> p = load(point + j);
            unrolled<kTogether>(
                [&](auto n) RVK_INLINE_LAMBDA { sums[n] = addPartOfDot(sums[n], p, load(rows + n * length + j)); });
        }
        storeSums(dots, sums);
    }
};

// The first of the nearest centres, by their dot products with the point, which become distances.
RVK_INLINE uint32_t firstNearest(uint32_t ownSquares, const uint32_t* squares, uint32_t* numbers, size_t padded)
{
    constexpr size_t lanes = Vec<uint32_t>::lanes;
    Vec<uint32_t> best = splat(UINT32_MAX);
    for (size_t k = 0; k < padded; k += lanes) {
        const Vec<uint32_t> distance = splat(ownSquares) + load(squares + k) - shiftLeft(load(numbers + k), 1);
        store(numbers + k, distance);
        best = min(best, distance);
    }
    best = splat(reduceMin(best));
    for (size_t k = 0;; k += lanes)
        if (const Mask<uint32_t> is = equal(load(numbers + k), best); any(is))
            return static_cast<uint32_t>(k + firstTrue(is));
}

rvkStatus labelBytes(const ClusterJob<uint8_t>& job)
{
    const size_t count = job.centerCount, dim = job.dim, length = roundedUp(dim, Vec<uint8_t>::lanes);
    const size_t rows = roundedUp(count, kTogether), padded = roundedUp(count, Vec<uint32_t>::lanes);
    const Scratch<uint8_t> centers(rows + 1, length);
    const Scratch<uint32_t> squares(padded), dots(padded);
    if (!centers || !squares || !dots)
        return RAVIK_ENORES;
    uint8_t* const point = centers.get() + rows * length;
    __builtin_memset(centers.get(), 0, (rows + 1) * length);
    for (size_t k = 0; k < padded; ++k) { // the last one again and again
        uint8_t* const row = centers.get() + least(k, rows - 1) * length;
        __builtin_memcpy(row, job.center(least(k, count - 1)), dim);
        squares[k] = 0;
        for (size_t j = 0; j < dim; ++j)
            squares[k] += static_cast<uint32_t>(row[j] * row[j]);
    }
    for (size_t i = 0; i < job.pointCount; ++i) {
        __builtin_memcpy(point, job.point(i), dim);
        const ByteDots products(point, length);
        for (size_t k = 0; k < rows; k += kTogether)
            products.ofFour(centers.get() + k * length, dots.get() + k);
        for (size_t k = rows; k < padded; ++k)
            dots[k] = dots[rows - 1];
        job.labels[i] = firstNearest(products.ofPoint(), squares.get(), dots.get(), padded);
    }
    return RAVIK_SUCCESS;
}

uint64_t squaredDistanceOfBytes(const ClusterJob<uint8_t>& job, const uint8_t* point, const uint8_t* center)
{
    const size_t dim = job.dim;
    if (dim > kMostBytes)
        return squaredDistance(job, point, center);
    constexpr size_t lanes = Vec<uint8_t>::lanes;
    Vec<uint32_t> sum = zero<uint32_t>();
    const auto add = [&](Vec<uint8_t> p, Vec<uint8_t> c) RVK_INLINE_LAMBDA {
        const Vec<uint8_t> difference = absDiff(p, c);
        sum = addDot(sum, difference, difference);
    };
    size_t j = 0;
    for (; j + lanes <= dim; j += lanes)
        add(load(point + j), load(center + j));
    if (j < dim)
        add(loadPartial(point + j, dim - j), loadPartial(center + j, dim - j));
    return reduceAdd(sum);
}

// ---- what the forms ask for -----------------------------------------------------------------------------------------

template <class T>
rvkStatus labelEach(const ClusterJob<T>& job)
{
    for (size_t i = 0; i < job.pointCount; ++i)
        job.labels[i] = nearestCenter(job, job.point(i));
    return RAVIK_SUCCESS;
}

template <class T>
rvkStatus labelPoints(const ClusterJob<T>& job)
{
    if constexpr (isSame<T, float>)
        return job.dim <= kMostDim ? labelFloats(job) : labelEach(job);
    else
        return job.dim <= kMostBytes ? labelBytes(job) : labelEach(job);
}

template <class T>
constexpr ClusterSteps<T> kClusterSteps = {labelPoints<T>, squaredDistance};
template <>
constexpr ClusterSteps<uint8_t> kClusterSteps<uint8_t> = {labelPoints<uint8_t>, squaredDistanceOfBytes};

} // namespace
} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikClusterForms.h"
