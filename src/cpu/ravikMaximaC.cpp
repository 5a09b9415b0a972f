// C reference of local maxima.
#include "cpu/ravikMaximaC.h"

#include "cpu/image.h"
#include "functions.h"

namespace rvk {

bool addMaximum(MaximaList& list, uint32_t x, uint32_t y, uint8_t value)
{
    if (list.count == list.most)
        return false;
    const size_t i = list.count++;
    list.xy[2 * i] = x;
    list.xy[2 * i + 1] = y;
    if (list.values)
        list.values[i] = value;
    return true;
}

bool isMaximum(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t radius, uint32_t x,
               uint32_t y)
{
    const Plane image = {src, stride};
    const auto first = [=](uint32_t at) { return at - std::min(at, radius); };
    const auto last = [=](uint32_t at, uint32_t size) { return at + std::min(radius, size - 1 - at); };
    for (uint32_t j = first(y); j <= last(y, height); ++j)
        for (uint32_t i = first(x); i <= last(x, width); ++i)
            if (image.row(j)[i] >= image.row(y)[x] && !(i == x && j == y))
                return false;
    return true;
}

rvkStatus rvkFindMultipleMaximau8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint32_t radius, uint8_t threshold, uint32_t* xy, uint32_t* values,
                                   uint32_t nMaximaMax, uint32_t* nMaxima)
{
    const Plane image = {src, srcStride};
    MaximaList list = {xy, values, nMaximaMax, 0};
    const auto search = [&] {
        for (uint32_t y = 0; y < srcHeight; ++y)
            for (uint32_t x = 0; x < srcWidth; ++x) {
                const uint8_t value = image.row(y)[x];
                if (value > threshold && isMaximum(src, srcWidth, srcHeight, srcStride, radius, x, y) &&
                    !addMaximum(list, x, y, value))
                    return;
            }
    };
    search();
    *nMaxima = list.count;
    return RAVIK_SUCCESS;
}

} // namespace rvk
