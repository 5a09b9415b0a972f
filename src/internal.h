// Internal operations that do the work of public functions: the library calls these, so that the companion library can
// offer the two separately. They check nothing; offload.h has the two that exist for the DSP.
#pragma once

#include <ravik/hog.h>
#include <ravik/mser.h>

#include <cstdint>

namespace rvk {

// rvkCopy, without strides of 0.
void irvkCopy(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
              uint32_t dstStride);

// rvkSumOfAbsoluteDiff8x8u8 and so on, likewise.
uint32_t irvkSumOfAbsoluteDiff8x8u8(const uint8_t* src1, uint32_t src1Stride, const uint8_t* src2, uint32_t src2Stride);
uint32_t irvkSumOfAbsoluteDiff16x16u8(const uint8_t* src1, uint32_t src1Stride, const uint8_t* src2,
                                      uint32_t src2Stride);
void irvkSumOfAbsoluteDiffs16x16u8(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                   uint32_t srcStride, uint16_t* dst, uint32_t dstStride);

// rvkMserSplitExtu8, without strides of 0, on the calling thread alone.
uint32_t irvkMserSplitExtu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            uint32_t delta, uint32_t minArea, uint32_t maxArea, float maxVariation, float minDiversity,
                            rvkMserRegion* brightRegions, uint32_t nBrightRegionsMax, uint32_t* nBrightRegions,
                            uint32_t* brightPixels, uint32_t nBrightPixelsMax, rvkMserRegion* darkRegions,
                            uint32_t nDarkRegionsMax, uint32_t* nDarkRegions, uint32_t* darkPixels,
                            uint32_t nDarkPixelsMax);

// rvkExtractHOGu16, without strides of 0, and the making and release of its handle.
rvkStatus irvkExtractHOGu16(const rvkHOG* hog, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                            uint32_t srcStride, uint16_t* dst, uint32_t dstStride);
rvkStatus irvkHOGInit(uint32_t method, uint32_t cellSize, uint32_t blockSize, uint32_t blockStep, uint32_t binCount,
                      rvkHOG** hog);
void irvkHOGDeInit(rvkHOG* hog);

} // namespace rvk
