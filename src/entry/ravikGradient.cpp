// Image derivatives: the public functions. The names without a version call the cell of their first version.
#include "bodies.h"

using namespace rvk;

namespace {

// What the DSP takes: sources by words, outputs by double words, and pairs of rows.
template <class... Outputs>
bool suitsDsp(uint32_t width, uint32_t height, const void* src, uint32_t srcStride, Outputs... outputs)
{
    return aligned(4, src, srcStride) && aligned(8, outputs...) && enoughWork(width, height) && height % 2 == 0 &&
           height >= 4;
}

template <Slot slot, class D>
ResultOf<slot> interleaved(Words words, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                           D* gradients, uint32_t gradStride)
{
    const uint32_t inner = srcWidth - 2; // wraps to more than any stride holds
    srcStride = packedIfZero(srcStride, srcWidth);
    gradStride = packedIfZero(gradStride, inner, 2 * sizeof(D));
    const RVK_IMPL target =
        chooseTarget(slot, [&] { return suitsDsp(srcWidth, srcHeight, src, srcStride, gradients); });
    if (!(src && srcWidth && srcHeight && srcStride >= srcWidth && gradients &&
          gradStride >= rowSize(inner, 2 * sizeof(D))))
        return refuse<slot>(words);
    return implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, gradients, gradStride);
}

template <Slot slot, class S, class D>
void planar(Words words, const S* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, D* dx, D* dy,
            uint32_t dxyStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(S));
    dxyStride = packedIfZero(dxyStride, srcWidth, sizeof(D));
    const RVK_IMPL target = chooseTarget(slot, [&] { return suitsDsp(srcWidth, srcHeight, src, srcStride, dx, dy); });
    if (!(src && srcWidth && srcHeight && srcStride >= rowSize(srcWidth, sizeof(S)) && dx && dy &&
          dxyStride >= rowSize(srcWidth, sizeof(D))))
        return refuse<slot>(words);
    if constexpr (std::is_same_v<S, D>) {
        if (src == dx || src == dy || dx == dy)
            return refuse<slot>({words.function, "src != dx && src != dy && dx != dy"});
    }
    if (dx == dy)
        return refuse<slot>({words.function, "dx != dy"});
    implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride);
}

// Windows of `size` each way. Either plane may be left out.
template <Slot slot>
rvkStatus sobel(uint32_t size, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                int16_t* dx, int16_t* dy, uint32_t dxyStride, uint32_t borderType, uint8_t borderValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dxyStride = packedIfZero(dxyStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(slot, [&] {
        return aligned(8, src, srcStride, dx, dy, dxyStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= size;
    });
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && srcStride >= srcWidth && (dx != dy || !dx) &&
                     dxyStride >= rowSize(srcWidth, sizeof(int16_t)));
    return implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride, borderType,
                                        borderValue);
}

// The conditions as the log quotes them.
constexpr char kPairss16[] = "src && srcWidth && srcHeight && (srcStride >= srcWidth) && gradients && "
                             "(gradStride >= ((srcWidth-2)*2*sizeof(int16_t)))";
constexpr char kPairsf32[] = "src && srcWidth && srcHeight && (srcStride >= srcWidth) && gradients && "
                             "(gradStride >= ((srcWidth-2)*2*sizeof(float)))";
constexpr char kPlaness16[] = "src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx && dy && "
                              "(dxyStride >= (srcWidth*sizeof(int16_t)))";
constexpr char kPlanesf32[] = "src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx && dy && "
                              "(dxyStride >= (srcWidth*sizeof(float)))";
constexpr char kPlaness8[] =
    "src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx && dy && (dxyStride >= srcWidth)";
constexpr char kPlanesf32f32[] =
    "src && srcWidth && srcHeight && (srcStride >= (srcWidth*sizeof(float))) && dx && dy && "
    "(dxyStride >= (srcWidth*sizeof(float)))";
constexpr char kStrength[] =
    "src && srcWidth && srcHeight && (srcStride >= srcWidth) && dst && (dstStride >= srcWidth)";

} // namespace

// ---- central differences -------------------------------------------------------------------------

