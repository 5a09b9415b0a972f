/* Ravik: numbers of set bits, and Hamming distances of binary descriptors (numbers of differing bits).
 *
 * Common to all functions of this header:
 *   Shapes     "32x1" and "64x1" work on one vector of 32 or 64 bytes (pair of vectors for a distance), "32x4" and
 *              "64x4" on four; the others on strings of any length. Length 0 gives 0.
 *   Result     counts are exact; those of strings are modulo 2^32, which 512 MiB of ones reach first.
 *   Alignment  bytes may stand anywhere, 32-bit words are aligned to 4. The "a4" forms demand that every vector is
 *              4-byte aligned; their results are those of the forms without.
 *   Overlap    the inputs may be the same memory or overlap; result arrays must not overlap them.
 *   Errors     on bad arguments "Assertion failed @<function>: <condition>" is logged, the result is 0, and no array is
 *              written. */
#ifndef RAVIK_BITCOUNT_H
#define RAVIK_BITCOUNT_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* Set bits of one vector. */
RVK_API uint32_t rvkBitCount32x1u8(const uint8_t* src);
RVK_API uint32_t rvkBitCount64x1u8(const uint8_t* src);

/* Set bits of each of four vectors: bitCount[0] of src1, ... bitCount[3] of src4. */
RVK_API void rvkBitCount32x4u8(const uint8_t* src1, const uint8_t* src2, const uint8_t* src3, const uint8_t* src4,
                               uint32_t bitCount[4]);
RVK_API void rvkBitCount64x4u8(const uint8_t* src1, const uint8_t* src2, const uint8_t* src3, const uint8_t* src4,
                               uint32_t bitCount[4]);

/* Set bits of `srcLength` 32-bit words, and of `srcLength` bytes. */
RVK_API uint32_t rvkBitCountu32(const uint32_t* src, uint32_t srcLength);
RVK_API uint32_t rvkBitCountu8(const uint8_t* src, uint32_t srcLength);

/* Bits in which two vectors differ. */
RVK_API uint32_t rvkHammingDistance32x1u8(const uint8_t* a, const uint8_t* b);
RVK_API uint32_t rvkHammingDistance32x1u8a4(const uint8_t* a, const uint8_t* b);
RVK_API uint32_t rvkHammingDistance64x1u8(const uint8_t* a, const uint8_t* b);
RVK_API uint32_t rvkHammingDistance64x1u8a4(const uint8_t* a, const uint8_t* b);

/* Bits in which `a` differs from each of four vectors: hammingDistance[0] from b0, ... hammingDistance[3] from b3. */
RVK_API void rvkHammingDistance32x4u8a4(const uint8_t* a, const uint8_t* b0, const uint8_t* b1, const uint8_t* b2,
                                        const uint8_t* b3, uint32_t hammingDistance[4]);
RVK_API void rvkHammingDistance64x4u8(const uint8_t* a, const uint8_t* b0, const uint8_t* b1, const uint8_t* b2,
                                      const uint8_t* b3, uint32_t hammingDistance[4]);
RVK_API void rvkHammingDistance64x4u8a4(const uint8_t* a, const uint8_t* b0, const uint8_t* b1, const uint8_t* b2,
                                        const uint8_t* b3, uint32_t hammingDistance[4]);

/* Bits in which two strings of `length` bytes differ. */
RVK_API uint32_t rvkHammingDistanceu8(const uint8_t* a, const uint8_t* b, uint32_t length);

RVK_EXTERN_C_END

#endif
