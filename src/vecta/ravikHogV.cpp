// Vector implementation of histograms of oriented gradients.
//
// Between the centres of two rows of cells all pixels of a column vote for the same two cells, and so do all rows for the
// cells beside them. So a strip of rows there is summed up first down its columns, a plane of sums for each bin, and then
// along the completed row of each plane, once for all the rows of a cell. Whole vectors of pixels do both: no pixel is
// looked at by itself, and nothing depends on where it votes.
#include "cpu/ravikHogC.h"
#include "scratch.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {

rvkStatus irvkExtractHOGu16V(const rvkHOG* hog, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                             uint32_t srcStride, uint16_t* dst, uint32_t dstStride);

namespace {

using Floats = Vec<float>;

RVK_INLINE Floats reciprocalRoot(Floats v)
{
    return closeReciprocal(guessSquareRoot(v));
}

RVK_INLINE float sumOf(Floats v)
{
    return reduceFrom<Floats::lanes / 2>(v, [](Floats a, Floats b) RVK_INLINE_LAMBDA { return a + b; });
}

// ---- what a pixel gives to the planes ------------------------------------------------------------------------------
//
// position(dx, dy) says where a pixel votes; add(plane, position, vote, sums) adds what it gives to `step` planes.

// The magnitude of a pixel, the weight of its row for the lower cells, and both of them.
struct Vote
{
    Floats magnitude, weight, lower;
};
struct Sums
{
    Floats all, lower;
};

// Dalal's share of a bin is a hat over its centre, 1 less the distance to it, if that is below 1. Plane k has what is
// missing, min(distance, 1), for the hat over k, and the last plane all votes. Bin b has its hat over b + 1, and since bins
// go on around both ends, those of the last and the first have one over 0 and over the number of bins plus 1, too.
class Hats
{
public:
    explicit RVK_INLINE Hats(uint32_t bins) : m_bins(static_cast<float>(bins)), m_wholePlane(bins + 2) {}

    static constexpr size_t planesFor(size_t bins) { return bins + 3; }

    // The direction in bins and a half, from 1/2 to the number of bins plus 1/2. The arc tangent is within 5e-7, by the interpolation of atan(sqrt(s)) / sqrt(s) at Chebyshev's points.
    RVK_INLINE Floats position(Floats dx, Floats dy) const
    {
        constexpr float perTurn = 0.31830988618f; // half a turn
        constexpr float c[] = {0.999999226f, -0.333256780f, 0.198720403f, -0.134478641f,
                               0.083126453f, -0.036360431f, 0.007648354f};
        const Floats across = abs(dx), down = abs(dy), whole = splat(m_bins);
        const Floats tangent = min(across, down) * closeReciprocal(max(max(across, down), splat(1.0f)));
        const Floats s = tangent * tangent;
        Floats series = splat(c[6]);
        unrolled<6>([&](auto i) RVK_INLINE_LAMBDA { series = multiplyAdd(series, s, splat(c[5 - i])); });
        const Floats eighth = series * tangent * splat(m_bins * perTurn);
        const Floats quarter = select(less(across, down), splat(m_bins * 0.5f) - eighth, eighth);
        const Floats half = select(less(dx * dy, zero<float>()), whole - quarter, quarter);
        return half + splat(0.5f);
    }

    static constexpr size_t step = 4;

    static RVK_INLINE void add(Floats plane, Floats position, const Vote& vote, Sums (&sums)[step])
    {
        Floats away = position - plane;
        unrolled<step>([&](auto i) RVK_INLINE_LAMBDA {
            const Floats missing = min(abs(away), splat(1.0f));
            sums[i].all = multiplyAdd(missing, vote.magnitude, sums[i].all);
            sums[i].lower = multiplyAdd(missing, vote.lower, sums[i].lower);
            away = away - splat(1.0f);
        });
    }

