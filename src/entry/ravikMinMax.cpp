// Smallest and largest element with their places: the public functions.
#include "bodies.h"

using namespace rvk;

namespace {

template <Slot slot, class T>
ResultOf<slot> minMaxLoc(Words words, const T* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                         T* minVal, T* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX,
                         uint32_t* maxLocY)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(T));
    const RVK_IMPL target = chooseTarget(slot);
    if (!(src && srcWidth && srcHeight && srcStride >= rowSize(srcWidth, sizeof(T)) && minVal && maxVal && minLocX &&
          minLocY && maxLocX && maxLocY))
        return refuse<slot>(words);
    return implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX,
                                        maxLocY);
}

} // namespace

// As the log quotes it; `size` is the factor of the width that makes a row's size.
#define RVK_CONDITION(size)                                           \
    "src && srcWidth && srcHeight && (srcStride >= srcWidth" size ")" \
    " && minVal && maxVal && minLocX && minLocY && maxLocX && maxLocY"

void rvkMinMaxLocu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* minVal,
                    uint8_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc<Slot::rvkMinMaxLocu8>({__func__, RVK_CONDITION("")}, src, srcWidth, srcHeight, srcStride, minVal, maxVal,
                                    minLocX, minLocY, maxLocX, maxLocY);
}

void rvkMinMaxLocu16(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint16_t* minVal,
                     uint16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc<Slot::rvkMinMaxLocu16>({__func__, RVK_CONDITION(" * sizeof(uint16_t)")}, src, srcWidth, srcHeight,
                                     srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
}

void rvkMinMaxLocs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int16_t* minVal,
                     int16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc<Slot::rvkMinMaxLocs16>({__func__, RVK_CONDITION(" * sizeof(int16_t)")}, src, srcWidth, srcHeight,
                                     srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
}

void rvkMinMaxLocu32(const uint32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t* minVal,
                     uint32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc<Slot::rvkMinMaxLocu32>({__func__, RVK_CONDITION(" * sizeof(uint32_t)")}, src, srcWidth, srcHeight,
                                     srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
}

void rvkMinMaxLocs32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int32_t* minVal,
                     int32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc<Slot::rvkMinMaxLocs32>({__func__, RVK_CONDITION(" * sizeof(int32_t)")}, src, srcWidth, srcHeight,
                                     srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
}

void rvkMinMaxLocf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t* minVal,
                     float32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc<Slot::rvkMinMaxLocf32>({__func__, RVK_CONDITION(" * sizeof(float32_t)")}, src, srcWidth, srcHeight,
                                     srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
}

rvkStatus rvkMinMaxLocu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            uint8_t* minVal, uint8_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX,
                            uint32_t* maxLocY)
{
    return minMaxLoc<Slot::rvkMinMaxLocu8_v2>(kSilent, src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX,
                                              minLocY, maxLocX, maxLocY);
}

rvkStatus rvkMinMaxLocu16_v2(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint16_t* minVal, uint16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                             uint32_t* maxLocX, uint32_t* maxLocY)
{
    return minMaxLoc<Slot::rvkMinMaxLocu16_v2>(kSilent, src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX,
                                               minLocY, maxLocX, maxLocY);
}

rvkStatus rvkMinMaxLocs16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             int16_t* minVal, int16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX,
                             uint32_t* maxLocY)
{
    return minMaxLoc<Slot::rvkMinMaxLocs16_v2>(kSilent, src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX,
                                               minLocY, maxLocX, maxLocY);
}

rvkStatus rvkMinMaxLocu32_v2(const uint32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint32_t* minVal, uint32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                             uint32_t* maxLocX, uint32_t* maxLocY)
{
    return minMaxLoc<Slot::rvkMinMaxLocu32_v2>(kSilent, src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX,
                                               minLocY, maxLocX, maxLocY);
}

rvkStatus rvkMinMaxLocs32_v2(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             int32_t* minVal, int32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX,
                             uint32_t* maxLocY)
{
    return minMaxLoc<Slot::rvkMinMaxLocs32_v2>(kSilent, src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX,
                                               minLocY, maxLocX, maxLocY);
}

rvkStatus rvkMinMaxLocf32_v2(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             float32_t* minVal, float32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                             uint32_t* maxLocX, uint32_t* maxLocY)
{
    return minMaxLoc<Slot::rvkMinMaxLocf32_v2>(kSilent, src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX,
                                               minLocY, maxLocX, maxLocY);
}
