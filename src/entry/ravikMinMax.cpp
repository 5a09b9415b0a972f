// Smallest and largest element with their places: the public functions.
#include "dispatch.h"

using namespace rvk;

void rvkMinMaxLocu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* minVal,
                    uint8_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkMinMaxLocu8);
    RVK_CHECK_ARGS(src && srcWidth && srcHeight && (srcStride >= srcWidth) && minVal && maxVal && minLocX && minLocY &&
                   maxLocX && maxLocY);
    implementation<Slot::rvkMinMaxLocu8>(target)(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY,
                                                 maxLocX, maxLocY);
}

void rvkMinMaxLocu16(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint16_t* minVal,
                     uint16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(uint16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkMinMaxLocu16);
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 2), src && srcWidth && srcHeight &&
                                                   (srcStride >= srcWidth * sizeof(uint16_t)) && minVal && maxVal &&
                                                   minLocX && minLocY && maxLocX && maxLocY);
    implementation<Slot::rvkMinMaxLocu16>(target)(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY,
                                                  maxLocX, maxLocY);
}

void rvkMinMaxLocs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int16_t* minVal,
                     int16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkMinMaxLocs16);
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 2), src && srcWidth && srcHeight &&
                                                   (srcStride >= srcWidth * sizeof(int16_t)) && minVal && maxVal &&
                                                   minLocX && minLocY && maxLocX && maxLocY);
    implementation<Slot::rvkMinMaxLocs16>(target)(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY,
                                                  maxLocX, maxLocY);
}

void rvkMinMaxLocu32(const uint32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t* minVal,
                     uint32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(uint32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkMinMaxLocu32);
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 4), src && srcWidth && srcHeight &&
                                                   (srcStride >= srcWidth * sizeof(uint32_t)) && minVal && maxVal &&
                                                   minLocX && minLocY && maxLocX && maxLocY);
    implementation<Slot::rvkMinMaxLocu32>(target)(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY,
                                                  maxLocX, maxLocY);
}

void rvkMinMaxLocs32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int32_t* minVal,
                     int32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkMinMaxLocs32);
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 4), src && srcWidth && srcHeight &&
                                                   (srcStride >= srcWidth * sizeof(int32_t)) && minVal && maxVal &&
                                                   minLocX && minLocY && maxLocX && maxLocY);
    implementation<Slot::rvkMinMaxLocs32>(target)(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY,
                                                  maxLocX, maxLocY);
}

void rvkMinMaxLocf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t* minVal,
                     float32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkMinMaxLocf32);
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 4), src && srcWidth && srcHeight &&
                                                   (srcStride >= srcWidth * sizeof(float32_t)) && minVal && maxVal &&
                                                   minLocX && minLocY && maxLocX && maxLocY);
    implementation<Slot::rvkMinMaxLocf32>(target)(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY,
                                                  maxLocX, maxLocY);
}

rvkStatus rvkMinMaxLocu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            uint8_t* minVal, uint8_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX,
                            uint32_t* maxLocY)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkMinMaxLocu8_v2);
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && (srcStride >= srcWidth) && minVal && maxVal && minLocX &&
                     minLocY && maxLocX && maxLocY);
    return implementation<Slot::rvkMinMaxLocu8_v2>(target)(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX,
                                                           minLocY, maxLocX, maxLocY);
}

rvkStatus rvkMinMaxLocu16_v2(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint16_t* minVal, uint16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                             uint32_t* maxLocX, uint32_t* maxLocY)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(uint16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkMinMaxLocu16_v2);
    RVK_CHECK_STATUS(rowFits(srcWidth, 2) && src && srcWidth && srcHeight &&
                     (srcStride >= srcWidth * sizeof(uint16_t)) && minVal && maxVal && minLocX && minLocY && maxLocX &&
                     maxLocY);
    return implementation<Slot::rvkMinMaxLocu16_v2>(target)(src, srcWidth, srcHeight, srcStride, minVal, maxVal,
                                                            minLocX, minLocY, maxLocX, maxLocY);
}

rvkStatus rvkMinMaxLocs16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             int16_t* minVal, int16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX,
                             uint32_t* maxLocY)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkMinMaxLocs16_v2);
    RVK_CHECK_STATUS(rowFits(srcWidth, 2) && src && srcWidth && srcHeight &&
                     (srcStride >= srcWidth * sizeof(int16_t)) && minVal && maxVal && minLocX && minLocY && maxLocX &&
                     maxLocY);
    return implementation<Slot::rvkMinMaxLocs16_v2>(target)(src, srcWidth, srcHeight, srcStride, minVal, maxVal,
                                                            minLocX, minLocY, maxLocX, maxLocY);
}

rvkStatus rvkMinMaxLocu32_v2(const uint32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint32_t* minVal, uint32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                             uint32_t* maxLocX, uint32_t* maxLocY)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(uint32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkMinMaxLocu32_v2);
    RVK_CHECK_STATUS(rowFits(srcWidth, 4) && src && srcWidth && srcHeight &&
                     (srcStride >= srcWidth * sizeof(uint32_t)) && minVal && maxVal && minLocX && minLocY && maxLocX &&
                     maxLocY);
    return implementation<Slot::rvkMinMaxLocu32_v2>(target)(src, srcWidth, srcHeight, srcStride, minVal, maxVal,
                                                            minLocX, minLocY, maxLocX, maxLocY);
}

rvkStatus rvkMinMaxLocs32_v2(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             int32_t* minVal, int32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX,
                             uint32_t* maxLocY)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkMinMaxLocs32_v2);
    RVK_CHECK_STATUS(rowFits(srcWidth, 4) && src && srcWidth && srcHeight &&
                     (srcStride >= srcWidth * sizeof(int32_t)) && minVal && maxVal && minLocX && minLocY && maxLocX &&
                     maxLocY);
    return implementation<Slot::rvkMinMaxLocs32_v2>(target)(src, srcWidth, srcHeight, srcStride, minVal, maxVal,
                                                            minLocX, minLocY, maxLocX, maxLocY);
}

rvkStatus rvkMinMaxLocf32_v2(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             float32_t* minVal, float32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                             uint32_t* maxLocX, uint32_t* maxLocY)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkMinMaxLocf32_v2);
    RVK_CHECK_STATUS(rowFits(srcWidth, 4) && src && srcWidth && srcHeight &&
                     (srcStride >= srcWidth * sizeof(float32_t)) && minVal && maxVal && minLocX && minLocY && maxLocX &&
                     maxLocY);
    return implementation<Slot::rvkMinMaxLocf32_v2>(target)(src, srcWidth, srcHeight, srcStride, minVal, maxVal,
                                                            minLocX, minLocY, maxLocX, maxLocY);
}