    // Of the sums of a cell, plane p at sums[p * pitch], those of its bins.
    RVK_INLINE void toBins(const float* sums, size_t pitch, float* bins) const
    {
        const size_t count = m_wholePlane - 2;
        const float whole = sums[m_wholePlane * pitch];
        const auto hat = [=](size_t plane) RVK_INLINE_LAMBDA { return whole - sums[plane * pitch]; };
        for (size_t b = 0; b < count; ++b)
            bins[b] = hat(b + 1);
        bins[0] += hat(count + 1);
        bins[count - 1] += hat(0);
        for (size_t b = 0; b < count; ++b)
            bins[b] = bins[b] < 0 ? 0 : bins[b]; // differences of rounded sums
    }

private:
    float m_bins;
    size_t m_wholePlane; // so far away from all positions that everything is missing
};

// FHOG's signed bins, one plane each.
class SignedBins
{
public:
    static constexpr size_t planesFor(size_t bins) { return bins; }

    // The bin: how many of the boundaries at 10, 30, 50 and 70 degrees the direction has passed, away from the x axis in
    // its quadrant. No gradient but 0 is less than 0.0017 away from one.
    RVK_INLINE Floats position(Floats dx, Floats dy) const
    {
        constexpr float tangents[] = {0.176326981f, 0.577350269f, 1.191753593f, 2.747477419f};
        const Floats across = abs(dx), down = abs(dy), none = zero<float>();
        Floats passed = none;
        unrolled<4>([&](auto i) RVK_INLINE_LAMBDA {
            const Mask<float> hasPassed = greater(down, across * splat(tangents[i]));
            passed = passed + select(hasPassed, splat(1.0f), none);
        });
        // At dx = 0 the direction counts to the left where it points down, to the right where it points up.
        const Floats lower = select(greater(dx, none), passed, splat(9.0f) - passed);
        const Floats upper = splat(9.0f) + select(less(dx, none), passed, splat(9.0f) - passed);
        const Floats bin = select(less(dy, none), upper, lower);
        return select(less(bin, splat(18.0f)), bin, none);
    }

    static constexpr size_t step = 3;

    static RVK_INLINE void add(Floats plane, Floats position, const Vote& vote, Sums (&sums)[step])
    {
        unrolled<step>([&](auto i) RVK_INLINE_LAMBDA {
            const Mask<float> isHere = equal(position, plane + splat(static_cast<float>(static_cast<int>(i))));
            const Floats share = select(isHere, vote.magnitude, zero<float>());
            sums[i].all = sums[i].all + share;
            sums[i].lower = multiplyAdd(share, vote.weight, sums[i].lower);
        });
    }

