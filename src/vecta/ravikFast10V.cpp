// Vector implementations of the FAST corners of arcs of 10 pixels.
#include "vecta/ravikFastV.h"

namespace rvk::vecta::RVK_ISA {
namespace {

RVK_NOINLINE void fast10(const FastPicture& picture, const BitMask* mask, const CornerList& list, uint32_t* tempBuf)
{
    detectCorners<10>(kFast10, picture, mask, list, tempBuf);
}

} // namespace

uint32_t fast10_corner_scoreV(const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier)
{
    return scoreOf<10>(pixel, offsets, barrier);
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikFast10Forms.h"
