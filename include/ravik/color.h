/* Ravik: conversions between colour spaces, and between layouts of RGB.
 *
 * Packed formats, as their bytes or bits lie in memory:
 *   RGB888, BGR888       3 bytes: red first, or blue first
 *   RGBA8888, BGRA8888   4 bytes: red first, or blue first; the fourth is alpha
 *   RGB565, BGR565       a 16-bit word in native byte order: red in its high 5 bits, green in the middle 6, blue in its
 *                        low 5; or blue high and red low
 *
 * But conversions to YCbCr take the bytes of RGB888 and RGBA8888 in the other order, so that the two directions do not
 * mirror each other:
 *
 *                          byte 0   byte 1   byte 2   byte 3
 *   RGB to YCbCr, YCrCb    blue     green    red      is not read
 *   YCbCr, YCrCb to RGB    red      green    blue     255
 *   grey, HSV, Lab         red      green    blue     is not read
 *   RGB to RGB             red      green    blue     alpha
 *
 * A picture that comes from a camera as YCbCr and shall return to it is converted to RGB888 and with
 * rvkColorRGB888ToBGR888u8 before it is converted back. RGB565 has red in the high bits everywhere.
 *
 * YCbCr: full range, BT.601 as in JPEG files. A plane Y of luma, and chroma: planes Cb and Cr (Planar), or one plane of
 * pairs Cb Cr (PseudoPlanar), of pairs Cr Cb in functions named YCrCb and YUV420. A sample of chroma belongs to
 *   444, H1V1    each pixel
 *   422, H2V1    2 pixels side by side
 *   420, H2V2    2x2 pixels
 *   H1V2         2 pixels one above the other
 * of which there may be fewer at the right and lower edges: chroma planes are (srcWidth + 1) / 2 samples wide and
 * (srcHeight + 1) / 2 high where they are halved. 4:2:0 PseudoPlanar is known as NV12, YCrCb420 as NV21.
 *
 * Common to all functions of this header:
 *   Shapes     `srcWidth` and `srcHeight` are in pixels of the picture and at least 1, odd ones too. Strides are in
 *              bytes; 0 means packed rows.
 *   Alignment  none is needed, of words of RGB565 neither. The work may run on the DSP only when pointers and strides
 *              are multiples of 8.
 *   In place   `dst` may be `src` where both have one plane and pixels of one size and the picture is not rotated; the
 *              strides must be equal then. Otherwise images must not overlap,
 *              destinations among each other neither; pictures side by side in rows of one stride do not.
 *   Errors     null pointers, empty images, strides below a row of their plane and images that overlap are refused:
 *              "Assertion failed @<function>: <condition>" is logged and nothing is written. Functions with a status
 *              return RAVIK_EBADPARAM then, otherwise RAVIK_SUCCESS.
 *   Exactness  all arithmetic is of integers; shifts to the right round down. */
#ifndef RAVIK_COLOR_H
#define RAVIK_COLOR_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* RGB to YCbCr. With blue, green and red of a pixel:
 *   Y  = (29 * blue + 150 * green + 77 * red + 128) >> 8
 *   Cb = min(128 + ((128 * blue - 85 * green - 43 * red + 128) >> 8), 255)
 *   Cr = min(128 + ((128 * red - 107 * green - 21 * blue + 128) >> 8), 255)
 * Chroma is selected, not averaged: it is that of the left one of 2 pixels, of the upper left one of 2x2. The 5 and 6
 * bits of RGB565 are widened to 8 by repeating their high bits. */
RVK_API void rvkColorRGB565ToYCbCr444Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride, uint8_t* dstCb,
                                              uint32_t dstCbStride, uint8_t* dstCr, uint32_t dstCrStride);
RVK_API void rvkColorRGB565ToYCbCr422Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride, uint8_t* dstCb,
                                              uint32_t dstCbStride, uint8_t* dstCr, uint32_t dstCrStride);
RVK_API void rvkColorRGB565ToYCbCr420Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride, uint8_t* dstCb,
                                              uint32_t dstCbStride, uint8_t* dstCr, uint32_t dstCrStride);
