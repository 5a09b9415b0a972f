// Bilateral filters: the public functions.
#include "bodies.h"

using namespace rvk;

namespace {

// Not-a-numbers are neither.
bool isPositiveAndFinite(float32_t sigma)
{
    return sigma > 0 && sigma <= __FLT_MAX__;
}

// Windows of `size` pixels each way; the forms without sigmas have none.
template <Slot slot, class... Sigmas>
ResultOf<slot> filterWindows(uint32_t size, Words words, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                             uint32_t srcStride, uint8_t* dst, uint32_t dstStride, Sigmas... sigmas)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(
        slot, [&] { return suitsDsp(windowOf(size), src, srcWidth, srcHeight, srcStride, dst, dstStride); });
    if (!accepts(windowOf(size), src, srcWidth, srcHeight, srcStride, dst, dstStride))
        return refuse<slot>(words);
    if (src == dst)
        return refuse<slot>({words.function, "src != dst"});
    if (!(isPositiveAndFinite(sigmas) && ...))
        return refuse<slot>({words.function, "isPositiveAndFinite(sigmaColor) && isPositiveAndFinite(sigmaSpace)"});
    return implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride, sigmas...);
}

// The condition as the log quotes it.
#define RVK_CONDITION(most)                                                                   \
    "src && dst && srcWidth && srcHeight && (srcStride >=srcWidth) && (dstStride >=srcWidth)" \
    " && srcWidth > " most " && srcHeight > " most

} // namespace

void rvkBilateralFilter5x5u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride)
{
    filterWindows<Slot::rvkBilateralFilter5x5u8>(5, {__func__, RVK_CONDITION("4")}, src, srcWidth, srcHeight, srcStride,
                                                 dst, dstStride);
}

rvkStatus rvkBilateralFilter5x5u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride, float32_t sigmaColor, float32_t sigmaSpace)
{
    return filterWindows<Slot::rvkBilateralFilter5x5u8_v2>(5, {__func__, RVK_CONDITION("4")}, src, srcWidth, srcHeight,
                                                           srcStride, dst, dstStride, sigmaColor, sigmaSpace);
}

void rvkBilateralFilter7x7u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride)
{
    filterWindows<Slot::rvkBilateralFilter7x7u8>(7, {__func__, RVK_CONDITION("6")}, src, srcWidth, srcHeight, srcStride,
                                                 dst, dstStride);
}

rvkStatus rvkBilateralFilter7x7u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride, float32_t sigmaColor, float32_t sigmaSpace)
{
    return filterWindows<Slot::rvkBilateralFilter7x7u8_v2>(7, {__func__, RVK_CONDITION("6")}, src, srcWidth, srcHeight,
                                                           srcStride, dst, dstStride, sigmaColor, sigmaSpace);
}

void rvkBilateralFilter9x9u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride)
{
    filterWindows<Slot::rvkBilateralFilter9x9u8>(9, {__func__, RVK_CONDITION("8")}, src, srcWidth, srcHeight, srcStride,
                                                 dst, dstStride);
}

rvkStatus rvkBilateralFilter9x9u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride, float32_t sigmaColor, float32_t sigmaSpace)
{
    return filterWindows<Slot::rvkBilateralFilter9x9u8_v2>(9, {__func__, RVK_CONDITION("8")}, src, srcWidth, srcHeight,
                                                           srcStride, dst, dstStride, sigmaColor, sigmaSpace);
}

rvkStatus rvkBilateralFilterRecursiveu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstStride, float32_t sigmaColor, float32_t sigmaSpace)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBilateralFilterRecursiveu8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight);
    });
    RVK_CHECK_STATUS(src && dst && srcWidth && srcHeight && srcStride >= srcWidth && dstStride >= srcWidth &&
                     src != dst && uint64_t{srcWidth} * srcHeight <= UINT32_MAX / sizeof(float32_t));
    RVK_CHECK_STATUS(isPositiveAndFinite(sigmaColor) && isPositiveAndFinite(sigmaSpace));
    return implementation<Slot::rvkBilateralFilterRecursiveu8>(target)(src, srcWidth, srcHeight, srcStride, dst,
                                                                       dstStride, sigmaColor, sigmaSpace);
}
