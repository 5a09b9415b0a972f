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

RAVIK_HAL_API int ravik_hal_sub8u32f(const uint8_t* src1, size_t src1Step, const uint8_t* src2, size_t src2Step,
                                     float* dst, size_t dstStep, int width, int height);
#ifdef cv_hal_sub8u32f
#undef cv_hal_sub8u32f
#define cv_hal_sub8u32f ravik_hal_sub8u32f
#endif

RAVIK_HAL_API int ravik_hal_absdiff8u(const uint8_t* src1, size_t src1Step, const uint8_t* src2, size_t src2Step,
                                      uint8_t* dst, size_t dstStep, int width, int height);
#undef cv_hal_absdiff8u
#define cv_hal_absdiff8u ravik_hal_absdiff8u

RAVIK_HAL_API int ravik_hal_lut(const uint8_t* src, size_t srcStep, size_t srcType, const uint8_t* table,
                                size_t entrySize, size_t tableChannels, uint8_t* dst, size_t dstStep, int width,
                                int height);
#ifdef cv_hal_lut
#undef cv_hal_lut
#define cv_hal_lut ravik_hal_lut
#endif

RAVIK_HAL_API int ravik_hal_normHamming8u(const uint8_t* a, int length, int cellSize, int* result);
#ifdef cv_hal_normHamming8u
#undef cv_hal_normHamming8u
#define cv_hal_normHamming8u ravik_hal_normHamming8u
#endif

RAVIK_HAL_API int ravik_hal_normHammingDiff8u(const uint8_t* a, const uint8_t* b, int length, int cellSize,
                                              int* result);
#ifdef cv_hal_normHammingDiff8u
#undef cv_hal_normHammingDiff8u
#define cv_hal_normHammingDiff8u ravik_hal_normHammingDiff8u
#endif

RAVIK_HAL_API int ravik_hal_mul8u(const uint8_t* src1, size_t src1Step, const uint8_t* src2, size_t src2Step,
                                  uint8_t* dst, size_t dstStep, int width, int height, double scale);
#undef cv_hal_mul8u
#define cv_hal_mul8u ravik_hal_mul8u

RAVIK_HAL_API int ravik_hal_mul8u16u(const uint8_t* src1, size_t src1Step, const uint8_t* src2, size_t src2Step,
                                     uint16_t* dst, size_t dstStep, int width, int height, double scale);
#ifdef cv_hal_mul8u16u
#undef cv_hal_mul8u16u
#define cv_hal_mul8u16u ravik_hal_mul8u16u
#endif

RAVIK_HAL_API int ravik_hal_split8u(const uint8_t* src, uint8_t** dst, int length, int channels);
#undef cv_hal_split8u
#define cv_hal_split8u ravik_hal_split8u

RAVIK_HAL_API int ravik_hal_merge8u(const uint8_t** src, uint8_t* dst, int length, int channels);
#undef cv_hal_merge8u
#define cv_hal_merge8u ravik_hal_merge8u

RAVIK_HAL_API int ravik_hal_SVD32f(float* src, size_t srcStep, float* w, float* u, size_t, float* vt, size_t vtStep,
                                   int m, int n, int flags);
#ifndef HAVE_LAPACK // which OpenCV calls by the same hook
#undef cv_hal_SVD32f
#define cv_hal_SVD32f ravik_hal_SVD32f
#endif

RAVIK_HAL_API int ravik_hal_gemm32f(const float* src1, size_t src1Step, const float* src2, size_t src2Step, float alpha,
                                    const float* src3, size_t, float beta, float* dst, size_t dstStep, int height,
                                    int length, int width, int flags);
#ifndef HAVE_LAPACK // which OpenCV calls by the same hook
#undef cv_hal_gemm32f
#define cv_hal_gemm32f ravik_hal_gemm32f
#endif

RAVIK_HAL_API int ravik_hal_minMaxIdx(const uint8_t* src, size_t step, int width, int height, int depth, double* minVal,
                                      double* maxVal, int* minIdx, int* maxIdx, uint8_t* mask);
#undef cv_hal_minMaxIdx
#define cv_hal_minMaxIdx ravik_hal_minMaxIdx

RAVIK_HAL_API int ravik_hal_flip(int type, const uint8_t* src, size_t srcStep, int width, int height, uint8_t* dst,
                                 size_t dstStep, int mode);
#ifdef cv_hal_flip
#undef cv_hal_flip
#define cv_hal_flip ravik_hal_flip
#endif

RAVIK_HAL_API int ravik_hal_rotate90(int type, const uint8_t* src, size_t srcStep, int width, int height, uint8_t* dst,
                                     size_t dstStep, int angle);
#ifdef cv_hal_rotate90
#undef cv_hal_rotate90
#define cv_hal_rotate90 ravik_hal_rotate90
#endif

RAVIK_HAL_API int ravik_hal_transpose2d(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width,
                                        int height, int pixel);
#ifdef cv_hal_transpose2d
#undef cv_hal_transpose2d
#define cv_hal_transpose2d ravik_hal_transpose2d
#endif

/* ---- imgproc ---------------------------------------------------------------------------------------------------- */

/* ---- features2d ------------------------------------------------------------------------------------------------- */

/* Stores corners in a list: columns and rows in turn, and their scores, which may be null. */
typedef void (*ravik_hal_storeCorners)(void* list, const uint32_t* xy, const uint32_t* scores, uint32_t count);

RAVIK_HAL_API int ravik_hal_FASTInto(const uint8_t* src, size_t step, int width, int height, int threshold,
                                     bool suppress, int type, ravik_hal_storeCorners store, void* list);

template <typename KeyPoints>
inline void ravikHalStoreKeyPoints(void* list, const uint32_t* xy, const uint32_t* scores, uint32_t count)
{
    KeyPoints& points = *static_cast<KeyPoints*>(list);
    points.clear();
    points.reserve(count);
    for (uint32_t i = 0; i < count; i++)
        points.emplace_back(float(xy[2 * i]), float(xy[2 * i + 1]), 7.f, -1.f, scores ? float(scores[i]) : 0.f);
}

template <typename KeyPoints>
inline int ravikHalFAST(const uint8_t* src, size_t step, int width, int height, KeyPoints& points, int threshold,
                        bool suppress, int type)
{
    return ravik_hal_FASTInto(src, step, width, height, threshold, suppress, type, ravikHalStoreKeyPoints<KeyPoints>,
                              &points);
}

/* Up to 4.10 OpenCV hands this hook a list without room in it. Where it calls the hook, in
 * modules/features2d/src/fast.cpp and nowhere else, the list itself is called `keypoints`. */
#if defined(CV_VERSION_MAJOR) && CV_VERSION_MAJOR == 4 && CV_VERSION_MINOR <= 10
#undef cv_hal_FAST
#define cv_hal_FAST(src, step, width, height, memory, count, threshold, suppress, type) \
    ((void)(count), ravikHalFAST(src, step, width, height, keypoints, threshold, suppress, type))
#endif

#endif