RVK_API void rvkColorRGB565ToYCbCr444PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride,
                                                    uint8_t* dstC, uint32_t dstCStride);
RVK_API void rvkColorRGB565ToYCbCr422PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride,
                                                    uint8_t* dstC, uint32_t dstCStride);
RVK_API void rvkColorRGB565ToYCbCr420PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride,
                                                    uint8_t* dstC, uint32_t dstCStride);
RVK_API void rvkColorRGB888ToYCbCr444Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride, uint8_t* dstCb,
                                              uint32_t dstCbStride, uint8_t* dstCr, uint32_t dstCrStride);
RVK_API void rvkColorRGB888ToYCbCr422Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride, uint8_t* dstCb,
                                              uint32_t dstCbStride, uint8_t* dstCr, uint32_t dstCrStride);
RVK_API void rvkColorRGB888ToYCbCr420Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride, uint8_t* dstCb,
                                              uint32_t dstCbStride, uint8_t* dstCr, uint32_t dstCrStride);
RVK_API void rvkColorRGB888ToYCbCr444PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride,
                                                    uint8_t* dstC, uint32_t dstCStride);
RVK_API void rvkColorRGB888ToYCbCr422PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride,
                                                    uint8_t* dstC, uint32_t dstCStride);
RVK_API void rvkColorRGB888ToYCbCr420PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride,
                                                    uint8_t* dstC, uint32_t dstCStride);
RVK_API void rvkColorRGBA8888ToYCbCr444Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride, uint8_t* dstCb,
                                                uint32_t dstCbStride, uint8_t* dstCr, uint32_t dstCrStride);
RVK_API void rvkColorRGBA8888ToYCbCr422Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride, uint8_t* dstCb,
                                                uint32_t dstCbStride, uint8_t* dstCr, uint32_t dstCrStride);
RVK_API void rvkColorRGBA8888ToYCbCr420Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride, uint8_t* dstCb,
                                                uint32_t dstCbStride, uint8_t* dstCr, uint32_t dstCrStride);
RVK_API void rvkColorRGBA8888ToYCbCr444PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride,
                                                      uint8_t* dstC, uint32_t dstCStride);
RVK_API void rvkColorRGBA8888ToYCbCr422PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride,
                                                      uint8_t* dstC, uint32_t dstCStride);
RVK_API void rvkColorRGBA8888ToYCbCr420PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcStride, uint8_t* dstY, uint32_t dstYStride,
                                                      uint8_t* dstC, uint32_t dstCStride);

/* YCbCr to RGB. With d = Cb - 128 and e = Cr - 128:
 *   red   = clamp((256 * Y + 359 * e + 128) >> 8)
 *   green = clamp((256 * Y - 88 * d - 183 * e + 128) >> 8)
 *   blue  = clamp((256 * Y + 454 * d + 128) >> 8)
 * to 0..255. A sample of chroma is taken for each of its pixels as it is. Alpha becomes 255; RGB565 takes the high bits
 * of each colour. `srcWidth` is at least 2 where chroma is halved horizontally. The functions named 8888 write
 * RGBA8888.
 *
 * RGB to 4:4:4 and back gives each of the 2^24 colours within 2 in red and blue, 1 in green. OpenCV's and libyuv's
 * conversions of full range give the same pixels within 1 in each channel. */
RVK_API void rvkColorYCbCr444PlanarToRGB565u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcYStride, const uint8_t* srcCb, uint32_t srcCbStride,
                                              const uint8_t* srcCr, uint32_t srcCrStride, uint8_t* dst,
                                              uint32_t dstStride);
RVK_API void rvkColorYCbCr444PlanarToRGB888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcYStride, const uint8_t* srcCb, uint32_t srcCbStride,
                                              const uint8_t* srcCr, uint32_t srcCrStride, uint8_t* dst,
                                              uint32_t dstStride);
