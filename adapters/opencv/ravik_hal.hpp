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

struct cvhalFilter2D;

RAVIK_HAL_API int ravik_hal_filterInit(cvhalFilter2D** context, uint8_t* kernel, size_t kernelStep, int kernelType,
                                       int kernelWidth, int kernelHeight, int maxWidth, int maxHeight, int srcType,
                                       int dstType, int borderType, double delta, int anchorX, int anchorY,
                                       bool allowSubmatrix, bool allowInplace);
#undef cv_hal_filterInit
#define cv_hal_filterInit ravik_hal_filterInit

RAVIK_HAL_API int ravik_hal_filter(cvhalFilter2D* context, uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep,
                                   int width, int height, int fullWidth, int fullHeight, int offsetX, int offsetY);
#undef cv_hal_filter
#define cv_hal_filter ravik_hal_filter

RAVIK_HAL_API int ravik_hal_filterFree(cvhalFilter2D* context);
#undef cv_hal_filterFree
#define cv_hal_filterFree ravik_hal_filterFree

RAVIK_HAL_API int ravik_hal_morphInit(cvhalFilter2D** context, int operation, int srcType, int dstType, int maxWidth,
                                      int maxHeight, int kernelType, uint8_t* kernel, size_t kernelStep,
                                      int kernelWidth, int kernelHeight, int anchorX, int anchorY, int borderType,
                                      const double borderValue[4], int iterations, bool allowSubmatrix,
                                      bool allowInplace);
#undef cv_hal_morphInit
#define cv_hal_morphInit ravik_hal_morphInit

RAVIK_HAL_API int ravik_hal_morph(cvhalFilter2D* context, uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep,
                                  int width, int height, int srcFullWidth, int srcFullHeight, int srcX, int srcY,
                                  int dstFullWidth, int dstFullHeight, int dstX, int dstY);
#undef cv_hal_morph
#define cv_hal_morph ravik_hal_morph

RAVIK_HAL_API int ravik_hal_morphFree(cvhalFilter2D* context);
#undef cv_hal_morphFree
#define cv_hal_morphFree ravik_hal_morphFree

RAVIK_HAL_API int ravik_hal_resize(int srcType, const uint8_t* src, size_t srcStep, int srcWidth, int srcHeight,
                                   uint8_t* dst, size_t dstStep, int dstWidth, int dstHeight, double inverseScaleX,
                                   double inverseScaleY, int interpolation);
#undef cv_hal_resize
#define cv_hal_resize ravik_hal_resize

RAVIK_HAL_API int ravik_hal_warpAffine(int srcType, const uint8_t* src, size_t srcStep, int srcWidth, int srcHeight,
                                       uint8_t* dst, size_t dstStep, int dstWidth, int dstHeight,
                                       const double matrix[6], int interpolation, int borderType,
                                       const double borderValue[4]);
#undef cv_hal_warpAffine
#define cv_hal_warpAffine ravik_hal_warpAffine

RAVIK_HAL_API int ravik_hal_warpPerspective(int srcType, const uint8_t* src, size_t srcStep, int srcWidth,
                                            int srcHeight, uint8_t* dst, size_t dstStep, int dstWidth, int dstHeight,
                                            const double matrix[9], int interpolation, int borderType,
                                            const double borderValue[4]);
#undef cv_hal_warpPerspective
#define cv_hal_warpPerspective ravik_hal_warpPerspective

RAVIK_HAL_API int ravik_hal_remap32f(int srcType, const uint8_t* src, size_t srcStep, int srcWidth, int srcHeight,
                                     uint8_t* dst, size_t dstStep, int dstWidth, int dstHeight, float* mapX,
                                     size_t mapXStep, float* mapY, size_t mapYStep, int interpolation, int borderType,
                                     const double borderValue[4]);
#ifdef cv_hal_remap32f
#undef cv_hal_remap32f
#define cv_hal_remap32f ravik_hal_remap32f
#endif

RAVIK_HAL_API int ravik_hal_cvtBGRtoBGR(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width,
                                        int height, int depth, int srcChannels, int dstChannels, bool swapBlue);
#undef cv_hal_cvtBGRtoBGR
#define cv_hal_cvtBGRtoBGR ravik_hal_cvtBGRtoBGR

RAVIK_HAL_API int ravik_hal_cvtBGRtoBGR5x5(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width,
                                           int height, int srcChannels, bool swapBlue, int greenBits);
#undef cv_hal_cvtBGRtoBGR5x5
#define cv_hal_cvtBGRtoBGR5x5 ravik_hal_cvtBGRtoBGR5x5

RAVIK_HAL_API int ravik_hal_cvtGraytoBGR(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width,
                                         int height, int depth, int dstChannels);
#undef cv_hal_cvtGraytoBGR
#define cv_hal_cvtGraytoBGR ravik_hal_cvtGraytoBGR

RAVIK_HAL_API int ravik_hal_integral(int depth, int sumDepth, int squaresDepth, const uint8_t* src, size_t srcStep,
                                     uint8_t* sum, size_t sumStep, uint8_t* squares, size_t squaresStep,
                                     uint8_t* tilted, size_t tiltedStep, int width, int height, int channels);
#undef cv_hal_integral
#define cv_hal_integral ravik_hal_integral

RAVIK_HAL_API int ravik_hal_medianBlur(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width,
                                       int height, int depth, int channels, int ksize);
#undef cv_hal_medianBlur
#define cv_hal_medianBlur ravik_hal_medianBlur

RAVIK_HAL_API int ravik_hal_threshold(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width,
                                      int height, int depth, int channels, double threshold, double maxValue,
                                      int thresholdType);
#undef cv_hal_threshold
#define cv_hal_threshold ravik_hal_threshold

RAVIK_HAL_API int ravik_hal_boxFilter(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width,
                                      int height, int srcDepth, int dstDepth, int channels, int left, int top,
                                      int right, int bottom, size_t kernelWidth, size_t kernelHeight, int anchorX,
                                      int anchorY, bool normalize, int borderType);
#undef cv_hal_boxFilter
#define cv_hal_boxFilter ravik_hal_boxFilter

RAVIK_HAL_API int ravik_hal_equalize_hist(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width,
                                          int height);
#ifdef cv_hal_equalize_hist
#undef cv_hal_equalize_hist
#define cv_hal_equalize_hist ravik_hal_equalize_hist
#endif

RAVIK_HAL_API int ravik_hal_sobel(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width,
                                  int height, int srcDepth, int dstDepth, int channels, int left, int top, int right,
                                  int bottom, int dx, int dy, int ksize, double scale, double delta, int borderType);
#undef cv_hal_sobel
#define cv_hal_sobel ravik_hal_sobel

RAVIK_HAL_API int ravik_hal_pyrdown(const uint8_t* src, size_t srcStep, int srcWidth, int srcHeight, uint8_t* dst,
                                    size_t dstStep, int dstWidth, int dstHeight, int depth, int channels,
                                    int borderType);
#undef cv_hal_pyrdown
#define cv_hal_pyrdown ravik_hal_pyrdown

RAVIK_HAL_API int ravik_hal_canny(const uint8_t* src, size_t srcStep, uint8_t* dst, size_t dstStep, int width,
                                  int height, int channels, double lowThreshold, double highThreshold, int ksize,
                                  bool L2gradient);
#undef cv_hal_canny
#define cv_hal_canny ravik_hal_canny

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
