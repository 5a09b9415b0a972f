// The edges of Canny's detector for other detectors.
#pragma once

#include <ravik/types.h>

#include <cstddef>
#include <cstdint>

namespace rvk::vecta::RVK_ISA {

// Those of rvkFilterCanny3x3u8_v3 as bits, in rows of wordsOfRow(width) words of bitRows.h.
rvkStatus findCannyEdgesV(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                          int32_t lowThreshold, int32_t highThreshold, size_t* edges);

} // namespace rvk::vecta::RVK_ISA