    // Those of signed bins, and behind them those of unsigned ones.
    static RVK_INLINE void toBins(const float* sums, size_t pitch, float* bins)
    {
        for (size_t b = 0; b < kFhogSignedBins; ++b)
            bins[b] = sums[b * pitch];
        for (size_t b = 0; b < kFhogBins; ++b)
            bins[kFhogSignedBins + b] = bins[b] + bins[b + kFhogBins];
    }
};

// ---- votes ---------------------------------------------------------------------------------------------------------

// Sums of a row of cells over pixels of each column, plane p at [p * pitch]. `pending` has those of the rows above the
// cells' centres, `complete` those of the cells above, all of them. A row begins with half a cell of zeros.
struct Planes
{
    float *complete, *pending;
    size_t count, pitch; // count is a multiple of Bins::step
};

// The pixels of a strip, count rows behind the first, `pitch` bytes apart; each row has a pixel before the first column.
// Of column x, `width` of which vote, the lower cells get the share weights[y].
template <class Bins>
RVK_NOINLINE void voteDownColumns(const Bins& bins, const uint8_t* rows, size_t pitch, size_t count,
                                  const float* weights, size_t width, float* complete, float* pending,
                                  const Planes& planes)
{
    constexpr size_t lanes = Floats::lanes;
    const Floats none = zero<float>();
    for (size_t x = 0; x < width; x += lanes) {
        Floats positions[kMostHogCellSize];
        Vote votes[kMostHogCellSize];
        const Mask<float> isVoter = less(toFloat(iota<int32_t>()), splat(static_cast<float>(least(width - x, lanes))));
        const uint8_t* p = rows + x + 1;
        for (size_t y = 0; y < count; ++y) {
            p += pitch;
            const auto difference = [](const uint8_t* to, const uint8_t* from) RVK_INLINE_LAMBDA {
                return toFloat(bitCast<int32_t>(loadWiden<uint32_t>(to) - loadWiden<uint32_t>(from)));
            };
            const Floats dx = difference(p + 1, p - 1), dy = difference(p + pitch, p - pitch);
            const Floats square = dx * dx + dy * dy;
            const Floats magnitude = min(guessSquareRoot(max(square, splat(1.0f))), square); // 0 of 0
            positions[y] = bins.position(dx, dy);
            const Floats vote = select(isVoter, magnitude, none);
            votes[y] = {vote, splat(weights[y]), vote * splat(weights[y])};
        }
        for (size_t plane = 0; plane < planes.count; plane += Bins::step) {
            const Floats first = splat(static_cast<float>(static_cast<int32_t>(plane)));
            Sums sums[Bins::step];
            unrolled<Bins::step>([&](auto i) RVK_INLINE_LAMBDA { sums[i] = {none, none}; });
            for (size_t y = 0; y < count; ++y)
                bins.add(first, positions[y], votes[y], sums);
            size_t at = plane * planes.pitch + x;
            unrolled<Bins::step>([&](auto i) RVK_INLINE_LAMBDA {
                store(complete + at, load(pending + at) + (sums[i].all - sums[i].lower));
                store(pending + at, sums[i].lower);
                at += planes.pitch;
            });
        }
    }
}

// sums[i] = the sum of v[i], of four vectors.
RVK_INLINE void storeFloatSums(float* sums, const Floats (&v)[4])
{
    const auto addPairs = [](Floats a, Floats b) RVK_INLINE_LAMBDA { return zipLow(a, b) + zipHigh(a, b); };
    const Floats halves[2] = {addPairs(v[0], v[2]), addPairs(v[1], v[3])}; // 0 2 0 2 ..., 1 3 1 3 ...
    Floats all = addPairs(halves[0], halves[1]);                           // 0 1 2 3 0 1 2 3 ...
    if constexpr (Floats::lanes >= 16)
        all = all + extract<8 % Floats::lanes>(all, all);
    if constexpr (Floats::lanes >= 8)
        all = all + extract<4 % Floats::lanes>(all, all);
    storePartial(sums, all, 4);
}

// The sums of all cells in a row of `cells`, rounded up to four, of columns: cell i's begin at row[i * cellSize], and
// `span` of them count, which are whole vectors.
RVK_NOINLINE void sumCells(const float* row, size_t cells, size_t cellSize, const float* weights, size_t span,
                           float* sums)
{
    for (size_t i = 0; i < cells; i += 4) {
        const float* const first = row + i * cellSize;
        Floats acc[4] = {zero<float>(), zero<float>(), zero<float>(), zero<float>()};
        for (size_t x = 0; x < span; x += Floats::lanes)
            unrolled<4>([&](auto k) RVK_INLINE_LAMBDA {
                acc[k] = multiplyAdd(load(first + k * cellSize + x), load(weights + x), acc[k]);
            });
        storeFloatSums(sums + i, acc);
    }
}

// The share of the cell behind, of pixel i between the centres of two.
RVK_INLINE float shareBehind(size_t i, size_t cellSize)
{
    const float middle = static_cast<float>(cellSize) * 0.5f - static_cast<float>(cellSize / 2) + 0.5f;
    return (static_cast<float>(i) + middle) / static_cast<float>(cellSize);
}

// Rows of a picture around a strip, with a pixel more at each of their ends.
struct PaddedRows
{
    uint8_t* data;
    size_t pitch;