RVK_API void rvkColorYCbCr444PlanarToRGBA8888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcYStride, const uint8_t* srcCb, uint32_t srcCbStride,
                                                const uint8_t* srcCr, uint32_t srcCrStride, uint8_t* dst,
                                                uint32_t dstStride);
RVK_API void rvkColorYCbCr422PlanarToRGB565u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcYStride, const uint8_t* srcCb, uint32_t srcCbStride,
                                              const uint8_t* srcCr, uint32_t srcCrStride, uint8_t* dst,
                                              uint32_t dstStride);
RVK_API void rvkColorYCbCr422PlanarToRGB888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcYStride, const uint8_t* srcCb, uint32_t srcCbStride,
                                              const uint8_t* srcCr, uint32_t srcCrStride, uint8_t* dst,
                                              uint32_t dstStride);
RVK_API void rvkColorYCbCr422PlanarToRGBA8888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcYStride, const uint8_t* srcCb, uint32_t srcCbStride,
                                                const uint8_t* srcCr, uint32_t srcCrStride, uint8_t* dst,
                                                uint32_t dstStride);
RVK_API void rvkColorYCbCr420PlanarToRGB565u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcYStride, const uint8_t* srcCb, uint32_t srcCbStride,
                                              const uint8_t* srcCr, uint32_t srcCrStride, uint8_t* dst,
                                              uint32_t dstStride);
RVK_API void rvkColorYCbCr420PlanarToRGB888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcYStride, const uint8_t* srcCb, uint32_t srcCbStride,
                                              const uint8_t* srcCr, uint32_t srcCrStride, uint8_t* dst,
                                              uint32_t dstStride);
RVK_API void rvkColorYCbCr420PlanarToRGBA8888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcYStride, const uint8_t* srcCb, uint32_t srcCbStride,
                                                const uint8_t* srcCr, uint32_t srcCrStride, uint8_t* dst,
                                                uint32_t dstStride);
RVK_API void rvkColorYCbCr444PseudoPlanarToRGB565u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcYStride, const uint8_t* srcC, uint32_t srcCStride,
                                                    uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorYCbCr444PseudoPlanarToRGB888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcYStride, const uint8_t* srcC, uint32_t srcCStride,
                                                    uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorYCbCr444PseudoPlanarToRGBA8888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcYStride, const uint8_t* srcC, uint32_t srcCStride,
                                                      uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorYCbCr422PseudoPlanarToRGB565u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcYStride, const uint8_t* srcC, uint32_t srcCStride,
                                                    uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorYCbCr422PseudoPlanarToRGB888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcYStride, const uint8_t* srcC, uint32_t srcCStride,
                                                    uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorYCbCr422PseudoPlanarToRGBA8888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcYStride, const uint8_t* srcC, uint32_t srcCStride,
                                                      uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorYCbCr420PseudoPlanarToRGB565u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcYStride, const uint8_t* srcC, uint32_t srcCStride,
                                                    uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorYCbCr420PseudoPlanarToRGB888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcYStride, const uint8_t* srcC, uint32_t srcCStride,
                                                    uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorYCbCr420PseudoPlanarToRGBA8888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcYStride, const uint8_t* srcC, uint32_t srcCStride,
                                                      uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorYCrCbH1V1toRGB888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                         uint32_t srcYStride, const uint8_t* srcC, uint32_t srcCStride, uint8_t* dst,
                                         uint32_t dstStride);
RVK_API void rvkColorYCrCbH2V1toRGB888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                         uint32_t srcYStride, const uint8_t* srcC, uint32_t srcCStride, uint8_t* dst,
                                         uint32_t dstStride);
RVK_API void rvkColorYCrCbH2V2toRGB888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                         uint32_t srcYStride, const uint8_t* srcC, uint32_t srcCStride, uint8_t* dst,
                                         uint32_t dstStride);
RVK_API void rvkColorYCrCbH1V2toRGB888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                         uint32_t srcYStride, const uint8_t* srcC, uint32_t srcCStride, uint8_t* dst,
                                         uint32_t dstStride);
