// Vector implementations of maps fitted to correspondences: how far pairs lie from a model, and the search that counts
// inliers again and again.
//
// Squared errors are computed in single precision, with a bound of what that may be off. Where the bound leaves in doubt
// whether a pair is an inlier, or is too wide for what is stored, the pair's error is the reference's. So the inliers are
// those of the reference, whatever the bits of floats.
#include "cpu/ravikGeometryC.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include <ravik/geometry.h>

namespace rvk::vecta::RVK_ISA {
namespace {

// The sum of the squares of a pair's errors, how far off it may be, and of which pairs that can be said at all.
struct Estimate
{
    Vec<float> squaredError, slack;
    Mask<float> isSound;    // the bound holds
    Mask<float> isAccurate; // the distance is within 2^-19 of the magnitudes' formula
};

// A model of `coordinates` numbers to two, with a denominator or without.
template <size_t coordinates, bool hasDenominator>
class Model
{
public:
    static constexpr size_t kCoordinates = coordinates;

    RVK_INLINE Model(const float* coefficients, SquaredError* reference)
        : m_coefficients(coefficients), m_reference(reference)
    {
        const auto magnitude = [=](size_t i) RVK_INLINE_LAMBDA { return __builtin_fabsf(coefficients[i]); };
        bool isModerate = true;
        for (size_t i = 0; i < kRows * kRow; ++i)
            isModerate &= magnitude(i) == 0 || (magnitude(i) > kSmallestCoefficient && magnitude(i) < kLargestNumber);
        unrolled<kRow>([&](auto i) RVK_INLINE_LAMBDA {
            unrolled<kRows>([&](auto row) RVK_INLINE_LAMBDA { m_rows[row][i] = splat(coefficients[row * kRow + i]); });
            m_numerators[i] = splat((magnitude(i) + magnitude(kRow + i)) * kRounding);
            if constexpr (hasDenominator)
                m_denominator[i] = splat(magnitude(2 * kRow + i) * kRounding);
        });
        // Other coefficients leave all in doubt.
        m_numerators[coordinates] = m_numerators[coordinates] + splat(isModerate ? kUnderflow : __builtin_inff());
        if constexpr (hasDenominator)
            m_denominator[coordinates] = m_denominator[coordinates] + splat(kUnderflow);
    }

    RVK_INLINE Estimate estimate(const Vecs<float, coordinates>& src, const Vecs<float, 2>& dst) const
    {
        Vecs<float, coordinates> sizes;
        unrolled<coordinates>([&](auto i) RVK_INLINE_LAMBDA { sizes[i] = abs(src[i]); });
        Vec<float> u = at(m_rows[0], src), v = at(m_rows[1], src), bound = at(m_numerators, sizes);
        Estimate e;
        if constexpr (hasDenominator) {
            const Vec<float> w = at(m_rows[2], src), reciprocal = divide(splat(1.0f), w), size = abs(reciprocal);
            const Vec<float> ofDenominator = at(m_denominator, sizes) * size; // relative
            u = u * reciprocal;
            v = v * reciprocal;
            bound = bound * size + (abs(u) + abs(v)) * ofDenominator;
            e.isSound = less(ofDenominator, splat(0.5f));
            e.isAccurate = less(ofDenominator, splat(2 * kRounding)) & less(size, splat(kLargestNumber));
            if constexpr (coordinates == 3) // in front of the camera
                e.isSound = e.isSound & greater(w, zero<float>());
        }
        bound = bound + (abs(dst[0]) + abs(dst[1])) * splat(kRounding);
        const Vec<float> x = u - dst[0], y = v - dst[1], twice = bound + bound;
        e.squaredError = x * x + y * y;
        e.slack = bound * (twice + (abs(x) + abs(y)) * splat(2.0f)) + splat(kUnderflow);
        const Mask<float> isNormal = less(e.squaredError, splat(kLargest)) & greater(e.squaredError, splat(kSmallest));
        if constexpr (hasDenominator) {
            e.isAccurate = e.isAccurate & isNormal;
        } else {
            e.isSound = less(e.squaredError, splat(kLargest));
            e.isAccurate = isNormal;
        }
        return e;
    }