    // Pixels outside of the picture are the nearest ones. The first row is `top` - 1.
    RVK_INLINE void copy(Plane<const uint8_t> src, size_t width, size_t height, size_t top, size_t count) const
    {
        for (size_t i = 0; i < count; ++i) {
            uint8_t* const row = data + i * pitch;
            const uint8_t* const from = src.row(nearest(top + i, 1, height));
            row[0] = from[0];
            __builtin_memcpy(row + 1, from, width);
            row[width + 1] = from[width - 1];
        }
    }
};

// histograms[(y * cellsAcross + x) * cellValues] for each cell.
template <class Bins>
rvkStatus vote(const Bins& bins, size_t cellSize, size_t planeCount, size_t cellValues, Plane<const uint8_t> src,
               size_t width, size_t height, const HogGrid& grid, float* histograms)
{
    constexpr size_t lanes = Floats::lanes;
    const size_t before = cellSize / 2, across = grid.cellsAcross, votingWidth = across * cellSize;
    const size_t votingHeight = grid.cellsDown * cellSize;
    const size_t span = roundedUp(2 * cellSize, lanes), sumCount = roundedUp(across, 4);
    Planes planes = {nullptr, nullptr, roundedUp(planeCount, Bins::step),
                     roundedUp(before + votingWidth + 3 * cellSize + span + lanes, lanes)};
    const size_t bytePitch = roundedUp(width + 2 + lanes, lanes);
    const Scratch<uint8_t> rows(cellSize + 2, bytePitch);
    const Scratch<float> sumsOfColumns(2 * planes.count, planes.pitch), sums(planes.count, sumCount);
    if (!rows || !sumsOfColumns || !sums)
        return RAVIK_ENORES;
    __builtin_memset(rows.get(), 0, (cellSize + 2) * bytePitch);
    __builtin_memset(sumsOfColumns.get(), 0, 2 * planes.count * planes.pitch * sizeof(float));
    planes.complete = sumsOfColumns.get();
    planes.pending = planes.complete + planes.count * planes.pitch;

    float rowWeights[kMostHogCellSize], columnWeights[2 * kMostHogCellSize + lanes] = {};
    for (size_t i = 0; i < cellSize; ++i) {
        rowWeights[i] = columnWeights[i] = shareBehind(i, cellSize);
        columnWeights[cellSize + i] = 1 - rowWeights[i];
    }
    const PaddedRows padded = {rows.get(), bytePitch};
    for (size_t strip = 0; strip <= grid.cellsDown; ++strip) { // above the centres of this row of cells
        const size_t missing = strip ? 0 : before, top = strip * cellSize + missing - before;
        const size_t count = least(cellSize - missing, votingHeight - top);
        padded.copy(src, width, height, top, count + 2);
        voteDownColumns(bins, padded.data, bytePitch, count, rowWeights + missing, votingWidth,
                        planes.complete + before, planes.pending + before, planes);
        if (!strip)
            continue;
        for (size_t plane = 0; plane < planes.count; ++plane)
            sumCells(planes.complete + plane * planes.pitch, across, cellSize, columnWeights, span,
                     sums.get() + plane * sumCount);
        float* const cells = histograms + (strip - 1) * across * cellValues;
        for (size_t x = 0; x < across; ++x)
            bins.toBins(sums.get() + x, sumCount, cells + x * cellValues);
    }
    return RAVIK_SUCCESS;
}

// ---- descriptors ---------------------------------------------------------------------------------------------------

// values * scale, of which the last step may go beyond.
RVK_INLINE void storeValues(const float* values, Floats scale, size_t count, uint16_t* dst)
{
    constexpr size_t step = Vec<uint16_t>::lanes, lanes = Floats::lanes;
    for (size_t i = 0; i < count; i += step) {
        const auto rounded = [&](size_t half) RVK_INLINE_LAMBDA {
            return truncateToInt(multiplyAdd(load(values + i + half * lanes), scale, splat(0.5f)));
        };
        const Vec<uint16_t> v = narrowSat<uint16_t>(Vecs<int32_t, 2>{rounded(0), rounded(1)});
        if (i + step <= count)
            store(dst + i, v);
        else
            storePartial(dst + i, v, count - i);
    }
}

// What values are stored by, in whole steps.
RVK_INLINE constexpr size_t wholeSteps(size_t count)
{
    return (count + Vec<uint16_t>::lanes - 1) / Vec<uint16_t>::lanes * Vec<uint16_t>::lanes;
}

constexpr size_t kBlocksAtOnce = 4; // sums and roots of them take as long as those of one

// 1 / sqrt(sum + more) of the sums of four vectors.
struct Scales
{
    float values[Floats::lanes];

