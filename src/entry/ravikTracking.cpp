// Trackers: the public functions.
#include "dispatch.h"

using namespace rvk;

rvkStatus rvkTrackBMOpticalFlow16x16u8(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                                       uint32_t srcStride, uint32_t roiLeft, uint32_t roiTop, uint32_t roiRight,
                                       uint32_t roiBottom, uint32_t shiftSize, uint32_t searchWidth,
                                       uint32_t searchHeight, uint32_t searchStep, uint32_t flags, uint32_t* numMv,
                                       uint32_t* locX, uint32_t* locY, uint32_t* mvX, uint32_t* mvY)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkTrackBMOpticalFlow16x16u8);
    RVK_CHECK_STATUS(src1 && src2 && numMv && locX && locY && mvX && mvY && searchStep);
    if (srcWidth < 16 || srcHeight < 16 || srcStride < srcWidth || roiRight > srcWidth || roiBottom > srcHeight ||
        roiRight - roiLeft < 16 || roiBottom - roiTop < 16 || shiftSize == 0)
        return RAVIK_EUNALIGNPARAM;
    return implementation<Slot::rvkTrackBMOpticalFlow16x16u8>(target)(
        src1, src2, srcWidth, srcHeight, srcStride, roiLeft, roiTop, roiRight, roiBottom, shiftSize, searchWidth,
        searchHeight, searchStep, flags, numMv, locX, locY, mvX, mvY);
}

// ---- mean shift and adaptive tracking -----------------------------------------------------------

namespace {

// `results` are the box of adaptive tracking, or nothing.
template <Slot slot, class T, class... Results>
uint32_t track(const char* function, const T* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
               rvkRectangle* window, uint32_t maxIterations, float32_t epsilon, Results*... results)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(T));
    const RVK_IMPL target = chooseTarget(slot);
    if (!(src && window && (results && ...))) {
        logArgumentAssertion(function, sizeof...(results) ? "src && window && box" : "src && window");
        return 0;
    }
    if (!(srcWidth && srcHeight && srcWidth <= INT32_MAX && srcHeight <= INT32_MAX)) {
        logArgumentAssertion(function, "srcWidth && srcHeight && srcWidth <= INT32_MAX && srcHeight <= INT32_MAX");
        return 0;
    }
    if (!(srcStride >= rowSize(srcWidth, sizeof(T)))) {
        logArgumentAssertion(function, "srcStride >= rowSize(srcWidth, sizeof(T))");
        return 0;
    }
    return implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, window, maxIterations, epsilon,
                                        results...);
}

} // namespace

uint32_t rvkMeanShiftu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                        rvkRectangle* window, uint32_t maxIterations, float32_t epsilon)
{
    return track<Slot::rvkMeanShiftu8>(__func__, src, srcWidth, srcHeight, srcStride, window, maxIterations, epsilon);
}

uint32_t rvkMeanShifts32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                         rvkRectangle* window, uint32_t maxIterations, float32_t epsilon)
{
    return track<Slot::rvkMeanShifts32>(__func__, src, srcWidth, srcHeight, srcStride, window, maxIterations, epsilon);
}

uint32_t rvkMeanShiftf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                         rvkRectangle* window, uint32_t maxIterations, float32_t epsilon)
{
    return track<Slot::rvkMeanShiftf32>(__func__, src, srcWidth, srcHeight, srcStride, window, maxIterations, epsilon);
}

uint32_t rvkConAdaTracku8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                          rvkRectangle* window, uint32_t maxIterations, float32_t epsilon, rvkRotatedBox* box)
{
    return track<Slot::rvkConAdaTracku8>(__func__, src, srcWidth, srcHeight, srcStride, window, maxIterations, epsilon,
                                         box);
}

uint32_t rvkConAdaTracks32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                           rvkRectangle* window, uint32_t maxIterations, float32_t epsilon, rvkRotatedBox* box)
{
    return track<Slot::rvkConAdaTracks32>(__func__, src, srcWidth, srcHeight, srcStride, window, maxIterations, epsilon,
                                          box);
}

uint32_t rvkConAdaTrackf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                           rvkRectangle* window, uint32_t maxIterations, float32_t epsilon, rvkRotatedBox* box)
{
    return track<Slot::rvkConAdaTrackf32>(__func__, src, srcWidth, srcHeight, srcStride, window, maxIterations, epsilon,
                                          box);
}

// ---- motion history -----------------------------------------------------------------------------

void rvkUpdateMotionHistoryu8s32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 int32_t* dst, uint32_t dstStride, int32_t timeStamp, int32_t maxHistory)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(int32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkUpdateMotionHistoryu8s32);
    RVK_CHECK_ARGS(src && dst && (srcStride >= srcWidth) && (dstStride >= srcWidth * sizeof(int32_t)));
    RVK_CHECK_ARGS(srcWidth && srcHeight && rowFits(srcWidth, sizeof(int32_t)));
    implementation<Slot::rvkUpdateMotionHistoryu8s32>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                              timeStamp, maxHistory);
}
