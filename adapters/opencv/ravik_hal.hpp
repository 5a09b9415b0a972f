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

#endif
