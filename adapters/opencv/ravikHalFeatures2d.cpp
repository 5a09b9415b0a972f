// The hooks of OpenCV's module features2d.
#include "hal.h"

#include <ravik/fast.h>

#include <memory>
#include <new>

using namespace rvk::hal;

int ravik_hal_FASTInto(const uint8_t* src, size_t step, int width, int height, int threshold, bool suppress, int type,
                       ravik_hal_storeCorners store, void* list)
{
    constexpr int kType9Of16 = 2, kCircle = 7, kMostPixels = 1 << 26;
    constexpr int kNarrowest = 80; // OpenCV's shorter vectors are faster below
    // With suppression and a threshold of 0 OpenCV drops corners of score 0.
    if (type != kType9Of16 || threshold < int(suppress) || threshold > 254 || width < kNarrowest || height < kCircle ||
        width > kMostPixels / height || !areStrides(width, height, 1, {step}))
        return kNotImplemented;
    // All pixels may be corners; of memory that is not written the system takes none.
    const uint32_t most = uint32_t(width) * uint32_t(height);
    const size_t words = size_t(most) * (suppress ? 2 + 1 + 3 : 2) + height;
    const std::unique_ptr<uint32_t[]> memory(new (std::nothrow) uint32_t[words]);
    if (!memory)
        return kNotImplemented;
    uint32_t *xy = memory.get(), *scores = nullptr, count = 0;
    if (suppress) {
        scores = xy + size_t(most) * 2;
        rvkCornerFast9Scoreu8_v2(src, width, height, uint32_t(step), threshold, 0, xy, scores, most, &count, 1,
                                 scores + most);
    } else {
        rvkCornerFast9u8(src, width, height, uint32_t(step), threshold, 0, xy, most, &count);
    }
    store(list, xy, scores, count);
    return kOk;
}
