// C references of histograms of oriented gradients.
#include "cpu/ravikHogC.h"

#include "cpu/image.h"
#include "functions.h"
#include "scratch.h"

#include <ravik/frame.h>

#include <algorithm>
#include <cmath>
#include <new>

namespace rvk {

rvkStatus irvkHOGInitC(uint32_t method, uint32_t cellSize, uint32_t blockSize, uint32_t blockStep, uint32_t binCount,
                       rvkHOG** hog)
{
    void* const memory = rvkMemAlloc(sizeof(rvkHOG), alignof(rvkHOG));
    if (!memory)
        return RAVIK_ENORES;
    *hog = new (memory) rvkHOG{method, cellSize, blockSize, blockStep, binCount};
    return RAVIK_SUCCESS;
}

void irvkHOGDeInitC(rvkHOG* hog)
{
    rvkMemFree(hog);
}

namespace {

// ---- votes ---------------------------------------------------------------------------------------------------------

// What a pixel gives to bins.
struct BinVotes
{
    uint32_t bins[2];
    double weights[2];
};

// Machines may differ in the last bit of atan2. That moves a vote by as little, and none from one signed bin to another:
// no boundary between those is nearer to the direction of a gradient than 1e-6, but the one at dx = 0.
BinVotes votesOf(const rvkHOG& hog, int32_t dx, int32_t dy)
{
    const double magnitude = std::sqrt(static_cast<double>(dx * dx + dy * dy));
    double turns = std::atan2(static_cast<double>(dy), static_cast<double>(dx)) / M_PI; // half ones, -1 to 1
    if (hog.method == RAVIK_HOG_FHOG) {
        turns += turns < 0 ? 2 : 0;
        const auto nearest = static_cast<uint32_t>(turns * 9 + 0.5) % kFhogSignedBins;
        const uint32_t bin = dx != 0 ? nearest : dy > 0 ? 5 : 14;
        return {{bin, bin}, {magnitude, 0}};
    }
    turns += turns < 0 ? 1 : 0;
    const double position = turns * hog.binCount - 0.5, before = std::floor(position);
    const auto bin = static_cast<uint32_t>(before + hog.binCount);
    const double share = position - before;
    return {{bin % hog.binCount, (bin + 1) % hog.binCount}, {magnitude * (1 - share), magnitude * share}};
}

// The histograms of all cells, row by row.
struct Cells
{
    double* sums;
    uint32_t across, down, bins;

    double* at(size_t x, size_t y) const { return sums + (y * across + x) * bins; }
};

// The two cells in a row, or column, whose centres are before and behind a pixel, and their shares; 0 for none.
struct CellShares
{
    uint32_t cells[2];
    double shares[2];

    CellShares(size_t pixel, uint32_t cellSize, uint32_t count)
    {
        const double position = (static_cast<double>(pixel) + 0.5) / cellSize - 0.5, before = std::floor(position);
        const auto first = static_cast<int64_t>(before);
        for (int64_t i = 0; i < 2; ++i) {
            const bool exists = first + i >= 0 && first + i < count;
            cells[i] = exists ? static_cast<uint32_t>(first + i) : 0;
            shares[i] = !exists ? 0 : i ? position - before : 1 - (position - before);
        }
    }
};

void vote(const rvkHOG& hog, Plane<const uint8_t> src, uint32_t width, uint32_t height, const Cells& cells)
{
    const BorderedImage<uint8_t> picture(src, width, height, true, 0);
    std::fill_n(cells.sums, size_t{cells.across} * cells.down * cells.bins, 0.0);
    for (size_t y = 0; y < size_t{cells.down} * hog.cellSize; ++y)
        for (size_t x = 0; x < size_t{cells.across} * hog.cellSize; ++x) {
            const auto px = static_cast<int64_t>(x), py = static_cast<int64_t>(y);
            const BinVotes votes = votesOf(hog, picture.at(px + 1, py) - picture.at(px - 1, py),
                                           picture.at(px, py + 1) - picture.at(px, py - 1));
            const CellShares columns(x, hog.cellSize, cells.across), rows(y, hog.cellSize, cells.down);
            for (size_t row = 0; row < 2; ++row)
                for (size_t column = 0; column < 2; ++column)
                    for (size_t i = 0; i < 2; ++i)
                        cells.at(columns.cells[column], rows.cells[row])[votes.bins[i]] +=
                            rows.shares[row] * columns.shares[column] * votes.weights[i];
        }
}

// ---- descriptors ---------------------------------------------------------------------------------------------------

uint16_t stored(double value)
{
    return static_cast<uint16_t>(value * double{kHogOne} + 0.5);
}

double energy(const double* values, size_t count)
{
    double sum = 0;
    for (size_t i = 0; i < count; ++i)
        sum += values[i] * values[i];
    return sum;
}

// Histograms that lie in a block, L2-Hys.
void describeBlock(const rvkHOG& hog, const Cells& cells, size_t x, size_t y, uint16_t* dst)
{
    double values[kMostHogBlockSize * kMostHogBlockSize * kMostHogBins];
    const size_t rowValues = size_t{hog.blockSize} * hog.binCount, count = rowValues * hog.blockSize;
    for (size_t row = 0; row < hog.blockSize; ++row)
        std::copy_n(cells.at(x, y + row), rowValues, values + row * rowValues);
    const double length = std::sqrt(energy(values, count) + 1);
    for (size_t i = 0; i < count; ++i)
        values[i] = std::min(values[i] / length, 0.2);
    const double clippedLength = std::sqrt(energy(values, count) + 1e-6);
    for (size_t i = 0; i < count; ++i)
        dst[i] = stored(values[i] / clippedLength);
}

// FHOG's values of unsigned directions, and their energy.
struct UnsignedBins
{
    double values[kFhogBins];

