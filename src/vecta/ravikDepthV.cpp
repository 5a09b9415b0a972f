// Vector implementations of the bit depths and of point clouds.
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include <ravik/depth.h>

namespace rvk {
decltype(::rvkConvertDepthImageToPointCloudf32) rvkConvertDepthImageToPointCloudf32C;
} // namespace rvk

namespace rvk::vecta::RVK_ISA {

// ---- bit depth ------------------------------------------------------------------------------------------------------

rvkStatus rvkConvertDepthu8s16V(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint32_t shift,
                                int16_t* dst, uint32_t dstStride)
{
    const auto shifted = [=](Vec<uint8_t> v) RVK_INLINE_LAMBDA {
        return bitCast<int16_t>(both(widen(v), [=](auto wide) RVK_INLINE_LAMBDA { return shiftLeft(wide, shift); }));
    };
    mapImage(width, height, Plane{dst, dstStride}, shifted, Plane{src, srcStride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkConvertDepths16u8V(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                uint32_t policy, uint32_t shift, uint8_t* dst, uint32_t dstStride)
{
    const auto shiftBoth = [=](const Vecs<int16_t, 2>& v) RVK_INLINE_LAMBDA {
        return both(v, [=](auto one) RVK_INLINE_LAMBDA { return shiftRight(one, shift); });
    };
    const auto saturated = [=](const Vecs<int16_t, 2>& v)
                               RVK_INLINE_LAMBDA { return narrowSat<uint8_t>(shiftBoth(v)); };
    const auto wrapped = [=](const Vecs<int16_t, 2>& v)
                             RVK_INLINE_LAMBDA { return narrow(bitCast<uint16_t>(shiftBoth(v))); };
    if (policy == RAVIK_POLICY_SATURATE)
        mapImage(width, height, Plane{dst, dstStride}, saturated, Plane{src, srcStride});
    else
        mapImage(width, height, Plane{dst, dstStride}, wrapped, Plane{src, srcStride});
    return RAVIK_SUCCESS;
}

// ---- point clouds ---------------------------------------------------------------------------------------------------
//
// In floats: x and y are ((column - cx) * (1 / fx)) * d, rounded four times, which is within 2^-22 and the same on every
// instruction set. Cameras with which a factor could leave the range of floats are left to the reference.

namespace {

bool isModerate(float focalLength, float centre)
{
    constexpr float largest = 0x1p30f, smallest = 0x1p-30f;
    const float magnitude = centre < 0 ? -centre : centre;
    return focalLength >= smallest && focalLength <= largest && magnitude <= largest &&
           (magnitude >= smallest || magnitude == 0);
}

RVK_INLINE Vecs<float, 3> pointsAt(Vec<float> acrossOfOne, Vec<float> downOfOne, Vec<float> depth)
{
    // Asked of the bits, because subnormals are depths, too.
    const Vec<int32_t> bits = bitCast<int32_t>(depth), infinity = splat(0x7f800000), none = splat(0x7fc00000);
    const Mask<int32_t> isDepth = greater(bits, zero<int32_t>()) & less(bits, infinity);
    const auto orNone = [&](Vec<float> v)
                            RVK_INLINE_LAMBDA { return bitCast<float>(select(isDepth, bitCast<int32_t>(v), none)); };
    return {orNone(acrossOfOne * depth), orNone(downOfOne * depth), orNone(depth)};
}

// The points of a row of pixels. Those of a depth of 1 lie `down` below the centre.
struct PointRow
{
    Vec<float> perFx, cx, down;

    // Those of some pixels from column `first` on.
    RVK_INLINE void write(const float* depths, size_t first, size_t count, float* points) const
    {
        constexpr size_t lanes = Vec<float>::lanes;
        const auto across = [&](size_t x) RVK_INLINE_LAMBDA {
            return (toFloat(iota<int32_t>() + splat(static_cast<int32_t>(x))) - cx) * perFx;
        };
        size_t i = 0;
        for (; i + lanes <= count; i += lanes)
            store3(points + 3 * i, pointsAt(across(first + i), down, load(depths + i)));
        if (const size_t rest = count - i) {
            float few[3 * lanes];
            store3(few, pointsAt(across(first + i), down, loadPartial(depths + i, rest)));
            __builtin_memcpy(points + 3 * i, few, 3 * sizeof(float) * rest);
        }
    }

    // The same by pieces that the first-level cache holds, and which are copied from there past the others.
    RVK_INLINE void writePastCaches(const float* depths, size_t width, float* points) const
    {
        constexpr size_t piece = 256;
        alignas(64) float buffer[3 * piece];
        for (size_t x = 0, n; x < width; x += n) {
            n = least(width - x, piece);
            write(depths + x, x, n, buffer);
            copyPastCaches(reinterpret_cast<const uint8_t*>(buffer), reinterpret_cast<uint8_t*>(points + 3 * x),
                           3 * sizeof(float) * n);
        }
    }
};

} // namespace

rvkStatus rvkConvertDepthImageToPointCloudf32V(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, const float32_t* camera, float32_t* dst,
                                               uint32_t dstStride)
{
    constexpr uint32_t mostPixels = 1 << 24; // in a direction: floats hold their numbers
    if (srcWidth > mostPixels || srcHeight > mostPixels || !isModerate(camera[0], camera[2]) ||
        !isModerate(camera[1], camera[3]))
        return rvkConvertDepthImageToPointCloudf32C(src, srcWidth, srcHeight, srcStride, camera, dst, dstStride);
    const bool isLarge = pastCachesIsFaster(uint64_t{srcWidth} * srcHeight * 3 * sizeof(float));
    for (uint32_t y = 0; y < srcHeight; ++y) {
        const float* const depths = Plane{src, srcStride}.row(y);
        float* const points = Plane{dst, dstStride}.row(y);
        const PointRow row = {splat(1 / camera[0]), splat(camera[2]),
                              splat((static_cast<float>(y) - camera[3]) * (1 / camera[1]))};
        if (isLarge)
            row.writePastCaches(depths, srcWidth, points);
        else
            row.write(depths, 0, srcWidth, points);
    }
    if (isLarge)
        finishWritesPastCaches();
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA
