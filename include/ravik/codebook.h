/* Ravik: background models of code books. Kim, Chalidabhongse, Harwood and Davis, "Real-Time Foreground-Background
 * Segmentation Using Codebook Model", 2005, with boxes as in Bradski and Kaehler, "Learning OpenCV", 2008.
 *
 * Each pixel has a list of codewords. A codeword is a box of colours, min to max, what it may grow by, learnLow to
 * learnHigh, the time of its last update and how long it ever went without one (stale). Time is the number of updates.
 *
 *   Pictures   three interleaved bytes a pixel, of any colour space. Their width and height are those of the model.
 *   mask       a byte for each pixel; 0 leaves the pixel out. Null takes all.
 *   Strides    in bytes; 0 means packed rows.
 *   Alignment  pictures and masks may stand anywhere.
 *   Overlap    outputs must not overlap inputs or each other.
 *   Threads    a model may be compared with several pictures at once, while no other call changes it.
 *   Errors     RAVIK_EBADPARAM for null pointers that are not said to be allowed, sizes of 0, strides shorter than a
 *              row, rows of 2^32 bytes or more and what the functions say; nothing is written then. RAVIK_ENORES
 *              without memory. */
#ifndef RAVIK_CODEBOOK_H
#define RAVIK_CODEBOOK_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* The code books of all pixels. */
typedef struct rvkBGCodeBookModel rvkBGCodeBookModel;

/* Makes *model for pictures of this size: a bound for learning of 10, margins of 3 below and 10 above in all channels,
 * 16 codewords at most. A model takes a byte for each pixel and 20 for each of its codewords, in groups of 64 pixels of
 * a row, which take as much as the one of them that has the most. */
RVK_API rvkStatus rvkCreateBGCodeBookModel(uint32_t srcWidth, uint32_t srcHeight, rvkBGCodeBookModel** model);

/* Sets learnBounds, the margins modMin and modMax of comparison, three numbers each, one for each channel, and
 * maxCodewords, how many a pixel may have, 1 to 255. Codewords stay as they are. */
RVK_API rvkStatus rvkConfigBGCodeBookModel(rvkBGCodeBookModel* model, const uint8_t* learnBounds, const uint8_t* modMin,
                                           const uint8_t* modMax, uint32_t maxCodewords);

/* Releases *model and sets it to null; null is passed over, in either place. */
RVK_API void rvkReleaseBGCodeBookModel(rvkBGCodeBookModel** model);

/* Learns a picture: t, the time, grows by 1. Of each pixel p the first codeword with learnLow <= p <= learnHigh in all
 * channels matches: its lastUpdate is t, min and max take p in, then in each channel learnHigh grows by 1 if it is
 * below min(p + bound, 255), and learnLow shrinks by 1 if it is above max(p - bound, 0). Of all its codewords stale
 * becomes max(stale, t - lastUpdate). Where none matches, a new one comes to the end of the list: learnLow and
 * learnHigh are p less and plus the bound, clamped, min and max are p, lastUpdate is t, stale 0. If the list is full,
 * it replaces the one of greatest stale, the first of those. After RAVIK_ENORES some pixels have not learnt; the model
 * is valid. */
RVK_API rvkStatus rvkBGCodeBookUpdateu8(rvkBGCodeBookModel* model, const uint8_t* src, uint32_t srcWidth,
                                        uint32_t srcHeight, uint32_t srcStride, const uint8_t* mask,
                                        uint32_t maskStride);

/* Compares a picture with the model: fgMask is 0 where some codeword has min - modMin <= p <= max + modMax in all
 * channels, else
 * 255. *fgCount, which may be null, becomes the number of 255. */
RVK_API rvkStatus rvkBGCodeBookDiffu8(const rvkBGCodeBookModel* model, const uint8_t* src, uint32_t srcWidth,
                                      uint32_t srcHeight, uint32_t srcStride, uint8_t* fgMask, uint32_t fgMaskStride,
                                      uint32_t* fgCount);

/* Removes the codewords with stale > staleThreshold. The others keep their order; their stale becomes 0 and their
 * lastUpdate t. */
RVK_API rvkStatus rvkBGCodeBookClearStaleu8(rvkBGCodeBookModel* model, uint32_t staleThreshold, const uint8_t* mask,
                                            uint32_t srcWidth, uint32_t srcHeight, uint32_t maskStride);

RVK_EXTERN_C_END

#endif
