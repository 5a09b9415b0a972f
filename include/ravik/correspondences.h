/* Ravik: pairs of points, of which one was found where the other is. */
#ifndef RAVIK_CORRESPONDENCES_H
#define RAVIK_CORRESPONDENCES_H

#include "types.h"

/* Points before and after a motion, or in the world and in a picture. They are interleaved, aligned as floats, a stride
 * in bytes from one to the next, which is a multiple of 4; a stride of 0 means packed points. Each of the two lists has
 * less than 2^31 bytes. */
typedef struct rvkaCorrespondences
{
    const float32_t* src; /* x y, or x y z for poses */
    uint32_t srcStride;
    const float32_t* dst; /* x y */
    uint32_t dstStride;
    uint32_t count;      /* of pairs */
    const uint8_t* mask; /* a byte for each pair, of which those with 0 are left out; null: none is */
} rvkaCorrespondences;

#endif
