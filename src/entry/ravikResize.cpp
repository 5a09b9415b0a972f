// Scaling by any ratio: the public functions.
#include "bodies.h"
#include "cpu/ravikResizeC.h"

using namespace rvk;

namespace {

enum class Direction { down, up, any };

constexpr const char kPicture[] = "src && dst && srcWidth && srcHeight && dstWidth && dstHeight && "
                                  "(srcStride >= srcWidth) && (dstStride >= dstWidth)";
constexpr const char kPictureOfPairs[] = "src && dst && srcWidth && srcHeight && dstWidth && dstHeight && "
                                         "(srcStride >= srcWidth * 2) && (dstStride >= dstWidth * 2)";

// What positions and sums of weights leave room for. No picture in memory comes near.
bool sizesFit(const Resizing& r, uint32_t pixelSize)
{
    const uint32_t most = static_cast<uint32_t>(INT32_MAX) / pixelSize;
    return r.srcWidth <= most && r.srcHeight <= most && r.dstWidth <= most && r.dstHeight <= most &&
           rowSize(r.srcWidth, r.srcHeight) <= UINT64_MAX / 512;
}

bool isScaled(Direction direction, const Resizing& r)
{
    return direction == Direction::any ||
           (direction == Direction::down ? r.dstWidth <= r.srcWidth && r.dstHeight <= r.srcHeight
                                         : r.dstWidth >= r.srcWidth && r.dstHeight >= r.srcHeight);
}

// Why the call is refused; null when it is not.
const char* objection(const Resizing& r, uint32_t pixelSize, Direction direction)
{
    if (!(r.src && r.dst && r.srcWidth && r.srcHeight && r.dstWidth && r.dstHeight &&
          r.srcStride >= rowSize(r.srcWidth, pixelSize) && r.dstStride >= rowSize(r.dstWidth, pixelSize)))
        return pixelSize == 1 ? kPicture : kPictureOfPairs;
    if (!isScaled(direction, r))
        return direction == Direction::down ? "dstWidth <= srcWidth && dstHeight <= srcHeight"
                                            : "dstWidth >= srcWidth && dstHeight >= srcHeight";
    if (!sizesFit(r, pixelSize))
        return "sizesFit(srcWidth, srcHeight, dstWidth, dstHeight)";
    if (r.src == r.dst)
        return "src != dst";
    return nullptr;
}

// Without a name the refusal is a status alone.
template <Slot slot, Direction direction, uint32_t pixelSize = 1, class... Parameters>
ResultOf<slot> resize(const char* function, Resizing r, Parameters... parameters)
{
    r.srcStride = packedIfZero(r.srcStride, r.srcWidth, pixelSize);
    r.dstStride = packedIfZero(r.dstStride, r.dstWidth, pixelSize);
    const RVK_IMPL target = chooseTarget(slot, [&] {
        return aligned(8, r.src, r.dst, r.srcStride, r.dstStride, r.srcWidth) &&
               enoughWork(r.srcWidth, r.srcHeight, pixelSize);
    });
    if (const char* const condition = objection(r, pixelSize, direction))
        return refuse<slot>({function, condition});
    return implementation<slot>(target)(r.src, r.srcWidth, r.srcHeight, r.srcStride, r.dst, r.dstWidth, r.dstHeight,
                                        r.dstStride, parameters...);
}

} // namespace

void rvkScaleDownNNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                      uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    resize<Slot::rvkScaleDownNNu8, Direction::down>(
        __func__, {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride});
}

void rvkScaleDownBLu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                      uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    resize<Slot::rvkScaleDownBLu8, Direction::down>(
        __func__, {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride});
}

void rvkScaleDownu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint8_t* dst, uint32_t dstWidth,
                    uint32_t dstHeight)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkScaleDownu8, [&] {
        return aligned(8, src, dst, srcWidth, dstWidth) && enoughWork(srcWidth, srcHeight);
    });
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && dstWidth && dstHeight);
    const char* const condition =
        objection({src, srcWidth, srcHeight, srcWidth, dst, dstWidth, dstHeight, dstWidth}, 1, Direction::down);
    if (condition)
        return logArgumentAssertion(__func__, condition);
    implementation<Slot::rvkScaleDownu8>(target)(src, srcWidth, srcHeight, dst, dstWidth, dstHeight);
}

rvkStatus rvkScaleDownu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                            uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    return resize<Slot::rvkScaleDownu8_v2, Direction::down>(
        nullptr, {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride});
}

rvkStatus rvkScaleu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                     uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint32_t interpolation)
{
    RVK_CHECK_STATUS(interpolation <= RAVIK_INTERPOLATION_AREA);
    return resize<Slot::rvkScaleu8, Direction::any>(
        nullptr, {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride}, interpolation);
}

rvkStatus rvkScaleu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                        uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint32_t interpolation,
                        uint32_t borderType, uint8_t borderValue)
{
    RVK_CHECK_STATUS(interpolation <= RAVIK_INTERPOLATION_AREA && borderType <= RAVIK_BORDER_REPLICATE);
    return resize<Slot::rvkScaleu8_v2, Direction::any>(
        nullptr, {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride}, interpolation, borderType,
        borderValue);
}

void rvkScaleUpPolyu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                      uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    resize<Slot::rvkScaleUpPolyu8, Direction::up>(
        __func__, {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride});
}

void rvkScaleUpPolyInterleaveu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    resize<Slot::rvkScaleUpPolyInterleaveu8, Direction::up, 2>(
        __func__, {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride});
}

void rvkScaleDownMNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                      uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    resize<Slot::rvkScaleDownMNu8, Direction::down>(
        __func__, {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride});
}

void rvkScaleDownMNInterleaveu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    resize<Slot::rvkScaleDownMNInterleaveu8, Direction::down, 2>(
        __func__, {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride});
}