    RVK_INLINE Scales(const Floats (&squares)[kBlocksAtOnce], float more) : values()
    {
        storeFloatSums(values, squares);
        store(values, reciprocalRoot(load(values) + splat(more)));
    }
};

// Blocks beside each other, `step` values apart, each of `rows` rows of cells, of rowValues values, `pitch` apart. A vector
// may be read behind the last. `values` has room for all of them in whole steps, and for a vector.
RVK_NOINLINE void describeBlocks(const float* cells, size_t step, size_t blocks, size_t pitch, size_t rowValues,
                                 size_t rows, float* values, uint16_t* dst)
{
    constexpr size_t lanes = Floats::lanes;
    const size_t count = rows * rowValues, room = wholeSteps(count);
    Floats energies[kBlocksAtOnce], clippedEnergies[kBlocksAtOnce];
    for (size_t k = 0; k < kBlocksAtOnce; ++k) {
        const float* const block = cells + least(k, blocks - 1) * step;
        float* const to = values + k * room;
        for (size_t row = 0; row < rows; ++row) // whole vectors, of which the next row takes the rest
            for (size_t i = 0; i < rowValues; i += lanes)
                store(to + row * rowValues + i, load(block + row * pitch + i));
        for (size_t i = count; i < room; i += lanes)
            store(to + i, zero<float>());
        energies[k] = zero<float>();
        for (size_t i = 0; i < count; i += lanes)
            energies[k] = multiplyAdd(load(to + i), load(to + i), energies[k]);
    }
    const Scales scales(energies, 1.0f);
    for (size_t k = 0; k < kBlocksAtOnce; ++k) {
        const Floats scale = splat(scales.values[k]);
        clippedEnergies[k] = zero<float>();
        for (size_t i = 0; i < count; i += lanes) {
            float* const v = values + k * room + i;
            const Floats clipped = min(load(v) * scale, splat(kHogClip));
            clippedEnergies[k] = multiplyAdd(clipped, clipped, clippedEnergies[k]);
            store(v, clipped);
        }
    }
    const Scales clippedScales(clippedEnergies, 1e-6f);
    for (size_t k = 0; k < blocks; ++k)
        storeValues(values + k * room, splat(clippedScales.values[k] * kHogOne), count, dst + k * count);
}

// A cell by its 27 sums, behind which a vector may be read, and by four sums of energies.
RVK_INLINE void describeCell(const float* cell, const float (&energies)[4], uint16_t* dst)
{
    constexpr size_t lanes = Floats::lanes, sums = kFhogSignedBins + kFhogBins;
    float n[lanes] = {}, values[wholeSteps(kFhogValues) + lanes] = {};
    for (size_t k = 0; k < lanes; ++k)
        n[k] = k < 4 ? energies[k % 4] + 1.0f : 1.0f;
    store(n, reciprocalRoot(load(n)));

    Floats texture[4] = {zero<float>(), zero<float>(), zero<float>(), zero<float>()};
    const auto clipped = [&](size_t i, auto isSigned) RVK_INLINE_LAMBDA {
        Floats sum = zero<float>();
        const Floats all = load(cell + i);
        unrolled<4>([&](auto k) RVK_INLINE_LAMBDA {
            const Floats v = min(all * splat(n[k]), splat(kHogClip));
            sum = sum + v;
            texture[k] = texture[k] + isSigned(v);
        });
        store(values + i, sum * splat(0.5f));
    };
    constexpr size_t whole = kFhogSignedBins / lanes * lanes;
    for (size_t i = 0; i < whole; i += lanes)
        clipped(i, [](Floats v) RVK_INLINE_LAMBDA { return v; });
    const Mask<float> signedLanes = less(toFloat(iota<int32_t>()), splat(static_cast<float>(kFhogSignedBins - whole)));
    clipped(whole, [=](Floats v) RVK_INLINE_LAMBDA { return select(signedLanes, v, zero<float>()); });
    for (size_t i = whole + lanes; i < sums; i += lanes)
        clipped(i, [](Floats) RVK_INLINE_LAMBDA { return zero<float>(); });
    for (size_t k = 0; k < 4; ++k)
        values[sums + k] = sumOf(texture[k]) * kFhogTextureWeight;
    storeValues(values, splat(kHogOne), kFhogValues, dst);
}

RVK_NOINLINE void describeCells(const float* cells, size_t cellValues, const float* energies, const HogGrid& grid,
                                Plane<uint16_t> dst)
{
    const size_t across = grid.cellsAcross, down = grid.cellsDown;
    for (size_t y = 0; y < down; ++y) {
        const float* const row = energies + y * across;
        const float* const others[] = {y ? row - across : row, y + 1 < down ? row + across : row};
        for (size_t x = 0; x < across; ++x) {
            const size_t columns[] = {x ? x - 1 : 0, x + 1 < across ? x + 1 : x};
            float sums[4];
            for (size_t k = 0; k < 4; ++k)
                sums[k] = row[x] + row[columns[k % 2]] + others[k / 2][x] + others[k / 2][columns[k % 2]];
            describeCell(cells + (y * across + x) * cellValues, sums, dst.row(y) + x * kFhogValues);
        }
    }
}

// ---- methods -------------------------------------------------------------------------------------------------------

rvkStatus extractDalal(const rvkHOG& hog, Plane<const uint8_t> src, size_t width, size_t height, const HogGrid& grid,
                       Plane<uint16_t> dst)
{
    const size_t bins = hog.binCount, pitch = grid.cellsAcross * bins;
    const Scratch<float> cells(uint64_t{grid.cellsDown} * grid.cellsAcross + Floats::lanes, bins);
    const Scratch<float> values(kBlocksAtOnce + 1, wholeSteps(grid.blockValues)); // a vector behind the last
    if (!cells || !values)
        return RAVIK_ENORES;
    const rvkStatus status =
        vote(Hats(hog.binCount), hog.cellSize, Hats::planesFor(bins), bins, src, width, height, grid, cells.get());
    if (status != RAVIK_SUCCESS)
        return status;
    const size_t step = hog.blockStep * bins;
    for (size_t y = 0; y < grid.blocksDown; ++y)
        for (size_t x = 0; x < grid.blocksAcross; x += kBlocksAtOnce)
            describeBlocks(cells.get() + y * hog.blockStep * pitch + x * step, step,
                           least(grid.blocksAcross - x, kBlocksAtOnce), pitch, hog.blockSize * bins, hog.blockSize,
                           values.get(), dst.row(y) + x * grid.blockValues);
    return RAVIK_SUCCESS;
}

rvkStatus extractFhog(const rvkHOG& hog, Plane<const uint8_t> src, size_t width, size_t height, const HogGrid& grid,
                      Plane<uint16_t> dst)
{
    constexpr size_t values = kFhogSignedBins + kFhogBins;
    const uint64_t cellCount = uint64_t{grid.cellsAcross} * grid.cellsDown;
    const Scratch<float> cells(cellCount + 1, values), energies(cellCount); // a vector may reach behind the last cell
    if (!cells || !energies)
        return RAVIK_ENORES;
    const rvkStatus status = vote(SignedBins(), hog.cellSize, SignedBins::planesFor(kFhogSignedBins), values, src,
                                  width, height, grid, cells.get());
    if (status != RAVIK_SUCCESS)
        return status;
    for (size_t i = 0; i < cellCount; ++i) {
        energies[i] = 0;
        for (size_t b = kFhogSignedBins; b < values; ++b)
            energies[i] += cells[i * values + b] * cells[i * values + b];
    }
    describeCells(cells.get(), values, energies.get(), grid, dst);
    return RAVIK_SUCCESS;
}

} // namespace

rvkStatus irvkExtractHOGu16V(const rvkHOG* hog, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                             uint32_t srcStride, uint16_t* dst, uint32_t dstStride)
{
    const HogGrid grid(*hog, srcWidth, srcHeight);
    const auto extract = hog->method == RAVIK_HOG_FHOG ? extractFhog : extractDalal;
    return extract(*hog, {src, srcStride}, srcWidth, srcHeight, grid, {dst, dstStride});
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikHogForms.h"
