// C reference of support vector machines. exp and tanh are libm's, which may differ in their last bits between systems;
// decisions are rounded from double precision.
#include "cpu/ravikSvmC.h"

#include "cpu/image.h"
#include "functions.h"

#include <cmath>

namespace rvk {

double dotProduct(const float32_t* a, const float32_t* b, size_t count)
{
    double sum = 0;
    for (size_t j = 0; j < count; ++j)
        sum += static_cast<double>(a[j]) * b[j];
    return sum;
}

double squaredDifference(const float32_t* a, const float32_t* b, size_t count)
{
    double sum = 0;
    for (size_t j = 0; j < count; ++j) {
        const double difference = static_cast<double>(a[j]) - b[j];
        sum += difference * difference;
    }
    return sum;
}

double power(double base, uint32_t exponent)
{
    double product = 1;
    for (; exponent; --exponent)
        product *= base;
    return product;
}

rvkStatus rvkSVMPredict2Classf32C(uint32_t kernel, uint32_t degree, float32_t gamma, float32_t coef0, float32_t bias,
                                  const float32_t* supportVectors, const float32_t* coefs, uint32_t supportCount,
                                  uint32_t dim, uint32_t supportStride, const float32_t* samples, uint32_t sampleCount,
                                  uint32_t sampleStride, float32_t* decisions, int32_t* labels)
{
    const double factor = gamma, summand = coef0;
    const auto valueOf = [&](const float32_t* v, const float32_t* x) {
        switch (kernel) {
        case RAVIK_SVM_LINEAR:
            return dotProduct(v, x, dim);
        case RAVIK_SVM_POLY:
            return power(factor * dotProduct(v, x, dim) + summand, degree);
        case RAVIK_SVM_RBF:
            return std::exp(-factor * squaredDifference(v, x, dim));
        default:
            return std::tanh(factor * dotProduct(v, x, dim) + summand);
        }
    };
    const Plane vectors{supportVectors, supportStride}, inputs{samples, sampleStride};
    for (size_t s = 0; s < sampleCount; ++s) {
        double decision = bias;
        for (size_t i = 0; i < supportCount; ++i)
            decision += static_cast<double>(coefs[i]) * valueOf(vectors.row(i), inputs.row(s));
        decisions[s] = static_cast<float32_t>(decision);
        if (labels)
            labels[s] = decisions[s] > 0 ? 1 : -1;
    }
    return RAVIK_SUCCESS;
}

} // namespace rvk