    explicit UnsignedBins(const double* h)
    {
        for (size_t b = 0; b < kFhogBins; ++b)
            values[b] = h[b] + h[b + kFhogBins];
    }
    double energyOf() const { return energy(values, kFhogBins); }
};

void describeCell(const Cells& cells, size_t x, size_t y, uint16_t* dst)
{
    const size_t columns[] = {x ? x - 1 : 0, std::min<size_t>(x + 1, cells.across - 1)};
    const size_t rows[] = {y ? y - 1 : 0, std::min<size_t>(y + 1, cells.down - 1)};
    const auto energyAt = [&](size_t column, size_t row) { return UnsignedBins(cells.at(column, row)).energyOf(); };
    const double* const h = cells.at(x, y);
    const UnsignedBins u(h);
    double signedSums[kFhogSignedBins] = {}, unsignedSums[kFhogBins] = {};
    for (size_t k = 0; k < 4; ++k) {
        const size_t column = columns[k % 2], row = rows[k / 2];
        const double n =
            1 / std::sqrt(1 + energyAt(x, y) + energyAt(column, y) + energyAt(x, row) + energyAt(column, row));
        double texture = 0;
        for (size_t b = 0; b < kFhogSignedBins; ++b) {
            signedSums[b] += std::min(h[b] * n, 0.2);
            texture += std::min(h[b] * n, 0.2);
        }
        for (size_t b = 0; b < kFhogBins; ++b)
            unsignedSums[b] += std::min(u.values[b] * n, 0.2);
        dst[kFhogSignedBins + kFhogBins + k] = stored(0.2357 * texture);
    }
    std::transform(signedSums, signedSums + kFhogSignedBins, dst, [](double sum) { return stored(0.5 * sum); });
    std::transform(unsignedSums, unsignedSums + kFhogBins, dst + kFhogSignedBins,
                   [](double sum) { return stored(0.5 * sum); });
}

} // namespace

rvkStatus irvkExtractHOGu16C(const rvkHOG* hog, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                             uint32_t srcStride, uint16_t* dst, uint32_t dstStride)
{
    const HogGrid grid(*hog, srcWidth, srcHeight);
    const bool isFhog = hog->method == RAVIK_HOG_FHOG;
    const uint32_t bins = isFhog ? kFhogSignedBins : hog->binCount;
    const Scratch<double> sums(grid.cellsDown, uint64_t{grid.cellsAcross} * bins);
    if (!sums)
        return RAVIK_ENORES;
    const Cells cells = {sums.get(), grid.cellsAcross, grid.cellsDown, bins};
    vote(*hog, {src, srcStride}, srcWidth, srcHeight, cells);
    for (size_t y = 0; y < grid.blocksDown; ++y)
        for (size_t x = 0; x < grid.blocksAcross; ++x) {
            uint16_t* const values = Plane{dst, dstStride}.row(y) + x * grid.blockValues;
            if (isFhog)
                describeCell(cells, x, y, values);
            else
                describeBlock(*hog, cells, x * hog->blockStep, y * hog->blockStep, values);
        }
    return RAVIK_SUCCESS;
}

} // namespace rvk

#include "forms/ravikHogForms.h"