void rvkImageGradientInterleaveds16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    int16_t* gradients, uint32_t gradStride)
{
    interleaved<Slot::rvkImageGradientInterleaveds16_v2>({__func__, kPairss16}, src, srcWidth, srcHeight, srcStride,
                                                         gradients, gradStride);
}

void rvkImageGradientInterleaveds16_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       int16_t* gradients, uint32_t gradStride)
{
    interleaved<Slot::rvkImageGradientInterleaveds16_v2>({__func__, kPairss16}, src, srcWidth, srcHeight, srcStride,
                                                         gradients, gradStride);
}

void rvkImageGradientInterleavedf32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    float32_t* gradients, uint32_t gradStride)
{
    interleaved<Slot::rvkImageGradientInterleavedf32_v2>({__func__, kPairsf32}, src, srcWidth, srcHeight, srcStride,
                                                         gradients, gradStride);
}

void rvkImageGradientInterleavedf32_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       float32_t* gradients, uint32_t gradStride)
{
    interleaved<Slot::rvkImageGradientInterleavedf32_v2>({__func__, kPairsf32}, src, srcWidth, srcHeight, srcStride,
                                                         gradients, gradStride);
}

void rvkImageGradientPlanars16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientPlanars16_v2>({__func__, kPlaness16}, src, srcWidth, srcHeight, srcStride, dx, dy,
                                               dxyStride);
}

void rvkImageGradientPlanars16_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientPlanars16_v2>({__func__, kPlaness16}, src, srcWidth, srcHeight, srcStride, dx, dy,
                                               dxyStride);
}

void rvkImageGradientPlanarf32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientPlanarf32_v2>({__func__, kPlanesf32}, src, srcWidth, srcHeight, srcStride, dx, dy,
                                               dxyStride);
}

void rvkImageGradientPlanarf32_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientPlanarf32_v2>({__func__, kPlanesf32}, src, srcWidth, srcHeight, srcStride, dx, dy,
                                               dxyStride);
}

// ---- Sobel and Scharr, 3x3 -----------------------------------------------------------------------

void rvkImageGradientSobelInterleaveds16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         int16_t* gradients, uint32_t gradStride)
{
    interleaved<Slot::rvkImageGradientSobelInterleaveds16_v2>({__func__, kPairss16}, src, srcWidth, srcHeight,
                                                              srcStride, gradients, gradStride);
}

void rvkImageGradientSobelInterleaveds16_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, int16_t* gradients, uint32_t gradStride)
{
    interleaved<Slot::rvkImageGradientSobelInterleaveds16_v2>({__func__, kPairss16}, src, srcWidth, srcHeight,
                                                              srcStride, gradients, gradStride);
}

void rvkImageGradientSobelPlanars16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientSobelPlanars16_v2>({__func__, kPlaness16}, src, srcWidth, srcHeight, srcStride, dx, dy,
                                                    dxyStride);
}

void rvkImageGradientSobelPlanars16_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientSobelPlanars16_v2>({__func__, kPlaness16}, src, srcWidth, srcHeight, srcStride, dx, dy,
                                                    dxyStride);
}

void rvkImageGradientSobelPlanars8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   int8_t* dx, int8_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientSobelPlanars8_v2>({__func__, kPlaness8}, src, srcWidth, srcHeight, srcStride, dx, dy,
                                                   dxyStride);
}

void rvkImageGradientSobelPlanars8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      int8_t* dx, int8_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientSobelPlanars8_v2>({__func__, kPlaness8}, src, srcWidth, srcHeight, srcStride, dx, dy,
                                                   dxyStride);
}

rvkStatus rvkImageGradientSobelInterleaveds16_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                 uint32_t srcStride, int16_t* gradients, uint32_t gradStride)
{
    return interleaved<Slot::rvkImageGradientSobelInterleaveds16_v3>(kSilent, src, srcWidth, srcHeight, srcStride,
                                                                     gradients, gradStride);
}

