/* Ravik: image pyramids, and the derivatives of their levels.
 *
 * Common to all functions of this header:
 *   Levels     an array of them is a pyramid. Level 0 is the base; each further one has half of the width and height of
 *              the one before, an odd last column or row left out. Rows of an rvkPyramidLevel are packed; those of an
 *              rvkPyramidLevel_v2 are `stride` bytes apart, 0 meaning packed rows.
 *   Sizes      widths and heights are in pixels, strides and alignments in bytes. A pyramid has at least one level, and
 *              none of them is empty: so it has 32 at most.
 *   Alignment  levels of floats are aligned to 4 bytes, their strides rounded down to that; bytes need none.
 *   Overlap    levels must not overlap; where one begins at the address of another of the same call, the call is
 *              refused.
 *   Errors     null pointers, empty levels, levels without memory, rows longer than their stride and sizes that 32 bits
 *              do not hold are refused: by a status with RAVIK_EBADPARAM, and nothing is written; by a plain integer
 *              with -1, and no pixel is written. Otherwise the result is 0. */
#ifndef RAVIK_PYRAMID_H
#define RAVIK_PYRAMID_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* A level with packed rows. */
typedef struct rvkPyramidLevel
{
    void* ptr; /* its first pixel */
    uint32_t width;
    uint32_t height;
} rvkPyramidLevel;

/* A level with rows `stride` bytes apart. */
typedef struct rvkPyramidLevel_v2
{
    void* ptr; /* its first pixel */
    uint32_t width;
    uint32_t height;
    uint32_t stride;
} rvkPyramidLevel_v2;

/* ---- memory ------------------------------------------------------------------------------------------------------ */

/* Fills in `numLevels` levels above a base of baseWidth x baseHeight pixels and allocates them from `firstLevel` on, 1
 * or 0: with 1 the base is the caller's, and its pointer becomes null. The first form is for bytes, firstLevel is 1;
 * elementSize is the size of a pixel in bytes. Each level begins at a multiple of 16 bytes; of the third form each row,
 * at a multiple of `alignment`, a power of two of 16 to 128. The memory has no particular content. RAVIK_ENORES when
 * there is not enough: then nothing stays allocated, and the pointers of all levels are null. */
RVK_API rvkStatus rvkPyramidAllocate(rvkPyramidLevel* pyramid, uint32_t baseWidth, uint32_t baseHeight,
                                     uint32_t numLevels);
RVK_API rvkStatus rvkPyramidAllocate_v2(rvkPyramidLevel* pyramid, uint32_t baseWidth, uint32_t baseHeight,
                                        uint32_t elementSize, uint32_t numLevels, uint32_t firstLevel);
RVK_API rvkStatus rvkPyramidAllocate_v3(rvkPyramidLevel_v2* pyramid, uint32_t baseWidth, uint32_t baseHeight,
                                        uint32_t elementSize, uint32_t numLevels, uint32_t firstLevel,
                                        uint32_t alignment);

/* Frees the levels from `firstLevel` on that these functions have allocated and makes their pointers null. Null
 * pointers, of levels or of the pyramid, are passed over: so a pyramid may be deleted twice, or before all of it was
 * made. */
RVK_API void rvkPyramidDelete(rvkPyramidLevel* pyramid, uint32_t numLevels, uint32_t firstLevel);
RVK_API void rvkPyramidDelete_v2(rvkPyramidLevel_v2* pyramid, uint32_t numLevels, uint32_t firstLevel);

/* ---- levels ------------------------------------------------------------------------------------------------------ */

/* Makes the base level 0 and computes the others, each from the one before by rvkScaleDownBy2Gaussian5x5u8, of floats
 * by rvkScaleDownBy2Gaussian5x5f32 (Burt and Adelson, "The Laplacian Pyramid as a Compact Image Code", 1983). The
 * caller gives the levels from 1 on their pointers, and strides; widths, heights and level 0 are filled in. The width
 * and height of the base must be multiples of 2^(numLevels - 1); what becomes of a rest in rvkPyramidCreateu8 is that
 * the process ends with status 1, after a line in the log: all other forms refuse it. The first forms fill in the width
 * and height of a level before they return -1 for its missing memory. */
RVK_API int32_t rvkPyramidCreateu8(const uint8_t* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t numLevels,
                                   rvkPyramidLevel* pyramid);
RVK_API rvkStatus rvkPyramidCreateu8_v2(const uint8_t* base, uint32_t baseWidth, uint32_t baseHeight,
                                        uint32_t baseStride, uint32_t numLevels, rvkPyramidLevel_v2* pyramid);
RVK_API int32_t rvkPyramidCreatef32(const float32_t* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t numLevels,
                                    rvkPyramidLevel* pyramid);
RVK_API rvkStatus rvkPyramidCreatef32_v2(const float32_t* base, uint32_t baseWidth, uint32_t baseHeight,
                                         uint32_t baseStride, uint32_t numLevels, rvkPyramidLevel_v2* pyramid);

/* The same of any size of which no level is empty, by windows of kernelSize x kernelSize pixels: 5, or 3 for
 * rvkScaleDownBy2Gaussian3x3u8. */
RVK_API rvkStatus rvkPyramidCreateu8_v3(const uint8_t* base, uint32_t baseWidth, uint32_t baseHeight,
                                        uint32_t baseStride, uint32_t numLevels, rvkPyramidLevel_v2* pyramid,
                                        uint32_t kernelSize);

/* ---- derivatives ------------------------------------------------------------------------------------------------- */

/* The derivatives of each level, as rvkImageGradientSobelPlanars8 computes them of bytes, to signed bytes, and
 * rvkImageGradientSobelPlanarf32f32 of floats; pixels at the edges of a level are not written. The caller gives the
 * levels of dxPyramid and dyPyramid their pointers; widths and heights are filled in, also before -1 for missing
 * memory. */
RVK_API int32_t rvkPyramidSobelGradientCreatei8(const rvkPyramidLevel* pyramid, rvkPyramidLevel* dxPyramid,
                                                rvkPyramidLevel* dyPyramid, uint32_t numLevels);
RVK_API int32_t rvkPyramidSobelGradientCreatef32(const rvkPyramidLevel* pyramid, rvkPyramidLevel* dxPyramid,
                                                 rvkPyramidLevel* dyPyramid, uint32_t numLevels);

RVK_EXTERN_C_END

#endif
