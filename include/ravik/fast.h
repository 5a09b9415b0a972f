/* Ravik: FAST corners.
 *
 * The segment test of Rosten and Drummond ("Machine learning for high-speed corner detection", 2006): a pixel p is a
 * corner when, of the 16 pixels of the circle of radius 3 around it, at least 9 (FAST-9) or 10 (FAST-10) in a row are
 * all brighter than p + barrier, or all darker than p - barrier.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels, strides in bytes; a stride of 0 means packed rows. No corner is nearer
 *              to an edge than `border` pixels: columns from border to width - border - 1 are searched, rows alike. A
 *              border below 3 counts as 3.
 *   Barrier    any number. From 255 on there is no corner; of a negative one the rule holds as it stands, so that the
 *              pixels of a circle may be darker than p and yet brighter than p + barrier.
 *   Lists      corner k is the column xy[2k] and the row xy[2k + 1], and scores[k] is its score. Corners come row by
 *              row, from left to right. `xy` and `scores` have room for nCornersMax corners; with more in the picture
 *              the list ends with the first nCornersMax of them, and the count is nCornersMax. nCornersMax is compared
 *              after a corner was stored, so that 0 lets one be stored (not so with suppression).
 *   Score      the largest barrier at which the pixel is still a corner, never less than `barrier` and at most 254;
 *              negative ones in two's complement.
 *   Masks      maskWidth x maskHeight bits, 1 excludes the pixel: rows of (maskWidth + 7) / 8 bytes, the leftmost pixel
 *              in the most significant bit. A mask measures as much as the picture, or 2, 4 or 8 times as much, or a
 *              2nd, 4th or 8th of it, in both directions alike: of several bits of a pixel the top left one counts, a
 *              bit for several pixels counts for all of them. With a mask of any other size there is no corner.
 *   Maxima     where nmsEnabled is not 0, of the corners of the list (those that nCornersMax cut off are none) only
 *              those remain whose score is above that of all 8 neighbours; of two neighbours with equal scores none
 *              does. `tempBuf` is memory for 3 * nCornersMax + height words, whose contents mean nothing afterwards.
 *              With nCornersMax 0 there is no corner. A null tempBuf ends the process with status 1, after a line in
 *              the log. Without suppression tempBuf is not used and may be null.
 *   Alignment  of pictures and masks none, lists are aligned to 4. The work may run on the DSP only when src and the
 *              stride are multiples of 8.
 *   Overlap    no list may overlap another memory of the call.
 *   Errors     on null pointers, rows longer than their stride, strides from 2^31 on and borders that leave nothing,
 *              "Assertion failed @<function>: <condition>" is logged and nothing is written. */
#ifndef RAVIK_FAST_H
#define RAVIK_FAST_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* Arcs of 9 pixels: where the corners are. */
RVK_API void rvkCornerFast9u8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, int32_t barrier,
                              uint32_t border, uint32_t* xy, uint32_t nCornersMax, uint32_t* numcorners);
RVK_API void rvkCornerFast9InMasku8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                                    int32_t barrier, uint32_t border, uint32_t* xy, uint32_t nCornersMax,
                                    uint32_t* numcorners, const uint8_t* bitMask, uint32_t maskWidth,
                                    uint32_t maskHeight);

/* And their scores. */
RVK_API void rvkCornerFast9Scoreu8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                                   int32_t barrier, uint32_t border, uint32_t* xy, uint32_t* scores,
                                   uint32_t nCornersMax, uint32_t* numcorners);
RVK_API void rvkCornerFast9InMaskScoreu8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                                         int32_t barrier, uint32_t border, uint32_t* xy, uint32_t* scores,
                                         uint32_t nCornersMax, uint32_t* numcorners, const uint8_t* bitMask,
                                         uint32_t maskWidth, uint32_t maskHeight);

/* And only those that are better than their neighbours, if nmsEnabled. */
RVK_API void rvkCornerFast9Scoreu8_v2(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                                      int32_t barrier, uint32_t border, uint32_t* xy, uint32_t* scores,
                                      uint32_t nCornersMax, uint32_t* numcorners, uint32_t nmsEnabled,
                                      uint32_t* tempBuf);
RVK_API void rvkCornerFast9InMaskScoreu8_v2(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                                            int32_t barrier, uint32_t border, uint32_t* xy, uint32_t* scores,
                                            uint32_t nCornersMax, uint32_t* numcorners, const uint8_t* bitMask,
                                            uint32_t maskWidth, uint32_t maskHeight, uint32_t nmsEnabled,
                                            uint32_t* tempBuf);

/* Arcs of 10 pixels. */
RVK_API void rvkCornerFast10u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               int32_t barrier, uint32_t border, uint32_t* xy, uint32_t nCornersMax,
                               uint32_t* nCorners);
RVK_API void rvkCornerFast10InMasku8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     int32_t barrier, uint32_t border, uint32_t* xy, uint32_t nCornersMax,
                                     uint32_t* nCorners, const uint8_t* mask, uint32_t maskWidth, uint32_t maskHeight);
RVK_API void rvkCornerFast10Scoreu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    int32_t barrier, uint32_t border, uint32_t* xy, uint32_t* scores,
                                    uint32_t nCornersMax, uint32_t* nCorners, uint32_t nmsEnabled, uint32_t* tempBuf);
RVK_API void rvkCornerFast10InMaskScoreu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          int32_t barrier, uint32_t border, uint32_t* xy, uint32_t* scores,
                                          uint32_t nCornersMax, uint32_t* nCorners, const uint8_t* mask,
                                          uint32_t maskWidth, uint32_t maskHeight, uint32_t nmsEnabled,
                                          uint32_t* tempBuf);

RVK_EXTERN_C_END

#endif
