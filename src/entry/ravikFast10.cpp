// FAST corners of arcs of 10 pixels: the public functions.
#include "bodies.h"

using namespace rvk;

// As the log quotes it; `pointers` are those of the list, and of the mask.
#define RVK_CONDITION(pointers) \
    "src && xy" pointers " && srcStride >= srcWidth && border*2 < srcWidth && border*2 < srcHeight"

void rvkCornerFast10u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int32_t barrier,
                       uint32_t border, uint32_t* xy, uint32_t nCornersMax, uint32_t* nCorners)
{
    detectCorners<Slot::rvkCornerFast10u8>({__func__, RVK_CONDITION(" && nCorners")}, nCorners, src, srcWidth,
                                           srcHeight, srcStride, barrier, border, xy, nCornersMax, nCorners);
}

void rvkCornerFast10InMasku8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             int32_t barrier, uint32_t border, uint32_t* xy, uint32_t nCornersMax, uint32_t* nCorners,
                             const uint8_t* mask, uint32_t maskWidth, uint32_t maskHeight)
{
    detectCorners<Slot::rvkCornerFast10InMasku8>({__func__, RVK_CONDITION(" && nCorners && mask")}, nCorners && mask,
                                                 src, srcWidth, srcHeight, srcStride, barrier, border, xy, nCornersMax,
                                                 nCorners, mask, maskWidth, maskHeight);
}

void rvkCornerFast10Scoreu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            int32_t barrier, uint32_t border, uint32_t* xy, uint32_t* scores, uint32_t nCornersMax,
                            uint32_t* nCorners, uint32_t nmsEnabled, uint32_t* tempBuf)
{
    detectCorners<Slot::rvkCornerFast10Scoreu8>({__func__, RVK_CONDITION(" && scores && nCorners")}, scores && nCorners,
                                                src, srcWidth, srcHeight, srcStride, barrier, border, xy, scores,
                                                nCornersMax, nCorners, nmsEnabled, tempBuf);
}

void rvkCornerFast10InMaskScoreu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  int32_t barrier, uint32_t border, uint32_t* xy, uint32_t* scores,
                                  uint32_t nCornersMax, uint32_t* nCorners, const uint8_t* mask, uint32_t maskWidth,
                                  uint32_t maskHeight, uint32_t nmsEnabled, uint32_t* tempBuf)
{
    detectCorners<Slot::rvkCornerFast10InMaskScoreu8>({__func__, RVK_CONDITION(" && scores && nCorners && mask")},
                                                      scores && nCorners && mask, src, srcWidth, srcHeight, srcStride,
                                                      barrier, border, xy, scores, nCornersMax, nCorners, mask,
                                                      maskWidth, maskHeight, nmsEnabled, tempBuf);
}
