// C reference of the FAST corners of arcs of 10 pixels.
#include "cpu/ravikFastC.h"
#include "kernels.h"

namespace rvk {
namespace {

void score_10(const FastPicture& picture, const CornerList& list)
{
    scoreCorners(picture, list, kernel<Kernel::fast10_corner_score>());
}

void fast10(const FastPicture& picture, const BitMask* mask, const CornerList& list, uint32_t* tempBuf)
{
    detect(kFast10, picture, mask, list, tempBuf);
}

} // namespace

const SegmentTest kFast10 = {10, score_10, "src/cpu/ravikFast10C"};

uint32_t fast10_corner_scoreC(const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier)
{
    return cornerScore(kFast10, pixel, offsets, barrier);
}

} // namespace rvk

#include "forms/ravikFast10Forms.h"
