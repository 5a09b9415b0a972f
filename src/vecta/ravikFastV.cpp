// Vector implementations of the FAST corners of arcs of 9 pixels.
#include "vecta/ravikFastV.h"

namespace rvk::vecta::RVK_ISA {
namespace {

RVK_NOINLINE void fast9(const FastPicture& picture, const BitMask* mask, const CornerList& list, uint32_t* tempBuf)
{
    detectCorners<9>(kFast9, picture, mask, list, tempBuf);
}

} // namespace

uint32_t fast9_corner_scoreV(const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier)
{
    return scoreOf<9>(pixel, offsets, barrier);
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikFastForms.h"