    float exact(const float* src, const float* dst) const { return m_reference(m_coefficients, src, dst); }

private:
    static constexpr size_t kRow = coordinates + 1;
    static constexpr size_t kRows = hasDenominator ? 3 : 2;
    // More than the roundings of a sum of products, the division and the difference, each 2^-24.
    static constexpr float kRounding = 0x1p-20f;
    // More than what becomes zero because it is too small, and what keeps that from becoming something again.
    static constexpr float kUnderflow = 1e-36f, kSmallestCoefficient = 0x1p-100f, kLargestNumber = 0x1p40f;
    static constexpr float kSmallest = 1e-30f, kLargest = 1e37f; // squared errors

    using Row = Vecs<float, kRow>;

    static RVK_INLINE Vec<float> at(const Row& row, const Vecs<float, coordinates>& point)
    {
        Vec<float> sum = row[coordinates];
        unrolled<coordinates>([&](auto i) RVK_INLINE_LAMBDA { sum = sum + row[i] * point[i]; });
        return sum;
    }

    const float* m_coefficients;
    SquaredError* m_reference;
    Row m_rows[kRows], m_numerators, m_denominator;
};

using Affine = Model<2, false>;
using Homography = Model<2, true>;
using Pose = Model<3, true>;

constexpr size_t kChunk = 64;

// Pairs next to each other; those behind the last are zero.
template <size_t coordinates>
struct Chunk
{
    const float *src, *dst;
    float srcCopy[kChunk * coordinates], dstCopy[kChunk * 2];

