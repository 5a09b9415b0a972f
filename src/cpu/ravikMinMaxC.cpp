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
} // namespace rvk

#include "forms/ravikMinMaxForms.h"
