// Vector implementation of support vector machines: products in single precision, their sums in double.
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include "cpu/ravikSvmC.h"

#include <ravik/dotproduct.h>

namespace rvk::vecta::RVK_ISA {

decltype(::rvkDotProductf32) rvkDotProductf32V;

namespace {

// ---- products of two vectors ----------------------------------------------------------------------------------------

constexpr size_t kChunk = 256; // elements that are summed in single precision
constexpr size_t kLanes = Vec<float>::lanes;

// Whether a sum of a chunk's products is right but for rounding: nothing overflowed, and what may have become 0 on the
// way is little beside it.
RVK_INLINE bool isTrusted(float sum)
{
    const float magnitude = __builtin_fabsf(sum);
    return magnitude >= 0x1p-90f && magnitude < __builtin_inff();
}

// Whether all products are zeros because one of their factors is.
RVK_NOINLINE bool areDisjoint(const float* a, const float* b, size_t count)
{
    const auto isZero = [](Vec<float> v)
                            RVK_INLINE_LAMBDA { return equal(shiftLeft(bitCast<uint32_t>(v), 1), zero<uint32_t>()); };
    for (size_t j = 0; j < count; j += kLanes) {
        const size_t here = least(kLanes, count - j);
        if (!all(isZero(loadPartial(a + j, here)) | isZero(loadPartial(b + j, here))))
            return false;
    }
    return true;
}

RVK_NOINLINE double dotOf(const float* a, const float* b, size_t count)
{
    double sum = 0;
    for (size_t j = 0; j < count; j += kChunk) {
        const size_t here = least(kChunk, count - j);
        const float part = rvkDotProductf32V(a + j, b + j, static_cast<uint32_t>(here));
        const bool isRight = isTrusted(part) || (part == 0 && areDisjoint(a + j, b + j, here));
        sum += isRight ? part : dotProduct(a + j, b + j, here);
    }
    return sum;
}

RVK_INLINE float squaredDifferenceOfChunk(const float* a, const float* b, size_t count)
{
    Vecs<float, 2> sums = {};
    const auto add = [&](size_t i, Vec<float> x, Vec<float> y) RVK_INLINE_LAMBDA {
        const Vec<float> difference = x - y;
        sums[i] = multiplyAdd(difference, difference, sums[i]);
    };
    for (; count >= 2 * kLanes; count -= 2 * kLanes) {
        unrolled<2>([&](auto i) RVK_INLINE_LAMBDA { add(i, load(a + i * kLanes), load(b + i * kLanes)); });
        a += 2 * kLanes;
        b += 2 * kLanes;
    }
    if (count >= kLanes) {
        add(0, load(a), load(b));
        a += kLanes;
        b += kLanes;
        count -= kLanes;
    }
    if (count)
        add(1, loadPartial(a, count), loadPartial(b, count));
    return reduceFrom<kLanes / 2>(sums[0] + sums[1],
                                  [](Vec<float> x, Vec<float> y) RVK_INLINE_LAMBDA { return x + y; });
}

RVK_NOINLINE double squaredDifferenceOf(const float* a, const float* b, size_t count)
{
    double sum = 0;
    for (size_t j = 0; j < count; j += kChunk) {
        const size_t here = least(kChunk, count - j);
        const float part = squaredDifferenceOfChunk(a + j, b + j, here);
        sum += isTrusted(part) ? part : squaredDifference(a + j, b + j, here);
    }
    return sum;
}

// ---- kernels --------------------------------------------------------------------------------------------------------

// exp(-t) of t from 0 on, to 2^-22; what is not a number may become any.
RVK_INLINE Vec<float> expOfNegative(Vec<float> t)
{
    constexpr float most = 87, log2e = 1.44269504f, ln2High = 0.693359375f, ln2Low = -2.12194440e-4f;
    t = min(splat(most), t);
    const Vec<int32_t> halvings = roundToInt(t * splat(log2e));
    const Vec<float> n = toFloat(halvings);
    const Vec<float> r = (n * splat(ln2High) - t) + n * splat(ln2Low); // -t = r - n ln 2
    Vec<float> sum = splat(1.0f / 720);
    constexpr float coefficients[] = {1.0f / 120, 1.0f / 24, 1.0f / 6, 0.5f, 1.0f, 1.0f};
    for (const float coefficient : coefficients)
        sum = multiplyAdd(sum, r, splat(coefficient));
    return sum * bitCast<float>(shiftLeft(splat<int32_t>(127) - halvings, 23));
}

RVK_INLINE Vec<float> tanhOf(Vec<float> z)
{
    const Vec<float> one = splat(1.0f), e = expOfNegative(abs(z + z));
    const Vec<uint32_t> sign = bitCast<uint32_t>(z) & splat(1u << 31);
    return bitCast<float>(bitCast<uint32_t>(divide(one - e, one + e)) | sign);
}

constexpr size_t kBatch = 64; // support vectors

// values[i] = f(values[i]); what is not a number stays that.
template <class F>
RVK_INLINE void mapBatch(float* values, size_t count, F f)
{
    for (size_t i = 0; i < count; i += kLanes) {
        const Vec<float> v = load(values + i);
        store(values + i, select(equal(v, v), f(v), v));
    }
}

// The kernel of some support vectors and a sample, from their dot products or squared differences.
struct Kernel
{
    uint32_t kind, degree;
    double gamma, coef0;

