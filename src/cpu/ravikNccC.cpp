// C references of the correlation of patches.
#include "cpu/ravikNccC.h"

#include "functions.h"

#include <algorithm>
#include <cmath>

namespace rvk {

// ---- where patches are tried --------------------------------------------------------------------

namespace {

// Positions from `first` to before `end`, in one direction, as places in a picture of `size` pixels that hold a patch of
// `patchSize`.
struct Places
{
    uint32_t first, end;

    Places(int64_t firstPosition, int64_t endPosition, uint32_t patchSize, uint32_t size)
        : first(clamped(firstPosition - patchSize / 2, patchSize, size)),
          end(clamped(endPosition - patchSize / 2, patchSize, size))
    {
    }

private:
    static uint32_t clamped(int64_t place, uint32_t patchSize, uint32_t size)
    {
        return static_cast<uint32_t>(std::clamp<int64_t>(place, 0, int64_t{size} - patchSize + 1));
    }
};

} // namespace

NccArea nccSquare(const NccImage& src, NccPoint center, uint32_t radius)
{
    const auto placesAround = [=](int64_t middle, uint32_t size) {
        return Places(middle - radius, middle + radius + 1, kNccSide, size);
    };
    const Places across = placesAround(center.x, src.width), down = placesAround(center.y, src.height);
    return {across.first, down.first, across.end, down.end, false, 0, 0, 0};
}

NccArea nccCircle(const NccImage& src, NccPoint center, uint32_t radius)
{
    NccArea area = nccSquare(src, center, radius);
    area.isCircle = true;
    area.centerX = int64_t{center.x} - kNccSide / 2;
    area.centerY = int64_t{center.y} - kNccSide / 2;
    area.radius = radius;
    return area;
}

NccArea nccRectangle(const NccImage& patch, const NccImage& src, NccPoint first, uint32_t width, uint32_t height)
{
    const Places across(first.x, int64_t{first.x} + width, patch.width, src.width);
    const Places down(first.y, int64_t{first.y} + height, patch.height, src.height);
    return {across.first, down.first, across.end, down.end, false, 0, 0, 0};
}

// ---- scores -------------------------------------------------------------------------------------

static const uint8_t* pixelAt(const NccImage& image, size_t x, size_t y)
{
    return image.data + y * image.stride + x;
}

NccSums nccSumsOf(const NccImage& patch)
{
    NccSums sums = {};
    for (size_t y = 0; y < patch.height; ++y)
        for (size_t x = 0; x < patch.width; ++x) {
            const uint32_t pixel = *pixelAt(patch, x, y);
            sums.values += pixel;
            sums.squares += pixel * pixel;
        }
    return sums;
}

int64_t nccSpread(const NccSums& sums, uint32_t n)
{
    return int64_t{n} * sums.squares - int64_t{sums.values} * sums.values;
}

double nccScore(int64_t covariance, int64_t patchSpread, int64_t spread)
{
    return static_cast<double>(covariance) / std::sqrt(static_cast<double>(patchSpread) * static_cast<double>(spread));
}

bool storeNccBest(const NccBest& best, const NccImage& patch, uint32_t* bestX, uint32_t* bestY, float32_t* bestScore)
{
    *bestX = best.exists ? best.x + patch.width / 2 : UINT32_MAX;
    *bestY = best.exists ? best.y + patch.height / 2 : UINT32_MAX;
    *bestScore = best.exists ? static_cast<float32_t>(best.score) : 0;
    return best.exists;
}

// ---- the references -----------------------------------------------------------------------------

namespace {

// In 64 bits, which hold the squares of distances but not their sum.
bool has(const NccArea& area, uint32_t x, uint32_t y)
{
    const auto squaredDistance = [](int64_t a, int64_t b) {
        const auto distance = static_cast<uint64_t>(a < b ? b - a : a - b);
        return distance * distance;
    };
    return !area.isCircle ||
           squaredDistance(x, area.centerX) <= uint64_t{area.radius} * area.radius - squaredDistance(y, area.centerY);
}

uint32_t sumOfProducts(const NccImage& patch, const NccImage& window)
{
    uint32_t sum = 0;
    for (size_t y = 0; y < patch.height; ++y)
        for (size_t x = 0; x < patch.width; ++x)
            sum += uint32_t{*pixelAt(patch, x, y)} * *pixelAt(window, x, y);
    return sum;
}

NccBest findPatch(const NccImage& patch, const NccImage& src, const NccArea& area)
{
    const uint32_t n = patch.width * patch.height;
    const NccSums ofPatch = nccSumsOf(patch);
    const int64_t patchSpread = nccSpread(ofPatch, n);
    NccBest best = {};
    if (patchSpread == 0)
        return best;
    for (uint32_t y = area.top; y < area.bottom; ++y)
        for (uint32_t x = area.left; x < area.right; ++x) {
            if (!has(area, x, y))
                continue;
            const NccImage window = {pixelAt(src, x, y), patch.width, patch.height, src.stride};
            const NccSums sums = nccSumsOf(window);
            const int64_t spread = nccSpread(sums, n);
            if (spread == 0)
                continue;
            const int64_t covariance =
                int64_t{n} * sumOfProducts(patch, window) - int64_t{ofPatch.values} * sums.values;
            const double score = nccScore(covariance, patchSpread, spread);
            if (!best.exists || score > best.score)
                best = {score, x, y, true};
        }
    return best;
}

} // namespace

rvkStatus rvkNCCPatchesOnRectu8C(const uint8_t* patches, uint32_t patchCount, uint32_t patchWidth, uint32_t patchHeight,
                                 uint32_t patchStride, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                 uint32_t srcStride, uint32_t rectX, uint32_t rectY, uint32_t rectWidth,
                                 uint32_t rectHeight, uint32_t* bestX, uint32_t* bestY, float32_t* bestScores)
{
    const NccImage picture = {src, srcWidth, srcHeight, srcStride};
    for (size_t k = 0; k < patchCount; ++k) {
        const NccImage patch = {patches + k * patchHeight * patchStride, patchWidth, patchHeight, patchStride};
        const NccArea area = nccRectangle(patch, picture, {rectX, rectY}, rectWidth, rectHeight);
        storeNccBest(findPatch(patch, picture, area), patch, bestX + k, bestY + k, bestScores + k);
    }
    return RAVIK_SUCCESS;
}

} // namespace rvk

#include "forms/ravikNccForms.h"
