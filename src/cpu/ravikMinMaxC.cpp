// C references of the searches for the smallest and largest element.
#include "cpu/image.h"
#include "functions.h"
#include "log.h"

namespace rvk {
namespace {

constexpr int kArgumentLine = 511; // where the log says that the arguments are wrong

// Elements are compared in row-major order, and only a true comparison replaces the best so far: ties keep the first
// place.
template <class T>
void minMaxLoc(const T* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, T* minVal, T* maxVal,
               uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    if (!(src && srcWidth && srcHeight && srcStride / sizeof(T) >= srcWidth && minVal && maxVal && minLocX && minLocY &&
          maxLocX && maxLocY))
        failInternalAssertion(
            "src/cpu/ravikArithmC", kArgumentLine,
            "src && srcWidth && srcHeight && (srcStride >= srcWidth) && minVal && maxVal && minLocX && "
            "minLocY && maxLocX && maxLocY");
    struct Element
    {
        T value;
        uint32_t x, y;
    };
    Element smallest = {*src, 0, 0};
    Element largest = {*src, 0, 0};
    for (uint32_t y = 0; y < srcHeight; ++y) {
        const T* row = Plane{src, srcStride}.row(y);
        for (uint32_t x = 0; x < srcWidth; ++x) {
            if (row[x] < smallest.value)
                smallest = {row[x], x, y};
            if (row[x] > largest.value)
                largest = {row[x], x, y};
        }
    }
    *minVal = smallest.value;
    *minLocX = smallest.x;
    *minLocY = smallest.y;
    *maxVal = largest.value;
    *maxLocX = largest.x;
    *maxLocY = largest.y;
}

} // namespace

void rvkMinMaxLocu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* minVal,
                     uint8_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
}

void rvkMinMaxLocu16C(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint16_t* minVal,
                      uint16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
}

void rvkMinMaxLocs16C(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int16_t* minVal,
                      int16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
}

void rvkMinMaxLocu32C(const uint32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t* minVal,
                      uint32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
}

void rvkMinMaxLocs32C(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int32_t* minVal,
                      int32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
}

void rvkMinMaxLocf32C(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                      float32_t* minVal, float32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX,
                      uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
}

rvkStatus rvkMinMaxLocu8_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* minVal, uint8_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX,
                             uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
    return RAVIK_SUCCESS;
}

rvkStatus rvkMinMaxLocu16_v2C(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint16_t* minVal, uint16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                              uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
    return RAVIK_SUCCESS;
}

rvkStatus rvkMinMaxLocs16_v2C(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              int16_t* minVal, int16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX,
                              uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
    return RAVIK_SUCCESS;
}

rvkStatus rvkMinMaxLocu32_v2C(const uint32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint32_t* minVal, uint32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                              uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
    return RAVIK_SUCCESS;
}

rvkStatus rvkMinMaxLocs32_v2C(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              int32_t* minVal, int32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX,
                              uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
    return RAVIK_SUCCESS;
}

rvkStatus rvkMinMaxLocf32_v2C(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              float32_t* minVal, float32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                              uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
    return RAVIK_SUCCESS;
}

} // namespace rvk
