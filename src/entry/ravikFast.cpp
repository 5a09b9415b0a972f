// FAST corners of arcs of 9 pixels: the public functions.
#include "bodies.h"

using namespace rvk;

// As the log quotes it; `pointers` are those of the list, and of the mask.
#define RVK_CONDITION(pointers) "src && xy" pointers " && stride >= width && border*2 < width && border*2 < height"

void rvkCornerFast9u8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, int32_t barrier,
                      uint32_t border, uint32_t* xy, uint32_t nCornersMax, uint32_t* numcorners)
{
    detectCorners<Slot::rvkCornerFast9u8>({__func__, RVK_CONDITION(" && numcorners")}, numcorners, src, width, height,
                                          stride, barrier, border, xy, nCornersMax, numcorners);
}

void rvkCornerFast9InMasku8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, int32_t barrier,
                            uint32_t border, uint32_t* xy, uint32_t nCornersMax, uint32_t* numcorners,
                            const uint8_t* bitMask, uint32_t maskWidth, uint32_t maskHeight)
{
    detectCorners<Slot::rvkCornerFast9InMasku8>({__func__, RVK_CONDITION(" && numcorners && bitMask")},
                                                numcorners && bitMask, src, width, height, stride, barrier, border, xy,
                                                nCornersMax, numcorners, bitMask, maskWidth, maskHeight);
}

void rvkCornerFast9Scoreu8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, int32_t barrier,
                           uint32_t border, uint32_t* xy, uint32_t* scores, uint32_t nCornersMax, uint32_t* numcorners)
{
    detectCorners<Slot::rvkCornerFast9Scoreu8>({__func__, RVK_CONDITION(" && scores && numcorners")},
                                               scores && numcorners, src, width, height, stride, barrier, border, xy,
                                               scores, nCornersMax, numcorners);
}

void rvkCornerFast9InMaskScoreu8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, int32_t barrier,
                                 uint32_t border, uint32_t* xy, uint32_t* scores, uint32_t nCornersMax,
                                 uint32_t* numcorners, const uint8_t* bitMask, uint32_t maskWidth, uint32_t maskHeight)
{
    detectCorners<Slot::rvkCornerFast9InMaskScoreu8>(
        {__func__, RVK_CONDITION(" && scores && numcorners && bitMask")}, scores && numcorners && bitMask, src, width,
        height, stride, barrier, border, xy, scores, nCornersMax, numcorners, bitMask, maskWidth, maskHeight);
}

void rvkCornerFast9Scoreu8_v2(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, int32_t barrier,
                              uint32_t border, uint32_t* xy, uint32_t* scores, uint32_t nCornersMax,
                              uint32_t* numcorners, uint32_t nmsEnabled, uint32_t* tempBuf)
{
    detectCorners<Slot::rvkCornerFast9Scoreu8_v2>({__func__, RVK_CONDITION(" && scores && numcorners")},
                                                  scores && numcorners, src, width, height, stride, barrier, border, xy,
                                                  scores, nCornersMax, numcorners, nmsEnabled, tempBuf);
}

void rvkCornerFast9InMaskScoreu8_v2(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                                    int32_t barrier, uint32_t border, uint32_t* xy, uint32_t* scores,
                                    uint32_t nCornersMax, uint32_t* numcorners, const uint8_t* bitMask,
                                    uint32_t maskWidth, uint32_t maskHeight, uint32_t nmsEnabled, uint32_t* tempBuf)
{
    detectCorners<Slot::rvkCornerFast9InMaskScoreu8_v2>(
        {__func__, RVK_CONDITION(" && scores && numcorners && bitMask")}, scores && numcorners && bitMask, src, width,
        height, stride, barrier, border, xy, scores, nCornersMax, numcorners, bitMask, maskWidth, maskHeight,
        nmsEnabled, tempBuf);
}