RVK_API void rvkColorYCrCb420PseudoPlanarToRGB8888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                     uint32_t srcYStride, const uint8_t* srcC, uint32_t srcCStride,
                                                     uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorYUV420toRGB565u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcYStride,
                                      const uint8_t* srcC, uint32_t srcCStride, uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorYUV420toRGB565u8Rotate180(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcYStride, const uint8_t* srcC, uint32_t srcCStride,
                                               uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorYUV420toRGB8888u8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcYStride,
                                       const uint8_t* srcC, uint32_t srcCStride, uint8_t* dst, uint32_t dstStride);

/* Other layouts of RGB. 5 and 6 bits are widened to 8 by repeating their high bits ((v << 3) | (v >> 2) and
 * (v << 2) | (v >> 4)); 8 bits are cut to their high ones. Alpha is kept where both formats have one, otherwise 255.
 * The rotation is by 180 degrees. */
RVK_API void rvkColorRGB565ToRGB888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorRGB565ToRGBA8888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorRGB565ToBGR565u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorRGB565ToBGR888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorRGB565ToBGRA8888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorRGB888ToRGB565u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorRGB888ToRGBA8888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorRGB888ToBGR565u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorRGB888ToBGR888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorRGB888ToBGRA8888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorRGBA8888ToRGB565u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorRGBA8888ToRGB888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorRGBA8888ToBGR565u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorRGBA8888ToBGR888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorRGBA8888ToBGRA8888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint8_t* dst, uint32_t dstStride);
RVK_API void rvkColorRGB888ToRGB565Rotate180u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, uint8_t* dst, uint32_t dstStride);

/* Grey of bytes red, green, blue: (19595 * red + 38469 * green + 7471 * blue + 32768) >> 16. */
RVK_API void rvkColorRGB888ToGrayu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstStride);

/* Y, Cr, Cb of each pixel, in this order, by the formulas of RGB to YCbCr: byte 0 of the source is blue. The first form
 * is the second one with packed rows. */
RVK_API void rvkColorRGB888toYCrCbu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint8_t* dst);
RVK_API void rvkColorRGB888toYCrCbu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstStride);

/* Hue, saturation and value of each pixel, in this order, by the hexcone model (Smith, "Color Gamut Transform Pairs",
 * 1978). With v = max(red, green, blue) and d = v - min(red, green, blue):
 *   hue        = (green - blue) / d, or 2 + (blue - red) / d, or 4 + (red - green) / d where red, or green, or blue is
 *              the
 *                largest, times 256 / 6 and modulo 256: the circle has 256 steps. Grey, where d is 0, has hue 0
 *   saturation = 255 * d / v; black has saturation 0
 *   value      = v
 * Each is the exact number, rounded to the nearest integer, halves up. */
RVK_API void rvkColorRGB888ToHSV888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstStride);

/* CIE 1976 L*, a*, b* of each pixel of sRGB (IEC 61966-2-1), white D65, in this order:
 *   linear(c) = c / 12.92 where c <= 0.04045, else ((c + 0.055) / 1.055)^2.4, of each colour c = byte / 255
 *   X = 0.4124 * red + 0.3576 * green + 0.1805 * blue      of linear colours, and each divided by what white has of it:
 *   Y = 0.2126 * red + 0.7152 * green + 0.0722 * blue      0.9505, 1, 1.0890
 *   Z = 0.0193 * red + 0.1192 * green + 0.9505 * blue
 *   f(t) = t^(1/3) where t > (6/29)^3, else t / (3 * (6/29)^2) + 4/29
 *   byte 0 = (116 * f(Y) - 16) * 255 / 100
 *   byte 1 = 500 * (f(X) - f(Y)) + 128
 *   byte 2 = 200 * (f(Y) - f(Z)) + 128
 * Powers are polynomials in fixed point: of all 2^24 colours, no byte is further than 0.66 from the exact number, and
 * 97 of 100 are that number rounded. Greys have 128 in bytes 1 and 2. Bytes 1 and 2 lie in 42..226 and 20..222. */
RVK_API void rvkColorRGBA8888ToLABu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride);

RVK_EXTERN_C_END

#endif