void rvkImageGradientSobelInterleavedf32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         float32_t* gradients, uint32_t gradStride)
{
    interleaved<Slot::rvkImageGradientSobelInterleavedf32_v2>({__func__, kPairsf32}, src, srcWidth, srcHeight,
                                                              srcStride, gradients, gradStride);
}

void rvkImageGradientSobelInterleavedf32_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, float32_t* gradients, uint32_t gradStride)
{
    interleaved<Slot::rvkImageGradientSobelInterleavedf32_v2>({__func__, kPairsf32}, src, srcWidth, srcHeight,
                                                              srcStride, gradients, gradStride);
}

void rvkImageGradientSobelPlanarf32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientSobelPlanarf32_v2>({__func__, kPlanesf32}, src, srcWidth, srcHeight, srcStride, dx, dy,
                                                    dxyStride);
}

void rvkImageGradientSobelPlanarf32_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientSobelPlanarf32_v2>({__func__, kPlanesf32}, src, srcWidth, srcHeight, srcStride, dx, dy,
                                                    dxyStride);
}

rvkStatus rvkImageGradientSobelPlanars16_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dxyStride = packedIfZero(dxyStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkImageGradientSobelPlanars16_v3,
                                         [&] { return suitsDsp(srcWidth, srcHeight, src, srcStride, dx, dy); });
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && srcStride >= srcWidth && (dx || dy) && dx != dy &&
                     dxyStride >= rowSize(srcWidth, sizeof(int16_t)));
    return implementation<Slot::rvkImageGradientSobelPlanars16_v3>(target)(src, srcWidth, srcHeight, srcStride, dx, dy,
                                                                           dxyStride);
}

void rvkImageGradientSobelPlanarf32f32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientSobelPlanarf32f32_v2>({__func__, kPlanesf32f32}, src, srcWidth, srcHeight, srcStride,
                                                       dx, dy, dxyStride);
}

void rvkImageGradientSobelPlanarf32f32_v2(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                          uint32_t srcStride, float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    planar<Slot::rvkImageGradientSobelPlanarf32f32_v2>({__func__, kPlanesf32f32}, src, srcWidth, srcHeight, srcStride,
                                                       dx, dy, dxyStride);
}

void rvkImageGradientScharrInterleaveds16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          int16_t* gradients, uint32_t gradStride)
{
    interleaved<Slot::rvkImageGradientScharrInterleaveds16>(
        {__func__, "src && srcWidth && srcHeight && (srcStride >= srcWidth)&& gradients && "
                   "(gradStride >= ((srcWidth-2)*2*sizeof(int16_t)))"},
        src, srcWidth, srcHeight, srcStride, gradients, gradStride);
}

void rvkFilterSobel3x3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                         uint32_t dstStride)
{
    filter<Slot::rvkFilterSobel3x3u8_v2>({.dspHeight = 3}, {__func__, kStrength}, src, srcWidth, srcHeight, srcStride,
                                         dst, dstStride);
}

void rvkFilterSobel3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                            uint32_t dstStride)
{
    filter<Slot::rvkFilterSobel3x3u8_v2>({.dspHeight = 3}, {__func__, kStrength}, src, srcWidth, srcHeight, srcStride,
                                         dst, dstStride);
}

// ---- Sobel of any size, with a border ------------------------------------------------------------

rvkStatus rvkFilterSobel3x3u8s16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 int16_t* dx, int16_t* dy, uint32_t dxyStride, uint32_t borderType, uint8_t borderValue)
{
    return sobel<Slot::rvkFilterSobel3x3u8s16>(3, src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride, borderType,
                                               borderValue);
}

rvkStatus rvkFilterSobel5x5u8s16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 int16_t* dx, int16_t* dy, uint32_t dxyStride, uint32_t borderType, uint8_t borderValue)
{
    return sobel<Slot::rvkFilterSobel5x5u8s16>(5, src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride, borderType,
                                               borderValue);
}

rvkStatus rvkFilterSobel7x7u8s16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 int16_t* dx, int16_t* dy, uint32_t dxyStride, uint32_t borderType, uint8_t borderValue)
{
    return sobel<Slot::rvkFilterSobel7x7u8s16>(7, src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride, borderType,
                                               borderValue);
}