    RVK_INLINE double measure(const float* v, const float* x, size_t dim) const
    {
        return kind == RAVIK_SVM_RBF ? squaredDifferenceOf(v, x, dim) : dotOf(v, x, dim);
    }
    // The sum and coefs[i] times the kernel of each.
    RVK_NOINLINE double addTo(double sum, const double* measures, const float* coefs, size_t count) const
    {
        if (kind == RAVIK_SVM_LINEAR || kind == RAVIK_SVM_POLY) {
            for (size_t i = 0; i < count; ++i)
                sum += coefs[i] * (kind == RAVIK_SVM_LINEAR ? measures[i] : power(gamma * measures[i] + coef0, degree));
            return sum;
        }
        float values[kBatch] = {};
        for (size_t i = 0; i < count; ++i)
            values[i] = static_cast<float>(kind == RAVIK_SVM_RBF ? gamma * measures[i] : gamma * measures[i] + coef0);
        if (kind == RAVIK_SVM_RBF)
            mapBatch(values, count, [](Vec<float> v) RVK_INLINE_LAMBDA { return expOfNegative(v); });
        else
            mapBatch(values, count, [](Vec<float> v) RVK_INLINE_LAMBDA { return tanhOf(v); });
        for (size_t i = 0; i < count; ++i)
            sum += static_cast<double>(coefs[i]) * values[i];
        return sum;
    }
};

} // namespace

rvkStatus rvkSVMPredict2Classf32V(uint32_t kernel, uint32_t degree, float32_t gamma, float32_t coef0, float32_t bias,
                                  const float32_t* supportVectors, const float32_t* coefs, uint32_t supportCount,
                                  uint32_t dim, uint32_t supportStride, const float32_t* samples, uint32_t sampleCount,
                                  uint32_t sampleStride, float32_t* decisions, int32_t* labels)
{
    const Kernel k = {kernel, degree, gamma, coef0};
    const Plane vectors{supportVectors, supportStride}, inputs{samples, sampleStride};
    for (size_t s = 0; s < sampleCount; ++s) {
        double decision = bias;
        for (size_t first = 0; first < supportCount; first += kBatch) {
            const size_t here = least(kBatch, supportCount - first);
            double measures[kBatch];
            for (size_t i = 0; i < here; ++i)
                measures[i] = k.measure(vectors.row(first + i), inputs.row(s), dim);
            decision = k.addTo(decision, measures, coefs + first, here);
        }
        decisions[s] = static_cast<float32_t>(decision);
        if (labels)
            labels[s] = decisions[s] > 0 ? 1 : -1;
    }
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA
