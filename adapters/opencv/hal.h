// What the adapter's units share. They need no header of OpenCV: the numbers of its interface stand here.
#pragma once

#include "ravik_hal.hpp"

#include <ravik/types.h>

#include <initializer_list>

namespace rvk::hal {

constexpr int kOk = 0;
constexpr int kNotImplemented = 1;

enum Depth { k8U, k8S, k16U, k16S, k32S, k32F, k64F };
enum Morphology { kErode, kDilate };
enum Threshold { kBinary, kBinaryInverse };
enum Border { kConstant, kReplicate, kReflect, kWrap, kReflect101, kTransparent, kIsolated = 16 };

inline int done(rvkStatus status)
{
    return status == RAVIK_SUCCESS ? kOk : kNotImplemented;
}

// A step of OpenCV as a stride of the library: 32 bits, of whole elements. The step of a picture of one row means
// nothing, and may be anything; 0 is a packed row.
inline uint32_t strideOf(size_t step, int height)
{
    return height == 1 ? 0 : uint32_t(step);
}

// Whether the library can take pictures with such a size and such steps, below 2^31 bytes. A step below the row would
// be one of rows that overlap, or of one row that is repeated.
inline bool areStrides(int width, int height, size_t elementSize, std::initializer_list<size_t> steps)
{
    if (width <= 0 || height <= 0 || width > INT32_MAX / 64)
        return false;
    if (height == 1)
        return true;
    for (size_t step : steps) {
        if (step % elementSize || step < width * elementSize || step > size_t(INT32_MAX) / height)
            return false;
    }
    return true;
}

// The memory of a picture, from its first byte to behind its last.
struct Extent
{
    uintptr_t begin, end;
};

inline Extent extentOf(const void* picture, size_t step, size_t rowBytes, int height)
{
    const uintptr_t begin = reinterpret_cast<uintptr_t>(picture);
    return {begin, begin + size_t(height - 1) * step + rowBytes};
}

inline bool areApart(Extent a, Extent b)
{
    return a.end <= b.begin || b.end <= a.begin;
}

// Where a function of the library may read `src` while it writes `dst`: at the same place, or in another memory. Of
// destinations that overlap a source otherwise OpenCV's result depends on the order in which it reads and writes.
inline bool mayWrite(const void* src, size_t srcStep, size_t srcRow, const void* dst, size_t dstStep, size_t dstRow,
                     int height)
{
    if (src == dst)
        return srcRow == dstRow && (height == 1 || srcStep == dstStep);
    return areApart(extentOf(src, srcStep, srcRow, height), extentOf(dst, dstStep, dstRow, height));
}

} // namespace rvk::hal