    RVK_INLINE Chunk(const rvkaCorrespondences& pairs, size_t first, size_t count)
    {
        const bool isWhole = count == kChunk;
        src = take<coordinates>(pairs.src, pairs.srcStride, first, count, isWhole, srcCopy);
        dst = take<2>(pairs.dst, pairs.dstStride, first, count, isWhole, dstCopy);
    }

private:
    template <size_t numbers>
    static RVK_INLINE const float* take(const float* points, uint32_t stride, size_t first, size_t count, bool isWhole,
                                        float* copy)
    {
        const size_t step = stride / sizeof(float);
        if (isWhole && step == numbers)
            return points + first * numbers;
        for (size_t i = 0; i < count; ++i)
            for (size_t k = 0; k < numbers; ++k)
                copy[i * numbers + k] = points[(first + i) * step + k];
        for (size_t i = count * numbers; i < kChunk * numbers; ++i)
            copy[i] = 0;
        return copy;
    }
};

// The lanes of four vectors of numbers as bytes.
RVK_INLINE Vec<uint8_t> bytesOf(const Vecs<uint32_t, 4>& v)
{
    return narrow(Vecs<uint16_t, 2>{narrow(Vecs<uint32_t, 2>{v[0], v[1]}), narrow(Vecs<uint32_t, 2>{v[2], v[3]})});
}

// Which pairs of a chunk have an error that is small enough, a byte for each, which is 1; and, where they are wanted, the
// squared errors of all of them.
template <bool wantsErrors, size_t coordinates, bool hasDenominator>
RVK_INLINE void judge(const Model<coordinates, hasDenominator>& model, const Chunk<coordinates>& chunk, size_t count,
                      float maxSquaredError, float* squaredErrors, uint8_t* isInside)
{
    constexpr size_t lanes = Vec<float>::lanes, step = 4 * lanes;
    const Vec<float> most = splat(maxSquaredError);
    uint8_t isSure[kChunk];
    bool hasDoubts = false;
    for (size_t i = 0; i < kChunk; i += step) {
        Vecs<uint32_t, 4> inside, sure;
        unrolled<4>([&](auto k) RVK_INLINE_LAMBDA {
            const size_t at = i + k * lanes;
            const Estimate e =
                model.estimate(loadInterleaved<coordinates>(chunk.src + at * coordinates), load2(chunk.dst + 2 * at));
            const Mask<float> isLess = less(e.squaredError + e.slack, most);
            Mask<float> isKnown = (isLess | greater(e.squaredError - e.slack, most)) & e.isSound;
            if constexpr (wantsErrors) {
                isKnown = isKnown & e.isAccurate;
                store(squaredErrors + at, e.squaredError);
            }
            inside[k] = bitCast<uint32_t>(toVec(isLess));
            sure[k] = bitCast<uint32_t>(toVec(isKnown));
            hasDoubts |= !all(isKnown);
        });
        store(isInside + i, bytesOf(inside) & splat<uint8_t>(1));
        store(isSure + i, bytesOf(sure));
    }
    for (size_t i = 0; hasDoubts && i < count; ++i)
        if (!isSure[i]) {
            const float exact = model.exact(chunk.src + i * coordinates, chunk.dst + 2 * i);
            if constexpr (wantsErrors)
                squaredErrors[i] = exact;
            isInside[i] = exact <= maxSquaredError && exact < __builtin_inff();
        }
    if (count < kChunk)
        __builtin_memset(isInside + count, 0, kChunk - count);
}

// It stops where it sees that there are no more inliers than `best`.
template <bool wantsErrors, size_t coordinates, bool hasDenominator>
RVK_INLINE uint32_t evaluate(const Model<coordinates, hasDenominator>& model, const rvkaCorrespondences& pairs,
                             float maxSquaredError, uint32_t best, float* squaredErrors, uint8_t* inliers)
{
    uint32_t found = 0;
    for (size_t first = 0; first < pairs.count; first += kChunk) {
        const size_t left = pairs.count - first, count = least(left, kChunk);
        if (found + left <= best)
            break;
        const Chunk<coordinates> chunk(pairs, first, count);
        float errors[kChunk];
        uint8_t isInlier[kChunk];
        float* const wholeErrors = wantsErrors && count == kChunk ? squaredErrors + first : errors;
        judge<wantsErrors>(model, chunk, count, maxSquaredError, wholeErrors, isInlier);
        if (wantsErrors && count < kChunk)
            __builtin_memcpy(squaredErrors + first, errors, count * sizeof(float));
        if (pairs.mask)
            for (size_t i = 0; i < count; ++i)
                isInlier[i] = pairs.mask[first + i] ? isInlier[i] : 0;
        Total<uint8_t> total;
        for (size_t i = 0; i < kChunk; i += kBytes)
            total.add(load(isInlier + i));
        found += total.value();
        if (inliers)
            __builtin_memcpy(inliers + first, isInlier, count);
    }
    return found;
}

template <class AnyModel>
RVK_INLINE uint32_t evaluateAll(const AnyModel& model, const rvkaCorrespondences& pairs, float maxSquaredError,
                                float* squaredErrors, uint8_t* inliers)
{
    return squaredErrors ? evaluate<true>(model, pairs, maxSquaredError, 0, squaredErrors, inliers)
                         : evaluate<false>(model, pairs, maxSquaredError, 0, nullptr, inliers);
}

uint32_t countInliers(const rvkaCorrespondences& packed, const float* homography, float maxSquaredError, uint32_t best,
                      uint8_t* inliers)
{
    return evaluate<false>(Homography(homography, homographySquaredError), packed, maxSquaredError, best, nullptr,
                           inliers);
}

} // namespace

uint32_t rvkGeomAffineEvaluatef32V(const rvkaCorrespondences* pairs, const float32_t* affine, float32_t maxSquaredError,
                                   float32_t* squaredErrors, uint8_t* inliers)
{
    return evaluateAll(Affine(affine, affineSquaredError), *pairs, maxSquaredError, squaredErrors, inliers);
}

uint32_t rvkGeomHomographyEvaluatef32V(const rvkaCorrespondences* pairs, const float32_t* homography,
                                       float32_t maxSquaredError, float32_t* squaredErrors, uint8_t* inliers)
{
    return evaluateAll(Homography(homography, homographySquaredError), *pairs, maxSquaredError, squaredErrors, inliers);
}

uint32_t rvkGeomPoseEvaluatef32V(const rvkaCorrespondences* pairs, const float32_t* pose, float32_t maxSquaredError,
                                 float32_t* squaredErrors, uint8_t* inliers)
{
    return evaluateAll(Pose(pose, poseSquaredError), *pairs, maxSquaredError, squaredErrors, inliers);
}

// The compilers make vectors of doubles of it where there are any.
void irvkNormalizePoints2DV(const float32_t* points, uint32_t count, const double* centre, double scale,
                            double* normalized)
{
    const double x = centre[0], y = centre[1];
    for (size_t i = 0; i < size_t{2} * count; i += 2) {
        normalized[i] = (points[i] - x) * scale;
        normalized[i + 1] = (points[i + 1] - y) * scale;
    }
}

rvkStatus rvkGeomHomographyRobustFitf32V(const rvkaCorrespondences* pairs, float32_t maxSquaredError,
                                         uint32_t maxIterations, float32_t confidence, uint32_t seed,
                                         float32_t* homography, uint8_t* inliers, uint32_t* numInliers)
{
    return fitRobustly(*pairs, {maxSquaredError, maxIterations, confidence, seed, countInliers}, homography, inliers,
                       numInliers);
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikGeometryForms.h"
