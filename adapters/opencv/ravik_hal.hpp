/* Ravik under OpenCV: what OpenCV's modules include when they are built with -DOpenCV_HAL=ravik. For each hook that is
 * taken there is a function of the adapter's library, and the macro by which OpenCV calls the hook is set to it.
 *
 * A function returns 0 when it has done the work, and 1 ("not implemented") when OpenCV is to run its own code; then it
 * has written nothing. README.md says which hooks are taken on which conditions, and why others are not.
 *
 * This header is C++11, as OpenCV is. Hooks that came after OpenCV 4.5 are set where OpenCV has them: their macros are
 * defined before it includes this. */
#ifndef RAVIK_HAL_HPP
#define RAVIK_HAL_HPP

#include <stddef.h>
#include <stdint.h>

#define RAVIK_HAL_API extern "C" __attribute__((visibility("default")))

/* ---- core ------------------------------------------------------------------------------------------------------- */

RAVIK_HAL_API int ravik_hal_absdiff8u(const uint8_t* src1, size_t src1Step, const uint8_t* src2, size_t src2Step,
                                      uint8_t* dst, size_t dstStep, int width, int height);
#undef cv_hal_absdiff8u
#define cv_hal_absdiff8u ravik_hal_absdiff8u

/* ---- imgproc ---------------------------------------------------------------------------------------------------- */

/* ---- features2d ------------------------------------------------------------------------------------------------- */

#endif
