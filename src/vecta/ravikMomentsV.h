// What the vector implementation of mean shift takes from that of the moments.
#pragma once

#include "cpu/ravikTrackingC.h"

namespace rvk::vecta::RVK_ISA {

// m00, m10 and m01 as the functions on moments give them.
FirstMoments firstMoments(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride);
FirstMoments firstMoments(const int32_t* src, uint32_t width, uint32_t height, uint32_t stride);
FirstMoments firstMoments(const float32_t* src, uint32_t width, uint32_t height, uint32_t stride);

} // namespace rvk::vecta::RVK_ISA
