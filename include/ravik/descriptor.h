/* Ravik: descriptors of image patches: how they are made, their distances, and what searches do with them.
 *
 * Common to all functions of this header:
 *   Shapes     a descriptor of "36" has 36 elements. Strides are in bytes, from one descriptor or row to the next; 0
 *              means packed ones.
 *   Floats     single precision, operation by operation as written below, with the same bits on all targets; only that
 *              rvkSumOfSquaredDiffsf32 has the tolerance of rvkDotProductf32, and that vector code on 32-bit Arm takes
 *              subnormal numbers as zero.
 *   Alignment  bytes may stand anywhere, floats and pointers are aligned to their size.
 *   Overlap    outputs must not overlap inputs, but for rvkSort8Scoresf32.
 *   Errors     functions without a result log "Assertion failed @<function>: <condition>" on bad arguments, the others
 *              return RAVIK_EBADPARAM; in either case nothing is written. */
#ifndef RAVIK_DESCRIPTOR_H
#define RAVIK_DESCRIPTOR_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* ---- squared distances of descriptors that are scaled to length 1 ----------------------------------------------
 *
 * |a - b|^2 = 2 - 2 a.b of vectors of length 1, from the dot product d of the descriptors as they are and from their
 * inverse lengths, one over the root of their sum of squares, which the caller supplies:
 *
 *     |2 - ((invLenA + invLenA) * invLenB[k]) * (float)d|
 *
 * in this order; a rounding error that would make it negative leaves it positive. Dot products of bytes are exact, and
 * modulo 2^32 as those of dotproduct.h. */

/* A and four others: distances[0] to B, ... distances[3] to E. */
RVK_API void rvkSumOfSquaredDiffs36x4s8(const int8_t* A, float32_t invLenA, const int8_t* B, const int8_t* C,
                                        const int8_t* D, const int8_t* E, const float32_t invLenB[4],
                                        float32_t distances[4]);

/* A and N others. In place of the dot product with a null pointer in the list stands -1. N of 0 writes nothing. Four at
 * a time are compared by rvkSumOfSquaredDiffs36x4s8, on the target that is chosen for it. */
RVK_API void rvkSumOfSquaredDiffs36xNs8(const int8_t* A, float32_t invLenA, const int8_t* const* B,
                                        const float32_t* invLenB, uint32_t N, float32_t* distances);

/* Vectors of any length; one of 0 has the distance 2 to all. A null pointer in the list is refused. count of 0 writes
 * nothing. The dot products of floats are those of rvkDotProductf32, on the target that is chosen for it. */
RVK_API void rvkSumOfSquaredDiffsu8(const uint8_t* a, float32_t invLenA, uint32_t length, const uint8_t* const* bList,
                                    const float32_t* invLenB, uint32_t count, float32_t* distances);
RVK_API void rvkSumOfSquaredDiffss8(const int8_t* a, float32_t invLenA, uint32_t length, const int8_t* const* bList,
                                    const float32_t* invLenB, uint32_t count, float32_t* distances);
RVK_API void rvkSumOfSquaredDiffsf32(const float32_t* a, float32_t invLenA, uint32_t length,
                                     const float32_t* const* bList, const float32_t* invLenB, uint32_t count,
                                     float32_t* distances);

/* Eight scores in ascending order. Equal ones, the two zeros among them, keep their order within the first and within
 * the last four; those of the last four come first. When some are not numbers, outScores has all scores, in no
 * particular order. outScores may be inScores. */
RVK_API void rvkSort8Scoresf32(const float32_t inScores[8], float32_t outScores[8]);

/* `count` descriptors scaled: (float)src * invLengths[k] for each of the 36 elements of descriptor k. `count` must not
 * be 0. */
RVK_API rvkStatus rvkVecNormalize36s8f32(const int8_t* src, uint32_t srcStride, const float32_t* invLengths,
                                         uint32_t count, float32_t* dst, uint32_t dstStride);

/* The descriptor of a patch of 17x17 pixels, which does not depend on the patch's brightness and contrast:
 *   - the patch scaled to 6x6 cells by area, 17/6 pixels wide and high, so that pixels across an edge count in parts;
 *   - less the mean of the cells;
 *   - scaled so that the largest magnitude is 127, rounded to the nearest integer, halves away from zero.
 * Its elements are the cells row by row. All is exact until the rounding. The descriptor of a flat patch is 0.
 *
 * invLength, which may be null, receives one over the descriptor's length, as the distances above want it, or 0 for a
 * flat patch. */
RVK_API rvkStatus rvkDescriptor17x17u8To36s8(const uint8_t* patch, uint32_t patchStride, int8_t descriptor[36],
                                             float32_t* invLength);

/* The mean and the variance of each of the 36 components of `count` vectors: the components' sum, in the order of the
 * vectors, divided by count; then the sum of the squares of what each differs from the mean, in that order, divided by
 * count - 1. The variances of a single vector are 0. `count` must not be 0. */
RVK_API rvkStatus rvkDescriptorSampledMeanAndVar36f32(const float32_t* src, uint32_t count, uint32_t srcStride,
                                                      float32_t means[36], float32_t variances[36]);

RVK_EXTERN_C_END

#endif
