// What the reference and the vector implementation of support vector machines share.
#pragma once

#include <ravik/search.h>

#include <cstddef>

namespace rvk {

// In double precision, in the order of the elements.
double dotProduct(const float32_t* a, const float32_t* b, size_t count);
double squaredDifference(const float32_t* a, const float32_t* b, size_t count);

double power(double base, uint32_t exponent);

} // namespace rvk
