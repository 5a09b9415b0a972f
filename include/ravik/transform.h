/* Ravik: transposes, flips and rotations by quarter turns. Pixels are moved, never changed.
 *
 * Common to all functions of this header:
 *   Shapes     `srcWidth` and `srcHeight` are in pixels and at least 1. Strides are in bytes; 0 means packed rows: of
 *              `srcWidth` pixels in the source, of as many pixels as the destination is wide (`srcHeight` after a
 *              transpose or a quarter turn) in the destination. Strides of 16- and 32-bit images are rounded down to a
 *              multiple of the element size.
 *   Alignment  pointers are aligned to their element type; nothing more is needed. Flips and rotations may run on the
 *              DSP only when pointers and strides are multiples of 8.
 *   In place   flips, and rotation by 180 degrees, with `dst` equal to `src` and equal strides. Otherwise images must
 *              not overlap. */
#ifndef RAVIK_TRANSFORM_H
#define RAVIK_TRANSFORM_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* dst(y, x) = src(x, y): `dst` is `srcHeight` pixels wide and `srcWidth` high. The RGB888 form moves pixels of three
 * bytes. On bad arguments "Assertion failed @<function>: <condition>" is logged and nothing is written. */
RVK_API void rvkTransposeu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                            uint32_t dstStride);
RVK_API void rvkTransposeu16(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint16_t* dst, uint32_t dstStride);
RVK_API void rvkTransposef32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             float32_t* dst, uint32_t dstStride);
RVK_API void rvkTransposeRGB888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride);

/* Mirrors an image. `dir` is RAVIK_FLIP_HORIZONTAL (left to right), RAVIK_FLIP_VERTICAL (top to bottom) or
 * RAVIK_FLIP_BOTH. The RGB888 form moves pixels of three bytes. On bad arguments "Assertion failed @<function>:
 * <condition>" is logged and nothing is written; the same holds for `dst` equal to `src` with another stride, where the
 * log line is "Error: <function> - Try to do in place but srcStride != dstStride". */
RVK_API void rvkFlipu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                       uint32_t dstStride, uint32_t dir);
RVK_API void rvkFlipu16(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint16_t* dst,
                        uint32_t dstStride, uint32_t dir);
RVK_API void rvkFlipRGB888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride, uint32_t dir);

/* Rotates an image clockwise. `rotation` is RAVIK_ROTATE_90, RAVIK_ROTATE_180 or RAVIK_ROTATE_270; any other value does
 * nothing and is no error. After 90 and 270 degrees `dst` is `srcHeight` pixels wide and `srcWidth` high. The
 * interleaved form moves pixels of two bytes, such as interleaved chroma; its widths are in pixels.
 *
 * Returns RAVIK_SUCCESS, or RAVIK_EBADPARAM with nothing written: a null pointer, a size of 0, a stride shorter than a
 * row, `dst` equal to `src` for 90 or 270 degrees, or (logged as by the flips) for 180 degrees with another stride. */
RVK_API rvkStatus rvkRotateImageu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint8_t* dst, uint32_t dstStride, uint32_t rotation);
RVK_API rvkStatus rvkRotateImageInterleavedu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, uint8_t* dst, uint32_t dstStride, uint32_t rotation);

RVK_EXTERN_C_END

#endif
