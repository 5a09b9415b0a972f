// Bilateral filters: the public functions.
#include "dispatch.h"

using namespace rvk;

namespace {

// Not-a-numbers are neither.
bool isPositiveAndFinite(float32_t sigma)
{
    return sigma > 0 && sigma <= __FLT_MAX__;
}

} // namespace

void rvkBilateralFilter5x5u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBilateralFilter5x5u8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 5;
    });
    // clang-format off
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >=srcWidth) && (dstStride >=srcWidth) && srcWidth > 4 && srcHeight > 4);
    // clang-format on
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkBilateralFilter5x5u8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkBilateralFilter5x5u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride, float32_t sigmaColor, float32_t sigmaSpace)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBilateralFilter5x5u8_v2, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 5;
    });
    // clang-format off
    RVK_CHECK_ARGS_OR(RAVIK_EBADPARAM, src && dst && srcWidth && srcHeight && (srcStride >=srcWidth) && (dstStride >=srcWidth) && srcWidth > 4 && srcHeight > 4);
    // clang-format on
    RVK_CHECK_ARGS_OR(RAVIK_EBADPARAM, src != dst);
    RVK_CHECK_ARGS_OR(RAVIK_EBADPARAM, isPositiveAndFinite(sigmaColor) && isPositiveAndFinite(sigmaSpace));
    return implementation<Slot::rvkBilateralFilter5x5u8_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                                    sigmaColor, sigmaSpace);
}

void rvkBilateralFilter7x7u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBilateralFilter7x7u8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 7;
    });
    // clang-format off
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >=srcWidth) && (dstStride >=srcWidth) && srcWidth > 6 && srcHeight > 6);
    // clang-format on
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkBilateralFilter7x7u8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkBilateralFilter7x7u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride, float32_t sigmaColor, float32_t sigmaSpace)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBilateralFilter7x7u8_v2, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 7;
    });
    // clang-format off
    RVK_CHECK_ARGS_OR(RAVIK_EBADPARAM, src && dst && srcWidth && srcHeight && (srcStride >=srcWidth) && (dstStride >=srcWidth) && srcWidth > 6 && srcHeight > 6);
    // clang-format on
    RVK_CHECK_ARGS_OR(RAVIK_EBADPARAM, src != dst);
    RVK_CHECK_ARGS_OR(RAVIK_EBADPARAM, isPositiveAndFinite(sigmaColor) && isPositiveAndFinite(sigmaSpace));
    return implementation<Slot::rvkBilateralFilter7x7u8_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                                    sigmaColor, sigmaSpace);
}

void rvkBilateralFilter9x9u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBilateralFilter9x9u8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 9;
    });
    // clang-format off
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >=srcWidth) && (dstStride >=srcWidth) && srcWidth > 8 && srcHeight > 8);
    // clang-format on
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkBilateralFilter9x9u8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkBilateralFilter9x9u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride, float32_t sigmaColor, float32_t sigmaSpace)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBilateralFilter9x9u8_v2, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 9;
    });
    // clang-format off
    RVK_CHECK_ARGS_OR(RAVIK_EBADPARAM, src && dst && srcWidth && srcHeight && (srcStride >=srcWidth) && (dstStride >=srcWidth) && srcWidth > 8 && srcHeight > 8);
    // clang-format on
    RVK_CHECK_ARGS_OR(RAVIK_EBADPARAM, src != dst);
    RVK_CHECK_ARGS_OR(RAVIK_EBADPARAM, isPositiveAndFinite(sigmaColor) && isPositiveAndFinite(sigmaSpace));
    return implementation<Slot::rvkBilateralFilter9x9u8_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                                    sigmaColor, sigmaSpace);
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
