/* Ravik: histograms of oriented gradients (HOG).
 *
 * Two methods:
 *   RAVIK_HOG_DALAL  blocks of cells of unsigned directions, after Dalal and Triggs, "Histograms of Oriented Gradients
 *                    for Human Detection", 2005
 *   RAVIK_HOG_FHOG   31 values a cell, of signed and unsigned directions and of texture, after Felzenszwalb, Girshick,
 *                    McAllester and Ramanan, "Object Detection with Discriminatively Trained Part-Based Models", 2010
 *
 * Cells are squares of C x C pixels: floor(srcWidth / C) across, floor(srcHeight / C) down. Pixels beyond them do not
 * vote. The gradient of a pixel is dx = I(x + 1, y) - I(x - 1, y) and dy = I(x, y + 1) - I(x, y - 1), with the
 * coordinates clamped to the picture; m = sqrt(dx^2 + dy^2), theta = atan2(dy, dx). A vote is shared bilinearly among
 * the four cells whose centres surround the pixel, which has the cell coordinates (x + 0.5) / C - 0.5 and (y + 0.5) / C
 * - 0.5; shares for cells outside of the grid are lost.
 *
 *   DALAL  theta is taken modulo pi, B bins have their centres at (b + 0.5) pi / B. A pixel shares m linearly between
 *          the two nearest, cyclically. Blocks of S x S cells begin at every blockStep-th cell of every blockStep-th
 *          row of cells, floor((cells - S) / blockStep) + 1 of them in either direction. A block has S S B values: its
 *          cells row by row, the bins of each. They are normalised by L2-Hys: v / sqrt(|v|^2 + 1), clipped at 0.2, then
 *          v / sqrt(|v|^2 + 1e-6).
 *   FHOG   m goes to the one bin floor(18 theta / (2 pi) + 0.5) mod 18, theta in [0, 2 pi); dx = 0 gives 5 or 14. With
 *          h the 18 sums of a cell, u_b = h_b + h_(b+9) and E = sum u_b^2, n_k = 1 / sqrt(1 + E of the cell, of its
 *          neighbour in x, of that in y and of that across, in direction k), k = (-1,-1), (1,-1), (-1,1), (1,1) in
 *          (x, y); the nearest cell stands for one outside. The 31 values are 0.5 sum_k min(h_b n_k, 0.2) for b =
 *          0..17,
 *          0.5 sum_k min(u_b n_k, 0.2) for b = 0..8, and 0.2357 sum_b min(h_b n_k, 0.2) of 18 bins for k = 0..3.
 *
 *   Stored     round(32768 v), within 16 of the exact value in every operation mode, which may differ by as much.
 *   Alignment  that of the elements.
 *   Overlap    dst must not overlap src.
 *   Errors     RAVIK_EBADPARAM for null pointers, sizes of 0, strides shorter than a row, rows of 2^32 bytes or more
 *              and what the functions say; RAVIK_ENORES without memory. Whatever the error, nothing is written. */
#ifndef RAVIK_HOG_H
#define RAVIK_HOG_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* Methods. */
#define RAVIK_HOG_DALAL 0u
#define RAVIK_HOG_FHOG 1u

/* What a descriptor is made of. Calls may share it. */
typedef struct rvkHOG rvkHOG;

/* Makes *hog, of a `method` above: cells of `cellSize` pixels, 2 to 64; blocks of `blockSize` cells, `blockStep` apart,
 * both 1 to 8; `binCount` bins, 2 to 36. RAVIK_HOG_FHOG takes blocks of 2 cells, 1 apart, and 9 bins. */
RVK_API rvkStatus rvkHOGInit(uint32_t method, uint32_t cellSize, uint32_t blockSize, uint32_t blockStep,
                             uint32_t binCount, rvkHOG** hog);

/* Releases it; null is passed over. */
RVK_API void rvkHOGDeInit(rvkHOG* hog);

/* The descriptor of a picture, which holds one block (FHOG: one cell) at least. A row of dst is a row of blocks (FHOG:
 * of cells), value after value. Strides are in bytes, 0 means packed rows; that of dst is rounded down to whole
 * elements. Takes scratch memory: a float for each bin of each cell, and more for a row of cells. */
RVK_API rvkStatus rvkExtractHOGu16(const rvkHOG* hog, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                   uint32_t srcStride, uint16_t* dst, uint32_t dstStride);

RVK_EXTERN_C_END

#endif
