// Bilateral filters: the public functions.
#include "dispatch.h"

using namespace rvk;

namespace {

// Not-a-numbers are neither.
bool isPositiveAndFinite(float32_t sigma)
{
    return sigma > 0 && sigma <= __FLT_MAX__;
}

bool suitsDsp(uint32_t least, const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
              const uint8_t* dst, uint32_t dstStride)
{
    return aligned(8, src, dst, srcStride, dstStride) && enoughWork(width, height) && height >= least;
}

} // namespace

// The two forms for a window of `size` pixels, which `most` is one less than. The log quotes the condition as it stands
// here, with the number in place of `most`.
// clang-format off
#define RVK_BILATERAL_FILTER(name, size, most)                                                                         \
    void name(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,             \
              uint32_t dstStride)                                                                                      \
    {                                                                                                                  \
        srcStride = packedIfZero(srcStride, srcWidth);                                                                 \
        dstStride = packedIfZero(dstStride, srcWidth);                                                                 \
        const RVK_IMPL target = chooseTarget(                                                                          \
            Slot::name, [&] { return suitsDsp(size, src, srcWidth, srcHeight, srcStride, dst, dstStride); });          \
        RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >=srcWidth) && (dstStride >=srcWidth) &&      \
                       srcWidth > most && srcHeight > most);                                                           \
        RVK_CHECK_ARGS(src != dst);                                                                                    \
        implementation<Slot::name>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);                       \
    }                                                                                                                  \
    rvkStatus name##_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,   \
                        uint32_t dstStride, float32_t sigmaColor, float32_t sigmaSpace)                                \
    {                                                                                                                  \
        srcStride = packedIfZero(srcStride, srcWidth);                                                                 \
        dstStride = packedIfZero(dstStride, srcWidth);                                                                 \
        const RVK_IMPL target = chooseTarget(                                                                          \
            Slot::name##_v2, [&] { return suitsDsp(size, src, srcWidth, srcHeight, srcStride, dst, dstStride); });     \
        RVK_CHECK_ARGS_OR(RAVIK_EBADPARAM, src && dst && srcWidth && srcHeight && (srcStride >=srcWidth) &&            \
                                           (dstStride >=srcWidth) && srcWidth > most && srcHeight > most);             \
        RVK_CHECK_ARGS_OR(RAVIK_EBADPARAM, src != dst);                                                                \
        RVK_CHECK_ARGS_OR(RAVIK_EBADPARAM, isPositiveAndFinite(sigmaColor) && isPositiveAndFinite(sigmaSpace));        \
        return implementation<Slot::name##_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,            \
                                                       sigmaColor, sigmaSpace);                                        \
    }
// clang-format on
RVK_BILATERAL_FILTER(rvkBilateralFilter5x5u8, 5, 4)
RVK_BILATERAL_FILTER(rvkBilateralFilter7x7u8, 7, 6)
RVK_BILATERAL_FILTER(rvkBilateralFilter9x9u8, 9, 8)
#undef RVK_BILATERAL_FILTER

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
